#include "qt/metrics.h"

#include <QApplication>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>
#include <cmath>
#include <optional>

#include "qt/looks.h"
#include "qt/text.h"

namespace vyn::qt {

namespace metrics_detail {

class QtTextMetrics final : public TextMetrics {
  public:
    TSize TextExtent(const TFont& font, std::string_view text) const override {
        const QFontMetrics& metrics = MetricsOf(font);
        return {metrics.horizontalAdvance(ToQt(text)), metrics.height()};
    }
    int LineHeight(const TFont& font) const override { return MetricsOf(font).height(); }
    int PixelsPerInch() const override {
        const QScreen* screen = QGuiApplication::primaryScreen();
        return screen ? static_cast<int>(std::lround(screen->logicalDotsPerInch())) : TextMetrics::PixelsPerInch();
    }
    TSize ScreenSize() const override {
        const QScreen* screen = QGuiApplication::primaryScreen();
        if (!screen) return TextMetrics::ScreenSize();
        const QSize size = screen->geometry().size();
        return {size.width(), size.height()};
    }
    int MenuHeight() const override {
        if (menuHeight_ == 0) {
            QMenuBar bar;
            bar.setNativeMenuBar(false);
            bar.addAction(QStringLiteral("M"));
            menuHeight_ = bar.sizeHint().height();
        }
        return menuHeight_;
    }
    int ScrollBarSize() const override { return QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent); }

  private:
    // A form asks for the same font again and again.
    const QFontMetrics& MetricsOf(const TFont& font) const {
        if (!last_ || !(*lastFont_ == font)) {
            lastFont_.emplace();
            lastFont_->Assign(&font);
            last_.emplace(ToQFont(font));
        }
        return *last_;
    }

    mutable std::optional<TFont> lastFont_;
    mutable std::optional<QFontMetrics> last_;
    mutable int menuHeight_ = 0;
};

}  // namespace metrics_detail

std::unique_ptr<TextMetrics> NewTextMetrics() { return std::make_unique<metrics_detail::QtTextMetrics>(); }

}  // namespace vyn::qt
