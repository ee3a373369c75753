#pragma once

#include <QEvent>
#include <QWidget>

#include "platform/controls/control.h"

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

}  // namespace vyn::qt
