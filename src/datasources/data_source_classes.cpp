#include "datasources/data_source_classes.h"

#include "datasources/class_pictures.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace data_source_classes_detail {

struct TVynDataSourceClassInfo {
    AnsiString ClassName;
    std::unique_ptr<TImageList> Images;  // made with the first bitmap
    TVynDataSourceCreateMethod Create = nullptr;
};

using Registry = std::vector<TVynDataSourceClassInfo>;

std::unique_ptr<Registry>& TheRegistry() {
    static std::unique_ptr<Registry> registry;
    return registry;
}

Registry& Classes() {
    if (!TheRegistry()) TheRegistry() = std::make_unique<Registry>();
    return *TheRegistry();
}

TVynDataSourceClassInfo* Find(const AnsiString& name) {
    for (TVynDataSourceClassInfo& each : Classes())
        if (AnsiSameText(each.ClassName, name)) return &each;
    return nullptr;
}

TVynDataSourceClassInfo& Required(const AnsiString& name) {
    TVynDataSourceClassInfo* found = Find(name);
    if (!found) throw Exception("VynDataSource -> Classe no registrada: " + name);
    return *found;
}

void AddBytes(const AnsiString& name, std::string_view bytes) {
    TMemoryStream stream;
    stream.Write(bytes.data(), bytes.size());
    stream.SetPosition(0);
    TBitmap bitmap;
    bitmap.LoadFromStream(stream);
    VynDataSource_AddImageBitmap(name, bitmap);
}

void AddModuleBitmap(const AnsiString& name, HMODULE module, const AnsiString& resource) {
    Required(name);
    const AnsiString upper = UpperCase(resource);
    if (module == 0) {
        if (const auto picture = ClassPicture(upper)) {
            TBitmap bitmap;
            bitmap.SetPixels(*picture);
            VynDataSource_AddImageBitmap(name, bitmap);
            return;
        }
    } else if (const void* symbol = GetProcAddress(module, "VYN_BITMAP_" + upper)) {
        const auto& bitmap = *static_cast<const VynModuleBitmap*>(symbol);
        AddBytes(name, {reinterpret_cast<const char*>(bitmap.Bytes), bitmap.Size});
        return;
    }
    throw Exception("The module has no bitmap " + resource + " for the data-source class " + name);
}

void Register(const AnsiString& name, TVynDataSourceCreateMethod create, const char* picture) {
    TVynDataSourceClassInfo* found = Find(name);
    if (!found) {
        Classes().push_back({name, nullptr, nullptr});
        found = &Classes().back();
    }
    found->Create = create;
    found->Images.reset();
    VynDataSource_AddImageBitmapFromResName(name, 0, picture);
}

}  // namespace data_source_classes_detail

using namespace data_source_classes_detail;

void InitializeVynDataSources() {
    Classes().clear();
    Register(CT_VynSearchClass, nullptr, CT_BitmapSearch);
}

void FinalizeVynDataSources() { TheRegistry().reset(); }

void VynDataSource_RegisterClassName(const AnsiString& name, TVynDataSourceCreateMethod create) {
    Register(name, create, CT_BitmapClass);
}

void VynDataSource_UnRegisterClassName(const AnsiString& name) {
    std::erase_if(Classes(), [&](const TVynDataSourceClassInfo& each) { return AnsiSameText(each.ClassName, name); });
}

void VynDataSource_UnRegisterCreateClass(TVynDataSourceCreateMethod create) {
    for (size_t i = Classes().size(); i-- > 0;)
        if (Classes()[i].Create == create) Classes().erase(Classes().begin() + static_cast<std::ptrdiff_t>(i));
}

TVynDataSourceCreateMethod VynDataSource_GetCreateClassMethod(const AnsiString& name) {
    const TVynDataSourceClassInfo* found = Find(name);
    return found ? found->Create : nullptr;
}

void VynDataSource_GetRegisteredClasses(TStrings& names) {
    names.Clear();
    for (const TVynDataSourceClassInfo& each : Classes()) names.Add(each.ClassName);
}

TImageList* VynDataSource_FindImageList(const AnsiString& name) {
    const TVynDataSourceClassInfo* found = Find(name);
    return found ? found->Images.get() : nullptr;
}

void VynDataSource_AddImageBitmap(const AnsiString& name, const TBitmap& bitmap) {
    TVynDataSourceClassInfo& entry = Required(name);
    if (!entry.Images) entry.Images = std::make_unique<TImageList>(nullptr);
    AddBitmapToImageList(*entry.Images, bitmap);
}

void VynDataSource_AddImageBitmapFromResName(const AnsiString& name, HMODULE module, const AnsiString& resource) {
    AddModuleBitmap(name, module, resource);
}

void VynDataSource_AddImageBitmapFromResID(const AnsiString& name, HMODULE module, int resource) {
    AddModuleBitmap(name, module, IntToStr(resource));
}

void VynDataSource_AddImageBitmapFromOtherClass(const AnsiString& name, const AnsiString& otherName) {
    TVynDataSourceClassInfo& entry = Required(name);
    const TImageList* other = VynDataSource_FindImageList(otherName);
    if (!other) return;
    if (!entry.Images) {
        entry.Images = std::make_unique<TImageList>(nullptr);
        entry.Images->SetWidth(other->Width());
        entry.Images->SetHeight(other->Height());
    }
    for (int i = 0, count = other->Count(); i < count; ++i) entry.Images->AddImage(other->Image(i));
}

void AddBitmapToImageList(TCustomImageList& images, const TBitmap& bitmap) {
    images.Clear();
    const int width = bitmap.Width();
    const int height = bitmap.Height();
    const bool row = height > 0 && width > height && width % height == 0;
    images.SetWidth(row ? height : width);
    images.SetHeight(height);
    images.AddMasked(bitmap, bitmap.TransparentColor());
}

}  // namespace vyn
