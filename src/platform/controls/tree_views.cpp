#include "platform/controls/tree_views.h"

#include <algorithm>

#include "platform/controls/property_catalogue.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/strings.h"
#include "platform/text/compare.h"

namespace vyn {

namespace tree_view_detail {

constexpr int kLinePadding = 3;

}  // namespace tree_view_detail

const ClassInfo& TCustomTreeView::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomTreeView, TWinControl>("TCustomTreeView");
    return info;
}

const ClassInfo& TTreeView::StaticClass() {
    static const ClassInfo info = [] {
        using View = TCustomTreeView;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("AutoExpand", &View::AutoExpand, &View::AutoExpand).Default(false);
        own.Add("BorderStyle", &View::BorderStyle, &View::SetBorderStyle).Default(TBorderStyle::bsSingle);
        own.Add("ChangeDelay", &View::ChangeDelay, &View::ChangeDelay).Default(0);
        own.Add("HideSelection", &View::HideSelection, &View::SetHideSelection).Default(true);
        own.Add("HotTrack", &View::HotTrack, &View::SetHotTrack).Default(false);
        own.Add("Images", &View::Images, &View::SetImages);
        own.Add("Indent", &View::Indent, &View::SetIndent);
        own.Add("Items", &View::Items, &View::SetItems);
        own.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(false);
        own.Add("ReadOnly", &View::ReadOnly, &View::SetReadOnly).Default(false);
        own.Add("RightClickSelect", &View::RightClickSelect, &View::RightClickSelect).Default(false);
        own.Add("RowSelect", &View::RowSelect, &View::SetRowSelect).Default(false);
        own.Add("ShowButtons", &View::ShowButtons, &View::SetShowButtons).Default(true);
        own.Add("ShowLines", &View::ShowLines, &View::SetShowLines).Default(true);
        own.Add("ShowRoot", &View::ShowRoot, &View::SetShowRoot).Default(true);
        own.Add("SortType", &View::SortType, &View::SetSortType).Default(stNone);
        own.Add("StateImages", &View::StateImages, &View::SetStateImages);
        own.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        own.Add("ToolTips", &View::ToolTips, &View::ToolTips).Default(true);
        own.Event("OnChange", &View::OnChange);
        own.Event("OnChanging", &View::OnChanging);
        own.Event("OnCollapsed", &View::OnCollapsed);
        own.Event("OnCollapsing", &View::OnCollapsing);
        own.Event("OnCompare", &View::OnCompare);
        own.Event("OnDeletion", &View::OnDeletion);
        own.Event("OnEdited", &View::OnEdited);
        own.Event("OnEditing", &View::OnEditing);
        own.Event("OnExpanded", &View::OnExpanded);
        own.Event("OnExpanding", &View::OnExpanding);
        own.Event("OnGetImageIndex", &View::OnGetImageIndex);
        own.Event("OnGetSelectedIndex", &View::OnGetSelectedIndex);
        return Publish(DefineClass<TTreeView, TCustomTreeView>("TTreeView"), own,
                       "Align Anchors AutoExpand BiDiMode BorderStyle BorderWidth ChangeDelay Color Ctl3D Constraints "
                       "DragKind DragCursor DragMode Enabled Font HideSelection HotTrack Images Indent "
                       "ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu ReadOnly "
                       "RightClickSelect RowSelect ShowButtons ShowHint ShowLines ShowRoot SortType StateImages "
                       "TabOrder TabStop ToolTips Visible OnChange OnChanging OnClick OnCollapsed OnCollapsing "
                       "OnCompare OnContextPopup OnDblClick OnDeletion OnDragDrop OnDragOver OnEdited OnEditing "
                       "OnEndDock OnEndDrag OnEnter OnExit OnExpanding OnExpanded OnGetImageIndex OnGetSelectedIndex "
                       "OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag Items");
    }();
    return info;
}

