#include "platform/controls/win_control.h"

#include <algorithm>
#include <climits>

#include "platform/controls/forms.h"
#include "platform/controls/menus.h"
#include "platform/controls/screen.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "platform/objects/filer.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace win_control_detail {

// A control whose place in the tab order nobody has asked for comes last.
constexpr int kNoTabOrder = INT_MAX;

template <class T>
void EraseFromEnd(std::vector<T*>& list, const TControl* control) {
    for (size_t i = list.size(); i-- > 0;) {
        if (static_cast<const TControl*>(list[i]) != control) continue;
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
        return;
    }
}

}  // namespace win_control_detail

const ClassInfo& TWinControl::StaticClass() {
    static const ClassInfo info = DefineClass<TWinControl, TControl>("TWinControl")
                                      .Published("HelpContext", &TWinControl::HelpContext, &TWinControl::SetHelpContext)
                                      .Default(0);
    return info;
}

const ClassInfo& TCustomControl::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomControl, TWinControl>("TCustomControl");
    return info;
}

TWinControl::TWinControl(TComponent* owner) : TControl(owner) {}

TWinControl::~TWinControl() {
    DestroyContents();
    if (handle_ != 0) DeallocateHWnd(handle_);
    // In a form that lives on, the form takes the keyboard back (RemoveControl).
    if (Screen()->ActiveControl() == this && !GetParentForm(Parent())) Screen()->SetActiveControl(nullptr);
}

void TWinControl::DestroyContents() {
    BeginDestruction();
    DestroyComponents();
    while (!windows_.empty()) delete windows_.back();
    while (!graphics_.empty()) delete graphics_.back();
}

TControl* TWinControl::Controls(int index) const {
    if (index < 0 || index >= ControlCount()) throw EListError("List index out of bounds (" + IntToStr(index) + ")");
    const auto at = static_cast<size_t>(index);
    return at < graphics_.size() ? graphics_[at] : windows_[at - graphics_.size()];
}

bool TWinControl::ContainsControl(const TControl* control) const {
    for (; control; control = control->Parent())
        if (control == this) return true;
    return false;
}

TControl* TWinControl::ControlAtPos(TPoint at, bool allowDisabled, bool allowWinControls) const {
    const auto hit = [&](const TControl* control) {
        return control->BoundsRect().Contains(at) && control->Visible() && (allowDisabled || control->Enabled());
    };
    if (allowWinControls)
        for (size_t i = windows_.size(); i-- > 0;)
            if (hit(windows_[i])) return windows_[i];
    for (size_t i = graphics_.size(); i-- > 0;)
        if (hit(graphics_[i])) return graphics_[i];
    return nullptr;
}

TControl* TWinControl::FindChildControl(std::string_view name) const {
    for (int i = 0; i < ControlCount(); ++i)
        if (SameText(Controls(i)->Name(), name)) return Controls(i);
    return nullptr;
}

void TWinControl::InsertControl(TControl* control) {
    control->parent_ = this;
    control->windowed_ = ObjectCast<TWinControl>(control) != nullptr;
    if (auto* window = ObjectCast<TWinControl>(control)) {
        windows_.push_back(window);
        window->tabOrder_ = win_control_detail::kNoTabOrder;
        InvalidateTabOrder();
    } else {
        graphics_.push_back(control);
    }
    ControlInserted(control);
    if (HasState(csLoading) || control->HasState(csLoading)) return;
    control->UpdateAnchorRules();
    ControlMoved(control);
}

void TWinControl::RemoveControl(TControl* control) {
    if (TCustomForm* form = GetParentForm(this); form && !form->HasState(csDestroying)) form->ControlGoes(control);
    if (!HasState(csDestroying)) ControlRemoved(control);
    if (control->windowed_) {
        win_control_detail::EraseFromEnd(windows_, control);
        InvalidateTabOrder();
    } else {
        win_control_detail::EraseFromEnd(graphics_, control);
    }
    control->parent_ = nullptr;
    if (HasState(csDestroying) || HasState(csLoading)) return;
    if (control->Align() != alNone || AutoSize())
        Realign();
    else
        ContentsMoved();
}

