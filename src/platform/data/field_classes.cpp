#include "platform/data/field_classes.h"

#include "platform/objects/class_table.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"

namespace vyn {

const ClassInfo& TStringField::StaticClass() {
    static const ClassInfo info =
        DefineClass<TStringField, TField>("TStringField")
            .Published("EditMask", &TField::EditMask, &TField::SetEditMask)
            .Published("FixedChar", &TStringField::FixedChar, &TStringField::FixedChar)
            .Default(false)
            .Published("Size", &TField::Size, &TField::SetSize)
            .Default(kUsualSize)
            .Published("Transliterate", &TStringField::Transliterate, &TStringField::Transliterate)
            .Default(true);
    return info;
}

const ClassInfo& TWideStringField::StaticClass() {
    static const ClassInfo info = DefineClass<TWideStringField, TStringField>("TWideStringField");
    return info;
}

const ClassInfo& TNumericField::StaticClass() {
    static const ClassInfo info = DefineClass<TNumericField, TField>("TNumericField")
                                      .Published("DisplayFormat", &TField::DisplayFormat, &TField::SetDisplayFormat)
                                      .Published("EditFormat", &TField::EditFormat, &TField::SetEditFormat);
    return info;
}

bool TNumericField::IsValidChar(char c) const {
    if ((c >= '0' && c <= '9') || c == '+' || c == '-') return true;
    return TakesFractions() && (c == FormatSettings().DecimalSeparator || c == 'E' || c == 'e');
}

const ClassInfo& TIntegerField::StaticClass() {
    static const ClassInfo info = DefineClass<TIntegerField, TNumericField>("TIntegerField")
                                      .Published("MaxValue", &TIntegerField::MaxValue, &TIntegerField::MaxValue)
                                      .Default(0)
                                      .Published("MinValue", &TIntegerField::MinValue, &TIntegerField::MinValue)
                                      .Default(0);
    return info;
}

void TIntegerField::CheckRange(const Cell& value) const {
    int64_t lowest = INT32_MIN, highest = INT32_MAX;
    if (DataType() == ftSmallint) {
        lowest = INT16_MIN;
        highest = INT16_MAX;
    } else if (DataType() == ftWord) {
        lowest = 0;
        highest = UINT16_MAX;
    }
    if (MinValue != 0 || MaxValue != 0) {
        lowest = MinValue;
        highest = MaxValue;
    }
    const int64_t number = value.AsInteger();
    if (number < lowest || number > highest) RaiseRange(IntToStr(number), IntToStr(lowest), IntToStr(highest));
}

const ClassInfo& TSmallintField::StaticClass() {
    static const ClassInfo info = DefineClass<TSmallintField, TIntegerField>("TSmallintField");
    return info;
}
const ClassInfo& TWordField::StaticClass() {
    static const ClassInfo info = DefineClass<TWordField, TIntegerField>("TWordField");
    return info;
}
const ClassInfo& TAutoIncField::StaticClass() {
    static const ClassInfo info = DefineClass<TAutoIncField, TIntegerField>("TAutoIncField");
    return info;
}

const ClassInfo& TLargeintField::StaticClass() {
    static const ClassInfo info = DefineClass<TLargeintField, TNumericField>("TLargeintField")
                                      .Published("MaxValue", &TLargeintField::MaxValue, &TLargeintField::MaxValue)
                                      .Default(0)
                                      .Published("MinValue", &TLargeintField::MinValue, &TLargeintField::MinValue)
                                      .Default(0);
    return info;
}

void TLargeintField::CheckRange(const Cell& value) const {
    const int64_t number = value.AsInteger();
    if ((MinValue != 0 || MaxValue != 0) && (number < MinValue || number > MaxValue))
        RaiseRange(IntToStr(number), IntToStr(MinValue), IntToStr(MaxValue));
}

const ClassInfo& TFloatField::StaticClass() {
    static const ClassInfo info = DefineClass<TFloatField, TNumericField>("TFloatField")
                                      .Published("currency", &TField::CurrencyFormat, &TField::SetCurrencyFormat)
                                      .Default(false)
                                      .Published("MaxValue", &TFloatField::MaxValue, &TFloatField::MaxValue)
                                      .Published("MinValue", &TFloatField::MinValue, &TFloatField::MinValue)
                                      .Published("Precision", &TFloatField::Precision, &TFloatField::Precision)
                                      .Default(15);
    return info;
}

void TFloatField::CheckRange(const Cell& value) const {
    const double number = value.AsReal();
    if ((MinValue != 0 || MaxValue != 0) && (number < MinValue || number > MaxValue))
        RaiseRange(FloatToStr(number), FloatToStr(MinValue), FloatToStr(MaxValue));
}

const ClassInfo& TCurrencyField::StaticClass() {
    static const ClassInfo info = DefineClass<TCurrencyField, TFloatField>("TCurrencyField")
                                      .Published("currency", &TField::CurrencyFormat, &TField::SetCurrencyFormat)
                                      .Default(true);
    return info;
}

TCurrencyField::TCurrencyField(TComponent* owner) : TFloatField(owner, ftCurrency) { SetCurrencyFormat(true); }

void TCurrencyField::CheckRange(const Cell& value) const {
    TFloatField::CheckRange(Cell::Real(Currency::FromScaled(value.AsInteger()).ToDouble()));
}

const ClassInfo& TBCDField::StaticClass() {
    static const ClassInfo info = DefineClass<TBCDField, TNumericField>("TBCDField")
                                      .Published("currency", &TField::CurrencyFormat, &TField::SetCurrencyFormat)
                                      .Default(false)
                                      .Published("MaxValue", &TBCDField::MaxValue, &TBCDField::MaxValue)
                                      .Published("MinValue", &TBCDField::MinValue, &TBCDField::MinValue)
                                      .Published("Precision", &TBCDField::Precision, &TBCDField::Precision)
                                      .Default(0)
                                      .Published("Size", &TField::Size, &TField::SetSize)
                                      .Default(kUsualDecimals);
    return info;
}

void TBCDField::CheckRange(const Cell& value) const {
    const Currency amount = Currency::FromScaled(value.AsInteger());
    if ((MinValue.Val != 0 || MaxValue.Val != 0) && (amount < MinValue || amount > MaxValue))
        RaiseRange(CurrToStr(amount), CurrToStr(MinValue), CurrToStr(MaxValue));
}

const ClassInfo& TBooleanField::StaticClass() {
    static const ClassInfo info = DefineClass<TBooleanField, TField>("TBooleanField")
                                      .Published("DisplayValues", &TField::DisplayValues, &TField::DisplayValues)
                                      .Stored(std::function<bool(const TBooleanField&)>([](const TBooleanField& field) {
                                          return field.DisplayValues != "True;False";
                                      }));
    return info;
}

const ClassInfo& TDateTimeField::StaticClass() {
    static const ClassInfo info = DefineClass<TDateTimeField, TField>("TDateTimeField")
                                      .Published("DisplayFormat", &TField::DisplayFormat, &TField::SetDisplayFormat)
                                      .Published("EditMask", &TField::EditMask, &TField::SetEditMask);
    return info;
}
const ClassInfo& TDateField::StaticClass() {
    static const ClassInfo info = DefineClass<TDateField, TDateTimeField>("TDateField");
    return info;
}
const ClassInfo& TTimeField::StaticClass() {
    static const ClassInfo info = DefineClass<TTimeField, TDateTimeField>("TTimeField");
    return info;
}

const ClassInfo& TBlobField::StaticClass() {
    static const ClassInfo info = DefineClass<TBlobField, TField>("TBlobField")
                                      .Published("BlobType", &TBlobField::BlobType, &TBlobField::SetBlobType)
                                      .Default(ftBlob)
                                      .Published("Size", &TField::Size, &TField::SetSize)
                                      .Default(0);
    return info;
}

const ClassInfo& TMemoField::StaticClass() {
    static const ClassInfo info =
        DefineClass<TMemoField, TBlobField>("TMemoField")
            .Published("BlobType", &TBlobField::BlobType, &TBlobField::SetBlobType)
            .Default(ftMemo)
            .Published("Transliterate", &TMemoField::Transliterate, &TMemoField::Transliterate)
            .Default(true);
    return info;
}

const ClassInfo& TGraphicField::StaticClass() {
    static const ClassInfo info = DefineClass<TGraphicField, TBlobField>("TGraphicField")
                                      .Published("BlobType", &TBlobField::BlobType, &TBlobField::SetBlobType)
                                      .Default(ftGraphic);
    return info;
}

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
        case ftGraphic:
            return &TGraphicField::StaticClass();
        case ftSmallint:
            return &TSmallintField::StaticClass();
        case ftWord:
            return &TWordField::StaticClass();
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
