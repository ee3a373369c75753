#include "platform/controls/db_lookups.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/text_metrics.h"

namespace vyn {

namespace db_lookup_detail {

constexpr int kEdge = 2;        // of the frame around rows
constexpr int kMostRows = 100;  // whatever a stored form says
constexpr int kFrame = 8;       // what a combo box's frame and margins add to a line's height
constexpr int kCellMargins = 10;
constexpr char kBackspace = 8;

bool IsTyped(char key) { return static_cast<unsigned char>(key) >= ' ' || key == kBackspace; }

}  // namespace db_lookup_detail

VYN_ENUM_NAMES(TDropDownAlign, "daLeft", "daRight", "daCenter")

// Rows.

const ClassInfo& TLookupRows::StaticClass() {
    static const ClassInfo info = DefineClass<TLookupRows, TCustomDBGrid>("TLookupRows");
    return info;
}

TLookupRows::TLookupRows(TComponent* owner) : TCustomDBGrid(owner) {
    SetOptions({dgRowSelect});
    ControlStyle = {csCaptureMouse, csDoubleClicks};
}

void TLookupRows::Follow(Lookup& lookup) {
    SetDataSource(lookup.List().Source());
    ShowFields(lookup.List().DataSet() ? lookup.List().ShownNames() : std::vector<AnsiString>());
    Highlight(lookup.Record());
}

void TLookupRows::ShowFields(const std::vector<AnsiString>& names) {
    if (names == shownNames_ && HasOwnColumns()) return;
    shownNames_ = names;
    SetOptions(names.size() > 1 ? TDBGridOptions{dgRowSelect, dgColLines} : TDBGridOptions{dgRowSelect});
    Columns()->Clear();
    for (const AnsiString& name : names) Columns()->Add()->SetFieldName(name);
    if (names.empty()) Columns()->Add();  // none, instead of one for each field
    FitColumns();
}

int TLookupRows::NaturalWidth() const {
    int width = 2 * db_lookup_detail::kEdge + CurrentTextMetrics().ScrollBarSize();
    const int letter = CurrentTextMetrics().TextExtent(EffectiveFont(), "0").cx;
    for (const AnsiString& name : shownNames_)
        if (const TField* field = DataSet() ? DataSet()->FindField(name) : nullptr)
            width += letter * field->DisplayWidth() + db_lookup_detail::kCellMargins;
    return width;
}

// The columns are as wide as their fields, and the last one takes what is left; where there is not room for all, each
// gives its part, so that there is nothing to scroll sideways.
void TLookupRows::FitColumns() {
    int room = Width() - 2 * db_lookup_detail::kEdge;
    if (TDataSet* data = DataSet(); data && (data->IsPaged() || data->FetchTo(VisibleRows() + 1) > VisibleRows()))
        room -= CurrentTextMetrics().ScrollBarSize();
    room = std::max(room, 1);
    const auto& columns = ShownColumns();
    int natural = 0;
    for (TColumn* column : columns) {
        column->SetWidth(0);
        natural += column->Width();
    }
    int left = room;
    for (TColumn* column : columns) {
        const bool last = column == columns.back();
        const int width = natural > room ? MulDiv(column->Width(), room, natural) : column->Width();
        column->SetWidth(std::max(last ? left : width, 1));
        left -= column->Width();
    }
}

int64_t TLookupRows::HighlightedRecord() const {
    return highlighted_ >= 0 && DataSet() && DataSet()->IsPaged() ? DataSet()->CurrentRecord() : highlighted_;
}

void TLookupRows::Highlight(int64_t record) {
    if (record == HighlightedRecord()) return;
    highlighted_ = record;
    if (TDataSet* data = DataSet(); data && data->IsPaged() && record >= 0) data->SetCurrentRecord(record);
    KeepCurrentInSight();
    PeerChanged(PeerChange::Invalidate);
}

void TLookupRows::DataChanged(DataEvent event) {
    TCustomDBGrid::DataChanged(event);
    switch (event) {
        case DataEvent::ActiveChanged:
        case DataEvent::LayoutChanged:
        case DataEvent::RecordsChanged:
            FitColumns();
            KeepCurrentInSight();
            break;
        default:
            break;
    }
}

void TLookupRows::SetBounds(int left, int top, int width, int height) {
    const bool sized = width != Width() || height != Height();
    TCustomDBGrid::SetBounds(left, top, width, height);
    if (sized) FitColumns();
}

void TLookupRows::FontChanged() {
    TCustomDBGrid::FontChanged();
    FitColumns();
}

// The grid's own keys go through its dataset.
void TLookupRows::KeyDown(uint16_t& key, TShiftState shift) { TWinControl::KeyDown(key, shift); }
void TLookupRows::KeyPress(char& key) { TWinControl::KeyPress(key); }

std::optional<int64_t> TLookupRows::RecordFor(uint16_t key, TShiftState shift) {
    TDataSet* data = DataSet();
    if (!data || shift.Contains(ssAlt)) return std::nullopt;
    switch (key) {
        case VK_UP:
            return RecordBeside(*data, HighlightedRecord(), -1);
        case VK_DOWN:
            return RecordBeside(*data, HighlightedRecord(), 1);
        case VK_PRIOR:
            return RecordBeside(*data, HighlightedRecord(), -VisibleRows());
        case VK_NEXT:
            return RecordBeside(*data, HighlightedRecord(), VisibleRows());
        case VK_HOME:
            return FirstRecordOf(*data);
        case VK_END:
            return LastRecordOf(*data);
        default:
            return std::nullopt;
    }
}

bool TLookupRows::ScrollFor(uint16_t key, TShiftState shift) {
    const TDataSet* data = DataSet();
    if (!data || shift.Contains(ssAlt)) return false;
    switch (key) {
        case VK_UP:
            SetTopRecord(TopRecord() - 1);
            return true;
        case VK_DOWN:
            SetTopRecord(TopRecord() + 1);
            return true;
        case VK_PRIOR:
            SetTopRecord(TopRecord() - VisibleRows());
            return true;
        case VK_NEXT:
            SetTopRecord(TopRecord() + VisibleRows());
            return true;
        case VK_HOME:
            SetTopRecord(0);
            return true;
        case VK_END:
            SetTopRecord(data->IsPaged() ? data->RecordsExpected() : DataSet()->RecordCount());
            return true;
        default:
            return false;
    }
}

// The list box.

const ClassInfo& TDBLookupListBox::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&WinControlProperties());
        AddLookupProperties(own);
        own.Add(WinControlProperties().WithDefault("TabStop", true));
        own.Add(WinControlProperties().WithDefault("ParentColor", false));
        own.Add("BorderStyle", &TCustomDBGrid::BorderStyle, &TCustomDBGrid::SetBorderStyle)
            .Default(TBorderStyle::bsSingle);
        own.Add("RowCount", &TDBLookupListBox::RowCount, &TDBLookupListBox::SetRowCount)
            .Stored(&TDBLookupListBox::IsRowCountStored);
        return Publish(
            DefineClass<TDBLookupListBox, TLookupRows>("TDBLookupListBox"), own,
            "Align Anchors BiDiMode BorderStyle Color Constraints Ctl3D DataField DataSource DragCursor DragKind "
            "DragMode Enabled Font ImeMode ImeName KeyField ListField ListFieldIndex ListSource NullValueKey "
            "ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly RowCount ShowHint "
            "TabOrder TabStop Visible OnClick OnContextPopup OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag "
            "OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TDBLookupListBox::TDBLookupListBox(TComponent* owner) : LookupBound(owner) {
    constexpr int kWidth = 121;
    constexpr int kHeight = 97;
    SetBounds(Left(), Top(), kWidth, kHeight);
}

