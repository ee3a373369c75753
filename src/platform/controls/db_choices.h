#pragma once

#include "platform/controls/field_bound.h"
#include "platform/controls/groups.h"
#include "platform/controls/lists.h"

// Controls that choose a field's value among some.
namespace vyn {

// Lines of which one is the field's text; choosing another puts it into the field.
class TDBListBox : public FieldBound<TCustomListBox> {
    VYN_OBJECT
  public:
    explicit TDBListBox(TComponent* owner) : FieldBound(owner) {}
    void ProcessSelect(int itemIndex, const std::vector<int>& selected) override;

  protected:
    void DataChange() override;
    void UpdateData() override;
};

// A text with lines to choose it from.
class TDBComboBox : public FieldBound<TCustomComboBox> {
    VYN_OBJECT
  public:
    explicit TDBComboBox(TComponent* owner) : FieldBound(owner) {}
    void ProcessTextEdit(const AnsiString& text, int selStart, int selLength) override;
    void ProcessSelect(int index) override;

  protected:
    void DataChange() override;
    void UpdateData() override;
};

// A box for a field of two values, grayed while the field is empty or holds a third. For fields that are no booleans
// ValueChecked and ValueUnchecked say which texts mean what, several of them separated by semicolons; the first is the
// one that is stored.
class TDBCheckBox : public FieldBound<TCustomCheckBox> {
    VYN_OBJECT
  public:
    explicit TDBCheckBox(TComponent* owner) : FieldBound(owner) {}
    const AnsiString& ValueChecked() const { return checkedText_; }
    void SetValueChecked(const AnsiString& value);
    const AnsiString& ValueUnchecked() const { return uncheckedText_; }
    void SetValueUnchecked(const AnsiString& value);
    // Begins to edit the record; without that the box stays as it is.
    void Toggle() override;

  protected:
    void DataChange() override;
    void UpdateData() override;

  private:
    TCheckBoxState FieldState() const;
    AnsiString checkedText_ = "True";
    AnsiString uncheckedText_ = "False";
};

// A radio button for each line of Items; the field holds the line of Values at the same place, or the item itself where
// there is none.
class TDBRadioGroup : public FieldBound<TCustomRadioGroup> {
    VYN_OBJECT
  public:
    explicit TDBRadioGroup(TComponent* owner);
    TStrings* Values() { return &values_; }
    void SetValues(TStrings* value) { values_.Assign(value); }
    // What the chosen button stands for, or a text that no button stands for.
    const AnsiString& Value() const { return value_; }
    void SetValue(const AnsiString& value);
    TNotifyEvent OnChange;
    bool CanModify() override { return EditField(); }
    void Click() override;
    void Loaded() override;

  protected:
    void DataChange() override;
    void UpdateData() override;

  private:
    AnsiString ValueOf(int index);
    void ShowValue();

    TStringList values_;
    AnsiString value_;
    bool showing_ = false;
};

}  // namespace vyn
