// How forms are shown, get the keyboard and end (forms.h).

#include <algorithm>

#include "platform/controls/forms.h"
#include "platform/controls/menus.h"
#include "platform/controls/screen.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/component_handle.h"
#include "platform/system/application.h"
#include "platform/system/threads.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace form_detail {

bool IsInside(const TControl* outer, const TControl* control);

[[noreturn]] void RaiseCannotFocus() { throw EInvalidOperation("Cannot focus a disabled or invisible window"); }

}  // namespace form_detail

bool TCustomForm::Showing() const { return Parent() ? TScrollingWinControl::Showing() : showing_; }

void TCustomForm::Show() {
    SetVisible(true);
    if (!Parent()) {
        BringToFront();
        PeerChanged(PeerChange::ZOrder);
        ProcessActivate();
    }
}

void TCustomForm::SetVisible(bool value) {
    if (HasState(csLoading) && !Parent()) {
        readVisible_ = value;
        return;
    }
    if (value == Visible()) return;
    if (Parent()) {
        if (value) DoShow();
        TScrollingWinControl::SetVisible(value);
        showing_ = value;
        if (!value) DoHide();
        return;
    }
    if (value) {
        PlaceOnScreen();
        PutVisible(true);
        try {
            DoShow();
        } catch (...) {
            Application()->HandleException(this);
        }
        if (!Visible()) return;  // OnShow thought better of it
        showing_ = true;
        if (!activeControl_) activeControl_ = FindNextControl(nullptr, true, true, false);
        if (GetPeerFactory()) CreatePeer();
        PeerChanged(PeerChange::Visible);
        ProcessActivate();
    } else {
        PutVisible(false);
        if (showing_) {
            showing_ = false;
            try {
                DoHide();
            } catch (...) {
                Application()->HandleException(this);
            }
        }
        PeerChanged(PeerChange::Visible);
        if (Screen()->ActiveForm() == this) Leave();
    }
}

// Another form of the program becomes the active one.
void TCustomForm::Leave() {
    ProcessDeactivate();
    for (TCustomForm* form : Screen()->formsByUse_) {
        if (form == this || !form->Showing() || form->Parent() || !form->Enabled()) continue;
        form->ProcessActivate();
        return;
    }
}

int TCustomForm::ShowModal() {
    if (Visible() || !Enabled() || modal_ || Parent()) throw EInvalidOperation("Cannot make a visible window modal");
    TCustomForm* before = Screen()->ActiveForm();
    const int beforeNumber = before ? before->TComponent::Handle() : 0;
    const int number = TComponent::Handle();
    modal_ = true;
    modalResult_ = mrNone;
    int result = mrNone;
    try {
        SetVisible(true);
        PeerChanged(PeerChange::Modal);
        while (ComponentFromHandle(number) == this) {
            if (Application()->Terminated())
                modalResult_ = mrCancel;
            else if (modalResult_ == mrNone)
                Application()->HandleMessage();
            if (ComponentFromHandle(number) != this) return mrCancel;  // somebody freed it
            if (modalResult_ == mrNone) continue;
            if (Application()->Terminated()) break;
            // The end may still be refused.
            TCloseAction action = caNone;
            try {
                if (CloseQuery()) {
                    action = caHide;
                    DoClose(action);
                }
            } catch (...) {
                Application()->HandleException(this);
                action = caNone;
            }
            if (action == caFree) Release();
            if (action != caNone) break;
            modalResult_ = mrNone;
        }
        result = modalResult_;
    } catch (...) {
        modal_ = false;
        PeerChanged(PeerChange::Modal);
        SetVisible(false);
        throw;
    }
    modal_ = false;
    PeerChanged(PeerChange::Modal);
    SetVisible(false);
    if (before && ComponentFromHandle(beforeNumber) == before && before->Showing()) before->ProcessActivate();
    return result;
}

void TCustomForm::SetModalResult(TModalResult value) { modalResult_ = value; }