// Layout.

TRect TWinControl::ClientRect() const { return {0, 0, Width(), Height()}; }

void TWinControl::SetBorderWidth(int value) {
    value = std::max(value, 0);
    if (borderWidth_ == value) return;
    borderWidth_ = value;
    Realign();
    PeerChanged(PeerChange::Style);
}

void TWinControl::EnableAlign() {
    if (alignLevel_ > 0 && --alignLevel_ == 0 && alignPending_) Realign();
}

void TWinControl::ControlMoved(TControl* control) {
    if (HasState(csLoading) || HasState(csDestroying)) return;
    if (aligning_) return;
    // A control that stands where it was put concerns only a parent that sizes itself to its contents.
    if (control->Align() == alNone && !AutoSize()) {
        ContentsMoved();
        return;
    }
    AlignControls(control);
}

void TWinControl::AlignGroup(TAlign align, TControl* changed, TRect& rect) {
    std::vector<TControl*> list;
    const auto wanted = [&](const TControl* control) { return control->Align() == align && control->Visible(); };
    const bool fromEnd = align == alBottom || align == alRight;
    const bool changedHere = changed && wanted(changed);
    if (changedHere && !fromEnd) list.push_back(changed);
    for (int i = 0; i < ControlCount(); ++i) {
        TControl* control = Controls(i);
        if (control != changed && wanted(control)) list.push_back(control);
    }
    if (list.empty() && !changedHere) return;
    if (fromEnd) {
        std::reverse(list.begin(), list.end());
        if (changedHere) list.push_back(changed);
    }
    const auto edge = [align](const TControl* control) {
        switch (align) {
            case alTop:
                return control->Top();
            case alBottom:
                return -(control->Top() + control->Height());
            case alLeft:
                return control->Left();
            case alRight:
                return -(control->Left() + control->Width());
            default:
                return 0;
        }
    };
    // At one place, a control that was shrunk to nothing comes before what follows it.
    const bool vertical = align == alTop || align == alBottom;
    const auto thick = [vertical](const TControl* control) {
        return vertical ? control->Height() > 0 : control->Width() > 0;
    };
    std::stable_sort(list.begin(), list.end(), [&](TControl* a, TControl* b) {
        return edge(a) != edge(b) ? edge(a) < edge(b) : thick(a) < thick(b);
    });
    for (TControl* control : list) {
        const int width = std::max(rect.Width(), 0);
        const int height = std::max(rect.Height(), 0);
        switch (align) {
            case alTop:
                control->SetBounds(rect.Left, rect.Top, width, control->Height());
                rect.Top += control->Height();
                break;
            case alBottom:
                control->SetBounds(rect.Left, rect.Bottom - control->Height(), width, control->Height());
                // A control that refuses its size is placed by the one that it has.
                if (control->Top() + control->Height() != rect.Bottom)
                    control->SetBounds(rect.Left, rect.Bottom - control->Height(), control->Width(), control->Height());
                rect.Bottom -= control->Height();
                break;
            case alLeft:
                control->SetBounds(rect.Left, rect.Top, control->Width(), height);
                rect.Left += control->Width();
                break;
            case alRight:
                control->SetBounds(rect.Right - control->Width(), rect.Top, control->Width(), height);
                if (control->Left() + control->Width() != rect.Right)
                    control->SetBounds(rect.Right - control->Width(), rect.Top, control->Width(), control->Height());
                rect.Right -= control->Width();
                break;
            case alClient:
                control->SetBounds(rect.Left, rect.Top, width, height);
                break;
            case alNone:
                break;
        }
    }
}

