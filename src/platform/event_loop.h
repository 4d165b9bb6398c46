#pragma once
// The station's one thread: timers, waits that pump events, and file-descriptor
// watches all go through this interface so that the dictation logic runs the same
// on the desktop loop and on the virtual clock of the tests.

#include <chrono>
#include <cstdint>
#include <functional>

namespace ovd::platform {

using WallClock = std::chrono::system_clock;
using Milliseconds = std::chrono::milliseconds;

enum class FdEvent { Readable, Writable };

class EventLoop {
  public:
    using Callback = std::function<void()>;
    using Handle = std::uint64_t;

    virtual ~EventLoop() = default;

    // Local wall-clock time; the virtual loop's time moves only when a test says so.
    [[nodiscard]] virtual WallClock::time_point now() const = 0;

    // A repeating timer; the callback runs every interval until stopped.
    virtual Handle startRepeating(Milliseconds interval, Callback tick) = 0;
    virtual void stopRepeating(Handle handle) = 0;

    // Lets every other event run until the time has passed. May be entered again
    // from an event that runs inside it; each wait returns once its own time is up.
    virtual void wait(Milliseconds duration) = 0;

    virtual Handle watchFd(int fd, FdEvent event, Callback ready) = 0;
    virtual void unwatchFd(Handle handle) = 0;

    // Queues a call onto the loop's thread; the only entry that is safe from another thread.
    virtual void postFromAnyThread(Callback call) = 0;

    void waitSeconds(double seconds) {
        wait(Milliseconds(static_cast<std::int64_t>(seconds * 1000.0)));
    }
};

}  // namespace ovd::platform
