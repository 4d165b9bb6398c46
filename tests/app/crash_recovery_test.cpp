// A station killed in the middle of a take loses nothing but the last moment:
// after the starts the crash state asks for, the take is a recording of the
// format in force in the recordings folder.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <regex>

#include "engine/codecs.h"
#include "station_process.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Spoken words at the recording's rate, as the microphone gives them.
std::string speechFile(const testing::TempFolder& folder) {
    const std::string spoken = folder.file("spoken.wav");
    const std::string speech = folder.file("speech.wav");
    const std::string command =
        "espeak-ng -w '" + spoken +
        "' 'Dear Sir, further to our letter of the fourth, please find enclosed the report.' && "
        "sox '" +
        spoken + "' -r 16000 -c 1 -b 16 '" + speech + "'";
    return std::system(command.c_str()) == 0 ? speech : std::string();
}

std::vector<std::string> recoveredFiles(const std::string& folder) {
    std::vector<std::string> found;
    const std::regex recovered(R"(.+-[0-9]+\.MP3)");
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_regular_file() && std::regex_match(name, recovered))
            found.push_back(entry.path().string());
    }
    return found;
}

TEST(CrashRecoveryTest, ATakeKilledMidwayIsRecoveredAfterTheSecondStart) {
    testing::StationProcess station;
    const std::string speech = speechFile(station.folder);
    ASSERT_FALSE(speech.empty()) << "espeak-ng and sox make the spoken input";
    const std::string recordings = station.folder.file("Rec");
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.CaptureFilePath = recordings;
        r.FormatType = "MP3";
        r.Frequency = "16000";
        r.Channel = "MONO";
        r.FileBit = "32";
        r.RecoveryModule = true;
        r.FileSaveAtStop = false;
    });
    const std::vector<std::string> microphone{"--virtual-input", speech};

    station.start(microphone);
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    station.pty.send(testing::kMiddlePedal);  // held: the take goes on until the crash
    const Clock::time_point pressed = Clock::now();
    ASSERT_TRUE(station.logShows("File Record: ")) << station.eventLog();
    std::this_thread::sleep_for(6s);
    const testing::ProcessEnd crash = station.terminate(SIGKILL);
    const double recordedMs =
        std::chrono::duration<double, std::milli>(Clock::now() - pressed).count();
    EXPECT_FALSE(crash.exited);

    // The first start after the crash only notes that work files wait; it goes
    // down before it ends in order, as a machine that loses power again would.
    std::size_t from = station.eventLog().size();
    station.start(microphone);
    ASSERT_TRUE(
        station.logShows("Loading: work files of an earlier run left for the next start", from))
        << station.eventLog().substr(from);
    ASSERT_TRUE(station.logShows("Loading: done", from));
    EXPECT_TRUE(recoveredFiles(recordings).empty());
    station.terminate(SIGKILL);

    from = station.eventLog().size();
    station.start(microphone);
    ASSERT_TRUE(station.logShows("Loading: recovery done", from))
        << station.eventLog().substr(from);
    const std::string log = station.eventLog().substr(from);
    EXPECT_NE(log.find("Scan/Convert: Start ConvertToMP3"), std::string::npos) << log;
    EXPECT_NE(log.find("Scan/Convert: Temporary Files RECOVERED"), std::string::npos) << log;

    const std::vector<std::string> recovered = recoveredFiles(recordings);
    ASSERT_EQ(recovered.size(), 1u) << log;
    const auto opened = engine::AudioFileReader::open(recovered[0]);
    ASSERT_TRUE(opened) << opened.error();
    const auto& reader = *opened;
    EXPECT_EQ(reader->formatName(), "MP3");
    const auto lengthMs = static_cast<double>(engine::fileLengthMilliseconds(recovered[0]));
    EXPECT_GE(lengthMs, recordedMs - 1000.0) << recovered[0];
    EXPECT_LE(lengthMs, recordedMs + 500.0) << recovered[0];
    EXPECT_TRUE(std::filesystem::exists(recordings + "/BACK/" +
                                        std::filesystem::path(recovered[0]).filename().string()));

    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0);
}

}  // namespace
}  // namespace ovd
