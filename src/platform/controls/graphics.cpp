#include "platform/controls/graphics.h"

#include "platform/controls/enum_names.h"
#include "platform/controls/geometry.h"
#include "platform/controls/text_metrics.h"
#include "platform/objects/class_info.h"
#include "platform/text/compare.h"

namespace vyn {

namespace font_detail {

constexpr int kPointsPerInch = 72;
constexpr int kDefaultHeight = -11;
constexpr int kDefaultPixelsPerInch = 96;

}  // namespace font_detail

VYN_ENUM_NAMES(TFontPitch, "fpDefault", "fpVariable", "fpFixed")
VYN_ENUM_NAMES(TFontStyle, "fsBold", "fsItalic", "fsUnderline", "fsStrikeOut")
VYN_ENUM_NAMES(TPenStyle, "psSolid", "psDash", "psDot", "psDashDot", "psDashDotDot", "psClear", "psInsideFrame")
VYN_ENUM_NAMES(TPenMode, "pmBlack", "pmWhite", "pmNop", "pmNot", "pmCopy", "pmNotCopy", "pmMergePenNot", "pmMaskPenNot",
               "pmMergeNotPen", "pmMaskNotPen", "pmMerge", "pmNotMerge", "pmMask", "pmNotMask", "pmXor", "pmNotXor")
VYN_ENUM_NAMES(TBrushStyle, "bsSolid", "bsClear", "bsHorizontal", "bsVertical", "bsFDiagonal", "bsBDiagonal", "bsCross",
               "bsDiagCross")

const IntegerType& TypeInfoOf(TypeTag<TFontCharset>) {
    static const IntegerType type("TFontCharset", {{"ANSI_CHARSET", ANSI_CHARSET},
                                                   {"DEFAULT_CHARSET", DEFAULT_CHARSET},
                                                   {"SYMBOL_CHARSET", SYMBOL_CHARSET},
                                                   {"MAC_CHARSET", MAC_CHARSET},
                                                   {"SHIFTJIS_CHARSET", SHIFTJIS_CHARSET},
                                                   {"HANGEUL_CHARSET", HANGEUL_CHARSET},
                                                   {"JOHAB_CHARSET", JOHAB_CHARSET},
                                                   {"GB2312_CHARSET", GB2312_CHARSET},
                                                   {"CHINESEBIG5_CHARSET", CHINESEBIG5_CHARSET},
                                                   {"GREEK_CHARSET", GREEK_CHARSET},
                                                   {"TURKISH_CHARSET", TURKISH_CHARSET},
                                                   {"VIETNAMESE_CHARSET", VIETNAMESE_CHARSET},
                                                   {"HEBREW_CHARSET", HEBREW_CHARSET},
                                                   {"ARABIC_CHARSET", ARABIC_CHARSET},
                                                   {"BALTIC_CHARSET", BALTIC_CHARSET},
                                                   {"RUSSIAN_CHARSET", RUSSIAN_CHARSET},
                                                   {"THAI_CHARSET", THAI_CHARSET},
                                                   {"EASTEUROPE_CHARSET", EASTEUROPE_CHARSET},
                                                   {"OEM_CHARSET", OEM_CHARSET}});
    return type;
}

const ClassInfo& TGraphicsObject::StaticClass() {
    static const ClassInfo info = DefineClass<TGraphicsObject, TPersistent>("TGraphicsObject");
    return info;
}

const ClassInfo& TFont::StaticClass() {
    static const ClassInfo info = DefineClass<TFont, TGraphicsObject>("TFont")
                                      .Published("Charset", &TFont::Charset, &TFont::SetCharset)
                                      .Published("Color", &TFont::Color, &TFont::SetColor)
                                      .Published("Height", &TFont::Height, &TFont::SetHeight)
                                      .Published("Name", &TFont::Name, &TFont::SetName)
                                      .Published("Pitch", &TFont::Pitch, &TFont::SetPitch)
                                      .Default(fpDefault)
                                      .Published("Size", &TFont::Size, &TFont::SetSize)
                                      .NeverStored()
                                      .Published("Style", &TFont::Style, &TFont::SetStyle);
    return info;
}

TFont::TFont()
    : name_("MS Sans Serif"),
      height_(font_detail::kDefaultHeight),
      pixelsPerInch_(font_detail::kDefaultPixelsPerInch),
      color_(clWindowText),
      charset_(DEFAULT_CHARSET) {}

void TFont::SetCharset(TFontCharset value) {
    if (charset_ == value) return;
    charset_ = value;
    Changed();
}
void TFont::SetColor(TColor value) {
    if (color_ == value) return;
    color_ = value;
    Changed();
}
void TFont::SetHeight(int value) {
    if (height_ == value) return;
    height_ = value;
    Changed();
}
void TFont::SetName(const AnsiString& value) {
    if (name_ == value || value.empty()) return;
    name_ = value;
    Changed();
}
void TFont::SetPitch(TFontPitch value) {
    if (pitch_ == value) return;
    pitch_ = value;
    Changed();
}
int TFont::Size() const { return -MulDiv(height_, font_detail::kPointsPerInch, pixelsPerInch_); }
void TFont::SetSize(int value) { SetHeight(-MulDiv(value, pixelsPerInch_, font_detail::kPointsPerInch)); }
void TFont::SetStyle(TFontStyles value) {
    if (style_ == value) return;
    style_ = value;
    Changed();
}

void TFont::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TFont>(source);
    if (!other) {
        TGraphicsObject::Assign(source);
        return;
    }
    if (this == other || (*this == *other && pixelsPerInch_ == other->pixelsPerInch_)) return;
    name_ = other->name_;
    height_ = other->height_;
    pixelsPerInch_ = other->pixelsPerInch_;
    color_ = other->color_;
    charset_ = other->charset_;
    pitch_ = other->pitch_;
    style_ = other->style_;
    Changed();
}

