#pragma once

#include "platform/controls/property_catalogue.h"
#include "platform/controls/win_control.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

// What pressing does.
class TButtonControl : public TWinControl {
    VYN_OBJECT
  public:
    explicit TButtonControl(TComponent* owner) : TWinControl(owner) {}
    // Space (and the mnemonic) press it.
    bool DialogChar(char key) override;
    void KeyDown(uint16_t& key, TShiftState shift) override;
};

// A push button. One with a ModalResult ends the modal form; Default answers Enter, Cancel answers Escape.
class TButton : public TButtonControl {
    VYN_OBJECT
  public:
    explicit TButton(TComponent* owner);

    void Click() override;
    bool Cancel() const { return cancel_; }
    virtual void SetCancel(bool value);
    bool Default() const { return default_; }
    virtual void SetDefault(bool value);
    // Enter presses this button now: it is the default one, or has the keyboard.
    bool Active() const { return active_; }
    vyn::TModalResult ModalResult() const { return modalResult_; }
    virtual void SetModalResult(vyn::TModalResult value) { modalResult_ = value; }
    bool DialogKey(uint16_t key, TShiftState shift) override;
    void FocusChanged(TWinControl* focused) override;

  private:
    vyn::TModalResult modalResult_ = mrNone;
    bool cancel_ = false;
    bool default_ = false;
    bool active_ = false;
};

enum class TCheckBoxState { cbUnchecked, cbChecked, cbGrayed };
using enum TCheckBoxState;
const EnumType& TypeInfoOf(TypeTag<TCheckBoxState>);
enum class TLeftRight { taLeftJustify, taRightJustify };
const EnumType& TypeInfoOf(TypeTag<TLeftRight>);

class TCustomCheckBox : public TButtonControl {
    VYN_OBJECT
  public:
    explicit TCustomCheckBox(TComponent* owner);

    TLeftRight Alignment() const { return alignment_; }
    void SetAlignment(TLeftRight value);
    bool AllowGrayed = false;
    bool Checked() const { return state_ == cbChecked; }
    void SetChecked(bool value) { SetState(value ? cbChecked : cbUnchecked); }
    TCheckBoxState State() const { return state_; }
    // A change clicks.
    void SetState(TCheckBoxState value);
    // The user pressed it: the next state.
    virtual void Toggle();
    // What a press by mouse or key does; the peer calls it instead of Click.
    void ProcessPress() { Toggle(); }
    void KeyDown(uint16_t& key, TShiftState shift) override;
    bool DialogChar(char key) override;

  protected:
    // Another state, which nobody clicked.
    void PutState(TCheckBoxState value);

  private:
    TCheckBoxState state_ = cbUnchecked;
    TLeftRight alignment_ = TLeftRight::taRightJustify;
};
const PropertyCatalogue& CheckBoxProperties();

class TCheckBox : public TCustomCheckBox {
    VYN_OBJECT
  public:
    explicit TCheckBox(TComponent* owner) : TCustomCheckBox(owner) {}
};

// One of the radio buttons of a parent; checking it unchecks the others.
class TRadioButton : public TButtonControl {
    VYN_OBJECT
  public:
    explicit TRadioButton(TComponent* owner);

    TLeftRight Alignment() const { return alignment_; }
    void SetAlignment(TLeftRight value);
    bool Checked() const { return checked_; }
    virtual void SetChecked(bool value);
    void ProcessPress() { SetChecked(true); }
    void KeyDown(uint16_t& key, TShiftState shift) override;
    bool DialogChar(char key) override;
    void DoEnter() override;

  private:
    bool checked_ = false;
    TLeftRight alignment_ = TLeftRight::taRightJustify;
};

}  // namespace vyn
