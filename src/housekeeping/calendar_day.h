#pragma once
// Days as the user sees them on the calendar: local dates, counted in whole days,
// so "thirty days ago" and "dated on or before" mean what they say across a change
// to or from summer time.

#include <chrono>
#include <ctime>
#include <string>

#include "platform/event_loop.h"

namespace ovd::housekeeping {

using Day = std::chrono::sys_days;

// The local date of a moment of the station's clock.
[[nodiscard]] Day localDayOf(platform::WallClock::time_point moment);
// The local date of a file time (seconds since the epoch).
[[nodiscard]] Day localDayOf(std::time_t seconds);

// The local time of day and weekday, as the weekly schedule names them.
struct LocalClock {
    int weekday = 1;  // 1 Monday to 7 Sunday
    int hour = 0;     // 0 to 23
    int minute = 0;   // 0 to 59
};
[[nodiscard]] LocalClock localClockOf(platform::WallClock::time_point moment);

// "m/d/yyyy", the date as the windows show it.
[[nodiscard]] std::string dateText(Day day);

}  // namespace ovd::housekeeping
