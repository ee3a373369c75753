#include "platform/controls/db_grids.h"

#include <algorithm>

#include "platform/controls/db_cell_editor.h"
#include "platform/controls/db_choices.h"
#include "platform/controls/db_controls.h"
#include "platform/controls/db_ctrl_grid.h"
#include "platform/controls/db_lookups.h"
#include "platform/controls/db_navigators.h"
#include "platform/controls/enum_names.h"
#include "platform/controls/property_catalogue.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/text_metrics.h"
#include "platform/objects/class_table.h"

namespace vyn {

namespace db_grid_detail {

constexpr int kCellPadding = 4;  // above and below a row's text, together
constexpr int kTextMargin = 5;   // at both sides of a cell's text, together more than a letter
constexpr int kIndicatorWidth = 12;
constexpr int kSmallestColumn = 16;
constexpr int kWheelStep = 120;  // one notch
constexpr int kRowsANotch = 3;
constexpr int kSunkenEdge = 2;

}  // namespace db_grid_detail

VYN_ENUM_NAMES(TDBGridOption, "dgEditing", "dgAlwaysShowEditor", "dgTitles", "dgIndicator", "dgColumnResize",
               "dgColLines", "dgRowLines", "dgTabs", "dgRowSelect", "dgAlwaysShowSelection", "dgConfirmDelete",
               "dgCancelOnExit", "dgMultiSelect")
VYN_ENUM_NAMES(TGridDrawFlag, "gdSelected", "gdFocused", "gdFixed")
VYN_ENUM_NAMES(TColumnButtonStyle, "cbsAuto", "cbsEllipsis", "cbsNone")

const ClassInfo& TColumnTitle::StaticClass() {
    static const ClassInfo info = DefineClass<TColumnTitle, TPersistent>("TColumnTitle")
                                      .Published("Alignment", &TColumnTitle::Alignment, &TColumnTitle::SetAlignment)
                                      .Stored(&TColumnTitle::IsAlignmentStored)
                                      .Published("Caption", &TColumnTitle::Caption, &TColumnTitle::SetCaption)
                                      .Stored(&TColumnTitle::IsCaptionStored)
                                      .Published("Color", &TColumnTitle::Color, &TColumnTitle::SetColor)
                                      .Stored(&TColumnTitle::IsColorStored);
    return info;
}

TColumnTitle::TColumnTitle(TColumn* column) : column_(column) {}

TAlignment TColumnTitle::Alignment() const { return alignmentSet_ ? alignment_ : taLeftJustify; }
void TColumnTitle::SetAlignment(TAlignment value) {
    alignment_ = value;
    alignmentSet_ = true;
    column_->Touched();
}

AnsiString TColumnTitle::Caption() const {
    if (captionSet_) return caption_;
    const TField* field = column_->Field();
    return field ? field->DisplayLabel() : column_->FieldName();
}
void TColumnTitle::SetCaption(const AnsiString& value) {
    caption_ = value;
    captionSet_ = true;
    column_->Touched();
}

TColor TColumnTitle::Color() const {
    if (colorSet_) return color_;
    return column_->Grid() ? column_->Grid()->FixedColor() : clBtnFace;
}
void TColumnTitle::SetColor(TColor value) {
    color_ = value;
    colorSet_ = true;
    column_->Touched();
}

void TColumnTitle::Assign(const TPersistent* source) {
    const auto* title = ObjectCast<TColumnTitle>(source);
    if (!title) {
        TPersistent::Assign(source);
        return;
    }
    caption_ = title->caption_;
    alignment_ = title->alignment_;
    color_ = title->color_;
    captionSet_ = title->captionSet_;
    alignmentSet_ = title->alignmentSet_;
    colorSet_ = title->colorSet_;
    column_->Touched();
}

const ClassInfo& TColumn::StaticClass() {
    static const ClassInfo info = DefineClass<TColumn, TCollectionItem>("TColumn")
                                      .Published("Alignment", &TColumn::Alignment, &TColumn::SetAlignment)
                                      .Stored(&TColumn::IsAlignmentStored)
                                      .Published("ButtonStyle", &TColumn::ButtonStyle, &TColumn::ButtonStyle)
                                      .Default(cbsAuto)
                                      .Published("Color", &TColumn::Color, &TColumn::SetColor)
                                      .Stored(&TColumn::IsColorStored)
                                      .Published("DropDownRows", &TColumn::DropDownRows, &TColumn::DropDownRows)
                                      .Default(7)
                                      .Published("FieldName", &TColumn::FieldName, &TColumn::SetFieldName)
                                      .Published("PickList", &TColumn::PickList, &TColumn::SetPickList)
                                      .Published("ReadOnly", &TColumn::ReadOnly, &TColumn::SetReadOnly)
                                      .Default(false)
                                      .Published("Title", &TColumn::Title, &TColumn::SetTitle)
                                      .Published("Width", &TColumn::Width, &TColumn::SetWidth)
                                      .Stored(&TColumn::IsWidthStored)
                                      .Published("Visible", &TColumn::Visible, &TColumn::SetVisible)
                                      .Default(true);
    return info;
}

TColumn::TColumn(TCollection* collection) : TCollectionItem(collection), title_(std::make_unique<TColumnTitle>(this)) {}

TColumn::~TColumn() = default;

TCustomDBGrid* TColumn::Grid() const {
    return Collection() ? ObjectCast<TCustomDBGrid>(Collection()->GetOwner()) : nullptr;
}

TField* TColumn::Field() const {
    TDataSet* data = Grid() ? Grid()->DataSet() : nullptr;
    return data && !fieldName_.empty() ? data->FindField(fieldName_) : nullptr;
}

void TColumn::SetFieldName(const AnsiString& value) {
    fieldName_ = value;
    Touched();
}

int TColumn::Width() const {
    if (width_ > 0) return width_;
    const TCustomDBGrid* grid = Grid();
    if (!grid) return db_grid_detail::kSmallestColumn * 4;
    const TextMetrics& metrics = CurrentTextMetrics();
    const TFont& font = grid->EffectiveFont();
    const TField* field = Field();
    const int letters = field ? field->DisplayWidth() : static_cast<int>(Title()->Caption().size());
    const int forText = metrics.TextExtent(font, "0").cx * letters;
    const int forTitle = metrics.TextExtent(grid->EffectiveTitleFont(), Title()->Caption()).cx;
    return std::max({forText, forTitle, db_grid_detail::kSmallestColumn}) + db_grid_detail::kTextMargin * 2;
}
void TColumn::SetWidth(int value) {
    width_ = std::max(value, 0);
    Touched();
}

TAlignment TColumn::Alignment() const {
    if (alignmentSet_) return alignment_;
    const TField* field = Field();
    return field ? field->Alignment() : taLeftJustify;
}
void TColumn::SetAlignment(TAlignment value) {
    alignment_ = value;
    alignmentSet_ = true;
    Touched();
}

TColor TColumn::Color() const {
    if (colorSet_) return color_;
    return Grid() ? Grid()->TControl::Color() : clWindow;
}
void TColumn::SetColor(TColor value) {
    color_ = value;
    colorSet_ = true;
    Touched();
}

void TColumn::SetVisible(bool value) {
    visible_ = value;
    Touched();
}

void TColumn::Assign(const TPersistent* source) {
    const auto* column = ObjectCast<TColumn>(source);
    if (!column) {
        TCollectionItem::Assign(source);
        return;
    }
    fieldName_ = column->fieldName_;
    width_ = column->width_;
    alignment_ = column->alignment_;
    alignmentSet_ = column->alignmentSet_;
    color_ = column->color_;
    colorSet_ = column->colorSet_;
    visible_ = column->visible_;
    readOnly_ = column->readOnly_;
    ButtonStyle = column->ButtonStyle;
    DropDownRows = column->DropDownRows;
    pickList_.Assign(&column->pickList_);
    title_->Assign(column->title_.get());
    Touched();
}

TDBGridColumns::TDBGridColumns(TCustomDBGrid* grid) : TOwnedCollection<TColumn>(grid), grid_(grid) {}

void TDBGridColumns::Update(TCollectionItem*) {
    // The columns made for the fields are the grid's own work, and no news.
    if (grid_->columns_.get() == this) grid_->ColumnsChanged();
}

// The grid's ear at its source.
class TCustomDBGrid::Link : public TDataLink {
  public:
    explicit Link(TCustomDBGrid& grid) : grid_(grid) {}

