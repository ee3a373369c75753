#include "platform/controls/forms.h"

#include <algorithm>

#include "platform/controls/enum_names.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/menus.h"
#include "platform/controls/property_catalogue.h"
#include "platform/controls/screen.h"
#include "platform/controls/text_metrics.h"
#include "platform/objects/filer.h"
#include "platform/system/application.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace form_detail {

constexpr int kDesignPixelsPerInch = 96;

bool IsInside(const TControl* outer, const TControl* control) {
    for (; control; control = control->Parent())
        if (control == outer) return true;
    return false;
}

}  // namespace form_detail

VYN_ENUM_NAMES(TBorderIcon, "biSystemMenu", "biMinimize", "biMaximize", "biHelp")
VYN_ENUM_NAMES(TFormStyle, "fsNormal", "fsMDIChild", "fsMDIForm", "fsStayOnTop")
VYN_ENUM_NAMES(TPosition, "poDesigned", "poDefault", "poDefaultPosOnly", "poDefaultSizeOnly", "poScreenCenter",
               "poDesktopCenter", "poMainFormCenter", "poOwnerFormCenter")
VYN_ENUM_NAMES(TWindowState, "wsNormal", "wsMinimized", "wsMaximized")
VYN_ENUM_NAMES(TPrintScale, "poNone", "poProportional", "poPrintToFit")
VYN_ENUM_NAMES(TDefaultMonitor, "dmDesktop", "dmPrimary", "dmMainForm", "dmActiveForm")

const ClassInfo& TCustomForm::StaticClass() {
    static const ClassInfo info = DefineForm<TCustomForm, TScrollingWinControl>("TCustomForm");
    return info;
}

const ClassInfo& TForm::StaticClass() {
    static const ClassInfo info = [] {
        using Form = TCustomForm;
        PropertyCatalogue own(&WinControlProperties());
        own.Add("ActiveControl", &Form::ActiveControl, &Form::SetActiveControl);
        own.Add("AutoScroll", &Form::AutoScroll, &Form::SetAutoScroll).Default(true).Stored(&Form::IsAutoScrollStored);
        own.Add("BorderIcons", &Form::BorderIcons, &Form::SetBorderIcons)
            .Default(TBorderIcons{biSystemMenu, biMinimize, biMaximize});
        own.Add("BorderStyle", &Form::BorderStyle, &Form::SetBorderStyle).Default(bsSizeable);
        own.Add("ClientHeight", &Form::ClientHeight, &Form::SetClientHeight).Stored(&Form::IsClientSizeStored);
        own.Add("ClientWidth", &Form::ClientWidth, &Form::SetClientWidth).Stored(&Form::IsClientSizeStored);
        own.Add("Width", &Form::Width, &Form::SetWidth).Stored(&Form::IsFormSizeStored);
        own.Add("Height", &Form::Height, &Form::SetHeight).Stored(&Form::IsFormSizeStored);
        own.Add("Color", &Form::Color, &Form::SetColor);
        own.Add("DefaultMonitor", &Form::DefaultMonitor, &Form::DefaultMonitor).Default(dmActiveForm);
        own.Add("ParentFont", &Form::ParentFont, &Form::SetParentFont).Default(false);
        own.Add("FormStyle", &Form::FormStyle, &Form::SetFormStyle).Default(fsNormal);
        own.Add("HelpFile", &Form::HelpFile, &Form::HelpFile);
        own.Add("Icon", &Form::Icon, &Form::SetIcon).Stored(&Form::IsIconStored);
        own.Add("KeyPreview", &Form::KeyPreview, &Form::KeyPreview).Default(false);
        own.Add("Menu", &Form::Menu, &Form::SetMenu);
        own.Add("OldCreateOrder", &Form::OldCreateOrder, &Form::OldCreateOrder);
        own.Add("ObjectMenuItem", &Form::ObjectMenuItem, &Form::SetObjectMenuItem);
        PropertyInfo pixelsPerInch = Property("PixelsPerInch", &Form::PixelsPerInch, &Form::SetPixelsPerInch);
        pixelsPerInch.Stored = [](const TObject&) { return false; };  // DefineProperties puts it behind the others
        own.Add(std::move(pixelsPerInch));
        own.Add("Position", &Form::Position, &Form::SetPosition).Default(poDesigned);
        own.Add("PrintScale", &Form::PrintScale, &Form::PrintScale).Default(poProportional);
        own.Add("Scaled", &Form::Scaled, &Form::Scaled).Default(true);
        own.Add("Visible", &TControl::Visible, &TControl::SetVisible).Default(false);
        own.Add("WindowState", &Form::WindowState, &Form::SetWindowState).Default(wsNormal);
        own.Add("WindowMenu", &Form::WindowMenu, &Form::SetWindowMenu);
        own.Event("OnActivate", &Form::OnActivate);
        own.Event("OnClose", &Form::OnClose);
        own.Event("OnCloseQuery", &Form::OnCloseQuery);
        own.Event("OnCreate", &Form::OnCreate);
        own.Event("OnDestroy", &Form::OnDestroy);
        own.Event("OnDeactivate", &Form::OnDeactivate);
        own.Event("OnHide", &Form::OnHide);
        own.Event("OnHelp", &Form::OnHelp);
        own.Event("OnPaint", &Form::OnPaint);
        own.Event("OnShortCut", &Form::OnShortCut);
        own.Event("OnShow", &Form::OnShow);
        return Publish(DefineForm<TForm, TCustomForm>("TForm"), own,
                       "ActiveControl Align Anchors AutoScroll AutoSize BiDiMode BorderIcons BorderStyle BorderWidth "
                       "Caption ClientHeight ClientWidth Color Constraints Ctl3D UseDockManager DefaultMonitor "
                       "DockSite DragKind DragMode Enabled ParentFont Font FormStyle Height HelpFile Icon "
                       "KeyPreview Menu OldCreateOrder ObjectMenuItem ParentBiDiMode PixelsPerInch PopupMenu Position "
                       "PrintScale Scaled ShowHint Visible Width WindowState WindowMenu OnActivate OnCanResize OnClick "
                       "OnClose OnCloseQuery OnConstrainedResize OnContextPopup OnCreate OnDblClick OnDestroy "
                       "OnDeactivate OnDockDrop OnDockOver OnDragDrop OnDragOver OnEndDock OnGetSiteInfo OnHide OnHelp "
                       "OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp OnMouseWheel OnMouseWheelDown "
                       "OnMouseWheelUp OnPaint OnResize OnShortCut OnShow OnStartDock OnUnDock");
    }();
    return info;
}