int TFont::LineHeight() const { return CurrentTextMetrics().LineHeight(*this); }

bool operator==(const TFont& a, const TFont& b) {
    return a.height_ == b.height_ && a.color_ == b.color_ && a.style_ == b.style_ && a.charset_ == b.charset_ &&
           a.pitch_ == b.pitch_ && a.name_ == b.name_;
}

const TFont& DefaultFont() {
    static const TFont font;
    return font;
}

const ClassInfo& TPen::StaticClass() {
    static const ClassInfo info = DefineClass<TPen, TGraphicsObject>("TPen")
                                      .Published("Color", &TPen::Color, &TPen::SetColor)
                                      .Default(clBlack)
                                      .Published("Mode", &TPen::Mode, &TPen::SetMode)
                                      .Default(pmCopy)
                                      .Published("Style", &TPen::Style, &TPen::SetStyle)
                                      .Default(psSolid)
                                      .Published("Width", &TPen::Width, &TPen::SetWidth)
                                      .Default(1);
    return info;
}

void TPen::SetColor(TColor value) {
    color_ = value;
    Changed();
}
void TPen::SetMode(TPenMode value) {
    mode_ = value;
    Changed();
}
void TPen::SetStyle(TPenStyle value) {
    style_ = value;
    Changed();
}
void TPen::SetWidth(int value) {
    if (value < 0) return;
    width_ = value;
    Changed();
}

void TPen::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TPen>(source);
    if (!other) {
        TGraphicsObject::Assign(source);
        return;
    }
    color_ = other->color_;
    mode_ = other->mode_;
    style_ = other->style_;
    width_ = other->width_;
    Changed();
}

const ClassInfo& TBrush::StaticClass() {
    static const ClassInfo info = DefineClass<TBrush, TGraphicsObject>("TBrush")
                                      .Published("Color", &TBrush::Color, &TBrush::SetColor)
                                      .Default(clWhite)
                                      .Published("Style", &TBrush::Style, &TBrush::SetStyle)
                                      .Default(TBrushStyle::bsSolid);
    return info;
}

void TBrush::SetColor(TColor value) {
    color_ = value;
    Changed();
}
void TBrush::SetStyle(TBrushStyle value) {
    style_ = value;
    Changed();
}

void TBrush::Assign(const TPersistent* source) {
    const auto* other = ObjectCast<TBrush>(source);
    if (!other) {
        TGraphicsObject::Assign(source);
        return;
    }
    color_ = other->color_;
    style_ = other->style_;
    Changed();
}

}  // namespace vyn
