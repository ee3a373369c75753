#include "qt/scroll_bars.h"

#include <QRect>
#include <QScrollBar>
#include <algorithm>

#include "qt/widget_peer.h"

namespace vyn::qt {

void ScrollBars::UpdateBar(QScrollBar*& bar, TControlScrollBar& state, QWidget& owner, int view) {
    if (!state.IsScrollBarVisible()) {
        if (bar) bar->hide();
        return;
    }
    if (!bar) {
        bar = new QScrollBar(state.Kind() == sbHorizontal ? Qt::Horizontal : Qt::Vertical, &owner);
        TControlScrollBar* moved = &state;
        QObject::connect(bar, &QScrollBar::valueChanged, bar, [this, moved](int value) {
            if (!updating_) Guard(&control_, [&] { moved->SetPosition(value); });
        });
    }
    bar->setRange(0, std::max(state.Range() - view, 0));
    bar->setPageStep(std::max(view, 1));
    bar->setSingleStep(std::max(state.Increment, 1));
    bar->setValue(state.Position());
}

void ScrollBars::Update(QWidget& owner, const QRect& area) {
    if (updating_) return;
    updating_ = true;
    UpdateBar(horizontal_, *control_.HorzScrollBar(), owner, area.width());
    UpdateBar(vertical_, *control_.VertScrollBar(), owner, area.height());
    const bool wide = control_.HorzScrollBar()->IsScrollBarVisible();
    const bool high = control_.VertScrollBar()->IsScrollBarVisible();
    if (wide) {
        const int thick = horizontal_->sizeHint().height();
        const int corner = high ? vertical_->sizeHint().width() : 0;
        horizontal_->setGeometry(area.left(), area.bottom() + 1 - thick, area.width() - corner, thick);
        horizontal_->raise();
        horizontal_->show();
    }
    if (high) {
        const int thick = vertical_->sizeHint().width();
        const int corner = wide ? horizontal_->sizeHint().height() : 0;
        vertical_->setGeometry(area.right() + 1 - thick, area.top(), thick, area.height() - corner);
        vertical_->raise();
        vertical_->show();
    }
    updating_ = false;
}

}  // namespace vyn::qt