void TWinControl::AlignControls(TControl* changed) {
    if (HasState(csLoading) || HasState(csDestroying) || aligning_) return;
    if (alignLevel_ > 0) {
        alignPending_ = true;
        return;
    }
    alignPending_ = false;
    // Aligned controls only matter when there are any; a form of a thousand plain ones is not walked six times.
    bool anyAligned = false;
    for (const TControl* control : graphics_) anyAligned = anyAligned || control->Align() != alNone;
    for (const TControl* control : windows_) anyAligned = anyAligned || control->Align() != alNone;
    aligning_ = true;
    TRect rect = ClientRect();
    const TSize client = {rect.Width(), rect.Height()};
    if (anyAligned) {
        const TPoint offset = ScrollOffset();
        rect = {rect.Left - offset.x, rect.Top - offset.y, rect.Right - offset.x, rect.Bottom - offset.y};
        rect = {rect.Left + borderWidth_, rect.Top + borderWidth_, rect.Right - borderWidth_,
                rect.Bottom - borderWidth_};
        AdjustClientRect(rect);
        for (const TAlign align : {alTop, alBottom, alLeft, alRight, alClient}) AlignGroup(align, changed, rect);
    }
    if (!changed) {
        const auto place = [&](TControl* control) { control->PlaceByAnchors(client); };
        for (TControl* control : graphics_) place(control);
        for (TWinControl* control : windows_) place(control);
    }
    aligning_ = false;
    if (AutoSize()) AdjustSize();
}

void TWinControl::ScrollBy(int deltaX, int deltaY) {
    if (deltaX == 0 && deltaY == 0) return;
    DisableAlign();
    for (int i = 0; i < ControlCount(); ++i) {
        TControl* control = Controls(i);
        control->SetBounds(control->Left() + deltaX, control->Top() + deltaY, control->Width(), control->Height());
    }
    alignPending_ = false;  // moving everything by the same is no new layout
    EnableAlign();
    PeerChanged(PeerChange::Scroll);
}

void TWinControl::SetBounds(int left, int top, int width, int height) {
    const bool sized = width != Width() || height != Height();
    const int oldWidth = Width();
    const int oldHeight = Height();
    TControl::SetBounds(left, top, width, height);
    if (sized && (Width() != oldWidth || Height() != oldHeight)) Realign();
}

bool TWinControl::CanAutoSize(int& newWidth, int& newHeight) {
    // The size that shows everything inside.
    int right = 0;
    int bottom = 0;
    bool any = false;
    for (int i = 0; i < ControlCount(); ++i) {
        const TControl* control = Controls(i);
        if (!control->Visible()) continue;
        any = true;
        if (control->Align() != alBottom && control->Align() != alClient)
            bottom = std::max(bottom, control->Top() + control->Height());
        else
            bottom = std::max(bottom, control->Height());
        if (control->Align() != alRight && control->Align() != alClient && control->Align() != alTop &&
            control->Align() != alBottom)
            right = std::max(right, control->Left() + control->Width());
        else if (control->Align() == alRight)
            right = std::max(right, control->Width());
    }
    if (!any) return false;
    const TRect client = ClientRect();
    if (right > 0) newWidth = Width() - client.Width() + right;
    if (bottom > 0) newHeight = Height() - client.Height() + bottom;
    return true;
}

void TWinControl::ChangeScale(int numerator, int denominator) {
    DisableAlign();
    ScaleControls(numerator, denominator);
    TControl::ChangeScale(numerator, denominator);
    for (int i = 0; i < ControlCount(); ++i) Controls(i)->UpdateAnchorRules();
    EnableAlign();
}

void TWinControl::ScaleControls(int numerator, int denominator) {
    for (int i = 0; i < ControlCount(); ++i) Controls(i)->ChangeScale(numerator, denominator);
}

void TWinControl::ScaleBy(int numerator, int denominator) { ChangeScale(numerator, denominator); }

void TWinControl::SetZOrder(bool topMost) {
    if (!Parent()) return;
    auto& list = Parent()->windows_;
    const auto at = std::find(list.begin(), list.end(), this);
    if (at == list.end()) return;
    Parent()->RebuildTabOrder();  // the tab order does not follow
    list.erase(at);
    list.insert(topMost ? list.end() : list.begin(), this);
    PeerChanged(PeerChange::ZOrder);
}

// Messages.

HWND TWinControl::Handle() {
    if (handle_ == 0) handle_ = AllocateHWnd([this](TMessage& message) { WndProc(message); });
    return handle_;
}

void TWinControl::WndProc(TMessage& message) { TControl::WndProc(message); }

