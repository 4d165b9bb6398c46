// One station per data folder: a second process started for a file hands the
// name over and ends; started bare, it says a station already runs. The first
// station comes up in its fixed order.

#include <gtest/gtest.h>

#include "platform/files.h"
#include "station_process.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;

TEST(SingleStationTest, StartsInOrderAndASecondBareStartSaysOneIsRunning) {
    testing::StationProcess station;
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    const std::string log = station.eventLog();
    std::size_t at = 0;
    for (const char* step : {"Loading: program folder", "Loading: settings read from",
                             "Loading: recordings in", "Loading: recording device",
                             "Loading: work files in", "Loading: pedals", "Loading: done",
                             " Calling Case New from tmCommand_Timer "}) {
        const std::size_t found = log.find(step, at);
        ASSERT_NE(found, std::string::npos) << step << " missing or out of order in\n" << log;
        at = found;
    }

    const testing::ProcessEnd second = station.runSecond({});
    EXPECT_TRUE(second.exited && second.status == 1) << second.status;
    EXPECT_NE(second.errors.find("This program is already running! Please locate the other Orvane "
                                 "Voice Desk program that is already running."),
              std::string::npos)
        << second.errors;
    // The user is told how this system ends the running station, by its own number.
    EXPECT_NE(second.errors.find("kill " + std::to_string(station.pid())), std::string::npos)
        << second.errors;
    EXPECT_NE(second.errors.find("File > Exit"), std::string::npos) << second.errors;
    for (const char* windowsOnly : {"Windows screen", "CTRL+ALT+DEL", "END TASK"}) {
        EXPECT_EQ(second.errors.find(windowsOnly), std::string::npos) << second.errors;
    }
    EXPECT_FALSE(platform::fileExists(station.folder.file("ovtitemp.ini")));

    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0);
}

TEST(SingleStationTest, ANameHandedOverIsDictatedOnceTheLetterInHandIsFinished) {
    testing::StationProcess station;
    const std::string letters = station.folder.file("letters");
    station.start({"\"" + letters + "/Smith\""});  // quoted, as a file manager passes it
    ASSERT_TRUE(station.logShows("Received Command line File Name = " + letters + "/Smith"))
        << station.eventLog();
    ASSERT_TRUE(station.logShows("LOADED New File: " + letters + "/Smith.WAV")) << station.eventLog();
    station.press(testing::kMiddlePedal, 2500ms);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();

    // A second start for another file, while the first letter is still open.
    const testing::ProcessEnd second = station.runSecond({letters + "/Jones"});
    EXPECT_TRUE(second.exited && second.status == 0) << second.status;
    EXPECT_EQ(second.errors, "");
    ASSERT_TRUE(platform::fileExists(station.folder.file("ovtitemp.ini")));
    std::this_thread::sleep_for(500ms);
    EXPECT_EQ(station.eventLog().find("Jones"), std::string::npos) << "the letter in hand was interrupted";

    const std::size_t beforeEnd = station.eventLog().size();
    station.press(testing::kRightPedal, 300ms);  // end of letter
    ASSERT_TRUE(station.logShows("Timer 28 Looking for ovtitemp.ini", beforeEnd)) << station.eventLog();
    EXPECT_TRUE(station.logShows("LOADED New File: " + letters + "/Jones.WAV", beforeEnd))
        << station.eventLog().substr(beforeEnd);
    EXPECT_GT(platform::fileSize(letters + "/Smith.WAV").value_or(0), 30311u);
    EXPECT_FALSE(platform::fileExists(station.folder.file("ovtitemp.ini")));

    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0);
}

}  // namespace
}  // namespace ovd
