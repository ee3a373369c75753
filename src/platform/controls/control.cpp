#include "platform/controls/control.h"

#include <algorithm>

#include "platform/controls/drag.h"
#include "platform/controls/forms.h"
#include "platform/controls/menus.h"
#include "platform/controls/property_catalogue.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "platform/objects/filer.h"
#include "platform/text/exceptions.h"

namespace vyn {

const ClassInfo& TSizeConstraints::StaticClass() {
    static const ClassInfo info =
        DefineClass<TSizeConstraints, TPersistent>("TSizeConstraints")
            .Published("MaxHeight", &TSizeConstraints::MaxHeight, &TSizeConstraints::SetMaxHeight)
            .Default(0)
            .Published("MaxWidth", &TSizeConstraints::MaxWidth, &TSizeConstraints::SetMaxWidth)
            .Default(0)
            .Published("MinHeight", &TSizeConstraints::MinHeight, &TSizeConstraints::SetMinHeight)
            .Default(0)
            .Published("MinWidth", &TSizeConstraints::MinWidth, &TSizeConstraints::SetMinWidth)
            .Default(0);
    return info;
}

void TSizeConstraints::Set(int& field, int value) {
    value = std::max(value, 0);
    if (field == value) return;
    field = value;
    OnChange(this);
}

void TSizeConstraints::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TSizeConstraints>(source);
    if (!other) {
        TPersistent::Assign(source);
        return;
    }
    maxHeight_ = other->maxHeight_;
    maxWidth_ = other->maxWidth_;
    minHeight_ = other->minHeight_;
    minWidth_ = other->minWidth_;
    OnChange(this);
}

const ClassInfo& TControl::StaticClass() {
    static const ClassInfo info = DefineClass<TControl, TComponent>("TControl")
                                      .Published("Left", &TControl::Left, &TControl::SetLeft)
                                      .Published("Top", &TControl::Top, &TControl::SetTop)
                                      .Published("Width", &TControl::Width, &TControl::SetWidth)
                                      .Published("Height", &TControl::Height, &TControl::SetHeight)
                                      .Published("Cursor", &TControl::Cursor, &TControl::SetCursor)
                                      .Default(crDefault)
                                      .Published("Hint", &TControl::Hint, &TControl::SetHint);
    return info;
}

const ClassInfo& TGraphicControl::StaticClass() {
    static const ClassInfo info = DefineClass<TGraphicControl, TControl>("TGraphicControl");
    return info;
}

TControl::TControl(TComponent* owner)
    : TComponent(owner),
      ControlStyle{csCaptureMouse, csClickEvents, csSetCaption, csDoubleClicks},
      autoSize_(false),
      enabled_(true),
      visible_(true),
      parentFont_(true),
      parentColor_(true),
      parentShowHint_(true),
      showHint_(false),
      parentBiDiMode_(true),
      mouseCapture_(false),
      mouseInside_(false),
      clicked_(false),
      sizing_(false),
      windowed_(false) {}

TControl::~TControl() {
    ComponentState.Include(csDestroying);
    peer_.reset();
    drag::Forget(this);
    if (parent_) parent_->RemoveControl(this);
}

void TControl::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == popupMenu_) popupMenu_ = nullptr;
}

void TControl::SetParent(TWinControl* parent) {
    if (parent_ == parent) return;
    if (parent && static_cast<TControl*>(parent) == this)
        throw EInvalidOperation("A control cannot have itself as its parent");
    for (const TControl* at = parent; at; at = at->parent_)
        if (at == this) throw EInvalidOperation("A control cannot be inside a control that it holds");
    if (parent_) {
        DestroyPeer();
        parent_->RemoveControl(this);
    }
    if (!parent) return;
    parent->InsertControl(this);
    if (!HasState(csLoading)) {
        // What it takes from its parent may be another now.
        if (parentFont_) {
            if (font_) font_->Assign(&parent->EffectiveFont());
            FontChanged();
        }
    }
    if (parent->Peer()) CreatePeer();
}

void TControl::SetParentComponent(TComponent* parent) {
    auto* window = ObjectCast<TWinControl>(parent);
    if (parent_ != window && window) SetParent(window);
}

TComponent* TControl::GetParentComponent() const { return parent_; }

