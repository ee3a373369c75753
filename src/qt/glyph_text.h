#pragma once

#include <QFont>
#include <QFontMetrics>
#include <QGlyphRun>
#include <QList>
#include <QRawFont>
#include <QRect>
#include <array>
#include <string_view>
#include <vector>

class QColor;
class QPainter;

namespace vyn::qt {

// A font's glyphs for the system's own characters (Windows-1252, a byte each, none of which joins with another), so
// that many short texts are drawn without laying each of them out. Made once for a font; costs nothing until a text is
// measured.
class GlyphFont {
  public:
    explicit GlyphFont(const QFont& font);

    const QFont& Font() const { return font_; }
    // The width of a line; texts for which the font alone is not enough have none of their own (Covers).
    qreal Width(std::string_view text) const;
    // Whether every character has a glyph in the font itself, and no line goes under or through it.
    bool Covers(std::string_view text) const;
    // The text as it stands in a line: blanks at its ends gone, others made one. Cut, with an ellipsis, to a width.
    std::string Fitted(std::string_view text, qreal width) const;
    int Ascent() const { return ascent_; }
    int Height() const { return height_; }

  private:
    friend class GlyphBatch;
    void Load() const;

    QFont font_;
    int ascent_;
    int height_;
    bool lined_;
    mutable bool loaded_ = false;
    mutable QRawFont raw_;
    mutable std::array<quint32, 256> glyphs_{};
    mutable std::array<qreal, 256> widths_{};
};

// Texts of one colour, drawn together: far quicker than one by one. What the font does not cover is laid out by the
// toolkit.
class GlyphBatch {
  public:
    explicit GlyphBatch(const GlyphFont& font) : font_(font) {}
    // In the middle of the box's height; cut to its width.
    void Add(const QRect& box, Qt::Alignment alignment, std::string_view text);
    void Draw(QPainter& painter, const QColor& color);

  private:
    struct LaidOut {
        QRect box;
        Qt::Alignment alignment;
        std::string text;
    };
    const GlyphFont& font_;
    QList<quint32> glyphs_;
    QList<QPointF> places_;
    std::vector<LaidOut> others_;
};

}  // namespace vyn::qt
