#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/controls/db_grids.h"
#include "platform/controls/lookup.h"

// Controls that choose a field's value among the records of another dataset.
namespace vyn {

// Records in rows of which one is highlighted: a grid whose current row is no dataset's. In a paged dataset, where
// records have no lasting numbers, it is the current record that is highlighted.
class TLookupRows : public TCustomDBGrid {
    VYN_OBJECT
  public:
    explicit TLookupRows(TComponent* owner);
    // Shows the list of a lookup and highlights its record.
    void Follow(Lookup& lookup);
    int64_t HighlightedRecord() const override;
    void Highlight(int64_t record);
    // Where a key goes from the highlighted record, or nothing for other keys.
    std::optional<int64_t> RecordFor(uint16_t key, TShiftState shift);
    // What the same keys do where nothing may be chosen; false for other keys.
    bool ScrollFor(uint16_t key, TShiftState shift);
    // The width that shows every field.
    int NaturalWidth() const;
    void SetBounds(int left, int top, int width, int height) override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;

  protected:
    void DataChanged(DataEvent event) override;
    void FontChanged() override;

  private:
    void ShowFields(const std::vector<AnsiString>& names);
    void FitColumns();

    std::vector<AnsiString> shownNames_;
    int64_t highlighted_ = -1;
};

// The records of a list in rows; the one whose key is the field's value is highlighted.
//
// Keys
//     Up, Down, Page Up, Page Down, Home, End   another record, whose key becomes the value
//     a character, Backspace                    the first record whose text begins with what is typed; a pause of two
//                                               seconds begins anew
//     NullValueKey                              no value
//     Escape                                    the value that was there before
// Where the value may not be changed the keys scroll the list.
class TDBLookupListBox : public LookupBound<TLookupRows> {
    VYN_OBJECT
  public:
    explicit TDBLookupListBox(TComponent* owner);
    ~TDBLookupListBox() override;

    // The rows that fit; setting them sets the height.
    int RowCount() const { return VisibleRows(); }
    void SetRowCount(int value);
    bool IsRowCountStored() const { return false; }  // the height is

    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    void ProcessCellClick(int64_t record, int column, TShiftState shift) override;
    void ProcessCellDblClick(int64_t, int) override {}

  protected:
    void LookupShown() override;
};

// On which side the list is level with its combo box, where it is wider.
enum class TDropDownAlign { daLeft, daRight, daCenter };
using enum TDropDownAlign;
const EnumType& TypeInfoOf(TypeTag<TDropDownAlign>);

class TDBLookupComboBox;

// The list of a combo box, while it is dropped. Its peer is a window of its own, and hands it the keys that the combo
// box then gets.
class TLookupDropDown : public TLookupRows {
    VYN_OBJECT
  public:
    explicit TLookupDropDown(TDBLookupComboBox& box);
    TDBLookupComboBox& Box() const { return box_; }
    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t, TShiftState) const override { return true; }
    void ProcessCellClick(int64_t record, int column, TShiftState shift) override;
    void ProcessCellDblClick(int64_t, int) override {}
    void ProcessRecordHover(int64_t record) override;
    void ProcessRecordRelease(int64_t record) override;

  private:
    TDBLookupComboBox& box_;
};

// Shows the text of the list's record whose key is the field's value, and drops the list to choose another.
//
// Keys
//     F4, Alt+Down, Alt+Up      drop the list; again: take the highlighted record
//     a character, Backspace    drop the list at the first record whose text begins with what is typed; a pause of two
//                               seconds begins anew
//     Up, Down                  the record beside, whose key becomes the value
//     NullValueKey              no value
//     Escape                    the value that was there before
// and in the list
//     Up, Down, Page Up, Page Down, Home, End   another record
//     Enter, Tab                take the highlighted record
//     Escape                    close the list
// A click outside closes the list too. Where the value may not be changed the list can still be looked at.
class TDBLookupComboBox : public LookupBound<TCustomControl> {
    VYN_OBJECT
  public:
    explicit TDBLookupComboBox(TComponent* owner);
    ~TDBLookupComboBox() override;

    TDropDownAlign DropDownAlign = daLeft;
    // At most so many; fewer where there are fewer.
    int DropDownRows() const { return dropDownRows_; }
    void SetDropDownRows(int value);
    // In pixels; 0 is the combo box's own width, or what several fields need.
    int DropDownWidth() const { return dropDownWidth_; }
    void SetDropDownWidth(int value);

    bool DroppedDown() const { return droppedDown_; }
    void DropDown();
    enum class Close { Take, Leave };
    void CloseUp(Close how);
    // The list; null before it is dropped for the first time.
    TLookupDropDown* List() const { return list_.get(); }
    TNotifyEvent OnDropDown;
    TNotifyEvent OnCloseUp;

    // From the peer: the button was pressed.
    void ProcessButton() { droppedDown_ ? CloseUp(Close::Leave) : DropDown(); }

    void KeyDown(uint16_t& key, TShiftState shift) override;
    void KeyPress(char& key) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    void SetBounds(int left, int top, int width, int height) override;
    void GetChildren(const std::function<void(TComponent*)>&, TComponent*) override {}

  protected:
    void LookupShown() override;
    void DoExit() override;
    void FontChanged() override;
    void EnabledChanged() override;
    void VisibleChanged() override;

  private:
    void PlaceList();

    std::unique_ptr<TLookupDropDown> list_;
    int dropDownRows_ = 7;
    int dropDownWidth_ = 0;
    bool droppedDown_ = false;
};

}  // namespace vyn
