#include "platform/controls/groups.h"

#include <QStyle>

#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/text.h"

namespace vyn::qt {

namespace group_detail {

constexpr int kCaptionLeft = 8;
constexpr int kCaptionGap = 3;
constexpr double kCorner = 2.5;

// A frame around controls: one fine line that passes behind the middle of the caption, whatever the desktop's style,
// because stored forms place their controls by that line.
class GroupBoxPeer final : public PeerOf<TCustomGroupBox> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        const QFontMetrics metrics = widget_->fontMetrics();
        const QString caption = ToQt(Self().Caption());
        const int top = metrics.height() / 2;
        const QRectF frame = QRectF(widget_->rect()).adjusted(0.5, top + 0.5, -0.5, -0.5);
        QRect text;
        if (!caption.isEmpty()) {
            text = widget_->style()->itemTextRect(metrics, widget_->rect(), Qt::AlignLeft | Qt::TextShowMnemonic, true,
                                                  caption);
            text.moveTopLeft({kCaptionLeft, 0});
            text.setRight(std::min(text.right() + 1, widget_->width() - kCaptionLeft));
            painter.save();
            painter.setClipRegion(QRegion(widget_->rect()) - QRegion(text.adjusted(-kCaptionGap, 0, kCaptionGap, 0)));
        }
        painter.setRenderHint(QPainter::Antialiasing);
        QColor line = widget_->palette().color(QPalette::WindowText);
        constexpr int kFineLine = 70;
        line.setAlpha(kFineLine);
        painter.setPen(line);
        painter.drawRoundedRect(frame, kCorner, kCorner);
        if (caption.isEmpty()) return;
        painter.restore();
        widget_->style()->drawItemText(&painter, text, Qt::AlignLeft | Qt::AlignTop | Qt::TextShowMnemonic,
                                       widget_->palette(), widget_->isEnabled(), caption, QPalette::WindowText);
    }

    QString AccessibleName() const override { return WithoutMnemonic(Self().Caption()); }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<GroupBoxPeer>(this, parent); }
    void ApplyText() override { widget_->update(); }
};

}  // namespace group_detail

void RegisterGroupPeers() { RegisterPeer(&TCustomGroupBox::StaticClass(), &NewPeer<group_detail::GroupBoxPeer>); }

}  // namespace vyn::qt
