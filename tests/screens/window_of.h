#pragma once

#include <QWidget>

#include "platform/text/exceptions.h"
#include "qt/widget_peer.h"

namespace vyn::screens {

// The widget of a shown control that takes its keys.
inline QWidget* WidgetOf(const TControl& control) {
    qt::WidgetPeer* peer = qt::PeerOfControl(&control);
    if (!peer) throw Exception("the control has no window");
    return peer->FocusTarget();
}

// Where the middle of a control is: a widget, and a place in it. A control that nobody has come to yet is a picture on
// the window that it stands in.
struct PlaceInWindow {
    QWidget* Widget;
    QPoint Place;
};
inline PlaceInWindow MiddleOf(const TControl& control) {
    QPoint place(control.Width() / 2, control.Height() / 2);
    for (const TControl* at = &control; at; at = at->Parent()) {
        qt::WidgetPeer* peer = qt::PeerOfControl(at);
        QWidget* widget = !peer ? nullptr : at == &control ? peer->FocusTarget() : peer->ClientWidget();
        if (widget) return {widget, place};
        place += QPoint(at->Left(), at->Top());
    }
    throw Exception("the control has no window");
}

}  // namespace vyn::screens
