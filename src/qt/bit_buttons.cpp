#include "platform/controls/bit_buttons.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>
#include <QStyleOptionToolButton>

#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/pictures.h"
#include "qt/press.h"
#include "qt/text.h"

// Buttons with a picture: the desktop's panel, our layout of picture and caption.
namespace vyn::qt {

namespace bit_button_detail {

constexpr int kStandardIconSize = 16;

QStyle::StandardPixmap StandardPicture(TBitBtnKind kind) {
    switch (kind) {
        case bkOK:
        case bkAll:
            return QStyle::SP_DialogOkButton;
        case bkCancel:
            return QStyle::SP_DialogCancelButton;
        case bkHelp:
            return QStyle::SP_DialogHelpButton;
        case bkYes:
            return QStyle::SP_DialogYesButton;
        case bkNo:
            return QStyle::SP_DialogNoButton;
        case bkClose:
            return QStyle::SP_DialogCloseButton;
        case bkAbort:
            return QStyle::SP_DialogDiscardButton;
        case bkRetry:
            return QStyle::SP_BrowserReload;
        case bkIgnore:
            return QStyle::SP_DialogApplyButton;
        case bkCustom:
            break;
    }
    return QStyle::SP_CustomBase;
}

class BitButtonPeer;

class BitButtonWidget final : public Native<QPushButton> {
  public:
    BitButtonWidget(BitButtonPeer* peer, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent*) override;
};

class BitButtonPeer final : public PeerOf<TBitBtn> {
  public:
    using PeerOf::PeerOf;

    bool MouseHappened(QWidget& widget, QEvent& event, const NativeCall& native) override {
        const NativeCall quiet = [this, &native](QEvent* e) {
            const Watch alive(*this);
            mouse_ = true;
            const bool result = native(e);
            if (alive) mouse_ = false;
            return result;
        };
        return PeerOf::MouseHappened(widget, event, quiet);
    }
    bool TakesDoubleClicks() const override { return false; }

    void Paint(QPainter& painter, const QStyleOptionButton& panel) {
        TBitBtn& button = Self();
        const bool down = button_->isDown();
        button_->style()->drawControl(QStyle::CE_PushButtonBevel, &panel, &painter, button_);
        QPixmap picture = GlyphPixmap(*button.Glyph(), button.NumGlyphs(), button_->isEnabled(), down);
        if (picture.isNull() && button.Kind() != bkCustom)
            picture = button_->style()
                          ->standardIcon(StandardPicture(button.Kind()))
                          .pixmap(QSize(kStandardIconSize, kStandardIconSize), button_->devicePixelRatioF(),
                                  button_->isEnabled() ? QIcon::Normal : QIcon::Disabled);
        DrawGlyphAndText(painter, button_->rect(), picture, button.Caption(), button.Layout(), button.Margin(),
                         button.Spacing(), *button_, false);
        if (!button_->hasFocus()) return;
        QStyleOptionFocusRect focus;
        focus.initFrom(button_);
        focus.rect = button_->style()->subElementRect(QStyle::SE_PushButtonFocusRect, &panel, button_);
        button_->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, button_);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        button_ = new BitButtonWidget(this, parent);
        QObject::connect(button_, &QPushButton::clicked, Context(), [this] {
            if (!mouse_ || !Self().ControlStyle.Contains(csClickEvents)) Guard(&Self(), [this] { Self().Click(); });
        });
        return button_;
    }
    void ApplyText() override {
        button_->setText(ToQt(Self().Caption()));
        button_->setShortcut(QKeySequence());
    }
    void ApplyStyle() override {
        button_->setDefault(Self().Active());
        button_->setFocusPolicy(FocusPolicyOf(Self()));
    }
    QPalette::ColorRole BackgroundRole() const override { return QPalette::NoRole; }

  private:
    QPushButton* button_ = nullptr;
    bool mouse_ = false;
};

BitButtonWidget::BitButtonWidget(BitButtonPeer* peer, QWidget* parent) : Native<QPushButton>(peer, parent) {}

void BitButtonWidget::paintEvent(QPaintEvent*) {
    if (!Peer()) return;
    QPainter painter(this);
    QStyleOptionButton panel;
    initStyleOption(&panel);
    panel.text.clear();
    panel.icon = QIcon();
    static_cast<BitButtonPeer*>(Peer())->Paint(painter, panel);
}

class SpeedButtonPeer final : public PressedPeer<SpeedButtonPeer, TSpeedButton> {
  public:
    using PressedPeer::PressedPeer;

    void Paint(QPainter& painter) {
        TSpeedButton& button = Self();
        const bool sunken = Sunken();
        QStyleOptionToolButton option;
        option.initFrom(widget_);
        option.subControls = QStyle::SC_ToolButton;
        option.toolButtonStyle = Qt::ToolButtonIconOnly;
        if (button.Flat()) option.state |= QStyle::State_AutoRaise;
        if (sunken) option.state |= QStyle::State_Sunken;
        if (button.Down()) option.state |= QStyle::State_On;
        if (!button.Flat() && !sunken && !button.Down()) option.state |= QStyle::State_Raised;
        if (!widget_->underMouse() || !widget_->isEnabled()) option.state &= ~QStyle::State_MouseOver;
        if (!button.Flat() || sunken || button.Down() || (option.state & QStyle::State_MouseOver))
            widget_->style()->drawPrimitive(QStyle::PE_PanelButtonTool, &option, &painter, widget_);
        DrawGlyphAndText(
            painter, widget_->rect(),
            GlyphPixmap(*button.Glyph(), button.NumGlyphs(), widget_->isEnabled(), sunken || button.Down()),
            button.Caption(), button.Layout(), button.Margin(), button.Spacing(), *widget_, sunken);
    }

  protected:
    void ApplyText() override { widget_->update(); }
    void ApplySelection() override { widget_->update(); }
};

}  // namespace bit_button_detail

void RegisterBitButtonPeers() {
    RegisterPeer(&TBitBtn::StaticClass(), &NewPeer<bit_button_detail::BitButtonPeer>);
    RegisterPeer(&TSpeedButton::StaticClass(), &NewPeer<bit_button_detail::SpeedButtonPeer>);
}

}  // namespace vyn::qt
