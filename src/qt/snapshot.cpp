#include "qt/snapshot.h"

#include <QApplication>
#include <QBuffer>
#include <QPixmap>
#include <QWidget>

#include "platform/streams/stream.h"
#include "platform/text/exceptions.h"
#include "qt/widget_peer.h"

namespace vyn::qt {

namespace snapshot_detail {

// The caret stands still for as long as this lives.
class StillCaret {
  public:
    StillCaret() : before_(QApplication::cursorFlashTime()) { QApplication::setCursorFlashTime(0); }
    ~StillCaret() { QApplication::setCursorFlashTime(before_); }
    StillCaret(const StillCaret&) = delete;
    StillCaret& operator=(const StillCaret&) = delete;

  private:
    int before_;
};

// Laying out may ask for painting and painting for laying out; both end soon.
constexpr int kMostTurns = 10;

// Where a part of a window is; null: all of it.
QRect PlaceOf(const TControl* part, QWidget& window) {
    if (!part) return window.rect();
    WidgetPeer* peer = PeerOfControl(part);
    const QWidget* widget = peer ? peer->Widget() : nullptr;
    if (!widget || !window.isAncestorOf(widget) || !widget->isVisible())
        throw EInvalidOperation("The control " + part->TComponent::Name() + " is not shown");
    return {widget->mapTo(&window, QPoint()), widget->size()};
}

}  // namespace snapshot_detail

std::string GrabForm(TCustomForm& form, int width, int height, const TControl* part) {
    if (!QApplication::instance()) throw EInvalidOperation("There is no window system to draw the form");
    const snapshot_detail::StillCaret still;
    const bool shown = form.Visible();
    if (width > 0 || height > 0)
        form.SetClientSize(width > 0 ? width : form.ClientWidth(), height > 0 ? height : form.ClientHeight());
    if (!shown) form.Show();
    for (int turn = 0; turn < snapshot_detail::kMostTurns; ++turn) Application()->ProcessMessages();
    QByteArray bytes;
    if (WidgetPeer* peer = PeerOfControl(&form)) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        peer->Widget()->grab(snapshot_detail::PlaceOf(part, *peer->Widget())).save(&buffer, "PNG");
    }
    if (!shown) form.Hide();
    return bytes.toStdString();
}

void GrabFormToFile(TCustomForm& form, const AnsiString& fileName, int width, int height, const TControl* part) {
    const std::string bytes = GrabForm(form, width, height, part);
    TFileStream file(fileName, fmCreate);
    file.WriteBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
}

}  // namespace vyn::qt
