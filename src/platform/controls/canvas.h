#pragma once

#include <memory>
#include <vector>

#include "platform/controls/geometry.h"
#include "platform/controls/graphics.h"
#include "platform/data/field_types.h"

namespace vyn {

// Where handlers draw: what they draw is kept as a list of shapes, which the toolkit draws. Colours of the desktop stay
// names until then. Belongs to the control that has it drawn; drawn on only while its event is fired.
class TCanvas : public TPersistent {
    VYN_OBJECT
  public:
    struct Shape {
        enum class Kind { Fill, Text, Line };
        Kind What;
        TRect Place;  // of a line: from its left top to its right bottom, in that direction
        TColor Color = clBlack;
        int Width = 1;    // of a line
        AnsiString Text;  // cut to its place
        TAlignment Alignment = taLeftJustify;
        std::unique_ptr<TFont> Font;  // of a text
    };

    // What the next shapes are drawn with.
    TFont* Font() { return &font_; }
    TBrush* Brush() { return &brush_; }
    TPen* Pen() { return &pen_; }

    void FillRect(const TRect& rect);
    // A line of text in the middle of the rectangle's height, on the brush's colour unless that is clear.
    void TextRect(const TRect& rect, const AnsiString& text, TAlignment alignment = taLeftJustify);
    void MoveTo(int x, int y) { at_ = {x, y}; }
    void LineTo(int x, int y);

    // Begins with an empty list.
    void Clear() { shapes_.clear(); }
    const std::vector<Shape>& Shapes() const { return shapes_; }

  private:
    TFont font_;
    TBrush brush_;
    TPen pen_;
    TPoint at_;
    std::vector<Shape> shapes_;
};

}  // namespace vyn
