#include "platform/values/variant.h"

#include <cmath>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace variant_detail {

constexpr int kSingleDigits = 7;

// What a text says as a number: an integer, hexadecimal ($FF), or a number with the settings' separator.
bool TextToNumber(std::string_view text, long double& number) {
    std::int64_t integer = 0;
    if (TryStrToInt64(Trim(text), integer)) {
        number = static_cast<long double>(integer);
        return true;
    }
    // Read as a double: a text's number equals the double of the same text.
    double real = 0;
    if (!TryStrToFloat(text, real)) return false;
    number = real;
    return true;
}

bool TextToBoolean(std::string_view text, bool& value) {
    const AnsiString trimmed = Trim(text);
    if (SameText(trimmed, "True") || SameText(trimmed, "False")) {
        value = SameText(trimmed, "True");
        return true;
    }
    long double number = 0;
    if (!TextToNumber(trimmed, number)) return false;
    value = number != 0;
    return true;
}

bool TextToDate(std::string_view text, double& days) {
    if (TryStrToDateTime(text, days)) return true;
    long double number = 0;
    if (!TextToNumber(text, number)) return false;
    days = static_cast<double>(number);
    return true;
}

// Half to even, whatever rounding mode the process is in.
long double RoundHalfToEven(long double value) {
    const long double down = std::floor(value);
    const long double rest = value - down;
    if (rest != 0.5L) return rest < 0.5L ? down : down + 1;
    return std::fmod(down, 2.0L) == 0 ? down : down + 1;
}

TVariantRelationship Related(std::partial_ordering order) {
    if (order == std::partial_ordering::equivalent) return vrEqual;
    if (order == std::partial_ordering::less) return vrLessThan;
    return order == std::partial_ordering::greater ? vrGreaterThan : vrNotEqual;
}

TVariantRelationship RelatedBySign(int comparison) {
    return comparison == 0 ? vrEqual : comparison < 0 ? vrLessThan : vrGreaterThan;
}

TVariantRelationship Reversed(TVariantRelationship relationship) {
    switch (relationship) {
        case vrLessThan:
            return vrGreaterThan;
        case vrGreaterThan:
            return vrLessThan;
        case vrEqual:
        case vrNotEqual:
            break;
    }
    return relationship;
}

TVariantRelationship CompareTexts(const Variant& a, const Variant& b) {
    if (a.Type() == varString && b.Type() == varString) return RelatedBySign(a.AsString().compare(b.AsString()));
    return RelatedBySign(a.AsWideString().compare(b.AsWideString()));
}

// The number of a value that is neither text nor without value; booleans as -1 and 0.
long double NumberOf(const Variant& value) {
    return value.Type() == varCurrency ? value.AsCurrency().ToExtended() : value.AsDouble();
}

TVariantRelationship CompareWithText(const Variant& value, const AnsiString& text) {
    if (value.Type() == varBoolean) {
        bool said = false;
        if (!TextToBoolean(text, said)) return vrNotEqual;
        const int left = value.AsBoolean() ? -1 : 0;
        return RelatedBySign(left - (said ? -1 : 0));
    }
    if (value.Type() == varDate) {
        double days = 0;
        return TextToDate(text, days) ? Related(value.AsDateTime().Val <=> days) : vrNotEqual;
    }
    if (value.Type() == varCurrency) {
        Currency amount;
        if (TryStrToCurr(text, amount)) return Related(value.AsCurrency() <=> amount);
    }
    long double number = 0;
    if (!TextToNumber(text, number)) return vrNotEqual;
    if (value.Type() == varSingle) number = static_cast<float>(number);
    return Related(NumberOf(value) <=> number);
}

}  // namespace variant_detail

Variant Variant::Null() noexcept {
    Variant result;
    result.value_.emplace<NullTag>();
    return result;
}

VarType Variant::Type() const noexcept {
    constexpr VarType kTypes[] = {varEmpty,    varNull, varSmallint, varInteger, varSingle, varDouble,
                                  varCurrency, varDate, varOleStr,   varBoolean, varByte,   varString};
    static_assert(std::size(kTypes) == std::variant_size_v<Storage>);
    return kTypes[value_.index()];
}

bool Variant::IsOrdinal() const noexcept {
    const VarType type = Type();
    return type == varSmallint || type == varInteger || type == varByte || type == varBoolean;
}

