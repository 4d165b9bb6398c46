#pragma once
// The schedule of the automatic FTP window: once armed, TimerRefreash ticks every
// minute on the loop's clock and counts the minutes up to the site's
// FTPAutoSchedulerMinutes; then a run starts. While a run or a transfer is going on
// the timer is held, so a run never starts over another.

#include <functional>
#include <memory>

#include "platform/event_loop.h"

namespace ovd::ftp {

class FtpSchedule {
  public:
    // `run` starts one run and calls its argument when the run has ended.
    using Run = std::function<void(std::function<void()> ended)>;

    FtpSchedule(platform::EventLoop& loop, Run run);
    ~FtpSchedule();
    FtpSchedule(const FtpSchedule&) = delete;
    FtpSchedule& operator=(const FtpSchedule&) = delete;

    // ASchedCheck on, with txtASched minutes between runs; fewer than one is one.
    void arm(int minutes);
    void disarm();
    [[nodiscard]] bool armed() const { return armed_; }
    [[nodiscard]] int minutesCounted() const { return counted_; }

    // A transfer started by hand holds the timer; its end lets it count on.
    void hold();
    void release();

  private:
    void startTimer();
    void stopTimer();
    void tick();

    platform::EventLoop& loop_;
    Run run_;
    platform::EventLoop::Handle TimerRefreash_ = 0;
    bool timerRunning_ = false;
    bool armed_ = false;
    bool running_ = false;
    int holds_ = 0;
    int minutes_ = 1;
    int counted_ = 0;
    // Runs posted or ended after the schedule is gone must not touch it.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace ovd::ftp
