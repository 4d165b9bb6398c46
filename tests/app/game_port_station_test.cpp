// The real station with game port pedals: a FIFO named in GamePort.ini stands in
// for the joystick. Its buttons drive the take on the serial assignments, and a
// joystick that goes away in the middle of a take is told in the log while the
// take and the station go on.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <thread>

#include "platform/files.h"
#include "station_checks.h"
#include "station_process.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;

void sendButton(int fd, std::uint8_t number, bool pressed) {
    const std::array<std::uint8_t, 8> event = {
        0, 0, 0, 0, pressed ? std::uint8_t{1} : std::uint8_t{0}, 0, 0x01, number};
    ASSERT_EQ(::write(fd, event.data(), event.size()), 8);
}

TEST(GamePortStationTest, TheJoystickDrivesTheTakeAndItsLossIsToldWhileTheTakeGoesOn) {
    testing::StationProcess station;
    const std::string joystick = station.folder.file("joystick");
    ASSERT_EQ(::mkfifo(joystick.c_str(), 0600), 0);
    const int writer = ::open(joystick.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    ASSERT_TRUE(platform::writeWholeFile(station.folder.file("GamePort.ini"),
                                         "[Joystick]\r\nDevice=" + joystick + "\r\n"));
    station.changeSettings([](settings::SettingsRecord& record) {
        record.UserSelectSerial = false;
        record.UserSelectGame = true;
    });
    station.start();
    ASSERT_TRUE(station.logShows("Game port pedals reading " + joystick)) << station.eventLog();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    // Button 3 alone is the middle pedal: record and stop on the serial assignments.
    std::size_t before = station.eventLog().size();
    sendButton(writer, 2, true);
    ASSERT_TRUE(station.logShows("File Record: ", before)) << station.eventLog().substr(before);
    std::this_thread::sleep_for(1s);
    sendButton(writer, 2, false);
    ASSERT_TRUE(station.logShows("File Stop: ", before)) << station.eventLog().substr(before);

    before = station.eventLog().size();
    sendButton(writer, 2, true);
    ASSERT_TRUE(station.logShows("File Record: ", before)) << station.eventLog().substr(before);
    ::close(writer);
    ASSERT_TRUE(station.logShows("Game port pedals lost: " + joystick, before))
        << station.eventLog().substr(before);
    std::this_thread::sleep_for(1s);
    EXPECT_EQ(station.eventLog().find("File Stop: ", before), std::string::npos)
        << "what the author says goes on being recorded";

    const testing::StationProcess::TimedEnd end = station.terminateTimed();
    EXPECT_TRUE(end.end.exited && end.end.status == 0) << end.end.status;
}

}  // namespace
}  // namespace ovd
