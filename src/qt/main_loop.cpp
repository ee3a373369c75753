#include "qt/main_loop.h"

#include <QAbstractEventDispatcher>
#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <atomic>
#include <limits>

#include "platform/system/application.h"

namespace vyn::qt {

namespace main_loop_detail {

constexpr auto kWakeEvent = static_cast<QEvent::Type>(QEvent::User + 101);

class QtMainLoop final : public QObject, public MainLoopPort {
  public:
    void Wake() override {
        // One event stands for everything that waits.
        if (!woken_.exchange(true)) QCoreApplication::postEvent(this, new QEvent(kWakeEvent), Qt::HighEventPriority);
    }

    // Turn by turn through the application, so that it hears when nothing waits.
    void Run() override {
        quit_ = false;
        while (!quit_ && !Application()->Terminated()) Application()->HandleMessage();
    }

    void Quit() override {
        quit_ = true;
        Wake();
    }

    void ProcessEvents() override { QCoreApplication::processEvents(QEventLoop::AllEvents); }

    void WaitForEvents() override { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); }

    void ScheduleTimer(uint32_t milliseconds) override {
        if (milliseconds == NoTimer) {
            timer_.stop();
            return;
        }
        constexpr uint32_t kLongest = std::numeric_limits<int>::max();
        timer_.start(static_cast<int>(std::min(milliseconds, kLongest)), Qt::PreciseTimer, this);
    }

  protected:
    void customEvent(QEvent* event) override {
        if (event->type() != kWakeEvent) return;
        woken_ = false;
        Application()->DispatchPending();
    }

    void timerEvent(QTimerEvent*) override {
        timer_.stop();
        Application()->DispatchPending();
    }

  private:
    std::atomic<bool> woken_{false};
    QBasicTimer timer_;
    bool quit_ = false;
};

}  // namespace main_loop_detail

std::unique_ptr<MainLoopPort> NewMainLoopPort() { return std::make_unique<main_loop_detail::QtMainLoop>(); }

}  // namespace vyn::qt
