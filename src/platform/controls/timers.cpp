#include "platform/controls/timers.h"

#include "platform/objects/class_info.h"

namespace vyn {

const ClassInfo& TTimer::StaticClass() {
    static const ClassInfo info = DefineClass<TTimer, TComponent>("TTimer")
                                      .Published("Enabled", &TTimer::Enabled, &TTimer::SetEnabled)
                                      .Default(true)
                                      .Published("Interval", &TTimer::Interval, &TTimer::SetInterval)
                                      .Default(1000)
                                      .Published("OnTimer", &TTimer::OnTimer, &TTimer::SetOnTimer);
    return info;
}

TTimer::TTimer(TComponent* owner) : TComponent(owner) {}

TTimer::~TTimer() { StopTimer(timer_); }

void TTimer::UpdateTimer() {
    if (timer_ != 0) StopTimer(timer_);
    timer_ = 0;
    if (enabled_ && interval_ > 0 && onTimer_ && !HasState(csLoading) && !HasState(csDesigning))
        timer_ = StartTimer(interval_, [this] { Timer(); });
}

void TTimer::SetEnabled(bool value) {
    if (enabled_ == value) return;
    enabled_ = value;
    UpdateTimer();
}

void TTimer::SetInterval(uint32_t value) {
    if (interval_ == value) return;
    interval_ = value;
    UpdateTimer();
}

void TTimer::SetOnTimer(TNotifyEvent value) {
    onTimer_ = std::move(value);
    UpdateTimer();
}

void TTimer::Loaded() {
    TComponent::Loaded();
    UpdateTimer();
}

}  // namespace vyn
