#include "platform/data/fields.h"

#include <algorithm>
#include <cmath>

#include "platform/data/data_set.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace fields_detail {

// Widths, in characters, of types that have one of their own.
constexpr int kNumberWidth = 10;
constexpr int kDateWidth = 10;
constexpr int kDateTimeWidth = 18;
constexpr int kBooleanWidth = 5;
constexpr int kTextWidth = 20;
constexpr int kWidestText = 50;
constexpr int kMoneyDecimals = 2;
constexpr int kGeneralDigits = 15;

bool IsInteger(TFieldType type) {
    return type == ftSmallint || type == ftInteger || type == ftWord || type == ftAutoInc || type == ftLargeint;
}

bool IsDate(TFieldType type) { return type == ftDate || type == ftTime || type == ftDateTime; }

}  // namespace fields_detail

const EnumType& TypeInfoOf(TypeTag<TFieldType>) {
    static const EnumType info(
        "TFieldType",
        {"ftUnknown",     "ftString", "ftSmallint",  "ftInteger",    "ftWord",     "ftBoolean",    "ftFloat",
         "ftCurrency",    "ftBCD",    "ftDate",      "ftTime",       "ftDateTime", "ftBytes",      "ftVarBytes",
         "ftAutoInc",     "ftBlob",   "ftMemo",      "ftGraphic",    "ftFmtMemo",  "ftParadoxOle", "ftDBaseOle",
         "ftTypedBinary", "ftCursor", "ftFixedChar", "ftWideString", "ftLargeint"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TAlignment>) {
    static const EnumType info("TAlignment", {"taLeftJustify", "taRightJustify", "taCenter"});
    return info;
}

const ClassInfo& TField::StaticClass() {
    static const ClassInfo info = DefineClass<TField, TComponent>("TField")
                                      .Published("DisplayLabel", &TField::DisplayLabel, &TField::SetDisplayLabel)
                                      .Stored(&TField::IsDisplayLabelStored)
                                      .Published("DisplayWidth", &TField::DisplayWidth, &TField::SetDisplayWidth)
                                      .Stored(&TField::IsDisplayWidthStored)
                                      .Published("FieldName", &TField::FieldName, &TField::SetFieldName)
                                      .Published("Index", &TField::Index, &TField::SetIndex)
                                      .NeverStored()
                                      .Published("ReadOnly", &TField::ReadOnly, &TField::ReadOnly)
                                      .Default(false)
                                      .Published("Required", &TField::Required, &TField::Required)
                                      .Default(false)
                                      .Published("Visible", &TField::Visible, &TField::SetVisible)
                                      .Default(true)
                                      .Published("Size", &TField::Size, &TField::SetSize)
                                      .Default(0)
                                      .Published("DisplayFormat", &TField::DisplayFormat, &TField::SetDisplayFormat)
                                      .Published("Currency", &TField::CurrencyFormat, &TField::SetCurrencyFormat)
                                      .Default(false)
                                      .Published("DisplayValues", &TField::DisplayValues, &TField::DisplayValues)
                                      .Stored(std::function<bool(const TField&)>(
                                          [](const TField& field) { return field.DisplayValues != "True;False"; }))
                                      .Event("OnGetText", &TField::OnGetText);
    return info;
}

TField::~TField() {
    BeginDestruction();
    SetDataSet(nullptr);
}

void TField::SetDataSet(TDataSet* dataSet) {
    if (dataSet == dataSet_) return;
    if (dataSet_) {
        std::erase(dataSet_->fields_, this);
        std::erase(dataSet_->ownFields_, this);
    }
    dataSet_ = dataSet;
    column_ = -1;
    if (dataSet) dataSet->fields_.push_back(this);
}

void TField::SetParentComponent(TComponent* parent) { SetDataSet(ObjectCast<TDataSet>(parent)); }
TComponent* TField::GetParentComponent() const { return dataSet_; }

void TField::Bind(const FieldDefinition& definition, int column) {
    column_ = column;
    if (dataType_ == ftUnknown) dataType_ = definition.DataType;
    if (size_ == 0) size_ = definition.Size;
    precision_ = definition.Precision;
}

void TField::LayoutChanged() {
    if (dataSet_ && dataSet_->Active()) dataSet_->Announce(DataEvent::LayoutChanged);
}

void TField::SetAlignment(TAlignment value) {
    alignment_ = value;
    alignmentSet_ = true;
    LayoutChanged();
}
void TField::SetFieldName(const AnsiString& value) {
    fieldName_ = value;
    LayoutChanged();
}
void TField::SetDisplayLabel(const AnsiString& value) {
    displayLabel_ = value == fieldName_ ? AnsiString() : value;
    LayoutChanged();
}
void TField::SetDisplayWidth(int value) {
    displayWidth_ = value;
    LayoutChanged();
}
void TField::SetVisible(bool value) {
    visible_ = value;
    LayoutChanged();
}
void TField::SetDisplayFormat(const AnsiString& value) {
    displayFormat_ = value;
    LayoutChanged();
}
void TField::SetCurrencyFormat(bool value) {
    currency_ = value;
    LayoutChanged();
}

int TField::Index() const {
    if (!dataSet_) return -1;
    const auto& fields = dataSet_->fields_;
    return static_cast<int>(std::find(fields.begin(), fields.end(), this) - fields.begin());
}

void TField::SetIndex(int value) {
    if (!dataSet_) return;
    auto& fields = dataSet_->fields_;
    fields.erase(std::find(fields.begin(), fields.end(), this));
    fields.insert(fields.begin() + std::clamp(value, 0, static_cast<int>(fields.size())), this);
    LayoutChanged();
}

int TField::DefaultWidth() const {
    using namespace fields_detail;
    switch (ColumnKindOf(dataType_)) {
        case ColumnKind::Integer:
            return dataType_ == ftBoolean ? kBooleanWidth : kNumberWidth;
        case ColumnKind::Real:
            if (dataType_ == ftDateTime) return kDateTimeWidth;
            return IsDate(dataType_) ? kDateWidth : kNumberWidth;
        case ColumnKind::Text:
            return size_ > 0 ? std::min(size_, kWidestText) : kTextWidth;
        case ColumnKind::Bytes:
            return kNumberWidth;
    }
    return kNumberWidth;
}

TAlignment TField::DefaultAlignment() const {
    switch (ColumnKindOf(dataType_)) {
        case ColumnKind::Integer:
            return dataType_ == ftBoolean ? taLeftJustify : taRightJustify;
        case ColumnKind::Real:
            return fields_detail::IsDate(dataType_) ? taLeftJustify : taRightJustify;
        case ColumnKind::Text:
        case ColumnKind::Bytes:
            return taLeftJustify;
    }
    return taLeftJustify;
}

int64_t TField::CurrentRecord() const {
    if (!dataSet_ || !dataSet_->Active()) throw EDatabaseError("Cannot perform this operation on a closed dataset");
    return dataSet_->CurrentRecord();
}

bool TField::IsNullIn(int64_t record) const {
    return record < 0 || column_ < 0 || dataSet_->Rows().IsNull(record, column_);
}

bool TField::IsNull() const { return IsNullIn(CurrentRecord()); }

std::string_view TField::RawBytes() const {
    const int64_t record = CurrentRecord();
    if (IsNullIn(record)) return {};
    return dataSet_->Rows().Bytes(record, column_);
}

Variant TField::ValueIn(int64_t record) const {
    if (IsNullIn(record)) return Variant::Null();
    const RowStore& rows = dataSet_->Rows();
    switch (dataType_) {
        case ftBoolean:
            return Variant(rows.Integer(record, column_) != 0);
        case ftCurrency:
        case ftBCD:
            return Variant(Currency::FromScaled(rows.Integer(record, column_)));
        case ftDate:
        case ftTime:
        case ftDateTime:
            return Variant(TDateTime(rows.Real(record, column_)));
        case ftWideString:
            return Variant(Utf8ToWide(rows.Bytes(record, column_)));
        default:
            break;
    }
    switch (ColumnKindOf(dataType_)) {
        case ColumnKind::Integer:
            return Variant(rows.Integer(record, column_));
        case ColumnKind::Real:
            return Variant(rows.Real(record, column_));
        case ColumnKind::Text:
            return Variant(Utf8ToAnsiLossy(rows.Bytes(record, column_)));
        case ColumnKind::Bytes:
            return Variant(AnsiString(rows.Bytes(record, column_)));
    }
    return Variant();
}

Variant TField::Value() const { return ValueIn(CurrentRecord()); }

AnsiString TField::AsString() const { return VarToStr(Value()); }

int64_t TField::AsInteger() const {
    const int64_t record = CurrentRecord();
    if (IsNullIn(record)) return 0;
    if (fields_detail::IsInteger(dataType_)) return dataSet_->Rows().Integer(record, column_);
    return ValueIn(record).AsInt64();
}

double TField::AsFloat() const { return IsNull() ? 0.0 : Value().AsDouble(); }
TDateTime TField::AsDateTime() const { return IsNull() ? TDateTime() : Value().AsDateTime(); }
Currency TField::AsCurrency() const { return IsNull() ? Currency() : Value().AsCurrency(); }
bool TField::AsBoolean() const { return !IsNull() && Value().AsBoolean(); }

AnsiString TField::TextOf(int64_t record) const {
    const Variant value = ValueIn(record);
    if (value.IsNull()) return {};
    switch (dataType_) {
        case ftBoolean: {
            const size_t cut = DisplayValues.find(';');
            if (value.AsBoolean()) return DisplayValues.substr(0, cut);
            return cut == AnsiString::npos ? AnsiString() : DisplayValues.substr(cut + 1);
        }
        case ftCurrency:
        case ftFloat:
        case ftBCD:
            if (!displayFormat_.empty()) return FormatFloat(displayFormat_, value.AsDouble());
            if (currency_ || dataType_ == ftCurrency)
                return FloatToStrF(value.AsDouble(), ffCurrency, fields_detail::kGeneralDigits,
                                   fields_detail::kMoneyDecimals);
            return value.AsString();
        case ftDate:
            return displayFormat_.empty() ? DateToStr(value.AsDateTime())
                                          : FormatDateTime(displayFormat_, value.AsDateTime());
        case ftTime:
            return displayFormat_.empty() ? TimeToStr(value.AsDateTime())
                                          : FormatDateTime(displayFormat_, value.AsDateTime());
        case ftDateTime:
            return displayFormat_.empty() ? DateTimeToStr(value.AsDateTime())
                                          : FormatDateTime(displayFormat_, value.AsDateTime());
        case ftMemo:
            return "(Memo)";
        case ftGraphic:
            return "(Graphic)";
        default:
            break;
    }
    if (ColumnKindOf(dataType_) == ColumnKind::Bytes) return "(Blob)";
    if (fields_detail::IsInteger(dataType_) && !displayFormat_.empty())
        return FormatFloat(displayFormat_, value.AsDouble());
    return value.AsString();
}

AnsiString TField::DisplayTextOf(int64_t record) const {
    if (OnGetText) {
        AnsiString text;
        OnGetText(const_cast<TField*>(this), text, true);
        return text;
    }
    return record < 0 ? AnsiString() : TextOf(record);
}

AnsiString TField::DisplayText() const { return DisplayTextOf(CurrentRecord()); }

namespace fields_detail {

const char* ClassNameOf(TFieldType type) {
    switch (type) {
        case ftString:
            return "TStringField";
        case ftWideString:
            return "TWideStringField";
        case ftMemo:
            return "TMemoField";
        case ftSmallint:
            return "TSmallintField";
        case ftInteger:
            return "TIntegerField";
        case ftAutoInc:
            return "TAutoIncField";
        case ftLargeint:
            return "TLargeintField";
        case ftFloat:
            return "TFloatField";
        case ftCurrency:
            return "TCurrencyField";
        case ftBCD:
            return "TBCDField";
        case ftBoolean:
            return "TBooleanField";
        case ftDate:
            return "TDateField";
        case ftTime:
            return "TTimeField";
        case ftDateTime:
            return "TDateTimeField";
        default:
            return "TBlobField";
    }
}

}  // namespace fields_detail

template <TFieldType Type>
const ClassInfo& TTypedField<Type>::StaticClass() {
    static const ClassInfo info = DefineClass<TTypedField<Type>, TField>(fields_detail::ClassNameOf(Type));
    return info;
}

template class TTypedField<ftString>;
template class TTypedField<ftWideString>;
template class TTypedField<ftMemo>;
template class TTypedField<ftSmallint>;
template class TTypedField<ftInteger>;
template class TTypedField<ftAutoInc>;
template class TTypedField<ftLargeint>;
template class TTypedField<ftFloat>;
template class TTypedField<ftCurrency>;
template class TTypedField<ftBCD>;
template class TTypedField<ftBoolean>;
template class TTypedField<ftDate>;
template class TTypedField<ftTime>;
template class TTypedField<ftDateTime>;
template class TTypedField<ftBlob>;

TClass FieldClassOf(TFieldType type) {
    switch (type) {
        case ftString:
        case ftFixedChar:
            return &TStringField::StaticClass();
        case ftWideString:
            return &TWideStringField::StaticClass();
        case ftMemo:
        case ftFmtMemo:
            return &TMemoField::StaticClass();
        case ftSmallint:
        case ftWord:
            return &TSmallintField::StaticClass();
        case ftInteger:
            return &TIntegerField::StaticClass();
        case ftAutoInc:
            return &TAutoIncField::StaticClass();
        case ftLargeint:
            return &TLargeintField::StaticClass();
        case ftFloat:
            return &TFloatField::StaticClass();
        case ftCurrency:
            return &TCurrencyField::StaticClass();
        case ftBCD:
            return &TBCDField::StaticClass();
        case ftBoolean:
            return &TBooleanField::StaticClass();
        case ftDate:
            return &TDateField::StaticClass();
        case ftTime:
            return &TTimeField::StaticClass();
        case ftDateTime:
            return &TDateTimeField::StaticClass();
        default:
            return &TBlobField::StaticClass();
    }
}

}  // namespace vyn
