#include "support/real_time_event_loop.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace ovd::testing {

using platform::Milliseconds;

RealTimeEventLoop::RealTimeEventLoop() : wakeFd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (wakeFd_ < 0) throw std::runtime_error("eventfd failed");
}

RealTimeEventLoop::~RealTimeEventLoop() { ::close(wakeFd_); }

platform::WallClock::time_point RealTimeEventLoop::now() const {
    return platform::WallClock::now();
}

platform::EventLoop::Handle RealTimeEventLoop::startRepeating(Milliseconds interval,
                                                              Callback tick) {
    if (interval < Milliseconds(1)) interval = Milliseconds(1);
    const Handle handle = nextHandle_++;
    timers_[handle] = {interval, Steady::now() + interval, std::move(tick)};
    return handle;
}

void RealTimeEventLoop::stopRepeating(Handle handle) { timers_.erase(handle); }

platform::EventLoop::Handle RealTimeEventLoop::watchFd(int fd, platform::FdEvent event,
                                                       Callback ready) {
    const Handle handle = nextHandle_++;
    watches_[handle] = {fd, event, std::move(ready)};
    return handle;
}

void RealTimeEventLoop::unwatchFd(Handle handle) { watches_.erase(handle); }

void RealTimeEventLoop::postFromAnyThread(Callback call) {
    {
        const std::lock_guard held(postedMutex_);
        posted_.push_back(std::move(call));
    }
    const std::uint64_t one = 1;
    // A full counter already means "wake up"; nothing is lost if this write fails.
    [[maybe_unused]] const ssize_t written = ::write(wakeFd_, &one, sizeof one);
}

void RealTimeEventLoop::runFor(Milliseconds duration) {
    const Steady::time_point deadline = Steady::now() + duration;
    do {
        runOnce(deadline);
    } while (Steady::now() < deadline);
}

bool RealTimeEventLoop::runUntil(const std::function<bool()>& done, Milliseconds timeout) {
    const Steady::time_point deadline = Steady::now() + timeout;
    while (!done()) {
        const Steady::time_point now = Steady::now();
        if (now >= deadline) return false;
        // What done() looks at may change without an event (a server's clock):
        // look again at least every few milliseconds.
        runOnce(std::min(deadline, now + Milliseconds(5)));
    }
    return true;
}

void RealTimeEventLoop::runOnce(Steady::time_point deadline) {
    Steady::time_point wakeAt = deadline;
    for (const auto& [handle, timer] : timers_) wakeAt = std::min(wakeAt, timer.due);
    std::vector<pollfd> fds{{wakeFd_, POLLIN, 0}};
    std::vector<Handle> handles;
    for (const auto& [handle, watch] : watches_) {
        fds.push_back(
            {watch.fd,
             static_cast<short>(watch.event == platform::FdEvent::Readable ? POLLIN : POLLOUT), 0});
        handles.push_back(handle);
    }
    const auto waitMs = std::chrono::ceil<Milliseconds>(wakeAt - Steady::now()).count();
    const int timeout = static_cast<int>(std::clamp<std::int64_t>(waitMs, 0, 1000));
    if (::poll(fds.data(), fds.size(), timeout) > 0) {
        if (fds[0].revents != 0) {
            std::uint64_t count = 0;
            [[maybe_unused]] const ssize_t got = ::read(wakeFd_, &count, sizeof count);
        }
        for (std::size_t i = 1; i < fds.size(); ++i) {
            if (fds[i].revents == 0) continue;
            // An earlier callback may have removed this watch: look it up again.
            const auto watch = watches_.find(handles[i - 1]);
            if (watch == watches_.end()) continue;
            const Callback ready = watch->second.ready;
            ready();
        }
    }
    runPosted();
    runDueTimers();
}

void RealTimeEventLoop::runPosted() {
    std::vector<Callback> calls;
    {
        const std::lock_guard held(postedMutex_);
        calls.swap(posted_);
    }
    for (auto& call : calls) call();
}

void RealTimeEventLoop::runDueTimers() {
    std::vector<Handle> due;
    const Steady::time_point now = Steady::now();
    for (const auto& [handle, timer] : timers_) {
        if (timer.due <= now) due.push_back(handle);
    }
    for (const Handle handle : due) {
        const auto timer = timers_.find(handle);
        if (timer == timers_.end()) continue;  // stopped by an earlier tick
        // A timer that fell behind skips the ticks it missed, as a desktop timer does.
        timer->second.due += timer->second.interval;
        if (timer->second.due <= now) timer->second.due = now + timer->second.interval;
        const Callback tick = timer->second.tick;
        tick();
    }
}

}  // namespace ovd::testing
