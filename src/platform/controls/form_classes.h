#pragma once

#include <functional>
#include <string_view>

#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"

namespace vyn {

// Form classes, known by name at run time: their compiled forms, and the two ways to make one.

// The compiled form (a stored form, bytes that live as long as the program) of a form or data module class. A second
// registration replaces the first.
void RegisterFormResource(std::string_view className, std::string_view bytes);
void UnregisterFormResource(std::string_view className);
// Empty when the class has none.
std::string_view FindFormResource(std::string_view className);
// Reads the compiled forms of a root's class and its ancestors into it, the topmost ancestor's first; false when the
// whole ancestry has none. `before` hears of each, and whether it is the last.
bool ReadFormResources(TComponent& root, const std::function<void(bool last)>& before = {});

// The two ways. Normal: as the class record's factory does, with the compiled form and OnCreate.
TCustomForm* CreateFormNormal(TClass formClass, TComponent* owner);
// New: an instance of the class that reads nothing and fires no OnCreate. Both raise EInvalidCast when the class is no
// form.
TCustomForm* CreateFormNew(TClass formClass, TComponent* owner);

namespace form_creation {

// True when the instance that is being made is one of CreateFormNew's; true once.
bool TakeNewRequest();

}  // namespace form_creation

template <class T>
TObject* NewFormFromResource(TComponent* owner) {
    const bool readsNothing = form_creation::TakeNewRequest();
    std::unique_ptr<T> form(new T(owner));
    if (!readsNothing) form->InitializeForm();
    return form.release();
}

// What form classes use instead of DefineClass, so that the record's factory reads the compiled form.
template <class T, class Base>
ClassBuilder<T> DefineForm(AnsiString name) {
    static_assert(std::is_base_of_v<TCustomForm, T>);
    static_assert(std::is_base_of_v<Base, T>);
    return ClassBuilder<T>(std::move(name), &Base::StaticClass(), &NewFormFromResource<T>);
}

// A form of a class that is known at compile time, the normal way.
template <class T>
T* CreateForm(TComponent* owner) {
    return static_cast<T*>(T::StaticClass().Create(owner));
}

}  // namespace vyn
