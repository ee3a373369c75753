#include "platform/controls/scroll_boxes.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/property_catalogue.h"
#include "platform/controls/text_metrics.h"

namespace vyn {

namespace scroll_detail {

constexpr int kSunkenEdge = 2;
constexpr int kWheelNotch = 120;
constexpr int kWheelLines = 3;

}  // namespace scroll_detail

VYN_ENUM_NAMES(TScrollBarStyle, "ssRegular", "ssFlat", "ssHotTrack")

const ClassInfo& TControlScrollBar::StaticClass() {
    using Bar = TControlScrollBar;
    static const ClassInfo info = DefineClass<Bar, TPersistent>("TControlScrollBar")
                                      .Published("ButtonSize", &Bar::ButtonSize, &Bar::ButtonSize)
                                      .Default(0)
                                      .Published("Color", &Bar::Color, &Bar::Color)
                                      .Default(clBtnHighlight)
                                      .Published("Increment", &Bar::Increment, &Bar::Increment)
                                      .Default(8)
                                      .Published("Margin", &Bar::Margin, &Bar::SetMargin)
                                      .Default(0)
                                      .Published("ParentColor", &Bar::ParentColor, &Bar::ParentColor)
                                      .Default(true)
                                      .Published("Position", &Bar::Position, &Bar::SetPosition)
                                      .Default(0)
                                      .Published("Range", &Bar::Range, &Bar::SetRange)
                                      .Default(0)
                                      .Stored(&Bar::IsRangeStored)
                                      .Published("Smooth", &Bar::Smooth, &Bar::Smooth)
                                      .Default(false)
                                      .Published("Size", &Bar::Size, &Bar::Size)
                                      .Default(0)
                                      .Published("Style", &Bar::Style, &Bar::Style)
                                      .Default(TScrollBarStyle::ssRegular)
                                      .Published("ThumbSize", &Bar::ThumbSize, &Bar::ThumbSize)
                                      .Default(0)
                                      .Published("Tracking", &Bar::Tracking, &Bar::Tracking)
                                      .Default(false)
                                      .Published("Visible", &Bar::Visible, &Bar::SetVisible)
                                      .Default(true);
    return info;
}

TPersistent* TControlScrollBar::GetOwner() const { return control_; }

int TControlScrollBar::ClientLength() const {
    const TRect client = control_->UnscrolledClientRect();
    return kind_ == sbHorizontal ? client.Width() : client.Height();
}

int TControlScrollBar::Range() const {
    control_->UpdateRanges();
    return range_;
}

bool TControlScrollBar::IsRangeStored() const { return !control_->AutoScroll(); }

bool TControlScrollBar::IsScrollBarVisible() const { return visible_ && Range() > ClientLength(); }

void TControlScrollBar::SetMargin(int value) {
    margin_ = value;
    control_->ContentsMoved();
}

void TControlScrollBar::SetRange(int value) {
    control_->autoScroll_ = false;
    range_ = std::max(value, 0);
    SetPosition(position_);
    control_->PeerChanged(PeerChange::Scroll);
}

void TControlScrollBar::SetVisible(bool value) {
    visible_ = value;
    control_->PeerChanged(PeerChange::Scroll);
}

void TControlScrollBar::SetPosition(int value) {
    if (control_->HasState(csReading)) {
        position_ = value;
        return;
    }
    const int last = std::max(Range() - ClientLength(), 0);
    value = std::clamp(value, 0, last);
    if (value == position_) return;
    const int delta = position_ - value;
    position_ = value;
    if (kind_ == sbHorizontal)
        control_->ScrollBy(delta, 0);
    else
        control_->ScrollBy(0, delta);
}

void TControlScrollBar::ChangeScale(int numerator, int denominator) {
    range_ = MulDiv(range_, numerator, denominator);
    position_ = MulDiv(position_, numerator, denominator);
    margin_ = MulDiv(margin_, numerator, denominator);
}

void TControlScrollBar::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TControlScrollBar>(source);
    if (!other) {
        TPersistent::Assign(source);
        return;
    }
    ButtonSize = other->ButtonSize;
    Color = other->Color;
    Increment = other->Increment;
    margin_ = other->margin_;
    ParentColor = other->ParentColor;
    range_ = other->range_;
    Smooth = other->Smooth;
    Size = other->Size;
    Style = other->Style;
    ThumbSize = other->ThumbSize;
    Tracking = other->Tracking;
    visible_ = other->visible_;
    SetPosition(other->position_);
    control_->PeerChanged(PeerChange::Scroll);
}

const ClassInfo& TScrollingWinControl::StaticClass() {
    static const ClassInfo info =
        DefineClass<TScrollingWinControl, TWinControl>("TScrollingWinControl")
            .Published("HorzScrollBar", &TScrollingWinControl::HorzScrollBar, &TScrollingWinControl::SetHorzScrollBar)
            .Published("VertScrollBar", &TScrollingWinControl::VertScrollBar, &TScrollingWinControl::SetVertScrollBar);
    return info;
}

TScrollingWinControl::TScrollingWinControl(TComponent* owner)
    : TWinControl(owner), horizontal_(this, sbHorizontal), vertical_(this, sbVertical) {}

// The controls inside ask for the bars' positions while they go.
TScrollingWinControl::~TScrollingWinControl() { DestroyContents(); }

void TScrollingWinControl::SetAutoScroll(bool value) {
    if (autoScroll_ == value) return;
    autoScroll_ = value;
    if (!value) horizontal_.range_ = vertical_.range_ = 0;
    ContentsMoved();
}