TCustomForm::TCustomForm(TComponent* owner) : TScrollingWinControl(owner) {
    ControlStyle = {csAcceptsControls, csCaptureMouse, csClickEvents, csSetCaption, csDoubleClicks};
    SetInitialSize(320, 240);
    SetDefaultColor(clBtnFace, false);
    SetFontFromParent(false);
    SetParentShowHint(false);
    PutVisible(false);
    Screen()->AddForm(this);
}

TCustomForm::~TCustomForm() {
    BeforeDestruction();
    ComponentState.Include(csDestroying);
    if (Screen()->ActiveForm() == this) Screen()->SetActiveControl(nullptr);
    Screen()->RemoveForm(this);
    if (Peer()) Peer()->WindowGoes();
    DestroyContents();
}

void TCustomForm::BeforeDestruction() {
    if (destroyed_) return;
    destroyed_ = true;
    try {
        DoDestroy();
    } catch (...) {
        Application()->HandleException(this);
    }
}

void TCustomForm::DoDestroy() { OnDestroy(this); }
void TCustomForm::DoCreate() { OnCreate(this); }
void TCustomForm::DoShow() { OnShow(this); }
void TCustomForm::DoHide() { OnHide(this); }
void TCustomForm::DoClose(TCloseAction& action) { OnClose(this, action); }

void TCustomForm::InitializeForm() {
    initializing_ = true;
    try {
        ReadFormResources(*this, [this](bool last) { initializing_ = !last; });
    } catch (...) {
        initializing_ = false;
        throw;
    }
    initializing_ = false;
    try {
        DoCreate();
    } catch (...) {
        Application()->HandleException(this);
    }
    if (readVisible_) {
        readVisible_ = false;
        SetVisible(true);
    }
}

void TCustomForm::Notification(TComponent* component, TOperation operation) {
    TScrollingWinControl::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == menu_) {
        menu_ = nullptr;
        PeerChanged(PeerChange::Menu);
    }
    if (component == windowMenu_) windowMenu_ = nullptr;
    if (component == objectMenuItem_) objectMenuItem_ = nullptr;
    if (component == activeControl_) activeControl_ = nullptr;
    if (component == focusedControl_) focusedControl_ = nullptr;
}

// A control leaves the form, perhaps because it is going: nothing is called on it any more.
void TCustomForm::ControlGoes(TControl* control) {
    if (form_detail::IsInside(control, focusedControl_)) focusedControl_ = control->Parent();
    if (form_detail::IsInside(control, activeControl_)) activeControl_ = nullptr;
    if (form_detail::IsInside(control, Screen()->ActiveControl()))
        Screen()->SetActiveControl(Screen()->ActiveForm() == this ? this : nullptr);
}

