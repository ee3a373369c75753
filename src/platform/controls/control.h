#pragma once

#include <memory>

#include "platform/controls/control_peer.h"
#include "platform/controls/control_types.h"
#include "platform/controls/graphics.h"
#include "platform/objects/component.h"
#include "platform/system/messages.h"

namespace vyn {

class TPopupMenu;
class TWinControl;
class TCustomForm;

// The least and greatest size of a control; 0 is no bound.
class TSizeConstraints : public TPersistent {
    VYN_OBJECT
  public:
    int MaxHeight() const { return maxHeight_; }
    int MaxWidth() const { return maxWidth_; }
    int MinHeight() const { return minHeight_; }
    int MinWidth() const { return minWidth_; }
    void SetMaxHeight(int value) { Set(maxHeight_, value); }
    void SetMaxWidth(int value) { Set(maxWidth_, value); }
    void SetMinHeight(int value) { Set(minHeight_, value); }
    void SetMinWidth(int value) { Set(minWidth_, value); }
    void Assign(const TPersistent* source) override;
    TNotifyEvent OnChange;

  private:
    void Set(int& field, int value);
    int maxHeight_ = 0;
    int maxWidth_ = 0;
    int minHeight_ = 0;
    int minWidth_ = 0;
};

enum class TControlStyleFlag {
    csAcceptsControls,
    csSetCaption,      // setting the name sets a caption that was the name
    csClickEvents,     // a mouse press and release makes a click
    csDoubleClicks,    //
    csOpaque,          //
    csCaptureMouse,    //
    csNoStdEvents,     //
    csNoFocusOnClick,  //
};
using enum TControlStyleFlag;
using TControlStyle = Set<TControlStyleFlag>;

// What is visible: a place in a parent, text, looks, and what the mouse does. State and behaviour only; a peer draws
// it (control_peer.h).
//
// Looks that follow the parent (font, colour, showing hints) are asked of the parent until the control has its own, so
// a control costs no font until somebody asks it for one. Main thread only.
class TControl : public TComponent {
    VYN_OBJECT
  public:
    explicit TControl(TComponent* owner);
    ~TControl() override;

