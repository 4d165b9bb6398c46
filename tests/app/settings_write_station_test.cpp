// The settings file can't be replaced (something stands where the station writes
// the new record beside it): the station says so once, in its event log and to
// the user, goes on with the settings in memory, and the record on disk stays
// the one that was there.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/files.h"
#include "station_process.h"

namespace ovd {
namespace {

TEST(SettingsWriteStationTest, AWriteThatFailsIsLoggedOnceAndTheRecordOnDiskStaysTheOldOne) {
    testing::StationProcess station;
    const std::string record = station.folder.file("DigitalRecorder.cfg");
    const std::string before = platform::readWholeFile(record).valueOr("");
    ASSERT_FALSE(before.empty());
    // The new record is written beside the old one first; a folder of that name
    // makes every write fail while the old record stays readable.
    std::filesystem::create_directory(record + ".new");
    const std::string errors = station.folder.file("station.err");

    station.startWithErrorsTo(errors);
    ASSERT_TRUE(station.logShows("WriteConfig failed: " + record + ": ")) << station.eventLog();
    const testing::StationProcess::TimedEnd end = station.terminateTimed();

    EXPECT_TRUE(end.end.exited) << "signal " << end.end.status;
    const std::string log = station.eventLog();
    EXPECT_EQ(testing::occurrences(log, "WriteConfig failed: "), 1u) << log;
    EXPECT_NE(log.find("Is a directory"), std::string::npos) << "the system's own reason";
    EXPECT_EQ(testing::occurrences(platform::readWholeFile(errors).valueOr(""),
                                   "The settings could not be saved to " + record),
              1u);
    EXPECT_EQ(platform::readWholeFile(record).valueOr(""), before) << "the old record stays whole";
}

}  // namespace
}  // namespace ovd
