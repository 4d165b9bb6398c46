// The real station on the sound server, recording from a microphone that is
// taken away in the middle of the take: the take ends in order, the author is
// told, and what was said before is in the file.

#include <gtest/gtest.h>

#include <filesystem>

#include "station_process.h"
#include "support/pulse_daemon.h"
#include "support/pulse_modules.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
using testing::kMiddlePedal;
using testing::kPedalsUp;

TEST(MicrophoneStationTest, AMicrophoneTakenAwayDuringATakeEndsItInOrder) {
    testing::PulseDaemon daemon;
    ASSERT_TRUE(daemon.running()) << daemon.error();
    std::string error;
    const int microphone = testing::loadPulseModule(
        testing::sineSourceArguments("ovd_desk_mic", "DeskMicrophone", 880), &error);
    ASSERT_GE(microphone, 0) << error;

    testing::StationProcess station;
    const std::string recordings = station.folder.file("Rec");
    EXPECT_TRUE(platform::createFolder(recordings));
    station.changeSettings([&recordings](settings::SettingsRecord& record) {
        record.CaptureFilePath = recordings;
        record.InputDeviceName = "DeskMicrophone";
    });
    station.start({"--audio", "pulse"});
    ASSERT_TRUE(station.logShows("recording device DeskMicrophone")) << station.eventLog();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    station.pty.send(kMiddlePedal);  // held: the take runs
    ASSERT_TRUE(station.logShows("File Record: ")) << station.eventLog();
    std::this_thread::sleep_for(2500ms);
    const std::size_t beforeLoss = station.eventLog().size();
    ASSERT_TRUE(testing::unloadPulseModule(microphone));

    EXPECT_TRUE(station.logShows("Recording device lost: DeskMicrophone", beforeLoss))
        << station.eventLog();
    EXPECT_TRUE(station.logShows("File Stop: ", beforeLoss)) << "the take ends as a Stop ends it";
    EXPECT_TRUE(station.logShows("\"DeskMicrophone\" is no longer available", beforeLoss))
        << "the author is told why it stopped";
    station.pty.send(kPedalsUp);

    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0) << end.status;
    // Closed at the end of the run, the file holds the seconds said before the loss.
    std::uintmax_t biggest = 0;
    for (const auto& entry : std::filesystem::directory_iterator(recordings)) {
        if (entry.is_regular_file()) biggest = std::max(biggest, entry.file_size());
    }
    EXPECT_GT(biggest, 2U * 16000U * 2U) << "two seconds or more of 16-bit sound";
}

}  // namespace
}  // namespace ovd
