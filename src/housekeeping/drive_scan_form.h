#pragma once
// frmDriveScanScheduler as data: the folder the drive scan cleans, its number of
// days and the calendar day they come to (each follows the other), and the weekly
// time, which is shown and stored while the clean itself runs at start.

#include <string>
#include <vector>

#include "housekeeping/calendar_day.h"
#include "housekeeping/scan_settings.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "settings/config_file.h"

namespace ovd::housekeeping {

inline constexpr const char* kAreYouSure = "Are you sure?";
inline constexpr const char* kUserCancelled = "User Cancelled";

// The day box: Monday to Sunday.
[[nodiscard]] const std::vector<std::string>& scanDayNames();

struct DriveScanFormParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    platform::Prompts& prompts;
    std::string dataFolder;
};

class DriveScanForm {
  public:
    explicit DriveScanForm(DriveScanFormParts parts);

    // LoadScanSettings into the fields; a record that can't be read shows the
    // defaults, and `damage` says why.
    void Form_Load();

    std::string folder;    // DestPath
    int dayIndex = 0;      // Combo1
    int hourIndex = 6;     // Combo2: "1" to "12"
    int minuteIndex = 0;   // Combo3: "00" to "59"
    bool morning = false;  // Option1 "AM"; "PM" otherwise
    std::string daysText;  // Text2
    Day calendarDay{};     // MonthView1: today less the days
    std::string damage;

    // Text2_Change: a number of days moves the calendar to that many days ago.
    void setDaysText(const std::string& text);
    // MonthView1_DateClick: the days become the distance from today. A day after
    // today is taken as today: a cut-off in the future would delete today's letters.
    void setCalendarDay(Day day);
    [[nodiscard]] Day today() const;

    // Command2: SaveScanSettings; false, after saying why, when it could not be written.
    bool Command2();
    // Command4: back to the default folder, after "Are you sure?".
    void Command4();
    // Command5: the folder browser.
    void Command5();

  private:
    void useFolder(const std::string& chosen);

    DriveScanFormParts parts_;
    ScanSettings loaded_;
};

}  // namespace ovd::housekeeping
