#pragma once

#include <QEvent>
#include <QWidget>

#include "platform/controls/control.h"
#include "qt/painted.h"

namespace vyn::qt {

// The mouse's way with a button that is painted by hand: sunken while the left button is down above it, pressed when it
// is let go above it.
class Press {
  public:
    // Follows one event of the widget, which is painted anew when its look changes. True when the event completes a
    // press of an enabled widget: the caller runs the press, which may free both.
    bool Follow(QWidget& widget, QEvent& event);
    bool Sunken() const { return down_ && over_; }

  private:
    bool down_ = false;
    bool over_ = false;
};

// What assistive technology calls a button: its caption, else its short hint.
QString ButtonName(const TControl& button);

// The peer of a control that is pressed by the mouse and painted by the peer (Peer::Paint).
template <class Peer, class C>
class PressedPeer : public PeerOf<C> {
  public:
    using PeerOf<C>::PeerOf;

    bool MouseHappened(QWidget& widget, QEvent& event, const WidgetPeer::NativeCall& native) override {
        const WidgetPeer::Watch alive(*this);
        if (press_.Follow(*this->widget_, event)) Guard(&this->Self(), [this] { this->Self().ProcessPress(); });
        if (!alive) return true;
        return PeerOf<C>::MouseHappened(widget, event, native);
    }
    bool TakesDoubleClicks() const override { return false; }
    QString AccessibleName() const override { return ButtonName(this->Self()); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* widget = new Painted<Peer>(static_cast<Peer*>(this), parent);
        widget->setAttribute(Qt::WA_Hover);
        return widget;
    }
    bool Sunken() const { return press_.Sunken(); }

  private:
    Press press_;
};

}  // namespace vyn::qt
