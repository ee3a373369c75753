#include <charconv>
#include <cmath>
#include <cstring>

#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "platform/values/currency.h"
#include "platform/values/date_time.h"
#include "providers/postgresql/connection.h"

// Values on their way to the server and back: as text, and as the server keeps them.
namespace vyn::postgresql_provider {

constexpr double kServerEpoch = 36526;  // 2000-01-01
constexpr int64_t kMicrosecondsPerDay = 86400000000;
constexpr int kMoneyPerCent = 100;  // the server's money counts hundredths, rows ten-thousandths
constexpr int kDigitGroup = 10000;
constexpr int kMostDigitsOfAmounts = 14;  // before the decimal separator
constexpr int kMostDecimalsOfAmounts = 4;
constexpr int kMostGroupsOfAmounts = 3;  // of four digits, behind the first
constexpr int kModifierHeader = 4;

// --- to the server

Oid TypeSaid(const ProviderValue& value) {
    switch (value.Type) {
        case ftSmallint:
        case ftWord:
        case ftInteger:
        case ftAutoInc:
        case ftLargeint:
            return kInt8;
        case ftBoolean:
            return kBool;
        case ftFloat:
            return kFloat8;
        case ftCurrency:
        case ftBCD:
            return kNumeric;
        case ftDate:
            return kDate;
        case ftTime:
            return kTime;
        case ftDateTime:
            return kTimestamp;
        default:
            return ColumnKindOf(value.Type) == ColumnKind::Bytes ? kBytea : kText;
    }
}

std::string NumberText(double number) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return std::string(digits, end);
}

std::string TextOf(const ProviderValue& value) {
    const Cell& cell = value.Value;
    if (cell.IsInteger()) {
        if (value.Type != ftCurrency && value.Type != ftBCD) return std::to_string(cell.AsInteger());
        return CurrToStr(Currency::FromScaled(cell.AsInteger()), InvariantFormatSettings());
    }
    if (cell.IsReal()) {
        const char* mask = value.Type == ftDate       ? "yyyy-mm-dd"
                           : value.Type == ftTime     ? "hh:nn:ss.zzz"
                           : value.Type == ftDateTime ? "yyyy-mm-dd hh:nn:ss.zzz"
                                                      : nullptr;
        return mask ? FormatDateTime(mask, cell.AsReal(), InvariantFormatSettings()) : NumberText(cell.AsReal());
    }
    return std::string(cell.AsBytes());
}

Arguments::Arguments(const std::vector<ProviderValue>& values, Types types) {
    const size_t count = values.size();
    texts_.reserve(count);
    for (const ProviderValue& value : values) {
        const bool bytes = ColumnKindOf(value.Type) == ColumnKind::Bytes;
        texts_.push_back(value.Value.IsNull() ? std::string() : TextOf(value));
        if (!bytes && texts_.back().find('\0') != std::string::npos)
            throw EDatabaseError("The database cannot hold a NUL character in a text or name");
        values_.push_back(value.Value.IsNull() ? nullptr : texts_.back().data());
        lengths_.push_back(static_cast<int>(texts_.back().size()));
        formats_.push_back(bytes ? kBinaryFormat : kTextFormat);
        types_.push_back(bytes ? kBytea : types == Types::Said ? TypeSaid(value) : InvalidOid);
        hasFractions_ = hasFractions_ || (!value.Value.IsNull() &&
                                          (value.Type == ftFloat || value.Type == ftCurrency || value.Type == ftBCD));
    }
}

// --- and back

bool IsBinaryKnown(Oid type) {
    switch (type) {
        case kBool:
        case kBytea:
        case kName:
        case kInt8:
        case kInt2:
        case kInt4:
        case kText:
        case kOid:
        case kJson:
        case kXml:
        case kFloat4:
        case kFloat8:
        case kBpchar:
        case kVarchar:
        case kDate:
        case kTime:
        case kTimestamp:
        case kNumeric:
            return true;
        default:
            return false;
    }
}

TFieldType FieldTypeOf(Oid type, int modifier, int& size, int& precision) {
    size = precision = 0;
    switch (type) {
        case kBool:
            return ftBoolean;
        case kInt2:
            return ftSmallint;
        case kInt4:
            return ftInteger;
        case kInt8:
        case kOid:
            return ftLargeint;
        case kFloat4:
        case kFloat8:
            return ftFloat;
        case kMoney:
            return ftCurrency;
        case kNumeric: {
            if (modifier < kModifierHeader) return ftFloat;
            const int decimals = (modifier - kModifierHeader) & 0x7FF;
            precision = ((modifier - kModifierHeader) >> 16) & 0xFFFF;
            // What amounts cannot keep exactly is a real number.
            const bool fits = decimals <= kMostDecimalsOfAmounts && precision - decimals <= kMostDigitsOfAmounts;
            return fits ? ftCurrency : ftFloat;
        }
        case kDate:
            return ftDate;
        case kTime:
            return ftTime;
        case kTimestamp:
        case kTimestampTz:
            return ftDateTime;
        case kBytea:
            return ftBlob;
        case kVarchar:
        case kBpchar:
            size = modifier >= kModifierHeader ? modifier - kModifierHeader : 0;
            return ftString;
        default:
            return ftString;
    }
}

