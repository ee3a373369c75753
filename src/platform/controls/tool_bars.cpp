#include "platform/controls/tool_bars.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/menus.h"
#include "platform/controls/property_catalogue.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/text_metrics.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace tool_bar_detail {

constexpr int kSeparatorWidth = 8;
constexpr int kDropDownWidth = 13;
constexpr int kEdge = 2;
constexpr int kTextPadding = 8;

}  // namespace tool_bar_detail

VYN_ENUM_NAMES(TToolButtonStyle, "tbsButton", "tbsCheck", "tbsDropDown", "tbsSeparator", "tbsDivider")

const ClassInfo& TToolButton::StaticClass() {
    static const ClassInfo info = [] {
        using Button = TToolButton;
        PropertyCatalogue own(&ControlProperties());
        own.Add("AllowAllUp", &Button::AllowAllUp, &Button::SetAllowAllUp).Default(false);
        own.Add("Down", &Button::Down, &Button::SetDown).Default(false);
        own.Add("DropdownMenu", &Button::DropdownMenu, &Button::SetDropdownMenu);
        own.Add("Grouped", &Button::Grouped, &Button::SetGrouped).Default(false);
        own.Add("ImageIndex", &Button::ImageIndex, &Button::SetImageIndex).Default(-1);
        own.Add("Indeterminate", &Button::Indeterminate, &Button::SetIndeterminate).Default(false);
        own.Add("Marked", &Button::Marked, &Button::SetMarked).Default(false);
        own.Add("MenuItem", &Button::MenuItem, &Button::SetMenuItem);
        own.Add("Style", &Button::Style, &Button::SetStyle).Default(tbsButton);
        own.Add("Width", &TControl::Width, &TControl::SetWidth).Stored(&Button::IsWidthStored);
        own.Add("Wrap", &Button::Wrap, &Button::SetWrap).Default(false);
        return Publish(DefineClass<Button, TGraphicControl>("TToolButton"), own,
                       "AllowAllUp Caption Down DragCursor DragKind DragMode DropdownMenu Enabled Grouped Height "
                       "ImageIndex Indeterminate Marked MenuItem ParentShowHint PopupMenu Wrap ShowHint Style Visible "
                       "Width OnClick OnContextPopup OnDragDrop OnDragOver OnEndDock OnEndDrag OnMouseDown OnMouseMove "
                       "OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TToolButton::TToolButton(TComponent* owner) : TGraphicControl(owner) {
    // A click comes from ProcessPress, which moves check buttons first.
    ControlStyle = {csCaptureMouse, csSetCaption};
    SetInitialSize(23, 22);
}

TToolButton::~TToolButton() = default;

void TToolButton::Notification(TComponent* component, TOperation operation) {
    TGraphicControl::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == dropdownMenu_) dropdownMenu_ = nullptr;
    if (component == menuItem_) menuItem_ = nullptr;
}

void TToolButton::SetParent(TWinControl* parent) {
    if (parent && parent != Parent()) toolBar_ = ObjectCast<TToolBar>(parent);
    TGraphicControl::SetParent(parent);
    if (!parent) toolBar_ = nullptr;
}

int TToolButton::Index() const {
    if (!toolBar_) return -1;
    const auto& items = toolBar_->items_;
    const auto at = std::find(items.begin(), items.end(), static_cast<const TControl*>(this));
    return at == items.end() ? -1 : static_cast<int>(at - items.begin());
}

void TToolButton::BarChanged() {
    PeerChanged(PeerChange::Style);
    if (toolBar_ && !HasState(csLoading)) toolBar_->Changed();
}

void TToolButton::SetAllowAllUp(bool value) { allowAllUp_ = value; }

void TToolButton::SetDown(bool value) {
    if (down_ == value) return;
    down_ = value;
    PeerChanged(PeerChange::Selection);
    if (value && grouped_ && style_ == tbsCheck && !HasState(csLoading)) TurnOthersUp();
}

// A group is a run of grouped check buttons without a separator (or other button) between them.
void TToolButton::TurnOthersUp() {
    if (!toolBar_) return;
    const auto& items = toolBar_->items_;
    const int index = Index();
    for (const int step : {-1, 1}) {
        for (int i = index + step; i >= 0 && i < static_cast<int>(items.size()); i += step) {
            auto* other = ObjectCast<TToolButton>(items[static_cast<size_t>(i)]);
            if (!other || !other->grouped_ || other->style_ != tbsCheck) break;
            other->SetDown(false);
        }
    }
}

void TToolButton::SetDropdownMenu(TPopupMenu* value) {
    dropdownMenu_ = value;
    if (value) value->FreeNotification(this);
    BarChanged();
}
void TToolButton::SetGrouped(bool value) { grouped_ = value; }
void TToolButton::SetImageIndex(int32_t value) {
    if (imageIndex_ == value) return;
    imageIndex_ = value;
    PeerChanged(PeerChange::Style);
}
void TToolButton::SetIndeterminate(bool value) {
    indeterminate_ = value;
    if (value) SetDown(false);
    PeerChanged(PeerChange::Selection);
}
void TToolButton::SetMarked(bool value) {
    marked_ = value;
    PeerChanged(PeerChange::Style);
}
// The button takes the entry's caption, hint, picture and state, and clicking it clicks the entry.
void TToolButton::SetMenuItem(TMenuItem* value) {
    menuItem_ = value;
    if (!value) return;
    value->FreeNotification(this);
    if (HasState(csLoading)) return;
    SetCaption(value->Caption());
    SetEnabled(value->Enabled());
    SetHint(value->Hint);
    SetImageIndex(value->ImageIndex());
    SetVisible(value->Visible());
}
void TToolButton::SetStyle(TToolButtonStyle value) {
    if (style_ == value) return;
    style_ = value;
    BarChanged();
}
void TToolButton::SetWrap(bool value) {
    if (wrap_ == value) return;
    wrap_ = value;
    BarChanged();
}

bool TToolButton::IsWidthStored() const { return IsSeparator(); }

void TToolButton::TextChanged() {
    TGraphicControl::TextChanged();
    if (toolBar_ && toolBar_->ShowCaptions()) BarChanged();
}

void TToolButton::VisibleChanged() {
    TGraphicControl::VisibleChanged();
    BarChanged();
}

void TToolButton::SetBounds(int left, int top, int width, int height) {
    TGraphicControl::SetBounds(left, top, width, height);
}

void TToolButton::ProcessPress() {
    if (!EffectivelyEnabled() || IsSeparator()) return;
    if (style_ == tbsCheck) {
        if (!down_)
            SetDown(true);
        else if (!grouped_ || allowAllUp_)
            SetDown(false);
    }
    Click();
}

void TToolButton::Click() {
    if (menuItem_ && !OnClick)
        menuItem_->Click();
    else
        TGraphicControl::Click();
}

bool TToolButton::CheckMenuDropdown() {
    if (!dropdownMenu_) return false;
    const TPoint at = ClientToScreen({0, Height()});
    dropdownMenu_->PopupComponent = this;
    dropdownMenu_->Popup(at.x, at.y);
    return true;
}

bool TToolButton::DialogChar(char key) {
    if (!toolBar_ || !toolBar_->ShowCaptions() || !IsAccel(static_cast<uint8_t>(key), Caption()) || !Enabled() ||
        !Visible() || !toolBar_->Showing())
        return false;
    if (style_ != tbsDropDown || !CheckMenuDropdown()) ProcessPress();
    return true;
}

// Tool bars.

const ClassInfo& TToolBar::StaticClass() {
    static const ClassInfo info = [] {
        using Bar = TToolBar;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Align", &TControl::Align, &TControl::SetAlign).Default(alTop);
        own.Add("Anchors", &TControl::Anchors, &TControl::SetAnchors).Default(TAnchors{akLeft, akTop, akRight});
        own.Add("ButtonHeight", &Bar::ButtonHeight, &Bar::SetButtonHeight).Default(22);
        own.Add("ButtonWidth", &Bar::ButtonWidth, &Bar::SetButtonWidth).Default(23);
        own.Add("DisabledImages", &Bar::DisabledImages, &Bar::SetDisabledImages);
        own.Add("EdgeBorders", &Bar::EdgeBorders, &Bar::SetEdgeBorders).Default(TEdgeBorders{ebTop});
        own.Add("EdgeInner", &Bar::EdgeInner, &Bar::SetEdgeInner).Default(esRaised);
        own.Add("EdgeOuter", &Bar::EdgeOuter, &Bar::SetEdgeOuter).Default(esLowered);
        own.Add("Flat", &Bar::Flat, &Bar::SetFlat).Default(false);
        own.Add("Height", &TControl::Height, &TControl::SetHeight).Default(32);
        own.Add("HotImages", &Bar::HotImages, &Bar::SetHotImages);
        own.Add("Images", &Bar::Images, &Bar::SetImages);
        own.Add("Indent", &Bar::Indent, &Bar::SetIndent).Default(0);
        own.Add("List", &Bar::List, &Bar::SetList).Default(false);
        own.Add("ShowCaptions", &Bar::ShowCaptions, &Bar::SetShowCaptions).Default(false);
        own.Add("Transparent", &Bar::Transparent, &Bar::SetTransparent).Default(false);
        own.Add("Wrapable", &Bar::Wrapable, &Bar::SetWrapable).Default(true);
        return Publish(DefineClass<Bar, TWinControl>("TToolBar"), own,
                       "Align Anchors AutoSize BorderWidth ButtonHeight ButtonWidth Caption Color Constraints Ctl3D "
                       "DisabledImages DockSite DragCursor DragKind DragMode EdgeBorders EdgeInner EdgeOuter Enabled "
                       "Flat Font Height HotImages Images Indent List ParentColor ParentFont ParentShowHint PopupMenu "
                       "ShowCaptions ShowHint TabOrder TabStop Transparent Visible Wrapable OnCanResize OnClick "
                       "OnConstrainedResize OnContextPopup OnDblClick OnDockDrop OnDockOver OnDragDrop OnDragOver "
                       "OnEndDock OnEndDrag OnEnter OnExit OnGetSiteInfo OnMouseDown OnMouseMove OnMouseUp OnResize "
                       "OnStartDock OnStartDrag OnUnDock");
    }();
    return info;
}

TToolBar::TToolBar(TComponent* owner) : TWinControl(owner) {
    ControlStyle = {csAcceptsControls, csCaptureMouse, csClickEvents, csDoubleClicks, csSetCaption};
    SetInitialSize(150, 32);
    SetAlign(alTop);
}

TToolBar::~TToolBar() {
    ComponentState.Include(csDestroying);
    items_.clear();
    DestroyContents();
}

void TToolBar::Notification(TComponent* component, TOperation operation) {
    TWinControl::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == images_) images_ = nullptr;
    if (component == disabledImages_) disabledImages_ = nullptr;
    if (component == hotImages_) hotImages_ = nullptr;
}

