#include "housekeeping/calendar_day.h"

namespace ovd::housekeeping {

namespace {

std::tm localParts(std::time_t seconds) {
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    return parts;
}

Day dayOfParts(const std::tm& parts) {
    return Day(std::chrono::year(parts.tm_year + 1900) /
               std::chrono::month(static_cast<unsigned>(parts.tm_mon + 1)) /
               std::chrono::day(static_cast<unsigned>(parts.tm_mday)));
}

}  // namespace

Day localDayOf(platform::WallClock::time_point moment) {
    return localDayOf(platform::WallClock::to_time_t(moment));
}

Day localDayOf(std::time_t seconds) { return dayOfParts(localParts(seconds)); }

LocalClock localClockOf(platform::WallClock::time_point moment) {
    const std::tm parts = localParts(platform::WallClock::to_time_t(moment));
    return {parts.tm_wday == 0 ? 7 : parts.tm_wday, parts.tm_hour, parts.tm_min};
}

std::string dateText(Day day) {
    const std::chrono::year_month_day date(day);
    return std::to_string(static_cast<unsigned>(date.month())) + "/" +
           std::to_string(static_cast<unsigned>(date.day())) + "/" +
           std::to_string(static_cast<int>(date.year()));
}

}  // namespace ovd::housekeeping