template <class T>
T BigEndian(const char* bytes) {
    uint64_t value = 0;
    for (size_t i = 0; i < sizeof(T); ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return static_cast<T>(value);
}

template <class To, class From>
To SameBits(From value) {
    To result;
    static_assert(sizeof result == sizeof value);
    std::memcpy(&result, &value, sizeof result);
    return result;
}

// As short as it is written: 0.1 is not 0.100000001.
double OfSingle(float value) {
    if (!std::isfinite(value)) return value;
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    double result = value;
    std::from_chars(digits, end, result);
    return result;
}

void PutDays(RowStore& rows, int64_t days, int64_t microseconds) {
    const double date = static_cast<double>(days) + kServerEpoch;
    // What the calendar lacks is shown as none: infinity, years before the first.
    if (date < kFirstDate || date > kLastDate) {
        rows.PutNull();
        return;
    }
    rows.PutReal(JoinDateTime(date, static_cast<double>(microseconds) / static_cast<double>(kMicrosecondsPerDay)));
}

// Groups of four decimal digits, the first of which counts ten thousand to the power `weight`.
struct ServerNumber {
    explicit ServerNumber(const char* bytes)
        : count(BigEndian<int16_t>(bytes)),
          weight(BigEndian<int16_t>(bytes + 2)),
          sign(BigEndian<uint16_t>(bytes + 4)),
          groups(bytes + kHeader) {}
    static constexpr int kHeader = 8;
    static constexpr uint16_t kPositive = 0x0000, kNegative = 0x4000;
    bool IsNumber() const { return sign == kPositive || sign == kNegative; }
    int Group(int index) const { return index < 0 || index >= count ? 0 : BigEndian<int16_t>(groups + 2 * index); }
    int count, weight;
    uint16_t sign;
    const char* groups;
};

void PutAmount(RowStore& rows, const char* bytes) {
    const ServerNumber number(bytes);
    if (!number.IsNumber()) {
        rows.PutNull();
        return;
    }
    // Ten-thousandths are the group behind the separator. Columns that are amounts have no more digits than fit.
    int64_t amount = 0;
    constexpr int kBeyondAmounts = 100;
    if (number.weight > kMostGroupsOfAmounts ||
        (number.weight == kMostGroupsOfAmounts && number.Group(0) >= kBeyondAmounts))
        throw EDatabaseError("The database server sent a value that cannot be one");
    for (int place = number.weight; place >= -1; --place)
        amount = amount * kDigitGroup + number.Group(number.weight - place);
    if (number.weight < -1) amount = 0;
    rows.PutInteger(number.sign == ServerNumber::kNegative ? -amount : amount);
}

// A number that is too large for a real one is shown as none; one that is too small is zero.
void PutReal(RowStore& rows, std::string_view text, bool isLarge) {
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec == std::errc::result_out_of_range && isLarge)
        rows.PutNull();
    else
        rows.PutReal(read.ec == std::errc() ? value : 0);
}

void PutReal(RowStore& rows, const char* bytes) {
    const ServerNumber number(bytes);
    if (!number.IsNumber()) {
        rows.PutNull();
        return;
    }
    std::string text = number.sign == ServerNumber::kNegative ? "-0." : "0.";
    for (int i = 0; i < number.count; ++i) {
        const std::string digits = std::to_string(number.Group(i));
        text.append(4 - digits.size(), '0');
        text += digits;
    }
    text += "e" + std::to_string((number.weight + 1) * 4);
    PutReal(rows, text, number.weight > 0);
}

[[noreturn]] void RaiseNoValue() { throw EDatabaseError("The database server sent a value that cannot be one"); }

void RequireGroups(const ServerNumber& number) {
    for (int i = 0; i < number.count; ++i)
        if (number.Group(i) < 0 || number.Group(i) >= kDigitGroup) RaiseNoValue();
}

// A server that is none, or a line that spoils what it sends, may say anything.
void RequireLength(const char* bytes, int length, Oid type) {
    int wanted = length;
    switch (type) {
        case kBool:
            wanted = sizeof(char);
            break;
        case kInt2:
            wanted = sizeof(int16_t);
            break;
        case kInt4:
        case kOid:
        case kFloat4:
        case kDate:
            wanted = sizeof(int32_t);
            break;
        case kInt8:
        case kFloat8:
        case kTime:
        case kTimestamp:
            wanted = sizeof(int64_t);
            break;
        case kNumeric:
            wanted = ServerNumber::kHeader;
            if (length < wanted) break;
            wanted += 2 * std::max(ServerNumber(bytes).count, 0);
            if (length == wanted) RequireGroups(ServerNumber(bytes));
            break;
        default:
            break;
    }
    if (length != wanted) RaiseNoValue();
}

