#pragma once

#include <QtCore/qnamespace.h>
#include <QPainter>

#include "platform/controls/control_types.h"
#include "qt/widget_peer.h"

namespace vyn::qt {

// A light widget that its peer draws (Peer::Paint).
template <class PeerType>
class Painted final : public Native<QWidget> {
  public:
    Painted(PeerType* peer, QWidget* parent) : Native<QWidget>(peer, parent) {}

  protected:
    void paintEvent(QPaintEvent*) override {
        auto* peer = static_cast<PeerType*>(this->Peer());
        if (!peer) return;
        QPainter painter(this);
        peer->Paint(painter);
    }
};

inline int AlignmentFlags(TAlignment alignment) {
    switch (alignment) {
        case taLeftJustify:
            return Qt::AlignLeft;
        case taRightJustify:
            return Qt::AlignRight;
        case taCenter:
            return Qt::AlignHCenter;
    }
    return Qt::AlignLeft;
}

// Tab is the form's affair; this only says whether the mouse gives the keyboard and what assistive technology hears.
inline Qt::FocusPolicy FocusPolicyOf(const TWinControl& control) {
    return control.TabStop() ? Qt::StrongFocus : Qt::ClickFocus;
}

}  // namespace vyn::qt
