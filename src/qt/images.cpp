#include "platform/controls/images.h"

#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/painted.h"
#include "qt/pictures.h"

namespace vyn::qt {

namespace image_detail {

class ImagePeer final : public PeerOf<TImage> {
  public:
    using PeerOf::PeerOf;

    void Changed(PeerChange what) override {
        if (what == PeerChange::Picture || what == PeerChange::Style) decoded_ = false;
        PeerOf::Changed(what);
    }

    void Paint(QPainter& painter) {
        if (!decoded_) {
            const TGraphic* graphic = Self().Picture()->Graphic();
            picture_ = graphic ? QPixmap::fromImage(ToQImage(*graphic, Self().Transparent())) : QPixmap();
            decoded_ = true;
        }
        if (picture_.isNull()) return;
        QRect place = ToQRect(Self().DestRect());
        // Formats that only the toolkit decodes have no size before.
        if (!Self().Stretch() && place.isEmpty()) {
            place = QRect(QPoint(), picture_.size());
            if (Self().Center()) place.moveCenter(widget_->rect().center());
        }
        painter.setRenderHint(QPainter::SmoothPixmapTransform, place.size() != picture_.size());
        painter.drawPixmap(place, picture_);
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<ImagePeer>(this, parent); }

  private:
    QPixmap picture_;
    bool decoded_ = false;
};

}  // namespace image_detail

void RegisterImagePeers() { RegisterPeer(&TImage::StaticClass(), &NewPeer<image_detail::ImagePeer>); }

}  // namespace vyn::qt