void TControl::ConstrainedResize(int& minWidth, int& minHeight, int& maxWidth, int& maxHeight) {
    OnConstrainedResize(this, minWidth, minHeight, maxWidth, maxHeight);
}

bool TControl::CanResize(int& newWidth, int& newHeight) {
    int minWidth = 0, minHeight = 0, maxWidth = 0, maxHeight = 0;
    if (constraints_) {
        minWidth = constraints_->MinWidth();
        minHeight = constraints_->MinHeight();
        maxWidth = constraints_->MaxWidth();
        maxHeight = constraints_->MaxHeight();
    }
    if (constraints_ || OnConstrainedResize) {
        ConstrainedResize(minWidth, minHeight, maxWidth, maxHeight);
        if (maxWidth > 0) newWidth = std::min(newWidth, maxWidth);
        if (maxHeight > 0) newHeight = std::min(newHeight, maxHeight);
        newWidth = std::max(newWidth, minWidth);
        newHeight = std::max(newHeight, minHeight);
    }
    bool resize = true;
    if (OnCanResize) OnCanResize(this, newWidth, newHeight, resize);
    return resize;
}

void TControl::SetBounds(int left, int top, int width, int height) {
    left = WithinExtent(left);
    top = WithinExtent(top);
    width = std::max(WithinExtent(width), 0);
    height = std::max(WithinExtent(height), 0);
    if (left == left_ && top == top_ && width == width_ && height == height_) return;
    if (HasState(csLoading)) {
        left_ = left;
        top_ = top;
        width_ = width;
        height_ = height;
        if (peer_) peer_->Changed(PeerChange::Bounds);
        return;
    }
    if ((width != width_ || height != height_) && !CanResize(width, height)) {
        width = width_;
        height = height_;
    }
    const bool sized = width != width_ || height != height_;
    if (!sized && left == left_ && top == top_) return;
    const TRect old = BoundsRect();
    left_ = left;
    top_ = top;
    width_ = width;
    height_ = height;
    if (!sizing_) BoundsSet(old);
    PeerChanged(PeerChange::Bounds);
    RequestAlign();
    if (sized) Resize();
}

void TControl::SetClientSize(int width, int height) {
    const TRect client = ClientRect();
    SetBounds(left_, top_, width_ - client.Width() + WithinExtent(width),
              height_ - client.Height() + WithinExtent(height));
}

void TControl::Resize() { OnResize(this); }

void TControl::RequestAlign() {
    if (parent_) parent_->ControlMoved(this);
}

void TControl::SetAlign(TAlign value) {
    if (align_ == value) return;
    const TAlign old = align_;
    align_ = value;
    const auto anchorsOf = [](TAlign align) -> TAnchors {
        switch (align) {
            case alNone:
                return {akLeft, akTop};
            case alTop:
                return {akLeft, akTop, akRight};
            case alBottom:
                return {akLeft, akRight, akBottom};
            case alLeft:
                return {akLeft, akTop, akBottom};
            case alRight:
                return {akTop, akRight, akBottom};
            case alClient:
                return {akLeft, akTop, akRight, akBottom};
        }
        return {akLeft, akTop};
    };
    // Anchors follow an alignment; stored ones come before it and stay.
    if (!HasState(csLoading) && anchors_ == anchorsOf(old)) anchors_ = anchorsOf(value);
    if (HasState(csLoading)) return;
    UpdateAnchorRules();
    if (parent_) parent_->AlignControls(this);
}

void TControl::SetAnchors(TAnchors value) {
    if (anchors_ == value) return;
    anchors_ = value;
    UpdateAnchorRules();
}

void TControl::UpdateAnchorRules() {
    constexpr TAnchors kUsual{akLeft, akTop};
    if (!parent_ || align_ != alNone || anchors_ == kUsual) {
        anchorRules_.reset();
        return;
    }
    // While a form is read, a control inside has the size that it was stored with, the one that the places in it belong
    // to; the form itself only gets its final size (border, menu) when it is loaded.
    if (parent_->HasState(csLoading) && !parent_->Parent()) return;
    if (!anchorRules_) anchorRules_ = std::make_unique<AnchorRules>();
    const TRect client = parent_->ClientRect();
    anchorRules_->parentClient = {client.Width(), client.Height()};
    anchorRules_->bounds = BoundsRect();
}

