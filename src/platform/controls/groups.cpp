#include "platform/controls/groups.h"

#include <algorithm>

#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace group_detail {

constexpr int kEdge = 2;
constexpr int kMostColumns = 16;
constexpr int kFirstLeft = 8;

}  // namespace group_detail

const ClassInfo& TCustomGroupBox::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomGroupBox, TCustomControl>("TCustomGroupBox");
    return info;
}

const ClassInfo& TGroupBox::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TGroupBox, TCustomGroupBox>("TGroupBox"), WinControlProperties(),
                "Align Anchors BiDiMode Caption Color Constraints Ctl3D DockSite DragCursor DragKind DragMode Enabled "
                "Font ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu ShowHint TabOrder "
                "TabStop Visible OnClick OnContextPopup OnDblClick OnDragDrop OnDockDrop OnDockOver OnDragOver "
                "OnEndDock OnEndDrag OnEnter OnExit OnGetSiteInfo OnMouseDown OnMouseMove OnMouseUp OnStartDock "
                "OnStartDrag OnUnDock");
    return info;
}

TCustomGroupBox::TCustomGroupBox(TComponent* owner) : TCustomControl(owner) {
    ControlStyle = {csAcceptsControls, csCaptureMouse, csClickEvents, csSetCaption, csDoubleClicks};
    SetInitialSize(185, 105);
}

void TCustomGroupBox::AdjustClientRect(TRect& rect) const {
    rect.Top += EffectiveFont().LineHeight();
    rect = {rect.Left + group_detail::kEdge, rect.Top + group_detail::kEdge, rect.Right - group_detail::kEdge,
            rect.Bottom - group_detail::kEdge};
}

bool TCustomGroupBox::DialogChar(char key) {
    if (IsAccel(static_cast<uint8_t>(key), Caption()) && CanFocus()) {
        SelectFirst();
        return true;
    }
    return TCustomControl::DialogChar(key);
}

void TCustomGroupBox::TextChanged() { TCustomControl::TextChanged(); }

void TCustomGroupBox::FontChanged() {
    TCustomControl::FontChanged();
    Realign();
}

// Radio groups.

const PropertyCatalogue& RadioGroupProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Group = TCustomRadioGroup;
        PropertyCatalogue made(&WinControlProperties());
        made.Add("Columns", &Group::Columns, &Group::SetColumns).Default(1);
        made.Add("ItemIndex", &Group::ItemIndex, &Group::SetItemIndex).Default(-1);
        made.Add("Items", &Group::Items, &Group::SetItems);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomRadioGroup::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomRadioGroup, TCustomGroupBox>("TCustomRadioGroup");
    return info;
}

const ClassInfo& TRadioGroup::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TRadioGroup, TCustomRadioGroup>("TRadioGroup"), RadioGroupProperties(),
                "Align Anchors BiDiMode Caption Color Columns Ctl3D DragCursor DragKind DragMode Enabled Font "
                "ItemIndex Items Constraints ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint "
                "PopupMenu ShowHint TabOrder TabStop Visible OnClick OnContextPopup OnDragDrop OnDragOver OnEndDock "
                "OnEndDrag OnEnter OnExit OnStartDock OnStartDrag");
    return info;
}

TCustomRadioGroup::TCustomRadioGroup(TComponent* owner) : TCustomGroupBox(owner) {
    ControlStyle = {csSetCaption, csDoubleClicks};
    items_.OnChange = [this](TObject*) { ItemsChanged(); };
}

TCustomRadioGroup::~TCustomRadioGroup() {
    items_.OnChange.Clear();
    buttons_.clear();
    DestroyContents();
}

TRadioButton* TCustomRadioGroup::Buttons(int index) const {
    if (index < 0 || index >= static_cast<int>(buttons_.size()))
        throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return buttons_[static_cast<size_t>(index)];
}

void TCustomRadioGroup::SetItemIndex(int value) {
    if (HasState(csLoading)) {
        itemIndex_ = value;  // the lines may come later
        return;
    }
    value = std::clamp(value, -1, static_cast<int>(buttons_.size()) - 1);
    if (itemIndex_ == value) return;
    updating_ = true;
    if (itemIndex_ >= 0 && itemIndex_ < static_cast<int>(buttons_.size()))
        buttons_[static_cast<size_t>(itemIndex_)]->SetChecked(false);
    itemIndex_ = value;
    if (value >= 0) buttons_[static_cast<size_t>(value)]->SetChecked(true);
    updating_ = false;
    Click();
}

