#include "support/virtual_event_loop.h"

#include <poll.h>

#include <ctime>

namespace ovd::testing {

using platform::Milliseconds;
using platform::WallClock;

WallClock::time_point localTime(int year, int month, int day, int hour, int minute, int second) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = -1;
    return WallClock::from_time_t(std::mktime(&parts));
}

VirtualEventLoop::VirtualEventLoop() : VirtualEventLoop(localTime(2026, 3, 2, 9, 0, 0)) {}

VirtualEventLoop::VirtualEventLoop(WallClock::time_point start) : now_(start) {}

platform::EventLoop::Handle VirtualEventLoop::startRepeating(Milliseconds interval, Callback tick) {
    const Handle handle = nextHandle_++;
    if (interval < Milliseconds(1)) interval = Milliseconds(1);
    timers_[handle] = {interval, now_ + interval, std::move(tick)};
    return handle;
}

void VirtualEventLoop::stopRepeating(Handle handle) { timers_.erase(handle); }

platform::EventLoop::Handle VirtualEventLoop::watchFd(int fd, platform::FdEvent event,
                                                      Callback ready) {
    const Handle handle = nextHandle_++;
    watches_[handle] = {fd, event, std::move(ready)};
    return handle;
}

void VirtualEventLoop::unwatchFd(Handle handle) { watches_.erase(handle); }

void VirtualEventLoop::postFromAnyThread(Callback call) {
    const std::lock_guard lock(postedMutex_);
    posted_.push_back(std::move(call));
}

void VirtualEventLoop::wait(Milliseconds duration) { advance(duration); }

void VirtualEventLoop::advance(Milliseconds duration) { advanceTo(now_ + duration); }

void VirtualEventLoop::runPending() {
    ++depth_;
    runPosted();
    pollWatches();
    --depth_;
}

void VirtualEventLoop::advanceTo(WallClock::time_point target) {
    ++depth_;
    runPosted();
    pollWatches();
    while (fireNextDueBy(target)) {
        runPosted();
        pollWatches();
    }
    // A nested wait may already have carried the clock past this target.
    if (now_ < target) now_ = target;
    runPosted();
    pollWatches();
    --depth_;
}

bool VirtualEventLoop::fireNextDueBy(WallClock::time_point limit) {
    auto next = timers_.end();
    for (auto it = timers_.begin(); it != timers_.end(); ++it) {
        if (it->second.due <= limit &&
            (next == timers_.end() || it->second.due < next->second.due)) {
            next = it;
        }
    }
    if (next == timers_.end()) return false;
    const Handle handle = next->first;
    if (next->second.due > now_) now_ = next->second.due;
    next->second.due += next->second.interval;
    // The callback may stop or restart this timer, or others: copy it first.
    const Callback tick = next->second.tick;
    tick();
    // A timer that fell behind (its tick waited longer than its interval) catches up
    // from now, as a real timer skips the ticks it missed.
    if (auto again = timers_.find(handle); again != timers_.end() && again->second.due <= now_) {
        again->second.due = now_ + again->second.interval;
    }
    return true;
}

void VirtualEventLoop::pollWatches() {
    if (watches_.empty()) return;
    std::vector<std::pair<Handle, Callback>> ready;
    for (const auto& [handle, watch] : watches_) {
        pollfd probe{
            watch.fd,
            static_cast<short>(watch.event == platform::FdEvent::Readable ? POLLIN : POLLOUT), 0};
        if (::poll(&probe, 1, 0) > 0 && probe.revents != 0) ready.emplace_back(handle, watch.ready);
    }
    for (auto& [handle, callback] : ready) {
        if (watches_.count(handle) != 0) callback();
    }
}

void VirtualEventLoop::runPosted() {
    for (;;) {
        std::vector<Callback> calls;
        {
            const std::lock_guard lock(postedMutex_);
            calls.swap(posted_);
        }
        if (calls.empty()) return;
        for (auto& call : calls) call();
    }
}

}  // namespace ovd::testing