bool Variant::IsFloat() const noexcept {
    const VarType type = Type();
    return type == varSingle || type == varDouble || type == varCurrency;
}

bool Variant::IsNumeric() const noexcept { return IsOrdinal() || IsFloat(); }

void Variant::RaiseCannotConvert(VarType type) const {
    throw EVariantError("Could not convert variant of type (" + VarTypeName(Type()) + ") into type (" +
                        VarTypeName(type) + ")");
}

void Variant::RaiseOverflow(VarType type) const {
    throw EVariantError("Overflow while converting variant of type (" + VarTypeName(Type()) + ") into type (" +
                        VarTypeName(type) + ")");
}

void Variant::RequireValue() const {
    if (IsNull()) throw EVariantError("Invalid variant type conversion");
}

AnsiString Variant::AsString() const {
    RequireValue();
    switch (Type()) {
        case varEmpty:
        case varNull:
            return {};
        case varSmallint:
            return IntToStr(std::get<std::int16_t>(value_));
        case varInteger:
            return IntToStr(std::get<std::int32_t>(value_));
        case varByte:
            return IntToStr(std::get<std::uint8_t>(value_));
        case varSingle:
            return FloatToStrF(std::get<float>(value_), ffGeneral, variant_detail::kSingleDigits, 0);
        case varDouble:
            return FloatToStr(std::get<double>(value_));
        case varCurrency:
            return CurrToStr(std::get<Currency>(value_));
        case varDate: {
            const double days = std::get<TDateTime>(value_).Val;
            Word year = 0;
            Word month = 0;
            Word day = 0;
            if (!DecodeDate(days, year, month, day)) RaiseOverflow(varString);
            return DateTimeToStr(days);
        }
        case varBoolean:
            return std::get<bool>(value_) ? "True" : "False";
        case varOleStr:
            return WideToAnsi(std::get<WideString>(value_));
        case varString:
            return std::get<AnsiString>(value_);
    }
    return {};
}

WideString Variant::AsWideString() const {
    if (const auto* text = std::get_if<WideString>(&value_)) return *text;
    return AnsiToWide(AsString());
}

AnsiString Variant::AsText() const { return IsNull() ? AnsiString() : AsString(); }

long double Variant::AsNumber(VarType forType) const {
    RequireValue();
    switch (Type()) {
        case varEmpty:
        case varNull:
            return 0;
        case varSmallint:
            return std::get<std::int16_t>(value_);
        case varInteger:
            return std::get<std::int32_t>(value_);
        case varByte:
            return std::get<std::uint8_t>(value_);
        case varSingle:
            return std::get<float>(value_);
        case varDouble:
            return std::get<double>(value_);
        case varCurrency:
            return std::get<Currency>(value_).ToExtended();
        case varDate:
            return std::get<TDateTime>(value_).Val;
        case varBoolean:
            return std::get<bool>(value_) ? -1 : 0;
        case varOleStr:
        case varString:
            break;
    }
    long double number = 0;
    if (!variant_detail::TextToNumber(AsString(), number)) RaiseCannotConvert(forType);
    return number;
}

std::int64_t Variant::AsRounded(VarType forType, std::int64_t lowest, std::int64_t highest) const {
    const long double rounded = variant_detail::RoundHalfToEven(AsNumber(forType));
    if (!(rounded >= static_cast<long double>(lowest) && rounded <= static_cast<long double>(highest)))
        RaiseOverflow(forType);
    return static_cast<std::int64_t>(rounded);
}

std::int16_t Variant::AsSmallint() const {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(AsRounded(varSmallint, Limits::min(), Limits::max()));
}

std::int32_t Variant::AsInteger() const {
    if (const auto* integer = std::get_if<std::int32_t>(&value_)) return *integer;
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(AsRounded(varInteger, Limits::min(), Limits::max()));
}

std::int64_t Variant::AsInt64() const {
    using Limits = std::numeric_limits<std::int64_t>;
    return AsRounded(varInteger, Limits::min(), Limits::max());
}

std::uint8_t Variant::AsByte() const {
    using Limits = std::numeric_limits<std::uint8_t>;
    if (const auto* boolean = std::get_if<bool>(&value_)) return *boolean ? Limits::max() : std::uint8_t{0};
    return static_cast<std::uint8_t>(AsRounded(varByte, Limits::min(), Limits::max()));
}