    // Place, in pixels of the parent's client area.
    TWinControl* Parent() const { return parent_; }
    virtual void SetParent(TWinControl* parent);
    int Left() const { return left_; }
    int Top() const { return top_; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    void SetLeft(int value) { SetBounds(value, top_, width_, height_); }
    void SetTop(int value) { SetBounds(left_, value, width_, height_); }
    void SetWidth(int value) { SetBounds(left_, top_, value, height_); }
    void SetHeight(int value) { SetBounds(left_, top_, width_, value); }
    // Within the MaximumExtent.
    virtual void SetBounds(int left, int top, int width, int height);
    TRect BoundsRect() const { return Bounds(left_, top_, width_, height_); }
    void SetBoundsRect(const TRect& rect) { SetBounds(rect.Left, rect.Top, rect.Width(), rect.Height()); }
    virtual TRect ClientRect() const { return {0, 0, width_, height_}; }
    int ClientWidth() const { return ClientRect().Width(); }
    int ClientHeight() const { return ClientRect().Height(); }
    void SetClientWidth(int value) { SetClientSize(value, ClientHeight()); }
    void SetClientHeight(int value) { SetClientSize(ClientWidth(), value); }
    virtual void SetClientSize(int width, int height);
    TAlign Align() const { return align_; }
    void SetAlign(TAlign value);
    TAnchors Anchors() const { return anchors_; }
    void SetAnchors(TAnchors value);
    TSizeConstraints* Constraints();
    const TSizeConstraints* ConstraintsOrNull() const { return constraints_.get(); }
    bool AutoSize() const { return autoSize_; }
    virtual void SetAutoSize(bool value);
    // Takes the size that suits the contents, when AutoSize is on.
    void AdjustSize();
    TPoint ClientOrigin() const;  // on the screen
    TPoint ClientToScreen(TPoint at) const;
    TPoint ScreenToClient(TPoint at) const;
    void BringToFront() { SetZOrder(true); }
    void SendToBack() { SetZOrder(false); }

    // Text.
    const AnsiString& Caption() const { return text_; }
    virtual void SetCaption(const AnsiString& text);
    const AnsiString& Text() const { return text_; }
    void SetText(const AnsiString& text) { SetCaption(text); }
    void SetName(const AnsiString& name) override;
    const AnsiString& Hint() const { return hint_; }
    virtual void SetHint(const AnsiString& value);
    // A hint's part before "|" shows beside the mouse, the part behind it in the status line; either alone is both.
    static AnsiString GetShortHint(const AnsiString& hint);
    static AnsiString GetLongHint(const AnsiString& hint);
    // The control's hint, or that of the nearest parent that has one; empty where showing hints is off.
    AnsiString EffectiveHint() const;

    // State.
    virtual bool Enabled() const { return enabled_; }
    virtual void SetEnabled(bool value);
    // Enabled, and every parent too.
    bool EffectivelyEnabled() const;
    virtual bool Visible() const { return visible_; }
    virtual void SetVisible(bool value);
    virtual void Show();
    void Hide() { SetVisible(false); }
    // Visible, and every parent too, up to a form that is shown.
    virtual bool Showing() const;

    // Looks.
    // The control's own font, made (as the parent's) when it is first asked for. Changing it ends ParentFont.
    TFont* Font();
    void SetFont(const TFont* font);
    // The font that counts, without making one.
    const TFont& EffectiveFont() const;
    bool ParentFont() const { return parentFont_; }
    void SetParentFont(bool value);
    TColor Color() const;
    void SetColor(TColor value);
    bool ParentColor() const { return parentColor_; }
    void SetParentColor(bool value);
    bool ShowHint() const;
    void SetShowHint(bool value);
    bool ParentShowHint() const { return parentShowHint_; }
    void SetParentShowHint(bool value);
    TBiDiMode BiDiMode() const;
    void SetBiDiMode(TBiDiMode value);
    bool ParentBiDiMode() const { return parentBiDiMode_; }
    void SetParentBiDiMode(bool value);
    TCursor Cursor() const { return cursor_; }
    void SetCursor(TCursor value);
    TPopupMenu* PopupMenu() const { return popupMenu_; }
    void SetPopupMenu(TPopupMenu* value);
    TControlStyle ControlStyle;

    // Dragging (drag.h).
    TDragMode DragMode = dmManual;
    TDragKind DragKind = dkDrag;
    TCursor DragCursor = crDrag;
    // Starts dragging this control: at once, or when the mouse has moved a little.
    void BeginDrag(bool immediate);
    bool Dragging() const;
    void EndDrag(bool drop);
    virtual void DragOver(TObject* source, int x, int y, TDragState state, bool& accept);
    virtual void DragDrop(TObject* source, int x, int y);
    virtual void DoStartDrag(TDragObject*& dragObject);
    virtual void DoEndDrag(TObject* target, int x, int y);

    // What the mouse does. The peer calls the Process operations, which keep the order of a press, a click and a
    // release; those call the virtual ones, which call the events. X and Y are the control's client pixels.
    void ProcessMouseDown(TMouseButton button, TShiftState shift, int x, int y);
    void ProcessMouseMove(TShiftState shift, int x, int y);
    void ProcessMouseUp(TMouseButton button, TShiftState shift, int x, int y);
    void ProcessDblClick(TMouseButton button, TShiftState shift, int x, int y);
    void ProcessMouseEnter();
    void ProcessMouseLeave();
    // Shows the control's (or a parent's) popup menu after asking OnContextPopup; false when there is none.
    bool ProcessContextPopup(int x, int y);
    // The user has resized or moved the control's window.
    virtual void ProcessBounds(int left, int top, int width, int height) { SetBounds(left, top, width, height); }
    virtual void Click();
    virtual void DblClick();
    virtual void MouseDown(TMouseButton button, TShiftState shift, int x, int y);
    virtual void MouseMove(TShiftState shift, int x, int y);
    virtual void MouseUp(TMouseButton button, TShiftState shift, int x, int y);
    virtual void MouseEnter();
    virtual void MouseLeave();
    bool MouseCapture() const { return mouseCapture_; }
    bool MouseInside() const { return mouseInside_; }

    // Messages: Perform calls WndProc at once.
    intptr_t Perform(uint32_t message, intptr_t wParam, intptr_t lParam);
    virtual void WndProc(TMessage& message) {}

    // Draws again.
    void Invalidate() { PeerChanged(PeerChange::Invalidate); }
    virtual void Repaint() { Invalidate(); }
    void Refresh() { Repaint(); }
    virtual void Update() {}

    // Moves and sizes by numerator/denominator, fonts of its own too.
    virtual void ChangeScale(int numerator, int denominator);
    // The mnemonic of its caption was pressed; true when it took it.
    virtual bool DialogChar(char key) { return false; }

    ControlPeer* Peer() const { return peer_.get(); }
    // Tells the peer, when there is one.
    void PeerChanged(PeerChange what) {
        if (peer_) peer_->Changed(what);
    }
    // Makes a peer (and those of what is inside) when the parent has one or this is a form that is shown.
    virtual void CreatePeer();
    virtual void DestroyPeer();

    bool HasParent() const override { return parent_ != nullptr; }
    TComponent* GetParentComponent() const override;
    void SetParentComponent(TComponent* parent) override;
    void Loaded() override;
    void DefineProperties(TFiler& filer) override;
    void Assign(const TPersistent* source) override { TComponent::Assign(source); }

    // Rules of storing.
    bool IsFontStored() const { return !parentFont_; }
    bool IsColorStored() const { return !parentColor_; }
    bool IsShowHintStored() const { return !parentShowHint_; }
    bool IsBiDiModeStored() const { return !parentBiDiMode_; }

    // Events, published by the classes that show them.
    TNotifyEvent OnClick;
    TNotifyEvent OnDblClick;
    TMouseEvent OnMouseDown;
    TMouseMoveEvent OnMouseMove;
    TMouseEvent OnMouseUp;
    TNotifyEvent OnMouseEnter;
    TNotifyEvent OnMouseLeave;
    TDragDropEvent OnDragDrop;
    TDragOverEvent OnDragOver;
    TStartDragEvent OnStartDrag;
    TEndDragEvent OnEndDrag;
    TNotifyEvent OnResize;
    TCanResizeEvent OnCanResize;
    TConstrainedResizeEvent OnConstrainedResize;
    TContextPopupEvent OnContextPopup;
    // Docking is not done; its events keep the handler names that forms store.
    enum class DockEvent { OnDockDrop, OnDockOver, OnEndDock, OnGetSiteInfo, OnStartDock, OnUnDock, Count };
    template <DockEvent which>
    const TNotifyEvent& GetDockEvent() const {
        return DockEventAt(which);
    }
    template <DockEvent which>
    void SetDockEvent(TNotifyEvent event) {
        PutDockEvent(which, std::move(event));
    }

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    // The text has changed.
    virtual void TextChanged();
    // The effective font (colour...) has changed, here or in a parent.
    virtual void FontChanged();
    virtual void ColorChanged() { PeerChanged(PeerChange::Color); }
    virtual void BiDiModeChanged() { PeerChanged(PeerChange::Style); }
    virtual void EnabledChanged();
    virtual void VisibleChanged();
    virtual void Resize();
    // The size that suits the contents: false keeps the present one.
    virtual bool CanAutoSize(int& newWidth, int& newHeight) { return false; }
    // A size about to be taken; false refuses it.
    virtual bool CanResize(int& newWidth, int& newHeight);
    virtual void ConstrainedResize(int& minWidth, int& minHeight, int& maxWidth, int& maxHeight);
    virtual void SetZOrder(bool topMost);
    // Tells the parent to lay its controls out again.
    void RequestAlign();
    // Sets the text without telling anybody but the peer.
    void PutText(const AnsiString& text) { text_ = text; }
    // First size, without events.
    void SetInitialSize(int width, int height) {
        width_ = width;
        height_ = height;
    }
    void SetDefaultColor(TColor color, bool parentColor) {
        color_ = color;
        parentColor_ = parentColor;
    }
    void SetFontFromParent(bool value) { parentFont_ = value; }
    void PutVisible(bool value) { visible_ = value; }
    // Places the control as its anchors say, in a parent whose client area has this size now.
    void PlaceByAnchors(TSize parentClient);
    // Notes the present place as the one that anchors start from.
    void UpdateAnchorRules();
    void NoteAnchorRules();            // where there are none yet
    void BoundsSet(const TRect& old);  // not by its parent

  private:
    friend class TWinControl;
    void OwnFontChanged();
    const TNotifyEvent& DockEventAt(DockEvent which) const;
    void PutDockEvent(DockEvent which, TNotifyEvent event);
    struct AnchorRules {
        TSize parentClient;
        TRect bounds;
    };

    TWinControl* parent_ = nullptr;
    int left_ = 0;
    int top_ = 0;
    int width_ = 0;
    int height_ = 0;
    TColor color_ = clWindow;
    TCursor cursor_ = crDefault;
    TAlign align_ = alNone;
    TBiDiMode biDiMode_ = bdLeftToRight;
    TAnchors anchors_ = {akLeft, akTop};
    bool autoSize_ : 1;
    bool enabled_ : 1;
    bool visible_ : 1;
    bool parentFont_ : 1;
    bool parentColor_ : 1;
    bool parentShowHint_ : 1;
    bool showHint_ : 1;
    bool parentBiDiMode_ : 1;
    bool mouseCapture_ : 1;
    bool mouseInside_ : 1;
    bool clicked_ : 1;
    bool sizing_ : 1;
    bool windowed_ : 1;
    AnsiString text_;
    AnsiString hint_;
    std::unique_ptr<TFont> font_;
    std::unique_ptr<TSizeConstraints> constraints_;
    std::unique_ptr<AnchorRules> anchorRules_;
    std::unique_ptr<TNotifyEvent[]> dockEvents_;
    TPopupMenu* popupMenu_ = nullptr;

  protected:
    std::unique_ptr<ControlPeer> peer_;
};

// A control without a window of its own: it never has the keyboard.
class TGraphicControl : public TControl {
    VYN_OBJECT
  public:
    explicit TGraphicControl(TComponent* owner) : TControl(owner) {}
};

}  // namespace vyn
