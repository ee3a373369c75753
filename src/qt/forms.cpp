#include "qt/forms.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

#include "platform/controls/menus.h"
#include "platform/controls/screen.h"
#include "qt/application.h"
#include "qt/factory.h"
#include "qt/menus.h"
#include "qt/pictures.h"
#include "qt/text.h"

namespace vyn::qt {

namespace form_detail {

// The client area: events of its own go to the form.
class ClientWidget final : public Native<QWidget> {
  public:
    ClientWidget(FormPeer* peer, QWidget* parent) : Native<QWidget>(peer, parent) {}

  protected:
    void paintEvent(QPaintEvent* event) override {
        Native<QWidget>::paintEvent(event);
        if (Peer()) static_cast<FormPeer*>(Peer())->PaintClient();
    }
};

}  // namespace form_detail

FormPeer::FormPeer(TControl& control) : PeerOf(control), bars_(Self()) {}

void FormPeer::Create() {
    PeerOf::Create();
    if (Self().Menu()) ApplyMenu();
    ApplyIcon();
    if (widget_->isWindow()) {
        const Updating updating(*this);
        LayOut();
    }
    ApplyScroll();
}

QWidget* FormPeer::MakeWidget(QWidget* parent) {
    auto* window = new Native<QWidget>(this, parent, parent ? Qt::WindowFlags() : FlagsOf());
    client_ = new form_detail::ClientWidget(this, window);
    client_->setMouseTracking(true);
    window->setFocusPolicy(Qt::ClickFocus);
    // Where the keyboard is can always be seen, not only after the first Tab.
    if (!parent) window->setAttribute(Qt::WA_KeyboardFocusChange);
    return window;
}

Qt::WindowFlags FormPeer::FlagsOf() const {
    const TFormBorderStyle border = Self().BorderStyle();
    const TBorderIcons icons = Self().BorderIcons();
    const bool tool = border == bsToolWindow || border == bsSizeToolWin;
    Qt::WindowFlags flags = Qt::Window;
    if (tool)
        flags = Qt::Tool;
    else if (border == bsDialog || Self().IsModal())
        flags = Qt::Dialog;
    if (Self().FormStyle() == fsStayOnTop) flags |= Qt::WindowStaysOnTopHint;
    if (border == bsNone) return flags | Qt::FramelessWindowHint;
    flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    if (!icons.Contains(biSystemMenu)) return flags;
    flags |= Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    if (tool || border == bsDialog) return flags;
    if (icons.Contains(biMinimize)) flags |= Qt::WindowMinimizeButtonHint;
    if (icons.Contains(biMaximize) && border == bsSizeable) flags |= Qt::WindowMaximizeButtonHint;
    return flags;
}

void FormPeer::Changed(PeerChange what) {
    if (!widget_) return;
    switch (what) {
        case PeerChange::Menu:
            ApplyMenu();
            return;
        case PeerChange::WindowState:
            ApplyWindowFlags();
            ApplyIcon();
            return;
        case PeerChange::Scroll:
            ApplyScroll();
            return;
        case PeerChange::Modal:
            return;  // the window is told when it is shown
        case PeerChange::Invalidate:
            client_->update();
            return;
        case PeerChange::Focus: {
            // The form itself: nothing inside has the keyboard.
            QWidget* focused = widget_->focusWidget();
            if (focused && focused != widget_) focused->clearFocus();
            widget_->setFocus(Qt::OtherFocusReason);
            ActivateWindow(widget_->window());
            return;
        }
        default:
            PeerOf::Changed(what);
            return;
    }
}

int FormPeer::MenuBarHeight() const { return menuBar_ && !menuBar_->isHidden() ? menuBar_->sizeHint().height() : 0; }

// What the form's size has more than its window's inside.
TSize FormPeer::WindowExtra() const {
    const TSize frame = Self().FrameSize();
    return {frame.cx, frame.cy - MenuBarHeight()};
}

void FormPeer::ApplyBounds() {
    TCustomForm& form = Self();
    if (!widget_->isWindow()) {
        PeerOf::ApplyBounds();
        LayOut();
        return;
    }
    const bool fixed = form.BorderStyle() != bsSizeable && form.BorderStyle() != bsSizeToolWin;
    const TSize extra = WindowExtra();
    const QSize size(std::max(form.Width() - extra.cx, 1), std::max(form.Height() - extra.cy, 1));
    if (fixed && widget_->maximumSize() != size) widget_->setFixedSize(size);
    if (!fixed) {
        const TSizeConstraints* bounds = form.ConstraintsOrNull();
        const auto most = [](int value, int less) { return value > 0 ? value - less : QWIDGETSIZE_MAX; };
        widget_->setMinimumSize(bounds ? std::max(bounds->MinWidth() - extra.cx, 0) : 0,
                                bounds ? std::max(bounds->MinHeight() - extra.cy, 0) : 0);
        widget_->setMaximumSize(bounds ? most(bounds->MaxWidth(), extra.cx) : QWIDGETSIZE_MAX,
                                bounds ? most(bounds->MaxHeight(), extra.cy) : QWIDGETSIZE_MAX);
        if (!widget_->isMaximized()) widget_->resize(size);
    }
    const bool placed = form.Position() != poDefault && form.Position() != poDefaultPosOnly;
    if ((placed || widget_->isVisible()) && !widget_->isMaximized() &&
        widget_->pos() != QPoint(form.Left(), form.Top()))
        widget_->move(form.Left(), form.Top());
    LayOut();
}

void FormPeer::LayOut() {
    const int top = MenuBarHeight();
    if (menuBar_) menuBar_->setGeometry(0, 0, widget_->width(), top);
    client_->setGeometry(0, top, widget_->width(), std::max(widget_->height() - top, 0));
    ApplyScroll();
}

void FormPeer::ApplyScroll() { bars_.Update(*widget_, client_->geometry()); }

void FormPeer::ApplyText() { widget_->setWindowTitle(ToQt(Self().Caption())); }

void FormPeer::ApplyIcon() {
    if (!widget_->isWindow() || !Self().IsIconStored()) return;
    widget_->setWindowIcon(QIcon(QPixmap::fromImage(ToQImage(*Self().Icon(), true))));
}

void FormPeer::ApplyMenu() {
    TMainMenu* menu = Self().Menu();
    const bool shown = menu && Self().BorderStyle() != bsDialog && widget_->isWindow();
    const int before = MenuBarHeight();
    if (shown) {
        if (!menuBar_) {
            menuBar_ = new QMenuBar(widget_);
            menuBar_->setNativeMenuBar(false);
        }
        FillMenuBar(*menuBar_, menu);
        menuBar_->show();
    } else if (menuBar_) {
        menuBar_->hide();
        FillMenuBar(*menuBar_, nullptr);
    }
    if (MenuBarHeight() != before) {
        const Updating updating(*this);
        ApplyBounds();
    }
}

void FormPeer::ApplyWindowFlags() {
    if (!widget_->isWindow()) return;
    const Updating updating(*this);
    const Qt::WindowFlags flags = FlagsOf();
    const bool shown = widget_->isVisible();
    if (widget_->windowFlags() != flags) {
        widget_->setWindowFlags(flags);  // hides the window
        ApplyBounds();
        if (shown) ShowWindow();
        return;
    }
    if (shown) ShowWindow();
}

void FormPeer::ApplyVisible() {
    if (!widget_->isWindow()) {
        PeerOf::ApplyVisible();
        return;
    }
    if (!Self().Visible())
        widget_->hide();
    else if (Self().Peer())  // while it is made, what is inside is not there yet
        ShowWindow();
}

void FormPeer::ShowWindow() {
    const Qt::WindowModality modality = Self().IsModal() ? Qt::ApplicationModal : Qt::NonModal;
    if (!widget_->isVisible()) {
        widget_->setWindowModality(modality);
        if (const Qt::WindowFlags flags = FlagsOf(); widget_->windowFlags() != flags) {
            widget_->setWindowFlags(flags);
            ApplyBounds();
        }
        // A dialog stays above the window that it was opened from.
        if (Self().IsModal()) {
            QWidget* active = QApplication::activeWindow();
            widget_->winId();
            if (active && active != widget_ && active->windowHandle() && widget_->windowHandle())
                widget_->windowHandle()->setTransientParent(active->windowHandle());
        }
    }
    switch (Self().WindowState()) {
        case wsNormal:
            widget_->showNormal();
            break;
        case wsMinimized:
            widget_->showMinimized();
            break;
        case wsMaximized:
            widget_->showMaximized();
            break;
    }
    if (QtSession::IsOffscreen()) ActivateWindow(widget_);
}

void FormPeer::ApplyZOrder() {
    if (!widget_->isWindow()) {
        PeerOf::ApplyZOrder();
        return;
    }
    if (!widget_->isVisible()) return;
    if (!QtSession::IsOffscreen()) widget_->raise();  // there is no order of windows there
    ActivateWindow(widget_);
}

void FormPeer::ReportBounds() {
    if (updating_ > 0 || !widget_->isWindow() || widget_->isMinimized()) return;
    const TSize extra = WindowExtra();
    const QPoint at = widget_->pos();
    Guard(&Self(),
          [&] { Self().ProcessBounds(at.x(), at.y(), widget_->width() + extra.cx, widget_->height() + extra.cy); });
}

bool FormPeer::WindowHappened(QWidget& widget, QEvent& event) {
    if (&widget != widget_ || !client_) return false;
    switch (event.type()) {
        case QEvent::Resize:
            LayOut();
            ReportBounds();
            return false;
        case QEvent::Move:
            ReportBounds();
            return false;
        case QEvent::Close:
            if (!widget_->isWindow()) return false;
            // The form decides; when it agrees, it hides or frees its window itself.
            event.ignore();
            Guard(&Self(), [this] { Self().ProcessClose(); });
            return true;
        case QEvent::WindowActivate:
            if (!widget_->isWindow()) return false;
            if (Self().Showing()) {
                Guard(&Self(), [this] { Self().ProcessActivate(); });
            } else if (const WidgetPeer* active = PeerOfControl(Screen()->ActiveForm())) {
                // The window system's answer came late: this window was hidden meanwhile.
                ActivateWindow(active->Widget());
            }
            return false;
        case QEvent::WindowDeactivate:
            // A menu or a message box of the toolkit's is none of the program's forms.
            if (const TControl* other = ControlOfWidget(QApplication::activeWindow());
                widget_->isWindow() && other && GetParentForm(other) != &Self() && other->Showing())
                Guard(&Self(), [this] { Self().ProcessDeactivate(); });
            return false;
        case QEvent::WindowStateChange: {
            if (updating_ > 0 || !widget_->isWindow()) return false;
            TWindowState state = wsNormal;
            if (widget_->isMinimized())
                state = wsMinimized;
            else if (widget_->isMaximized())
                state = wsMaximized;
            Guard(&Self(), [&] { Self().ProcessWindowState(state); });
            return false;
        }
        default:
            return false;
    }
}

void RegisterFormPeers() { RegisterPeer(&TCustomForm::StaticClass(), &NewPeer<FormPeer>); }

}  // namespace vyn::qt
