#include <QApplication>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QToolTip>
#include <QWheelEvent>

#include "platform/controls/drag.h"
#include "platform/objects/class_info.h"
#include "platform/objects/component_handle.h"
#include "qt/keys.h"
#include "qt/text.h"
#include "qt/widget_peer.h"

// From native events to the controls' Process operations. Native first, then the control, for the mouse, so that a
// press has had its effect when OnMouseDown fires and a click comes before OnMouseUp; the control first for keys.
namespace vyn::qt {

namespace event_detail {

// Widgets' events on the stack.
int theDepth = 0;

struct DepthGuard {
    DepthGuard() { ++theDepth; }
    ~DepthGuard() { --theDepth; }
};

constexpr char16_t kFirstPrinted = 0x20;
constexpr char16_t kDeleteCharacter = 0x7F;

// A key's character as the controls get it; Alt with a letter is none.
bool GivesCharacters(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    return !(modifiers & Qt::AltModifier) || (modifiers & Qt::ControlModifier) || (modifiers & Qt::GroupSwitchModifier);
}

// What is left of the text when each character was offered to the control.
QString OfferCharacters(TWinControl& control, const QString& text, const QPointer<QWidget>& alive,
                        const PeerLink& link) {
    QString kept;
    for (const QChar each : text) {
        if (each.unicode() == kDeleteCharacter) {
            kept += each;
            continue;
        }
        const AnsiString ansi = FromQt(QString(each));
        if (ansi.size() != 1) continue;
        char key = ansi[0];
        const bool foreign = key == '?' && each != QLatin1Char('?');
        bool taken = false;
        Guard(&control, [&] { taken = control.ProcessKeyPress(key); });
        if (!alive || !link.Peer()) return {};
        if (taken) continue;
        // What the code page lacks stays for the widget to show until the control answers with its own text.
        kept += foreign && key == '?' ? QString(each) : ToQt(std::string_view(&key, 1));
    }
    return kept;
}

// What a status line says about the control under the mouse, whether or not hints show beside it.
AnsiString LongHintFor(const TControl* control) {
    for (; control; control = control->Parent())
        if (!control->Hint().empty()) return TControl::GetLongHint(control->Hint());
    return {};
}

}  // namespace event_detail

void DisposeWidget(QWidget* widget) {
    if (event_detail::theDepth > 0) {
        widget->hide();
        widget->deleteLater();
    } else {
        delete widget;
    }
}

bool PeerLink::Dispatch(PeerLink& link, QWidget* widget, QEvent* event, EventCall native) {
    const event_detail::DepthGuard depth;
    const QPointer<QWidget> alive(widget);
    WidgetPeer& peer = *link.peer_;
    const WidgetPeer::NativeCall next = [widget, native](QEvent* e) { return native(widget, e); };
    switch (event->type()) {
        case QEvent::KeyPress:
            return peer.KeyPressed(static_cast<QKeyEvent&>(*event), next);
        case QEvent::KeyRelease:
            return peer.KeyReleased(static_cast<QKeyEvent&>(*event), next);
        case QEvent::InputMethod:
            return peer.TextComposed(static_cast<QInputMethodEvent&>(*event), next);
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::Enter:
        case QEvent::Leave:
            return peer.PassToLight(*widget, *event) || peer.MouseHappened(*widget, *event, next);
        case QEvent::ToolTip: {
            // The mouse may have come over a control that got its widget just then.
            const TControl* above = ControlOfWidget(widget->childAt(static_cast<QHelpEvent*>(event)->pos()));
            const TControl& control = above ? *above : peer.Control();
            const AnsiString hint =
                Application()->ShowHint ? TControl::GetShortHint(control.EffectiveHint()) : AnsiString();
            if (hint.empty()) return next(event);
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), ToQt(hint), widget);
            return true;
        }
        case QEvent::FocusIn:
        case QEvent::FocusOut: {
            const bool result = next(event);
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // A menu has the keyboard for a moment only.
            if (reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason) return result;
            if (alive && link.peer_) link.peer_->FocusChanged(*widget, event->type() == QEvent::FocusIn);
            return result;
        }
        case QEvent::Resize:
        case QEvent::Move:
        case QEvent::Close:
        case QEvent::WindowActivate:
        case QEvent::WindowDeactivate:
        case QEvent::WindowStateChange: {
            if (event->type() == QEvent::Close) return peer.WindowHappened(*widget, *event) || next(event);
            const bool result = next(event);
            if (alive && link.peer_) link.peer_->WindowHappened(*widget, *event);
            return result;
        }
        default:
            return next(event);
    }
}