TCustomTreeView::TCustomTreeView(TComponent* owner) : TWinControl(owner), items_(std::make_unique<TTreeNodes>(this)) {
    ControlStyle = {csCaptureMouse, csDoubleClicks, csClickEvents};
    SetInitialSize(121, 97);
    SetDefaultColor(clWindow, false);
    SetTabStop(true);
}

TCustomTreeView::~TCustomTreeView() {
    ComponentState.Include(csDestroying);
    items_->Clear();
}

void TCustomTreeView::Notification(TComponent* component, TOperation operation) {
    TWinControl::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == images_) images_ = nullptr;
    if (component == stateImages_) stateImages_ = nullptr;
}

void TCustomTreeView::Loaded() {
    TWinControl::Loaded();
    if (SortsByItself()) AlphaSort();
}

void TCustomTreeView::SetItems(TTreeNodes* value) { items_->Assign(value); }

bool TCustomTreeView::CanChange(TTreeNode* node) {
    bool allow = true;
    OnChanging(this, node, allow);
    return allow;
}

bool TCustomTreeView::CanExpand(TTreeNode* node) {
    bool allow = true;
    OnExpanding(this, node, allow);
    return allow;
}

bool TCustomTreeView::CanCollapse(TTreeNode* node) {
    bool allow = true;
    OnCollapsing(this, node, allow);
    return allow;
}

bool TCustomTreeView::ProcessSelect(TTreeNode* node) {
    if (selected_ == node) return true;
    if (!CanChange(node)) {
        PeerChanged(PeerChange::Selection);
        return false;
    }
    selected_ = node;
    if (node) {
        node->MakeVisible();
        if (AutoExpand) node->Expand(false);
    }
    PeerChanged(PeerChange::Selection);
    Change(node);
    return true;
}

void TCustomTreeView::SetSelected(TTreeNode* node) { ProcessSelect(node); }

bool TCustomTreeView::ProcessExpand(TTreeNode* node, bool expand) {
    return expand ? node->Expand(false) : node->Collapse(false);
}

bool TCustomTreeView::ProcessBeginEdit(TTreeNode* node) {
    if (readOnly_ || !node) return false;
    bool allow = true;
    OnEditing(this, node, allow);
    if (allow) editing_ = node;
    return allow;
}

void TCustomTreeView::ProcessEndEdit(const AnsiString& text, bool cancel) {
    TTreeNode* node = editing_;
    editing_ = nullptr;
    if (!node) return;
    PeerChanged(PeerChange::Close);
    if (cancel) return;
    AnsiString edited = text;
    OnEdited(this, node, edited);
    node->SetText(edited);
    if (SortsByItself()) AlphaSort();
}

void TCustomTreeView::NodeGoes(TTreeNode* node) {
    OnDeletion(this, node);
    if (selected_ == node) selected_ = nullptr;
    if (topItem_ == node) topItem_ = nullptr;
    if (dropTarget_ == node) dropTarget_ = nullptr;
    if (editing_ == node) editing_ = nullptr;
}

int TCustomTreeView::Compare(TTreeNode& a, TTreeNode& b) {
    int result = AnsiCompareText(a.Text(), b.Text());
    OnCompare(this, &a, &b, 0, result);
    return result;
}

bool TCustomTreeView::AlphaSort() {
    items_->root_.AlphaSort(true);
    return true;
}

void TCustomTreeView::SetTopItem(TTreeNode* node) {
    topItem_ = node;
    PeerChanged(PeerChange::Scroll);
}
void TCustomTreeView::SetDropTarget(TTreeNode* node) {
    dropTarget_ = node;
    PeerChanged(PeerChange::Invalidate);
}

void TCustomTreeView::FullExpand() {
    items_->BeginUpdate();
    for (TTreeNode* node = items_->GetFirstNode(); node; node = node->GetNextSibling()) node->Expand(true);
    items_->EndUpdate();
}

void TCustomTreeView::FullCollapse() {
    items_->BeginUpdate();
    for (TTreeNode* node = items_->GetFirstNode(); node; node = node->GetNextSibling()) node->Collapse(true);
    items_->EndUpdate();
}

