#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/controls/forms.h"
#include "platform/objects/class_table.h"
#include "platform/objects/component.h"

// Walks the component classes that the package links or registers.
namespace vyn::registry {

// Those of which instances can be made, by name.
std::vector<TClass> ComponentClasses();

// A property and the object that publishes it: the component or one of its parts ("Font.Size").
struct Published {
    TPersistent* Instance = nullptr;
    const PropertyInfo* Property = nullptr;
    AnsiString Path;
    bool Stored = true;  // by its own rule and the rules of the parts that it stands in
};

// Everything that the component publishes, its parts' properties after the part itself; component references as one
// property, collections without their items.
std::vector<Published> PropertiesOf(TPersistent& instance, const AnsiString& prefix = {}, bool stored = true);

// The paths of the plain properties with setters of a component on a form. Each is tried on a component of its own:
// together they would hide each other, and some replace the parts that others stand in.
std::vector<AnsiString> SettablePaths(TClass classInfo);
// Raises EPropertyError when it is not there.
Published PropertyAt(TPersistent& instance, const AnsiString& path);

// Ordinals, numbers and texts: what can be compared and set without another object.
bool IsPlain(const PropertyInfo& property);
// The value as text, for comparing and for messages.
AnsiString ValueText(const Published& published);
// Gives the property another legal value and tells whether it reads back; false when none of the tried ones does.
// Values that the setter refuses with an exception are not legal.
bool SetAnother(const Published& published);

// A component as forms hold it: on a form that owns it and, where it takes one, is its parent. A form, or what can
// only stand on its own, is its own root.
class OnForm {
  public:
    explicit OnForm(TClass classInfo);
    ~OnForm();
    TComponent& Component() { return *component_; }
    TComponent& Root() { return form_ ? static_cast<TComponent&>(*form_) : *component_; }

  private:
    std::unique_ptr<TForm> form_;
    TComponent* component_ = nullptr;
};

AnsiString Written(TComponent& root);

}  // namespace vyn::registry
