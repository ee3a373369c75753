#pragma once

#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <utility>

#include "platform/controls/control.h"
#include "platform/controls/control_peer.h"
#include "platform/controls/win_control.h"
#include "platform/system/application.h"

class QKeyEvent;
class QInputMethodEvent;
class QPainter;
class QRegion;

namespace vyn::qt {

class WidgetPeer;

// What ties a native widget to its peer: the widget asks the peer to handle its events for as long as there is one.
// Each side clears the tie when it goes, so either may go first.
class PeerLink {
  public:
    explicit PeerLink(WidgetPeer* peer);
    virtual ~PeerLink();
    PeerLink(const PeerLink&) = delete;
    PeerLink& operator=(const PeerLink&) = delete;
    WidgetPeer* Peer() const { return peer_; }

  protected:
    using EventCall = bool (*)(QWidget* widget, QEvent* event);
    // Feeds the event to the control and, where the control leaves it, to the widget (`native`).
    static bool Dispatch(PeerLink& link, QWidget* widget, QEvent* event, EventCall native);
    static bool Concerns(QEvent::Type type) {
        switch (type) {
            case QEvent::KeyPress:
            case QEvent::KeyRelease:
            case QEvent::ShortcutOverride:
            case QEvent::InputMethod:
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick:
            case QEvent::MouseMove:
            case QEvent::Enter:
            case QEvent::Leave:
            case QEvent::Wheel:
            case QEvent::ContextMenu:
            case QEvent::ToolTip:
            case QEvent::FocusIn:
            case QEvent::FocusOut:
            case QEvent::Resize:
            case QEvent::Close:
            case QEvent::WindowActivate:
            case QEvent::WindowDeactivate:
            case QEvent::WindowStateChange:
            case QEvent::Move:
                return true;
            default:
                return false;
        }
    }
    // After the widget has drawn itself: what lies on it without a widget of its own.
    static void PaintLights(PeerLink& link, QWidget* widget, QEvent* event);

  private:
    friend class WidgetPeer;
    WidgetPeer* peer_;
    PeerLink* next_;  // of the same peer
};

// A native widget of class W that belongs to a peer. Needs no meta object of its own, costs one pointer.
template <class W>
class Native : public W, public PeerLink {
  public:
    template <class... A>
    explicit Native(WidgetPeer* peer, A&&... arguments) : W(std::forward<A>(arguments)...), PeerLink(peer) {}

    bool event(QEvent* event) override {
        if (Peer() && event->type() == QEvent::Paint) {
            const bool result = W::event(event);
            PaintLights(*this, this, event);
            return result;
        }
        if (!Peer() || !Concerns(event->type())) return W::event(event);
        return Dispatch(*this, this, event,
                        [](QWidget* self, QEvent* e) { return static_cast<Native*>(self)->W::event(e); });
    }

  protected:
    // Which control comes next is the form's decision.
    bool focusNextPrevChild(bool) override { return false; }
};

// The same for widgets that scroll: the mouse comes to their viewport.
template <class W>
class NativeScrolling : public Native<W> {
  public:
    using Native<W>::Native;

  protected:
    bool viewportEvent(QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick:
            case QEvent::MouseMove:
            case QEvent::Wheel:
            case QEvent::ContextMenu:
            case QEvent::ToolTip:
                if (!this->Peer()) break;
                return PeerLink::Dispatch(*this, this, event, [](QWidget* self, QEvent* e) {
                    return static_cast<NativeScrolling*>(self)->W::viewportEvent(e);
                });
            default:
                break;
        }
        return W::viewportEvent(event);
    }
};

// Calls into the framework never throw through the toolkit: what nobody caught goes to the application.
template <class F>
void Guard(TObject* sender, F&& call) {
    try {
        call();
    } catch (...) {
        Application()->HandleException(sender);
    }
}

// Widgets must not be deleted while one of their events is on the stack: then they go when it has returned.
void DisposeWidget(QWidget* widget);

// The usual peer: one widget for one control. Made by the factory: construction, then Create.
//
// The widget is a child of the parent control's client widget. Fonts and palettes are set only where they differ from
// what the widget inherits, so a form of standard looks carries none. Main thread only.
class WidgetPeer : public ControlPeer {
  public:
    explicit WidgetPeer(TControl& control) : control_(control) {}
    ~WidgetPeer() override;
    WidgetPeer(const WidgetPeer&) = delete;
    WidgetPeer& operator=(const WidgetPeer&) = delete;

    // Makes the widget and brings it into the control's state.
    virtual void Create();

    TControl& Control() const { return control_; }
    QWidget* Widget() const { return widget_; }
    // Where the widgets of the controls inside go; its origin is the control's client origin.
    virtual QWidget* ClientWidget() const { return widget_; }
    // The same of a control's parent, which becomes a widget for it; null without one.
    static QWidget* ClientOf(const TControl* parent);
    // Which widget has the keyboard for the control.
    virtual QWidget* FocusTarget() const { return widget_; }

