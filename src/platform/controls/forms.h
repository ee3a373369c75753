#pragma once

#include <memory>
#include <type_traits>

#include "platform/controls/pictures.h"
#include "platform/controls/scroll_boxes.h"
#include "platform/system/message_dialogs.h"

namespace vyn {

class TMainMenu;
class TMenuItem;

enum class TBorderIcon { biSystemMenu, biMinimize, biMaximize, biHelp };
using enum TBorderIcon;
using TBorderIcons = Set<TBorderIcon>;
// The forms inside a main form (fsMDI...) are stored as such and shown as windows of their own.
enum class TFormStyle { fsNormal, fsMDIChild, fsMDIForm, fsStayOnTop };
using enum TFormStyle;
enum class TPosition {
    poDesigned,
    poDefault,
    poDefaultPosOnly,
    poDefaultSizeOnly,
    poScreenCenter,
    poDesktopCenter,
    poMainFormCenter,
    poOwnerFormCenter
};
using enum TPosition;
enum class TWindowState { wsNormal, wsMinimized, wsMaximized };
using enum TWindowState;
enum class TPrintScale { poNone, poProportional, poPrintToFit };
using enum TPrintScale;
enum class TDefaultMonitor { dmDesktop, dmPrimary, dmMainForm, dmActiveForm };
using enum TDefaultMonitor;
const EnumType& TypeInfoOf(TypeTag<TBorderIcon>);
const EnumType& TypeInfoOf(TypeTag<TFormStyle>);
const EnumType& TypeInfoOf(TypeTag<TPosition>);
const EnumType& TypeInfoOf(TypeTag<TWindowState>);
const EnumType& TypeInfoOf(TypeTag<TPrintScale>);
const EnumType& TypeInfoOf(TypeTag<TDefaultMonitor>);

// A window of the program. Opening a form makes no native window until it is shown.
//
// A form's C++ constructor never reads the class's compiled form; CreateForm, and the class record's factory, make
// the form, read the compiled forms of its class and ancestors (form_classes.h) and fire OnCreate.
class TCustomForm : public TScrollingWinControl {
    VYN_OBJECT
  public:
    explicit TCustomForm(TComponent* owner);
    ~TCustomForm() override;

    // What the factory does after construction: reads the compiled forms, from the topmost ancestor that has one
    // down to the class itself, scales, and fires OnCreate. Without any it is simply an empty form.
    void InitializeForm();

    // Showing.
    void SetVisible(bool value) override;
    void Show() override;
    bool Showing() const override;
    // Shows and waits until ModalResult is set; gives it. Raises EInvalidOperation for a form that is visible,
    // disabled or modal already.
    virtual int ShowModal();
    bool IsModal() const { return modal_; }
    TModalResult ModalResult() const { return modalResult_; }
    void SetModalResult(TModalResult value);
    // Asks CloseQuery, then OnClose what to do; the main form's end is the program's. A modal form ends as cancelled.
    void Close();
    virtual bool CloseQuery();
    // Frees the form when its own events have returned.
    void Release();
    bool Active() const;
    // The toolkit: the user activated (left) the window, asks to close it, changed its state.
    void ProcessActivate();
    void ProcessDeactivate();
    void ProcessClose();
    void ProcessWindowState(TWindowState state);
    void ProcessBounds(int left, int top, int width, int height) override;
    void ProcessPaint() { OnPaint(this); }
    void Activate();
    void Deactivate();

    // The keyboard.
    TWinControl* ActiveControl() const { return activeControl_; }
    // Raises EInvalidOperation for a control that cannot have the keyboard.
    void SetActiveControl(TWinControl* control);
    void DefocusControl(TWinControl* control, bool removing);
    void FocusControl(TWinControl* control);
    bool SetFocusedControl(TWinControl* control);
    void SetFocus() override;
    bool CanFocus() const override { return Enabled(); }
    // A short cut of the form: OnShortCut, then its menus.
    virtual bool IsShortCut(uint16_t key, TShiftState shift);
    // Enter, Escape and Tab inside the form, when the focused control does not want them.
    bool ProcessDialogKey(uint16_t key, TShiftState shift, TWinControl* from);
    // Alt and a letter: the first control with that mnemonic.
    bool ProcessMnemonic(char key);

