#include "platform/controls/db_ctrl_grid.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/property_catalogue.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/text_metrics.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

namespace ctrl_grid_detail {

constexpr int kMostLines = 100;
constexpr int kWheelStep = 120;  // one notch

}  // namespace ctrl_grid_detail

VYN_ENUM_NAMES(TDBCtrlGridOrientation, "goVertical", "goHorizontal")
VYN_ENUM_NAMES(TDBCtrlGridBorder, "gbNone", "gbRaised")

// The panel.

const ClassInfo& TDBCtrlPanel::StaticClass() {
    static const ClassInfo info("TDBCtrlPanel", &TWinControl::StaticClass(), nullptr, {}, {});
    return info;
}

TDBCtrlPanel::TDBCtrlPanel(TDBCtrlGrid& grid, Role role) : TWinControl(nullptr), grid_(grid), role_(role) {
    ControlStyle = {csAcceptsControls, csCaptureMouse, csClickEvents, csDoubleClicks};
    SetVisible(false);
}

void TDBCtrlPanel::ControlInserted(TControl* control) {
    TWinControl::ControlInserted(control);
    if (IsSelected()) grid_.PanelContentsChanged();
}

void TDBCtrlPanel::ControlRemoved(TControl* control) {
    TWinControl::ControlRemoved(control);
    if (IsSelected()) grid_.PanelContentsChanged();
}

void TDBCtrlPanel::MouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    if (button == mbLeft && grid_.CanFocus() && GetParentForm(&grid_)) grid_.SetFocus();
    grid_.MouseDown(button, shift, Left() + x, Top() + y);
}

void TDBCtrlPanel::Click() { grid_.Click(); }
void TDBCtrlPanel::DblClick() { grid_.DblClick(); }

// The grid's ear at its source.
class TDBCtrlGrid::Link : public TDataLink {
  public:
    explicit Link(TDBCtrlGrid& grid) : grid_(grid) {}

  protected:
    void Changed(DataEvent event, TField*) override { grid_.DataChanged(event); }

  private:
    TDBCtrlGrid& grid_;
};

const ClassInfo& TDBCtrlGrid::StaticClass() {
    static const ClassInfo info = [] {
        using Grid = TDBCtrlGrid;
        PropertyCatalogue own(&WinControlProperties());
        own.Add(WinControlProperties().WithDefault("TabStop", true));
        own.Add("AllowDelete", &Grid::AllowDelete, &Grid::AllowDelete).Default(true);
        own.Add("AllowInsert", &Grid::AllowInsert, &Grid::AllowInsert).Default(true);
        own.Add("ColCount", &Grid::ColCount, &Grid::SetColCount).Default(1);
        own.Add("DataSource", &Grid::DataSource, &Grid::SetDataSource);
        own.Add("Orientation", &Grid::Orientation, &Grid::SetOrientation).Default(goVertical);
        own.Add("PanelBorder", &Grid::PanelBorder, &Grid::SetPanelBorder).Default(gbRaised);
        own.Add("PanelHeight", &Grid::PanelHeight, &Grid::SetPanelHeight);
        own.Add("PanelWidth", &Grid::PanelWidth, &Grid::SetPanelWidth);
        own.Add("RowCount", &Grid::RowCount, &Grid::SetRowCount).Default(3);
        own.Add("SelectedColor", &Grid::SelectedColor, &Grid::SetSelectedColor).Default(clWindow);
        own.Add("ShowFocus", &Grid::ShowFocus, &Grid::SetShowFocus).Default(true);
        own.Event("OnPaintPanel", &Grid::OnPaintPanel);
        return Publish(
            DefineClass<TDBCtrlGrid, TCustomControl>("TDBCtrlGrid"), own,
            "Align AllowDelete AllowInsert Anchors ColCount Color Constraints DataSource DragCursor DragKind DragMode "
            "Enabled Font Orientation PanelBorder PanelHeight PanelWidth ParentColor ParentFont ParentShowHint "
            "PopupMenu RowCount SelectedColor ShowFocus ShowHint TabOrder TabStop Visible OnClick OnContextPopup "
            "OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp "
            "OnMouseDown OnMouseMove OnMouseUp OnPaintPanel OnStartDock OnStartDrag");
    }();
    return info;
}