    void Changed(PeerChange what) override;
    bool ClientOrigin(TPoint& origin) const override;
    void* NativeHandle() override { return widget_; }
    void WindowGoes() override;

    // Events from the widget (or one of its parts); true: taken. `native` passes the event to the widget itself.
    using NativeCall = std::function<bool(QEvent*)>;
    virtual bool KeyPressed(QKeyEvent& event, const NativeCall& native);
    virtual bool KeyReleased(QKeyEvent& event, const NativeCall& native);
    virtual bool TextComposed(QInputMethodEvent& event, const NativeCall& native);
    virtual bool MouseHappened(QWidget& widget, QEvent& event, const NativeCall& native);
    // Resize, move, close, activation: what only forms care for. True: taken.
    virtual bool WindowHappened(QWidget& widget, QEvent& event) { return false; }
    virtual void FocusChanged(QWidget& widget, bool in);
    // The wheel turns the widget itself (a text, a list), when the control leaves it.
    virtual bool WheelsByItself() const { return false; }
    // False: the second of two quick presses is a press like any other.
    virtual bool TakesDoubleClicks() const { return true; }

    // Controls without a widget (light_peer.h). The peer itself: draws the control on its parent's client widget, makes
    // a widget after all, says whether the mouse can be over it.
    virtual void PaintLight(QPainter& painter, const QWidget& host) {}
    virtual void BecomeWidget() {}
    virtual bool TakesMouse() const { return true; }
    // Their parent: draws them, and makes widgets of all or of the topmost at a place of the client widget (null:
    // none).
    void PaintLights(QWidget& client, const QRegion& exposed);
    void WakeLights();
    // Makes widgets of what the parent draws above this control, which has a widget.
    void WakeLightsAbove();
    QWidget* WakeLightAt(const QPoint& place);

    // For assistive technology, filled in when somebody listens (accessibility.h).
    virtual QString AccessibleName() const;
    virtual QString AccessibleDescription() const;

  protected:
    // The widget, without any state; `parent` may be null for windows.
    virtual QWidget* MakeWidget(QWidget* parent) = 0;
    virtual void ApplyBounds();
    virtual void ApplyText() {}
    virtual void ApplyStyle() {}
    virtual void ApplyItems() {}
    virtual void ApplySelection() {}
    virtual void ApplyFont();
    virtual void ApplyColor();
    virtual void ApplyVisible();
    virtual void ApplyEnabled();
    virtual void ApplyCursor();
    virtual void ApplyZOrder();
    // The palette entry that Color means for this class; NoRole: the class has native colours only.
    virtual QPalette::ColorRole BackgroundRole() const { return QPalette::Window; }
    // The colour that is native for the class.
    virtual TColor NativeColor() const { return clBtnFace; }

    // What signals are connected to, instead of the widget: a widget may outlive its peer for the rest of an event.
    QObject* Context();
    // Says whether the peer still is there, after a call into the control that may have freed it.
    class Watch {
      public:
        explicit Watch(const WidgetPeer& peer) : peer_(&peer), link_(peer.mainLink_), widget_(peer.widget_) {}
        explicit operator bool() const { return widget_ && link_ && link_->Peer() == peer_; }

      private:
        const WidgetPeer* peer_;
        const PeerLink* link_;
        QPointer<QWidget> widget_;
    };

    QWidget* widget_ = nullptr;
    // The peer itself is changing the widget: what the widget tells is no news.
    int updating_ = 0;
    class Updating {
      public:
        explicit Updating(WidgetPeer& peer) : peer_(peer) { ++peer_.updating_; }
        ~Updating() { --peer_.updating_; }
        Updating(const Updating&) = delete;
        Updating& operator=(const Updating&) = delete;

      private:
        WidgetPeer& peer_;
    };

  private:
    friend class PeerLink;
    // Passes what the mouse did on to a control that had no widget when the toolkit chose who hears it.
    bool PassToLight(QWidget& widget, QEvent& event);

    TControl& control_;
    QPointer<QWidget> passedTo_;  // while a button is down
    PeerLink* mainLink_ = nullptr;
    PeerLink* links_ = nullptr;
    std::unique_ptr<QObject> context_;
    bool ownFont_ = false;
    bool ownPalette_ = false;
};

// The peer with its control's class.
template <class C>
class PeerOf : public WidgetPeer {
  public:
    explicit PeerOf(TControl& control) : WidgetPeer(control) {}

  protected:
    C& Self() const { return static_cast<C&>(Control()); }
};

// The peer of a control, when it is one of this toolkit's.
inline WidgetPeer* PeerOfControl(const TControl* control) {
    return control ? static_cast<WidgetPeer*>(control->Peer()) : nullptr;
}
// Makes a shown window the one with the keyboard.
void ActivateWindow(QWidget* window);
// The nearest control that a widget belongs to; null for widgets of others.
TControl* ControlOfWidget(QWidget* widget);
// What the label says that takes the keyboard to a control, without its mnemonic and colon; empty without one.
QString LabelOf(const TControl& control);

}  // namespace vyn::qt
