#pragma once

#include "platform/objects/class_info.h"
#include "platform/objects/object.h"

namespace vyn {

class TFiler;

// An object with published properties that can be assigned and stored.
class TPersistent : public TObject {
    VYN_OBJECT
  public:
    // Copies the source into this object. A class that cannot take the source asks the source's AssignTo; when that
    // cannot either: EConvertError "Cannot assign a X to a Y". A null source is "nil".
    virtual void Assign(const TPersistent* source);
    // The name under which this object is known in messages: its owner's path, a dot, its class.
    virtual AnsiString GetNamePath() const;
    // The object that this one is a part of, or null.
    virtual TPersistent* GetOwner() const { return nullptr; }

    // Declares hidden properties; overriders call the inherited operation first.
    virtual void DefineProperties(TFiler& filer) {}

  protected:
    virtual void AssignTo(TPersistent* destination) const;
    [[noreturn]] void AssignError(const TPersistent* source) const;
};

}  // namespace vyn
