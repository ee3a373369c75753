#pragma once

#include "platform/controls/property_catalogue.h"
#include "platform/controls/win_control.h"

namespace vyn {

using TBevelWidth = int32_t;

// A surface with bevels.
class TCustomPanel : public TCustomControl {
    VYN_OBJECT
  public:
    explicit TCustomPanel(TComponent* owner);

    TAlignment Alignment() const { return alignment_; }
    void SetAlignment(TAlignment value);
    TBevelCut BevelInner() const { return bevelInner_; }
    void SetBevelInner(TBevelCut value);
    TBevelCut BevelOuter() const { return bevelOuter_; }
    void SetBevelOuter(TBevelCut value);
    TBevelWidth BevelWidth() const { return bevelWidth_; }
    void SetBevelWidth(TBevelWidth value);
    TBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TBorderStyle value);
    bool FullRepaint = true;
    bool Locked = false;
    void AdjustClientRect(TRect& rect) const override;

  protected:
    bool CanAutoSize(int& newWidth, int& newHeight) override;

  private:
    void BevelChanged();
    TAlignment alignment_ = taCenter;
    TBevelCut bevelInner_ = bvNone;
    TBevelCut bevelOuter_ = bvRaised;
    TBorderStyle borderStyle_ = TBorderStyle::bsNone;
    TBevelWidth bevelWidth_ = 1;
};
const PropertyCatalogue& PanelProperties();

class TPanel : public TCustomPanel {
    VYN_OBJECT
  public:
    explicit TPanel(TComponent* owner) : TCustomPanel(owner) {}
};

enum class TResizeStyle { rsNone, rsLine, rsUpdate, rsPattern };
using enum TResizeStyle;
const EnumType& TypeInfoOf(TypeTag<TResizeStyle>);
using TCanResizeSplitterEvent = Event<void(TObject* Sender, int& NewSize, bool& Accept)>;

// A bar between an aligned control and the rest of its parent; moving it sizes that control.
class TSplitter : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TSplitter(TComponent* owner);

    bool AutoSnap = true;
    bool Beveled() const { return beveled_; }
    void SetBeveled(bool value);
    // The least size of the control and of what is left beside it.
    int MinSize() const { return minSize_; }
    void SetMinSize(int value) { minSize_ = value < 1 ? 1 : value; }
    TResizeStyle ResizeStyle = rsPattern;
    TCanResizeSplitterEvent OnCanResize;
    TNotifyEvent OnMoved;
    TNotifyEvent OnPaint;

    // The control that is sized: the aligned one next to the splitter; null when there is none.
    TControl* FindControl() const;
    // Moves by so many pixels, as far as the bounds allow; fires OnMoved.
    void MoveBy(int deltaX, int deltaY);
    void MouseDown(TMouseButton button, TShiftState shift, int x, int y) override;
    void MouseMove(TShiftState shift, int x, int y) override;
    void MouseUp(TMouseButton button, TShiftState shift, int x, int y) override;
    // Where a line shows the new place while the mouse is down (rsLine, rsPattern); 0 at rest.
    int DragOffset() const { return split_; }

  private:
    bool ComputeNewSize(TControl* control, int delta, int& newSize);
    void Apply(TControl* control, int newSize);

    int minSize_ = 30;
    TPoint downAt_;
    TControl* moving_ = nullptr;
    int split_ = 0;
    int newSize_ = 0;
    bool beveled_ = false;
};

}  // namespace vyn
