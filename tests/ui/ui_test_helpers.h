#pragma once
// Waiting for the desktop in tests: conditions are polled with a generous deadline,
// so a slow machine makes a test slower, never wrong.

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <functional>

namespace ovd::ui::testing {

// Runs events until the condition holds or the deadline passes; says which.
inline bool runUntil(const std::function<bool()>& condition,
                     std::chrono::milliseconds deadline = std::chrono::seconds(10)) {
    if (condition()) return true;
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(5);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition()) loop.quit();
    });
    QTimer::singleShot(deadline, &loop, &QEventLoop::quit);
    poll.start();
    loop.exec();
    return condition();
}

inline void runFor(std::chrono::milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

// Answers the next modal window from the loop that window's exec() runs: the act
// gets the window once it is up. A window of another kind, or one the act leaves
// open, is closed so that a failing test fails instead of hanging.
template <typename Window>
class ModalAnswer {
public:
    explicit ModalAnswer(std::function<void(Window&)> act) : act_(std::move(act)) {
        poll_.setInterval(5);
        QObject::connect(&poll_, &QTimer::timeout, [this] { tryAnswer(); });
        poll_.start();
    }

    [[nodiscard]] bool answered() const { return answered_; }

private:
    void tryAnswer() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr || !modal->isVisible()) return;
        poll_.stop();
        QPointer<QWidget> shown = modal;
        if (auto* window = dynamic_cast<Window*>(modal)) {
            act_(*window);
            answered_ = true;
        }
        QTimer::singleShot(std::chrono::seconds(2), [shown] {
            if (!shown || !shown->isVisible()) return;
            // close() alone may be refused, as a Yes/No box refuses it.
            if (auto* dialog = qobject_cast<QDialog*>(shown.data())) {
                dialog->done(QDialog::Rejected);
            } else {
                shown->close();
            }
        });
    }

    std::function<void(Window&)> act_;
    QTimer poll_;
    bool answered_ = false;
};

}  // namespace ovd::ui::testing