TDBCtrlGrid::TDBCtrlGrid(TComponent* owner) : TCustomControl(owner), link_(std::make_unique<Link>(*this)) {
    SetTabStop(true);
    panel_ = new TDBCtrlPanel(*this, TDBCtrlPanel::Role::Selected);
    panel_->SetColor(selectedColor_);
    panel_->SetParent(this);
    copyPanel_ = new TDBCtrlPanel(*this, TDBCtrlPanel::Role::Copy);
    copyPanel_->SetParent(this);
    copySource_ = std::make_unique<TDataSource>(nullptr);
    copies_ = std::make_unique<ControlCopies>(*panel_, *copyPanel_);
    SetBounds(Left(), Top(), colCount_ * panelWidth_ + BarSize(goVertical), rowCount_ * panelHeight_);
}

TDBCtrlGrid::~TDBCtrlGrid() {
    BeginDestruction();
    link_.reset();
    DestroyContents();  // while their source is there
    panel_ = copyPanel_ = nullptr;
}

TDataSource* TDBCtrlGrid::DataSource() const { return link_ ? link_->DataSource() : nullptr; }

void TDBCtrlGrid::SetDataSource(TDataSource* value) {
    if (value == DataSource()) return;
    link_->SetDataSource(value);
    if (value) value->FreeNotification(this);
    if (!HasState(csLoading)) BindControls(*panel_);
}

TDataSet* TDBCtrlGrid::DataSet() const { return link_ ? link_->ActiveDataSet() : nullptr; }

void TDBCtrlGrid::Notification(TComponent* component, TOperation operation) {
    TCustomControl::Notification(component, operation);
    if (operation == opRemove && link_ && component == link_->DataSource()) link_->SetDataSource(nullptr);
    if (operation == opRemove && component == boundSource_) boundSource_ = nullptr;
}

// Contents.

void TDBCtrlGrid::ControlInserted(TControl* control) {
    TCustomControl::ControlInserted(control);
    if (control != panel_ && copies_) control->SetParent(panel_);
}

void TDBCtrlGrid::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    panel_->GetChildren(visit, root);
}

void TDBCtrlGrid::SetChildOrder(TComponent* child, int order) { panel_->SetChildOrder(child, order); }

void TDBCtrlGrid::PanelContentsChanged() {
    if (!copies_ || HasState(csDestroying)) return;
    copies_->Forget();
    if (HasState(csLoading)) return;
    BindControls(*panel_);
    PeerChanged(PeerChange::Items);
}

// Controls without a source have the grid's.
void TDBCtrlGrid::BindControls(TWinControl& parent) {
    TDataSource* source = DataSource();
    const auto bind = [&](TControl& control) {
        const PropertyInfo* property = control.GetClassInfo().FindProperty("DataSource");
        if (!property || property->Kind != PropertyKind::Class) return;
        TPersistent* held = (*property)->GetObject(control);
        if (held != source && (!held || held == boundSource_)) (*property)->SetObject(control, source);
    };
    const std::function<void(TWinControl&)> walk = [&](TWinControl& inside) {
        for (int i = 0; i < inside.ControlCount(); ++i) {
            TControl* control = inside.Controls(i);
            bind(*control);
            if (auto* window = ObjectCast<TWinControl>(control)) walk(*window);
        }
    };
    walk(parent);
    boundSource_ = source;
    if (source) source->FreeNotification(this);
}

void TDBCtrlGrid::PrepareCopies() {
    copySource_->SetDataSet(DataSet());
    copyPanel_->SetBounds(0, 0, panelWidth_, panelHeight_);
    copies_->Update(DataSource(), copySource_.get());
}

void TDBCtrlGrid::ShowCopy(int64_t record, const std::function<void()>& draw) {
    copySource_->ShowRecord(record, [&] {
        OnPaintPanel(this, static_cast<int>(record - TopRecord()));
        draw();
    });
}

