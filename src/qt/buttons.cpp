#include "platform/controls/buttons.h"

#include <QCheckBox>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>

#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/text.h"

namespace vyn::qt {

namespace button_detail {

// Mnemonics go through the form, which asks its controls in their order; the widget only underlines them.
void PutCaption(QAbstractButton& button, const AnsiString& caption) {
    button.setText(ToQt(caption));
    if (caption.find('&') != AnsiString::npos) button.setShortcut(QKeySequence());
}

class ButtonPeer final : public PeerOf<TButton> {
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
    // Two quick presses are two clicks.
    bool TakesDoubleClicks() const override { return false; }

  protected:
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
class CheckBoxWidget final : public Native<QCheckBox> {
  public:
    using Native<QCheckBox>::Native;

  protected:
    void nextCheckState() override {}
};

class RadioButtonWidget final : public Native<QRadioButton> {
  public:
    using Native<QRadioButton>::Native;

  protected:
    void nextCheckState() override {}
};

template <class C>
void ApplySide(QAbstractButton& button, const C& control) {
    const Qt::LayoutDirection direction =
        control.Alignment() == TLeftRight::taLeftJustify ? Qt::RightToLeft : Qt::LeftToRight;
    if (button.layoutDirection() != direction) button.setLayoutDirection(direction);
}

class CheckBoxPeer final : public PeerOf<TCustomCheckBox> {
  public:
    using PeerOf::PeerOf;
    bool TakesDoubleClicks() const override { return false; }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        box_ = new CheckBoxWidget(this, parent);
        QObject::connect(box_, &QCheckBox::clicked, Context(),
                         [this] { Guard(&Self(), [this] { Self().ProcessPress(); }); });
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
        ApplySide(*box_, Self());
        if (!Self().TabStop()) box_->setFocusPolicy(Qt::ClickFocus);
    }

  private:
    QCheckBox* box_ = nullptr;
};

class RadioButtonPeer final : public PeerOf<TRadioButton> {
  public:
    using PeerOf::PeerOf;

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        button_ = new RadioButtonWidget(this, parent);
        button_->setAutoExclusive(false);
        QObject::connect(button_, &QRadioButton::clicked, Context(),
                         [this] { Guard(&Self(), [this] { Self().ProcessPress(); }); });
        return button_;
    }
    void ApplyText() override { PutCaption(*button_, Self().Caption()); }
    void ApplySelection() override { button_->setChecked(Self().Checked()); }
    void ApplyStyle() override {
        ApplySide(*button_, Self());
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