// Storing.

int TCustomForm::PixelsPerInch() const { return pixelsPerInch_ == 0 ? Screen()->PixelsPerInch() : pixelsPerInch_; }

bool TCustomForm::IsFormSizeStored() const {
    auto* self = const_cast<TCustomForm*>(this);
    return AutoScroll() || self->HorzScrollBar()->Range() != 0 || self->VertScrollBar()->Range() != 0;
}

void TCustomForm::DefineProperties(TFiler& filer) {
    TScrollingWinControl::DefineProperties(filer);
    filer.DefineIntegerProperty(
        "PixelsPerInch", [this](int value) { pixelsPerInch_ = value; }, PixelsPerInch(), !Parent());
    filer.DefineIntegerProperty(
        "TextHeight", [this](int value) { textHeight_ = value; },
        textHeight_ != 0 ? textHeight_ : EffectiveFont().LineHeight(), !Parent());
}

void TCustomForm::GetChildren(const std::function<void(TComponent*)>& visit, TComponent* root) {
    TScrollingWinControl::GetChildren(visit, root);
    if (root != this) return;
    for (int i = 0; i < ComponentCount(); ++i)
        if (!Components(i)->HasParent()) visit(Components(i));
}

void TCustomForm::SetChildOrder(TComponent* child, int order) {
    if (ObjectCast<TControl>(child)) {
        TScrollingWinControl::SetChildOrder(child, order);
        return;
    }
    // The place among the components that are nowhere else; those come behind the controls.
    order -= ControlCount();
    for (int i = 0, seen = 0; i < ComponentCount(); ++i) {
        if (Components(i)->HasParent()) continue;
        if (seen++ < order) continue;
        child->SetComponentIndex(i);
        return;
    }
}

void TCustomForm::SetParentComponent(TComponent* parent) { TScrollingWinControl::SetParentComponent(parent); }

void TCustomForm::SetParent(TWinControl* parent) {
    TScrollingWinControl::SetParent(parent);
    if (parent && Screen()->ActiveForm() == this) Leave();
}

void TCustomForm::ReadState(TFiler& reader) { TScrollingWinControl::ReadState(reader); }

void TCustomForm::Loaded() {
    if (!initializing_) {
        ScaleToScreen();
        ApplyClientSize();
    }
    TScrollingWinControl::Loaded();
    if (activeControl_ && !initializing_ && GetParentForm(activeControl_) != this) activeControl_ = nullptr;
}

void TCustomForm::ApplyClientSize() {
    const TSize frame = FrameSize();
    const int width = clientWidth_ >= 0 ? clientWidth_ + frame.cx : Width();
    const int height = clientHeight_ >= 0 ? clientHeight_ + frame.cy : Height();
    clientWidth_ = clientHeight_ = -1;
    SetBounds(Left(), Top(), width, height);
}

void TCustomForm::ScaleToScreen() {
    const int stored = pixelsPerInch_ == 0 ? form_detail::kDesignPixelsPerInch : pixelsPerInch_;
    const int screen = Screen()->PixelsPerInch();
    if (!Scaled || pixelsPerInch_ == 0 || stored == screen || Parent()) return;
    const auto scale = [&](int value) { return MulDiv(value, screen, stored); };
    pixelsPerInch_ = screen;
    DisableAlign();
    ScaleControls(screen, stored);
    ScaleScrollBars(screen, stored);
    const TRect client = ClientRect();
    SetClientSize(scale(client.Width()), scale(client.Height()));
    if (const TSizeConstraints* bounds = ConstraintsOrNull()) {
        TSizeConstraints* own = Constraints();
        own->SetMinWidth(scale(bounds->MinWidth()));
        own->SetMinHeight(scale(bounds->MinHeight()));
        own->SetMaxWidth(scale(bounds->MaxWidth()));
        own->SetMaxHeight(scale(bounds->MaxHeight()));
    }
    Font()->SetHeight(scale(Font()->Height()));
    textHeight_ = scale(textHeight_);
    EnableAlign();
}

// Size.

TSize TCustomForm::FrameSize() const {
    if (borderStyle_ == bsNone) return {};
    const TextMetrics& metrics = CurrentTextMetrics();
    TSize frame = metrics.FrameSize(true, borderStyle_ == bsSizeable || borderStyle_ == bsSizeToolWin,
                                    borderStyle_ == bsToolWindow || borderStyle_ == bsSizeToolWin);
    if (menu_ && borderStyle_ != bsDialog) frame.cy += metrics.MenuHeight();
    return frame;
}