void PeerLink::PaintLights(PeerLink& link, QWidget* widget, QEvent* event) {
    if (link.peer_ && widget == link.peer_->ClientWidget())
        link.peer_->PaintLights(*widget, static_cast<QPaintEvent*>(event)->region());
}

bool WidgetPeer::PassToLight(QWidget& widget, QEvent& event) {
    if (&widget != ClientWidget()) return false;
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove: {
            const auto& mouse = static_cast<QMouseEvent&>(event);
            QPointer<QWidget> target = passedTo_;
            if (!target && event.type() != QEvent::MouseButtonRelease && widget.isEnabled())
                if (event.type() != QEvent::MouseMove || mouse.buttons() == Qt::NoButton)
                    target = WakeLightAt(mouse.position().toPoint());
            if (!target) return false;
            passedTo_ = mouse.buttons() == Qt::NoButton ? nullptr : target;
            QMouseEvent passed(event.type(), target->mapFromGlobal(mouse.globalPosition()), mouse.globalPosition(),
                               mouse.button(), mouse.buttons(), mouse.modifiers());
            QCoreApplication::sendEvent(target, &passed);
            return true;
        }
        case QEvent::ContextMenu: {
            const auto& context = static_cast<QContextMenuEvent&>(event);
            if (context.reason() != QContextMenuEvent::Mouse || !widget.isEnabled()) return false;
            QWidget* target = WakeLightAt(context.pos());
            if (!target) return false;
            QContextMenuEvent passed(context.reason(), target->mapFromGlobal(context.globalPos()), context.globalPos(),
                                     context.modifiers());
            QCoreApplication::sendEvent(target, &passed);
            return true;
        }
        default:
            return false;
    }
}

void WidgetPeer::FocusChanged(QWidget&, bool in) {
    auto* window = ObjectCast<TWinControl>(&control_);
    if (!window) return;
    Guard(window, [&] { in ? window->ProcessFocusIn() : window->ProcessFocusOut(); });
}

bool WidgetPeer::KeyPressed(QKeyEvent& event, const NativeCall& native) {
    auto* window = ObjectCast<TWinControl>(&control_);
    if (!window) return native(&event);
    const QPointer<QWidget> alive(widget_);
    PeerLink* link = dynamic_cast<PeerLink*>(widget_);
    event.accept();
    if (drag::Source() && event.key() == Qt::Key_Escape) {
        Guard(window, [] { drag::Finish(false); });
        return true;
    }
    if (uint16_t key = ToVirtualKey(event)) {
        bool taken = false;
        Guard(window, [&] { taken = window->ProcessKeyDown(key, ToShiftState(event.modifiers())); });
        if (taken || !alive || !link || !link->Peer()) return true;
    }
    const QString text = event_detail::GivesCharacters(event) ? event.text() : QString();
    if (text.isEmpty()) {
        native(&event);
        event.accept();  // the parents have had their turn
        return true;
    }
    const QString kept = event_detail::OfferCharacters(*window, text, alive, *link);
    if (!alive || !link->Peer() || kept.isEmpty()) return true;
    if (kept == text) {
        native(&event);
    } else {
        QKeyEvent changed(event.type(), kept[0].unicode() < event_detail::kFirstPrinted ? event.key() : 0,
                          Qt::NoModifier, kept);
        native(&changed);
    }
    event.accept();
    return true;
}

bool WidgetPeer::KeyReleased(QKeyEvent& event, const NativeCall& native) {
    auto* window = ObjectCast<TWinControl>(&control_);
    if (!window) return native(&event);
    const QPointer<QWidget> alive(widget_);
    event.accept();
    if (uint16_t key = ToVirtualKey(event); key != 0 && !event.isAutoRepeat()) {
        bool taken = false;
        Guard(window, [&] { taken = window->ProcessKeyUp(key, ToShiftState(event.modifiers())); });
        if (taken || !alive) return true;
    }
    native(&event);
    event.accept();
    return true;
}

bool WidgetPeer::TextComposed(QInputMethodEvent& event, const NativeCall& native) {
    auto* window = ObjectCast<TWinControl>(&control_);
    auto* link = dynamic_cast<PeerLink*>(widget_);
    if (!window || !link || event.commitString().isEmpty()) return native(&event);
    const QPointer<QWidget> alive(widget_);
    const QString kept = event_detail::OfferCharacters(*window, event.commitString(), alive, *link);
    if (!alive || !link->Peer()) return true;
    QInputMethodEvent changed(event.preeditString(), event.attributes());
    changed.setCommitString(kept, event.replacementStart(), event.replacementLength());
    native(&changed);
    event.accept();
    return true;
}

