#include "platform/controls/text_metrics.h"

#include <algorithm>
#include <cstdlib>

namespace vyn {

namespace metrics_detail {

const TextMetrics* theMetrics = nullptr;

// Widths in hundredths of the letters' height, for proportional fonts.
constexpr int kNarrow = 28;
constexpr int kUsual = 54;
constexpr int kDigit = 55;
constexpr int kUpper = 66;
constexpr int kWide = 86;
constexpr int kBlank = 28;

int WidthOf(char c) {
    const std::string_view narrow = "iljtfrI.,;:'!|()[]";
    const std::string_view wide = "mwMW@%";
    if (c == ' ') return kBlank;
    if (narrow.find(c) != std::string_view::npos) return kNarrow;
    if (wide.find(c) != std::string_view::npos) return kWide;
    if (c >= '0' && c <= '9') return kDigit;
    if (c >= 'A' && c <= 'Z') return kUpper;
    return kUsual;
}

// Letters' height of a font, whichever way it was given.
int EmHeight(const TFont& font) { return font.Height() < 0 ? -font.Height() : font.Height() * 100 / 120; }

}  // namespace metrics_detail

int TextMetrics::LineHeight(const TFont& font) const {
    if (font.Height() > 0) return font.Height();
    // 11 pixels of letters stand on a line of 13.
    return (-font.Height() * 120 + 50) / 100;
}

TSize TextMetrics::TextExtent(const TFont& font, std::string_view text) const {
    long long width = 0;
    if (font.Pitch() == fpFixed)
        width = static_cast<long long>(text.size()) * 60;
    else
        for (const char c : text) width += metrics_detail::WidthOf(c);
    const long long bold = font.Style().Contains(fsBold) ? 108 : 100;
    return {static_cast<int>((width * metrics_detail::EmHeight(font) * bold + 9999) / 10000), LineHeight(font)};
}

TSize TextMetrics::FrameSize(bool hasBorder, bool sizeable, bool toolWindow) const {
    if (!hasBorder) return {};
    const int border = sizeable ? 8 : 6;
    return {border, border + (toolWindow ? 16 : 19)};
}

void SetTextMetrics(const TextMetrics* metrics) { metrics_detail::theMetrics = metrics; }

const TextMetrics& CurrentTextMetrics() {
    static const TextMetrics builtIn;
    return metrics_detail::theMetrics ? *metrics_detail::theMetrics : builtIn;
}

TSize MultiLineExtent(const TFont& font, std::string_view text, int width) {
    const TextMetrics& metrics = CurrentTextMetrics();
    const int lineHeight = metrics.LineHeight(font);
    TSize size;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != '\n') continue;
        std::string_view line = text.substr(start, i - start);
        start = i + 1;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (i == text.size() && line.empty() && size.cy > 0) break;
        // Words go on the line for as long as they fit.
        for (;;) {
            size_t taken = line.size();
            if (width > 0 && metrics.TextExtent(font, line).cx > width) {
                size_t fits = 0;
                for (size_t at = line.find(' '); at != std::string_view::npos; at = line.find(' ', at + 1)) {
                    if (metrics.TextExtent(font, line.substr(0, at)).cx > width) break;
                    fits = at;
                }
                if (fits == 0) fits = std::min(line.find(' '), line.size());
                taken = fits;
            }
            size.cx = std::max(size.cx, metrics.TextExtent(font, line.substr(0, taken)).cx);
            size.cy += lineHeight;
            if (taken >= line.size()) break;
            line.remove_prefix(taken);
            while (!line.empty() && line.front() == ' ') line.remove_prefix(1);
            if (line.empty()) break;
        }
    }
    return size;
}

}  // namespace vyn
