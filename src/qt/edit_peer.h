#pragma once

#include <QLineEdit>

#include "platform/controls/edits.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/text.h"

namespace vyn::qt {

// A line of text. The widget edits; the control hears of it and answers with what the text is to be.
class EditPeer : public PeerOf<TCustomEdit> {
  public:
    using PeerOf::PeerOf;

    bool EditsText() const override { return true; }
    bool IsComposing() const override { return composing_; }
    bool TextComposed(QInputMethodEvent& event, const NativeCall& native) override;
    void FocusChanged(QWidget& widget, bool in) override;

  protected:
    // The widget, with its text.
    virtual QLineEdit* NewLineEdit(QWidget* parent);
    QWidget* MakeWidget(QWidget* parent) override;
    void ApplyText() override;
    void ApplySelection() override;
    void ApplyStyle() override;
    QPalette::ColorRole BackgroundRole() const override { return QPalette::Base; }
    TColor NativeColor() const override { return clWindow; }

  private:
    void Edited();
    void SelectionMoved();

    QLineEdit* edit_ = nullptr;
    TAlignment shownAlignment_ = taLeftJustify;
    bool composing_ = false;
};

}  // namespace vyn::qt
