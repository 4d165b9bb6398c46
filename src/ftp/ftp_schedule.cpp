#include "ftp/ftp_schedule.h"

#include <chrono>

namespace ovd::ftp {

namespace {
constexpr platform::Milliseconds kOneMinute = std::chrono::minutes(1);
}

FtpSchedule::FtpSchedule(platform::EventLoop& loop, Run run) : loop_(loop), run_(std::move(run)) {}

FtpSchedule::~FtpSchedule() {
    *alive_ = false;
    stopTimer();
}

void FtpSchedule::startTimer() {
    if (timerRunning_ || !armed_ || running_ || holds_ > 0) return;
    TimerRefreash_ = loop_.startRepeating(kOneMinute, [this] { tick(); });
    timerRunning_ = true;
}

void FtpSchedule::stopTimer() {
    if (!timerRunning_) return;
    loop_.stopRepeating(TimerRefreash_);
    timerRunning_ = false;
}

void FtpSchedule::arm(int minutes) {
    minutes_ = minutes < 1 ? 1 : minutes;
    counted_ = 0;
    armed_ = true;
    startTimer();
}

void FtpSchedule::disarm() {
    armed_ = false;
    counted_ = 0;
    stopTimer();
}

void FtpSchedule::hold() {
    ++holds_;
    stopTimer();
}

void FtpSchedule::release() {
    if (holds_ > 0) --holds_;
    startTimer();
}

void FtpSchedule::tick() {
    if (++counted_ < minutes_) return;
    counted_ = 0;
    stopTimer();
    running_ = true;
    auto alive = alive_;
    run_([this, alive] {
        if (!*alive) return;
        running_ = false;
        startTimer();
    });
}

}  // namespace ovd::ftp
