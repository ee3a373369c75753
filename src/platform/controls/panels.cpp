#include "platform/controls/panels.h"

#include <algorithm>

#include "platform/controls/enum_names.h"

namespace vyn {

const PropertyCatalogue& PanelProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Panel = TCustomPanel;
        PropertyCatalogue made(&WinControlProperties());
        made.Add("Alignment", &Panel::Alignment, &Panel::SetAlignment).Default(taCenter);
        made.Add("BevelInner", &Panel::BevelInner, &Panel::SetBevelInner).Default(bvNone);
        made.Add("BevelOuter", &Panel::BevelOuter, &Panel::SetBevelOuter).Default(bvRaised);
        made.Add("BevelWidth", &Panel::BevelWidth, &Panel::SetBevelWidth).Default(1);
        made.Add("BorderStyle", &Panel::BorderStyle, &Panel::SetBorderStyle).Default(TBorderStyle::bsNone);
        made.Add("Color", &TControl::Color, &TControl::SetColor).Default(clBtnFace).Stored(&TControl::IsColorStored);
        made.Add("FullRepaint", &Panel::FullRepaint, &Panel::FullRepaint).Default(true);
        made.Add("Locked", &Panel::Locked, &Panel::Locked).Default(false);
        made.Add("ParentColor", &TControl::ParentColor, &TControl::SetParentColor).Default(false);
        made.Add("UseDockManager", &TWinControl::UseDockManager, &TWinControl::UseDockManager).Default(true);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomPanel::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomPanel, TCustomControl>("TCustomPanel");
    return info;
}

const ClassInfo& TPanel::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TPanel, TCustomPanel>("TPanel"), PanelProperties(),
                "Align Alignment Anchors AutoSize BevelInner BevelOuter BevelWidth BiDiMode BorderWidth BorderStyle "
                "Caption Color Constraints Ctl3D UseDockManager DockSite DragCursor DragKind DragMode Enabled "
                "FullRepaint Font Locked ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu "
                "ShowHint TabOrder TabStop Visible OnCanResize OnClick OnConstrainedResize OnContextPopup OnDockDrop "
                "OnDockOver OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnGetSiteInfo "
                "OnMouseDown OnMouseMove OnMouseUp OnResize OnStartDock OnStartDrag OnUnDock");
    return info;
}

TCustomPanel::TCustomPanel(TComponent* owner) : TCustomControl(owner) {
    ControlStyle = {csAcceptsControls, csCaptureMouse, csClickEvents, csSetCaption, csOpaque, csDoubleClicks};
    SetInitialSize(185, 41);
    SetDefaultColor(clBtnFace, false);
    UseDockManager = true;
}

void TCustomPanel::BevelChanged() {
    PeerChanged(PeerChange::Style);
    Realign();
}

void TCustomPanel::SetAlignment(TAlignment value) {
    alignment_ = value;
    PeerChanged(PeerChange::Style);
}
void TCustomPanel::SetBevelInner(TBevelCut value) {
    if (bevelInner_ == value) return;
    bevelInner_ = value;
    BevelChanged();
}
void TCustomPanel::SetBevelOuter(TBevelCut value) {
    if (bevelOuter_ == value) return;
    bevelOuter_ = value;
    BevelChanged();
}
void TCustomPanel::SetBevelWidth(TBevelWidth value) {
    value = std::max(value, 1);
    if (bevelWidth_ == value) return;
    bevelWidth_ = value;
    BevelChanged();
}
void TCustomPanel::SetBorderStyle(TBorderStyle value) {
    if (borderStyle_ == value) return;
    borderStyle_ = value;
    BevelChanged();
}

void TCustomPanel::AdjustClientRect(TRect& rect) const {
    int edge = 0;
    if (bevelInner_ != bvNone) edge += bevelWidth_;
    if (bevelOuter_ != bvNone) edge += bevelWidth_;
    if (borderStyle_ == TBorderStyle::bsSingle) edge += 1;
    rect = {rect.Left + edge, rect.Top + edge, rect.Right - edge, rect.Bottom - edge};
}

bool TCustomPanel::CanAutoSize(int& newWidth, int& newHeight) {
    if (!TCustomControl::CanAutoSize(newWidth, newHeight)) return false;
    TRect inner = ClientRect();
    AdjustClientRect(inner);
    newWidth += ClientRect().Right - inner.Right + BorderWidth();
    newHeight += ClientRect().Bottom - inner.Bottom + BorderWidth();
    return true;
}

// Splitters.

VYN_ENUM_NAMES(TResizeStyle, "rsNone", "rsLine", "rsUpdate", "rsPattern")

const ClassInfo& TSplitter::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&ControlProperties());
        own.Add("Align", &TControl::Align, &TControl::SetAlign).Default(alLeft);
        own.Add("AutoSnap", &TSplitter::AutoSnap, &TSplitter::AutoSnap).Default(true);
        own.Add("Beveled", &TSplitter::Beveled, &TSplitter::SetBeveled).Default(false);
        own.Add("Cursor", &TControl::Cursor, &TControl::SetCursor).Default(crHSplit);
        own.Add("MinSize", &TSplitter::MinSize, &TSplitter::SetMinSize).Default(30);
        own.Add("ResizeStyle", &TSplitter::ResizeStyle, &TSplitter::ResizeStyle).Default(rsPattern);
        own.Add("Width", &TControl::Width, &TControl::SetWidth).Default(3);
        own.Event("OnCanResize", &TSplitter::OnCanResize);
        own.Event("OnMoved", &TSplitter::OnMoved);
        own.Event("OnPaint", &TSplitter::OnPaint);
        return Publish(DefineClass<TSplitter, TGraphicControl>("TSplitter"), own,
                       "Align AutoSnap Beveled Color Cursor Constraints MinSize ParentColor ResizeStyle Visible Width "
                       "OnCanResize OnMoved OnPaint");
    }();
    return info;
}

