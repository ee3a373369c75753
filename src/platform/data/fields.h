#pragma once

#include "platform/data/cells.h"
#include "platform/objects/component.h"

namespace vyn {

class TDataSet;
class TField;

using TFieldNotifyEvent = Event<void(TField* Sender)>;
using TFieldGetTextEvent = Event<void(TField* Sender, AnsiString& Text, bool DisplayText)>;
using TFieldSetTextEvent = Event<void(TField* Sender, AnsiString Text)>;

// Where a field's value comes from.
enum class TFieldKind {
    fkData,          // a column
    fkCalculated,    // the dataset's OnCalcFields
    fkLookup,        // the record of another dataset
    fkInternalCalc,  // as fkCalculated
};
using enum TFieldKind;
const EnumType& TypeInfoOf(TypeTag<TFieldKind>);

// One column of a dataset: reads and writes the current record's value, and shows it as text.
//
// A dataset makes fields for its columns when it opens and frees them when it closes; fields that a form stores (owned
// by the form, with their dataset) stay and are bound by FieldName. Values may be set while the dataset is in the
// states edit and insert; what is wrong raises EDatabaseError (or the conversion's own error) and changes nothing.
// Reading a field of a closed dataset raises EDatabaseError. The classes are in field_classes.h. Main thread only.
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
    int Index() const;
    void SetIndex(int value);
    virtual bool IsNumeric() const { return false; }
    // Dates, times, and both.
    virtual bool IsDateTime() const { return false; }

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
    // The value before it was edited.
    Variant OldValue() const;

    // Setting them. An empty text clears all fields but texts. A text is read as the user's settings say; where it
    // repeats what is shown, stored characters that cannot be shown stay.
    void SetValue(const Variant& value);
    void SetAsString(const AnsiString& value);
    void SetAsInteger(int64_t value);
    void SetAsFloat(double value);
    void SetAsDateTime(TDateTime value);
    void SetAsCurrency(Currency value);
    void SetAsBoolean(bool value);
    void SetRawBytes(std::string bytes);
    void Clear();
    // Whether the dataset and the field let themselves be written.
    bool CanModify() const;
    virtual bool IsValidChar(char c) const { return true; }

    // As shown: through OnGetText when it is set, else with the display format.
    AnsiString DisplayText() const;
    // The same for any fetched record.
    AnsiString DisplayTextOf(int64_t record) const;
    // As it is edited, and back (through OnSetText when it is set).
    AnsiString Text() const;
    void SetText(const AnsiString& value);
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
    // The set alignment, or the type's own: numbers stand right.
    TAlignment Alignment() const { return alignmentSet_ ? alignment_ : DefaultAlignment(); }
    void SetAlignment(TAlignment value);
    bool IsAlignmentStored() const { return alignmentSet_; }
    TAlignment DefaultAlignment() const { return IsNumeric() ? taRightJustify : taLeftJustify; }
    // Masks of FormatFloat or FormatDateTime, by type: as shown, and as edited.
    const AnsiString& DisplayFormat() const { return displayFormat_; }
    void SetDisplayFormat(const AnsiString& value);
    const AnsiString& EditFormat() const { return editFormat_; }
    void SetEditFormat(const AnsiString& value);
    // The mask through which the value is typed, and shown when it is a text (edit_mask.h).
    const AnsiString& EditMask() const { return editMask_; }
    void SetEditMask(const AnsiString& value);
    bool CurrencyFormat() const { return currency_; }
    void SetCurrencyFormat(bool value);
    // What true and false are called: "Sí;No".
    AnsiString DisplayValues = "True;False";

    // Rules.
    bool ReadOnly = false;
    bool Required = false;
    // What a record must satisfy to be posted (row_expression.h; a name that no field has means this field's value),
    // and what is said when it does not. Nothing satisfies everything.
    AnsiString CustomConstraint;
    AnsiString ConstraintErrorMessage;
    // The value in a new record: a constant, or NOW, DATE, TIME with parentheses.
    AnsiString DefaultExpression;
    AnsiString Origin;

    // Fields without a column: calculated ones, and those whose value stands in LookupDataSet, in the field
    // LookupResultField of the record whose LookupKeyFields are as KeyFields here.
    TFieldKind FieldKind() const { return kind_; }
    void SetFieldKind(TFieldKind value);
    AnsiString KeyFields;
    AnsiString LookupKeyFields;
    AnsiString LookupResultField;
    // Whether the other dataset's records are read once, and found by their keys from then on.
    bool LookupCache = false;
    // Reads them again.
    void RefreshLookupList();
    TDataSet* LookupDataSet() const { return lookupDataSet_; }
    void SetLookupDataSet(TDataSet* value);

    TFieldNotifyEvent OnChange;
    TFieldGetTextEvent OnGetText;
    TFieldSetTextEvent OnSetText;
    TFieldNotifyEvent OnValidate;

    // For the dataset: binds the field to a column.
    void Bind(const FieldDefinition& definition, int column);
    void Unbind() { column_ = -1; }

    void SetParentComponent(TComponent* parent) override;
    TComponent* GetParentComponent() const override;
    bool HasParent() const override { return dataSet_ != nullptr; }

  protected:
    TField(TComponent* owner, TFieldType dataType, int size = 0)
        : TComponent(owner), dataType_(dataType), size_(size) {}
    void Notification(TComponent* component, TOperation operation) override;
    // Raises EDatabaseError for a value outside the field's own limits.
    virtual void CheckRange(const Cell& value) const {}
    [[noreturn]] void RaiseRange(const AnsiString& value, const AnsiString& lowest, const AnsiString& highest) const;
    // For classes over other types of the same kind.
    void SetDataType(TFieldType type) { dataType_ = type; }

  private:
    friend class TDataSet;
    TDataSet& OpenDataSet() const;
    int64_t CurrentRow() const;
    Cell CellIn(int64_t row) const;
    bool IsNullInRow(int64_t row) const;
    Variant ValueInRow(int64_t row) const;
    AnsiString TextIn(int64_t row, bool display) const;
    AnsiString FormattedText(int64_t row, bool display) const;
    int DefaultWidth() const;
    void SetCell(Cell cell);
    Cell CellOfText(const AnsiString& text) const;
    void CheckSize(const Cell& cell) const;
    bool IsCalculated() const { return kind_ != fkData; }
    Variant LookedUp(const std::vector<Variant>& keys) const;
    void LayoutChanged();

    TDataSet* dataSet_ = nullptr;
    TFieldType dataType_ = ftUnknown;
    TFieldKind kind_ = fkData;
    TDataSet* lookupDataSet_ = nullptr;
    int column_ = -1;
    int size_ = 0;
    int limit_ = 0;  // characters that the column takes, 0: any number
    bool columnReadOnly_ = false;
    bool columnAutomatic_ = false;
    AnsiString fieldName_;
    AnsiString displayLabel_;
    AnsiString displayFormat_;
    AnsiString editFormat_;
    AnsiString editMask_;
    struct LookupList;
    mutable std::shared_ptr<LookupList> lookupList_;
    int displayWidth_ = 0;
    bool visible_ = true;
    bool currency_ = false;
    TAlignment alignment_ = taLeftJustify;
    bool alignmentSet_ = false;
};

// Links the field classes, TDataSource and the dataset classes of this room.
void RegisterDataClasses();

}  // namespace vyn

#include "platform/data/field_classes.h"
