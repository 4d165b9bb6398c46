#pragma once
// Waiting for the desktop in tests: conditions are polled with a generous deadline,
// so a slow machine makes a test slower, never wrong.

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>

namespace ovd::ui::testing {

// Runs events until the condition holds or the deadline passes; says which.
inline bool runUntil(const std::function<bool()>& condition,
                     std::chrono::milliseconds deadline = std::chrono::seconds(10)) {
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition()) loop.quit();
    });
    QTimer::singleShot(deadline, &loop, &QEventLoop::quit);
    poll.start(5);
    if (!condition()) loop.exec();
    return condition();
}

// Runs `ask`, answering the modal window it opens with `act` from the loop that
// window's exec() runs; says whether a window of the expected kind came up. One of
// another kind, or one the act leaves open, is rejected a while later so that a
// failing test fails instead of hanging (a key press may still be clicking a button).
template <typename Window>
bool answering(const std::function<void(Window&)>& act, const std::function<void()>& ask) {
    bool answered = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (modal == nullptr || !modal->isVisible()) return;
        poll.stop();
        if (auto* window = dynamic_cast<Window*>(modal)) {
            act(*window);
            answered = true;
        }
        QTimer::singleShot(std::chrono::seconds(2), modal, [modal] {
            if (modal->isVisible()) modal->done(QDialog::Rejected);
        });
    });
    poll.start(5);
    ask();
    return answered;
}

}  // namespace ovd::ui::testing
