#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <typeindex>

#include "platform/objects/event.h"
#include "platform/objects/object.h"
#include "platform/objects/type_info.h"
#include "platform/values/currency.h"
#include "platform/values/date_time.h"
#include "platform/values/variant.h"

namespace vyn {

class ClassInfo;
class TPersistent;

// What a published property holds; decides how it is stored and how it is set by name.
enum class PropertyKind : uint8_t {
    Integer,      // 32 bits, perhaps with named values (Integer)
    Int64,        //
    Character,    // one byte of text
    Enumeration,  // Enum; a boolean is the enumeration False, True
    Set,          // of Enum
    Float,        // real numbers, currencies and dates
    String,       //
    WideText,     //
    Variant,      //
    Class,        // a persistent part, or a reference to a component
    Method,       // an event
};

// A method of a form class that stored event properties may name.
struct MethodInfo {
    AnsiString Name;
    std::type_index Signature;
    std::function<std::shared_ptr<const EventHandler>(TObject& instance)> Bind;
};

// Reads and writes one property of an object. Only the pair that suits the property's kind is defined; the others
// raise EPropertyError. A getter never changes the object.
class PropertyAccessor {
  public:
    virtual ~PropertyAccessor() = default;
    virtual int64_t GetOrdinal(const TObject& object) const;
    virtual void SetOrdinal(TObject& object, int64_t value) const;
    virtual long double GetFloat(const TObject& object) const;
    virtual void SetFloat(TObject& object, long double value) const;
    virtual AnsiString GetString(const TObject& object) const;
    virtual void SetString(TObject& object, AnsiString value) const;
    virtual WideString GetWideString(const TObject& object) const;
    virtual void SetWideString(TObject& object, WideString value) const;
    virtual Variant GetVariant(const TObject& object) const;
    virtual void SetVariant(TObject& object, Variant value) const;
    virtual TPersistent* GetObject(const TObject& object) const;
    // Raises EInvalidCast when the value is of another class.
    virtual void SetObject(TObject& object, TPersistent* value) const;
    virtual const EventBase& GetEvent(const TObject& object) const;
    virtual void ClearEvent(TObject& object) const;
    // Raises EPropertyError when the method's arguments differ from the event's.
    virtual void BindEvent(TObject& object, const MethodInfo& method, TObject& instance) const;
    virtual void BindEventSenderOnly(TObject& object, AnsiString name, std::function<void(TObject*)> call) const;
    virtual void CopyEvent(TObject& object, const EventBase& event) const;
};

// One published property: its name, its kind, and the rules of when it is stored.
struct PropertyInfo {
    AnsiString Name;
    PropertyKind Kind = PropertyKind::Integer;
    const EnumType* Enum = nullptr;         // of Enumeration and Set
    const IntegerType* Integer = nullptr;   // of Integer with named values
    const ClassInfo& (*Class)() = nullptr;  // of Class: the class that the value descends from
    bool ReadOnly = false;                  // no setter: never stored unless it is a persistent part
    bool HasDefault = false;                // for ordinals and sets: the value that is not stored
    int64_t Default = 0;
    std::function<bool(const TObject&)> Stored;  // none: always
    std::shared_ptr<const PropertyAccessor> Accessor;

    bool IsStored(const TObject& object) const { return !Stored || Stored(object); }
    const PropertyAccessor* operator->() const { return Accessor.get(); }
};

namespace property_detail {

const TObject* AsObject(const TPersistent* persistent);
[[noreturn]] void RaiseReadOnlyProperty(const TObject& object);
void RequirePropertyClass(const TObject& value, const ClassInfo& wanted);
void RequireMethodSignature(const MethodInfo& method, const std::type_info& wanted);

template <class T>
struct GetterTraits;
template <class R, class C>
struct GetterTraits<R (C::*)() const> {
    using Class = C;
    using Value = std::remove_cv_t<std::remove_reference_t<R>>;
};
template <class R, class C>
struct GetterTraits<R (C::*)()> {
    using Class = C;
    using Value = std::remove_cv_t<std::remove_reference_t<R>>;
};
template <class R, class C>
requires(!std::is_function_v<R>) struct GetterTraits<R C::*> {
    using Class = C;
    using Value = std::remove_cv_t<R>;
};

template <class T>
struct IsSet : std::false_type {};
template <class E>
struct IsSet<Set<E>> : std::true_type {};

template <class V>
constexpr bool HasEnumType = requires {
    { TypeInfoOf(TypeTag<V>{}) } -> std::same_as<const EnumType&>;
};
template <class V>
constexpr bool HasIntegerType = requires {
    { TypeInfoOf(TypeTag<V>{}) } -> std::same_as<const IntegerType&>;
};

struct NoSetter {};

// C: the class that declares the getter; G: member function or data member; S: member function, data member or none.
template <class C, class G, class S>
class TypedAccessor final : public PropertyAccessor {
    using V = typename GetterTraits<G>::Value;

  public:
    TypedAccessor(G getter, S setter) : getter_(getter), setter_(setter) {}

