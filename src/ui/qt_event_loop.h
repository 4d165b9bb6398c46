#pragma once
// The station's loop on the desktop: Qt timers, nested event loops for the waits,
// socket notifiers for descriptors. It needs only QtCore, so the headless station
// runs on it without any window.
//
// Create it on the thread that runs the Qt event loop (the main thread); every
// entry except postFromAnyThread must be called from that thread.

#include <QObject>
#include <map>

#include "platform/event_loop.h"

class QSocketNotifier;
class QTimer;

namespace ovd::ui {

class QtEventLoop : public platform::EventLoop {
  public:
    QtEventLoop();
    ~QtEventLoop() override;
    QtEventLoop(const QtEventLoop&) = delete;
    QtEventLoop& operator=(const QtEventLoop&) = delete;

    [[nodiscard]] platform::WallClock::time_point now() const override;

    Handle startRepeating(platform::Milliseconds interval, Callback tick) override;
    void stopRepeating(Handle handle) override;

    // Runs a nested event loop until the time is up. Waits entered inside each
    // other return in stack order: an outer wait whose time ran out during an inner
    // one returns as soon as the inner one does.
    void wait(platform::Milliseconds duration) override;

    Handle watchFd(int fd, platform::FdEvent event, Callback ready) override;
    void unwatchFd(Handle handle) override;

    void postFromAnyThread(Callback call) override;

    [[nodiscard]] std::size_t activeTimers() const { return timers_.size(); }
    [[nodiscard]] std::size_t activeWatches() const { return watches_.size(); }

  private:
    // Parent of every timer and notifier, and the receiver of posted calls; when it
    // goes, whatever is still pending for this loop goes with it.
    QObject context_;
    Handle nextHandle_ = 1;
    std::map<Handle, QTimer*> timers_;
    std::map<Handle, QSocketNotifier*> watches_;
};

}  // namespace ovd::ui
