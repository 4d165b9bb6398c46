// The real station with a serial pedal on a pty and a slow peer: the author
// presses record right after the end of letter, while the next file is still
// being made. The press waits for the file, the take stops with the pedal, and
// the next end of letter delivers it.

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "station_checks.h"
#include "station_process.h"
#include "support/loopback_peer.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
using testing::occurrences;
namespace fs = std::filesystem;

TEST(RecordAfterEndOfLetterStationTest, ARecordPressWhileTheNextFileOpensRecordsIntoIt) {
    testing::StationProcess station;
    testing::LoopbackPeer peer;
    const std::string recordings = station.folder.file("Rec");
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.CaptureFilePath = recordings;
        r.OneTapRecPause = false;  // the middle pedal records while held
        r.TCP = true;
        r.TCPIP = "127.0.0.1";
        r.TCPPort = peer.portText();
        r.TCPDelay = 2;
    });
    station.start({"--order-port", std::to_string(testing::unusedLoopbackPort())});
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    std::this_thread::sleep_for(3s);  // the peer's wait after the new file

    station.press(testing::kMiddlePedal, 2500ms);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();
    const std::size_t beforeLetter = station.eventLog().size();

    // End of letter, and the record pedal a moment after its release, held for
    // long enough to outlast the change of file (the peer's waits alone take
    // some twelve seconds) and say something.
    station.press(testing::kRightPedal, 200ms);
    std::this_thread::sleep_for(100ms);
    station.press(testing::kMiddlePedal, 20s);
    const std::string during = station.eventLog().substr(beforeLetter);
    EXPECT_EQ(occurrences(during, "Recording in Progress"), 0u) << during;
    ASSERT_GE(occurrences(during, "File Record: "), 1u) << "the press is not lost\n" << during;
    ASSERT_TRUE(station.logShows("File Stop: ", during.rfind("File Record: ") + beforeLetter))
        << station.eventLog().substr(beforeLetter);

    // The next end of letter finishes the second letter.
    std::this_thread::sleep_for(1s);
    station.press(testing::kRightPedal, 200ms);
    std::this_thread::sleep_for(10s);

    testing::expectLightAndEndsInOrder(station);

    // Two letters: the first take, and the second that waited for its file.
    std::vector<std::uintmax_t> letters;
    for (const auto& entry : fs::directory_iterator(recordings)) {
        if (entry.is_regular_file() && entry.path().extension() == ".WAV")
            letters.push_back(entry.file_size());
    }
    std::sort(letters.begin(), letters.end());
    ASSERT_EQ(letters.size(), 2u) << station.eventLog();
    // 16-bit mono at 8 kHz: 16000 bytes a second.
    EXPECT_GT(letters[0], 1u * 16000u);
    EXPECT_GT(letters[1], 3u * 16000u) << "the held pedal recorded once the file was ready";
    EXPECT_LT(letters[1], 20u * 16000u);
}

}  // namespace
}  // namespace ovd