    int64_t GetOrdinal(const TObject& object) const override {
        if constexpr (IsSet<V>::value)
            return static_cast<int64_t>(Get(object).Bits());
        else if constexpr (std::is_integral_v<V> || std::is_enum_v<V>)
            return static_cast<int64_t>(Get(object));
        else
            return PropertyAccessor::GetOrdinal(object);
    }
    void SetOrdinal(TObject& object, int64_t value) const override {
        if constexpr (IsSet<V>::value)
            Put(object, V::FromBits(static_cast<uint64_t>(value)));
        else if constexpr (std::is_integral_v<V> || std::is_enum_v<V>)
            Put(object, static_cast<V>(value));
        else
            PropertyAccessor::SetOrdinal(object, value);
    }
    long double GetFloat(const TObject& object) const override {
        if constexpr (std::is_same_v<V, TDateTime>)
            return Get(object).Val;
        else if constexpr (std::is_same_v<V, Currency>)
            return Get(object).ToExtended();
        else if constexpr (std::is_floating_point_v<V>)
            return Get(object);
        else
            return PropertyAccessor::GetFloat(object);
    }
    void SetFloat(TObject& object, long double value) const override {
        if constexpr (std::is_same_v<V, TDateTime>)
            Put(object, TDateTime{static_cast<double>(value)});
        else if constexpr (std::is_same_v<V, Currency>)
            Put(object, Currency(value));
        else if constexpr (std::is_floating_point_v<V>)
            Put(object, static_cast<V>(value));
        else
            PropertyAccessor::SetFloat(object, value);
    }
    AnsiString GetString(const TObject& object) const override {
        if constexpr (std::is_same_v<V, AnsiString>)
            return Get(object);
        else
            return PropertyAccessor::GetString(object);
    }
    void SetString(TObject& object, AnsiString value) const override {
        if constexpr (std::is_same_v<V, AnsiString>)
            Put(object, std::move(value));
        else
            PropertyAccessor::SetString(object, std::move(value));
    }
    WideString GetWideString(const TObject& object) const override {
        if constexpr (std::is_same_v<V, WideString>)
            return Get(object);
        else
            return PropertyAccessor::GetWideString(object);
    }
    void SetWideString(TObject& object, WideString value) const override {
        if constexpr (std::is_same_v<V, WideString>)
            Put(object, std::move(value));
        else
            PropertyAccessor::SetWideString(object, std::move(value));
    }
    Variant GetVariant(const TObject& object) const override {
        if constexpr (std::is_same_v<V, Variant>)
            return Get(object);
        else
            return PropertyAccessor::GetVariant(object);
    }
    void SetVariant(TObject& object, Variant value) const override {
        if constexpr (std::is_same_v<V, Variant>)
            Put(object, std::move(value));
        else
            PropertyAccessor::SetVariant(object, std::move(value));
    }
    TPersistent* GetObject(const TObject& object) const override {
        if constexpr (std::is_pointer_v<V>)
            return Get(object);
        else
            return PropertyAccessor::GetObject(object);
    }
    void SetObject(TObject& object, TPersistent* value) const override {
        if constexpr (std::is_pointer_v<V> && !std::is_same_v<S, NoSetter>) {
            using Target = std::remove_pointer_t<V>;
            if (value) RequirePropertyClass(*AsObject(value), Target::StaticClass());
            Put(object, static_cast<V>(value));
        } else {
            PropertyAccessor::SetObject(object, value);
        }
    }
    const EventBase& GetEvent(const TObject& object) const override {
        if constexpr (std::is_base_of_v<EventBase, V>)
            return Get(object);
        else
            return PropertyAccessor::GetEvent(object);
    }
    void ClearEvent(TObject& object) const override {
        if constexpr (std::is_base_of_v<EventBase, V>)
            Put(object, V{});
        else
            PropertyAccessor::ClearEvent(object);
    }
    void BindEvent(TObject& object, const MethodInfo& method, TObject& instance) const override {
        if constexpr (std::is_base_of_v<EventBase, V>) {
            RequireMethodSignature(method, typeid(typename V::Signature));
            V event;
            event.SetHandler(method.Bind(instance));
            Put(object, std::move(event));
        } else {
            PropertyAccessor::BindEvent(object, method, instance);
        }
    }
    void BindEventSenderOnly(TObject& object, AnsiString name, std::function<void(TObject*)> call) const override {
        if constexpr (std::is_base_of_v<EventBase, V>) {
            V event;
            event.BindSenderOnly(std::move(name), std::move(call));
            Put(object, std::move(event));
        } else {
            PropertyAccessor::BindEventSenderOnly(object, std::move(name), std::move(call));
        }
    }
    void CopyEvent(TObject& object, const EventBase& event) const override {
        if constexpr (std::is_base_of_v<EventBase, V>)
            Put(object, static_cast<const V&>(event));
        else
            PropertyAccessor::CopyEvent(object, event);
    }

  private:
    decltype(auto) Get(const TObject& object) const {
        auto& self = const_cast<C&>(static_cast<const C&>(object));
        if constexpr (std::is_member_object_pointer_v<G>)
            return static_cast<const V&>(self.*getter_);
        else
            return (self.*getter_)();
    }
    template <class T>
    void Put(TObject& object, T&& value) const {
        auto& self = static_cast<C&>(object);
        if constexpr (std::is_same_v<S, NoSetter>)
            RaiseReadOnlyProperty(object);
        else if constexpr (std::is_member_object_pointer_v<S>)
            self.*setter_ = std::forward<T>(value);
        else
            (self.*setter_)(std::forward<T>(value));
    }
    [[no_unique_address]] G getter_;
    [[no_unique_address]] S setter_;
};

}  // namespace property_detail
}  // namespace vyn
