#pragma once

#include "platform/controls/colors.h"
#include "platform/objects/event.h"
#include "platform/objects/persistent.h"

namespace vyn {

enum class TFontPitch { fpDefault, fpVariable, fpFixed };
using enum TFontPitch;
enum class TFontStyle { fsBold, fsItalic, fsUnderline, fsStrikeOut };
using enum TFontStyle;
using TFontStyles = Set<TFontStyle>;
// Character sets; text is Windows-1252 whatever a font's set says, but the number is kept as it was stored.
enum TFontCharset : int32_t {
    ANSI_CHARSET = 0,
    DEFAULT_CHARSET = 1,
    SYMBOL_CHARSET = 2,
    MAC_CHARSET = 77,
    SHIFTJIS_CHARSET = 128,
    HANGEUL_CHARSET = 129,
    JOHAB_CHARSET = 130,
    GB2312_CHARSET = 134,
    CHINESEBIG5_CHARSET = 136,
    GREEK_CHARSET = 161,
    TURKISH_CHARSET = 162,
    VIETNAMESE_CHARSET = 163,
    HEBREW_CHARSET = 177,
    ARABIC_CHARSET = 178,
    BALTIC_CHARSET = 186,
    RUSSIAN_CHARSET = 204,
    THAI_CHARSET = 222,
    EASTEUROPE_CHARSET = 238,
    OEM_CHARSET = 255,
};
enum class TPenStyle { psSolid, psDash, psDot, psDashDot, psDashDotDot, psClear, psInsideFrame };
using enum TPenStyle;
enum class TPenMode {
    pmBlack,
    pmWhite,
    pmNop,
    pmNot,
    pmCopy,
    pmNotCopy,
    pmMergePenNot,
    pmMaskPenNot,
    pmMergeNotPen,
    pmMaskNotPen,
    pmMerge,
    pmNotMerge,
    pmMask,
    pmNotMask,
    pmXor,
    pmNotXor
};
using enum TPenMode;
enum class TBrushStyle { bsSolid, bsClear, bsHorizontal, bsVertical, bsFDiagonal, bsBDiagonal, bsCross, bsDiagCross };

const EnumType& TypeInfoOf(TypeTag<TFontPitch>);
const EnumType& TypeInfoOf(TypeTag<TFontStyle>);
const IntegerType& TypeInfoOf(TypeTag<TFontCharset>);
const EnumType& TypeInfoOf(TypeTag<TPenStyle>);
const EnumType& TypeInfoOf(TypeTag<TPenMode>);
const EnumType& TypeInfoOf(TypeTag<TBrushStyle>);

// A part that tells when it changes. Owned by what it draws for.
class TGraphicsObject : public TPersistent {
    VYN_OBJECT
  public:
    TNotifyEvent OnChange;

  protected:
    virtual void Changed() { OnChange(this); }
};

// How text looks. Height is pixels at PixelsPerInch, negative for the letters' height, as stored forms have it; Size
// is the same in points. The desktop's own font ("MS Sans Serif", "MS Shell Dlg", "Tahoma" of 8 points) is drawn by
// the toolkit with the system's font.
class TFont : public TGraphicsObject {
    VYN_OBJECT
  public:
    TFont();

    TFontCharset Charset() const { return charset_; }
    void SetCharset(TFontCharset value);
    TColor Color() const { return color_; }
    void SetColor(TColor value);
    int Height() const { return height_; }
    void SetHeight(int value);
    const AnsiString& Name() const { return name_; }
    void SetName(const AnsiString& value);
    TFontPitch Pitch() const { return pitch_; }
    void SetPitch(TFontPitch value);
    int Size() const;
    void SetSize(int value);
    TFontStyles Style() const { return style_; }
    void SetStyle(TFontStyles value);
    int PixelsPerInch() const { return pixelsPerInch_; }
    void SetPixelsPerInch(int value) { pixelsPerInch_ = value; }

    void Assign(const TPersistent* source) override;
    // The height of a line of text, in pixels (text_metrics.h).
    int LineHeight() const;
    friend bool operator==(const TFont& a, const TFont& b);

  private:
    AnsiString name_;
    int height_;
    int pixelsPerInch_;
    TColor color_;
    TFontCharset charset_;
    TFontPitch pitch_ = fpDefault;
    TFontStyles style_;
};

// The font of what has no other: MS Sans Serif, height -11, clWindowText.
const TFont& DefaultFont();

class TPen : public TGraphicsObject {
    VYN_OBJECT
  public:
    TColor Color() const { return color_; }
    void SetColor(TColor value);
    TPenMode Mode() const { return mode_; }
    void SetMode(TPenMode value);
    TPenStyle Style() const { return style_; }
    void SetStyle(TPenStyle value);
    int Width() const { return width_; }
    void SetWidth(int value);
    void Assign(const TPersistent* source) override;

  private:
    TColor color_ = clBlack;
    TPenMode mode_ = pmCopy;
    TPenStyle style_ = psSolid;
    int width_ = 1;
};

class TBrush : public TGraphicsObject {
    VYN_OBJECT
  public:
    TColor Color() const { return color_; }
    void SetColor(TColor value);
    TBrushStyle Style() const { return style_; }
    void SetStyle(TBrushStyle value);
    void Assign(const TPersistent* source) override;

  private:
    TColor color_ = clWhite;
    TBrushStyle style_ = TBrushStyle::bsSolid;
};

}  // namespace vyn