void TControl::BoundsSet(const TRect& old) {
    const bool waits = anchorRules_ && anchorRules_->bounds == old;
    if (waits && parent_) {
        const TRect client = parent_->ClientRect();
        const TSize noted = anchorRules_->parentClient;
        if (noted.cx != client.Width() || noted.cy != client.Height()) {
            // The parent's new size has not come here yet, and will: the rules still belong to its old one.
            anchorRules_->bounds = BoundsRect();
            return;
        }
    }
    UpdateAnchorRules();
}

void TControl::NoteAnchorRules() {
    if (!anchorRules_) UpdateAnchorRules();
}

void TControl::PlaceByAnchors(TSize parentClient) {
    constexpr TAnchors kUsual{akLeft, akTop};
    if (align_ != alNone || anchors_ == kUsual) return;
    if (!anchorRules_) {
        UpdateAnchorRules();
        return;
    }
    const auto place = [](bool low, bool high, int& at, int& length, int delta) {
        if (low && high)
            length = std::max(length + delta, 0);
        else if (high)
            at += delta;
        else if (!low)
            at += delta / 2;
    };
    TRect bounds = anchorRules_->bounds;
    int left = bounds.Left, top = bounds.Top, width = bounds.Width(), height = bounds.Height();
    place(anchors_.Contains(akLeft), anchors_.Contains(akRight), left, width,
          parentClient.cx - anchorRules_->parentClient.cx);
    place(anchors_.Contains(akTop), anchors_.Contains(akBottom), top, height,
          parentClient.cy - anchorRules_->parentClient.cy);
    sizing_ = true;
    SetBounds(left, top, width, height);
    sizing_ = false;
}

TSizeConstraints* TControl::Constraints() {
    if (!constraints_) {
        constraints_ = std::make_unique<TSizeConstraints>();
        constraints_->OnChange = [this](TObject*) {
            if (HasState(csLoading)) return;
            int width = width_, height = height_;
            if (CanResize(width, height)) SetBounds(left_, top_, width, height);
            PeerChanged(PeerChange::Style);
        };
    }
    return constraints_.get();
}

void TControl::SetAutoSize(bool value) {
    if (autoSize_ == value) return;
    autoSize_ = value;
    if (value) AdjustSize();
}

void TControl::AdjustSize() {
    if (!autoSize_ || HasState(csLoading) || HasState(csDestroying)) return;
    int width = width_, height = height_;
    if (!CanAutoSize(width, height)) return;
    if (align_ == alTop || align_ == alBottom || align_ == alClient) width = width_;
    if (align_ == alLeft || align_ == alRight || align_ == alClient) height = height_;
    SetBounds(left_, top_, width, height);
}

TPoint TControl::ClientOrigin() const {
    TPoint origin;
    if (peer_ && peer_->ClientOrigin(origin)) return origin;
    if (!parent_) return {left_, top_};
    origin = parent_->ClientOrigin();
    return {origin.x + left_, origin.y + top_};
}

TPoint TControl::ClientToScreen(TPoint at) const {
    const TPoint origin = ClientOrigin();
    return {origin.x + at.x, origin.y + at.y};
}

TPoint TControl::ScreenToClient(TPoint at) const {
    const TPoint origin = ClientOrigin();
    return {at.x - origin.x, at.y - origin.y};
}

void TControl::SetZOrder(bool topMost) {
    if (!parent_) return;
    auto& list = parent_->graphics_;
    const auto at = std::find(list.begin(), list.end(), this);
    if (at == list.end()) return;
    list.erase(at);
    list.insert(topMost ? list.end() : list.begin(), this);
    PeerChanged(PeerChange::ZOrder);
}

void TControl::SetCaption(const AnsiString& text) {
    if (text_ == text) return;
    text_ = text;
    TextChanged();
}

void TControl::TextChanged() { PeerChanged(PeerChange::Text); }

void TControl::SetName(const AnsiString& name) {
    const bool follows = ControlStyle.Contains(csSetCaption) && !HasState(csLoading) && Name() == text_ &&
                         !(Owner() && Owner()->HasState(csLoading));
    TComponent::SetName(name);
    if (follows) SetCaption(name);
}

void TControl::SetHint(const AnsiString& value) {
    if (hint_ == value) return;
    hint_ = value;
    PeerChanged(PeerChange::Hint);
}