TDBLookupListBox::~TDBLookupListBox() {
    BeginDestruction();
    TheLookup().Close();
}

void TDBLookupListBox::SetRowCount(int value) {
    value = std::clamp(value, 1, db_lookup_detail::kMostRows);
    const int edge = BorderStyle() == TBorderStyle::bsSingle ? db_lookup_detail::kEdge : 0;
    SetHeight(value * RowHeight() + 2 * edge);
}

void TDBLookupListBox::LookupShown() { Follow(TheLookup()); }

void TDBLookupListBox::KeyDown(uint16_t& key, TShiftState shift) {
    LookupBound::KeyDown(key, shift);
    if (key == 0) return;
    if (IsNullKey(key, shift)) {
        TheLookup().ChooseNone();
        key = 0;
        return;
    }
    if (!TheLookup().CanChange()) {
        if (ScrollFor(key, shift)) key = 0;
        return;
    }
    const std::optional<int64_t> target = RecordFor(key, shift);
    if (!target) return;
    TheLookup().EndSearch();
    TheLookup().Choose(*target);
    key = 0;
}

void TDBLookupListBox::KeyPress(char& key) {
    LookupBound::KeyPress(key);
    if (!db_lookup_detail::IsTyped(key) || !TheLookup().CanChange()) return;
    const int64_t found = TheLookup().Search(key);
    if (found >= 0) TheLookup().Choose(found);
    key = 0;
}