float Variant::AsSingle() const {
    const long double number = AsNumber(varSingle);
    if (std::isfinite(number) && std::fabs(number) > std::numeric_limits<float>::max()) RaiseOverflow(varSingle);
    return static_cast<float>(number);
}

double Variant::AsDouble() const { return static_cast<double>(AsNumber(varDouble)); }

Currency Variant::AsCurrency() const {
    if (const auto* amount = std::get_if<Currency>(&value_)) return *amount;
    if (IsText()) {
        // Straight from the text, so that no amount loses a decimal on the way.
        Currency amount;
        if (TryStrToCurr(AsString(), amount)) return amount;
    }
    const long double number = AsNumber(varCurrency);
    try {
        return Currency(number);
    } catch (const EOverflow&) {
        RaiseOverflow(varCurrency);
    }
}

TDateTime Variant::AsDateTime() const {
    if (!IsText()) return TDateTime(static_cast<double>(AsNumber(varDate)));
    double days = 0;
    if (!variant_detail::TextToDate(AsString(), days)) RaiseCannotConvert(varDate);
    return TDateTime(days);
}

bool Variant::AsBoolean() const {
    if (!IsText()) return AsNumber(varBoolean) != 0;
    bool value = false;
    if (!variant_detail::TextToBoolean(AsString(), value)) RaiseCannotConvert(varBoolean);
    return value;
}

Variant Variant::ChangeType(VarType type) const {
    switch (type) {
        case varEmpty:
            return {};
        case varNull:
            return Null();
        case varSmallint:
            return AsSmallint();
        case varInteger:
            return AsInteger();
        case varSingle:
            return AsSingle();
        case varDouble:
            return AsDouble();
        case varCurrency:
            return AsCurrency();
        case varDate:
            return AsDateTime();
        case varOleStr:
            return AsWideString();
        case varBoolean:
            return AsBoolean();
        case varByte:
            return AsByte();
        case varString:
            return AsString();
    }
    RaiseCannotConvert(type);  // a number that is no type, as a damaged file may hold
}

bool operator==(const Variant& a, const Variant& b) { return VarSameValue(a, b); }

AnsiString VarToStr(const Variant& value) { return value.AsText(); }

WideString VarToWideStr(const Variant& value) { return value.IsNull() ? WideString() : value.AsWideString(); }

bool VarSameValue(const Variant& a, const Variant& b) { return VarCompareValue(a, b) == vrEqual; }

TVariantRelationship VarCompareValue(const Variant& a, const Variant& b) {
    namespace own = variant_detail;
    const bool withoutValue = a.IsEmpty() || a.IsNull() || b.IsEmpty() || b.IsNull();
    if (withoutValue) return a.Type() == b.Type() ? vrEqual : vrNotEqual;
    if (a.IsText() && b.IsText()) return own::CompareTexts(a, b);
    if (b.IsText()) return own::CompareWithText(a, b.AsString());
    if (a.IsText()) return own::Reversed(own::CompareWithText(b, a.AsString()));
    if (a.Type() == varCurrency && b.Type() == varCurrency) return own::Related(a.AsCurrency() <=> b.AsCurrency());
    // An amount against a double: the double's nearest amount is what is meant, 0.1 has no exact one.
    if (a.Type() == varCurrency || b.Type() == varCurrency)
        return own::Related(static_cast<double>(own::NumberOf(a)) <=> static_cast<double>(own::NumberOf(b)));
    return own::Related(own::NumberOf(a) <=> own::NumberOf(b));
}

AnsiString VarTypeName(VarType type) {
    switch (type) {
        case varEmpty:
            return "Empty";
        case varNull:
            return "Null";
        case varSmallint:
            return "Smallint";
        case varInteger:
            return "Integer";
        case varSingle:
            return "Single";
        case varDouble:
            return "Double";
        case varCurrency:
            return "Currency";
        case varDate:
            return "Date";
        case varOleStr:
            return "OleStr";
        case varBoolean:
            return "Boolean";
        case varByte:
            return "Byte";
        case varString:
            return "String";
    }
    return "Unknown";
}

}  // namespace vyn