AnsiString TControl::GetShortHint(const AnsiString& hint) { return hint.substr(0, hint.find('|')); }

AnsiString TControl::GetLongHint(const AnsiString& hint) {
    const size_t bar = hint.find('|');
    return bar == AnsiString::npos ? hint : hint.substr(bar + 1);
}

AnsiString TControl::EffectiveHint() const {
    if (!ShowHint()) return {};
    for (const TControl* at = this; at; at = at->parent_)
        if (!at->hint_.empty()) return at->hint_;
    return {};
}

void TControl::SetEnabled(bool value) {
    if (enabled_ == value) return;
    enabled_ = value;
    EnabledChanged();
}

void TControl::EnabledChanged() { PeerChanged(PeerChange::Enabled); }

bool TControl::EffectivelyEnabled() const {
    for (const TControl* at = this; at; at = at->parent_)
        if (!at->Enabled()) return false;
    return true;
}

void TControl::SetVisible(bool value) {
    if (visible_ == value) return;
    visible_ = value;
    VisibleChanged();
    RequestAlign();
}

void TControl::VisibleChanged() { PeerChanged(PeerChange::Visible); }

void TControl::Show() {
    if (parent_ && !parent_->Visible() && !ObjectCast<TCustomForm>(parent_)) parent_->Show();
    SetVisible(true);
}

bool TControl::Showing() const { return Visible() && parent_ && parent_->Showing(); }

// Looks.

const TFont& TControl::EffectiveFont() const {
    for (const TControl* at = this; at; at = at->parent_)
        if (at->font_ && (!at->parentFont_ || !at->parent_)) return *at->font_;
    return DefaultFont();
}

TFont* TControl::Font() {
    if (!font_) {
        font_ = std::make_unique<TFont>();
        font_->Assign(&EffectiveFont());
        font_->OnChange = [this](TObject*) { OwnFontChanged(); };
    } else if (parentFont_ && parent_) {
        // Follows the parent's until it is changed.
        const TFont& effective = EffectiveFont();
        if (!(*font_ == effective)) {
            font_->OnChange.Clear();
            font_->Assign(&effective);
            font_->OnChange = [this](TObject*) { OwnFontChanged(); };
        }
    }
    return font_.get();
}

void TControl::OwnFontChanged() {
    parentFont_ = false;
    FontChanged();
}

void TControl::SetFont(const TFont* font) {
    if (!font) return;
    if (parentFont_) {
        Font();
        parentFont_ = false;
    }
    Font()->Assign(font);
}

void TControl::SetParentFont(bool value) {
    if (parentFont_ == value) return;
    if (!value) {
        Font();  // keeps the font that it has
        parentFont_ = false;
        return;
    }
    parentFont_ = true;
    if (parent_) FontChanged();
}

void TControl::FontChanged() { PeerChanged(PeerChange::Font); }

TColor TControl::Color() const { return parentColor_ && parent_ ? parent_->Color() : color_; }

void TControl::SetColor(TColor value) {
    if (!parentColor_ && color_ == value) return;
    color_ = value;
    parentColor_ = false;
    ColorChanged();
}

void TControl::SetParentColor(bool value) {
    if (parentColor_ == value) return;
    if (!value) color_ = Color();
    parentColor_ = value;
    if (parent_) ColorChanged();
}

bool TControl::ShowHint() const { return parentShowHint_ && parent_ ? parent_->ShowHint() : showHint_; }

void TControl::SetShowHint(bool value) {
    showHint_ = value;
    parentShowHint_ = false;
    PeerChanged(PeerChange::Hint);
}

void TControl::SetParentShowHint(bool value) {
    if (parentShowHint_ == value) return;
    if (!value) showHint_ = ShowHint();
    parentShowHint_ = value;
    PeerChanged(PeerChange::Hint);
}

TBiDiMode TControl::BiDiMode() const { return parentBiDiMode_ && parent_ ? parent_->BiDiMode() : biDiMode_; }

void TControl::SetBiDiMode(TBiDiMode value) {
    biDiMode_ = value;
    parentBiDiMode_ = false;
    BiDiModeChanged();
}

void TControl::SetParentBiDiMode(bool value) {
    if (parentBiDiMode_ == value) return;
    if (!value) biDiMode_ = BiDiMode();
    parentBiDiMode_ = value;
    BiDiModeChanged();
}