void TDBLookupListBox::ProcessCellClick(int64_t record, int, TShiftState) {
    TheLookup().EndSearch();
    TheLookup().Choose(record);
}

// The list of a combo box.

const ClassInfo& TLookupDropDown::StaticClass() {
    static const ClassInfo info("TLookupDropDown", &TLookupRows::StaticClass(), nullptr, {}, {});
    return info;
}

TLookupDropDown::TLookupDropDown(TDBLookupComboBox& box) : TLookupRows(nullptr), box_(box) {
    SetVisible(false);
    SetTabStop(false);
    SetParent(&box);
}

void TLookupDropDown::KeyDown(uint16_t& key, TShiftState shift) {
    box_.KeyDown(key, shift);
    if (key != VK_TAB) return;
    if (TCustomForm* form = GetParentForm(&box_)) form->ProcessDialogKey(key, shift, &box_);
    key = 0;
}

void TLookupDropDown::KeyPress(char& key) { box_.KeyPress(key); }
void TLookupDropDown::ProcessCellClick(int64_t record, int, TShiftState) { ProcessRecordHover(record); }

void TLookupDropDown::ProcessRecordHover(int64_t record) {
    if (DataSet() && DataSet()->RowOf(record) >= 0) Highlight(record);
}

void TLookupDropDown::ProcessRecordRelease(int64_t record) {
    if (DataSet() && record >= 0 && record == HighlightedRecord()) box_.CloseUp(TDBLookupComboBox::Close::Take);
}

// The combo box.

const ClassInfo& TDBLookupComboBox::StaticClass() {
    static const ClassInfo info = [] {
        using Box = TDBLookupComboBox;
        PropertyCatalogue own(&WinControlProperties());
        AddLookupProperties(own);
        own.Add(WinControlProperties().WithDefault("TabStop", true));
        own.Add(WinControlProperties().WithDefault("ParentColor", false));
        own.Add("DropDownAlign", &Box::DropDownAlign, &Box::DropDownAlign).Default(daLeft);
        own.Add("DropDownRows", &Box::DropDownRows, &Box::SetDropDownRows).Default(7);
        own.Add("DropDownWidth", &Box::DropDownWidth, &Box::SetDropDownWidth).Default(0);
        own.Event("OnCloseUp", &Box::OnCloseUp);
        own.Event("OnDropDown", &Box::OnDropDown);
        return Publish(
            DefineClass<TDBLookupComboBox, TCustomControl>("TDBLookupComboBox"), own,
            "Anchors BiDiMode Color Constraints Ctl3D DataField DataSource DragCursor DragKind DragMode DropDownAlign "
            "DropDownRows DropDownWidth Enabled Font ImeMode ImeName KeyField ListField ListFieldIndex ListSource "
            "NullValueKey ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly "
            "ShowHint TabOrder TabStop Visible OnClick OnCloseUp OnContextPopup OnDragDrop OnDragOver OnDropDown "
            "OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp "
            "OnStartDock OnStartDrag");
    }();
    return info;
}

TDBLookupComboBox::TDBLookupComboBox(TComponent* owner) : LookupBound(owner) {
    constexpr int kWidth = 145;
    constexpr int kHeight = 25;
    ControlStyle = {csCaptureMouse, csDoubleClicks};
    SetInitialSize(kWidth, kHeight);
    SetDefaultColor(clWindow, false);
    SetTabStop(true);
}

TDBLookupComboBox::~TDBLookupComboBox() {
    BeginDestruction();
    TheLookup().Close();
    list_.reset();
}

void TDBLookupComboBox::SetDropDownRows(int value) {
    dropDownRows_ = std::clamp(value, 1, db_lookup_detail::kMostRows);
}
void TDBLookupComboBox::SetDropDownWidth(int value) { dropDownWidth_ = std::clamp(value, 0, MaximumExtent); }

void TDBLookupComboBox::LookupShown() {
    const AnsiString text = TheLookup().Text();
    if (text != Text()) {
        PutText(text);
        PeerChanged(PeerChange::Text);
    }
    PeerChanged(PeerChange::Style);  // it may be changed now, or no more
    if (!droppedDown_) return;
    if (!TheLookup().List().DataSet()) {
        CloseUp(Close::Leave);
        return;
    }
    list_->Follow(TheLookup());
}

