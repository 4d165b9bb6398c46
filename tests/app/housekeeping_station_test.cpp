// The real station with automatic file deletion on cleans the drive scan's folder
// as it starts: a file older than the days set goes, a recent one stays.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <string>

#include "platform/files.h"
#include "station_process.h"

namespace ovd {
namespace {

void datedFile(const std::string& path, std::chrono::hours age) {
    ASSERT_TRUE(platform::writeWholeFile(path, "RIFF"));
    const auto seconds =
        std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() - age);
    const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

TEST(HousekeepingStationTest, TheDriveScanAtStartCleansAnOldFileAndKeepsARecentOne) {
    testing::StationProcess station;
    const std::string scanned = station.folder.file("Old Letters");
    ASSERT_TRUE(platform::createFolder(scanned + "/2025"));
    datedFile(scanned + "/2025/march.wav", std::chrono::hours(24 * 30));
    datedFile(scanned + "/yesterday.wav", std::chrono::hours(24));
    ASSERT_TRUE(platform::writeWholeFile(station.folder.file("FileScan.cfg"),
                                         "\"\",\"" + scanned + "\",\"Monday\",7,0,\"PM\",,7\r\n"));
    station.changeSettings([](settings::SettingsRecord& r) { r.AutoFileDeltion = true; });

    station.start();
    ASSERT_TRUE(station.logShows("Drive Scan: 1 files deleted")) << station.eventLog();
    const auto end = station.terminateTimed();

    EXPECT_TRUE(end.end.exited);
    EXPECT_FALSE(platform::fileExists(scanned + "/2025/march.wav"));
    EXPECT_TRUE(platform::fileExists(scanned + "/yesterday.wav"));
    EXPECT_TRUE(station.logShows("Drive Scan deleted " + scanned + "/2025/march.wav"));
}

}  // namespace
}  // namespace ovd
