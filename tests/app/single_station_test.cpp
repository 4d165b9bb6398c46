// One station per data folder, held by a lock the process takes: a second process
// started for a file hands the name over and ends without a word; started bare, it
// says a station already runs and how to end it.

#include <gtest/gtest.h>

#include "dictation/hand_off.h"
#include "platform/files.h"
#include "station_process.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;

TEST(SingleStationTest, ASecondBareStartSaysOneIsRunningAndHowToEndIt) {
    testing::StationProcess station;
    station.start();
    ASSERT_TRUE(station.logShows("Loading: done")) << station.eventLog();

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

TEST(SingleStationTest, ASecondStartForAFileHandsItsFullNameOverAndEndsWithoutAWord) {
    testing::StationProcess station;
    const std::string letters = station.folder.file("letters");
    station.start({"\"" + letters + "/Smith\""});  // quoted, as a file manager passes it
    ASSERT_TRUE(station.logShows("LOADED New File: " + letters + "/Smith.WAV"))
        << station.eventLog();
    station.press(testing::kMiddlePedal, 1500ms);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();

    // Started from the letters folder with a bare-folder name, as a user at a shell would.
    station.workingDirectory = letters;
    EXPECT_TRUE(platform::createFolder(letters));
    const testing::ProcessEnd second = station.runSecond({"./Jones"});
    EXPECT_TRUE(second.exited && second.status == 0) << second.status;
    EXPECT_EQ(second.errors, "");
    // The letter in hand is not finished, so the name waits for its end.
    const auto handOff = dictation::readHandOff(station.folder.path());
    ASSERT_TRUE(handOff.has_value());
    EXPECT_EQ(handOff->NextString, letters + "/Jones");

    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0);
}

}  // namespace
}  // namespace ovd
