#include "platform/controls/images.h"

#include "qt/factory.h"
#include "qt/light_peer.h"
#include "qt/looks.h"
#include "qt/pictures.h"

namespace vyn::qt {

namespace image_detail {

class ImagePeer final : public LightPeerOf<TImage> {
  public:
    using LightPeerOf::LightPeerOf;

    void Changed(PeerChange what) override {
        if (what == PeerChange::Picture || what == PeerChange::Style) decoded_ = false;
        LightPeerOf::Changed(what);
    }

  protected:
    void PaintOn(const Surface& surface) override {
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
            if (Self().Center()) place.moveCenter(surface.rect.center());
        }
        surface.painter.setRenderHint(QPainter::SmoothPixmapTransform, place.size() != picture_.size());
        surface.painter.drawPixmap(place, picture_);
    }

  private:
    QPixmap picture_;
    bool decoded_ = false;
};

}  // namespace image_detail

void RegisterImagePeers() { RegisterPeer(&TImage::StaticClass(), &NewPeer<image_detail::ImagePeer>); }

}  // namespace vyn::qt
