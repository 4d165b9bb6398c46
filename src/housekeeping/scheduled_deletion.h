#pragma once
// The weekly purge of the recordings folder, on the station's clock. The clock
// check looks at the time every few seconds, comparing numbers only; in the
// scheduled minute it starts a one-shot timer, and the purge runs from that, off
// the clock's own tick.

#include <chrono>
#include <functional>
#include <optional>

#include "housekeeping/folder_clean.h"
#include "housekeeping/kept_files.h"
#include "platform/event_loop.h"
#include "platform/timer.h"
#include "settings/config_file.h"

namespace ovd::housekeeping {

// Often enough to see every minute several times, rarely enough to cost nothing.
inline constexpr int kClockCheckIntervalMs = 5000;
inline constexpr int kPurgeStartMs = 10;

// The hour of the day the schedule names: 12 is added in the afternoon, except to
// 12 itself, so 12 "AM" means noon as well. Kept: schedules were set by it.
[[nodiscard]] int scheduledHour(int DeleteHour, const std::string& DeleteAMPM);

struct ScheduledDeletionParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    LogLine log;
    KeptPathsSource kept;
};

class ScheduledDeletion {
  public:
    explicit ScheduledDeletion(ScheduledDeletionParts parts);

    // The age limit of this run: set by the weekly delete window, never stored, so
    // after a restart it is 0 and the purge deletes nothing until set again.
    [[nodiscard]] int PurgeDays() const { return purgeDays_; }
    void setPurgeDays(int days) { purgeDays_ = days; }

    // On when a day of the week is set (the station's load and the window's save).
    void turnOnWhenScheduled();
    // timCurTime: in the scheduled minute, starts timDelete (once per minute).
    void checkClock();
    // timDelete's work; also run by hand.
    CleanSummary PurgescandirFilesInPath();
    [[nodiscard]] int purgeRuns() const { return purgeRuns_; }

    platform::Timer timCurTime;
    platform::Timer timDelete;

  private:
    void startPurge();

    ScheduledDeletionParts parts_;
    int purgeDays_ = 0;
    int purgeRuns_ = 0;
    // The minute a purge was last started in: the check sees each minute several
    // times, and one purge a minute is all the schedule asks.
    std::optional<std::chrono::minutes> startedIn_;
};

}  // namespace ovd::housekeeping
