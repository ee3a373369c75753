#pragma once

#include "platform/controls/property_catalogue.h"
#include "platform/controls/win_control.h"

namespace vyn {

// Text that stands still. Its mnemonic takes the keyboard to FocusControl.
class TCustomLabel : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TCustomLabel(TComponent* owner);

    TAlignment Alignment() const { return alignment_; }
    void SetAlignment(TAlignment value);
    TWinControl* FocusControl() const { return focusControl_; }
    void SetFocusControl(TWinControl* value);
    TTextLayout Layout() const { return layout_; }
    void SetLayout(TTextLayout value);
    bool ShowAccelChar() const { return showAccelChar_; }
    void SetShowAccelChar(bool value);
    bool Transparent() const { return transparent_; }
    void SetTransparent(bool value);
    bool WordWrap() const { return wordWrap_; }
    void SetWordWrap(bool value);
    void SetAutoSize(bool value) override;
    // What is shown; data-aware labels show their field.
    virtual AnsiString GetLabelText() const { return Caption(); }
    bool DialogChar(char key) override;
    void Loaded() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void TextChanged() override;
    void FontChanged() override;
    bool CanAutoSize(int& newWidth, int& newHeight) override;
    // The font's, the text's or the wrapping's change: takes the size that suits them.
    void AdjustBounds();

  private:
    TWinControl* focusControl_ = nullptr;
    TAlignment alignment_ = taLeftJustify;
    TTextLayout layout_ = tlTop;
    bool showAccelChar_ = true;
    bool transparent_ = false;
    bool wordWrap_ = false;
};
const PropertyCatalogue& LabelProperties();

class TLabel : public TCustomLabel {
    VYN_OBJECT
  public:
    explicit TLabel(TComponent* owner) : TCustomLabel(owner) {}
};

enum class TStaticBorderStyle { sbsNone, sbsSingle, sbsSunken };
using enum TStaticBorderStyle;
const EnumType& TypeInfoOf(TypeTag<TStaticBorderStyle>);

// A label with a window of its own.
class TCustomStaticText : public TWinControl {
    VYN_OBJECT
  public:
    explicit TCustomStaticText(TComponent* owner);

    TAlignment Alignment() const { return alignment_; }
    void SetAlignment(TAlignment value);
    TStaticBorderStyle BorderStyle() const { return borderStyle_; }
    void SetBorderStyle(TStaticBorderStyle value);
    TWinControl* FocusControl() const { return focusControl_; }
    void SetFocusControl(TWinControl* value);
    bool ShowAccelChar() const { return showAccelChar_; }
    void SetShowAccelChar(bool value);
    void SetAutoSize(bool value) override;
    bool DialogChar(char key) override;
    void Loaded() override;

  protected:
    void Notification(TComponent* component, TOperation operation) override;
    void TextChanged() override;
    void FontChanged() override;
    bool CanAutoSize(int& newWidth, int& newHeight) override;

  private:
    TWinControl* focusControl_ = nullptr;
    TAlignment alignment_ = taLeftJustify;
    TStaticBorderStyle borderStyle_ = sbsNone;
    bool showAccelChar_ = true;
};

class TStaticText : public TCustomStaticText {
    VYN_OBJECT
  public:
    explicit TStaticText(TComponent* owner) : TCustomStaticText(owner) {}
};

enum class TBevelShape { bsBox, bsFrame, bsTopLine, bsBottomLine, bsLeftLine, bsRightLine, bsSpacer };
using enum TBevelShape;
const EnumType& TypeInfoOf(TypeTag<TBevelShape>);
enum class TBevelStyle { bsLowered, bsRaised };
using enum TBevelStyle;
const EnumType& TypeInfoOf(TypeTag<TBevelStyle>);

// A line or a frame.
class TBevel : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TBevel(TComponent* owner);
    TBevelShape Shape() const { return shape_; }
    void SetShape(TBevelShape value);
    TBevelStyle Style() const { return style_; }
    void SetStyle(TBevelStyle value);

  private:
    TBevelShape shape_ = bsBox;
    TBevelStyle style_ = bsLowered;
};

}  // namespace vyn
