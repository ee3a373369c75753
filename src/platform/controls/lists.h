#pragma once

#include <vector>

#include "platform/controls/edits.h"
#include "platform/objects/strings.h"

namespace vyn {

enum class TListBoxStyle { lbStandard, lbOwnerDrawFixed, lbOwnerDrawVariable };
using enum TListBoxStyle;
const EnumType& TypeInfoOf(TypeTag<TListBoxStyle>);
using TMeasureItemEvent = Event<void(TObject* Control, int Index, int& Height)>;

// Lines to choose from; one, or several when MultiSelect.
class TCustomListBox : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomListBox(TComponent* owner);
    ~TCustomListBox() override;

    TStrings* Items() { return items_.get(); }
    void SetItems(TStrings* value);
    int Count() const;
    // The chosen line (of several: the one with the focus), or -1. Setting it fires nothing; what users do clicks.
    int ItemIndex() const { return itemIndex_; }
    void SetItemIndex(int value);
    bool Selected(int index) const;  // raises EListError
    void SetSelected(int index, bool value);
    int SelCount() const;
    int TopIndex() const { return topIndex_; }
    void SetTopIndex(int value);
    void Clear();
    void ClearSelection();
    void SelectAll();
    // The line at a place, or (existing false) the one behind the last; -1 outside.
    int ItemAtPos(TPoint at, bool existing) const;
    TRect ItemRect(int index) const;

    TBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TBorderStyle value);
    int Columns() const { return columns_; }
    void SetColumns(int value);
    bool ExtendedSelect() const { return extendedSelect_; }
    void SetExtendedSelect(bool value);
    bool IntegralHeight() const { return integralHeight_; }
    void SetIntegralHeight(bool value);
    int ItemHeight() const;
    void SetItemHeight(int value);
    bool MultiSelect() const { return multiSelect_; }
    void SetMultiSelect(bool value);
    bool Sorted() const { return sorted_; }
    void SetSorted(bool value);
    TListBoxStyle Style() const { return style_; }
    void SetStyle(TListBoxStyle value);
    int TabWidth() const { return tabWidth_; }
    void SetTabWidth(int value);
    TMeasureItemEvent OnMeasureItem;
    // Kept under its name; drawing by handlers needs a canvas, which this room has not.
    TNotifyEvent OnDrawItem;

    // The user chose: the line with the focus and which lines are selected now.
    virtual void ProcessSelect(int itemIndex, const std::vector<int>& selected);
    void ProcessTopIndex(int value) { topIndex_ = value; }
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    void MouseDown(TMouseButton button, TShiftState shift, int x, int y) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;

  private:
    friend class ListBoxStrings;
    void SelectByUser(int index, TShiftState shift);
    void ItemsChanged();

    std::unique_ptr<TStrings> items_;
    int itemIndex_ = -1;
    int anchorIndex_ = -1;
    int topIndex_ = 0;
    int columns_ = 0;
    int itemHeight_ = 16;
    int tabWidth_ = 0;
    TBorderStyle borderStyle_ = TBorderStyle::bsSingle;
    TListBoxStyle style_ = lbStandard;
    bool extendedSelect_ = true;
    bool integralHeight_ = false;
    bool multiSelect_ = false;
    bool sorted_ = false;
    AnsiString typed_;
    uint32_t typedAt_ = 0;
};
const PropertyCatalogue& ListBoxProperties();

class TListBox : public TCustomListBox {
    VYN_OBJECT
  public:
    explicit TListBox(TComponent* owner) : TCustomListBox(owner) {}
};

enum class TComboBoxStyle { csDropDown, csSimple, csDropDownList, csOwnerDrawFixed, csOwnerDrawVariable };
using enum TComboBoxStyle;
const EnumType& TypeInfoOf(TypeTag<TComboBoxStyle>);

// A text with a list to choose it from. With csDropDownList the text is always a line of the list.
class TCustomComboBox : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomComboBox(TComponent* owner);
    ~TCustomComboBox() override;

    TStrings* Items() { return items_.get(); }
    void SetItems(TStrings* value);
    // The chosen line, or -1. Setting it sets the text and fires nothing.
    virtual int ItemIndex() const { return itemIndex_; }
    virtual void SetItemIndex(int value);
    void Clear();
    bool DroppedDown() const { return droppedDown_; }
    void SetDroppedDown(bool value);
    void SelectAll();
    int SelStart() const { return selStart_; }
    void SetSelStart(int value);
    int SelLength() const { return selLength_; }
    void SetSelLength(int value);
    AnsiString SelText() const;
    void SetSelText(const AnsiString& text);

    TEditCharCase CharCase() const { return charCase_; }
    void SetCharCase(TEditCharCase value);
    int DropDownCount() const { return dropDownCount_; }
    void SetDropDownCount(int value);
    int ItemHeight() const { return itemHeight_; }
    void SetItemHeight(int value);
    bool IsItemHeightStored() const { return style_ == csOwnerDrawFixed || style_ == csOwnerDrawVariable; }
    int MaxLength() const { return maxLength_; }
    void SetMaxLength(int value);
    bool Sorted() const { return sorted_; }
    void SetSorted(bool value);
    TComboBoxStyle Style() const { return style_; }
    virtual void SetStyle(TComboBoxStyle value);
    bool HasEdit() const { return style_ == csDropDown || style_ == csSimple; }
    TNotifyEvent OnChange;
    TNotifyEvent OnDropDown;
    TMeasureItemEvent OnMeasureItem;
    TNotifyEvent OnDrawItem;

    // The user typed; chose a line (fires Click, then Change); opened or closed the list.
    virtual void ProcessTextEdit(const AnsiString& text, int selStart, int selLength);
    virtual void ProcessSelect(int index);
    void ProcessDropDown(bool open);

    void SetCaption(const AnsiString& text) override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    virtual void Change() { OnChange(this); }
    virtual void DropDown() { OnDropDown(this); }
    void Loaded() override;

  protected:
    void FontChanged() override;
    // Chooses without events.
    void PutItemIndex(int value);

  private:
    friend class ComboBoxStrings;
    void ItemsChanged();

    std::unique_ptr<TStrings> items_;
    int itemIndex_ = -1;
    int selStart_ = 0;
    int selLength_ = 0;
    int dropDownCount_ = 8;
    int itemHeight_ = 16;
    int maxLength_ = 0;
    TComboBoxStyle style_ = csDropDown;
    TEditCharCase charCase_ = ecNormal;
    bool sorted_ = false;
    bool droppedDown_ = false;
};
const PropertyCatalogue& ComboBoxProperties();

class TComboBox : public TCustomComboBox {
    VYN_OBJECT
  public:
    explicit TComboBox(TComponent* owner) : TCustomComboBox(owner) {}
};

}  // namespace vyn
