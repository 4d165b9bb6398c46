// The weekly purge on the virtual clock: the scheduled minute found once in a
// week, 12 "AM" meaning noon, and an age that lives only as long as the run.

#include "housekeeping_fixture.h"

namespace ovd::housekeeping::testing {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;

class ScheduledDeletionTest : public HousekeepingTest {
  protected:
    // Runs the station's clock for the time, noting the local time of every purge.
    std::vector<LocalClock> runFor(platform::Milliseconds span) {
        std::vector<LocalClock> purges;
        int seen = house.purge.purgeRuns();
        const auto end = loop.now() + span;
        while (loop.now() < end) {
            loop.advance(std::chrono::seconds(1));
            if (house.purge.purgeRuns() != seen) {
                seen = house.purge.purgeRuns();
                purges.push_back(localClockOf(loop.now()));
            }
        }
        return purges;
    }
};

TEST_F(ScheduledDeletionTest, AWeekHasOnePurgeInTheScheduledMinute) {
    schedule(3, 4, 45, "PM");  // Wednesday 16:45
    house.purge.setPurgeDays(30);
    house.startClock();
    ASSERT_TRUE(house.purge.timCurTime.Enabled());

    const auto purges = runFor(days(7));

    ASSERT_EQ(purges.size(), 1u);
    EXPECT_EQ(purges[0].weekday, 3);
    EXPECT_EQ(purges[0].hour, 16);
    EXPECT_EQ(purges[0].minute, 45);
}

TEST_F(ScheduledDeletionTest, TwelveInTheMorningMeansNoon) {
    schedule(1, 12, 5, "AM");  // Monday; the clock starts Monday 09:00
    house.startClock();
    const auto purges = runFor(days(1));
    ASSERT_EQ(purges.size(), 1u);
    EXPECT_EQ(purges[0].hour, 12) << "12 AM is kept as noon, not midnight";
    EXPECT_EQ(purges[0].minute, 5);

    schedule(1, 12, 5, "PM");  // and 12 PM is noon too
    loop.advance(days(6) + hours(2));
    EXPECT_EQ(runFor(days(1)).size(), 1u);
}

TEST_F(ScheduledDeletionTest, NoDayOfTheWeekNeverPurgesAndStopsTheClock) {
    schedule(1, 9, 1, "AM");
    house.startClock();
    schedule(0, 9, 1, "AM");
    EXPECT_TRUE(runFor(days(7)).empty());
    EXPECT_FALSE(house.purge.timCurTime.Enabled());
}

TEST_F(ScheduledDeletionTest, ThePurgeInItsMinuteCleansTheRecordingsFolder) {
    datedFile(recordings + "/old.wav", daysBefore(2026, 3, 2, 70));
    datedFile(recordings + "/kept.wav", daysBefore(2026, 3, 2, 50));
    datedFile(recordings + "/letter-in-hand.wav", daysBefore(2026, 3, 2, 70));
    inHand.files = {recordings + "/letter-in-hand.wav"};
    schedule(1, 9, 30, "AM");
    house.purge.setPurgeDays(30);
    house.startClock();

    runFor(minutes(29));
    EXPECT_TRUE(platform::fileExists(recordings + "/old.wav")) << "not before its minute";
    runFor(minutes(2));

    EXPECT_FALSE(platform::fileExists(recordings + "/old.wav"));
    EXPECT_TRUE(platform::fileExists(recordings + "/kept.wav"));
    EXPECT_TRUE(platform::fileExists(recordings + "/letter-in-hand.wav"))
        << "the letter open in the station stays whatever its date";
    EXPECT_TRUE(logged("Scheduled deletion deleted " + recordings + "/old.wav"));
}

TEST_F(ScheduledDeletionTest, ARestartForgetsTheAgeAndDeletesNothing) {
    datedFile(recordings + "/old.wav", daysBefore(2026, 3, 2, 400));
    schedule(1, 9, 30, "AM");
    house.purge.setPurgeDays(30);
    config.WriteConfig();

    // The station starts again on the same data folder.
    settings::ConfigFile restartedConfig(data.path());
    restartedConfig.ReadConfig();
    Housekeeping restarted({loop, restartedConfig, log, data.path(), {}});
    EXPECT_EQ(restarted.purge.PurgeDays(), 0);
    restarted.startClock();
    house.purge.timCurTime.setEnabled(false);
    loop.advance(hours(1));

    EXPECT_EQ(restarted.purge.purgeRuns(), 1);
    EXPECT_TRUE(platform::fileExists(recordings + "/old.wav"));
    EXPECT_TRUE(logged("no age set in this run"));
}

}  // namespace
}  // namespace ovd::housekeeping::testing