void TControl::SetCursor(TCursor value) {
    if (cursor_ == value) return;
    cursor_ = value;
    PeerChanged(PeerChange::Cursor);
}

void TControl::SetPopupMenu(TPopupMenu* value) {
    popupMenu_ = value;
    if (value) value->FreeNotification(this);
}

// The mouse.

void TControl::ProcessMouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    if (!EffectivelyEnabled()) return;
    if (ControlStyle.Contains(csCaptureMouse)) mouseCapture_ = true;
    if (button == mbLeft && ControlStyle.Contains(csClickEvents)) clicked_ = true;
    if (DragMode == dmAutomatic && button == mbLeft && !shift.Contains(ssDouble)) {
        BeginDrag(false);
        return;
    }
    if (!ControlStyle.Contains(csNoStdEvents)) MouseDown(button, shift, x, y);
}

void TControl::ProcessMouseMove(TShiftState shift, int x, int y) {
    if (!ControlStyle.Contains(csNoStdEvents)) MouseMove(shift, x, y);
}

void TControl::ProcessMouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    mouseCapture_ = false;
    const bool clicked = clicked_ && button == mbLeft;
    if (button == mbLeft) clicked_ = false;
    // The click comes before the release, and only over the control.
    const auto alive = Handle();
    if (clicked && TRect{0, 0, width_, height_}.Contains({x, y})) Click();
    if (ComponentFromHandle(alive) != this) return;
    if (!ControlStyle.Contains(csNoStdEvents)) MouseUp(button, shift, x, y);
}

void TControl::ProcessDblClick(TMouseButton button, TShiftState shift, int x, int y) {
    if (!EffectivelyEnabled()) return;
    if (button == mbLeft && ControlStyle.Contains(csDoubleClicks)) {
        const auto alive = Handle();
        DblClick();
        if (ComponentFromHandle(alive) != this) return;
    }
    shift.Include(ssDouble);
    MouseDown(button, shift, x, y);
}

void TControl::ProcessMouseEnter() {
    mouseInside_ = true;
    MouseEnter();
}

void TControl::ProcessMouseLeave() {
    mouseInside_ = false;
    MouseLeave();
}

bool TControl::ProcessContextPopup(int x, int y) {
    bool handled = false;
    OnContextPopup(this, {x, y}, handled);
    if (handled) return true;
    if (popupMenu_ && popupMenu_->AutoPopup) {
        const TPoint at = ClientToScreen({x, y});
        popupMenu_->PopupComponent = this;
        popupMenu_->Popup(at.x, at.y);
        return true;
    }
    if (!parent_ || ObjectCast<TCustomForm>(this)) return false;
    return parent_->ProcessContextPopup(x + left_, y + top_);
}

void TControl::Click() { OnClick(this); }
void TControl::DblClick() { OnDblClick(this); }
void TControl::MouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    OnMouseDown(this, button, shift, x, y);
}
void TControl::MouseMove(TShiftState shift, int x, int y) { OnMouseMove(this, shift, x, y); }
void TControl::MouseUp(TMouseButton button, TShiftState shift, int x, int y) { OnMouseUp(this, button, shift, x, y); }
void TControl::MouseEnter() { OnMouseEnter(this); }
void TControl::MouseLeave() { OnMouseLeave(this); }

intptr_t TControl::Perform(uint32_t message, intptr_t wParam, intptr_t lParam) {
    TMessage record{message, wParam, lParam, 0};
    WndProc(record);
    return record.Result;
}

void TControl::ChangeScale(int numerator, int denominator) {
    if (numerator == denominator) return;
    const auto scale = [&](int value) { return MulDiv(value, numerator, denominator); };
    // Edges are scaled, not sizes, so that controls that touch still do.
    const int left = scale(left_);
    const int top = scale(top_);
    const int width = scale(left_ + width_) - left;
    const int height = scale(top_ + height_) - top;
    if (constraints_) {
        constraints_->SetMinWidth(scale(constraints_->MinWidth()));
        constraints_->SetMinHeight(scale(constraints_->MinHeight()));
        constraints_->SetMaxWidth(scale(constraints_->MaxWidth()));
        constraints_->SetMaxHeight(scale(constraints_->MaxHeight()));
    }
    // The parent is scaled too, before or after: the rules belong to its scaled size either way.
    TSize parentClient;
    const bool ruled = anchorRules_ != nullptr;
    if (ruled) parentClient = {scale(anchorRules_->parentClient.cx), scale(anchorRules_->parentClient.cy)};
    SetBounds(left, top, width, height);
    if (ruled && anchorRules_) anchorRules_->parentClient = parentClient;
    if (!parentFont_ && font_) font_->SetHeight(scale(font_->Height()));
}

