#include "ui/qt_event_loop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QSocketNotifier>
#include <QTimer>

namespace ovd::ui {

using platform::Milliseconds;
using platform::WallClock;

QtEventLoop::QtEventLoop() = default;

// The timers and notifiers are children of context_ and are destroyed with it;
// posted calls that have not run yet are dropped with it too.
QtEventLoop::~QtEventLoop() = default;

WallClock::time_point QtEventLoop::now() const { return WallClock::now(); }

platform::EventLoop::Handle QtEventLoop::startRepeating(Milliseconds interval, Callback tick) {
    const Handle handle = nextHandle_++;
    auto* timer = new QTimer(&context_);
    // The position display ticks every 25 ms; a coarse timer may drift by 5 %.
    timer->setTimerType(Qt::PreciseTimer);
    // An interval of 0 would fire whenever the loop is idle and starve the waits.
    timer->setInterval(interval < Milliseconds(1) ? Milliseconds(1) : interval);
    QObject::connect(timer, &QTimer::timeout, timer, std::move(tick));
    timer->start();
    timers_.emplace(handle, timer);
    return handle;
}

void QtEventLoop::stopRepeating(Handle handle) {
    const auto it = timers_.find(handle);
    if (it == timers_.end()) return;
    QTimer* timer = it->second;
    timers_.erase(it);
    timer->stop();
    // The tick being stopped may be the one running now, further down this very
    // stack: its connection must not be torn out from under it. Disconnecting keeps
    // a timeout already queued in this pass from reaching the tick; the object itself
    // goes once the loop is back in control.
    QObject::disconnect(timer, nullptr, nullptr, nullptr);
    timer->deleteLater();
}

void QtEventLoop::wait(Milliseconds duration) {
    if (duration <= Milliseconds(0)) {
        QCoreApplication::processEvents();
        return;
    }
    QEventLoop nested;
    QTimer::singleShot(duration, Qt::PreciseTimer, &nested, &QEventLoop::quit);
    // When the application is quitting, every running loop is told to exit and a
    // new one returns at once: waits then end early, which is what shutting down needs.
    nested.exec();
}

platform::EventLoop::Handle QtEventLoop::watchFd(int fd, platform::FdEvent event, Callback ready) {
    const Handle handle = nextHandle_++;
    const auto type =
        event == platform::FdEvent::Readable ? QSocketNotifier::Read : QSocketNotifier::Write;
    auto* notifier = new QSocketNotifier(static_cast<qintptr>(fd), type, &context_);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [call = std::move(ready)] { call(); });
    notifier->setEnabled(true);
    watches_.emplace(handle, notifier);
    return handle;
}

void QtEventLoop::unwatchFd(Handle handle) {
    const auto it = watches_.find(handle);
    if (it == watches_.end()) return;
    QSocketNotifier* notifier = it->second;
    watches_.erase(it);
    // Readiness is level-triggered: a notifier left enabled on unread data would
    // fire over and over until it is finally deleted.
    notifier->setEnabled(false);
    QObject::disconnect(notifier, nullptr, nullptr, nullptr);
    notifier->deleteLater();
}

void QtEventLoop::postFromAnyThread(Callback call) {
    QMetaObject::invokeMethod(&context_, std::move(call), Qt::QueuedConnection);
}

}  // namespace ovd::ui
