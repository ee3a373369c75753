#pragma once

#include <functional>
#include <vector>

#include "platform/controls/control.h"

namespace vyn {

// A control that has a window: it can have the keyboard and hold other controls. Frees the controls inside it.
//
// Keys: the peer calls ProcessKeyDown, ProcessKeyPress and ProcessKeyUp first and, when one says true, keeps the key
// from its widget. They go through the form (KeyPreview, short cuts, Tab, Enter, Escape, mnemonics) to the virtual
// KeyDown, KeyPress and KeyUp of the control.
class TWinControl : public TControl {
    VYN_OBJECT
  public:
    explicit TWinControl(TComponent* owner);
    ~TWinControl() override;

    // What is inside. Controls(i) goes through the graphic controls first and then through the windowed ones, each
    // from the back to the front; forms store them in this order.
    int ControlCount() const { return static_cast<int>(graphics_.size() + windows_.size()); }
    TControl* Controls(int index) const;  // raises EListError
    const std::vector<TWinControl*>& WindowedControls() const { return windows_; }
    const std::vector<TControl*>& GraphicControls() const { return graphics_; }
    bool ContainsControl(const TControl* control) const;
    // The topmost visible control at a place of the client area; disabled ones only when asked for.
    TControl* ControlAtPos(TPoint at, bool allowDisabled, bool allowWinControls = true) const;
    TControl* FindChildControl(std::string_view name) const;

    // Layout. Nothing moves between DisableAlign and EnableAlign, nor while the form is read; then once.
    void DisableAlign() { ++alignLevel_; }
    void EnableAlign();
    void Realign() { AlignControls(nullptr); }
    TRect ClientRect() const override;
    // The rectangle that is left for aligned controls: the client area without borders of the control's own.
    virtual void AdjustClientRect(TRect& rect) const {}
    void ScrollBy(int deltaX, int deltaY);
    int BorderWidth() const { return borderWidth_; }
    void SetBorderWidth(int value);

    // The window handle: a number to which messages can be sent, made when it is first asked for. (The number of the
    // component, for parameters, is TComponent::Handle.)
    HWND Handle();
    bool HandleAllocated() const { return handle_ != 0; }

    // The keyboard.
    bool TabStop() const { return tabStop_; }
    void SetTabStop(bool value);
    // The place among the parent's windowed controls, or -1 without a parent.
    int TabOrder() const;
    void SetTabOrder(int value);
    // The windowed controls in tab order: those right inside, or (allLevels) as Tab visits them.
    std::vector<TWinControl*> GetTabOrderList(bool allLevels = true) const;
    // The next (previous) control that Tab comes to; null when there is none.
    TWinControl* FindNextControl(TWinControl* current, bool goForward, bool checkTabStop, bool checkParent) const;
    void SelectFirst();
    void SelectNext(TWinControl* current, bool goForward, bool checkTabStop);
    virtual bool CanFocus() const;
    // Raises EInvalidOperation when the control cannot have the keyboard in its form.
    virtual void SetFocus();
    bool Focused() const;
    THelpContext HelpContext() const { return helpContext_; }
    void SetHelpContext(THelpContext value) { helpContext_ = value; }

    bool ProcessKeyDown(uint16_t& key, TShiftState shift);
    bool ProcessKeyPress(char& key);
    bool ProcessKeyUp(uint16_t& key, TShiftState shift);
    bool ProcessMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos);
    // The widget got (lost) the keyboard.
    void ProcessFocusIn();
    void ProcessFocusOut();

