#pragma once
// The station's loop on the real clock, for tests of parts that live in real time
// (the sound server, network peers): timers on the steady clock, descriptors
// polled, and calls posted from other threads woken through an eventfd. No window
// system needed. The test drives it with runFor() or runUntil().

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <vector>

#include "platform/event_loop.h"

namespace ovd::testing {

class RealTimeEventLoop : public platform::EventLoop {
  public:
    RealTimeEventLoop();
    ~RealTimeEventLoop() override;
    RealTimeEventLoop(const RealTimeEventLoop&) = delete;
    RealTimeEventLoop& operator=(const RealTimeEventLoop&) = delete;

    [[nodiscard]] platform::WallClock::time_point now() const override;
    Handle startRepeating(platform::Milliseconds interval, Callback tick) override;
    void stopRepeating(Handle handle) override;
    void wait(platform::Milliseconds duration) override { runFor(duration); }
    Handle watchFd(int fd, platform::FdEvent event, Callback ready) override;
    void unwatchFd(Handle handle) override;
    void postFromAnyThread(Callback call) override;

    void runFor(platform::Milliseconds duration);
    // Runs events until done() holds (checked after each event, and every 5 ms)
    // or the time is up.
    bool runUntil(const std::function<bool()>& done, platform::Milliseconds timeout);

  private:
    using Steady = std::chrono::steady_clock;
    struct TimerEntry {
        platform::Milliseconds interval;
        Steady::time_point due;
        Callback tick;
    };
    struct Watch {
        int fd;
        platform::FdEvent event;
        Callback ready;
    };
    // Sleeps until the next timer, a ready descriptor, a posted call or the
    // deadline, and runs what is due.
    void runOnce(Steady::time_point deadline);
    void runPosted();
    void runDueTimers();

    int wakeFd_ = -1;
    Handle nextHandle_ = 1;
    std::map<Handle, TimerEntry> timers_;
    std::map<Handle, Watch> watches_;
    std::mutex postedMutex_;
    std::vector<Callback> posted_;
};

}  // namespace ovd::testing