// The keyboard.

void TWinControl::SetTabStop(bool value) {
    if (tabStop_ == value) return;
    tabStop_ = value;
    PeerChanged(PeerChange::Style);
}

void TWinControl::RebuildTabOrder() const {
    if (tabOrderValid_) return;
    tabList_ = windows_;
    if (tabOrderRead_) {
        // A stored number is a place; those without one take the places that are left, in their order.
        std::vector<TWinControl*> places(windows_.size(), nullptr);
        std::vector<TWinControl*> others;
        for (TWinControl* window : windows_) {
            const auto place = static_cast<size_t>(window->tabOrder_);
            if (place < places.size() && !places[place])
                places[place] = window;
            else
                others.push_back(window);
        }
        auto next = others.begin();
        for (TWinControl*& place : places)
            if (!place) place = *next++;
        for (size_t i = 0; i < places.size(); ++i) places[i]->tabOrder_ = static_cast<int>(i);
        tabOrderRead_ = false;
    }
    std::stable_sort(tabList_.begin(), tabList_.end(),
                     [](const TWinControl* a, const TWinControl* b) { return a->tabOrder_ < b->tabOrder_; });
    for (size_t i = 0; i < tabList_.size(); ++i) tabList_[i]->tabOrder_ = static_cast<int>(i);
    tabOrderValid_ = true;
}

int TWinControl::TabOrder() const {
    if (!Parent()) return -1;
    Parent()->RebuildTabOrder();
    return tabOrder_;
}

void TWinControl::SetTabOrder(int value) {
    TWinControl* parent = Parent();
    if (!parent || value < 0) return;
    if (parent->HasState(csLoading) || HasState(csLoading)) {
        // Numbers may come in any order: they are compared when the form has been read.
        tabOrder_ = value;
        parent->tabOrderRead_ = true;
        parent->InvalidateTabOrder();
        return;
    }
    parent->RebuildTabOrder();
    auto& list = parent->tabList_;
    const auto at = std::find(list.begin(), list.end(), this);
    list.erase(at);
    const auto place = std::min(static_cast<size_t>(value), list.size());
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), this);
    for (size_t i = 0; i < list.size(); ++i) list[i]->tabOrder_ = static_cast<int>(i);
}

void TWinControl::CollectTabOrder(std::vector<TWinControl*>& list) const {
    RebuildTabOrder();
    for (TWinControl* window : tabList_) {
        list.push_back(window);
        window->CollectTabOrder(list);
    }
}

std::vector<TWinControl*> TWinControl::GetTabOrderList(bool allLevels) const {
    RebuildTabOrder();
    if (!allLevels) return tabList_;
    std::vector<TWinControl*> list;
    CollectTabOrder(list);
    return list;
}

TWinControl* TWinControl::FindNextControl(TWinControl* current, bool goForward, bool checkTabStop,
                                          bool checkParent) const {
    const std::vector<TWinControl*> list = GetTabOrderList();
    if (list.empty()) return nullptr;
    const auto count = static_cast<int>(list.size());
    const auto found = std::find(list.begin(), list.end(), current);
    int start = static_cast<int>(found - list.begin());
    if (found == list.end()) start = goForward ? count - 1 : 0;
    int at = start;
    do {
        at = goForward ? (at + 1) % count : (at + count - 1) % count;
        TWinControl* candidate = list[static_cast<size_t>(at)];
        if (candidate->CanFocus() && (!checkTabStop || candidate->TabStop()) &&
            (!checkParent || candidate->Parent() == this))
            return candidate;
    } while (at != start);
    return nullptr;
}

void TWinControl::SelectNext(TWinControl* current, bool goForward, bool checkTabStop) {
    if (TWinControl* next = FindNextControl(current, goForward, checkTabStop, !checkTabStop)) next->SetFocus();
}

void TWinControl::SelectFirst() {
    TWinControl* first = FindNextControl(nullptr, true, true, false);
    if (!first) first = FindNextControl(nullptr, true, false, false);
    if (first) ValidParentForm(this)->SetActiveControl(first);
}

