#include "platform/data/fields.h"

#include <algorithm>
#include <unordered_map>

#include "platform/data/data_set_focus.h"
#include "platform/text/compare.h"
#include "platform/text/edit_mask.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
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

const EnumType& TypeInfoOf(TypeTag<TFieldKind>) {
    static const EnumType info("TFieldKind", {"fkData", "fkCalculated", "fkLookup", "fkInternalCalc"});
    return info;
}

const ClassInfo& TField::StaticClass() {
    static const ClassInfo info =
        DefineClass<TField, TComponent>("TField")
            .Published("Alignment", &TField::Alignment, &TField::SetAlignment)
            .Stored(&TField::IsAlignmentStored)
            .Published("CustomConstraint", &TField::CustomConstraint, &TField::CustomConstraint)
            .Published("ConstraintErrorMessage", &TField::ConstraintErrorMessage, &TField::ConstraintErrorMessage)
            .Published("DefaultExpression", &TField::DefaultExpression, &TField::DefaultExpression)
            .Published("DisplayLabel", &TField::DisplayLabel, &TField::SetDisplayLabel)
            .Stored(&TField::IsDisplayLabelStored)
            .Published("DisplayWidth", &TField::DisplayWidth, &TField::SetDisplayWidth)
            .Stored(&TField::IsDisplayWidthStored)
            .Published("FieldKind", &TField::FieldKind, &TField::SetFieldKind)
            .Default(fkData)
            .Published("FieldName", &TField::FieldName, &TField::SetFieldName)
            .Published("Index", &TField::Index, &TField::SetIndex)
            .NeverStored()
            .Published("LookupDataSet", &TField::LookupDataSet, &TField::SetLookupDataSet)
            .Published("LookupKeyFields", &TField::LookupKeyFields, &TField::LookupKeyFields)
            .Published("LookupResultField", &TField::LookupResultField, &TField::LookupResultField)
            .Published("KeyFields", &TField::KeyFields, &TField::KeyFields)
            .Published("LookupCache", &TField::LookupCache, &TField::LookupCache)
            .Default(false)
            .Published("Origin", &TField::Origin, &TField::Origin)
            .Published("ReadOnly", &TField::ReadOnly, &TField::ReadOnly)
            .Default(false)
            .Published("Required", &TField::Required, &TField::Required)
            .Default(false)
            .Published("Visible", &TField::Visible, &TField::SetVisible)
            .Default(true)
            .Event("OnChange", &TField::OnChange)
            .Event("OnGetText", &TField::OnGetText)
            .Event("OnSetText", &TField::OnSetText)
            .Event("OnValidate", &TField::OnValidate);
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
        std::erase_if(dataSet_->calculated_, [&](const auto& each) { return each.first == this; });
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
    limit_ = ColumnKindOf(definition.DataType) == ColumnKind::Text ? definition.Size : 0;
    columnReadOnly_ = definition.ReadOnly;
    columnAutomatic_ = definition.Automatic;
}

void TField::SetFieldKind(TFieldKind value) {
    if (value == kind_) return;
    if (dataSet_) dataSet_->CheckInactive();
    kind_ = value;
}

void TField::SetLookupDataSet(TDataSet* value) {
    if (value == lookupDataSet_) return;
    if (value && value == dataSet_) throw EDatabaseError("Circular datalinks are not allowed");
    lookupDataSet_ = value;
    if (value) value->FreeNotification(this);
}

void TField::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == lookupDataSet_) lookupDataSet_ = nullptr;
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
void TField::SetEditFormat(const AnsiString& value) {
    editFormat_ = value;
    LayoutChanged();
}
void TField::SetEditMask(const AnsiString& value) {
    editMask_ = value;
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
            return IsDateTime() ? kDateWidth : kNumberWidth;
        case ColumnKind::Text:
            return size_ > 0 ? std::min(size_, kWidestText) : kTextWidth;
        case ColumnKind::Bytes:
            return kNumberWidth;
    }
    return kNumberWidth;
}

TDataSet& TField::OpenDataSet() const {
    if (!dataSet_ || !dataSet_->Active()) throw EDatabaseError("Cannot perform this operation on a closed dataset");
    return *dataSet_;
}

int64_t TField::CurrentRow() const { return OpenDataSet().ActiveRow(); }

