#pragma once

#include <memory>

#include "platform/controls/image_lists.h"
#include "platform/controls/mask_edits.h"

namespace vyn {

// When an edit box draws its border solid, beside the frame that every edit has.
enum class TCtrlBorderStyle {
    cbs_MouseOver,  // while the mouse is over it
    cbs_Focused,    // while it has the keyboard
};
using enum TCtrlBorderStyle;
const EnumType& TypeInfoOf(TypeTag<TCtrlBorderStyle>);
using TCtrlBorderStyles = Set<TCtrlBorderStyle>;

class TBaseVynEditBox;

// The small button at the right edge of an edit box. Made and owned by its box; never has the keyboard: what it does is
// reached by a key of the box. Main thread only.
class TVynEditBoxSpeedButton : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TVynEditBoxSpeedButton(TBaseVynEditBox& box);

    // A picture of its own: one, or squares side by side (up, disabled, pressed). Empty: the pictures that go with what
    // the box looks up.
    TBitmap* Glyph() { return &glyph_; }
    const TBitmap& GlyphRef() const { return glyph_; }
    void SetGlyph(const TBitmap* value) { glyph_.Assign(value); }
    // What is drawn, or null: three dots. The button's own or the box's; ask again after each change.
    const TCustomImageList* Images() const;

    // How it looks just now.
    enum class State { Normal, Hot, Pressed, Disabled };
    State CurrentState() const;
    // Which of the pictures goes with the state; a list that lacks it gives its first. -1 when there is none.
    int ImageIndex() const;

    TBaseVynEditBox& Box() const { return box_; }
    // A press, by the mouse or by assistive technology: gives the box the keyboard, then tells it.
    void Click() override;
    void MouseEnter() override;
    void MouseLeave() override;
    void MouseDown(TMouseButton button, TShiftState shift, int x, int y) override;
    void MouseMove(TShiftState shift, int x, int y) override;
    void MouseUp(TMouseButton button, TShiftState shift, int x, int y) override;

  protected:
    void EnabledChanged() override;

  private:
    void GlyphChanged();

    TBaseVynEditBox& box_;
    TBitmap glyph_;
    std::unique_ptr<TImageList> ownImages_;
    bool down_ = false;
    bool over_ = false;
};

// An edit with a button inside its right edge. The text keeps clear of the button. Main thread only.
class TBaseVynEditBox : public TCustomMaskEdit {
    VYN_OBJECT
  public:
    explicit TBaseVynEditBox(TComponent* owner);
    ~TBaseVynEditBox() override;

    bool ShowButton() const { return showButton_; }
    void SetShowButton(bool value);
    TBitmap* ButtonGlyph() { return button_->Glyph(); }
    void SetButtonGlyph(const TBitmap* value) { button_->SetGlyph(value); }
    bool IsButtonGlyphStored() const { return !button_->GlyphRef().Empty(); }
    // Draws with the frame of every edit at rest, and with a solid line in the moments that the set names.
    TCtrlBorderStyles CtrlBorderStyles() const { return borderStyles_; }
    void SetCtrlBorderStyles(TCtrlBorderStyles value);
    bool DrawsSolidBorder() const;
    virtual bool IsTextStored() const { return true; }
    virtual bool IsMaxLengthStored() const { return true; }
    TNotifyEvent OnButtonClick;

    TVynEditBoxSpeedButton& Button() const { return *button_; }
    // What a press of the button, or its key, does.
    virtual void ButtonClick() { OnButtonClick(this); }
    // The pictures of a button without a glyph of its own, or null.
    virtual const TCustomImageList* ButtonImages() const { return nullptr; }
    int RightTextMargin() const override;

    void SetBounds(int left, int top, int width, int height) override;
    void SetBorderStyle(TBorderStyle value) override;
    void MouseEnter() override;
    void MouseLeave() override;
    void DoEnter() override;
    void DoExit() override;

  protected:
    friend class TVynEditBoxSpeedButton;
    // Puts the button inside the frame, and the text beside it.
    void PlaceButton();

  private:
    TVynEditBoxSpeedButton* button_;
    TCtrlBorderStyles borderStyles_{cbs_MouseOver, cbs_Focused};
    bool showButton_ = true;
};
const PropertyCatalogue& BaseEditBoxProperties();

}  // namespace vyn