void TCustomRadioGroup::ButtonClicked(int index) {
    if (updating_) return;
    if (!CanModify()) {
        updating_ = true;
        buttons_[static_cast<size_t>(index)]->SetChecked(false);
        if (itemIndex_ >= 0) buttons_[static_cast<size_t>(itemIndex_)]->SetChecked(true);
        updating_ = false;
        return;
    }
    itemIndex_ = index;
    Click();
}

void TCustomRadioGroup::SetColumns(int value) {
    value = std::clamp(value, 1, group_detail::kMostColumns);
    if (columns_ == value) return;
    columns_ = value;
    ArrangeButtons();
    PeerChanged(PeerChange::Style);
}

void TCustomRadioGroup::ItemsChanged() {
    if (HasState(csDestroying)) return;
    const auto count = static_cast<size_t>(items_.Count());
    while (buttons_.size() > count) {
        TRadioButton* last = buttons_.back();
        buttons_.pop_back();
        delete last;
    }
    while (buttons_.size() < count) {
        auto* button = new TRadioButton(this);
        const int index = static_cast<int>(buttons_.size());
        buttons_.push_back(button);
        button->SetParent(this);
        button->OnClick = [this, index](TObject*) { ButtonClicked(index); };
        button->OnKeyPress = [this](TObject*, char& key) { KeyPress(key); };
    }
    for (size_t i = 0; i < count; ++i) buttons_[i]->SetCaption(items_.At(static_cast<int>(i)));
    if (!HasState(csLoading)) {
        if (itemIndex_ >= static_cast<int>(count)) itemIndex_ = static_cast<int>(count) - 1;
        updating_ = true;
        if (itemIndex_ >= 0) buttons_[static_cast<size_t>(itemIndex_)]->SetChecked(true);
        updating_ = false;
        ArrangeButtons();
    }
    PeerChanged(PeerChange::Items);
}

// Down the first column, then down the next.
void TCustomRadioGroup::ArrangeButtons() {
    if (buttons_.empty() || HasState(csLoading)) return;
    const int count = static_cast<int>(buttons_.size());
    const int perColumn = (count + columns_ - 1) / columns_;
    const int columnWidth = (Width() - 10) / columns_;
    const int lineHeight = EffectiveFont().LineHeight();
    const int room = Height() - lineHeight - 5;
    const int buttonHeight = room / perColumn;
    const int top = lineHeight + 1 + room % perColumn / 2;
    for (int i = 0; i < count; ++i)
        buttons_[static_cast<size_t>(i)]->SetBounds(i / perColumn * columnWidth + group_detail::kFirstLeft,
                                                    i % perColumn * buttonHeight + top, columnWidth, buttonHeight);
}

void TCustomRadioGroup::Loaded() {
    TCustomGroupBox::Loaded();
    const int index = std::clamp(itemIndex_, -1, static_cast<int>(buttons_.size()) - 1);
    itemIndex_ = index;
    updating_ = true;
    if (index >= 0) buttons_[static_cast<size_t>(index)]->SetChecked(true);
    updating_ = false;
    ArrangeButtons();
}

// The keyboard goes to the chosen button, or the first.
void TCustomRadioGroup::SetFocus() {
    if (buttons_.empty())
        TCustomGroupBox::SetFocus();
    else
        buttons_[static_cast<size_t>(std::max(itemIndex_, 0))]->SetFocus();
}

void TCustomRadioGroup::Resize() {
    TCustomGroupBox::Resize();
    ArrangeButtons();
}

void TCustomRadioGroup::FontChanged() {
    TCustomGroupBox::FontChanged();
    ArrangeButtons();
}

void TCustomRadioGroup::EnabledChanged() {
    TCustomGroupBox::EnabledChanged();
    for (TRadioButton* button : buttons_) button->SetEnabled(Enabled());
}

}  // namespace vyn
