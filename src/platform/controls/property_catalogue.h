#pragma once

#include <deque>
#include <string_view>

#include "platform/objects/class_info.h"

namespace vyn {

// Property definitions that a class has but leaves to its descendants to publish, by name; a catalogue knows those
// of its parent too. A class that shows some of them says which, in its own order:
//
//     return Publish(DefineClass<TEdit, TCustomEdit>("TEdit"), EditProperties(), "Anchors AutoSelect AutoSize ...");
class PropertyCatalogue {
  public:
    explicit PropertyCatalogue(const PropertyCatalogue* parent = nullptr) : parent_(parent) {}

    PropertyCatalogue& Add(PropertyInfo info) {
        index_.Insert(info.Name, static_cast<uint32_t>(properties_.size()));
        properties_.push_back(std::move(info));
        return *this;
    }
    template <class G, class S>
    PropertyCatalogue& Add(AnsiString name, G getter, S setter) {
        return Add(Property(std::move(name), getter, setter));
    }
    template <class E, class C>
    PropertyCatalogue& Event(AnsiString name, E C::*member) {
        return Add(EventProperty(std::move(name), member));
    }
    // The two below speak of the property added last.
    template <class V>
    PropertyCatalogue& Default(V value) {
        properties_.back().HasDefault = true;
        if constexpr (property_detail::IsSet<V>::value)
            properties_.back().Default = static_cast<int64_t>(value.Bits());
        else
            properties_.back().Default = static_cast<int64_t>(value);
        return *this;
    }
    template <class T>
    PropertyCatalogue& Stored(bool (T::*rule)() const) {
        properties_.back().Stored = [rule](const TObject& object) { return (static_cast<const T&>(object).*rule)(); };
        return *this;
    }

    // Raises EPropertyError for a name that nobody added: a mistake in a class's list.
    const PropertyInfo& operator[](std::string_view name) const;
    // The same definition with another default.
    template <class V>
    PropertyInfo WithDefault(std::string_view name, V value) const {
        PropertyInfo info = (*this)[name];
        info.HasDefault = true;
        if constexpr (property_detail::IsSet<V>::value)
            info.Default = static_cast<int64_t>(value.Bits());
        else
            info.Default = static_cast<int64_t>(value);
        return info;
    }

  private:
    const PropertyCatalogue* parent_;
    std::deque<PropertyInfo> properties_;
    NameIndex index_;
};

// Publishes the named properties (separated by blanks) in this order.
template <class T>
ClassBuilder<T> Publish(ClassBuilder<T> builder, const PropertyCatalogue& catalogue, std::string_view names) {
    while (!names.empty()) {
        const size_t blank = names.find(' ');
        if (const std::string_view name = names.substr(0, blank); !name.empty()) builder.Published(catalogue[name]);
        names = blank == std::string_view::npos ? std::string_view() : names.substr(blank + 1);
    }
    return builder;
}

// The properties of TControl and TWinControl that descendants publish.
const PropertyCatalogue& ControlProperties();
const PropertyCatalogue& WinControlProperties();

}  // namespace vyn