bool TWinControl::CanFocus() const {
    const TCustomForm* form = GetParentForm(this);
    if (!form) return false;
    for (const TControl* at = this; at && at != form; at = at->Parent())
        if (!at->Visible() || !at->Enabled()) return false;
    return true;
}

void TWinControl::SetFocus() {
    TCustomForm* form = ValidParentForm(this);
    form->FocusControl(this);
}

bool TWinControl::Focused() const { return Screen()->ActiveControl() == this; }

bool TWinControl::ProcessKeyDown(uint16_t& key, TShiftState shift) {
    TCustomForm* form = GetParentForm(this);
    const int alive = TComponent::Handle();
    for (TWinControl* at = this; at && at != form; at = at->Parent())
        if (at->PopupMenu() && at->PopupMenu()->IsShortCut(ShortCut(key, shift))) {
            key = 0;
            return true;
        }
    if (form) {
        if (form->IsShortCut(key, shift)) {
            key = 0;
            return true;
        }
        if (form != this && form->KeyPreview) {
            form->KeyDown(key, shift);
            if (key == 0) return true;
        }
    }
    if (ComponentFromHandle(alive) != this) return true;
    KeyDown(key, shift);
    if (key == 0) return true;
    if (ComponentFromHandle(alive) != this) return true;
    if (!form || WantsKey(key, shift)) return false;
    for (TWinControl* at = Parent(); at && at != form; at = at->Parent())
        if (at->ChildKey(*this, key, shift)) {
            key = 0;
            return true;
        }
    if (!form->ProcessDialogKey(key, shift, this)) return false;
    key = 0;
    return true;
}

bool TWinControl::ProcessKeyPress(char& key) {
    TCustomForm* form = GetParentForm(this);
    const int alive = TComponent::Handle();
    if (form && form != this && form->KeyPreview) {
        form->KeyPress(key);
        if (key == 0) return true;
    }
    if (ComponentFromHandle(alive) != this) return true;
    KeyPress(key);
    return key == 0;
}

bool TWinControl::ProcessKeyUp(uint16_t& key, TShiftState shift) {
    TCustomForm* form = GetParentForm(this);
    const int alive = TComponent::Handle();
    if (form && form != this && form->KeyPreview) {
        form->KeyUp(key, shift);
        if (key == 0) return true;
    }
    if (ComponentFromHandle(alive) != this) return true;
    KeyUp(key, shift);
    return key == 0;
}

void TWinControl::KeyDown(uint16_t& key, TShiftState shift) { OnKeyDown(this, key, shift); }
void TWinControl::KeyPress(char& key) { OnKeyPress(this, key); }
void TWinControl::KeyUp(uint16_t& key, TShiftState shift) { OnKeyUp(this, key, shift); }

bool TWinControl::ProcessMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) {
    for (TWinControl* at = this; at; at = at->Parent())
        if (at->DoMouseWheel(shift, wheelDelta, mousePos)) return true;
    return false;
}

bool TWinControl::DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) {
    bool handled = false;
    OnMouseWheel(this, shift, wheelDelta, mousePos, handled);
    if (handled) return true;
    if (wheelDelta < 0)
        OnMouseWheelDown(this, shift, mousePos, handled);
    else if (wheelDelta > 0)
        OnMouseWheelUp(this, shift, mousePos, handled);
    return handled;
}

void TWinControl::ProcessFocusIn() {
    if (TCustomForm* form = GetParentForm(this)) form->SetFocusedControl(this);
}

// The control stays the form's active one; leaving it is noticed when another is entered, or its form is left.
void TWinControl::ProcessFocusOut() {}

void TWinControl::DoEnter() { OnEnter(this); }
void TWinControl::DoExit() { OnExit(this); }

bool TWinControl::DialogKey(uint16_t key, TShiftState shift) {
    for (TWinControl* window : std::vector<TWinControl*>(windows_))
        if (window->DialogKey(key, shift)) return true;
    return false;
}

bool TWinControl::DialogChar(char key) {
    for (int i = 0; i < ControlCount(); ++i) {
        TControl* control = Controls(i);
        if (control->Visible() && control->Enabled() && control->DialogChar(key)) return true;
    }
    return false;
}