  protected:
    void Changed(DataEvent event, TField*) override { grid_.DataChanged(event); }

  private:
    TCustomDBGrid& grid_;
};

const ClassInfo& TCustomDBGrid::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomDBGrid, TWinControl>("TCustomDBGrid");
    return info;
}

TCustomDBGrid::TCustomDBGrid(TComponent* owner) : TWinControl(owner), columns_(std::make_unique<TDBGridColumns>(this)) {
    constexpr int kWidth = 320;
    constexpr int kHeight = 120;
    columns_->PropertyName = "Columns";
    link_ = std::make_unique<Link>(*this);
    SetBounds(Left(), Top(), kWidth, kHeight);
    SetTabStop(true);
    SetParentColor(false);
    SetColor(clWindow);
}

TCustomDBGrid::~TCustomDBGrid() {
    BeginDestruction();
    editor_.reset();
    link_.reset();
}

TDataLink& TCustomDBGrid::DataLink() { return *link_; }

TDataSource* TCustomDBGrid::DataSource() const { return link_ ? link_->DataSource() : nullptr; }

void TCustomDBGrid::SetDataSource(TDataSource* value) {
    if (value == DataSource()) return;
    link_->SetDataSource(value);
    if (value) value->FreeNotification(this);
}

TDataSet* TCustomDBGrid::DataSet() const { return link_ ? link_->ActiveDataSet() : nullptr; }