    virtual void KeyDown(uint16_t& key, TShiftState shift);
    virtual void KeyPress(char& key);
    virtual void KeyUp(uint16_t& key, TShiftState shift);
    virtual bool DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos);
    virtual void DoEnter();
    virtual void DoExit();
    // The control itself uses this key, so that it is not Tab, an arrow between controls, Enter or Escape of the form.
    virtual bool WantsKey(uint16_t key, TShiftState shift) const { return false; }
    // A key that a control inside had no use for, offered to its parents, the nearest first, before it is the form's;
    // true when it was taken.
    virtual bool ChildKey(TWinControl& child, uint16_t key, TShiftState shift) { return false; }
    // A key of the dialog (Enter, Escape) is offered to each control; true when it took it.
    virtual bool DialogKey(uint16_t key, TShiftState shift);
    bool DialogChar(char key) override;
    // The focus moves inside the form: the default button looks at it.
    virtual void FocusChanged(TWinControl* focused);

    bool Ctl3D() const;
    void SetCtl3D(bool value);
    bool ParentCtl3D() const { return parentCtl3D_; }
    void SetParentCtl3D(bool value);
    bool IsCtl3DStored() const { return !parentCtl3D_; }
    TImeMode ImeMode = imDontCare;
    AnsiString ImeName;
    bool DockSite = false;
    bool UseDockManager = false;

    void SetBounds(int left, int top, int width, int height) override;
    void ChangeScale(int numerator, int denominator) override;
    // Scales this control's insides and the control itself.
    void ScaleBy(int numerator, int denominator);
    void ScaleControls(int numerator, int denominator);
    void WndProc(TMessage& message) override;

    void CreatePeer() override;
    void DestroyPeer() override;

    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;
    void Loaded() override;
    void ReadState(TFiler& reader) override;

    TNotifyEvent OnEnter;
    TNotifyEvent OnExit;
    TKeyEvent OnKeyDown;
    TKeyPressEvent OnKeyPress;
    TKeyEvent OnKeyUp;
    TMouseWheelEvent OnMouseWheel;
    TMouseWheelUpDownEvent OnMouseWheelDown;
    TMouseWheelUpDownEvent OnMouseWheelUp;

    // Lays the controls out; `changed` is the one that moved (it comes first among its equals), or null.
    virtual void AlignControls(TControl* changed);

  protected:
    // For destructors of classes whose members the controls inside, or owned components, touch when they go: frees
    // them now.
    void DestroyContents();
    void FontChanged() override;
    void ColorChanged() override;
    void BiDiModeChanged() override;
    void EnabledChanged() override;
    void VisibleChanged() override;
    void SetZOrder(bool topMost) override;
    bool CanAutoSize(int& newWidth, int& newHeight) override;
    // A control came in (is leaving).
    virtual void ControlInserted(TControl* control) {}
    virtual void ControlRemoved(TControl* control) {}
    // A control that is not aligned came, moved, showed or hid.
    virtual void ContentsMoved() {}
    // Space that scroll bars have moved the contents by.
    virtual TPoint ScrollOffset() const { return {}; }

  private:
    friend class TControl;
    void InsertControl(TControl* control);
    void RemoveControl(TControl* control);
    void ControlMoved(TControl* control);
    void AlignGroup(TAlign align, TControl* changed, TRect& rect);
    void RebuildTabOrder() const;
    void InvalidateTabOrder() { tabOrderValid_ = false; }
    void CollectTabOrder(std::vector<TWinControl*>& list) const;

    std::vector<TControl*> graphics_;
    std::vector<TWinControl*> windows_;
    mutable std::vector<TWinControl*> tabList_;
    mutable int tabOrder_ = -1;  // in the parent; while the parent's list is not valid, as it was asked for
    mutable bool tabOrderValid_ = true;
    mutable bool tabOrderRead_ = false;  // some numbers were read from a form
    bool tabStop_ = false;
    bool parentCtl3D_ = true;
    bool ctl3D_ = true;
    bool aligning_ = false;
    bool alignPending_ = false;
    int alignLevel_ = 0;
    int borderWidth_ = 0;
    HWND handle_ = 0;
    THelpContext helpContext_ = 0;
};

// A windowed control that is drawn by us.
class TCustomControl : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomControl(TComponent* owner) : TWinControl(owner) {}
};

}  // namespace vyn
