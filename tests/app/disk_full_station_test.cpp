// The real station recording onto a recordings disk that fills: the warning is
// paced, the end of letter finds no room, nobody answers the question for ever,
// the station stays idle, and SIGTERM ends it in order with the take in Temp.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "station_process.h"
#include "support/loopback_peer.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
using testing::occurrences;
namespace fs = std::filesystem;

class DiskFullStationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EXPECT_TRUE(platform::createFolder(recordings));
        if (::mount("tmpfs", recordings.c_str(), "tmpfs", 0, "size=512k") != 0) {
            GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
        }
        mounted = true;
    }
    void TearDown() override {
        if (mounted) ::umount2(recordings.c_str(), MNT_DETACH);
    }
    testing::StationProcess station;
    std::string recordings = station.folder.file("Rec");
    bool mounted = false;
};

TEST_F(DiskFullStationTest, AFullDiskAtEndOfLetterLeavesTheStationIdleAndTheTakeInTemp) {
    testing::LoopbackPeer peer;
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.CaptureFilePath = recordings;
        r.OneTapRecPause = false;  // the middle pedal records while held
        r.DFStopRec = false;       // the warning does not end the take
        r.TCP = true;
        r.TCPIP = "127.0.0.1";
        r.TCPPort = peer.portText();
        r.TCPDelay = 0;  // the link itself waits for nothing
    });
    station.start({"--order-port", std::to_string(testing::unusedLoopbackPort())});
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    // Half a megabyte holds some thirty seconds of 8 kHz speech; the warning
    // comes after about eight.
    station.press(testing::kMiddlePedal, 16s);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();
    const std::string log = station.eventLog();
    const std::size_t warnings = occurrences(log, " Disk Full Warning during Recording");
    EXPECT_GE(warnings, 1u);
    EXPECT_LE(warnings, 6u) << "a warning that stays true is repeated every two seconds at most";

    station.press(testing::kRightPedal, 300ms);
    ASSERT_TRUE(station.logShows("You may not have enough disk space")) << station.eventLog();
    ASSERT_TRUE(station.logShows("the recording is kept in")) << station.eventLog();

    const double cpu = station.cpuPercentOver(3s);
    EXPECT_GE(cpu, 0.0);
    EXPECT_LE(cpu, 5.0) << "an idle station waits, it does not spin";
    EXPECT_LT(station.eventLogBytes(), 1024u * 1024u);
    EXPECT_LE(occurrences(station.eventLog(), "You may not have enough disk space"), 3u);
    const std::vector<std::string> heard = peer.received();
    std::size_t diskErrors = 0;
    for (const std::string& message : heard)
        diskErrors += message.rfind("DiskErr_", 0) == 0 ? 1 : 0;
    EXPECT_LE(diskErrors, 8u);

    const auto end = station.terminateTimed();
    EXPECT_TRUE(end.end.exited && end.end.status == 0) << end.end.status;
    EXPECT_LT(end.took, 5s);
    EXPECT_TRUE(station.logShows("Station ended in order")) << station.eventLog();

    // The whole take (sixteen seconds of 16-bit mono, at 8 kHz at least) waits in Temp.
    std::uintmax_t largest = 0;
    for (const auto& entry : fs::directory_iterator(recordings + "/Temp")) {
        if (entry.path().extension() == ".tmp") largest = std::max(largest, entry.file_size());
    }
    EXPECT_GT(largest, 15u * 16000u) << "the take is kept";
}

}  // namespace
}  // namespace ovd
