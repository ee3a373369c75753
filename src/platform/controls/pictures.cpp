#include "platform/controls/pictures.h"

#include <algorithm>

#include "platform/objects/class_info.h"
#include "platform/objects/filer.h"
#include "platform/streams/reader.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace picture_detail {

constexpr uint32_t kOpaque = 0xFF000000u;
constexpr size_t kLongestClassName = 255;

AnsiString ReadRest(TStream& stream) {
    const int64_t left = stream.Size() - stream.Position();
    AnsiString bytes(static_cast<size_t>(left > 0 ? left : 0), '\0');
    if (!bytes.empty()) stream.ReadBuffer(bytes.data(), left);
    return bytes;
}

uint32_t ReadLength(TStream& stream) {
    uint8_t raw[4];
    stream.ReadBuffer(raw, sizeof raw);
    return raw[0] | uint32_t{raw[1]} << 8 | uint32_t{raw[2]} << 16 | uint32_t{raw[3]} << 24;
}

void WriteLength(TStream& stream, size_t length) {
    const uint8_t raw[4] = {static_cast<uint8_t>(length), static_cast<uint8_t>(length >> 8),
                            static_cast<uint8_t>(length >> 16), static_cast<uint8_t>(length >> 24)};
    stream.WriteBuffer(raw, sizeof raw);
}

AnsiString TakeLength(TStream& stream) {
    const uint32_t length = ReadLength(stream);
    if (length > stream.Size() - stream.Position()) throw EInvalidGraphic("Bitmap image is not valid");
    AnsiString bytes(length, '\0');
    if (length > 0) stream.ReadBuffer(bytes.data(), length);
    return bytes;
}

void WriteAll(TStream& stream, std::string_view bytes) {
    if (!bytes.empty()) stream.WriteBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
}

// A colour as a pixel.
uint32_t PixelOf(TColor color) {
    const auto value = static_cast<uint32_t>(color);
    return kOpaque | (value & 0xFF) << 16 | (value & 0xFF00) | (value >> 16 & 0xFF);
}

TColor ColorOf(uint32_t pixel) {
    return static_cast<TColor>((pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF));
}

}  // namespace picture_detail

const ClassInfo& TGraphic::StaticClass() {
    static const ClassInfo info = DefineClass<TGraphic, TPersistent>("TGraphic");
    return info;
}

void TGraphic::SetTransparent(bool value) {
    if (transparent_ == value) return;
    transparent_ = value;
    Changed();
}

void TGraphic::Changed() {
    Modified = true;
    OnChange(this);
}

void TGraphic::LoadFromFile(const AnsiString& fileName) {
    TFileStream stream(fileName, fmOpenRead);
    LoadFromStream(stream);
}

void TGraphic::SaveToFile(const AnsiString& fileName) const {
    TFileStream stream(fileName, fmCreate);
    SaveToStream(stream);
}

void TGraphic::ReadData(TStream& stream) { LoadFromStream(stream); }
void TGraphic::WriteData(TStream& stream) const { SaveToStream(stream); }

void TGraphic::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "Data", [this](TStream& stream) { ReadData(stream); }, [this](TStream& stream) { WriteData(stream); },
        !Empty());
}

const ClassInfo& TBitmap::StaticClass() {
    static const ClassInfo info = DefineClass<TBitmap, TGraphic>("TBitmap");
    return info;
}

void TBitmap::SetSize(int width, int height) {
    PixelImage image;
    if (width > 0 && height > 0) {
        if (static_cast<int64_t>(width) * height > kMaxPicturePixels) throw EOutOfResources("Out of system resources");
        image.Width = width;
        image.Height = height;
        image.Pixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height), picture_detail::kOpaque);
    }
    SetPixels(std::move(image));
}

const PixelImage& TBitmap::Pixels() const {
    if (!pixels_) pixels_ = std::make_unique<PixelImage>(file_.empty() ? PixelImage() : DecodeBmp(file_));
    return *pixels_;
}

void TBitmap::SetPixels(PixelImage image) {
    file_.clear();
    width_ = image.Width;
    height_ = image.Height;
    pixels_ = std::make_unique<PixelImage>(std::move(image));
    Changed();
}

