#include "platform/timer.h"

namespace ovd::platform {

Timer::Timer(EventLoop& loop, std::string name, int intervalMs)
    : loop_(loop), name_(std::move(name)), interval_(intervalMs) {}

Timer::~Timer() { disarm(); }

void Timer::setInterval(int ms) {
    interval_ = ms < 0 ? 0 : ms;
    // Setting the interval restarts the count, as it does for a form timer.
    disarm();
    if (enabled_) arm();
}

void Timer::setEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    if (enabled_) {
        arm();
    } else {
        disarm();
    }
}

void Timer::arm() {
    if (interval_ <= 0 || armed_) return;
    handle_ = loop_.startRepeating(Milliseconds(interval_), [this] { fire(); });
    armed_ = true;
}

void Timer::disarm() {
    if (!armed_) return;
    loop_.stopRepeating(handle_);
    armed_ = false;
}

void Timer::fire() {
    if (!enabled_ || inTick_) return;
    inTick_ = true;
    ++ticks_;
    if (onTick_) onTick_();
    inTick_ = false;
}

}  // namespace ovd::platform
