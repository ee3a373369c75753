#pragma once

#include "platform/controls/win_control.h"

namespace vyn {

class TScrollingWinControl;

enum class TScrollBarKind { sbHorizontal, sbVertical };
using enum TScrollBarKind;
enum class TScrollBarStyle { ssRegular, ssFlat, ssHotTrack };
const EnumType& TypeInfoOf(TypeTag<TScrollBarStyle>);
using TScrollBarInc = int32_t;

// One scroll bar of a box that scrolls: its range in pixels and where it stands.
class TControlScrollBar : public TPersistent {
    VYN_OBJECT
  public:
    TControlScrollBar(TScrollingWinControl* control, TScrollBarKind kind) : control_(control), kind_(kind) {}

    TScrollBarKind Kind() const { return kind_; }
    int ButtonSize = 0;
    TColor Color = clBtnHighlight;
    TScrollBarInc Increment = 8;
    int Margin() const { return margin_; }
    void SetMargin(int value);
    bool ParentColor = true;
    // 0 to Range less the client size.
    int Position() const { return position_; }
    void SetPosition(int value);
    int Range() const;
    void SetRange(int value);
    bool IsRangeStored() const;
    bool Smooth = false;
    int Size = 0;
    TScrollBarStyle Style = TScrollBarStyle::ssRegular;
    int ThumbSize = 0;
    bool Tracking = false;
    bool Visible() const { return visible_; }
    void SetVisible(bool value);
    // The range is longer than the box, and the bar may show.
    bool IsScrollBarVisible() const;
    int ScrollPos() const { return IsScrollBarVisible() ? position_ : 0; }
    void ChangeScale(int numerator, int denominator);
    void Assign(const TPersistent* source) override;
    TPersistent* GetOwner() const override;

  private:
    friend class TScrollingWinControl;
    int ClientLength() const;

    TScrollingWinControl* control_;
    TScrollBarKind kind_;
    int margin_ = 0;
    int position_ = 0;
    int range_ = 0;
    bool visible_ = true;
};

// A window that scrolls its controls. AutoScroll takes the range from the controls inside.
class TScrollingWinControl : public TWinControl {
    VYN_OBJECT
  public:
    explicit TScrollingWinControl(TComponent* owner);
    ~TScrollingWinControl() override;

    TControlScrollBar* HorzScrollBar() { return &horizontal_; }
    void SetHorzScrollBar(TControlScrollBar* value) { horizontal_.Assign(value); }
    TControlScrollBar* VertScrollBar() { return &vertical_; }
    void SetVertScrollBar(TControlScrollBar* value) { vertical_.Assign(value); }
    bool AutoScroll() const { return autoScroll_; }
    void SetAutoScroll(bool value);
    void ScrollInView(TControl* control);
    void AlignControls(TControl* changed) override;
    TRect ClientRect() const override;
    void ScaleScrollBars(int numerator, int denominator);
    bool DoMouseWheel(TShiftState shift, int wheelDelta, TPoint mousePos) override;

  protected:
    TPoint ScrollOffset() const override;
    void ContentsMoved() override;
    virtual TRect UnscrolledClientRect() const { return TWinControl::ClientRect(); }
    void PutAutoScroll(bool value) { autoScroll_ = value; }

  private:
    friend class TControlScrollBar;
    // Takes the ranges from the controls inside, when something has moved since.
    void UpdateRanges() const;

    mutable TControlScrollBar horizontal_;
    mutable TControlScrollBar vertical_;
    bool autoScroll_ = true;
    mutable bool rangesValid_ = true;
};

class TScrollBox : public TScrollingWinControl {
    VYN_OBJECT
  public:
    explicit TScrollBox(TComponent* owner);
    TBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TBorderStyle value);

  protected:
    TRect UnscrolledClientRect() const override;

  private:
    TBorderStyle borderStyle_ = TBorderStyle::bsSingle;
};

}  // namespace vyn