    // Published by TForm.
    TBorderIcons BorderIcons() const { return borderIcons_; }
    void SetBorderIcons(TBorderIcons value);
    TFormBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TFormBorderStyle value);
    TFormStyle FormStyle() const { return formStyle_; }
    void SetFormStyle(TFormStyle value);
    TPosition Position() const { return position_; }
    void SetPosition(TPosition value) { position_ = value; }
    TWindowState WindowState() const { return windowState_; }
    void SetWindowState(TWindowState value);
    TIcon* Icon();
    void SetIcon(const TIcon* value);
    bool IsIconStored() const { return icon_ && !icon_->Empty(); }
    TMainMenu* Menu() const { return menu_; }
    void SetMenu(TMainMenu* value);
    TMenuItem* WindowMenu() const { return windowMenu_; }
    void SetWindowMenu(TMenuItem* value);
    TMenuItem* ObjectMenuItem() const { return objectMenuItem_; }
    void SetObjectMenuItem(TMenuItem* value);
    bool KeyPreview = false;
    bool OldCreateOrder = false;
    bool Scaled = true;
    TPrintScale PrintScale = poProportional;
    TDefaultMonitor DefaultMonitor = dmActiveForm;
    AnsiString HelpFile;
    // The dots an inch that the stored places are meant for; 0 takes the screen's.
    int PixelsPerInch() const;
    void SetPixelsPerInch(int value) { pixelsPerInch_ = value; }
    int TextHeight() const { return textHeight_; }
    void SetTextHeight(int value) { textHeight_ = value; }

    // The size with border, title and menu follows from the client's, and the other way round.
    TRect ClientRect() const override;
    void SetClientSize(int width, int height) override;
    TSize FrameSize() const;

    TNotifyEvent OnActivate;
    TCloseEvent OnClose;
    TCloseQueryEvent OnCloseQuery;
    TNotifyEvent OnCreate;
    TNotifyEvent OnDestroy;
    TNotifyEvent OnDeactivate;
    TNotifyEvent OnHide;
    THelpEvent OnHelp;
    TNotifyEvent OnPaint;
    TShortCutEvent OnShortCut;
    TNotifyEvent OnShow;

    void WndProc(TMessage& message) override;
    void CreatePeer() override;
    void DestroyPeer() override;
    void GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) override;
    void SetChildOrder(TComponent* child, int order) override;
    void SetParentComponent(TComponent* parent) override;
    void SetParent(TWinControl* parent) override;
    void Loaded() override;
    void ReadState(TFiler& reader) override;
    void DefineProperties(TFiler& filer) override;

    bool IsFormSizeStored() const;
    bool IsClientSizeStored() const { return !IsFormSizeStored(); }
    bool IsAutoScrollStored() const { return true; }

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    TRect UnscrolledClientRect() const override;
    virtual void DoCreate();
    virtual void DoDestroy();
    virtual void DoClose(TCloseAction& action);
    virtual void DoShow();
    virtual void DoHide();
    // Fires OnDestroy, once; the destructor of each class that has state of its own calls it first, so that handlers
    // still find the whole form.
    void BeforeDestruction();

  private:
    friend class TWinControl;
    friend class TControl;
    void ScaleToScreen();
    void ApplyClientSize();
    void Leave();
    bool MoveFocus(TWinControl* control);
    void PlaceOnScreen();
    void ControlGoes(TControl* control);

    TWinControl* activeControl_ = nullptr;
    TWinControl* focusedControl_ = nullptr;
    TMainMenu* menu_ = nullptr;
    TMenuItem* windowMenu_ = nullptr;
    TMenuItem* objectMenuItem_ = nullptr;
    std::unique_ptr<TIcon> icon_;
    TBorderIcons borderIcons_ = {biSystemMenu, biMinimize, biMaximize};
    TFormBorderStyle borderStyle_ = bsSizeable;
    TFormStyle formStyle_ = fsNormal;
    TPosition position_ = poDesigned;
    TWindowState windowState_ = wsNormal;
    TModalResult modalResult_ = mrNone;
    int pixelsPerInch_ = 0;
    int textHeight_ = 0;
    int clientWidth_ = -1;  // as read, until the form is loaded
    int clientHeight_ = -1;
    bool modal_ = false;
    bool showing_ = false;
    bool readVisible_ = false;
    bool destroyed_ = false;
    bool released_ = false;
    bool initializing_ = false;
    bool placed_ = false;
    int focusCount_ = 0;
};

class TForm : public TCustomForm {
    VYN_OBJECT
  public:
    explicit TForm(TComponent* owner) : TCustomForm(owner) {}
};

// The form that a control is in (itself included), or null.
TCustomForm* GetParentForm(const TControl* control);
// The same; raises EInvalidOperation "Control 'X' has no parent window".
TCustomForm* ValidParentForm(const TControl* control);

}  // namespace vyn
