#include "platform/objects/persistent.h"

#include "platform/text/exceptions.h"

namespace vyn {

const ClassInfo& TPersistent::StaticClass() {
    static const ClassInfo info = DefineClass<TPersistent, TObject>("TPersistent");
    return info;
}

void TPersistent::Assign(const TPersistent* source) {
    if (!source) AssignError(nullptr);
    source->AssignTo(this);
}

void TPersistent::AssignTo(TPersistent* destination) const { destination->AssignError(this); }

void TPersistent::AssignError(const TPersistent* source) const {
    throw EConvertError("Cannot assign a " + (source ? source->ClassName() : AnsiString("nil")) + " to a " +
                        ClassName());
}

AnsiString TPersistent::GetNamePath() const {
    const TPersistent* owner = GetOwner();
    if (!owner) return ClassName();
    const AnsiString path = owner->GetNamePath();
    return path.empty() ? ClassName() : path + "." + ClassName();
}

}  // namespace vyn