void TCustomDBGrid::Notification(TComponent* component, TOperation operation) {
    TWinControl::Notification(component, operation);
    if (operation == opRemove && link_ && component == link_->DataSource()) link_->SetDataSource(nullptr);
}

void TCustomDBGrid::ColumnsChanged() {
    shownValid_ = false;
    if (!HasState(csLoading)) PeerChanged(PeerChange::Items);
}

const std::vector<TColumn*>& TCustomDBGrid::ShownColumns() const {
    if (shownValid_) return shown_;
    shownValid_ = true;
    shown_.clear();
    fieldColumns_.reset();
    if (HasOwnColumns()) {
        for (int i = 0; i < columns_->Count(); ++i)
            if (columns_->Items(i)->Visible()) shown_.push_back(columns_->Items(i));
        return shown_;
    }
    const TDataSet* data = DataSet();
    if (!data) return shown_;
    fieldColumns_ = std::make_unique<TDBGridColumns>(const_cast<TCustomDBGrid*>(this));
    for (int i = 0; i < data->FieldCount(); ++i) {
        if (!data->Fields(i)->Visible()) continue;
        TColumn* column = fieldColumns_->Add();
        column->SetFieldName(data->Fields(i)->FieldName());
        shown_.push_back(column);
    }
    return shown_;
}

void TCustomDBGrid::SetOptions(TDBGridOptions value) {
    if (value == options_) return;
    options_ = value;
    PeerChanged(PeerChange::Style);
}

void TCustomDBGrid::SetBorderStyle(TBorderStyle value) {
    if (value == borderStyle_) return;
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
}

void TCustomDBGrid::SetFixedColor(TColor value) {
    fixedColor_ = value;
    PeerChanged(PeerChange::Invalidate);
}

TFont* TCustomDBGrid::TitleFont() {
    if (!titleFont_) {
        titleFont_ = std::make_unique<TFont>();
        titleFont_->Assign(&EffectiveFont());
        titleFont_->OnChange = [this](TObject*) {
            titleFontSet_ = true;
            PeerChanged(PeerChange::Style);
        };
    }
    return titleFont_.get();
}

void TCustomDBGrid::SetTitleFont(const TFont* value) { TitleFont()->Assign(value); }

const TFont& TCustomDBGrid::EffectiveTitleFont() const { return titleFontSet_ ? *titleFont_ : EffectiveFont(); }

void TCustomDBGrid::FontChanged() {
    // The font itself stays: its address has been given away.
    if (titleFont_ && !titleFontSet_) {
        titleFont_->Assign(&EffectiveFont());
        titleFontSet_ = false;
    }
    TWinControl::FontChanged();
}

int TCustomDBGrid::RowHeight() const {
    return CurrentTextMetrics().LineHeight(EffectiveFont()) + db_grid_detail::kCellPadding;
}

int TCustomDBGrid::TitleHeight() const {
    if (!Has(dgTitles)) return 0;
    return CurrentTextMetrics().LineHeight(EffectiveTitleFont()) + db_grid_detail::kCellPadding + 2;
}

int TCustomDBGrid::IndicatorWidth() const { return Has(dgIndicator) ? db_grid_detail::kIndicatorWidth : 0; }

