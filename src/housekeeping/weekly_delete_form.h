#pragma once
// frmweeklyDelete as data: the weekly time of the purge, the age limit of this
// run, the folder it cleans and the clock on the label. The window draws these
// and passes the user's choices on.

#include <functional>
#include <string>
#include <vector>

#include "housekeeping/scheduled_deletion.h"
#include "platform/event_loop.h"
#include "platform/timer.h"
#include "settings/config_file.h"

namespace ovd::housekeeping {

inline constexpr int kLongestPurgeDays = 120;

// The day box: "-None-", then Monday to Sunday, by DeleteDay.
[[nodiscard]] const std::vector<std::string>& purgeDayNames();
// txtDays as it stands after a change: no number is 0, below 0 is 0, above 120 is 120.
[[nodiscard]] int clampedPurgeDays(const std::string& text);

class WeeklyDeleteForm {
  public:
    WeeklyDeleteForm(settings::ConfigFile& config, ScheduledDeletion& purge,
                     platform::EventLoop& loop);

    // Fills the fields from the settings, writing the defaults at once for any
    // field never set, and starts the clock on the label.
    void Form_Load();
    void Form_Unload() { Timer1.setEnabled(false); }

    int dayIndex = 0;       // Combo1
    int hourIndex = 6;      // Combo2: "1" to "12"
    int minuteIndex = 0;    // Combo3: "00" to "59"
    bool morning = false;   // Option1 "AM"; Option2 "PM" otherwise
    std::string daysText;   // txtDays
    std::string folder;     // LBLPath
    std::string clockText;  // the date, a blank and the time

    // txtDays_Change: the text as it should read now.
    void setDaysText(const std::string& text);
    // Command2: the schedule into the settings (written), the age into this run only.
    void Command2();

    // Timer1: the label's clock, once a second.
    platform::Timer Timer1;
    std::function<void()> onClockChanged;

  private:
    void showClock();

    settings::ConfigFile& config_;
    ScheduledDeletion& purge_;
    platform::EventLoop& loop_;
};

}  // namespace ovd::housekeeping
