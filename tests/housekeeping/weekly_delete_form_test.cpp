// frmweeklyDelete: the defaults written at once, txtDays held to 0..120, and the
// save that stores the schedule but keeps the age in this run only.

#include "housekeeping/weekly_delete_form.h"

#include "housekeeping_fixture.h"

namespace ovd::housekeeping::testing {
namespace {

class WeeklyDeleteFormTest : public HousekeepingTest {
  protected:
    WeeklyDeleteForm form{config, house.purge, loop};
};

TEST_F(WeeklyDeleteFormTest, FieldsNeverSetAreWrittenWithTheDefaultsAtOnce) {
    schedule(0, 0, 0, "");
    config.WriteConfig();
    const int writes = config.writeCount();
    form.Form_Load();

    EXPECT_EQ(config.writeCount(), writes + 1);
    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.DeleteDay, 0);
    EXPECT_EQ(disk.DeleteHour, 7);
    EXPECT_EQ(disk.DeleteMinute, 0);
    EXPECT_EQ(disk.DeleteAMPM, "PM");
    EXPECT_EQ(form.hourIndex, 6);
    EXPECT_FALSE(form.morning);
    EXPECT_EQ(form.daysText, "0");
    EXPECT_EQ(form.folder, recordings);
    EXPECT_EQ(form.clockText, "03/02/2026 09:00:00 AM");
    loop.advance(std::chrono::seconds(61));
    EXPECT_EQ(form.clockText, "03/02/2026 09:01:01 AM");
}

TEST_F(WeeklyDeleteFormTest, DaysAreHeldBetweenZeroAndOneHundredTwenty) {
    const std::pair<const char*, const char*> cases[] = {
        {"abc", "0"}, {"-5", "0"}, {"500", "120"}, {"120", "120"},
        {"30", "30"}, {"", "0"},   {"12abc", "0"}, {"99999999999999999999", "120"},
    };
    for (const auto& [typed, shown] : cases) {
        form.setDaysText(typed);
        EXPECT_EQ(form.daysText, shown) << typed;
    }
}

TEST_F(WeeklyDeleteFormTest, SaveStoresTheScheduleButTheAgeOnlyInThisRun) {
    form.Form_Load();
    form.dayIndex = 4;
    form.hourIndex = 2;
    form.minuteIndex = 15;
    form.morning = false;
    form.setDaysText("45");
    form.Command2();

    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.DeleteDay, 4);
    EXPECT_EQ(disk.DeleteHour, 3);
    EXPECT_EQ(disk.DeleteMinute, 15);
    EXPECT_EQ(disk.DeleteAMPM, "PM");
    EXPECT_EQ(house.purge.PurgeDays(), 45);
    EXPECT_TRUE(house.purge.timCurTime.Enabled());
    EXPECT_EQ(platform::readWholeFile(config.path())->find("45"), std::string::npos)
        << "the age is never stored";

    form.dayIndex = 0;
    form.Command2();
    EXPECT_FALSE(house.purge.timCurTime.Enabled()) << "no day: the check is off";
}

}  // namespace
}  // namespace ovd::housekeeping::testing
