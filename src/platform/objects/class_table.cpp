#include "platform/objects/class_table.h"

#include <dlfcn.h>

#include <algorithm>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace {

// Classes in the order in which they came, found by name.
class ClassTable {
  public:
    bool Add(TClass classInfo) {
        if (TClass known = Find(classInfo->Name())) return known == classInfo;
        index_.Insert(classInfo->Name(), static_cast<uint32_t>(classes_.size()));
        classes_.push_back(classInfo);
        return true;
    }
    void Remove(TClass classInfo) {
        if (!classes_.empty() && classes_.back() == classInfo) {
            classes_.pop_back();
            index_.Erase(classInfo->Name());
        } else if (std::erase(classes_, classInfo) > 0) {
            Reindex();
        }
    }
    TClass Find(std::string_view name) const {
        const uint32_t at = index_.Find(name);
        return at == NameIndex::NotFound ? nullptr : classes_[at];
    }
    const std::vector<TClass>& Classes() const { return classes_; }

  private:
    void Reindex() {
        index_.Clear();
        for (size_t i = 0; i < classes_.size(); ++i) index_.Insert(classes_[i]->Name(), static_cast<uint32_t>(i));
    }
    std::vector<TClass> classes_;
    NameIndex index_;
};

ClassTable& LinkedTable() {
    static ClassTable table;
    return table;
}

ClassTable& StreamingTable() {
    static ClassTable table;
    return table;
}

}  // namespace

void AddLinkedClass(TClass classInfo) {
    if (!LinkedTable().Add(classInfo)) throw EFilerError("A class named " + classInfo->Name() + " is linked already");
}
void RemoveLinkedClass(TClass classInfo) { LinkedTable().Remove(classInfo); }
TClass FindLinkedClass(std::string_view name) { return LinkedTable().Find(name); }
std::vector<TClass> LinkedClasses() { return LinkedTable().Classes(); }

void RegisterClass(TClass classInfo) {
    if (!StreamingTable().Add(classInfo)) throw EFilerError("A class named " + classInfo->Name() + " already exists");
}
void UnRegisterClass(TClass classInfo) { StreamingTable().Remove(classInfo); }
TClass GetClass(std::string_view name) { return StreamingTable().Find(name); }
TClass FindClass(std::string_view name) {
    if (TClass found = GetClass(name)) return found;
    throw EClassNotFound("Class " + AnsiString(name) + " not found");
}
std::vector<TClass> RegisteredClasses() { return StreamingTable().Classes(); }

const void* ModuleOfAddress(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

const void* ClassModule(TClass classInfo) { return ModuleOfAddress(classInfo); }

void UnRegisterModuleClasses(const void* module) {
    for (TClass each : RegisteredClasses())
        if (ClassModule(each) == module) UnRegisterClass(each);
    for (TClass each : LinkedClasses())
        if (ClassModule(each) == module) RemoveLinkedClass(each);
}

}  // namespace vyn