// Places.

int TDBCtrlGrid::BarSize(TDBCtrlGridOrientation forOrientation) const {
    return orientation_ == forOrientation ? CurrentTextMetrics().ScrollBarSize() : 0;
}

void TDBCtrlGrid::PanelSizeChanged(int width, int height) {
    if (HasState(csLoading)) {
        panelWidth_ = width;
        panelHeight_ = height;
        panelSizeRead_ = true;
        panel_->SetBounds(0, 0, width, height);  // what anchors inside start from
        return;
    }
    SetBounds(Left(), Top(), width * colCount_ + BarSize(goVertical), height * rowCount_ + BarSize(goHorizontal));
}

void TDBCtrlGrid::SetColCount(int value) {
    colCount_ = std::clamp(value, 1, ctrl_grid_detail::kMostLines);
    if (!HasState(csLoading)) PanelSizeChanged(panelWidth_, panelHeight_);
}
void TDBCtrlGrid::SetRowCount(int value) {
    rowCount_ = std::clamp(value, 1, ctrl_grid_detail::kMostLines);
    if (!HasState(csLoading)) PanelSizeChanged(panelWidth_, panelHeight_);
}
void TDBCtrlGrid::SetPanelWidth(int value) {
    PanelSizeChanged(std::clamp(value, 1, MaximumExtent / ctrl_grid_detail::kMostLines), panelHeight_);
}
void TDBCtrlGrid::SetPanelHeight(int value) {
    PanelSizeChanged(panelWidth_, std::clamp(value, 1, MaximumExtent / ctrl_grid_detail::kMostLines));
}

void TDBCtrlGrid::SetOrientation(TDBCtrlGridOrientation value) {
    if (value == orientation_) return;
    orientation_ = value;
    if (!HasState(csLoading)) PanelSizeChanged(panelWidth_, panelHeight_);
    PeerChanged(PeerChange::Style);
    KeepCurrentInSight();
}

void TDBCtrlGrid::SetPanelBorder(TDBCtrlGridBorder value) {
    panelBorder_ = value;
    PeerChanged(PeerChange::Style);
}
void TDBCtrlGrid::SetSelectedColor(TColor value) {
    selectedColor_ = value;
    panel_->SetColor(value);
}
void TDBCtrlGrid::SetShowFocus(bool value) {
    showFocus_ = value;
    panel_->Invalidate();
}

void TDBCtrlGrid::SetBounds(int left, int top, int width, int height) {
    TCustomControl::SetBounds(left, top, width, height);
    if (HasState(csLoading) || !copies_) return;
    panelWidth_ = std::max((Width() - BarSize(goVertical)) / colCount_, 1);
    panelHeight_ = std::max((Height() - BarSize(goHorizontal)) / rowCount_, 1);
    KeepCurrentInSight();
    PeerChanged(PeerChange::Items);
}

void TDBCtrlGrid::Loaded() {
    TCustomControl::Loaded();
    BindControls(*panel_);
    if (panelSizeRead_)
        PlacePanel();
    else
        SetBounds(Left(), Top(), Width(), Height());
}

TRect TDBCtrlGrid::PanelRect(int index) const {
    const int line = index / LineLength();
    const int place = index % LineLength();
    const int column = orientation_ == goVertical ? place : line;
    const int row = orientation_ == goVertical ? line : place;
    return Bounds(column * panelWidth_, row * panelHeight_, panelWidth_, panelHeight_);
}

int TDBCtrlGrid::PanelIndex() const {
    const TDataSet* data = DataSet();
    if (!data || data->CurrentRecord() < 0) return -1;
    // What is out of sight lies just beyond it.
    const int64_t index = data->CurrentRecord() - TopRecord();
    if (index < 0) return PanelCount() + LineLength();
    return static_cast<int>(std::min<int64_t>(index, PanelCount() + LineLength()));
}

