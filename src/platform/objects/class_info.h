#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/objects/name_index.h"
#include "platform/objects/property.h"

namespace vyn {

class TComponent;

// The record of a class: its name, its parent's record, how to make an instance, and its published properties and
// methods. One record per class and process; its address is the class's identity. Immutable once made.
class ClassInfo {
  public:
    // Makes an instance with the given owner (ignored by classes that are no components); null for abstract classes.
    using Factory = TObject* (*)(TComponent* owner);

    ClassInfo(AnsiString name, const ClassInfo* parent, Factory factory, std::vector<PropertyInfo> ownProperties,
              std::vector<MethodInfo> ownMethods);

    const AnsiString& Name() const { return name_; }
    const ClassInfo* Parent() const { return parent_; }
    // In constant time.
    bool InheritsFrom(TClass ancestor) const {
        if (ancestor == this) return true;
        const size_t depth = ancestor ? ancestor->ancestors_.size() : ancestors_.size();
        return depth < ancestors_.size() && ancestors_[depth] == ancestor;
    }

    bool CanCreate() const { return factory_ != nullptr; }
    // A new instance that the caller owns (an owned component: its owner). Raises EAbstractError for a class that
    // cannot be created.
    TObject* Create(TComponent* owner) const;

    // Every published property, the parent's first; a class that publishes a name again replaces it in its place.
    const std::vector<PropertyInfo>& Properties() const { return properties_; }
    // By name without regard to case; null when there is none.
    const PropertyInfo* FindProperty(std::string_view name) const;
    const MethodInfo* FindMethod(std::string_view name) const;
    const std::vector<MethodInfo>& Methods() const { return methods_; }

  private:
    AnsiString name_;
    const ClassInfo* parent_;
    std::vector<const ClassInfo*> ancestors_;  // by depth, the root class first, without this one
    Factory factory_;
    std::vector<PropertyInfo> properties_;
    std::vector<MethodInfo> methods_;
    NameIndex propertyIndex_;
    NameIndex methodIndex_;
};

// A property's definition, apart from a class: declared once where its accessors are and published by each class
// that shows it.
template <class G, class S = property_detail::NoSetter>
PropertyInfo Property(AnsiString name, G getter, S setter = {}) {
    using Traits = property_detail::GetterTraits<G>;
    using V = typename Traits::Value;
    PropertyInfo info;
    info.Name = std::move(name);
    info.ReadOnly = std::is_same_v<S, property_detail::NoSetter>;
    info.Accessor = std::make_shared<property_detail::TypedAccessor<typename Traits::Class, G, S>>(getter, setter);
    if constexpr (property_detail::IsSet<V>::value) {
        info.Kind = PropertyKind::Set;
        info.Enum = &TypeInfoOf(TypeTag<typename V::Element>{});
    } else if constexpr (property_detail::HasEnumType<V>) {
        info.Kind = PropertyKind::Enumeration;
        info.Enum = &TypeInfoOf(TypeTag<V>{});
    } else if constexpr (property_detail::HasIntegerType<V>) {
        info.Kind = PropertyKind::Integer;
        info.Integer = &TypeInfoOf(TypeTag<V>{});
    } else if constexpr (std::is_same_v<V, char>) {
        info.Kind = PropertyKind::Character;
    } else if constexpr (std::is_integral_v<V>) {
        info.Kind = sizeof(V) > 4 ? PropertyKind::Int64 : PropertyKind::Integer;
    } else if constexpr (std::is_floating_point_v<V> || std::is_same_v<V, TDateTime> || std::is_same_v<V, Currency>) {
        info.Kind = PropertyKind::Float;
    } else if constexpr (std::is_same_v<V, AnsiString>) {
        info.Kind = PropertyKind::String;
    } else if constexpr (std::is_same_v<V, WideString>) {
        info.Kind = PropertyKind::WideText;
    } else if constexpr (std::is_same_v<V, Variant>) {
        info.Kind = PropertyKind::Variant;
    } else if constexpr (std::is_pointer_v<V>) {
        info.Kind = PropertyKind::Class;
        info.Class = &std::remove_pointer_t<V>::StaticClass;
    } else {
        static_assert(std::is_base_of_v<EventBase, V>, "this type cannot be published");
        info.Kind = PropertyKind::Method;
    }
    return info;
}

// An event property over the data member that holds it.
template <class C, class E>
PropertyInfo EventProperty(AnsiString name, E C::*member) {
    return Property(std::move(name), member, member);
}

// Collects what a class publishes, in order; becomes the class's record.
//
//     const ClassInfo& TPanel::StaticClass() {
//         static const ClassInfo info = DefineClass<TPanel, TCustomPanel>("TPanel")
//             .Published("BevelWidth", &TPanel::BevelWidth, &TPanel::SetBevelWidth).Default(1)
//             .Event("OnClick", &TPanel::OnClick);
//         return info;
//     }
//
// Integers, enumerations, sets and characters are always stored unless Default names the value that is not; other
// kinds are stored when they differ from nothing (empty text, zero, null).
template <class T>
class ClassBuilder {
  public:
    ClassBuilder(AnsiString name, const ClassInfo* parent, ClassInfo::Factory factory)
        : name_(std::move(name)), parent_(parent), factory_(factory) {}