Cell TField::CellIn(int64_t row) const {
    if (row < 0 || row >= dataSet_->Rows().Count()) return Cell();
    if (IsCalculated()) return dataSet_->CalculatedCell(row, *this);
    if (column_ < 0) return Cell();
    if (const Cell* edited = dataSet_->EditedCell(row, column_)) return *edited;
    return dataSet_->Rows().CellAt(row, column_);
}

bool TField::IsNullInRow(int64_t row) const {
    if (kind_ == fkData && column_ >= 0 && row >= 0 && row < dataSet_->Rows().Count() &&
        !dataSet_->EditedCell(row, column_))
        return dataSet_->Rows().IsNull(row, column_);
    return CellIn(row).IsNull();
}

// The other dataset's results by their keys, as texts.
struct TField::LookupList {
    const TDataSet* source = nullptr;
    int opening = 0;
    AnsiString keys, result;
    std::unordered_map<std::string, Variant> values;
};

void TField::RefreshLookupList() { lookupList_.reset(); }

Variant TField::LookedUp(const std::vector<Variant>& keys) const {
    TDataSet& source = *lookupDataSet_;
    if (!LookupCache) return source.Lookup(LookupKeyFields, keys, LookupResultField);
    const auto keyOf = [](const std::vector<Variant>& values) {
        std::string key;
        for (const Variant& value : values) {
            const AnsiString text = value.Type() == varDate
                                        ? FloatToStr(value.AsDateTime().Val, InvariantFormatSettings())
                                        : VarToStr(value);
            key += (value.IsNull() ? "-" : "+" + std::to_string(text.size()) + ":") + text;
        }
        return key;
    };
    const bool stale = !lookupList_ || lookupList_->source != &source || lookupList_->opening != source.opening_ ||
                       lookupList_->keys != LookupKeyFields || lookupList_->result != LookupResultField;
    if (stale) {
        auto list = std::make_shared<LookupList>();
        list->source = &source;
        list->opening = source.opening_;
        list->keys = LookupKeyFields;
        list->result = LookupResultField;
        std::vector<const TField*> keyFields;
        for (size_t at = 0; at <= LookupKeyFields.size();) {
            const size_t end = std::min(LookupKeyFields.find(';', at), LookupKeyFields.size());
            const AnsiString name = Trim(LookupKeyFields.substr(at, end - at));
            if (!name.empty()) keyFields.push_back(source.FieldByName(name));
            at = end + 1;
        }
        const TField* result = source.FieldByName(LookupResultField);
        // Of a large one, what was asked for is kept.
        for (int64_t record = 0; !source.IsPaged() && record < source.FetchTo(record + 1); ++record) {
            std::vector<Variant> values;
            for (const TField* field : keyFields) values.push_back(field->ValueIn(record));
            // The first one counts.
            list->values.emplace(keyOf(values), result->ValueIn(record));
        }
        lookupList_ = std::move(list);
    }
    const auto found = lookupList_->values.find(keyOf(keys));
    if (found != lookupList_->values.end()) return found->second;
    if (!source.IsPaged()) return Variant::Null();
    return lookupList_->values.emplace(keyOf(keys), source.Lookup(LookupKeyFields, keys, LookupResultField))
        .first->second;
}

bool TField::IsNull() const { return IsNullInRow(CurrentRow()); }
bool TField::IsNullIn(int64_t record) const { return IsNullInRow(OpenDataSet().RowOf(record)); }

std::string_view TField::RawBytes() const {
    const int64_t row = CurrentRow();
    if (row < 0 || column_ < 0) return {};
    if (const Cell* edited = dataSet_->EditedCell(row, column_)) return edited->AsBytes();
    return dataSet_->Rows().Bytes(row, column_);
}

Variant TField::ValueInRow(int64_t row) const { return VariantOf(CellIn(row), dataType_); }
Variant TField::ValueIn(int64_t record) const { return ValueInRow(OpenDataSet().RowOf(record)); }
Variant TField::Value() const { return ValueInRow(CurrentRow()); }

Variant TField::OldValue() const {
    const TDataSet& data = OpenDataSet();
    if (!data.IsEditing() || column_ < 0) return Value();
    if (static_cast<size_t>(column_) >= data.original_.size()) return Variant::Null();
    return VariantOf(data.original_[static_cast<size_t>(column_)], dataType_);
}

