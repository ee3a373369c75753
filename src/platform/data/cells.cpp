#include "platform/data/cells.h"

#include <algorithm>
#include <cmath>

#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace cells_detail {

constexpr unsigned char kContinuationMask = 0xC0;
constexpr unsigned char kContinuation = 0x80;

int64_t Within(int64_t value, int64_t lowest, int64_t highest) {
    if (value < lowest || value > highest)
        throw EDatabaseError(IntToStr(value) + " is not between " + IntToStr(lowest) + " and " + IntToStr(highest));
    return value;
}

std::string Utf8Of(const Variant& value) {
    return value.Type() == varOleStr ? WideToUtf8(value.AsWideString()) : AnsiToUtf8(value.AsString());
}

// Where each character begins, and the end.
std::vector<size_t> CharacterStarts(std::string_view utf8) {
    std::vector<size_t> starts;
    for (size_t i = 0; i < utf8.size(); ++i)
        if ((static_cast<unsigned char>(utf8[i]) & kContinuationMask) != kContinuation || i == 0) starts.push_back(i);
    starts.push_back(utf8.size());
    return starts;
}

}  // namespace cells_detail

ColumnKind ColumnKindOf(TFieldType type) {
    switch (type) {
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftBoolean:
        case ftCurrency:
        case ftBCD:
        case ftAutoInc:
        case ftLargeint:
            return ColumnKind::Integer;
        case ftFloat:
        case ftDate:
        case ftTime:
        case ftDateTime:
            return ColumnKind::Real;
        case ftBytes:
        case ftVarBytes:
        case ftBlob:
        case ftGraphic:
        case ftParadoxOle:
        case ftDBaseOle:
        case ftTypedBinary:
            return ColumnKind::Bytes;
        default:
            return ColumnKind::Text;
    }
}

Variant VariantOf(const Cell& cell, TFieldType type) {
    if (cell.IsNull()) return Variant::Null();
    switch (type) {
        case ftBoolean:
            return Variant(cell.AsInteger() != 0);
        case ftCurrency:
        case ftBCD:
            return Variant(Currency::FromScaled(cell.AsInteger()));
        case ftDate:
        case ftTime:
        case ftDateTime:
            return Variant(TDateTime(cell.AsReal()));
        case ftWideString:
            return Variant(Utf8ToWide(cell.AsBytes()));
        default:
            break;
    }
    switch (ColumnKindOf(type)) {
        case ColumnKind::Integer:
            return Variant(cell.AsInteger());
        case ColumnKind::Real:
            return Variant(cell.AsReal());
        case ColumnKind::Text:
            return Variant(Utf8ToAnsiLossy(cell.AsBytes()));
        case ColumnKind::Bytes:
            return Variant(AnsiString(cell.AsBytes()));
    }
    return Variant();
}

Cell CellOf(const Variant& value, TFieldType type) {
    using namespace cells_detail;
    if (value.IsNull() || value.IsEmpty()) return Cell::Null();
    switch (type) {
        case ftSmallint:
            return Cell::Integer(Within(value.AsInt64(), INT16_MIN, INT16_MAX));
        case ftWord:
            return Cell::Integer(Within(value.AsInt64(), 0, UINT16_MAX));
        case ftInteger:
        case ftAutoInc:
            return Cell::Integer(Within(value.AsInt64(), INT32_MIN, INT32_MAX));
        case ftBoolean:
            return Cell::Integer(value.AsBoolean() ? 1 : 0);
        case ftCurrency:
        case ftBCD:
            return Cell::Integer(value.AsCurrency().Val);
        case ftDate:
            // Also before the epoch: times count away from zero.
            return Cell::Real(std::trunc(value.AsDateTime().Val));
        case ftTime: {
            // The time of day counts forward also before the epoch.
            const double days = value.AsDateTime().Val;
            return Cell::Real(std::fabs(days - std::trunc(days)));
        }
        case ftDateTime:
            return Cell::Real(value.AsDateTime().Val);
        default:
            break;
    }
    switch (ColumnKindOf(type)) {
        case ColumnKind::Integer:
            return Cell::Integer(value.AsInt64());
        case ColumnKind::Real:
            return Cell::Real(value.AsDouble());
        case ColumnKind::Text:
            return Cell::Bytes(Utf8Of(value));
        case ColumnKind::Bytes:
            return Cell::Bytes(value.AsString());
    }
    return Cell::Null();
}

TFieldType FieldTypeOf(const Variant& value) {
    switch (value.Type()) {
        case varEmpty:
        case varNull:
            return ftUnknown;
        case varSmallint:
            return ftSmallint;
        case varInteger:
            return ftInteger;
        case varSingle:
        case varDouble:
            return ftFloat;
        case varCurrency:
            return ftCurrency;
        case varDate:
            return ftDateTime;
        case varOleStr:
            return ftWideString;
        case varBoolean:
            return ftBoolean;
        case varByte:
            return ftWord;
        case varString:
            return ftString;
    }
    return ftUnknown;
}

std::string MergeShownText(std::string_view stored, const AnsiString& text) {
    using namespace cells_detail;
    const std::vector<size_t> starts = CharacterStarts(stored);
    AnsiString shown;
    for (size_t i = 0; i + 1 < starts.size(); ++i) {
        const AnsiString one = Utf8ToAnsiLossy(stored.substr(starts[i], starts[i + 1] - starts[i]));
        // Malformed bytes show as several marks: such a text is not kept in parts.
        if (one.size() != 1) return Utf8ToAnsiLossy(stored) == text ? std::string(stored) : AnsiToUtf8(text);
        shown += one;
    }
    const size_t most = std::min(shown.size(), text.size());
    size_t head = 0;
    while (head < most && shown[head] == text[head]) ++head;
    size_t tail = 0;
    while (tail < most - head && shown[shown.size() - 1 - tail] == text[text.size() - 1 - tail]) ++tail;
    std::string merged(stored.substr(0, starts[head]));
    merged += AnsiToUtf8(text.substr(head, text.size() - head - tail));
    merged += stored.substr(starts[shown.size() - tail]);
    return merged;
}

}  // namespace vyn