TRect TCustomForm::UnscrolledClientRect() const {
    const TSize frame = FrameSize();
    const int width = clientWidth_ >= 0 ? clientWidth_ : Width() - frame.cx;
    const int height = clientHeight_ >= 0 ? clientHeight_ : Height() - frame.cy;
    return {0, 0, std::max(width, 0), std::max(height, 0)};
}

TRect TCustomForm::ClientRect() const { return UnscrolledClientRect(); }

void TCustomForm::SetClientSize(int width, int height) {
    width = WithinExtent(width);
    height = WithinExtent(height);
    if (HasState(csLoading)) {
        // Border and menu may still change it.
        const TRect client = ClientRect();
        if (width != client.Width() || clientWidth_ >= 0) clientWidth_ = width;
        if (height != client.Height() || clientHeight_ >= 0) clientHeight_ = height;
        return;
    }
    const TSize frame = FrameSize();
    SetBounds(Left(), Top(), width + frame.cx, height + frame.cy);
}

void TCustomForm::PlaceOnScreen() {
    if (placed_ || Parent()) return;
    placed_ = true;
    TRect area = {0, 0, Screen()->Width(), Screen()->Height()};
    const auto areaOf = [&](TComponent* component) {
        if (auto* form = ObjectCast<TCustomForm>(component); form && form != this) area = form->BoundsRect();
    };
    switch (position_) {
        case poMainFormCenter:
            areaOf(Application()->MainForm());
            break;
        case poOwnerFormCenter:
            areaOf(Owner());
            break;
        case poScreenCenter:
        case poDesktopCenter:
            break;
        case poDesigned:
        case poDefault:
        case poDefaultPosOnly:
        case poDefaultSizeOnly:
            return;  // where it was designed, or where the window system puts it
    }
    const int left = area.Left + (area.Width() - Width()) / 2;
    const int top = area.Top + (area.Height() - Height()) / 2;
    SetBounds(std::max(left, 0), std::max(top, 0), Width(), Height());
}

// Published properties.

void TCustomForm::SetBorderIcons(TBorderIcons value) {
    borderIcons_ = value;
    PeerChanged(PeerChange::WindowState);
}

void TCustomForm::SetBorderStyle(TFormBorderStyle value) {
    if (borderStyle_ == value) return;
    const TRect client = ClientRect();
    borderStyle_ = value;
    if (!HasState(csLoading)) SetClientSize(client.Width(), client.Height());
    PeerChanged(PeerChange::WindowState);
}

void TCustomForm::SetFormStyle(TFormStyle value) {
    formStyle_ = value;
    PeerChanged(PeerChange::WindowState);
}

void TCustomForm::SetWindowState(TWindowState value) {
    if (windowState_ == value) return;
    windowState_ = value;
    PeerChanged(PeerChange::WindowState);
}

TIcon* TCustomForm::Icon() {
    if (!icon_) {
        icon_ = std::make_unique<TIcon>();
        icon_->OnChange = [this](TObject*) { PeerChanged(PeerChange::WindowState); };
    }
    return icon_.get();
}

void TCustomForm::SetIcon(const TIcon* value) { Icon()->Assign(value); }

void TCustomForm::SetMenu(TMainMenu* value) {
    if (menu_ == value) return;
    const TRect client = ClientRect();
    if (menu_) menu_->Form = nullptr;
    menu_ = value;
    if (value) {
        value->Form = this;
        value->FreeNotification(this);
    }
    if (!HasState(csLoading)) SetClientSize(client.Width(), client.Height());
    PeerChanged(PeerChange::Menu);
}

void TCustomForm::SetWindowMenu(TMenuItem* value) {
    windowMenu_ = value;
    if (value) value->FreeNotification(this);
}

void TCustomForm::SetObjectMenuItem(TMenuItem* value) {
    objectMenuItem_ = value;
    if (value) value->FreeNotification(this);
}

TCustomForm* GetParentForm(const TControl* control) {
    for (; control; control = control->Parent()) {
        if (!control->Parent()) return const_cast<TCustomForm*>(ObjectCast<TCustomForm>(control));
    }
    return nullptr;
}

TCustomForm* ValidParentForm(const TControl* control) {
    if (TCustomForm* form = GetParentForm(control)) return form;
    throw EInvalidOperation("Control '" + (control ? control->Name() : AnsiString()) + "' has no parent window");
}

}  // namespace vyn