void PutBinary(RowStore& rows, const char* bytes, int length, Oid type, TFieldType fieldType) {
    RequireLength(bytes, length, type);
    switch (type) {
        case kBool:
            rows.PutInteger(*bytes != 0);
            return;
        case kInt2:
            rows.PutInteger(BigEndian<int16_t>(bytes));
            return;
        case kInt4:
            rows.PutInteger(BigEndian<int32_t>(bytes));
            return;
        case kOid:
            rows.PutInteger(BigEndian<uint32_t>(bytes));
            return;
        case kInt8:
            rows.PutInteger(BigEndian<int64_t>(bytes));
            return;
        case kFloat4:
            rows.PutReal(OfSingle(SameBits<float>(BigEndian<uint32_t>(bytes))));
            return;
        case kFloat8:
            rows.PutReal(SameBits<double>(BigEndian<uint64_t>(bytes)));
            return;
        case kNumeric:
            if (fieldType == ftCurrency)
                PutAmount(rows, bytes);
            else
                PutReal(rows, bytes);
            return;
        case kDate:
            PutDays(rows, BigEndian<int32_t>(bytes), 0);
            return;
        case kTime:
            rows.PutReal(static_cast<double>(BigEndian<int64_t>(bytes)) / static_cast<double>(kMicrosecondsPerDay));
            return;
        case kTimestamp: {
            const auto instant = BigEndian<int64_t>(bytes);
            int64_t days = instant / kMicrosecondsPerDay, rest = instant % kMicrosecondsPerDay;
            if (rest < 0) {
                rest += kMicrosecondsPerDay;
                --days;
            }
            PutDays(rows, days, rest);
            return;
        }
        default:
            rows.PutBytes({bytes, static_cast<size_t>(length)});
            return;
    }
}

int HexDigit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

void PutText(RowStore& rows, std::string_view text, Oid type, TFieldType fieldType) {
    switch (type) {
        case kBool:
            rows.PutInteger(text == "t");
            return;
        case kMoney: {
            std::string digits;
            for (char c : text)
                if ((c >= '0' && c <= '9') || c == '-') digits += c;
            // The server's reach further than amounts do.
            const int64_t cents = StrToInt64Def(digits, 0);
            if (cents > INT64_MAX / kMoneyPerCent || cents < INT64_MIN / kMoneyPerCent)
                rows.PutNull();
            else
                rows.PutInteger(cents * kMoneyPerCent);
            return;
        }
        case kBytea: {
            std::string bytes;
            for (size_t i = 2; i + 1 < text.size(); i += 2)
                bytes += static_cast<char>((HexDigit(text[i]) << 4 | HexDigit(text[i + 1])) & 0xFF);
            rows.PutBytes(bytes);
            return;
        }
        default:
            break;
    }
    switch (fieldType) {
        case ftCurrency: {
            Currency amount;
            if (TryStrToCurr(text, amount, InvariantFormatSettings()))
                rows.PutInteger(amount.Val);
            else
                rows.PutNull();
            return;
        }
        case ftDate:
        case ftTime:
        case ftDateTime: {
            TDateTime date;
            std::string iso = fieldType == ftTime ? "1899-12-30T" + std::string(text) : std::string(text);
            // The session's own time zone stands behind.
            const size_t zone = iso.find_first_of("+-", std::string("1899-12-30").size());
            if (zone != std::string::npos) iso.resize(zone);
            if (iso.size() > 10) iso[10] = 'T';
            if (TryFromIso8601(iso, date))
                rows.PutReal(date.Val);
            else
                rows.PutNull();
            return;
        }
        default:
            break;
    }
    switch (ColumnKindOf(fieldType)) {
        case ColumnKind::Integer:
            rows.PutInteger(StrToInt64Def(text, 0));
            return;
        case ColumnKind::Real:
            PutReal(rows, text,
                    text.find("e-") == std::string_view::npos &&
                        text.find_first_not_of("-0.") == text.find_first_not_of('-'));
            return;
        case ColumnKind::Text:
        case ColumnKind::Bytes:
            rows.PutBytes(text);
            return;
    }
}

void PutValue(RowStore& rows, const PGresult* result, int row, int column, Oid held, TFieldType type, bool binary) {
    const int length = PQgetlength(result, row, column);
    if (length == 0 && PQgetisnull(result, row, column)) {
        rows.PutNull();
        return;
    }
    const char* bytes = PQgetvalue(result, row, column);
    if (binary)
        PutBinary(rows, bytes, length, held, type);
    else
        PutText(rows, {bytes, static_cast<size_t>(length)}, held, type);
}

}  // namespace vyn::postgresql_provider
