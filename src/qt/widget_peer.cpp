#include "qt/widget_peer.h"

#include <QApplication>
#include <QPalette>
#include <cstdlib>

#include "platform/controls/labels.h"
#include "platform/objects/class_info.h"
#include "qt/application.h"
#include "qt/looks.h"
#include "qt/text.h"

namespace vyn::qt {

namespace peer_detail {

// Differences of brightness, of 255.
constexpr int kLeastContrast = 70;
constexpr int kMiddleGray = 127;

// The caption of the label whose FocusControl the control is; null without one.
const AnsiString* FindLabelFor(const TWinControl& parent, const TControl& control) {
    for (const TControl* graphic : parent.GraphicControls())
        if (const auto* label = ObjectCast<TCustomLabel>(graphic); label && label->FocusControl() == &control)
            return &label->Caption();
    for (const TWinControl* window : parent.WindowedControls())
        if (const auto* label = ObjectCast<TCustomStaticText>(window); label && label->FocusControl() == &control)
            return &label->Caption();
    return nullptr;
}

}  // namespace peer_detail

WidgetPeer::~WidgetPeer() {
    for (PeerLink* link = links_; link; link = link->next_) link->peer_ = nullptr;
    if (QWidget* widget = std::exchange(widget_, nullptr)) DisposeWidget(widget);
}

void WidgetPeer::WindowGoes() {
    if (!widget_ || !widget_->isWindow()) return;
    // Hidden without a word to the control, as when the widget is deleted.
    for (PeerLink* link = links_; link; link = link->next_) link->peer_ = nullptr;
    widget_->hide();
    for (PeerLink* link = links_; link; link = link->next_) link->peer_ = this;
}

PeerLink::PeerLink(WidgetPeer* peer) : peer_(peer), next_(peer->links_) { peer->links_ = this; }

PeerLink::~PeerLink() {
    if (!peer_) return;
    for (PeerLink** at = &peer_->links_; *at; at = &(*at)->next_)
        if (*at == this) {
            *at = next_;
            break;
        }
    if (peer_->mainLink_ != this) return;
    peer_->mainLink_ = nullptr;
    peer_->widget_ = nullptr;
}

QObject* WidgetPeer::Context() {
    if (!context_) context_ = std::make_unique<QObject>();
    return context_.get();
}

QWidget* WidgetPeer::ClientOf(const TControl* parent) {
    WidgetPeer* peer = PeerOfControl(parent);
    if (!peer) return nullptr;
    peer->BecomeWidget();
    return peer->ClientWidget();
}

void WidgetPeer::Create() {
    QWidget* parent = ClientOf(control_.Parent());
    const Updating updating(*this);
    widget_ = MakeWidget(parent);
    mainLink_ = dynamic_cast<PeerLink*>(widget_);
    widget_->setMouseTracking(true);
    ApplyFont();
    ApplyColor();
    ApplyBounds();
    ApplyText();
    ApplyStyle();
    ApplyItems();
    ApplySelection();
    if (!control_.Enabled()) ApplyEnabled();
    if (control_.Cursor() != crDefault) ApplyCursor();
    if (!ObjectCast<TWinControl>(&control_)) ApplyZOrder();
    ApplyVisible();
}

void WidgetPeer::Changed(PeerChange what) {
    if (!widget_) return;
    if (what == PeerChange::Focus) {
        // Handlers of entering run meanwhile, and may free the control.
        QWidget* target = FocusTarget();
        if (!target || target->hasFocus()) return;
        const QPointer<QWidget> alive(target);
        target->setFocus(Qt::OtherFocusReason);
        if (alive) ActivateWindow(target->window());
        return;
    }
    const Updating updating(*this);
    switch (what) {
        case PeerChange::Bounds:
            ApplyBounds();
            WakeLightsAbove();
            break;
        case PeerChange::Text:
            ApplyText();
            break;
        case PeerChange::Font:
            ApplyFont();
            ApplyColor();
            break;
        case PeerChange::Color:
            ApplyColor();
            break;
        case PeerChange::Enabled:
            ApplyEnabled();
            break;
        case PeerChange::Visible:
            ApplyVisible();
            WakeLightsAbove();
            break;
        case PeerChange::Cursor:
            ApplyCursor();
            break;
        case PeerChange::ZOrder:
            ApplyZOrder();
            WakeLightsAbove();
            break;
        case PeerChange::Parent:
            if (QWidget* parent = ClientOf(control_.Parent())) {
                widget_->setParent(parent);
                ApplyBounds();
                ApplyVisible();
                WakeLightsAbove();
            }
            break;
        case PeerChange::Style:
            ApplyStyle();
            widget_->update();
            break;
        case PeerChange::Items:
            ApplyItems();
            break;
        case PeerChange::Selection:
            ApplySelection();
            break;
        case PeerChange::Picture:
        case PeerChange::Invalidate:
            widget_->update();
            break;
        case PeerChange::Focus:
        case PeerChange::Hint:  // asked for when it shows
        case PeerChange::Scroll:
        case PeerChange::Menu:
        case PeerChange::WindowState:
        case PeerChange::Modal:
        case PeerChange::Close:
        case PeerChange::DropDown:
        case PeerChange::EditLabel:
            break;
    }
}

bool WidgetPeer::ClientOrigin(TPoint& origin) const {
    const QWidget* client = ClientWidget();
    if (!client) return false;
    const QPoint at = client->mapToGlobal(QPoint(0, 0));
    origin = {at.x(), at.y()};
    return true;
}

void WidgetPeer::ApplyBounds() {
    widget_->setGeometry(control_.Left(), control_.Top(), control_.Width(), control_.Height());
}

void WidgetPeer::ApplyFont() {
    const TFont& font = control_.EffectiveFont();
    if (widget_->isWindow()) {
        if (const QFont own = ToQFont(font); own != widget_->font()) widget_->setFont(own);
        return;
    }
    const TControl* parent = control_.Parent();
    const bool same = parent && SameGlyphs(font, parent->EffectiveFont());
    if (!ownFont_ && same) return;
    ownFont_ = !same;
    widget_->setFont(ownFont_ ? ToQFont(font) : QFont());
}

void WidgetPeer::ApplyColor() {
    const TFont& font = control_.EffectiveFont();
    const TControl* parent = widget_->isWindow() ? nullptr : control_.Parent();
    const QPalette::ColorRole role = BackgroundRole();
    const TColor inheritedText = parent ? parent->EffectiveFont().Color() : clWindowText;
    const bool ownText = font.Color() != inheritedText;
    bool ownBackground = false;
    if (role == QPalette::Window)
        ownBackground = control_.Color() != (parent ? parent->Color() : clBtnFace);
    else if (role != QPalette::NoRole)
        ownBackground = control_.Color() != NativeColor();
    if (!ownText && !ownBackground) {
        if (!ownPalette_) return;
        ownPalette_ = false;
        widget_->setPalette(QPalette());
        if (role == QPalette::Window && !widget_->isWindow()) widget_->setAutoFillBackground(false);
        return;
    }
    ownPalette_ = true;
    const QPalette desktop = QApplication::palette();
    QPalette palette;
    palette.setResolveMask(0);
    if (ownText) {
        const QColor color = ToQColor(font.Color(), desktop);
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
            palette.setColor(group, QPalette::WindowText, color);
            palette.setColor(group, QPalette::Text, color);
            palette.setColor(group, QPalette::ButtonText, color);
        }
    }
    if (ownBackground && !ownText && role != QPalette::NoRole) {
        // A fixed colour below a desktop's text: on the other kind of desktop that text could not be read.
        const QColor background = ToQColor(control_.Color(), desktop);
        const QColor text = ToQColor(font.Color(), desktop);
        if (std::abs(qGray(background.rgb()) - qGray(text.rgb())) < peer_detail::kLeastContrast) {
            const QColor readable = qGray(background.rgb()) > peer_detail::kMiddleGray ? Qt::black : Qt::white;
            const QPalette::ColorRole textRole = role == QPalette::Base ? QPalette::Text : QPalette::WindowText;
            palette.setColor(QPalette::Active, textRole, readable);
            palette.setColor(QPalette::Inactive, textRole, readable);
        }
    }
    if (ownBackground) {
        palette.setColor(role, ToQColor(control_.Color(), desktop));
        if (role == QPalette::Window && !widget_->isWindow()) widget_->setAutoFillBackground(true);
    }
    widget_->setPalette(palette);
}

