#include "platform/controls/buttons.h"

#include <QCheckBox>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionButton>

#include "qt/factory.h"
#include "qt/light_peer.h"
#include "qt/text.h"

namespace vyn::qt {

namespace button_detail {

// Mnemonics go through the form, which asks its controls in their order; the widget only underlines them.
void PutCaption(QAbstractButton& button, const AnsiString& caption) {
    button.setText(ToQt(caption));
    if (caption.find('&') != AnsiString::npos) button.setShortcut(QKeySequence());
}

// A button that its parent draws, at rest as the toolkit's own, until it is needed.
template <class C>
class LightButtonPeer : public LightPeerOf<C> {
  public:
    using LightPeerOf<C>::LightPeerOf;

  protected:
    using typename LightPeerOf<C>::Surface;

    // What the toolkit draws, and what the button says of itself.
    virtual QStyle::ControlElement Element() const = 0;
    virtual void Describe(QStyleOptionButton& option) const = 0;

    void PaintOn(const Surface& surface) override {
        QStyleOptionButton option;
        option.initFrom(&surface.widget);
        option.styleObject = nullptr;  // the toolkit would move its owner's looks
        option.state &= QStyle::State_Active;
        if (surface.enabled) option.state |= QStyle::State_Enabled;
        option.rect = surface.rect;
        option.palette = surface.palette;
        option.fontMetrics = surface.painter.fontMetrics();
        option.text = text_;
        Describe(option);
        surface.style.drawControl(Element(), &option, &surface.painter, &surface.widget);
    }
    bool StaysInside(const QFontMetrics& metrics) const override {
        return this->Self().Height() >= metrics.height() &&
               this->Self().Width() >= this->WidthOf(metrics, text_) + kRoom;
    }
    void TakeState() override { text_ = ToQt(this->Self().Caption()); }

    // Every click of the widget's, the mouse's, the keyboard's or assistive technology's, is a press.
    void Connect(QAbstractButton& button, void (C::*press)()) {
        QObject::connect(&button, &QAbstractButton::clicked, this->Context(),
                         [this, press] { Guard(&this->Self(), [this, press] { (this->Self().*press)(); }); });
    }

  private:
    static constexpr int kRoom = 32;  // more than any style's mark and margins

    QString text_;
};

class ButtonPeer final : public LightButtonPeer<TButton> {
  public:
    using LightButtonPeer::LightButtonPeer;

    bool MouseHappened(QWidget& widget, QEvent& event, const NativeCall& native) override {
        const NativeCall quiet = [this, &native](QEvent* e) {
            const Watch alive(*this);
            mouse_ = true;
            const bool result = native(e);
            if (alive) mouse_ = false;
            return result;
        };
        return LightButtonPeer::MouseHappened(widget, event, quiet);
    }
    // Two quick presses are two clicks.
    bool TakesDoubleClicks() const override { return false; }

  protected:
    QStyle::ControlElement Element() const override { return QStyle::CE_PushButton; }
    void Describe(QStyleOptionButton& option) const override {
        option.state |= QStyle::State_Raised;
        if (Self().Active()) option.features |= QStyleOptionButton::DefaultButton;
    }
    QWidget* MakeWidget(QWidget* parent) override {
        button_ = new Native<QPushButton>(this, parent);
        // A press by the mouse clicks through ProcessMouseUp; this one is assistive technology's.
        QObject::connect(button_, &QPushButton::clicked, Context(), [this] {
            if (!mouse_ || !Self().ControlStyle.Contains(csClickEvents)) Guard(&Self(), [this] { Self().Click(); });
        });
        return button_;
    }
    void ApplyText() override { PutCaption(*button_, Self().Caption()); }
    void ApplyStyle() override {
        if (button_->isDefault() != Self().Active()) button_->setDefault(Self().Active());
        if (!Self().TabStop()) button_->setFocusPolicy(Qt::ClickFocus);
    }
    QPalette::ColorRole BackgroundRole() const override { return QPalette::NoRole; }

