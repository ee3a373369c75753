#include "platform/controls/scroll_boxes.h"

#include <QFrame>

#include "qt/factory.h"
#include "qt/scroll_bars.h"

namespace vyn::qt {

namespace scroll_box_detail {

// A frame with a client area inside; the bars lie over the area's edges. Data modules' and other scrolling windows
// that are no forms look the same, without a frame.
class ScrollBoxPeer final : public PeerOf<TScrollingWinControl> {
  public:
    explicit ScrollBoxPeer(TControl& control) : PeerOf(control), bars_(Self()) {}

    void Create() override {
        PeerOf::Create();
        ApplyScroll();
    }
    QWidget* ClientWidget() const override { return client_; }
    void Changed(PeerChange what) override {
        PeerOf::Changed(what);
        if (widget_ && (what == PeerChange::Scroll || what == PeerChange::Bounds || what == PeerChange::Style))
            ApplyScroll();
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override {
        frame_ = new Native<QFrame>(this, parent);
        client_ = new Native<QWidget>(this, frame_);
        client_->setMouseTracking(true);
        return frame_;
    }
    void ApplyStyle() override {
        const auto* box = ObjectCast<TScrollBox>(&Self());
        const bool framed = box && box->BorderStyle() == TBorderStyle::bsSingle;
        frame_->setFrameStyle(framed ? QFrame::StyledPanel | QFrame::Sunken : QFrame::NoFrame);
        ApplyBounds();
    }
    void ApplyBounds() override {
        PeerOf::ApplyBounds();
        const TRect client = Self().ClientRect();
        const int edge = (Self().Width() - client.Width()) / 2;
        client_->setGeometry(edge, edge, client.Width(), client.Height());
    }

  private:
    void ApplyScroll() { bars_.Update(*frame_, client_->geometry()); }

    QFrame* frame_ = nullptr;
    QWidget* client_ = nullptr;
    ScrollBars bars_;
};

// A windowed control that has no looks of its own.
class PlainPeer final : public PeerOf<TWinControl> {
  public:
    using PeerOf::PeerOf;

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Native<QWidget>(this, parent); }
};

}  // namespace scroll_box_detail

void RegisterScrollBoxPeers() {
    RegisterPeer(&TScrollingWinControl::StaticClass(), &NewPeer<scroll_box_detail::ScrollBoxPeer>);
    RegisterPeer(&TWinControl::StaticClass(), &NewPeer<scroll_box_detail::PlainPeer>);
}

}  // namespace vyn::qt