TColor TBitmap::TransparentColor() const {
    if (transparentColor_ != clDefault || Empty()) return transparentColor_;
    return picture_detail::ColorOf(Pixels().At(0, height_ - 1));
}

const AnsiString& TBitmap::FileBytes() const {
    if (file_.empty() && pixels_ && !Empty()) file_ = EncodeBmp(*pixels_);
    return file_;
}

void TBitmap::LoadFromStream(TStream& stream) {
    AnsiString bytes = picture_detail::ReadRest(stream);
    int width = 0;
    int height = 0;
    std::unique_ptr<PixelImage> pixels;
    if (!bytes.empty()) {
        ReadBmpSize(bytes, width, height);
        pixels = std::make_unique<PixelImage>(DecodeBmp(bytes));  // a malformed file is noticed now
    }
    file_ = std::move(bytes);
    width_ = width;
    height_ = height;
    pixels_ = std::move(pixels);
    Changed();
}

void TBitmap::SaveToStream(TStream& stream) const { picture_detail::WriteAll(stream, FileBytes()); }

void TBitmap::ReadData(TStream& stream) {
    const AnsiString bytes = picture_detail::TakeLength(stream);
    TViewStream view(bytes);
    LoadFromStream(view);
}

void TBitmap::WriteData(TStream& stream) const {
    picture_detail::WriteLength(stream, FileBytes().size());
    SaveToStream(stream);
}

void TBitmap::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TBitmap>(source);
    if (!other && source) {
        TGraphic::Assign(source);
        return;
    }
    if (this == other) return;
    file_ = other ? other->FileBytes() : AnsiString();
    width_ = other ? other->width_ : 0;
    height_ = other ? other->height_ : 0;
    pixels_ = other && other->pixels_ ? std::make_unique<PixelImage>(*other->pixels_) : nullptr;
    transparentColor_ = other ? other->transparentColor_ : clDefault;
    Changed();
}

const ClassInfo& TIcon::StaticClass() {
    static const ClassInfo info = DefineClass<TIcon, TGraphic>("TIcon");
    return info;
}

void TIcon::LoadFromStream(TStream& stream) {
    AnsiString bytes = picture_detail::ReadRest(stream);
    int width = 0;
    int height = 0;
    if (!bytes.empty()) {
        const DecodedIcon icon = DecodeIco(bytes);
        width = icon.Width;
        height = icon.Height;
    }
    file_ = std::move(bytes);
    width_ = width;
    height_ = height;
    Changed();
}

void TIcon::SaveToStream(TStream& stream) const { picture_detail::WriteAll(stream, file_); }

void TIcon::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TIcon>(source);
    if (!other && source) {
        TGraphic::Assign(source);
        return;
    }
    file_ = other ? other->file_ : AnsiString();
    width_ = other ? other->width_ : 0;
    height_ = other ? other->height_ : 0;
    Changed();
}

const ClassInfo& TEncodedGraphic::StaticClass() {
    static const ClassInfo info = DefineClass<TEncodedGraphic, TGraphic>("TEncodedGraphic");
    return info;
}

void TEncodedGraphic::LoadFromStream(TStream& stream) {
    file_ = picture_detail::ReadRest(stream);
    width_ = height_ = 0;
    constexpr size_t kPrefix = 4;  // some writers put a length before the file
    for (const size_t skip : {size_t{0}, kPrefix}) {
        if (file_.size() <= skip) continue;
        try {
            ReadPngSize(std::string_view(file_).substr(skip), width_, height_);
            break;
        } catch (const EInvalidGraphic&) {
            // Not a PNG: the size stays unknown until a toolkit decodes it.
        }
    }
    Changed();
}

void TEncodedGraphic::SaveToStream(TStream& stream) const { picture_detail::WriteAll(stream, file_); }

void TEncodedGraphic::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TEncodedGraphic>(source);
    if (!other) {
        TGraphic::Assign(source);
        return;
    }
    storedClass_ = other->storedClass_;
    file_ = other->file_;
    width_ = other->width_;
    height_ = other->height_;
    Changed();
}

const ClassInfo& TPicture::StaticClass() {
    static const ClassInfo info = DefineClass<TPicture, TPersistent>("TPicture");
    return info;
}