bool WidgetPeer::MouseHappened(QWidget& widget, QEvent& event, const NativeCall& native) {
    TControl& control = control_;
    const Watch watch(*this);
    const auto alive = [&] { return static_cast<bool>(watch); };
    const auto place = [&](const QPointF& global) { return ClientWidget()->mapFromGlobal(global).toPoint(); };
    switch (event.type()) {
        case QEvent::Enter:
        case QEvent::Leave: {
            const bool result = native(&event);
            const bool entered = event.type() == QEvent::Enter;
            if (alive())
                Guard(&control, [&] {
                    Application()->SetHint(event_detail::LongHintFor(entered ? &control : control.Parent()));
                    if (!alive()) return;
                    entered ? control.ProcessMouseEnter() : control.ProcessMouseLeave();
                });
            return result;
        }
        case QEvent::Wheel: {
            auto& wheel = static_cast<QWheelEvent&>(event);
            auto* window = ObjectCast<TWinControl>(&control);
            const TShiftState shift = ToShiftState(wheel.modifiers(), wheel.buttons());
            const QPoint global = wheel.globalPosition().toPoint();
            const TPoint at{global.x(), global.y()};
            bool handled = false;
            const int delta = wheel.angleDelta().y();
            if (window && delta != 0) Guard(&control, [&] { handled = window->DoMouseWheel(shift, delta, at); });
            if (!handled && alive() && WheelsByItself()) {
                native(&event);
                handled = event.isAccepted();
            }
            if (!handled && alive() && control.Parent())
                Guard(&control, [&] { control.Parent()->ProcessMouseWheel(shift, delta, at); });
            event.accept();
            return true;
        }
        case QEvent::ContextMenu: {
            auto& context = static_cast<QContextMenuEvent&>(event);
            bool handled = false;
            if (widget.isEnabled()) {
                const QPoint at = place(context.globalPos());
                Guard(&control, [&] { handled = control.ProcessContextPopup(at.x(), at.y()); });
            }
            if (!handled && alive()) native(&event);
            event.accept();
            return true;
        }
        default:
            break;
    }
    if (!widget.isEnabled()) return native(&event);
    auto& mouse = static_cast<QMouseEvent&>(event);
    TShiftState shift = ToShiftState(mouse.modifiers(), mouse.buttons());
    const TMouseButton button = ToMouseButton(mouse.button());
    const QPointF global = mouse.globalPosition();
    if (drag::Source() && event.type() != QEvent::MouseButtonPress) {
        TControl* target = ControlOfWidget(QApplication::widgetAt(global.toPoint()));
        WidgetPeer* targetPeer = PeerOfControl(target);
        if (QWidget* light = targetPeer
                                 ? targetPeer->WakeLightAt(targetPeer->ClientWidget()->mapFromGlobal(global).toPoint())
                                 : nullptr) {
            target = ControlOfWidget(light);
            targetPeer = PeerOfControl(target);
        }
        const QPoint at = targetPeer ? targetPeer->ClientWidget()->mapFromGlobal(global).toPoint() : QPoint();
        Guard(&control, [&] {
            const bool accepts = drag::MoveTo(target, at.x(), at.y());
            if (event.type() == QEvent::MouseButtonRelease) drag::Finish(accepts);
        });
        if (alive()) native(&event);
        event.accept();
        return true;
    }
    native(&event);
    event.accept();  // the parents have their own controls to hear it
    if (!alive()) return true;
    const QPoint at = place(global);
    Guard(&control, [&] {
        switch (event.type()) {
            case QEvent::MouseButtonPress:
                control.ProcessMouseDown(button, shift, at.x(), at.y());
                break;
            case QEvent::MouseButtonDblClick:
                if (TakesDoubleClicks())
                    control.ProcessDblClick(button, shift, at.x(), at.y());
                else
                    control.ProcessMouseDown(button, shift, at.x(), at.y());
                break;
            case QEvent::MouseButtonRelease:
                control.ProcessMouseUp(button, shift, at.x(), at.y());
                break;
            default:
                control.ProcessMouseMove(shift, at.x(), at.y());
                break;
        }
    });
    return true;
}

}  // namespace vyn::qt