void TScrollingWinControl::ContentsMoved() {
    rangesValid_ = false;
    PeerChanged(PeerChange::Scroll);
}

void TScrollingWinControl::UpdateRanges() const {
    if (rangesValid_ || !autoScroll_) return;
    rangesValid_ = true;
    const auto* self = this;
    const auto alignMargin = [](bool counts, int length) { return counts ? length : 0; };
    int wide = 0, high = 0, rightMargin = 0, bottomMargin = 0;
    for (int i = 0; i < self->ControlCount(); ++i) {
        const TControl* control = self->Controls(i);
        if (!control->Visible()) continue;
        const TAlign align = control->Align();
        const bool plain = align == alNone;
        const TAnchors anchors = control->Anchors();
        if (align == alLeft || (plain && anchors.Contains(akLeft) && !anchors.Contains(akRight)))
            wide = std::max(wide, horizontal_.position_ + control->Left() + control->Width());
        if (align == alTop || (plain && anchors.Contains(akTop) && !anchors.Contains(akBottom)))
            high = std::max(high, vertical_.position_ + control->Top() + control->Height());
        rightMargin += alignMargin(align == alRight, control->Width());
        bottomMargin += alignMargin(align == alBottom, control->Height());
    }
    if (wide > 0) wide += horizontal_.margin_;
    if (high > 0) high += vertical_.margin_;
    horizontal_.range_ = wide + rightMargin;
    vertical_.range_ = high + bottomMargin;
}

TPoint TScrollingWinControl::ScrollOffset() const { return {horizontal_.position_, vertical_.position_}; }

TRect TScrollingWinControl::ClientRect() const { return UnscrolledClientRect(); }

void TScrollingWinControl::AlignControls(TControl* changed) {
    TWinControl::AlignControls(changed);
    if (HasState(csDestroying)) return;
    ContentsMoved();
    if (HasState(csLoading)) return;
    // A window that has grown shows what was scrolled away.
    if (horizontal_.position_ > 0) horizontal_.SetPosition(horizontal_.position_);
    if (vertical_.position_ > 0) vertical_.SetPosition(vertical_.position_);
}

void TScrollingWinControl::ScaleScrollBars(int numerator, int denominator) {
    horizontal_.ChangeScale(numerator, denominator);
    vertical_.ChangeScale(numerator, denominator);
    rangesValid_ = false;
}

void TScrollingWinControl::ScrollInView(TControl* control) {
    if (!control || control == this) return;
    TPoint at = {control->Left(), control->Top()};
    for (TWinControl* parent = control->Parent(); parent && parent != this; parent = parent->Parent())
        at = {at.x + parent->Left(), at.y + parent->Top()};
    const TRect client = ClientRect();
    const auto reveal = [](TControlScrollBar& bar, int start, int length, int view) {
        if (start < 0)
            bar.SetPosition(bar.Position() + start - bar.Margin());
        else if (start + length > view)
            bar.SetPosition(bar.Position() + std::min(start, start + length - view) + bar.Margin());
    };
    reveal(horizontal_, at.x, control->Width(), client.Width());
    reveal(vertical_, at.y, control->Height(), client.Height());
}

bool TScrollingWinControl::DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) {
    if (TWinControl::DoMouseWheel(shift, wheelDelta, mousePos)) return true;
    if (!vertical_.IsScrollBarVisible()) return false;
    const int before = vertical_.Position();
    vertical_.SetPosition(before -
                          wheelDelta * vertical_.Increment * scroll_detail::kWheelLines / scroll_detail::kWheelNotch);
    return vertical_.Position() != before;
}

const ClassInfo& TScrollBox::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&WinControlProperties());
        own.Add("AutoScroll", &TScrollBox::AutoScroll, &TScrollBox::SetAutoScroll).Default(true);
        own.Add("BorderStyle", &TScrollBox::BorderStyle, &TScrollBox::SetBorderStyle).Default(TBorderStyle::bsSingle);
        return Publish(DefineClass<TScrollBox, TScrollingWinControl>("TScrollBox"), own,
                       "Align Anchors AutoScroll AutoSize BiDiMode BorderStyle Constraints DockSite DragCursor "
                       "DragKind DragMode Enabled Color Ctl3D Font ParentBiDiMode ParentColor ParentCtl3D ParentFont "
                       "ParentShowHint PopupMenu ShowHint TabOrder TabStop Visible OnCanResize OnClick "
                       "OnConstrainedResize OnDblClick OnDockDrop OnDockOver OnDragDrop OnDragOver OnEndDock OnEndDrag "
                       "OnEnter OnExit OnGetSiteInfo OnMouseDown OnMouseMove OnMouseUp OnMouseWheel OnMouseWheelDown "
                       "OnMouseWheelUp OnResize OnStartDock OnStartDrag OnUnDock");
    }();
    return info;
}

TScrollBox::TScrollBox(TComponent* owner) : TScrollingWinControl(owner) {
    ControlStyle = {csAcceptsControls, csCaptureMouse, csClickEvents, csSetCaption, csDoubleClicks};
    SetInitialSize(185, 41);
}

void TScrollBox::SetBorderStyle(TBorderStyle value) {
    if (borderStyle_ == value) return;
    borderStyle_ = value;
    PeerChanged(PeerChange::Style);
    Realign();
}

TRect TScrollBox::UnscrolledClientRect() const {
    const int edge = borderStyle_ == TBorderStyle::bsSingle ? 2 * scroll_detail::kSunkenEdge : 0;
    return {0, 0, std::max(Width() - edge, 0), std::max(Height() - edge, 0)};
}

}  // namespace vyn
