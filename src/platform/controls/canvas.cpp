#include "platform/controls/canvas.h"

#include "platform/objects/class_info.h"

namespace vyn {

const ClassInfo& TCanvas::StaticClass() {
    static const ClassInfo info = DefineClass<TCanvas, TPersistent>("TCanvas");
    return info;
}

void TCanvas::FillRect(const TRect& rect) {
    if (brush_.Style() == TBrushStyle::bsClear) return;
    Shape& shape = shapes_.emplace_back();
    shape.What = Shape::Kind::Fill;
    shape.Place = rect;
    shape.Color = brush_.Color();
}

void TCanvas::TextRect(const TRect& rect, const AnsiString& text, TAlignment alignment) {
    FillRect(rect);
    Shape& shape = shapes_.emplace_back();
    shape.What = Shape::Kind::Text;
    shape.Place = rect;
    shape.Color = font_.Color();
    shape.Text = text;
    shape.Alignment = alignment;
    shape.Font = std::make_unique<TFont>();
    shape.Font->Assign(&font_);
}

void TCanvas::LineTo(int x, int y) {
    const TPoint from = at_;
    at_ = {x, y};
    if (pen_.Style() == TPenStyle::psClear) return;
    Shape& shape = shapes_.emplace_back();
    shape.What = Shape::Kind::Line;
    shape.Place = {from.x, from.y, x, y};
    shape.Color = pen_.Color();
    shape.Width = pen_.Width();
}

}  // namespace vyn
