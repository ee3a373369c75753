#include <algorithm>

#include "platform/data/data_set.h"
#include "platform/text/compare.h"
#include "platform/text/date_format.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

// How fields are written.
namespace vyn {

namespace field_editing_detail {

constexpr unsigned char kContinuationMask = 0xC0;
constexpr unsigned char kContinuation = 0x80;

int64_t CharactersOf(std::string_view utf8) {
    return std::count_if(utf8.begin(), utf8.end(),
                         [](char c) { return (static_cast<unsigned char>(c) & kContinuationMask) != kContinuation; });
}

[[noreturn]] void RaiseNotValid(const AnsiString& text, const char* kind, const AnsiString& field) {
    throw EDatabaseError("'" + text + "' is not a valid " + kind + " value for field '" + field + "'");
}

}  // namespace field_editing_detail

void TField::RaiseRange(const AnsiString& value, const AnsiString& lowest, const AnsiString& highest) const {
    throw EDatabaseError(value + " is not a valid value for field '" + DisplayLabel() + "'. The allowed range is " +
                         lowest + " to " + highest);
}

bool TField::CanModify() const {
    if (ReadOnly || !dataSet_ || !dataSet_->CanModify()) return false;
    return kind_ == fkData && !columnReadOnly_;
}

void TField::CheckSize(const Cell& cell) const {
    if (limit_ <= 0 || !cell.IsBytes()) return;
    const int64_t length = field_editing_detail::CharactersOf(cell.AsBytes());
    if (length > limit_)
        throw EDatabaseError("Field '" + DisplayLabel() + "' takes at most " + IntToStr(limit_) + " characters, not " +
                             IntToStr(length));
}

void TField::SetCell(Cell cell) {
    TDataSet& data = OpenDataSet();
    if (data.calculating_ && IsCalculated()) {
        data.PutField(*this, std::move(cell));
        return;
    }
    if (!data.IsEditing()) data.DatabaseError("Dataset not in edit or insert mode");
    if (ReadOnly || kind_ != fkData || columnReadOnly_ || column_ < 0)
        data.DatabaseError("Field '" + DisplayLabel() + "' cannot be modified");
    if (!cell.IsNull()) {
        CheckSize(cell);
        CheckRange(cell);
    }
    data.PutField(*this, std::move(cell));
}

void TField::Clear() { SetCell(Cell::Null()); }

void TField::SetValue(const Variant& value) {
    if (value.IsNull() || value.IsEmpty()) {
        Clear();
        return;
    }
    if (value.Type() == varString) {
        SetAsString(value.AsString());
        return;
    }
    if (value.Type() == varOleStr && ColumnKindOf(dataType_) != ColumnKind::Text) {
        SetAsString(value.AsString());
        return;
    }
    // Whole numbers are checked by the field, whose message names it and its range.
    const bool whole =
        IsNumeric() && dataType_ != ftCurrency && dataType_ != ftBCD && ColumnKindOf(dataType_) == ColumnKind::Integer;
    SetCell(whole ? Cell::Integer(value.AsInt64()) : CellOf(value, dataType_));
}

Cell TField::CellOfText(const AnsiString& text) const {
    using namespace field_editing_detail;
    switch (ColumnKindOf(dataType_)) {
        case ColumnKind::Text:
            return Cell::Bytes(MergeShownText(CellIn(CurrentRow()).AsBytes(), text));
        case ColumnKind::Bytes:
            return Cell::Bytes(text);
        case ColumnKind::Integer:
        case ColumnKind::Real:
            break;
    }
    const AnsiString trimmed = Trim(text);
    if (trimmed.empty()) return Cell::Null();
    switch (dataType_) {
        case ftBoolean: {
            const size_t cut = DisplayValues.find(';');
            const AnsiString yes = DisplayValues.substr(0, cut);
            const AnsiString no = cut == AnsiString::npos ? AnsiString() : DisplayValues.substr(cut + 1);
            // The beginning of a word is enough.
            if (AnsiSameText(trimmed, yes.substr(0, trimmed.size()))) return Cell::Integer(1);
            if (AnsiSameText(trimmed, no.substr(0, trimmed.size()))) return Cell::Integer(0);
            throw EDatabaseError("'" + text + "' is not a valid boolean value for field '" + DisplayLabel() +
                                 "'. Allowed values are '" + yes + "' and '" + no + "'");
        }
        case ftCurrency:
        case ftBCD: {
            Currency amount;
            if (!TryStrToCurr(trimmed, amount)) RaiseNotValid(text, "currency", DisplayLabel());
            return Cell::Integer(amount.Val);
        }
        case ftFloat: {
            double number = 0;
            if (!TryStrToFloat(trimmed, number)) RaiseNotValid(text, "floating point", DisplayLabel());
            return Cell::Real(number);
        }
        case ftDate: {
            double days = 0;  // a time behind the date is left out
            if (!TryStrToDateTime(trimmed, days)) days = StrToDate(trimmed);
            return CellOf(Variant(TDateTime(days)), ftDate);
        }
        case ftTime:
            return Cell::Real(StrToTime(trimmed));
        case ftDateTime:
            return Cell::Real(StrToDateTime(trimmed));
        default: {
            int64_t number = 0;
            if (!TryStrToInt64(trimmed, number)) RaiseNotValid(text, "integer", DisplayLabel());
            return Cell::Integer(number);
        }
    }
}

void TField::SetAsString(const AnsiString& value) {
    OpenDataSet();
    SetCell(CellOfText(value));
}

void TField::SetText(const AnsiString& value) {
    if (OnSetText)
        OnSetText(this, value);
    else
        SetAsString(value);
}

void TField::SetAsInteger(int64_t value) {
    if (IsNumeric() && ColumnKindOf(dataType_) == ColumnKind::Integer && dataType_ != ftCurrency && dataType_ != ftBCD)
        SetCell(Cell::Integer(value));
    else
        SetValue(Variant(value));
}

void TField::SetAsFloat(double value) { SetValue(Variant(value)); }
void TField::SetAsDateTime(TDateTime value) { SetValue(Variant(value)); }
void TField::SetAsCurrency(Currency value) { SetValue(Variant(value)); }
void TField::SetAsBoolean(bool value) { SetValue(Variant(value)); }

void TField::SetRawBytes(std::string bytes) {
    const ColumnKind kind = ColumnKindOf(dataType_);
    if (kind != ColumnKind::Text && kind != ColumnKind::Bytes)
        throw EDatabaseError("Field '" + DisplayLabel() + "' cannot be written as bytes");
    SetCell(Cell::Bytes(std::move(bytes)));
}

}  // namespace vyn