TTreeNode* TCustomTreeView::GetNodeAt(int x, int y) const {
    if (x < 0 || y < 0 || x >= Width() || y >= Height()) return nullptr;
    int row = y / (EffectiveFont().LineHeight() + tree_view_detail::kLinePadding);
    TTreeNode* node = topItem_ ? topItem_ : items_->GetFirstNode();
    for (; node && row > 0; --row) node = node->GetNextVisible();
    return node;
}

// As lines of text, a tab before each for every level.
void TCustomTreeView::SaveToStream(TStream& stream) const {
    AnsiString text;
    for (const TTreeNode* node = items_->GetFirstNode(); node; node = node->GetNext())
        text += AnsiString(static_cast<size_t>(node->Level()), '\t') + node->Text() + "\r\n";
    if (!text.empty()) stream.WriteBuffer(text.data(), static_cast<int64_t>(text.size()));
}

void TCustomTreeView::LoadFromStream(TStream& stream) {
    AnsiString text(static_cast<size_t>(std::max<int64_t>(stream.Size() - stream.Position(), 0)), '\0');
    if (!text.empty()) stream.ReadBuffer(text.data(), static_cast<int64_t>(text.size()));
    TStringList lines;
    lines.SetText(text);
    items_->BeginUpdate();
    items_->Clear();
    std::vector<TTreeNode*> path;
    for (int i = 0; i < lines.Count(); ++i) {
        const AnsiString& line = lines.At(i);
        size_t level = 0;
        while (level < line.size() && (line[level] == '\t' || line[level] == ' ')) ++level;
        const AnsiString caption = line.substr(level);
        level = std::min(level, path.size());
        path.resize(level);
        path.push_back(items_->AddChild(level == 0 ? nullptr : path[level - 1], caption));
    }
    items_->EndUpdate();
}

void TCustomTreeView::SetBorderStyle(TBorderStyle value) {
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetHideSelection(bool value) {
    hideSelection_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetHotTrack(bool value) {
    hotTrack_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetImages(TCustomImageList* value) {
    images_ = value;
    if (value) value->FreeNotification(this);
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetStateImages(TCustomImageList* value) {
    stateImages_ = value;
    if (value) value->FreeNotification(this);
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetIndent(int value) {
    indent_ = std::max(value, 0);
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetRowSelect(bool value) {
    rowSelect_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetShowButtons(bool value) {
    showButtons_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetShowLines(bool value) {
    showLines_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetShowRoot(bool value) {
    showRoot_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomTreeView::SetSortType(TSortType value) {
    if (sortType_ == value) return;
    sortType_ = value;
    if (SortsByItself() && !HasState(csLoading)) AlphaSort();
}

bool TCustomTreeView::WantsKey(uint16_t key, TShiftState shift) const {
    return key == VK_UP || key == VK_DOWN || key == VK_LEFT || key == VK_RIGHT ||
           (IsEditing() && (key == VK_RETURN || key == VK_ESCAPE)) || TWinControl::WantsKey(key, shift);
}

void TCustomTreeView::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key == 0 || peer_ || !shift.Empty()) return;
    TTreeNode* target = nullptr;
    switch (key) {
        case VK_DOWN:
            target = selected_ ? selected_->GetNextVisible() : items_->GetFirstNode();
            break;
        case VK_UP:
            target = selected_ ? selected_->GetPrevVisible() : items_->GetFirstNode();
            break;
        case VK_HOME:
            target = items_->GetFirstNode();
            break;
        case VK_RIGHT:
            if (!selected_) break;
            if (selected_->Expanded())
                target = selected_->GetFirstChild();
            else
                selected_->Expand(false);
            break;
        case VK_LEFT:
            if (!selected_) break;
            if (selected_->Expanded())
                selected_->Collapse(false);
            else
                target = selected_->Parent();
            break;
        case VK_F2:
            if (selected_) selected_->EditText();
            break;
        default:
            return;
    }
    key = 0;
    if (target) ProcessSelect(target);
}

}  // namespace vyn
