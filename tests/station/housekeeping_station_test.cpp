// The cleans in a whole station: the drive scan at start waits for the recovery of
// a crashed run's takes, and the weekly purge leaves the letter in hand alone
// however old its date.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "dictation/dictation_fixture.h"
#include "housekeeping/scan_settings.h"
#include "virtual_station.h"

namespace ovd::station {
namespace {

using testing::VirtualStation;

// Gives the file (made when missing) the date of that many days before the station's today.
void dateBack(VirtualStation& s, const std::string& path, int days) {
    if (!platform::fileExists(path)) {
        ASSERT_TRUE(platform::createFolder(platform::folderOf(path)));
        ASSERT_TRUE(platform::writeWholeFile(path, "RIFF"));
    }
    const auto seconds =
        platform::WallClock::to_time_t(s.loop.now() - std::chrono::hours(24 * days));
    const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

void scanRecordings(VirtualStation& s, int days) {
    housekeeping::ScanSettings record;
    record.DestPath = s.recordings;
    record.DeleteDays = days;
    ASSERT_TRUE(housekeeping::SaveScanSettings(s.folder.path(), record));
}

TEST(StationHousekeepingTest, TheDriveScanAtStartWaitsForTheRecoveryOfACrashedRun) {
    VirtualStation s;
    ASSERT_TRUE(platform::createFolder(s.recordings + "/Temp"));
    dictation::testing::writeRampWave(s.recordings + "/Temp/take7.tmp", 3);
    dateBack(s, s.recordings + "/Temp/take7.tmp", 30);
    dateBack(s, s.recordings + "/last-month.wav", 30);
    s.config.record.gNormalShutDown = false;
    s.config.record.AutoFileDeltion = true;
    s.config.WriteConfig();
    scanRecordings(s, 1);
    s.make();

    ASSERT_EQ(s.station->Form_Load(), LoadResult::Recovering) << s.log.text();
    EXPECT_TRUE(platform::fileExists(s.recordings + "/last-month.wav")) << "no scan yet";
    for (int i = 0; i < 60 && s.loadsDone == 0; ++i) s.advance(500);
    ASSERT_EQ(s.loadsDone, 1) << s.log.text();

    EXPECT_EQ(s.firstMissingInOrder({"Scan/Convert: Temporary Files RECOVERED",
                                     "Loading: recovery done", "Drive Scan: deleting files of",
                                     "Drive Scan deleted " + s.recordings + "/last-month.wav",
                                     "Loading: pedals"}),
              "")
        << s.log.text();
    EXPECT_FALSE(platform::fileExists(s.recordings + "/last-month.wav"));
    EXPECT_FALSE(platform::filesInFolder(s.recordings + "/BACK").empty())
        << "the recovered take is kept";
}

TEST(StationHousekeepingTest, TheWeeklyPurgeLeavesTheLetterOpenToListenAlone) {
    VirtualStation s;
    // A year-old letter opened to listen, beside another of the same age.
    const std::string letter = s.recordings + "/AB0001.WAV";
    ASSERT_TRUE(platform::createFolder(s.recordings));
    dictation::testing::writeRampWave(letter, 2);
    dateBack(s, letter, 365);
    dateBack(s, s.recordings + "/last-year.wav", 365);
    s.make(letter);
    ASSERT_EQ(s.station->Form_Load(), LoadResult::Ready) << s.log.text();
    s.advance(2000);
    ASSERT_EQ(s.station->dictation().state().Filename, letter) << s.log.text();

    // The purge falls due in the next minute.
    const auto in = housekeeping::localClockOf(s.loop.now() + std::chrono::minutes(1));
    s.config.record.DeleteDay = static_cast<std::int16_t>(in.weekday);
    s.config.record.DeleteHour = static_cast<std::int16_t>(in.hour > 12 ? in.hour - 12 : in.hour);
    s.config.record.DeleteAMPM = in.hour >= 12 ? "PM" : "AM";
    s.config.record.DeleteMinute = static_cast<std::int16_t>(in.minute);
    housekeeping::Housekeeping& house = s.station->housekeeping();
    house.purge.setPurgeDays(30);
    house.startClock();
    s.advance(120000);

    EXPECT_EQ(house.purge.purgeRuns(), 1);
    EXPECT_FALSE(platform::fileExists(s.recordings + "/last-year.wav")) << s.log.text();
    EXPECT_TRUE(platform::fileExists(letter)) << "the letter in hand stays whatever its date";
}

}  // namespace
}  // namespace ovd::station