void TWinControl::FocusChanged(TWinControl* focused) {
    for (TWinControl* window : windows_) window->FocusChanged(focused);
}

bool TWinControl::Ctl3D() const { return parentCtl3D_ && Parent() ? Parent()->Ctl3D() : ctl3D_; }

void TWinControl::SetCtl3D(bool value) {
    ctl3D_ = value;
    parentCtl3D_ = false;
    PeerChanged(PeerChange::Style);
}

void TWinControl::SetParentCtl3D(bool value) {
    if (!value) ctl3D_ = Ctl3D();
    parentCtl3D_ = value;
    PeerChanged(PeerChange::Style);
}

// What goes down to the controls inside.

void TWinControl::FontChanged() {
    TControl::FontChanged();
    if (HasState(csLoading)) return;
    const auto tell = [](TControl* control) {
        if (control->ParentFont()) control->FontChanged();
    };
    for (TControl* control : graphics_) tell(control);
    for (TWinControl* control : windows_) tell(control);
}

void TWinControl::ColorChanged() {
    TControl::ColorChanged();
    const auto tell = [](TControl* control) {
        if (control->ParentColor()) control->ColorChanged();
    };
    for (TControl* control : graphics_) tell(control);
    for (TWinControl* control : windows_) tell(control);
}

void TWinControl::BiDiModeChanged() {
    TControl::BiDiModeChanged();
    const auto tell = [](TControl* control) {
        if (control->ParentBiDiMode()) control->BiDiModeChanged();
    };
    for (TControl* control : graphics_) tell(control);
    for (TWinControl* control : windows_) tell(control);
}

void TWinControl::EnabledChanged() {
    if (!Enabled())
        if (TCustomForm* form = GetParentForm(this); form && form != this) form->DefocusControl(this, false);
    TControl::EnabledChanged();
}

void TWinControl::VisibleChanged() {
    if (!Visible())
        if (TCustomForm* form = GetParentForm(this); form && form != this) form->DefocusControl(this, false);
    TControl::VisibleChanged();
}

// Peers.

void TWinControl::CreatePeer() {
    TControl::CreatePeer();
    if (!peer_) return;
    for (TWinControl* window : windows_) window->CreatePeer();
    for (TControl* control : graphics_) control->CreatePeer();
}

void TWinControl::DestroyPeer() {
    for (TWinControl* window : windows_) window->DestroyPeer();
    for (TControl* control : graphics_) control->DestroyPeer();
    TControl::DestroyPeer();
}

// Storing.

void TWinControl::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    for (int i = 0; i < ControlCount(); ++i)
        if (Controls(i)->Owner() == root) visit(Controls(i));
}

void TWinControl::SetChildOrder(TComponent* child, int order) {
    auto* control = ObjectCast<TControl>(child);
    if (!control || control->Parent() != this) return;
    const auto move = [order](auto& list, TControl* moved, int base) {
        for (size_t i = 0; i < list.size(); ++i) {
            if (static_cast<TControl*>(list[i]) != moved) continue;
            auto* kept = list[i];
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
            const int place = std::clamp(order - base, 0, static_cast<int>(list.size()));
            list.insert(list.begin() + place, kept);
            return;
        }
    };
    if (ObjectCast<TWinControl>(child)) {
        if (!HasState(csLoading)) RebuildTabOrder();
        move(windows_, control, static_cast<int>(graphics_.size()));
    } else {
        move(graphics_, control, 0);
    }
}

void TWinControl::ReadState(TFiler& reader) {
    DisableAlign();
    try {
        TControl::ReadState(reader);
    } catch (...) {
        --alignLevel_;
        throw;
    }
    --alignLevel_;
}

void TWinControl::Loaded() {
    TControl::Loaded();
    // Rules noted while reading belong to the stored size, which an alignment may have changed by now.
    const auto note = [](TControl* control) { control->NoteAnchorRules(); };
    for (TControl* control : graphics_) note(control);
    for (TWinControl* control : windows_) note(control);
    if (alignLevel_ == 0) Realign();
}

}  // namespace vyn
