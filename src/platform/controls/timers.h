#pragma once

#include "platform/objects/component.h"
#include "platform/system/ticks.h"

namespace vyn {

// Fires OnTimer every Interval milliseconds while enabled (an interval of 0 stops it, and so does an event without a
// handler). Not in a designer, nor before its form is read.
class TTimer : public TComponent {
    VYN_OBJECT
  public:
    explicit TTimer(TComponent* owner);
    ~TTimer() override;

    bool Enabled() const { return enabled_; }
    void SetEnabled(bool value);
    uint32_t Interval() const { return interval_; }
    void SetInterval(uint32_t value);
    const TNotifyEvent& OnTimer() const { return onTimer_; }
    void SetOnTimer(TNotifyEvent value);
    virtual void Timer() { onTimer_(this); }
    void Loaded() override;

  private:
    void UpdateTimer();

    TNotifyEvent onTimer_;
    uint32_t interval_ = 1000;
    TimerId timer_ = 0;
    bool enabled_ = true;
};

}  // namespace vyn
