#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <algorithm>

#include "platform/controls/db_lookups.h"
#include "qt/factory.h"
#include "qt/grid_peer.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/text.h"

// Combo boxes over the records of a list, and their lists; list boxes have the peer of grids.
namespace vyn::qt {

namespace lookup_detail {

class LookupComboPeer;

class LookupComboWidget final : public Native<QWidget> {
  public:
    LookupComboWidget(LookupComboPeer* peer, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    LookupComboPeer* Combo() const;
};

class LookupComboPeer final : public PeerOf<TDBLookupComboBox> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        QStyleOptionComboBox option;
        option.initFrom(widget_);
        option.editable = false;
        option.frame = true;
        option.subControls = QStyle::SC_All;
        option.currentText = ToQt(Self().Text());
        if (Self().DroppedDown()) option.state |= QStyle::State_On;
        widget_->style()->drawComplexControl(QStyle::CC_ComboBox, &option, &painter, widget_);
        widget_->style()->drawControl(QStyle::CE_ComboBoxLabel, &option, &painter, widget_);
    }
    void Press() {
        Guard(&Self(), [this] { Self().ProcessButton(); });
    }
    bool TakesDoubleClicks() const override { return false; }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        auto* widget = new LookupComboWidget(this, parent);
        widget->setFocusPolicy(FocusPolicyOf(Self()));
        return widget;
    }
    void ApplyText() override { widget_->update(); }
    void ApplyStyle() override {
        widget_->setFocusPolicy(FocusPolicyOf(Self()));
        widget_->update();
    }
    void FocusChanged(QWidget& widget, bool in) override {
        const Watch alive(*this);
        PeerOf::FocusChanged(widget, in);
        if (alive) widget_->update();
    }
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }
};

LookupComboWidget::LookupComboWidget(LookupComboPeer* peer, QWidget* parent) : Native<QWidget>(peer, parent) {
    setAttribute(Qt::WA_Hover);
}

LookupComboPeer* LookupComboWidget::Combo() const { return static_cast<LookupComboPeer*>(Peer()); }

void LookupComboWidget::paintEvent(QPaintEvent*) {
    if (!Combo()) return;
    QPainter painter(this);
    Combo()->Paint(painter);
}

void LookupComboWidget::mousePressEvent(QMouseEvent* event) {
    if (Combo() && event->button() == Qt::LeftButton) Combo()->Press();
}

// The list: a window of its own, which is gone as soon as the mouse is pressed elsewhere.
class DropDownPeer final : public GridPeer {
  public:
    using GridPeer::GridPeer;

    bool MouseHappened(QWidget& widget, QEvent& event, const NativeCall& native) override {
        if (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick) {
            const QPoint at = static_cast<QMouseEvent&>(event).globalPosition().toPoint();
            if (!widget_->geometry().contains(at)) {
                // A press on the combo box itself only closes; any other is heard where it was made.
                const QWidget* box = widget_->parentWidget();
                widget_->setAttribute(Qt::WA_NoMouseReplay, box->rect().contains(box->mapFromGlobal(at)));
                CloseUp();
                return true;
            }
        }
        // The list opens under the mouse; only a mouse that moves chooses.
        if (event.type() == QEvent::MouseMove &&
            static_cast<QMouseEvent&>(event).globalPosition().toPoint() == openedAt_)
            return true;
        return GridPeer::MouseHappened(widget, event, native);
    }
    bool WindowHappened(QWidget& widget, QEvent& event) override {
        if (event.type() == QEvent::Close) CloseUp();
        return GridPeer::WindowHappened(widget, event);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        QWidget* widget = GridPeer::MakeWidget(parent);
        widget->setParent(parent, Qt::Popup | Qt::FramelessWindowHint);
        widget->setFocusPolicy(Qt::NoFocus);
        static_cast<QAbstractScrollArea*>(widget)->viewport()->setFocusPolicy(Qt::NoFocus);
        return widget;
    }
    bool HasKeyboard() const override { return true; }
    // Below the combo box, or above it where there is no room.
    void ApplyBounds() override {
        const QWidget* box = widget_->parentWidget();
        const TCustomDBGrid& list = Grid();
        QPoint at = box->mapToGlobal(QPoint(list.Left(), list.Top()));
        if (const QScreen* screen = box->screen()) {
            const QRect room = screen->availableGeometry();
            const int above = box->mapToGlobal(QPoint()).y() - list.Height();
            if (at.y() + list.Height() > room.bottom() + 1 && above >= room.top()) at.setY(above);
            at.setX(std::max(std::min(at.x(), room.right() + 1 - list.Width()), room.left()));
        }
        widget_->setGeometry(QRect(at, QSize(list.Width(), list.Height())));
    }
    void ApplyVisible() override {
        if (!Grid().Visible()) {
            widget_->hide();
            return;
        }
        openedAt_ = QCursor::pos();
        ApplyBounds();
        widget_->show();
    }

  private:
    void CloseUp() {
        auto& list = static_cast<TLookupDropDown&>(Grid());
        Guard(&list, [&] { list.Box().CloseUp(TDBLookupComboBox::Close::Leave); });
    }
    QPoint openedAt_;
};

}  // namespace lookup_detail

void RegisterLookupPeers() {
    RegisterPeer(&TDBLookupComboBox::StaticClass(), &NewPeer<lookup_detail::LookupComboPeer>);
    RegisterPeer(&TLookupDropDown::StaticClass(), &NewPeer<lookup_detail::DropDownPeer>);
}

}  // namespace vyn::qt