bool TCustomForm::CloseQuery() {
    bool canClose = true;
    OnCloseQuery(this, canClose);
    return canClose;
}

void TCustomForm::Close() {
    if (modal_) {
        modalResult_ = mrCancel;
        return;
    }
    const int number = TComponent::Handle();
    if (!CloseQuery()) return;
    if (ComponentFromHandle(number) != this) return;
    TCloseAction action = formStyle_ == fsMDIChild ? (borderIcons_.Contains(biMinimize) ? caMinimize : caNone) : caHide;
    DoClose(action);
    if (ComponentFromHandle(number) != this || action == caNone) return;
    if (Application()->MainForm() == this) {
        Application()->Terminate();
        return;
    }
    switch (action) {
        case caHide:
            Hide();
            break;
        case caFree:
            Release();
            break;
        case caMinimize:
            SetWindowState(wsMinimized);
            break;
        case caNone:
            break;
    }
}

void TCustomForm::Release() {
    if (released_) return;
    released_ = true;
    const int number = TComponent::Handle();
    TThread::Queue([number] { delete ComponentFromHandle(number); });
}

bool TCustomForm::Active() const { return Screen()->ActiveForm() == this; }

void TCustomForm::Activate() { OnActivate(this); }
void TCustomForm::Deactivate() { OnDeactivate(this); }

void TCustomForm::ProcessActivate() {
    if (!Showing() || Parent() || Screen()->ActiveForm() == this) return;
    if (TCustomForm* other = Screen()->ActiveForm()) other->ProcessDeactivate();
    Screen()->SetActiveForm(this);
    try {
        Activate();
        if (Screen()->ActiveForm() == this)
            SetFocusedControl(activeControl_ && activeControl_->CanFocus() ? activeControl_ : this);
    } catch (...) {
        Application()->HandleException(this);
    }
}

void TCustomForm::ProcessDeactivate() {
    if (Screen()->ActiveForm() != this) return;
    Screen()->SetActiveForm(nullptr);
    Screen()->SetActiveControl(nullptr);
    try {
        Deactivate();
    } catch (...) {
        Application()->HandleException(this);
    }
}

void TCustomForm::ProcessClose() {
    try {
        Close();
    } catch (...) {
        Application()->HandleException(this);
    }
}

void TCustomForm::ProcessWindowState(TWindowState state) { windowState_ = state; }

void TCustomForm::ProcessBounds(int left, int top, int width, int height) { SetBounds(left, top, width, height); }

void TCustomForm::CreatePeer() {
    if (Parent() ? !Parent()->Peer() : !showing_) return;
    TScrollingWinControl::CreatePeer();
}

void TCustomForm::DestroyPeer() {
    if (Peer()) Peer()->WindowGoes();
    TScrollingWinControl::DestroyPeer();
}

void TCustomForm::WndProc(TMessage& message) {
    if (message.Msg == WM_CLOSE) {
        Close();
        return;
    }
    TScrollingWinControl::WndProc(message);
}

// The keyboard.

void TCustomForm::SetActiveControl(TWinControl* control) {
    if (activeControl_ == control) return;
    if (control && !HasState(csLoading)) {
        if (control == this || GetParentForm(control) != GetParentForm(this) || !control->CanFocus())
            form_detail::RaiseCannotFocus();
    }
    activeControl_ = control;
    if (HasState(csLoading)) {
        if (control) control->FreeNotification(this);
        return;
    }
    if (Active()) SetFocusedControl(control ? control : this);
}

void TCustomForm::DefocusControl(TWinControl* control, bool removing) {
    if (removing && form_detail::IsInside(control, focusedControl_)) focusedControl_ = control->Parent();
    if (form_detail::IsInside(control, activeControl_)) SetActiveControl(nullptr);
}

void TCustomForm::FocusControl(TWinControl* control) {
    const bool wasActive = Active();
    if (control == this)
        SetFocus();
    else
        SetActiveControl(control);
    if (!wasActive) SetFocus();
    // The same control again: the toolkit may have lost it meanwhile.
    if (wasActive && control == activeControl_) control->PeerChanged(PeerChange::Focus);
}

