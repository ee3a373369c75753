#pragma once

#include "platform/data/field_types.h"
#include "platform/objects/component.h"
#include "platform/values/variant.h"

namespace vyn {

class TDataSet;
class TField;

using TFieldGetTextEvent = Event<void(TField* Sender, AnsiString& Text, bool DisplayText)>;

// One column of a dataset: reads the current record's value, and shows it as text.
//
// A dataset makes fields for its columns when it opens and frees them when it closes; fields that a form stores (owned
// by the form, with their dataset) stay and are bound by FieldName. The current record is the dataset's; reading a
// field of a closed dataset raises EDatabaseError. Main thread only.
class TField : public TComponent {
    VYN_OBJECT
  public:
    explicit TField(TComponent* owner) : TComponent(owner) {}
    ~TField() override;

    TDataSet* DataSet() const { return dataSet_; }
    // Adds the field to a dataset's list (or takes it out of it).
    void SetDataSet(TDataSet* dataSet);
    TFieldType DataType() const { return dataType_; }
    // Where the column stands in the rows; -1 while it is not bound.
    int FieldNo() const { return column_; }
    int Size() const { return size_; }
    void SetSize(int value) { size_ = value; }

    // Values of the current record.
    bool IsNull() const;
    Variant Value() const;
    // Windows-1252; "?" stands for characters that it cannot hold.
    AnsiString AsString() const;
    int64_t AsInteger() const;
    double AsFloat() const;
    TDateTime AsDateTime() const;
    Currency AsCurrency() const;
    bool AsBoolean() const;
    // A text's UTF-8, or a binary column's bytes, as stored; valid until the dataset changes.
    std::string_view RawBytes() const;
    // As shown: through OnGetText when it is set, else with the display format.
    AnsiString DisplayText() const;
    // The same for any fetched record.
    AnsiString DisplayTextOf(int64_t record) const;
    bool IsNullIn(int64_t record) const;
    Variant ValueIn(int64_t record) const;

    // How it looks.
    const AnsiString& FieldName() const { return fieldName_; }
    void SetFieldName(const AnsiString& value);
    // The label, or the field's name.
    AnsiString DisplayLabel() const { return displayLabel_.empty() ? fieldName_ : displayLabel_; }
    void SetDisplayLabel(const AnsiString& value);
    bool IsDisplayLabelStored() const { return !displayLabel_.empty(); }
    // Characters; 0 sets the type's own width.
    int DisplayWidth() const { return displayWidth_ > 0 ? displayWidth_ : DefaultWidth(); }
    void SetDisplayWidth(int value);
    bool IsDisplayWidthStored() const { return displayWidth_ > 0; }
    bool Visible() const { return visible_; }
    void SetVisible(bool value);
    int Index() const;
    void SetIndex(int value);
    // The set alignment, or the type's own: numbers stand right.
    TAlignment Alignment() const { return alignmentSet_ ? alignment_ : DefaultAlignment(); }
    void SetAlignment(TAlignment value);
    bool IsAlignmentStored() const { return alignmentSet_; }
    TAlignment DefaultAlignment() const;
    // Masks of FormatFloat or FormatDateTime, by type.
    const AnsiString& DisplayFormat() const { return displayFormat_; }
    void SetDisplayFormat(const AnsiString& value);
    bool CurrencyFormat() const { return currency_; }
    void SetCurrencyFormat(bool value);
    // What true and false are called: "Sí;No".
    AnsiString DisplayValues = "True;False";
    bool ReadOnly = false;
    bool Required = false;
    TFieldGetTextEvent OnGetText;

    // For the dataset: binds the field to a column.
    void Bind(const FieldDefinition& definition, int column);
    void Unbind() { column_ = -1; }

    void SetParentComponent(TComponent* parent) override;
    TComponent* GetParentComponent() const override;
    bool HasParent() const override { return dataSet_ != nullptr; }

  protected:
    TField(TComponent* owner, TFieldType dataType) : TComponent(owner), dataType_(dataType) {}

  private:
    friend class TDataSet;
    int64_t CurrentRecord() const;
    int DefaultWidth() const;
    AnsiString TextOf(int64_t record) const;
    void LayoutChanged();

    TDataSet* dataSet_ = nullptr;
    TFieldType dataType_ = ftUnknown;
    int column_ = -1;
    int size_ = 0;
    int precision_ = 0;
    AnsiString fieldName_;
    AnsiString displayLabel_;
    AnsiString displayFormat_;
    int displayWidth_ = 0;
    bool visible_ = true;
    bool currency_ = false;
    TAlignment alignment_ = taLeftJustify;
    bool alignmentSet_ = false;
};

// The class of field that a type makes.
TClass FieldClassOf(TFieldType type);

// One class a type, so that stored forms name them.
template <TFieldType Type>
class TTypedField : public TField {
  public:
    explicit TTypedField(TComponent* owner) : TField(owner, Type) {}
    static const ClassInfo& StaticClass();
    const ClassInfo& GetClassInfo() const override { return StaticClass(); }
};
using TStringField = TTypedField<ftString>;
using TWideStringField = TTypedField<ftWideString>;
using TMemoField = TTypedField<ftMemo>;
using TSmallintField = TTypedField<ftSmallint>;
using TIntegerField = TTypedField<ftInteger>;
using TAutoIncField = TTypedField<ftAutoInc>;
using TLargeintField = TTypedField<ftLargeint>;
using TFloatField = TTypedField<ftFloat>;
using TCurrencyField = TTypedField<ftCurrency>;
using TBCDField = TTypedField<ftBCD>;
using TBooleanField = TTypedField<ftBoolean>;
using TDateField = TTypedField<ftDate>;
using TTimeField = TTypedField<ftTime>;
using TDateTimeField = TTypedField<ftDateTime>;
using TBlobField = TTypedField<ftBlob>;

// Links the field classes, TDataSource and the dataset classes of this room.
void RegisterDataClasses();

}  // namespace vyn