AnsiString TField::AsString() const { return VarToStr(Value()); }

int64_t TField::AsInteger() const {
    const Cell cell = CellIn(CurrentRow());
    if (cell.IsNull()) return 0;
    if (ColumnKindOf(dataType_) == ColumnKind::Integer && dataType_ != ftCurrency && dataType_ != ftBCD &&
        dataType_ != ftBoolean)
        return cell.AsInteger();
    return VariantOf(cell, dataType_).AsInt64();
}

double TField::AsFloat() const { return IsNull() ? 0.0 : Value().AsDouble(); }
TDateTime TField::AsDateTime() const { return IsNull() ? TDateTime() : Value().AsDateTime(); }
Currency TField::AsCurrency() const { return IsNull() ? Currency() : Value().AsCurrency(); }
bool TField::AsBoolean() const { return !IsNull() && Value().AsBoolean(); }

AnsiString TField::FormattedText(int64_t row, bool display) const {
    if (const RowStore& rows = dataSet_->Rows(); kind_ == fkData && column_ >= 0 && editMask_.empty() &&
                                                 row < rows.Count() && !dataSet_->EditedCell(row, column_)) {
        // Mostly what is kept is what is shown.
        switch (dataType_) {
            case ftString:
            case ftFixedChar:
            case ftWideString:
                return Utf8ToAnsiLossy(rows.Bytes(row, column_));
            case ftSmallint:
            case ftInteger:
            case ftWord:
            case ftAutoInc:
            case ftLargeint:
                if (!displayFormat_.empty() || !editFormat_.empty() || currency_) break;
                return rows.IsNull(row, column_) ? AnsiString() : IntToStr(rows.Integer(row, column_));
            default:
                break;
        }
    }
    const Variant value = ValueInRow(row);
    if (value.IsNull()) return {};
    const AnsiString& format = !display && !editFormat_.empty() ? editFormat_ : displayFormat_;
    if (IsNumeric()) {
        if (!format.empty() && (display || !editFormat_.empty())) return FormatFloat(format, value.AsDouble());
        if (display && currency_)
            return FloatToStrF(value.AsDouble(), ffCurrency, kDoubleDigits, fields_detail::kMoneyDecimals);
        const auto* real = dataType_ == ftFloat ? ObjectCast<TFloatField>(this) : nullptr;
        if (real) return FloatToStrF(value.AsDouble(), ffGeneral, std::clamp(real->Precision, 1, kExtendedDigits), 0);
        return dataType_ == ftLargeint ? IntToStr(CellIn(row).AsInteger()) : value.AsString();
    }
    switch (dataType_) {
        case ftBoolean: {
            const size_t cut = DisplayValues.find(';');
            if (value.AsBoolean()) return DisplayValues.substr(0, cut);
            return cut == AnsiString::npos ? AnsiString() : DisplayValues.substr(cut + 1);
        }
        case ftDate:
        case ftTime:
        case ftDateTime:
            if (display && !displayFormat_.empty()) return FormatDateTime(displayFormat_, value.AsDateTime());
            if (dataType_ == ftDate) return DateToStr(value.AsDateTime());
            return dataType_ == ftTime ? TimeToStr(value.AsDateTime()) : DateTimeToStr(value.AsDateTime());
        case ftMemo:
        case ftFmtMemo:
            return display ? AnsiString("(Memo)") : value.AsString();
        case ftGraphic:
            return "(Graphic)";
        default:
            if (ColumnKindOf(dataType_) == ColumnKind::Bytes) return "(Blob)";
            if (display && !editMask_.empty()) return FormatMaskText(editMask_, value.AsString());
            return value.AsString();
    }
}

AnsiString TField::TextIn(int64_t row, bool display) const {
    if (!OnGetText) return row < 0 ? AnsiString() : FormattedText(row, display);
    AnsiString text;
    const TDataSet::RowInFocus focus(*dataSet_, row);
    OnGetText(const_cast<TField*>(this), text, display);
    return text;
}

AnsiString TField::DisplayTextOf(int64_t record) const { return TextIn(OpenDataSet().RowOf(record), true); }
AnsiString TField::DisplayText() const { return TextIn(CurrentRow(), true); }
AnsiString TField::Text() const { return TextIn(CurrentRow(), false); }

}  // namespace vyn