    template <class G, class S>
    ClassBuilder& Published(AnsiString name, G getter, S setter) {
        return Published(Property(std::move(name), getter, setter));
    }
    template <class G>
    ClassBuilder& Published(AnsiString name, G getter) {
        return Published(Property(std::move(name), getter));
    }
    ClassBuilder& Published(PropertyInfo property) {
        properties_.push_back(std::move(property));
        return *this;
    }
    template <class E, class C>
    ClassBuilder& Event(AnsiString name, E C::*member) {
        return Published(EventProperty(std::move(name), member));
    }
    // The three below speak of the property published last.
    template <class V>
    ClassBuilder& Default(V value) {
        PropertyInfo& property = properties_.back();
        property.HasDefault = true;
        if constexpr (property_detail::IsSet<V>::value)
            property.Default = static_cast<int64_t>(value.Bits());
        else
            property.Default = static_cast<int64_t>(value);
        return *this;
    }
    ClassBuilder& NoDefault() {
        properties_.back().HasDefault = false;
        return *this;
    }
    ClassBuilder& Stored(bool (T::*rule)() const) {
        properties_.back().Stored = [rule](const TObject& object) { return (static_cast<const T&>(object).*rule)(); };
        return *this;
    }
    ClassBuilder& Stored(std::function<bool(const T&)> rule) {
        properties_.back().Stored = [rule = std::move(rule)](const TObject& object) {
            return rule(static_cast<const T&>(object));
        };
        return *this;
    }
    ClassBuilder& NeverStored() {
        properties_.back().Stored = [](const TObject&) { return false; };
        return *this;
    }
    // Publishes a method that stored events may name.
    template <class C, class R, class... A>
    ClassBuilder& Method(AnsiString name, R (C::*method)(A...)) {
        methods_.push_back({name, typeid(R(A...)), [name, method](TObject& instance) {
                                C* self = static_cast<C*>(&instance);
                                using Handler = typename ::vyn::Event<R(A...)>::TypedHandler;
                                return std::make_shared<Handler>(name, [self, method](A... arguments) -> R {
                                    return (self->*method)(std::forward<A>(arguments)...);
                                });
                            }});
        return *this;
    }

    operator ClassInfo() {
        return ClassInfo(std::move(name_), parent_, factory_, std::move(properties_), std::move(methods_));
    }

  private:
    AnsiString name_;
    const ClassInfo* parent_;
    ClassInfo::Factory factory_;
    std::vector<PropertyInfo> properties_;
    std::vector<MethodInfo> methods_;
};

template <class T>
TObject* CreateInstance(TComponent* owner) {
    if constexpr (std::is_constructible_v<T, TComponent*>)
        return new T(owner);
    else
        return new T();
}

template <class T, class Base>
ClassBuilder<T> DefineClass(AnsiString name) {
    static_assert(std::is_base_of_v<Base, T>);
    if constexpr (!std::is_abstract_v<T> &&
                  (std::is_constructible_v<T, TComponent*> || std::is_default_constructible_v<T>))
        return ClassBuilder<T>(std::move(name), &Base::StaticClass(), &CreateInstance<T>);
    else
        return ClassBuilder<T>(std::move(name), &Base::StaticClass(), nullptr);
}

}  // namespace vyn