int TCustomDBGrid::VisibleRows() const {
    const int edge = borderStyle_ == TBorderStyle::bsSingle ? db_grid_detail::kSunkenEdge : 0;
    // A horizontal scroll bar takes its part only when the columns are wider than the grid.
    int columnsWidth = IndicatorWidth();
    for (const TColumn* column : ShownColumns()) columnsWidth += column->Width();
    const int inner = Height() - 2 * edge;
    const int bar = columnsWidth > Width() - 2 * edge ? CurrentTextMetrics().ScrollBarSize() : 0;
    return std::max(1, (inner - bar - TitleHeight()) / std::max(1, RowHeight()));
}

TRect TCustomDBGrid::CellRect(int column, int64_t record) const {
    const auto& columns = ShownColumns();
    int left = IndicatorWidth() - leftOffset_;
    for (int i = 0; i < column && i < static_cast<int>(columns.size()); ++i)
        left += columns[static_cast<size_t>(i)]->Width();
    const int width = column < static_cast<int>(columns.size()) ? columns[static_cast<size_t>(column)]->Width() : 0;
    const int64_t row = std::clamp<int64_t>(record - TopRecord(), -1, VisibleRows() + 1);
    return Bounds(left, TitleHeight() + static_cast<int>(row) * RowHeight(), width, RowHeight());
}

int64_t TCustomDBGrid::TopRecord() const {
    const TDataSet* data = DataSet();
    return data ? topRecord_ + data->NumbersMoved() - topNumbersMoved_ : 0;
}

void TCustomDBGrid::SetTopRecord(int64_t record) {
    TDataSet* data = DataSet();
    if (!data) return;
    record = std::max<int64_t>(record, 0);
    const int rows = VisibleRows();
    const auto among = [&](int64_t wanted, int64_t end) {
        return std::clamp(wanted, data->FirstRecord(), std::max(data->FirstRecord(), end - rows));
    };
    // With the one that is seen in part.
    int64_t top = among(record, data->Reach(record, rows + 1));
    // At the end a whole screen of records stands before it.
    if (top < record) top = among(top, data->Reach(top, rows + 1));
    top += data->SettleNumbers();
    if (top == TopRecord()) return;
    topRecord_ = top;
    topNumbersMoved_ = data->NumbersMoved();
    PeerChanged(PeerChange::Scroll);
}

int64_t TCustomDBGrid::HighlightedRecord() const { return DataSet() ? DataSet()->CurrentRecord() : -1; }

void TCustomDBGrid::KeepCurrentInSight() {
    TDataSet* data = DataSet();
    if (!data || HighlightedRecord() < 0) return;
    if (HighlightedRecord() == data->CurrentRecord()) data->ShowCurrent();
    const int64_t current = HighlightedRecord();
    if (current < TopRecord())
        SetTopRecord(current);
    else if (current >= TopRecord() + VisibleRows())
        SetTopRecord(current - VisibleRows() + 1);
}

void TCustomDBGrid::SetBounds(int left, int top, int width, int height) {
    TWinControl::SetBounds(left, top, width, height);
    if (link_ && !HasState(csLoading)) KeepCurrentInSight();
}

void TCustomDBGrid::Loaded() {
    TWinControl::Loaded();
    shownValid_ = false;
}

AnsiString TCustomDBGrid::CellText(int64_t record, const TColumn& column) {
    TDataSet* data = DataSet();
    const TField* field = column.Field();
    if (!data || !field || record < 0) return {};
    if (data->RowOf(record) < 0 && (record >= data->Reach(record, 1) || data->RowOf(record) < 0)) return {};
    return field->DisplayTextOf(record);
}

void TCustomDBGrid::DrawCell(int64_t record, int column, const TRect& rect, TGridDrawState state) {
    canvas_.Clear();
    const auto& columns = ShownColumns();
    if (!DataSource() || column < 0 || column >= static_cast<int>(columns.size())) return;
    TColumn* shown = columns[static_cast<size_t>(column)];
    const bool selected = state.Contains(gdSelected);
    canvas_.Font()->Assign(&EffectiveFont());
    if (selected) canvas_.Font()->SetColor(clHighlightText);
    canvas_.Brush()->SetStyle(TBrushStyle::bsSolid);
    canvas_.Brush()->SetColor(selected ? clHighlight : shown->Color());
    DataSource()->WithRecord(record, [&] {
        OnDrawDataCell(this, rect, shown->Field(), state);
        OnDrawColumnCell(this, rect, column, shown, state);
    });
}