int64_t TDBCtrlGrid::TopRecord() const {
    const TDataSet* data = DataSet();
    return data ? topRecord_ + data->NumbersMoved() - topNumbersMoved_ : 0;
}

int64_t TDBCtrlGrid::EndRecord() const {
    TDataSet* data = DataSet();
    return data ? std::min(TopRecord() + PanelCount(), data->Reach(TopRecord(), PanelCount())) : 0;
}

void TDBCtrlGrid::SetTopRecord(int64_t record) {
    TDataSet* data = DataSet();
    if (!data) return;
    const int64_t length = LineLength();
    const int64_t end = data->Reach(std::max<int64_t>(record, 0), PanelCount());
    // Whole lines, of which the last may stand last.
    const int64_t lines = (end - data->FirstRecord() + length - 1) / length;
    const int64_t shownLines = PanelCount() / length;
    const int64_t line = (std::max(record, data->FirstRecord()) - data->FirstRecord()) / length;
    int64_t top = data->FirstRecord() + std::clamp<int64_t>(line, 0, std::max<int64_t>(lines - shownLines, 0)) * length;
    top += data->SettleNumbers();
    if (top == TopRecord()) return;
    topRecord_ = top;
    topNumbersMoved_ = data->NumbersMoved();
    PlacePanel();
    PeerChanged(PeerChange::Scroll);
}

void TDBCtrlGrid::KeepCurrentInSight() {
    TDataSet* data = DataSet();
    if (data && data->CurrentRecord() >= 0) {
        data->ShowCurrent();
        const int64_t current = data->CurrentRecord();
        if (current < TopRecord())
            SetTopRecord(current);
        else if (current >= TopRecord() + PanelCount())
            SetTopRecord(current - PanelCount() + LineLength());
    }
    PlacePanel();
}

void TDBCtrlGrid::PlacePanel() {
    const int index = PanelIndex();
    if (index >= 0) {
        const TRect place = PanelRect(index);
        panel_->SetBounds(place.Left, place.Top, place.Width(), place.Height());
    }
    panel_->SetVisible(index >= 0);
}

void TDBCtrlGrid::DataChanged(DataEvent event) {
    switch (event) {
        case DataEvent::ActiveChanged:
            topRecord_ = 0;
            topNumbersMoved_ = DataSet() ? DataSet()->NumbersMoved() : 0;
            copySource_->SetDataSet(DataSet());
            [[fallthrough]];
        case DataEvent::LayoutChanged:
        case DataEvent::RecordsChanged:
            KeepCurrentInSight();
            PeerChanged(PeerChange::Items);
            break;
        case DataEvent::Scrolled:
            KeepCurrentInSight();
            PeerChanged(PeerChange::Selection);
            break;
        case DataEvent::StateChanged:
        case DataEvent::RecordChanged:
        case DataEvent::UpdateRecord:
        case DataEvent::CheckBrowse:
            break;
    }
}

// The user.

void TDBCtrlGrid::Move(int64_t distance) {
    if (TDataSet* data = DataSet()) data->MoveBy(distance);
}

void TDBCtrlGrid::DeleteRecord() {
    TDataSet* data = DataSet();
    if (!AllowDelete || !data->CanModify() || data->CurrentRecord() < 0) return;
    if (MessageDlg("Delete record?", mtConfirmation, {mbOK, mbCancel}) != mrCancel) data->Delete();
}

