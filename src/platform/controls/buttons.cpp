#include "platform/controls/buttons.h"

#include "platform/controls/enum_names.h"
#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"

namespace vyn {

VYN_ENUM_NAMES(TCheckBoxState, "cbUnchecked", "cbChecked", "cbGrayed")
VYN_ENUM_NAMES(TLeftRight, "taLeftJustify", "taRightJustify")

const ClassInfo& TButtonControl::StaticClass() {
    static const ClassInfo info = DefineClass<TButtonControl, TWinControl>("TButtonControl");
    return info;
}

bool TButtonControl::DialogChar(char key) {
    if (!IsAccel(static_cast<uint8_t>(key), Caption()) || !CanFocus()) return false;
    Click();
    return true;
}

void TButtonControl::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key != VK_SPACE || !(shift * TShiftState{ssCtrl, ssAlt}).Empty()) return;
    key = 0;
    Click();
}

const ClassInfo& TButton::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Cancel", &TButton::Cancel, &TButton::SetCancel).Default(false);
        own.Add("Default", &TButton::Default, &TButton::SetDefault).Default(false);
        own.Add("ModalResult", &TButton::ModalResult, &TButton::SetModalResult).Default(0);
        own.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        return Publish(DefineClass<TButton, TButtonControl>("TButton"), own,
                       "Anchors BiDiMode Cancel Caption Constraints Default DragCursor DragKind DragMode Enabled Font "
                       "ModalResult ParentBiDiMode ParentFont ParentShowHint PopupMenu ShowHint TabOrder TabStop "
                       "Visible OnClick OnContextPopup OnDragDrop OnDragOver OnEndDock OnEndDrag OnEnter OnExit "
                       "OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TButton::TButton(TComponent* owner) : TButtonControl(owner) {
    ControlStyle = {csSetCaption, csDoubleClicks, csClickEvents};
    SetInitialSize(75, 25);
    SetTabStop(true);
}

void TButton::Click() {
    if (TCustomForm* form = GetParentForm(this)) form->SetModalResult(modalResult_);
    TButtonControl::Click();
}

void TButton::SetCancel(bool value) { cancel_ = value; }

void TButton::SetDefault(bool value) {
    default_ = value;
    active_ = value;
    PeerChanged(PeerChange::Style);
}

bool TButton::DialogKey(uint16_t key, TShiftState shift) {
    if (((key == VK_RETURN && active_) || (key == VK_ESCAPE && cancel_)) &&
        (shift * TShiftState{ssShift, ssCtrl, ssAlt}).Empty() && CanFocus()) {
        Click();
        return true;
    }
    return TButtonControl::DialogKey(key, shift);
}

void TButton::FocusChanged(TWinControl* focused) {
    // While another button has the keyboard, Enter presses that one.
    const bool active = ObjectCast<TButton>(focused) ? focused == this : default_;
    if (active != active_) {
        active_ = active;
        PeerChanged(PeerChange::Style);
    }
    TButtonControl::FocusChanged(focused);
}

// Check boxes.

const PropertyCatalogue& CheckBoxProperties() {
    static const PropertyCatalogue catalogue = [] {
        using Box = TCustomCheckBox;
        PropertyCatalogue made(&WinControlProperties());
        made.Add("Alignment", &Box::Alignment, &Box::SetAlignment).Default(TLeftRight::taRightJustify);
        made.Add("AllowGrayed", &Box::AllowGrayed, &Box::AllowGrayed).Default(false);
        PropertyInfo checked = Property("Checked", &Box::Checked, &Box::SetChecked);
        checked.Stored = [](const TObject&) { return false; };  // State says it
        made.Add(std::move(checked));
        made.Add("State", &Box::State, &Box::SetState).Default(cbUnchecked);
        made.Add("TabStop", &TWinControl::TabStop, &TWinControl::SetTabStop).Default(true);
        return made;
    }();
    return catalogue;
}

const ClassInfo& TCustomCheckBox::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomCheckBox, TButtonControl>("TCustomCheckBox");
    return info;
}

const ClassInfo& TCheckBox::StaticClass() {
    static const ClassInfo info =
        Publish(DefineClass<TCheckBox, TCustomCheckBox>("TCheckBox"), CheckBoxProperties(),
                "Alignment AllowGrayed Anchors BiDiMode Caption Checked Color Constraints Ctl3D DragCursor DragKind "
                "DragMode Enabled Font ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint PopupMenu "
                "ShowHint State TabOrder TabStop Visible OnClick OnContextPopup OnDragDrop OnDragOver OnEndDock "
                "OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnStartDock "
                "OnStartDrag");
    return info;
}

