#pragma once

#include "platform/controls/scroll_boxes.h"

class QRect;
class QScrollBar;
class QWidget;

namespace vyn::qt {

// The scroll bars of a form or a scroll box: made when they are first needed, laid along the right and bottom edges of
// the area that they scroll. The control moves its controls; the bars only show and tell where they stand.
class ScrollBars {
  public:
    explicit ScrollBars(TScrollingWinControl& control) : control_(control) {}
    // Brings the bars into the control's state. `owner` holds them, beside (not inside) the client widget; `area` is
    // the client area in the owner's coordinates.
    void Update(QWidget& owner, const QRect& area);

  private:
    void UpdateBar(QScrollBar*& bar, TControlScrollBar& state, QWidget& owner, int view);

    TScrollingWinControl& control_;
    QScrollBar* horizontal_ = nullptr;
    QScrollBar* vertical_ = nullptr;
    bool updating_ = false;
};

}  // namespace vyn::qt
