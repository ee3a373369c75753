#include "qt/glyph_text.h"

#include <QPainter>

#include "qt/text.h"

namespace vyn::qt {

namespace glyph_text_detail {

constexpr char kEllipsis = '\x85';
constexpr unsigned char kNoBreakSpace = 0xA0;

bool IsBlank(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code <= ' ' || code == kNoBreakSpace;
}

// No blanks at the ends, nor two together, nor any but the plain one: most texts are so already.
bool IsPlain(std::string_view text) {
    bool blank = true;
    for (const char c : text) {
        if (IsBlank(c) && (blank || c != ' ')) return false;
        blank = c == ' ';
    }
    return text.empty() || !blank;
}

std::string Simplified(std::string_view text) {
    std::string simple;
    for (const char c : text) {
        if (!IsBlank(c))
            simple += c;
        else if (!simple.empty() && simple.back() != ' ')
            simple += ' ';
    }
    if (!simple.empty() && simple.back() == ' ') simple.pop_back();
    return simple;
}

}  // namespace glyph_text_detail

GlyphFont::GlyphFont(const QFont& font) : font_(font) {
    const QFontMetrics metrics(font);
    ascent_ = metrics.ascent();
    height_ = metrics.height();
    lined_ = font.underline() || font.strikeOut() || font.overline();
}

void GlyphFont::Load() const {
    loaded_ = true;
    raw_ = QRawFont::fromFont(font_);
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        const QList<quint32> glyphs = raw_.glyphIndexesForString(ToQt(std::string_view(&c, 1)));
        if (glyphs.size() != 1 || glyphs[0] == 0) continue;
        glyphs_[static_cast<size_t>(code)] = glyphs[0];
        widths_[static_cast<size_t>(code)] = raw_.advancesForGlyphIndexes(glyphs)[0].x();
    }
}

bool GlyphFont::Covers(std::string_view text) const {
    if (!loaded_) Load();
    if (lined_) return false;
    for (const char c : text)
        if (glyphs_[static_cast<unsigned char>(c)] == 0) return false;
    return true;
}

qreal GlyphFont::Width(std::string_view text) const {
    if (!loaded_) Load();
    qreal width = 0;
    for (const char c : text) width += widths_[static_cast<unsigned char>(c)];
    return width;
}

std::string GlyphFont::Fitted(std::string_view text, qreal width) const {
    std::string line = glyph_text_detail::IsPlain(text) ? std::string(text) : glyph_text_detail::Simplified(text);
    if (!loaded_) Load();
    // Nothing is measured further than the width goes.
    const qreal ellipsis = widths_[static_cast<unsigned char>(glyph_text_detail::kEllipsis)];
    qreal end = 0;
    size_t whole = 0;  // characters that leave room for the ellipsis
    for (size_t i = 0; i < line.size(); ++i) {
        end += widths_[static_cast<unsigned char>(line[i])];
        if (end + ellipsis <= width) whole = i + 1;
        if (end <= width) continue;
        line.resize(whole);
        line += glyph_text_detail::kEllipsis;
        break;
    }
    return line;
}

void GlyphBatch::Add(const QRect& box, Qt::Alignment alignment, std::string_view text) {
    if (text.empty() || box.width() <= 0) return;
    const std::string line = font_.Fitted(text, box.width());
    if (!font_.Covers(line)) {
        others_.push_back({box, alignment, std::string(text)});
        return;
    }
    qreal x = box.left();
    if (alignment & Qt::AlignRight)
        x = box.left() + box.width() - font_.Width(line);
    else if (alignment & Qt::AlignHCenter)
        x += (box.width() - font_.Width(line)) / 2;
    const qreal y = box.top() + (box.height() - font_.Height()) / 2 + font_.Ascent();
    for (const char c : line) {
        const auto code = static_cast<unsigned char>(c);
        if (c != ' ') {
            glyphs_.append(font_.glyphs_[code]);
            places_.append(QPointF(x, y));
        }
        x += font_.widths_[code];
    }
}

void GlyphBatch::Draw(QPainter& painter, const QColor& color) {
    if (glyphs_.isEmpty() && others_.empty()) return;
    painter.setPen(color);
    if (!glyphs_.isEmpty()) {
        QGlyphRun run;
        run.setRawFont(font_.raw_);
        run.setGlyphIndexes(glyphs_);
        run.setPositions(places_);
        painter.drawGlyphRun(QPointF(), run);
    }
    if (others_.empty()) return;
    painter.setFont(font_.Font());
    const QFontMetrics metrics = painter.fontMetrics();
    for (const LaidOut& each : others_)
        painter.drawText(each.box, int(each.alignment | Qt::AlignVCenter),
                         metrics.elidedText(ToQt(each.text).simplified(), Qt::ElideRight, each.box.width()));
}

}  // namespace vyn::qt
