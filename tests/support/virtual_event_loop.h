#pragma once
// The station's loop on a clock that moves only when the test says so. advance()
// fires due timers in time order (ties in the order they were started); wait()
// from inside a tick advances the clock the same way, so nested waits work as on
// the desktop. Watched descriptors are polled (without blocking) at every step,
// so a pty or FIFO written by the test is read during advance().

#include <map>
#include <mutex>
#include <vector>

#include "platform/event_loop.h"

namespace ovd::testing {

class VirtualEventLoop : public platform::EventLoop {
  public:
    // Starts at 2026-03-02 09:00:00 local time unless told otherwise.
    VirtualEventLoop();
    explicit VirtualEventLoop(platform::WallClock::time_point start);

    [[nodiscard]] platform::WallClock::time_point now() const override { return now_; }
    Handle startRepeating(platform::Milliseconds interval, Callback tick) override;
    void stopRepeating(Handle handle) override;
    void wait(platform::Milliseconds duration) override;
    Handle watchFd(int fd, platform::FdEvent event, Callback ready) override;
    void unwatchFd(Handle handle) override;
    void postFromAnyThread(Callback call) override;

    // Moves the clock forward, running everything that falls due on the way.
    void advance(platform::Milliseconds duration);
    // Runs what is due now (posted calls, ready descriptors) without moving the clock.
    void runPending();

    [[nodiscard]] int nestingDepth() const { return depth_; }
    [[nodiscard]] std::size_t activeTimers() const { return timers_.size(); }

  private:
    struct TimerEntry {
        platform::Milliseconds interval;
        platform::WallClock::time_point due;
        Callback tick;
    };
    struct Watch {
        int fd;
        platform::FdEvent event;
        Callback ready;
    };
    void advanceTo(platform::WallClock::time_point target);
    bool fireNextDueBy(platform::WallClock::time_point limit);
    void pollWatches();
    void runPosted();

    platform::WallClock::time_point now_;
    Handle nextHandle_ = 1;
    std::map<Handle, TimerEntry> timers_;
    std::map<Handle, Watch> watches_;
    std::mutex postedMutex_;
    std::vector<Callback> posted_;
    int depth_ = 0;
};

// A local wall-clock time point, for tests that care about dates.
platform::WallClock::time_point localTime(int year, int month, int day, int hour, int minute,
                                          int second);

}  // namespace ovd::testing
