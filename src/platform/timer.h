#pragma once
// A timer shaped like the form timers the station is built around: an Interval in
// milliseconds, an Enabled switch and a tick. Interval 0 means no ticks even when
// enabled. A tick never re-enters itself: while a tick waits and pumps events, the
// same timer does not fire again (the next one comes after it returns).

#include <functional>
#include <string>

#include "platform/event_loop.h"

namespace ovd::platform {

class Timer {
  public:
    Timer(EventLoop& loop, std::string name, int intervalMs = 0);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void setOnTick(std::function<void()> tick) { onTick_ = std::move(tick); }

    [[nodiscard]] int Interval() const { return interval_; }
    void setInterval(int ms);
    [[nodiscard]] bool Enabled() const { return enabled_; }
    void setEnabled(bool enabled);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] int ticks() const { return ticks_; }

  private:
    void arm();
    void disarm();
    void fire();

    EventLoop& loop_;
    std::string name_;
    std::function<void()> onTick_;
    int interval_ = 0;
    bool enabled_ = false;
    bool inTick_ = false;
    int ticks_ = 0;
    EventLoop::Handle handle_ = 0;
    bool armed_ = false;
};

}  // namespace ovd::platform