TSplitter::TSplitter(TComponent* owner) : TGraphicControl(owner) {
    SetInitialSize(3, 100);
    SetAlign(alLeft);
    SetCursor(crHSplit);
}

void TSplitter::SetBeveled(bool value) {
    beveled_ = value;
    PeerChanged(PeerChange::Style);
}

// The control whose edge touches the splitter on the side that it is aligned to.
TControl* TSplitter::FindControl() const {
    if (!Parent()) return nullptr;
    TPoint at = {Left(), Top()};
    switch (Align()) {
        case alLeft:
            --at.x;
            break;
        case alRight:
            at.x += Width();
            break;
        case alTop:
            --at.y;
            break;
        case alBottom:
            at.y += Height();
            break;
        case alNone:
        case alClient:
            return nullptr;
    }
    TControl* nearest = nullptr;
    for (int i = 0; i < Parent()->ControlCount(); ++i) {
        TControl* control = Parent()->Controls(i);
        if (control == this || !control->Visible() || !control->Enabled()) continue;
        TRect bounds = control->BoundsRect();
        // A control that was shrunk to nothing is found by its edge.
        if (bounds.Width() == 0) ++bounds.Right, --bounds.Left;
        if (bounds.Height() == 0) ++bounds.Bottom, --bounds.Top;
        if (bounds.Contains(at)) nearest = control;
    }
    return nearest;
}

bool TSplitter::ComputeNewSize(TControl* control, int delta, int& newSize) {
    const bool vertical = Align() == alTop || Align() == alBottom;
    const int size = vertical ? control->Height() : control->Width();
    const TRect client = Parent()->ClientRect();
    int most = (vertical ? client.Height() : client.Width()) - minSize_;
    for (int i = 0; i < Parent()->ControlCount(); ++i) {
        const TControl* other = Parent()->Controls(i);
        if (other == control || !other->Visible()) continue;
        const bool sameWay = vertical ? other->Align() == alTop || other->Align() == alBottom
                                      : other->Align() == alLeft || other->Align() == alRight;
        if (sameWay) most -= vertical ? other->Height() : other->Width();
    }
    newSize = Align() == alLeft || Align() == alTop ? size + delta : size - delta;
    newSize = std::min(newSize, std::max(most, minSize_));
    if (newSize < minSize_) newSize = AutoSnap ? 0 : minSize_;
    bool accept = true;
    OnCanResize(this, newSize, accept);
    return accept;
}

void TSplitter::Apply(TControl* control, int newSize) {
    TWinControl* parent = Parent();
    parent->DisableAlign();
    switch (Align()) {
        case alLeft:
            control->SetWidth(newSize);
            break;
        case alTop:
            control->SetHeight(newSize);
            break;
        case alRight:
            control->SetBounds(control->Left() + control->Width() - newSize, control->Top(), newSize,
                               control->Height());
            break;
        case alBottom:
            control->SetBounds(control->Left(), control->Top() + control->Height() - newSize, control->Width(),
                               newSize);
            break;
        case alNone:
        case alClient:
            break;
    }
    parent->EnableAlign();
    parent->Realign();
}

void TSplitter::MoveBy(int deltaX, int deltaY) {
    TControl* control = FindControl();
    if (!control) return;
    int newSize = 0;
    if (!ComputeNewSize(control, Align() == alTop || Align() == alBottom ? deltaY : deltaX, newSize)) return;
    Apply(control, newSize);
    OnMoved(this);
}

void TSplitter::MouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    TGraphicControl::MouseDown(button, shift, x, y);
    if (button != mbLeft) return;
    moving_ = FindControl();
    downAt_ = {x, y};
    split_ = 0;
    newSize_ = moving_ ? (Align() == alTop || Align() == alBottom ? moving_->Height() : moving_->Width()) : 0;
}

void TSplitter::MouseMove(TShiftState shift, int x, int y) {
    TGraphicControl::MouseMove(shift, x, y);
    if (!shift.Contains(ssLeft) || !moving_ || moving_ != FindControl()) return;
    const bool vertical = Align() == alTop || Align() == alBottom;
    const int delta = vertical ? y - downAt_.y : x - downAt_.x;
    int newSize = 0;
    if (!ComputeNewSize(moving_, delta, newSize)) return;
    newSize_ = newSize;
    if (ResizeStyle == rsUpdate) {
        Apply(moving_, newSize);
    } else {
        const int size = vertical ? moving_->Height() : moving_->Width();
        split_ = Align() == alLeft || Align() == alTop ? newSize - size : size - newSize;
        PeerChanged(PeerChange::Invalidate);
    }
}

void TSplitter::MouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    TGraphicControl::MouseUp(button, shift, x, y);
    if (!moving_) return;
    if (moving_ == FindControl() && ResizeStyle != rsNone) {
        Apply(moving_, newSize_);
        OnMoved(this);
    }
    moving_ = nullptr;
    split_ = 0;
    PeerChanged(PeerChange::Invalidate);
}

}  // namespace vyn