  private:
    QPushButton* button_ = nullptr;
    bool mouse_ = false;
};

// The state is the control's; a press only tells.
template <class W>
class ToldButton final : public Native<W> {
  public:
    using Native<W>::Native;

  protected:
    void nextCheckState() override {}
};

template <class C>
Qt::LayoutDirection SideOf(const C& control) {
    return control.Alignment() == TLeftRight::taLeftJustify ? Qt::RightToLeft : Qt::LeftToRight;
}

void PutDirection(QAbstractButton& button, Qt::LayoutDirection direction) {
    if (button.layoutDirection() != direction) button.setLayoutDirection(direction);
}

class CheckBoxPeer final : public LightButtonPeer<TCustomCheckBox> {
  public:
    using LightButtonPeer::LightButtonPeer;
    bool TakesDoubleClicks() const override { return false; }

  protected:
    QStyle::ControlElement Element() const override { return QStyle::CE_CheckBox; }
    void Describe(QStyleOptionButton& option) const override {
        option.direction = SideOf(Self());
        switch (Self().State()) {
            case cbUnchecked:
                option.state |= QStyle::State_Off;
                break;
            case cbChecked:
                option.state |= QStyle::State_On;
                break;
            case cbGrayed:
                option.state |= QStyle::State_NoChange;
                break;
        }
    }
    QWidget* MakeWidget(QWidget* parent) override {
        box_ = new ToldButton<QCheckBox>(this, parent);
        Connect(*box_, &TCustomCheckBox::ProcessPress);
        return box_;
    }
    void ApplyText() override { PutCaption(*box_, Self().Caption()); }
    void ApplySelection() override {
        switch (Self().State()) {
            case cbUnchecked:
                box_->setCheckState(Qt::Unchecked);
                break;
            case cbChecked:
                box_->setCheckState(Qt::Checked);
                break;
            case cbGrayed:
                box_->setCheckState(Qt::PartiallyChecked);
                break;
        }
        if (Self().State() != cbGrayed && box_->isTristate()) box_->setTristate(false);
    }
    void ApplyStyle() override {
        PutDirection(*box_, SideOf(Self()));
        if (!Self().TabStop()) box_->setFocusPolicy(Qt::ClickFocus);
    }

  private:
    QCheckBox* box_ = nullptr;
};

class RadioButtonPeer final : public LightButtonPeer<TRadioButton> {
  public:
    using LightButtonPeer::LightButtonPeer;

  protected:
    QStyle::ControlElement Element() const override { return QStyle::CE_RadioButton; }
    void Describe(QStyleOptionButton& option) const override {
        option.direction = SideOf(Self());
        option.state |= Self().Checked() ? QStyle::State_On : QStyle::State_Off;
    }
    QWidget* MakeWidget(QWidget* parent) override {
        button_ = new ToldButton<QRadioButton>(this, parent);
        button_->setAutoExclusive(false);
        Connect(*button_, &TRadioButton::ProcessPress);
        return button_;
    }
    void ApplyText() override { PutCaption(*button_, Self().Caption()); }
    void ApplySelection() override { button_->setChecked(Self().Checked()); }
    void ApplyStyle() override {
        PutDirection(*button_, SideOf(Self()));
        button_->setFocusPolicy(FocusPolicyOf(Self()));
    }

  private:
    QRadioButton* button_ = nullptr;
};

}  // namespace button_detail

void RegisterButtonPeers() {
    RegisterPeer(&TButton::StaticClass(), &NewPeer<button_detail::ButtonPeer>);
    RegisterPeer(&TCustomCheckBox::StaticClass(), &NewPeer<button_detail::CheckBoxPeer>);
    RegisterPeer(&TRadioButton::StaticClass(), &NewPeer<button_detail::RadioButtonPeer>);
}

}  // namespace vyn::qt
