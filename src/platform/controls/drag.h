#pragma once

#include "platform/controls/control.h"

namespace vyn {

// What is being dragged. A control's OnStartDrag may give its own; the one that it gives is the giver's to free.
class TDragObject : public TObject {
    VYN_OBJECT
  public:
    explicit TDragObject(TControl* control) : Control(control) {}
    TControl* Control;
};

// The drag of the moment. The toolkit tells where the mouse is and over which control; the controls answer through
// DragOver and DragDrop. The source that they get is the dragged control, or the drag object of OnStartDrag.
namespace drag {

// The control being dragged, or null.
TControl* Source();
// The mouse is over this control (null: over none), at its client pixels; gives whether it accepts.
bool MoveTo(TControl* target, int x, int y);
// The mouse button went up (drop) or the drag was cancelled: DragDrop on a target that accepts, then EndDrag's event.
void Finish(bool drop);
// For TControl: starts (unless one is under way); a control goes.
void Begin(TControl* source);
void Forget(TControl* control);

}  // namespace drag
}  // namespace vyn