TControl* TToolBar::Items(int index) const {
    if (index < 0 || index >= ButtonCount()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    return items_[static_cast<size_t>(index)];
}

TToolButton* TToolBar::Buttons(int index) const { return ObjectCast<TToolButton>(Items(index)); }

void TToolBar::ControlInserted(TControl* control) {
    items_.push_back(control);
    // Dropped between others: what stands farther left comes first.
    if (!HasState(csLoading) && !control->HasState(csLoading)) SortItems();
    PeerChanged(PeerChange::Items);
}

void TToolBar::ControlRemoved(TControl* control) {
    std::erase(items_, control);
    PeerChanged(PeerChange::Items);
    if (!HasState(csLoading)) Realign();
}

// A control that was put before others (it says so by its place) goes there; what comes new without a place is last.
void TToolBar::SortItems() {
    if (items_.size() < 2) return;
    TControl* last = items_.back();
    if (last->Left() == 0 && last->Top() == 0) return;
    items_.pop_back();
    const auto at = std::find_if(items_.begin(), items_.end(), [&](const TControl* other) {
        return other->Top() + other->Height() > last->Top() && other->Left() >= last->Left() &&
               other->Top() >= last->Top() - last->Height() / 2;
    });
    items_.insert(at, last);
}

void TToolBar::Changed() {
    if (HasState(csLoading) || HasState(csDestroying)) return;
    PeerChanged(PeerChange::Items);
    Realign();
}

TSize TToolBar::ButtonSize(const TToolButton& button) const {
    if (button.IsSeparator())
        return {button.Width() > 0 ? button.Width() : tool_bar_detail::kSeparatorWidth, buttonHeight_};
    TSize size = {buttonWidth_, buttonHeight_};
    if (showCaptions_) {
        const TSize text = CurrentTextMetrics().TextExtent(EffectiveFont(), StripHotkey(button.Caption()));
        if (list_) {
            const int picture = images_ ? images_->Width() : 0;
            size.cx = std::max(size.cx, picture + text.cx + tool_bar_detail::kTextPadding);
        } else {
            size.cx = std::max(size.cx, text.cx + tool_bar_detail::kTextPadding);
            const int picture = images_ ? images_->Height() : 0;
            size.cy = std::max(size.cy, picture + text.cy + tool_bar_detail::kTextPadding);
        }
    }
    if (button.Style() == tbsDropDown) size.cx += tool_bar_detail::kDropDownWidth;
    return size;
}

void TToolBar::AdjustClientRect(TRect& rect) const {
    const int width = edgeInner_ == esNone && edgeOuter_ == esNone ? 0 : tool_bar_detail::kEdge;
    if (edgeBorders_.Contains(ebLeft)) rect.Left += width;
    if (edgeBorders_.Contains(ebTop)) rect.Top += width;
    if (edgeBorders_.Contains(ebRight)) rect.Right -= width;
    if (edgeBorders_.Contains(ebBottom)) rect.Bottom -= width;
}

void TToolBar::AlignControls(TControl*) {
    if (placing_ || HasState(csLoading) || HasState(csDestroying)) return;
    placing_ = true;
    TRect rect = ClientRect();
    AdjustClientRect(rect);
    int rowHeight = buttonHeight_;
    if (showCaptions_)
        for (const TControl* control : items_)
            if (const auto* button = ObjectCast<TToolButton>(control); button && button->Visible())
                rowHeight = std::max(rowHeight, ButtonSize(*button).cy);
    int x = rect.Left + indent_;
    int y = rect.Top;
    bool any = false;
    rowCount_ = 1;
    for (TControl* control : items_) {
        if (!control->Visible()) continue;
        auto* button = ObjectCast<TToolButton>(control);
        const int width = button ? ButtonSize(*button).cx : control->Width();
        if (wrapable_ && any && x + width > rect.Right) {
            x = rect.Left + indent_;
            y += rowHeight;
            ++rowCount_;
        }
        control->SetBounds(x, y, width, rowHeight);
        x += width;
        any = true;
        if (button && button->Wrap()) {
            x = rect.Left + indent_;
            y += rowHeight;
            ++rowCount_;
            any = false;
        }
    }
    placing_ = false;
    if (AutoSize()) AdjustSize();
}

bool TToolBar::CanAutoSize(int&, int& newHeight) {
    int bottom = 0;
    for (const TControl* control : items_)
        if (control->Visible()) bottom = std::max(bottom, control->Top() + control->Height());
    if (bottom == 0) return false;
    newHeight = bottom + (edgeBorders_.Contains(ebBottom) ? tool_bar_detail::kEdge : 0) + tool_bar_detail::kEdge;
    return true;
}

void TToolBar::FontChanged() {
    TWinControl::FontChanged();
    if (showCaptions_) Changed();
}

void TToolBar::SetImageList(TCustomImageList*& field, TCustomImageList* value) {
    field = value;
    if (value) value->FreeNotification(this);
    Changed();
}
void TToolBar::SetButtonHeight(int value) {
    buttonHeight_ = std::max(value, 1);
    Changed();
}
void TToolBar::SetButtonWidth(int value) {
    buttonWidth_ = std::max(value, 1);
    Changed();
}
void TToolBar::SetEdgeBorders(TEdgeBorders value) {
    edgeBorders_ = value;
    PeerChanged(PeerChange::Style);
    Changed();
}
void TToolBar::SetEdgeInner(TEdgeStyle value) {
    edgeInner_ = value;
    PeerChanged(PeerChange::Style);
    Changed();
}
void TToolBar::SetEdgeOuter(TEdgeStyle value) {
    edgeOuter_ = value;
    PeerChanged(PeerChange::Style);
    Changed();
}
void TToolBar::SetFlat(bool value) {
    flat_ = value;
    PeerChanged(PeerChange::Style);
}
void TToolBar::SetIndent(int value) {
    indent_ = std::max(value, 0);
    Changed();
}
void TToolBar::SetList(bool value) {
    list_ = value;
    Changed();
}
void TToolBar::SetShowCaptions(bool value) {
    showCaptions_ = value;
    Changed();
}
void TToolBar::SetTransparent(bool value) {
    transparent_ = value;
    PeerChanged(PeerChange::Style);
}
void TToolBar::SetWrapable(bool value) {
    wrapable_ = value;
    Changed();
}

void TToolBar::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    for (TControl* control : std::vector<TControl*>(items_))
        if (control->Owner() == root) visit(control);
}

void TToolBar::SetChildOrder(TComponent* child, int order) {
    auto* control = ObjectCast<TControl>(child);
    const auto at = std::find(items_.begin(), items_.end(), control);
    if (at == items_.end()) return;
    items_.erase(at);
    items_.insert(items_.begin() + std::clamp(order, 0, ButtonCount()), control);
    Changed();
}

void TToolBar::Loaded() {
    TWinControl::Loaded();
    Realign();
}

}  // namespace vyn
