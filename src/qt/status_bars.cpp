#include "platform/controls/status_bars.h"

#include <QSizeGrip>
#include <QStyle>

#include "platform/controls/forms.h"
#include "qt/factory.h"
#include "qt/painted.h"
#include "qt/text.h"

namespace vyn::qt {

namespace status_bar_detail {

constexpr int kTextMargin = 5;
constexpr int kSeparatorMargin = 4;

class StatusBarPeer final : public PeerOf<TStatusBar> {
  public:
    using PeerOf::PeerOf;

    void Paint(QPainter& painter) {
        TStatusBar& bar = Self();
        const QRect rect = widget_->rect();
        painter.setPen(widget_->palette().color(QPalette::Mid));
        painter.drawLine(rect.topLeft(), rect.topRight());
        QRect inside = rect.adjusted(0, 1, 0, 0);
        if (bar.SimplePanel() || bar.Panels()->Count() == 0) {
            DrawText(painter, inside, bar.SimpleText(), taLeftJustify);
            return;
        }
        int left = 0;
        for (int i = 0; i < bar.Panels()->Count(); ++i) {
            TStatusPanel& panel = *bar.Panel(i);
            // The last panel takes what is left.
            const bool last = i + 1 == bar.Panels()->Count();
            const int width = last ? std::max(inside.width() - left, 0) : panel.Width();
            DrawText(painter, {left, inside.top(), width, inside.height()}, panel.Text(), panel.Alignment());
            left += width;
            if (last || panel.Bevel() == pbNone) continue;
            painter.setPen(widget_->palette().color(QPalette::Mid));
            painter.drawLine(left - 1, inside.top() + kSeparatorMargin - 1, left - 1,
                             inside.bottom() - kSeparatorMargin);
        }
    }

    QString AccessibleName() const override {
        TStatusBar& bar = Self();
        return bar.SimplePanel() || bar.Panels()->Count() == 0 ? ToQt(bar.SimpleText()) : ToQt(bar.Panel(0)->Text());
    }

  protected:
    QWidget* MakeWidget(QWidget* parent) override { return new Painted<StatusBarPeer>(this, parent); }
    void ApplyItems() override { widget_->update(); }
    void ApplyText() override { widget_->update(); }
    void ApplyStyle() override {
        const TCustomForm* form = GetParentForm(&Self());
        const bool sizeable =
            form && (form->BorderStyle() == bsSizeable || form->BorderStyle() == bsSizeToolWin) && Self().SizeGrip();
        if (sizeable && !grip_) grip_ = new QSizeGrip(widget_);
        if (grip_) grip_->setVisible(sizeable);
        PlaceGrip();
    }
    void ApplyBounds() override {
        PeerOf::ApplyBounds();
        PlaceGrip();
    }

  private:
    void PlaceGrip() {
        if (!grip_) return;
        const QSize size = grip_->sizeHint();
        grip_->setGeometry(widget_->width() - size.width(), widget_->height() - size.height(), size.width(),
                           size.height());
    }

    void DrawText(QPainter& painter, const QRect& area, const AnsiString& text, TAlignment alignment) {
        if (text.empty()) return;
        const QRect inside = area.adjusted(kTextMargin, 0, -kTextMargin, 0);
        const QString shown = widget_->fontMetrics().elidedText(ToQt(text), Qt::ElideRight, inside.width());
        widget_->style()->drawItemText(&painter, inside, AlignmentFlags(alignment) | Qt::AlignVCenter,
                                       widget_->palette(), widget_->isEnabled(), shown, QPalette::WindowText);
    }

    QSizeGrip* grip_ = nullptr;
};

}  // namespace status_bar_detail

void RegisterStatusBarPeers() { RegisterPeer(&TStatusBar::StaticClass(), &NewPeer<status_bar_detail::StatusBarPeer>); }

}  // namespace vyn::qt