void TControl::CreatePeer() {
    if (peer_ || HasState(csDestroying)) return;
    if (PeerFactory* factory = GetPeerFactory()) peer_ = factory->MakePeer(*this);
}

void TControl::DestroyPeer() { peer_.reset(); }

void TControl::Loaded() {
    TComponent::Loaded();
    if (parent_ && !parent_->HasState(csLoading)) NoteAnchorRules();
}

// A control's place is published: the hidden place of a designer is not its own.
void TControl::DefineProperties(TFiler& filer) { TPersistent::DefineProperties(filer); }

const TNotifyEvent& TControl::DockEventAt(DockEvent which) const {
    static const TNotifyEvent none;
    return dockEvents_ ? dockEvents_[static_cast<size_t>(which)] : none;
}

void TControl::PutDockEvent(DockEvent which, TNotifyEvent event) {
    if (!dockEvents_) {
        if (!event) return;
        dockEvents_ = std::make_unique<TNotifyEvent[]>(static_cast<size_t>(DockEvent::Count));
    }
    dockEvents_[static_cast<size_t>(which)] = std::move(event);
}

// Dragging.

const ClassInfo& TDragObject::StaticClass() {
    static const ClassInfo info = DefineClass<TDragObject, TObject>("TDragObject");
    return info;
}

namespace drag {

namespace {

TControl* theSource = nullptr;
TDragObject* theObject = nullptr;
TControl* theTarget = nullptr;
TPoint theAt;
bool accepted = false;

TObject* SourceObject() { return theObject ? static_cast<TObject*>(theObject) : theSource; }

bool Ask(TControl* target, TDragState state) {
    bool accept = false;
    if (target) target->DragOver(SourceObject(), theAt.x, theAt.y, state, accept);
    return accept;
}

}  // namespace

TControl* Source() { return theSource; }

bool MoveTo(TControl* target, int x, int y) {
    if (!theSource) return false;
    if (target != theTarget) {
        Ask(theTarget, dsDragLeave);
        theTarget = target;
        theAt = {x, y};
        accepted = Ask(target, dsDragEnter);
        return accepted;
    }
    theAt = {x, y};
    accepted = Ask(target, dsDragMove);
    return accepted;
}

void Finish(bool drop) {
    if (!theSource) return;
    TControl* source = theSource;
    TControl* target = drop && accepted ? theTarget : nullptr;
    TObject* object = SourceObject();
    if (!target) Ask(theTarget, dsDragLeave);
    theSource = nullptr;
    theTarget = nullptr;
    theObject = nullptr;
    accepted = false;
    if (target) target->DragDrop(object, theAt.x, theAt.y);
    if (!source->HasState(csDestroying)) source->DoEndDrag(target, theAt.x, theAt.y);
}

void Begin(TControl* source) {
    if (theSource) return;
    TDragObject* object = nullptr;
    theSource = source;
    source->DoStartDrag(object);
    theObject = object;
}

void Forget(TControl* control) {
    if (theTarget == control) theTarget = nullptr;
    if (theSource == control) Finish(false);
}

}  // namespace drag

void TControl::BeginDrag(bool) { drag::Begin(this); }
bool TControl::Dragging() const { return drag::Source() == this; }
void TControl::EndDrag(bool drop) {
    if (Dragging()) drag::Finish(drop);
}

void TControl::DragOver(TObject* source, int x, int y, TDragState state, bool& accept) {
    accept = false;
    if (!OnDragOver) return;
    accept = true;
    OnDragOver(this, source, x, y, state, accept);
}

void TControl::DragDrop(TObject* source, int x, int y) { OnDragDrop(this, source, x, y); }
void TControl::DoStartDrag(TDragObject*& dragObject) { OnStartDrag(this, dragObject); }
void TControl::DoEndDrag(TObject* target, int x, int y) { OnEndDrag(this, target, x, y); }

}  // namespace vyn