namespace picture_detail {

std::unique_ptr<TGraphic> MakeGraphic(const AnsiString& className) {
    if (SameText(className, "TBitmap")) return std::make_unique<TBitmap>();
    if (SameText(className, "TIcon")) return std::make_unique<TIcon>();
    return std::make_unique<TEncodedGraphic>(className);
}

AnsiString StoredClassOf(const TGraphic& graphic) {
    const auto* encoded = ObjectCast<TEncodedGraphic>(&graphic);
    return encoded ? encoded->StoredClass() : graphic.ClassName();
}

}  // namespace picture_detail

void TPicture::Put(std::unique_ptr<TGraphic> graphic) {
    graphic_ = std::move(graphic);
    if (graphic_) graphic_->OnChange = [this](TObject*) { OnChange(this); };
    OnChange(this);
}

void TPicture::SetGraphic(const TGraphic* graphic) {
    if (!graphic) {
        Put(nullptr);
        return;
    }
    std::unique_ptr<TGraphic> copy = picture_detail::MakeGraphic(picture_detail::StoredClassOf(*graphic));
    copy->Assign(graphic);
    Put(std::move(copy));
}

TBitmap* TPicture::Bitmap() {
    if (!ObjectCast<TBitmap>(graphic_.get())) Put(std::make_unique<TBitmap>());
    return static_cast<TBitmap*>(graphic_.get());
}

TIcon* TPicture::Icon() {
    if (!ObjectCast<TIcon>(graphic_.get())) Put(std::make_unique<TIcon>());
    return static_cast<TIcon*>(graphic_.get());
}

void TPicture::LoadFromBytes(std::string_view bytes) {
    const auto startsWith = [&](std::string_view start) { return bytes.substr(0, start.size()) == start; };
    std::unique_ptr<TGraphic> graphic;
    if (startsWith("BM"))
        graphic = std::make_unique<TBitmap>();
    else if (startsWith(std::string_view("\0\0\1\0", 4)))
        graphic = std::make_unique<TIcon>();
    else if (startsWith("\x89PNG"))
        graphic = std::make_unique<TEncodedGraphic>("TPNGObject");
    else if (startsWith("\xFF\xD8\xFF"))
        graphic = std::make_unique<TEncodedGraphic>("TJPEGImage");
    else
        throw EInvalidGraphic("Unknown picture file format");
    TViewStream stream(bytes);
    graphic->LoadFromStream(stream);
    Put(std::move(graphic));
}

void TPicture::LoadFromFile(const AnsiString& fileName) {
    TFileStream stream(fileName, fmOpenRead);
    LoadFromBytes(picture_detail::ReadRest(stream));
}

void TPicture::SaveToFile(const AnsiString& fileName) const {
    if (graphic_) graphic_->SaveToFile(fileName);
}

void TPicture::Assign(const TPersistent* source) {
    if (!source)
        SetGraphic(nullptr);
    else if (const auto* picture = ObjectCast<TPicture>(source))
        SetGraphic(picture->graphic_.get());
    else if (const auto* graphic = ObjectCast<TGraphic>(source))
        SetGraphic(graphic);
    else
        TPersistent::Assign(source);
}

void TPicture::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "Data",
        [this](TStream& stream) {
            uint8_t length = 0;
            stream.ReadBuffer(&length, 1);
            AnsiString className(length, '\0');
            if (length > 0) stream.ReadBuffer(className.data(), length);
            if (className.empty()) {
                Put(nullptr);
                return;
            }
            std::unique_ptr<TGraphic> graphic = picture_detail::MakeGraphic(className);
            graphic->ReadData(stream);
            Put(std::move(graphic));
        },
        [this](TStream& stream) {
            AnsiString className = graphic_ ? picture_detail::StoredClassOf(*graphic_) : AnsiString();
            className.resize(std::min(className.size(), picture_detail::kLongestClassName));
            const auto length = static_cast<uint8_t>(className.size());
            stream.WriteBuffer(&length, 1);
            picture_detail::WriteAll(stream, className);
            if (graphic_) graphic_->WriteData(stream);
        },
        graphic_ && !graphic_->Empty());
}

}  // namespace vyn
