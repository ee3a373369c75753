#include "qt/light_peer.h"

#include <QAccessible>
#include <QRegion>
#include <algorithm>
#include <optional>

#include "platform/objects/class_info.h"
#include "qt/looks.h"

namespace vyn::qt {

namespace light_detail {

QRect BoundsOf(const TControl& control) { return {control.Left(), control.Top(), control.Width(), control.Height()}; }

bool Overlap(const TControl& a, const TControl& b) { return BoundsOf(a).intersects(BoundsOf(b)); }

// The controls inside that have a peer, lowest first: graphic controls lie under all windowed ones.
template <class Visit>
void ForEachPeer(const TWinControl& parent, Visit visit) {
    for (TControl* graphic : parent.GraphicControls())
        if (WidgetPeer* peer = PeerOfControl(graphic)) visit(*graphic, *peer);
    for (TControl* window : parent.WindowedControls())
        if (WidgetPeer* peer = PeerOfControl(window)) visit(*window, *peer);
}

// Widgets lie above everything that their parent draws.
bool LiesOnAWidget(const TControl& control, const TWinControl& parent) {
    const QRect bounds = BoundsOf(control);
    const auto on = [&](const TControl& other) {
        const WidgetPeer* peer = PeerOfControl(&other);
        return peer && peer->Widget() && BoundsOf(other).intersects(bounds);
    };
    for (const TControl* graphic : parent.GraphicControls()) {
        if (graphic == &control) return false;
        if (on(*graphic)) return true;
    }
    for (const TControl* window : parent.WindowedControls()) {
        if (window == &control) return false;
        if (on(*window)) return true;
    }
    return false;
}

// The peers of the controls inside that are drawn by their parent, lowest first.
template <class Visit>
void ForEachLight(const TControl& parent, Visit visit) {
    if (const auto* window = ObjectCast<TWinControl>(&parent))
        ForEachPeer(*window, [&](TControl& control, WidgetPeer& peer) {
            if (!peer.Widget()) visit(control, peer);
        });
}

}  // namespace light_detail

LightPeer::~LightPeer() {
    // What goes with its parent leaves nothing to draw.
    const TWinControl* parent = Control().Parent();
    if (widget_ || !parent || parent->HasState(csDestroying)) return;
    if (QWidget* host = Host()) host->update(shown_);
}

QWidget* LightPeer::Host() const { return ClientOf(Control().Parent()); }

bool LightPeer::CanBeLight() const {
    const TControl& control = Control();
    const TWinControl* parent = control.Parent();
    // Only widgets of ours draw what lies on them.
    const auto* link = dynamic_cast<const PeerLink*>(Host());
    if (!parent || !link || !link->Peer() || QAccessible::isActive()) return false;
    if (control.Cursor() != crDefault || control.Color() != parent->Color()) return false;
    if (control.EffectiveFont().Color() != parent->EffectiveFont().Color()) return false;
    const auto* window = ObjectCast<TWinControl>(&control);
    if (window && (window->ControlCount() > 0 || window->Focused())) return false;
    return !light_detail::LiesOnAWidget(control, *parent);
}

void LightPeer::Create() {
    if (!CanBeLight()) {
        WidgetPeer::Create();
        return;
    }
    TakeState();
    Repaint();
}

void LightPeer::BecomeWidget() {
    if (widget_) return;
    if (QWidget* host = Host()) host->update(shown_);
    WidgetPeer::Create();
    const Updating updating(*this);
    ApplyZOrder();
    WakeLightsAbove();
}

void* LightPeer::NativeHandle() {
    BecomeWidget();
    return WidgetPeer::NativeHandle();
}

void LightPeer::Changed(PeerChange what) {
    if (widget_) {
        WidgetPeer::Changed(what);
        return;
    }
    if (what == PeerChange::Focus || !CanBeLight()) {
        BecomeWidget();
        WidgetPeer::Changed(what);
        return;
    }
    switch (what) {
        case PeerChange::Text:
        case PeerChange::Picture:
        case PeerChange::Style:
        case PeerChange::Font:
        case PeerChange::Selection:
            TakeState();
            Repaint();
            break;
        case PeerChange::Bounds:
        case PeerChange::Color:
        case PeerChange::Enabled:
        case PeerChange::Visible:
        case PeerChange::ZOrder:
        case PeerChange::Parent:
        case PeerChange::Invalidate:
            Repaint();
            break;
        case PeerChange::Cursor:
        case PeerChange::Hint:
        case PeerChange::Items:
        case PeerChange::Scroll:
        case PeerChange::Menu:
        case PeerChange::Focus:
        case PeerChange::WindowState:
        case PeerChange::Modal:
        case PeerChange::Close:
        case PeerChange::DropDown:
        case PeerChange::EditLabel:
            break;
    }
}

void LightPeer::Repaint() {
    const QRect bounds = Control().Visible() ? light_detail::BoundsOf(Control()) : QRect();
    // What was never shown comes with its parent's first painting.
    if (QWidget* host = Host(); host && host->isVisible()) {
        if (shown_ != bounds) host->update(shown_);
        host->update(bounds);
    }
    shown_ = bounds;
}

QWidget* LightPeer::MakeWidget(QWidget* parent) { return new Painted<LightPeer>(this, parent); }

void LightPeer::ApplyText() {
    TakeState();
    widget_->update();
}

void LightPeer::Paint(QPainter& painter) {
    PaintOn({painter, widget_->rect(), *widget_, *widget_->style(), widget_->palette(), widget_->isEnabled()});
}

void LightPeer::PaintLight(QPainter& painter, const QWidget& host) {
    const TControl& control = Control();
    const bool ownFont = !SameGlyphs(control.EffectiveFont(), control.Parent()->EffectiveFont());
    if (ownFont) painter.setFont(ToQFont(control.EffectiveFont()));
    const bool clipped = !StaysInside(painter.fontMetrics());
    if (clipped) {
        painter.save();
        painter.setClipRect(light_detail::BoundsOf(control), Qt::IntersectClip);
    }
    painter.translate(control.Left(), control.Top());
    const QRect rect(0, 0, control.Width(), control.Height());
    const bool enabled = host.isEnabled() && control.Enabled();
    if (enabled == host.isEnabled()) {
        PaintOn({painter, rect, host, *host.style(), host.palette(), enabled});
    } else {
        QPalette palette = host.palette();
        palette.setCurrentColorGroup(QPalette::Disabled);
        PaintOn({painter, rect, host, *host.style(), palette, enabled});
    }
    painter.translate(-control.Left(), -control.Top());
    if (clipped) painter.restore();
    if (ownFont) painter.setFont(host.font());
}

int LightPeer::WidthOf(const QFontMetrics& metrics, const QString& text) {
    if (text.isEmpty()) return 0;
    int width = std::max(-metrics.rightBearing(text.back()), 0);
    for (const QChar each : text) width += metrics.horizontalAdvance(each);
    return width;
}

void WidgetPeer::PaintLights(QWidget& client, const QRegion& exposed) {
    std::optional<QPainter> painter;
    light_detail::ForEachLight(control_, [&](TControl& control, WidgetPeer& peer) {
        if (!control.Visible() || !exposed.intersects(light_detail::BoundsOf(control))) return;
        if (!painter) painter.emplace(&client);
        peer.PaintLight(*painter, client);
    });
}

void WidgetPeer::WakeLights() {
    std::vector<WidgetPeer*> found;
    light_detail::ForEachLight(control_, [&](TControl&, WidgetPeer& peer) { found.push_back(&peer); });
    for (WidgetPeer* peer : found) peer->BecomeWidget();
}

void WidgetPeer::WakeLightsAbove() {
    const TWinControl* parent = control_.Parent();
    if (!parent) return;
    std::vector<WidgetPeer*> found;
    bool above = false;
    light_detail::ForEachPeer(*parent, [&](const TControl& other, WidgetPeer& peer) {
        if (above && !peer.Widget() && light_detail::Overlap(other, control_)) found.push_back(&peer);
        above = above || &other == &control_;
    });
    for (WidgetPeer* peer : found) peer->BecomeWidget();
}

QWidget* WidgetPeer::WakeLightAt(const QPoint& place) {
    WidgetPeer* top = nullptr;
    light_detail::ForEachLight(control_, [&](TControl& control, WidgetPeer& peer) {
        if (control.Visible() && control.Enabled() && peer.TakesMouse() &&
            light_detail::BoundsOf(control).contains(place))
            top = &peer;
    });
    if (!top) return nullptr;
    top->BecomeWidget();
    return top->Widget();
}

}  // namespace vyn::qt
