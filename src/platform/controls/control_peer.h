#pragma once

#include <memory>

#include "platform/controls/geometry.h"

namespace vyn {

class TControl;
class TCustomForm;
class TMenu;
class TPopupMenu;

// What changed in a control, for its peer. The peer looks at the control for the new state.
enum class PeerChange : unsigned char {
    Bounds,       // place or size
    Text,         // caption or text
    Font,         // the effective font
    Color,        //
    Enabled,      // the control's own; the toolkit passes it on to what is inside
    Visible,      //
    Cursor,       //
    Hint,         //
    ZOrder,       //
    Parent,       // moved into another parent, which has a peer
    Style,        // any other published property that says how the control looks
    Items,        // lines, nodes, pages, panels, buttons: which there are and what they say
    Selection,    // what is selected, checked or current
    Scroll,       // ranges and positions of scroll bars, the first line shown
    Menu,         // the form's menu or an item of it
    Picture,      //
    Invalidate,   // draw again
    Focus,        // the control is to have the keyboard
    WindowState,  // a form's: minimised, maximised, its border, always on top
    Modal,        // a form begins or ends being modal
    Close,        // a popup, an editor in place or a drop-down list is to close
    DropDown,     // a drop-down list is to open
    EditLabel,    // editing in place is to begin
};

// The toolkit's side of one control: draws its state and feeds native events into the control's Process operations
// (control.h, win_control.h) and into those that each class names for its peer. Holds no behaviour of its own.
//
// A peer is made when its control's form is shown, or when the control comes into a parent that has one; the control
// owns it and drops it when the form's window goes. A peer never outlives its control. Main thread only.
class ControlPeer {
  public:
    virtual ~ControlPeer() = default;
    virtual void Changed(PeerChange what) = 0;
    // True when the native widget edits text by itself and reports what the user did (TCustomEdit::PeerChanged);
    // else the control does the editing, from the keys that it is fed.
    virtual bool EditsText() const { return false; }
    // An input method has given text that is not committed yet.
    virtual bool IsComposing() const { return false; }
    // The control's client origin on the screen, when the toolkit knows better than the sum of the parents' places.
    virtual bool ClientOrigin(TPoint& origin) const { return false; }
    // The size that the native widget would like; {0, 0} leaves it to the control.
    virtual TSize PreferredSize() const { return {}; }
    // A form's window goes, and the peers inside it after this: the time to take it from the screen in one piece.
    virtual void WindowGoes() {}
    // The toolkit's own object.
    virtual void* NativeHandle() { return nullptr; }
};

// The toolkit. Registered once, before the first form is shown; stays the toolkit's.
class PeerFactory {
  public:
    virtual ~PeerFactory() = default;
    // A peer for the control, or null when the toolkit has none for its class (nor for an ancestor's).
    virtual std::unique_ptr<ControlPeer> MakePeer(TControl& control) = 0;
    // Shows a popup menu at a place of the screen and returns when it has gone; what was chosen was clicked.
    virtual void ShowPopupMenu(TPopupMenu& menu, TPoint at) = 0;
    virtual TPoint MousePosition() const { return {}; }
    virtual void SetScreenCursor(int cursor) {}
};

void SetPeerFactory(PeerFactory* factory);
// Null without a display.
PeerFactory* GetPeerFactory();

}  // namespace vyn