TCustomCheckBox::TCustomCheckBox(TComponent* owner) : TButtonControl(owner) {
    ControlStyle = {csSetCaption, csDoubleClicks};
    SetInitialSize(97, 17);
    SetTabStop(true);
}

void TCustomCheckBox::SetAlignment(TLeftRight value) {
    alignment_ = value;
    PeerChanged(PeerChange::Style);
}

void TCustomCheckBox::SetState(TCheckBoxState value) {
    if (state_ == value) return;
    PutState(value);
    if (!HasState(csLoading)) Click();
}

void TCustomCheckBox::PutState(TCheckBoxState value) {
    state_ = value;
    PeerChanged(PeerChange::Selection);
}

void TCustomCheckBox::Toggle() {
    switch (state_) {
        case cbUnchecked:
            SetState(AllowGrayed ? cbGrayed : cbChecked);
            break;
        case cbChecked:
            SetState(cbUnchecked);
            break;
        case cbGrayed:
            SetState(cbChecked);
            break;
    }
}

void TCustomCheckBox::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key != VK_SPACE || !(shift * TShiftState{ssCtrl, ssAlt}).Empty()) return;
    key = 0;
    Toggle();
}

bool TCustomCheckBox::DialogChar(char key) {
    if (!IsAccel(static_cast<uint8_t>(key), Caption()) || !CanFocus()) return false;
    SetFocus();
    if (Focused()) Toggle();
    return true;
}

// Radio buttons.

const ClassInfo& TRadioButton::StaticClass() {
    static const ClassInfo info = [] {
        PropertyCatalogue own(&WinControlProperties());
        own.Add("Alignment", &TRadioButton::Alignment, &TRadioButton::SetAlignment).Default(TLeftRight::taRightJustify);
        own.Add("Checked", &TRadioButton::Checked, &TRadioButton::SetChecked).Default(false);
        return Publish(DefineClass<TRadioButton, TButtonControl>("TRadioButton"), own,
                       "Alignment Anchors BiDiMode Caption Checked Color Constraints Ctl3D DragCursor DragKind "
                       "DragMode Enabled Font ParentBiDiMode ParentColor ParentCtl3D ParentFont ParentShowHint "
                       "PopupMenu ShowHint TabOrder TabStop Visible OnClick OnContextPopup OnDblClick OnDragDrop "
                       "OnDragOver OnEndDock OnEndDrag OnEnter OnExit OnKeyDown OnKeyPress OnKeyUp OnMouseDown "
                       "OnMouseMove OnMouseUp OnStartDock OnStartDrag");
    }();
    return info;
}

TRadioButton::TRadioButton(TComponent* owner) : TButtonControl(owner) {
    ControlStyle = {csSetCaption, csDoubleClicks};
    SetInitialSize(113, 17);
}

void TRadioButton::SetAlignment(TLeftRight value) {
    alignment_ = value;
    PeerChanged(PeerChange::Style);
}

void TRadioButton::SetChecked(bool value) {
    if (checked_ == value) return;
    checked_ = value;
    SetTabStop(value);  // Tab comes to the chosen one of a group
    PeerChanged(PeerChange::Selection);
    if (!value) return;
    if (Parent())
        for (TWinControl* window : Parent()->WindowedControls())
            if (auto* other = ObjectCast<TRadioButton>(window); other && other != this) other->SetChecked(false);
    if (!HasState(csLoading)) Click();
}

void TRadioButton::KeyDown(uint16_t& key, TShiftState shift) {
    TWinControl::KeyDown(key, shift);
    if (key != VK_SPACE || !(shift * TShiftState{ssCtrl, ssAlt}).Empty()) return;
    key = 0;
    SetChecked(true);
}

bool TRadioButton::DialogChar(char key) {
    if (!IsAccel(static_cast<uint8_t>(key), Caption()) || !CanFocus()) return false;
    SetFocus();
    SetChecked(true);
    return true;
}

// Arrow keys move the keyboard among the buttons of a group, and the choice goes with it.
void TRadioButton::DoEnter() {
    TButtonControl::DoEnter();
    if (!checked_ && Parent())
        for (TWinControl* window : Parent()->WindowedControls())
            if (auto* other = ObjectCast<TRadioButton>(window); other && other->checked_) {
                SetChecked(true);
                return;
            }
}

}  // namespace vyn
