#pragma once

#include "platform/controls/forms.h"
#include "qt/scroll_bars.h"
#include "qt/widget_peer.h"

class QMenuBar;

namespace vyn::qt {

// A form's window: the menu bar (when the form has a menu) above the client area, scroll bars along its edges. A form
// inside another control is a child widget without a frame.
class FormPeer final : public PeerOf<TCustomForm> {
  public:
    explicit FormPeer(TControl& control);

    void Create() override;
    void Changed(PeerChange what) override;
    QWidget* ClientWidget() const override { return client_; }
    bool WindowHappened(QWidget& widget, QEvent& event) override;
    void PaintClient() {
        Guard(&Self(), [this] { Self().ProcessPaint(); });
    }
    QMenuBar* MenuBar() const { return menuBar_; }
    // The height that the menu bar takes of the window.
    int MenuBarHeight() const;

  protected:
    QWidget* MakeWidget(QWidget* parent) override;
    void ApplyBounds() override;
    void ApplyText() override;
    void ApplyVisible() override;
    void ApplyZOrder() override;

  private:
    void ApplyMenu();
    void ApplyWindowFlags();
    void ApplyIcon();
    void ApplyScroll();
    void LayOut();
    void ShowWindow();
    void ReportBounds();
    TSize WindowExtra() const;
    Qt::WindowFlags FlagsOf() const;

    QWidget* client_ = nullptr;
    QMenuBar* menuBar_ = nullptr;
    ScrollBars bars_;
};

}  // namespace vyn::qt
