#include "platform/objects/object.h"

#include "platform/objects/class_info.h"

namespace vyn {

const ClassInfo& TObject::StaticClass() {
    static const ClassInfo info("TObject", nullptr, nullptr, {}, {});
    return info;
}

const AnsiString& TObject::ClassName() const { return GetClassInfo().Name(); }

bool TObject::InheritsFrom(TClass ancestor) const { return GetClassInfo().InheritsFrom(ancestor); }

}  // namespace vyn
