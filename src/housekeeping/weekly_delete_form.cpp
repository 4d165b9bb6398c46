#include "housekeeping/weekly_delete_form.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "platform/text.h"

namespace ovd::housekeeping {

namespace {
constexpr int kDefaultHour = 7;
constexpr int kDefaultMinute = 0;
constexpr const char* kDefaultHalf = "PM";
}  // namespace

const std::vector<std::string>& purgeDayNames() {
    static const std::vector<std::string> names = {"-None-",   "Monday", "Tuesday",  "Wednesday",
                                                   "Thursday", "Friday", "Saturday", "Sunday"};
    return names;
}

int clampedPurgeDays(const std::string& text) {
    const std::string trimmed = platform::trim(text);
    if (trimmed.empty()) return 0;
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(trimmed.c_str(), &end, 10);
    if (end == trimmed.c_str() || *end != '\0') return 0;
    if (errno == ERANGE) return value < 0 ? 0 : kLongestPurgeDays;
    if (value < 0) return 0;
    if (value > kLongestPurgeDays) return kLongestPurgeDays;
    return static_cast<int>(value);
}

WeeklyDeleteForm::WeeklyDeleteForm(settings::ConfigFile& config, ScheduledDeletion& purge,
                                   platform::EventLoop& loop)
    : Timer1(loop, "Timer1", 1000), config_(config), purge_(purge), loop_(loop) {
    Timer1.setOnTick([this] { showClock(); });
}

void WeeklyDeleteForm::Form_Load() {
    settings::SettingsRecord& record = config_.record;
    bool defaulted = false;
    if (record.DeleteDay < 0 || record.DeleteDay > 7) {
        record.DeleteDay = 0;
        defaulted = true;
    }
    if (record.DeleteHour < 1 || record.DeleteHour > 12) {
        record.DeleteHour = kDefaultHour;
        defaulted = true;
    }
    if (record.DeleteMinute < 0 || record.DeleteMinute > 59) {
        record.DeleteMinute = kDefaultMinute;
        defaulted = true;
    }
    if (record.DeleteAMPM != "AM" && record.DeleteAMPM != "PM") {
        record.DeleteAMPM = kDefaultHalf;
        defaulted = true;
    }
    if (defaulted) config_.WriteConfig();
    dayIndex = record.DeleteDay;
    hourIndex = record.DeleteHour - 1;
    minuteIndex = record.DeleteMinute;
    morning = record.DeleteAMPM == "AM";
    daysText = std::to_string(purge_.PurgeDays());
    folder = record.CaptureFilePath.toText();
    showClock();
    Timer1.setEnabled(true);
}

void WeeklyDeleteForm::setDaysText(const std::string& text) {
    daysText = std::to_string(clampedPurgeDays(text));
}

void WeeklyDeleteForm::Command2() {
    settings::SettingsRecord& record = config_.record;
    record.DeleteDay = static_cast<std::int16_t>(dayIndex);
    purge_.setPurgeDays(clampedPurgeDays(daysText));
    record.DeleteHour = static_cast<std::int16_t>(hourIndex + 1);
    record.DeleteMinute = static_cast<std::int16_t>(minuteIndex);
    record.DeleteAMPM = morning ? "AM" : "PM";
    config_.WriteConfig();
    purge_.turnOnWhenScheduled();
}

void WeeklyDeleteForm::showClock() {
    const std::time_t seconds = platform::WallClock::to_time_t(loop_.now());
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    // Spelt out rather than by the locale, which may have no AM and PM at all.
    const int hour12 = parts.tm_hour % 12 == 0 ? 12 : parts.tm_hour % 12;
    char text[96];
    std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d %s", parts.tm_mon + 1,
                  parts.tm_mday, parts.tm_year + 1900, hour12, parts.tm_min, parts.tm_sec,
                  parts.tm_hour < 12 ? "AM" : "PM");
    clockText = text;
    if (onClockChanged) onClockChanged();
}

}  // namespace ovd::housekeeping