void TCustomDBGrid::DefaultDrawColumnCell(const TRect& rect, int, TColumn* column, TGridDrawState) {
    const TField* field = column ? column->Field() : nullptr;
    canvas_.TextRect(rect, field ? field->DisplayText() : AnsiString(), column ? column->Alignment() : taLeftJustify);
}

void TCustomDBGrid::SetSelectedIndex(int value) {
    const int last = static_cast<int>(ShownColumns().size()) - 1;
    value = std::clamp(value, 0, std::max(last, 0));
    if (value == selectedColumn_) return;
    HideEditor();
    OnColExit(this);
    selectedColumn_ = value;
    OnColEnter(this);
    PeerChanged(PeerChange::Selection);
}

TField* TCustomDBGrid::SelectedField() const {
    const auto& columns = ShownColumns();
    return selectedColumn_ < static_cast<int>(columns.size()) ? columns[static_cast<size_t>(selectedColumn_)]->Field()
                                                              : nullptr;
}

void TCustomDBGrid::AdoptColumns() {
    // What the user arranged is the grid's own from now on.
    if (HasOwnColumns() || !fieldColumns_) return;
    columns_->Assign(fieldColumns_.get());
    shownValid_ = false;
}

void TCustomDBGrid::ProcessColumnResize(int column, int width) {
    if (!Has(dgColumnResize)) return;
    ShownColumns();
    AdoptColumns();
    const auto& columns = ShownColumns();
    if (column >= 0 && column < static_cast<int>(columns.size()))
        columns[static_cast<size_t>(column)]->SetWidth(std::max(width, db_grid_detail::kSmallestColumn));
}

void TCustomDBGrid::ProcessColumnMove(int from, int to) {
    if (!Has(dgColumnResize) || from == to) return;
    ShownColumns();
    AdoptColumns();
    const auto& columns = ShownColumns();
    const int count = static_cast<int>(columns.size());
    if (from < 0 || from >= count || to < 0 || to >= count) return;
    const int target = columns[static_cast<size_t>(to)]->Index();
    columns[static_cast<size_t>(from)]->SetIndex(target);
    OnColumnMoved(this, from, to);
}

void TCustomDBGrid::MoveRecords(int64_t distance) {
    if (TDataSet* data = DataSet()) data->MoveBy(distance);
}

bool TCustomDBGrid::WantsKey(uint16_t key, TShiftState shift) const {
    switch (key) {
        case VK_LEFT:
        case VK_RIGHT:
        case VK_UP:
        case VK_DOWN:
        case VK_HOME:
        case VK_END:
        case VK_PRIOR:
        case VK_NEXT:
            return true;
        case VK_TAB: {
            if (!Has(dgTabs)) return false;
            const int last = static_cast<int>(ShownColumns().size()) - 1;
            return shift.Contains(ssShift) ? selectedColumn_ > 0 : selectedColumn_ < last;
        }
        default:
            return false;
    }
}

void TCustomDBGrid::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    TDataSet* data = DataSet();
    if (!data || key == 0) return;
    if (EditingKey(key, shift)) {
        key = 0;
        return;
    }
    if (shift.Contains(ssAlt)) return;
    const bool control = shift.Contains(ssCtrl);
    const int last = static_cast<int>(ShownColumns().size()) - 1;
    switch (key) {
        case VK_UP:
            if (control)
                data->First();
            else
                MoveUp();
            break;
        case VK_DOWN:
            if (control)
                data->Last();
            else
                MoveDown();
            break;
        case VK_PRIOR:
            MoveRecords(-VisibleRows());
            break;
        case VK_NEXT:
            MoveRecords(VisibleRows());
            break;
        case VK_HOME:
            if (control || Has(dgRowSelect))
                data->First();
            else
                SetSelectedIndex(0);
            break;
        case VK_END:
            if (control || Has(dgRowSelect))
                data->Last();
            else
                SetSelectedIndex(last);
            break;
        case VK_LEFT:
            SetSelectedIndex(selectedColumn_ - 1);
            break;
        case VK_RIGHT:
            SetSelectedIndex(selectedColumn_ + 1);
            break;
        case VK_TAB:
            SetSelectedIndex(selectedColumn_ + (shift.Contains(ssShift) ? -1 : 1));
            break;
        default:
            return;
    }
    key = 0;
}

