#include "qt/application.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMimeData>
#include <QScreen>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleHints>
#include <QToolTip>

#include "platform/system/clipboard.h"
#include "platform/system/message_dialogs.h"
#include "platform/text/windows1252.h"
#include "qt/accessibility.h"
#include "qt/factory.h"
#include "qt/main_loop.h"
#include "qt/message_boxes.h"
#include "qt/metrics.h"
#include "qt/text.h"

namespace vyn::qt {

namespace application_detail {

constexpr const char* kOffscreenPlatform = "offscreen";
constexpr const char* kOffscreenStyle = "Fusion";
constexpr const char* kOffscreenFont = "DejaVu Sans";
constexpr int kOffscreenFontPixels = 11;

class QtClipboard final : public ClipboardPort {
  public:
    bool HasText() const override {
        const QMimeData* data = QGuiApplication::clipboard()->mimeData();
        return data && data->hasText();
    }
    AnsiString Text() const override { return FromQt(QGuiApplication::clipboard()->text()); }
    void SetText(const AnsiString& text) override { QGuiApplication::clipboard()->setText(ToQt(text)); }
    void Clear() override { QGuiApplication::clipboard()->clear(); }
};

void ChoosePlatform() {
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        if (!qEnvironmentVariableIsEmpty(name)) return;
    qputenv("QT_QPA_PLATFORM", kOffscreenPlatform);
}

}  // namespace application_detail

struct QtSession::Ports {
    QApplication application;
    application_detail::QtClipboard clipboard;
    std::unique_ptr<MainLoopPort> mainLoop;
    std::unique_ptr<TextMetrics> metrics;

    Ports(int& argc, char** argv) : application(argc, argv) {}
};

QtSession::QtSession(int& argc, char** argv) {
    using namespace application_detail;
    ChoosePlatform();
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    ports_ = std::make_unique<Ports>(argc, argv);
    // Closing windows ends the program only where its main form says so.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    if (IsOffscreen()) {
        QApplication::setStyle(QStyleFactory::create(kOffscreenStyle));
        QFont font(kOffscreenFont);
        font.setPixelSize(kOffscreenFontPixels);
        font.setHintingPreference(QFont::PreferFullHinting);
        QApplication::setFont(font);
        QToolTip::setFont(font);
        QApplication::setCursorFlashTime(0);
        for (const Qt::UIEffect effect : {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo,
                                          Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip, Qt::UI_AnimateToolBox})
            QApplication::setEffectEnabled(effect, false);
    }
    ports_->mainLoop = NewMainLoopPort();
    ports_->metrics = NewTextMetrics();
    SetMainLoopPort(ports_->mainLoop.get());
    SetTextMetrics(ports_->metrics.get());
    SetClipboardPort(&ports_->clipboard);
    SetMessageDialogPort(ShowMessageBox);
    SetMessageBeepPort([](unsigned) { QApplication::beep(); });
    SetPeerFactory(&StandardPeerFactory());
    InstallAccessibility();
}

QtSession::~QtSession() {
    RemoveAccessibility();
    SetPeerFactory(nullptr);
    SetMessageBeepPort({});
    SetMessageDialogPort({});
    SetClipboardPort(nullptr);
    SetTextMetrics(nullptr);
    SetMainLoopPort(nullptr);
    // What was to be deleted after its events goes while the toolkit still stands.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool QtSession::IsOffscreen() {
    return QGuiApplication::platformName() == QLatin1String(application_detail::kOffscreenPlatform);
}

int RunQtApplication(int argc, char** argv, const std::function<int()>& body) {
    const QtSession session(argc, argv);
    return body();
}

}  // namespace vyn::qt