void WidgetPeer::ApplyVisible() {
    const bool visible = control_.Visible();
    if (!visible) {
        widget_->hide();
        return;
    }
    // A child that was never hidden shows together with its parent, which is quicker than by itself.
    const QWidget* parent = widget_->parentWidget();
    if (widget_->testAttribute(Qt::WA_WState_ExplicitShowHide) || (parent && parent->isVisible())) widget_->show();
}

void WidgetPeer::ApplyEnabled() { widget_->setEnabled(control_.Enabled()); }

void WidgetPeer::ApplyCursor() {
    if (control_.Cursor() == crDefault)
        widget_->unsetCursor();
    else
        widget_->setCursor(ToQCursor(control_.Cursor()));
}

void WidgetPeer::ApplyZOrder() {
    const TWinControl* parent = control_.Parent();
    if (!parent) return;
    // Under the next one that has a widget; graphic controls lie under all windowed ones.
    bool after = false;
    for (const TControl* graphic : parent->GraphicControls()) {
        if (WidgetPeer* peer = PeerOfControl(graphic); after && peer && peer->Widget()) {
            widget_->stackUnder(peer->Widget());
            return;
        }
        after = after || graphic == &control_;
    }
    for (const TWinControl* window : parent->WindowedControls()) {
        if (WidgetPeer* peer = PeerOfControl(window); after && peer && peer->Widget()) {
            widget_->stackUnder(peer->Widget());
            return;
        }
        after = after || window == &control_;
    }
    if (!widget_->isHidden() && control_.Peer()) widget_->raise();
}

QString LabelOf(const TControl& control) {
    const TWinControl* parent = control.Parent();
    const AnsiString* caption = parent ? peer_detail::FindLabelFor(*parent, control) : nullptr;
    if (!caption) return {};
    QString name = WithoutMnemonic(*caption);
    while (name.endsWith(QLatin1Char(':')) || name.endsWith(QLatin1Char(' '))) name.chop(1);
    return name;
}

QString WidgetPeer::AccessibleName() const { return LabelOf(control_); }

QString WidgetPeer::AccessibleDescription() const { return ToQt(TControl::GetShortHint(control_.Hint())); }

void ActivateWindow(QWidget* window) {
    if (!window->isVisible() || window->isActiveWindow()) return;
    // In memory there is no window manager to ask.
    if (QtSession::IsOffscreen())
        QApplication::setActiveWindow(window);
    else
        window->activateWindow();
}

TControl* ControlOfWidget(QWidget* widget) {
    for (; widget; widget = widget->parentWidget())
        if (auto* link = dynamic_cast<PeerLink*>(widget); link && link->Peer()) return &link->Peer()->Control();
    return nullptr;
}

}  // namespace vyn::qt