bool TDBCtrlGrid::GridKey(uint16_t key, TShiftState shift) {
    TDataSet* data = DataSet();
    if (!data || shift.Contains(ssAlt)) return false;
    const bool ctrl = shift.Contains(ssCtrl);
    const bool vertical = orientation_ == goVertical;
    switch (key) {
        case VK_LEFT:
            Move(vertical ? -1 : -rowCount_);
            return true;
        case VK_RIGHT:
            Move(vertical ? 1 : rowCount_);
            return true;
        case VK_UP:
            Move(vertical ? -colCount_ : -1);
            return true;
        case VK_DOWN:
            Move(vertical ? colCount_ : 1);
            return true;
        case VK_PRIOR:
            Move(-PanelCount());
            return true;
        case VK_NEXT:
            Move(PanelCount());
            return true;
        case VK_HOME:
            data->First();
            return true;
        case VK_END:
            data->Last();
            return true;
        case VK_RETURN:
        case VK_F2: {
            const std::vector<TWinControl*> stops = TabStops();
            if (stops.empty()) return false;
            stops.front()->SetFocus();
            return true;
        }
        case VK_INSERT:
            if (!AllowInsert || !data->CanModify()) return false;
            if (ctrl)
                data->Append();
            else
                data->Insert();
            return true;
        case VK_DELETE:
            if (!ctrl) return false;
            DeleteRecord();
            return true;
        case VK_ESCAPE:
            if (!data->IsEditing()) return false;
            data->Cancel();
            return true;
        default:
            return false;
    }
}

bool TDBCtrlGrid::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_LEFT || key == VK_RIGHT || key == VK_UP || key == VK_DOWN || TCustomControl::WantsKey(key, shift);
}

void TDBCtrlGrid::KeyDown(uint16_t& key, TShiftState shift) {
    TCustomControl::KeyDown(key, shift);
    if (key != 0 && GridKey(key, shift)) key = 0;
}

std::vector<TWinControl*> TDBCtrlGrid::TabStops() const {
    std::vector<TWinControl*> stops = panel_->GetTabOrderList();
    std::erase_if(stops, [](const TWinControl* each) { return !each->TabStop() || !each->CanFocus(); });
    return stops;
}

// Beyond the last control of a panel comes the next record; beyond the last record, what the form has next.
bool TDBCtrlGrid::TabOn(TWinControl& from, bool forward) {
    const std::vector<TWinControl*> stops = TabStops();
    TDataSet* data = DataSet();
    if (!data || stops.empty() || &from != (forward ? stops.back() : stops.front())) return false;
    const int64_t moved = data->MoveBy(forward ? 1 : -1);
    if (moved == 0) return false;
    (forward ? stops.front() : stops.back())->SetFocus();
    return true;
}

bool TDBCtrlGrid::ChildKey(TWinControl& child, uint16_t key, TShiftState shift) {
    TDataSet* data = DataSet();
    if (shift.Contains(ssAlt)) return false;
    const bool ctrl = shift.Contains(ssCtrl);
    const int below = orientation_ == goVertical ? colCount_ : 1;
    switch (key) {
        case VK_TAB: {
            const bool forward = !shift.Contains(ssShift);
            if (!ctrl) return TabOn(child, forward);
            const std::vector<TWinControl*> stops = TabStops();
            TWinControl* edge = stops.empty() ? this : (forward ? stops.back() : this);
            if (TCustomForm* form = GetParentForm(this)) form->SelectNext(edge, forward, true);
            return true;
        }
        case VK_PRIOR:
        case VK_NEXT:
            // Without Ctrl they are for lists and long texts.
            if (!ctrl) return false;
            Move(key == VK_PRIOR ? -below : below);
            return true;
        case VK_F2:
            SetFocus();
            return true;
        case VK_ESCAPE:
            if (data && data->IsEditing())
                data->Cancel();
            else
                SetFocus();
            return true;
        default:
            return false;
    }
}

bool TDBCtrlGrid::DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) {
    if (TCustomControl::DoMouseWheel(shift, wheelDelta, mousePos)) return true;
    SetTopRecord(TopRecord() - wheelDelta / ctrl_grid_detail::kWheelStep * LineLength());
    return true;
}

void TDBCtrlGrid::ProcessPanelClick(int index) {
    TDataSet* data = DataSet();
    if (!data || index < 0 || index >= PanelCount()) return;
    const int64_t record = TopRecord() + index;
    if (record < EndRecord()) data->SetCurrentRecord(record);
}

void TDBCtrlGrid::DoEnter() {
    panel_->Invalidate();
    TCustomControl::DoEnter();
}

void TDBCtrlGrid::DoExit() {
    panel_->Invalidate();
    TCustomControl::DoExit();
}

}  // namespace vyn