void TDBLookupComboBox::PlaceList() {
    TDataSet* data = list_->DataSet();
    int64_t rows = dropDownRows_;
    if (data && !data->IsPaged()) rows = std::clamp<int64_t>(data->FetchTo(rows), 1, rows);
    int width = dropDownWidth_;
    if (width == 0) {
        width = Width();
        if (list_->ShownColumns().size() > 1)
            width = std::clamp(list_->NaturalWidth(), width, std::max(width, CurrentTextMetrics().ScreenSize().cx));
    }
    int left = 0;
    switch (DropDownAlign) {
        case daLeft:
            break;
        case daRight:
            left = Width() - width;
            break;
        case daCenter:
            left = (Width() - width) / 2;
            break;
    }
    list_->SetBounds(left, Height(), width, static_cast<int>(rows) * list_->RowHeight() + 2 * db_lookup_detail::kEdge);
}

void TDBLookupComboBox::DropDown() {
    if (droppedDown_) return;
    OnDropDown(this);
    if (!EffectivelyEnabled() || !TheLookup().List().DataSet()) return;
    if (!list_) list_ = std::make_unique<TLookupDropDown>(*this);
    droppedDown_ = true;
    list_->Follow(TheLookup());
    PlaceList();
    list_->SetVisible(true);
    PeerChanged(PeerChange::Style);
}

void TDBLookupComboBox::CloseUp(Close how) {
    if (!droppedDown_) return;
    droppedDown_ = false;
    TheLookup().EndSearch();
    const int64_t record = list_->HighlightedRecord();
    list_->SetVisible(false);
    PeerChanged(PeerChange::Style);
    if (how == Close::Take && record >= 0 && !TheLookup().IsOf(record)) TheLookup().Choose(record);
    OnCloseUp(this);
}

bool TDBLookupComboBox::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_UP || key == VK_DOWN || LookupBound::WantsKey(key, shift);
}

void TDBLookupComboBox::KeyDown(uint16_t& key, TShiftState shift) {
    LookupBound::KeyDown(key, shift);
    if (key == 0) return;
    const bool vertical = key == VK_UP || key == VK_DOWN;
    if (IsNullKey(key, shift)) {
        CloseUp(Close::Leave);
        TheLookup().ChooseNone();
    } else if (key == VK_F4 || (vertical && shift.Contains(ssAlt))) {
        if (droppedDown_)
            CloseUp(Close::Take);
        else
            DropDown();
    } else if (droppedDown_) {
        switch (key) {
            case VK_TAB:
                CloseUp(Close::Take);
                return;  // and go on
            case VK_RETURN:
                CloseUp(Close::Take);
                break;
            case VK_ESCAPE:
                CloseUp(Close::Leave);
                break;
            default:
                const std::optional<int64_t> target = list_->RecordFor(key, shift);
                if (!target) return;
                TheLookup().EndSearch();
                list_->Highlight(*target);
        }
    } else if (vertical && TheLookup().CanChange()) {
        TheLookup().EndSearch();
        const int64_t target = RecordBeside(*TheLookup().List().DataSet(), TheLookup().Record(), key == VK_UP ? -1 : 1);
        if (target >= 0 && !TheLookup().IsOf(target)) TheLookup().Choose(target);
    } else {
        return;
    }
    key = 0;
}

void TDBLookupComboBox::KeyPress(char& key) {
    LookupBound::KeyPress(key);
    if (!db_lookup_detail::IsTyped(key)) return;
    if (!droppedDown_ && key != db_lookup_detail::kBackspace) DropDown();
    if (droppedDown_) {
        const int64_t found = TheLookup().Search(key);
        if (found >= 0) list_->Highlight(found);
    }
    key = 0;
}

void TDBLookupComboBox::SetBounds(int left, int top, int width, int height) {
    LookupBound::SetBounds(left, top, width, height);
    if (droppedDown_) PlaceList();
}

void TDBLookupComboBox::FontChanged() {
    LookupBound::FontChanged();
    if (HasState(csReading) || !Parent()) return;
    SetHeight(EffectiveFont().LineHeight() + db_lookup_detail::kFrame);
}

void TDBLookupComboBox::DoExit() {
    CloseUp(Close::Leave);
    LookupBound::DoExit();
}

void TDBLookupComboBox::EnabledChanged() {
    CloseUp(Close::Leave);
    LookupBound::EnabledChanged();
}

void TDBLookupComboBox::VisibleChanged() {
    CloseUp(Close::Leave);
    LookupBound::VisibleChanged();
}

}  // namespace vyn