void TCustomForm::SetFocus() {
    if (Parent()) {
        TScrollingWinControl::SetFocus();
        return;
    }
    if (!Showing() || !Enabled()) form_detail::RaiseCannotFocus();
    if (!Active())
        ProcessActivate();
    else
        SetFocusedControl(activeControl_ && activeControl_->CanFocus() ? activeControl_ : this);
}

bool TCustomForm::SetFocusedControl(TWinControl* control) {
    if (Parent()) {
        if (TCustomForm* form = GetParentForm(this); form && form != this) return form->SetFocusedControl(control);
    }
    TWinControl* leaving = focusedControl_;
    try {
        return MoveFocus(control);
    } catch (...) {
        // What was to be left refused: it keeps the keyboard.
        if (leaving && leaving == focusedControl_) {
            activeControl_ = leaving == this ? nullptr : leaving;
            Screen()->SetActiveControl(leaving);
            leaving->PeerChanged(PeerChange::Focus);
        }
        throw;
    }
}

// Leaves what is left, from the inside out, and enters what is entered, from the outside in. A handler that moves the
// focus itself ends the walk: its own went all the way.
bool TCustomForm::MoveFocus(TWinControl* control) {
    const int turn = ++focusCount_;
    activeControl_ = control == this ? nullptr : control;
    Screen()->SetActiveControl(control);
    if (Screen()->ActiveForm() != this && Showing()) {
        if (TCustomForm* other = Screen()->ActiveForm()) other->ProcessDeactivate();
        Screen()->SetActiveForm(this);
        Screen()->SetActiveControl(control);
        Activate();
        if (focusCount_ != turn) return false;
    }
    if (!focusedControl_) focusedControl_ = this;
    if (focusedControl_ != control) {
        while (focusedControl_ && !focusedControl_->ContainsControl(control)) {
            if (focusedControl_ != this) focusedControl_->DoExit();
            if (focusCount_ != turn) return false;
            if (focusedControl_) focusedControl_ = focusedControl_->Parent();
        }
        if (!focusedControl_) focusedControl_ = this;
        while (focusedControl_ != control) {
            TWinControl* next = control;
            while (next && next->Parent() != focusedControl_) next = next->Parent();
            if (!next) break;
            focusedControl_ = next;
            next->DoEnter();
            if (focusCount_ != turn) return false;
        }
        for (TWinControl* at = control->Parent(); at; at = at->Parent())
            if (auto* scrolling = ObjectCast<TScrollingWinControl>(at); scrolling && scrolling->AutoScroll())
                scrolling->ScrollInView(control);
        FocusChanged(control);
    }
    control->PeerChanged(PeerChange::Focus);
    return true;
}

bool TCustomForm::IsShortCut(uint16_t key, TShiftState shift) {
    bool handled = false;
    OnShortCut(key, shift, handled);
    if (handled) return true;
    return menu_ && menu_->IsShortCut(ShortCut(key, shift));
}

bool TCustomForm::ProcessDialogKey(uint16_t key, TShiftState shift, TWinControl* from) {
    const bool alt = shift.Contains(ssAlt);
    const bool ctrl = shift.Contains(ssCtrl);
    const bool letter = (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9');
    if (alt && !ctrl && letter) return ProcessMnemonic(static_cast<char>(key));
    if (alt) return false;
    if (!ctrl && key == VK_TAB) {
        SelectNext(from == this ? activeControl_ : from, !shift.Contains(ssShift), true);
        return true;
    }
    const bool forward = key == VK_RIGHT || key == VK_DOWN;
    if (!ctrl && (forward || key == VK_LEFT || key == VK_UP)) {
        if (from == this || !from->Parent()) return false;
        from->Parent()->SelectNext(from, forward, false);
        return true;
    }
    return DialogKey(key, shift);
}

bool TCustomForm::ProcessMnemonic(char key) { return DialogChar(key); }

}  // namespace vyn
