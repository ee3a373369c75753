#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <string_view>
#include <variant>

#include "platform/text/ansi_string.h"
#include "platform/values/currency.h"
#include "platform/values/date_time.h"

// A value whose type is known when the program runs. Held by value; copies are deep; moving never raises and leaves
// the source in a valid state. Not locked: one thread at a time.
//
// Conversions (As...) raise EVariantError:
//   "Invalid variant type conversion"                                           from Null, to any type
//   "Could not convert variant of type (String) into type (Integer)"           from a text that says no such value
//   "Overflow while converting variant of type (Double) into type (Integer)"   from a value out of the type's range
// Empty converts to 0, False, the date 0 and the empty text. Texts are read and written by FormatSettings().
namespace vyn {

enum VarType : std::uint16_t {
    varEmpty = 0,
    varNull = 1,
    varSmallint = 2,
    varInteger = 3,
    varSingle = 4,
    varDouble = 5,
    varCurrency = 6,
    varDate = 7,
    varOleStr = 8,
    varBoolean = 11,
    varByte = 17,
    varString = 256,
};

class Variant {
  public:
    Variant() noexcept = default;
    static Variant Null() noexcept;

    // bool, unsigned char (byte), char (a text of one character); what fits 16 signed bits by its type is a smallint,
    // every other number an integer when its value fits 32 bits, else a double.
    template <std::integral T>
    Variant(T value) noexcept(!std::same_as<T, char>);
    template <std::floating_point T>
    Variant(T value) noexcept;
    Variant(Currency value) noexcept : value_(value) {}
    Variant(TDateTime value) noexcept : value_(value) {}
    Variant(const char* text) : value_(AnsiString(text ? text : "")) {}
    Variant(const char16_t* text) : value_(WideString(text ? text : u"")) {}
    Variant(AnsiString text) noexcept : value_(std::move(text)) {}
    Variant(std::string_view text) : value_(AnsiString(text)) {}
    Variant(WideString text) noexcept : value_(std::move(text)) {}
    Variant(const void*) = delete;  // a pointer is no value, and no boolean either
    Variant(std::nullptr_t) = delete;

    VarType Type() const noexcept;
    bool IsEmpty() const noexcept { return Type() == varEmpty; }
    bool IsNull() const noexcept { return Type() == varNull; }
    bool IsText() const noexcept { return Type() == varString || Type() == varOleStr; }
    bool IsNumeric() const noexcept;  // the integers, byte, boolean, the floating types and currency
    bool IsOrdinal() const noexcept;  // smallint, integer, byte, boolean
    bool IsFloat() const noexcept;    // single, double, currency
    // The held value itself, or null when another type is held: for reading where it stands.
    const double* IfDouble() const noexcept { return std::get_if<double>(&value_); }
    const std::int32_t* IfInteger() const noexcept { return std::get_if<std::int32_t>(&value_); }
    void Clear() noexcept { value_.emplace<std::monostate>(); }

    // Doubles and singles with 15 and 7 significant digits, currency with its decimals, booleans as True and False,
    // dates as DateTimeToStr; wide text that the code page lacks comes as '?'.
    AnsiString AsString() const;
    WideString AsWideString() const;
    AnsiString AsText() const;  // as AsString, but Null gives the empty text

    // Fractions round to the nearest integer, halves to the even one; True is -1; a date counts its days. A text may be
    // an integer, hexadecimal ($FF), or a number with a fraction.
    std::int16_t AsSmallint() const;
    std::int32_t AsInteger() const;
    std::int64_t AsInt64() const;
    std::uint8_t AsByte() const;  // True is 255
    float AsSingle() const;
    double AsDouble() const;
    Currency AsCurrency() const;
    // A text is read as a date and time, a time, or else as a number of days.
    TDateTime AsDateTime() const;
    // Numbers: other than 0. A text: True or False in any case, or a number.
    bool AsBoolean() const;

    // The same value as another type. To varEmpty or varNull everything converts, losing its value; Null converts to
    // those alone.
    Variant ChangeType(VarType type) const;

    // As VarSameValue.
    friend bool operator==(const Variant& a, const Variant& b);

  private:
    struct NullTag {};
    using Storage = std::variant<std::monostate, NullTag, std::int16_t, std::int32_t, float, double, Currency,
                                 TDateTime, WideString, bool, std::uint8_t, AnsiString>;

    [[noreturn]] void RaiseCannotConvert(VarType type) const;
    [[noreturn]] void RaiseOverflow(VarType type) const;
    void RequireValue() const;
    long double AsNumber(VarType forType) const;
    std::int64_t AsRounded(VarType forType, std::int64_t lowest, std::int64_t highest) const;

    Storage value_;
};

static_assert(sizeof(Variant) <= 48);

template <std::integral T>
Variant::Variant(T value) noexcept(!std::same_as<T, char>) {
    if constexpr (std::same_as<T, bool> || std::same_as<T, unsigned char>) {
        value_.emplace<T>(value);
    } else if constexpr (std::same_as<T, char>) {
        value_.emplace<AnsiString>(1, value);
    } else if constexpr (std::signed_integral<T> && sizeof(T) <= sizeof(std::int16_t)) {
        value_.emplace<std::int16_t>(static_cast<std::int16_t>(value));
    } else {
        using Limits = std::numeric_limits<std::int32_t>;
        if (value <= static_cast<std::common_type_t<T, std::int32_t>>(Limits::max()) &&
            (std::unsigned_integral<T> || value >= static_cast<T>(Limits::min())))
            value_.emplace<std::int32_t>(static_cast<std::int32_t>(value));
        else
            value_.emplace<double>(static_cast<double>(value));
    }
}

template <std::floating_point T>
Variant::Variant(T value) noexcept {
    if constexpr (std::same_as<T, float>)
        value_.emplace<float>(value);
    else
        value_.emplace<double>(static_cast<double>(value));
}

AnsiString VarToStr(const Variant& value);      // Null and Empty give the empty text
WideString VarToWideStr(const Variant& value);  // likewise

// Empty equals Empty only, Null equals Null only. Two texts are compared byte for byte. A number, date or boolean and a
// text: the text is converted to the other's type, and a text that cannot be is different. Numbers, dates and booleans
// among each other by their number (True is -1); two amounts exactly. Never raises.
bool VarSameValue(const Variant& a, const Variant& b);

enum TVariantRelationship { vrEqual, vrLessThan, vrGreaterThan, vrNotEqual };

// The order by the same rules; vrNotEqual where there is none (Null or Empty against a value, a text that is no
// number).
TVariantRelationship VarCompareValue(const Variant& a, const Variant& b);

// "Empty", "Null", "Smallint", "Integer", "Single", "Double", "Currency", "Date", "OleStr", "Boolean", "Byte",
// "String".
AnsiString VarTypeName(VarType type);

}  // namespace vyn
