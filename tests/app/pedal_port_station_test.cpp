// The real station program and its serial pedal port when the line is not kind:
// noise on the line, and a port that is missing or held by another program at
// start. The author's foot must work as soon as the port can, and the station
// stays light and ends in order on SIGTERM.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "station_checks.h"
#include "station_process.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

using testing::occurrences;

using testing::expectLightAndEndsInOrder;

TEST(PedalPortStationTest, APressAfterTenThousandBytesOfNoiseStartsTheTakeAtOnce) {
    testing::StationProcess station;
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    std::mt19937 random(2013);
    std::vector<std::uint8_t> noise;
    while (noise.size() < 10000) {
        const auto byte = static_cast<std::uint8_t>(random() & 0xFF);
        if (byte != testing::kLeftPedal && byte != testing::kMiddlePedal &&
            byte != testing::kRightPedal && byte != testing::kPedalsUp) {
            noise.push_back(byte);
        }
    }
    station.pty.send(noise);
    std::this_thread::sleep_for(300ms);

    const std::size_t before = station.eventLog().size();
    const auto pressed = Clock::now();
    station.pty.send(testing::kMiddlePedal);
    ASSERT_TRUE(station.logShows("File Record: ", before)) << station.eventLog().substr(before);
    // The log is written through every half second: the take started within a second.
    EXPECT_LT(Clock::now() - pressed, 1700ms);
    std::this_thread::sleep_for(1s);
    station.pty.send(testing::kPedalsUp);
    EXPECT_TRUE(station.logShows("File Stop: ", before)) << station.eventLog().substr(before);

    expectLightAndEndsInOrder(station);
}

TEST(PedalPortStationTest, APortMissingAtStartThenHeldIsToldOnceAndThePedalWorksOnceItIsFree) {
    testing::StationProcess station;
    const std::string link = station.folder.file("pedal-link");
    EXPECT_TRUE(platform::writeWholeFile(station.folder.file("SerialPorts.ini"),
                                         "[Ports]\r\nCOM1=" + link + "\r\n"));
    station.start();
    const std::string notice = "Foot pedal port COM1 could not be opened (" + link;
    ASSERT_TRUE(station.logShows(notice)) << station.eventLog();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    // Another program holds the device when it appears: still nothing to hear.
    const int holder = ::open(station.pty.slavePath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(holder, 0);
    ASSERT_EQ(::flock(holder, LOCK_EX | LOCK_NB), 0);
    std::filesystem::create_symlink(station.pty.slavePath(), link);
    const double cpu = station.cpuPercentOver(7s);  // two tries or more, quietly
    EXPECT_LT(cpu, 5.0);
    EXPECT_EQ(occurrences(station.eventLog(), "could not be opened"), 1u) << station.eventLog();
    EXPECT_EQ(station.eventLog().find("Foot pedal port COM1 is open"), std::string::npos);

    ::close(holder);
    ASSERT_TRUE(station.logShows("Foot pedal port COM1 is open (" + link + ")"))
        << station.eventLog();
    const std::size_t before = station.eventLog().size();
    station.press(testing::kMiddlePedal, 1500ms);
    EXPECT_TRUE(station.logShows("File Record: ", before)) << station.eventLog().substr(before);
    EXPECT_TRUE(station.logShows("File Stop: ", before)) << station.eventLog().substr(before);
    EXPECT_EQ(occurrences(station.eventLog(), "could not be opened"), 1u);

    expectLightAndEndsInOrder(station);
}

}  // namespace
}  // namespace ovd
