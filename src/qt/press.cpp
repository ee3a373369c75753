#include "qt/press.h"

#include <QMouseEvent>

#include <utility>

#include "qt/text.h"

namespace vyn::qt {

bool Press::Follow(QWidget& widget, QEvent& event) {
    const auto above = [&] { return widget.rect().contains(static_cast<QMouseEvent&>(event).position().toPoint()); };
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            if (static_cast<QMouseEvent&>(event).button() == Qt::LeftButton) down_ = true;
            widget.update();
            return false;
        case QEvent::MouseButtonRelease: {
            const bool pressed = std::exchange(down_, false) && above();
            widget.update();
            return pressed && widget.isEnabled();
        }
        case QEvent::MouseMove:
            over_ = above();
            if (down_) widget.update();
            return false;
        case QEvent::Enter:
        case QEvent::Leave:
            over_ = event.type() == QEvent::Enter;
            widget.update();
            return false;
        default:
            return false;
    }
}

QString ButtonName(const TControl& button) {
    return button.Caption().empty() ? ToQt(TControl::GetShortHint(button.Hint())) : WithoutMnemonic(button.Caption());
}

}  // namespace vyn::qt