bool TCustomDBGrid::DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) {
    if (TWinControl::DoMouseWheel(shift, wheelDelta, mousePos)) return true;
    SetTopRecord(TopRecord() - wheelDelta / db_grid_detail::kWheelStep * db_grid_detail::kRowsANotch);
    return true;
}

const ClassInfo& TDBGrid::StaticClass() {
    static const PropertyCatalogue catalogue = [] {
        PropertyCatalogue made(&WinControlProperties());
        made.Add(WinControlProperties().WithDefault("TabStop", true));
        made.Add(WinControlProperties().WithDefault("ParentColor", false));
        made.Add(WinControlProperties().WithDefault("Color", clWindow));
        made.Add("BorderStyle", &TCustomDBGrid::BorderStyle, &TCustomDBGrid::SetBorderStyle)
            .Default(TBorderStyle::bsSingle);
        made.Add("Columns", &TCustomDBGrid::Columns, &TCustomDBGrid::SetColumns);
        made.Add("DataSource", &TCustomDBGrid::DataSource, &TCustomDBGrid::SetDataSource);
        made.Add("DefaultDrawing", &TCustomDBGrid::DefaultDrawing, &TCustomDBGrid::DefaultDrawing).Default(true);
        made.Add("FixedColor", &TCustomDBGrid::FixedColor, &TCustomDBGrid::SetFixedColor).Default(clBtnFace);
        made.Add("Options", &TCustomDBGrid::Options, &TCustomDBGrid::SetOptions)
            .Default(TDBGridOptions{dgEditing, dgTitles, dgIndicator, dgColumnResize, dgColLines, dgRowLines, dgTabs,
                                    dgConfirmDelete, dgCancelOnExit});
        made.Add("ReadOnly", &TCustomDBGrid::ReadOnly, &TCustomDBGrid::ReadOnly).Default(false);
        made.Add("TitleFont", &TCustomDBGrid::TitleFont, &TCustomDBGrid::SetTitleFont)
            .Stored(&TCustomDBGrid::IsTitleFontStored);
        made.Event("OnCellClick", &TCustomDBGrid::OnCellClick);
        made.Event("OnColEnter", &TCustomDBGrid::OnColEnter);
        made.Event("OnColExit", &TCustomDBGrid::OnColExit);
        made.Event("OnColumnMoved", &TCustomDBGrid::OnColumnMoved);
        made.Event("OnDrawColumnCell", &TCustomDBGrid::OnDrawColumnCell);
        made.Event("OnDrawDataCell", &TCustomDBGrid::OnDrawDataCell);
        made.Event("OnEditButtonClick", &TCustomDBGrid::OnEditButtonClick);
        made.Event("OnTitleClick", &TCustomDBGrid::OnTitleClick);
        return made;
    }();
    static const ClassInfo info = Publish(
        DefineClass<TDBGrid, TCustomDBGrid>("TDBGrid"), catalogue,
        "Align Anchors BorderStyle Color Columns Constraints Ctl3D DataSource DefaultDrawing DragCursor DragKind "
        "DragMode Enabled FixedColor Font ImeMode ImeName Options ParentColor ParentCtl3D ParentFont "
        "ParentShowHint PopupMenu ReadOnly ShowHint TabOrder TabStop TitleFont Visible OnCellClick OnColEnter "
        "OnColExit OnColumnMoved OnDrawDataCell OnDrawColumnCell OnDblClick OnDragDrop OnDragOver OnEditButtonClick "
        "OnEndDrag "
        "OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnStartDrag OnTitleClick");
    return info;
}

void RegisterDataControlClasses() {
    for (TClass each :
         {&TDBGrid::StaticClass(), &TDBNavigator::StaticClass(), &TDBText::StaticClass(), &TDBEdit::StaticClass(),
          &TDBMemo::StaticClass(), &TDBImage::StaticClass(), &TDBListBox::StaticClass(), &TDBComboBox::StaticClass(),
          &TDBCheckBox::StaticClass(), &TDBRadioGroup::StaticClass(), &TDBLookupListBox::StaticClass(),
          &TDBLookupComboBox::StaticClass(), &TDBCtrlGrid::StaticClass()})
        AddLinkedClass(each);
}

}  // namespace vyn
