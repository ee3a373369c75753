#pragma once

#include "platform/controls/buttons.h"
#include "platform/controls/pictures.h"

namespace vyn {

enum class TBitBtnKind { bkCustom, bkOK, bkCancel, bkHelp, bkYes, bkNo, bkClose, bkAbort, bkRetry, bkIgnore, bkAll };
using enum TBitBtnKind;
const EnumType& TypeInfoOf(TypeTag<TBitBtnKind>);
enum class TButtonLayout { blGlyphLeft, blGlyphRight, blGlyphTop, blGlyphBottom };
using enum TButtonLayout;
const EnumType& TypeInfoOf(TypeTag<TButtonLayout>);
enum class TButtonStyle { bsAutoDetect, bsWin31, bsNew };
using enum TButtonStyle;
const EnumType& TypeInfoOf(TypeTag<TButtonStyle>);
using TNumGlyphs = int8_t;

// The picture of a button: one to four pictures side by side (up, disabled, down, staying down), whose lower left
// pixel is see-through.
class ButtonGlyph {
  public:
    explicit ButtonGlyph(std::function<void()> changed);
    TBitmap* Bitmap() { return &bitmap_; }
    void SetBitmap(const TBitmap* value);
    const TBitmap& BitmapRef() const { return bitmap_; }
    TNumGlyphs Count() const { return count_; }
    // Outside 1 to 4: the nearest.
    void SetCount(int value);

  private:
    void Changed();
    TBitmap bitmap_;
    TNumGlyphs count_ = 1;
    bool setting_ = false;
    std::function<void()> changed_;
};

// A push button with a picture. A kind other than bkCustom brings caption, picture (the toolkit's standard one), modal
// result, Default and Cancel; changing one of these makes it custom again.
class TBitBtn : public TButton {
    VYN_OBJECT
  public:
    explicit TBitBtn(TComponent* owner);

    TBitBtnKind Kind() const;
    void SetKind(TBitBtnKind value);
    TBitmap* Glyph() { return glyph_.Bitmap(); }
    void SetGlyph(TBitmap* value) { glyph_.SetBitmap(value); }
    TButtonLayout Layout() const { return layout_; }
    void SetLayout(TButtonLayout value);
    int Margin() const { return margin_; }
    void SetMargin(int value);
    TNumGlyphs NumGlyphs() const { return glyph_.Count(); }
    void SetNumGlyphs(TNumGlyphs value) { glyph_.SetCount(value); }
    int Spacing() const { return spacing_; }
    void SetSpacing(int value);
    TButtonStyle Style() const { return style_; }
    void SetStyle(TButtonStyle value);
    bool IsCustom() const { return Kind() == bkCustom; }
    bool IsCustomCaption() const;
    bool IsCustomGlyph() const;
    void Click() override;
    void SetModalResult(vyn::TModalResult value) override;

  private:
    void GlyphChanged();
    ButtonGlyph glyph_;
    TBitBtnKind kind_ = bkCustom;
    TButtonLayout layout_ = blGlyphLeft;
    TButtonStyle style_ = bsAutoDetect;
    int margin_ = -1;
    int spacing_ = 4;
    bool modifiedGlyph_ = false;
    bool settingKind_ = false;
};

// A button without a window, for tool bars; those of one GroupIndex go down one at a time.
class TSpeedButton : public TGraphicControl {
    VYN_OBJECT
  public:
    explicit TSpeedButton(TComponent* owner);

    bool AllowAllUp() const { return allowAllUp_; }
    void SetAllowAllUp(bool value);
    int GroupIndex() const { return groupIndex_; }
    void SetGroupIndex(int value);
    bool Down() const { return down_; }
    void SetDown(bool value);
    bool Flat() const { return flat_; }
    void SetFlat(bool value);
    TBitmap* Glyph() { return glyph_.Bitmap(); }
    void SetGlyph(TBitmap* value) { glyph_.SetBitmap(value); }
    bool IsGlyphStored() const { return !glyph_.BitmapRef().Empty(); }
    TButtonLayout Layout() const { return layout_; }
    void SetLayout(TButtonLayout value);
    int Margin() const { return margin_; }
    void SetMargin(int value);
    TNumGlyphs NumGlyphs() const { return glyph_.Count(); }
    void SetNumGlyphs(TNumGlyphs value) { glyph_.SetCount(value); }
    int Spacing() const { return spacing_; }
    void SetSpacing(int value);
    bool Transparent() const { return transparent_; }
    void SetTransparent(bool value);
    // A press by mouse or mnemonic: goes down in its group, then clicks.
    void ProcessPress();
    bool DialogChar(char key) override;

  private:
    void UpdateExclusive();
    ButtonGlyph glyph_;
    TButtonLayout layout_ = blGlyphLeft;
    int groupIndex_ = 0;
    int margin_ = -1;
    int spacing_ = 4;
    bool allowAllUp_ = false;
    bool down_ = false;
    bool flat_ = false;
    bool transparent_ = true;
};

}  // namespace vyn
