#pragma once

#include "platform/text/ansi_string.h"

namespace vyn {

class ClassInfo;

// A class reference: the class record of a class, one per class and process.
using TClass = const ClassInfo*;

// The root of every class that knows its own record: name, parent, published properties, virtual construction.
//
// A class joins the family by writing VYN_OBJECT first in its body and defining StaticClass() in its source with
// DefineClass (class_info.h). Objects are never copied; they are owned by whoever made them unless the class says
// otherwise.
class TObject {
  public:
    TObject() = default;
    TObject(const TObject&) = delete;
    TObject& operator=(const TObject&) = delete;
    virtual ~TObject() = default;

    static const ClassInfo& StaticClass();
    virtual const ClassInfo& GetClassInfo() const { return StaticClass(); }

    TClass ClassType() const { return &GetClassInfo(); }
    const AnsiString& ClassName() const;
    bool InheritsFrom(TClass ancestor) const;
};

// The two declarations that every class of the family carries.
#define VYN_OBJECT                                                                  \
  public:                                                                           \
    static const ::vyn::ClassInfo& StaticClass();                                   \
    const ::vyn::ClassInfo& GetClassInfo() const override { return StaticClass(); } \
                                                                                    \
  private:

// The object as a T when its record descends from T's, else null. Cheaper than dynamic_cast, and true for classes
// whose records are made at run time.
template <class T>
T* ObjectCast(TObject* object) {
    return object && object->InheritsFrom(&T::StaticClass()) ? static_cast<T*>(object) : nullptr;
}
template <class T>
const T* ObjectCast(const TObject* object) {
    return object && object->InheritsFrom(&T::StaticClass()) ? static_cast<const T*>(object) : nullptr;
}

}  // namespace vyn
