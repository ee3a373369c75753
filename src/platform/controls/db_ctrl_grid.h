#pragma once

#include <memory>
#include <vector>

#include "platform/controls/control_copies.h"
#include "platform/controls/win_control.h"
#include "platform/data/data_set.h"

namespace vyn {

class TDBCtrlGrid;

enum class TDBCtrlGridOrientation { goVertical, goHorizontal };
using enum TDBCtrlGridOrientation;
const EnumType& TypeInfoOf(TypeTag<TDBCtrlGridOrientation>);
enum class TDBCtrlGridBorder { gbNone, gbRaised };
using enum TDBCtrlGridBorder;
const EnumType& TypeInfoOf(TypeTag<TDBCtrlGridBorder>);
using TPaintPanelEvent = Event<void(TObject* DBCtrlGrid, int Index)>;

// A panel of a control grid: the one of the selected record, which holds the controls themselves, or the one of which
// pictures are taken for the others. Not stored.
class TDBCtrlPanel : public TWinControl {
    VYN_OBJECT
  public:
    enum class Role { Selected, Copy };
    TDBCtrlPanel(TDBCtrlGrid& grid, Role role);
    TDBCtrlGrid& Grid() const { return grid_; }
    bool IsSelected() const { return role_ == Role::Selected; }
    void MouseDown(TMouseButton button, TShiftState shift, int x, int y) override;
    void Click() override;
    void DblClick() override;

  protected:
    void ControlInserted(TControl* control) override;
    void ControlRemoved(TControl* control) override;

  private:
    TDBCtrlGrid& grid_;
    Role role_;
};

// Shows each record of a dataset on a panel of its own, with the controls that were put into the grid repeated on each.
//
// The controls stand on the panel of the selected record, which moves to where the dataset goes; there they are edited.
// The other panels are pictures of copies of them (control_copies.h), each showing its record; a click selects it. What
// is put into the grid comes onto the panel, and gets the grid's source as its own unless it has one.
// OnPaintPanel comes for each panel that is about to be drawn, with its place; meanwhile fields give its record's
// values.
//
// Keys, while the grid itself has the keyboard
//     arrows                   the panel beside
//     Page Up, Page Down       as many panels as are shown
//     Home, End                the first, last record
//     Enter, F2                into the panel's first control
//     Insert, Ctrl+Insert      a new record before this one, behind the last (AllowInsert)
//     Ctrl+Delete              delete the record, after asking (AllowDelete)
//     Escape                   forget what was changed in the record
// and while a control on the panel has it, and no use for the key
//     Tab, Shift+Tab           the control beside; from the last one to the first of the next record, and back
//     Ctrl+Page Up, +Page Down the same control on the panel above, below
//     Ctrl+Tab, Ctrl+Shift+Tab the form's control behind, before the grid
//     F2                       back to the grid
//     Escape                   forget what was changed in the record; when nothing was, back to the grid
class TDBCtrlGrid : public TCustomControl {
    VYN_OBJECT
  public:
    explicit TDBCtrlGrid(TComponent* owner);
    ~TDBCtrlGrid() override;

    TDataSource* DataSource() const;
    void SetDataSource(TDataSource* value);
    // The open dataset, or null.
    TDataSet* DataSet() const;
    // Panels beside and below each other, 1 to 100. More of them make the grid larger; a larger grid, its panels.
    int ColCount() const { return colCount_; }
    void SetColCount(int value);
    int RowCount() const { return rowCount_; }
    void SetRowCount(int value);
    int PanelWidth() const { return panelWidth_; }
    void SetPanelWidth(int value);
    int PanelHeight() const { return panelHeight_; }
    void SetPanelHeight(int value);
    // Records go on to the right and then below, and one scrolls down; or below and then to the right.
    TDBCtrlGridOrientation Orientation() const { return orientation_; }
    void SetOrientation(TDBCtrlGridOrientation value);
    TDBCtrlGridBorder PanelBorder() const { return panelBorder_; }
    void SetPanelBorder(TDBCtrlGridBorder value);
    TColor SelectedColor() const { return selectedColor_; }
    void SetSelectedColor(TColor value);
    // Whether a frame shows that the grid itself has the keyboard.
    bool ShowFocus() const { return showFocus_; }
    void SetShowFocus(bool value);
    bool AllowInsert = true;
    bool AllowDelete = true;
    TPaintPanelEvent OnPaintPanel;

    // What is shown: PanelCount panels from TopRecord on, whole lines of them.
    TDBCtrlPanel* Panel() const { return panel_; }
    int PanelCount() const { return colCount_ * rowCount_; }
    int LineLength() const { return orientation_ == goVertical ? colCount_ : rowCount_; }
    int64_t TopRecord() const;
    void SetTopRecord(int64_t record);
    TRect PanelRect(int index) const;
    // The place of the selected record's panel, also where it is out of sight; -1 without a record.
    int PanelIndex() const;
    // The end of the records shown.
    int64_t EndRecord() const;

    // For the peer. The copies' panel, and: has it show a record of those shown, and calls `draw`.
    TDBCtrlPanel* CopyPanel() const { return copyPanel_; }
    void PrepareCopies();
    void ShowCopy(int64_t record, const std::function<void()>& draw);
    void ProcessPanelClick(int index);

    void KeyDown(uint16_t& key, TShiftState shift) override;
    bool ChildKey(TWinControl& child, uint16_t key, TShiftState shift) override;
    bool WantsKey(uint16_t key, TShiftState shift) const override;
    bool DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) override;
    void SetBounds(int left, int top, int width, int height) override;
    void Loaded() override;
    void DoEnter() override;
    void DoExit() override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void ControlInserted(TControl* control) override;

  private:
    friend class TDBCtrlPanel;
    class Link;
    void DataChanged(DataEvent event);
    void PanelSizeChanged(int width, int height);
    int BarSize(TDBCtrlGridOrientation forOrientation) const;
    void PlacePanel();
    void KeepCurrentInSight();
    void PanelContentsChanged();
    void BindControls(TWinControl& parent);
    bool GridKey(uint16_t key, TShiftState shift);
    void Move(int64_t distance);
    void DeleteRecord();
    bool TabOn(TWinControl& from, bool forward);
    std::vector<TWinControl*> TabStops() const;

    std::unique_ptr<Link> link_;
    TDBCtrlPanel* panel_ = nullptr;
    TDBCtrlPanel* copyPanel_ = nullptr;
    // The copies' own way to the dataset.
    std::unique_ptr<TDataSource> copySource_;
    std::unique_ptr<ControlCopies> copies_;
    TDataSource* boundSource_ = nullptr;  // that the controls were given
    int64_t topRecord_ = 0;
    int64_t topNumbersMoved_ = 0;  // the dataset's when it was set
    int colCount_ = 1;
    int rowCount_ = 3;
    int panelWidth_ = 200;
    int panelHeight_ = 72;
    bool panelSizeRead_ = false;
    TDBCtrlGridOrientation orientation_ = goVertical;
    TDBCtrlGridBorder panelBorder_ = gbRaised;
    TColor selectedColor_ = clWindow;
    bool showFocus_ = true;
};

}  // namespace vyn
