// The whole dictation cycle on the real program: a serial pedal on a pty records
// a take, the end-of-letter pedal delivers it to three folders and stages it for
// e-mail and FTP, the peer hears "LOADED_" for each new file, and the peer's
// "exit" ends the station.

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <vector>

#include "engine/codecs.h"
#include "platform/files.h"
#include "station_process.h"
#include "support/loopback_peer.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// The length of a file as it plays back: every frame decoded, over the rate.
double playedSeconds(const std::string& path) {
    const auto opened = engine::AudioFileReader::open(path);
    if (!opened) {
        ADD_FAILURE() << path << ": " << opened.error();
        return 0;
    }
    const auto& reader = *opened;
    std::vector<std::int16_t> buffer(4096 * static_cast<std::size_t>(reader->format().channels));
    std::size_t frames = 0;
    while (const std::size_t got = reader->read(buffer.data(), 4096)) frames += got;
    return static_cast<double>(frames) / reader->format().sampleRate;
}

std::string loadedName(const std::string& message) {
    constexpr std::string_view prefix = "LOADED_";
    if (message.rfind(prefix, 0) != 0 || message.size() < prefix.size() + 2) return "";
    return message.substr(prefix.size(), message.size() - prefix.size() - 2);
}

// The station's own messages. Its companion sender, started for FTP, finds no FTP
// server here and tells the peer so ("ERREFTP_"): that report is not the station's.
std::vector<std::string> stationMessages(testing::LoopbackPeer& peer, std::size_t count,
                                         std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    std::vector<std::string> messages;
    do {
        messages.clear();
        for (const std::string& message : peer.received())
            if (message.rfind("ERREFTP_", 0) != 0) messages.push_back(message);
        if (messages.size() >= count) break;
        std::this_thread::sleep_for(100ms);
    } while (std::chrono::steady_clock::now() < until);
    return messages;
}

TEST(DeliveryStationTest, EndOfLetterDeliversToThreeFoldersStagesAndThePeerHearsTheNextFile) {
    testing::StationProcess station;
    testing::LoopbackPeer peer;
    const int orderPort = testing::unusedLoopbackPort();
    const std::string recordings = station.folder.file("Rec");
    const std::vector<std::string> folders = {station.folder.file("Typist One"),
                                              station.folder.file("Typist Two"),
                                              station.folder.file("Typist Three")};
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.CaptureFilePath = recordings;
        r.TCP = true;
        r.TCPIP = "127.0.0.1";
        r.TCPPort = peer.portText();
        r.TCPDelay = 0;
        r.AutoSend1 = r.AutoSend2 = r.AutoSend3 = true;
        r.SendToOne = folders[0];
        r.SendToTwo = folders[1];
        r.SendToThree = folders[2];
        r.AutoEmail = r.AutoFTP = true;
    });
    // E-mail and FTP set up, so the start-up checks leave both on.
    ASSERT_TRUE(platform::writeWholeFile(
        station.folder.file("DefaultInfo.ini"),
        "[DefaultEmailForCO]\r\nDefaultEmail=us@example.org\r\nDefaultRecEMail=pool@example.org\r\n"
        "[DefaultFTPForCO]\r\nFTPServer=127.0.0.1\r\n"));
    station.start({"--order-port", std::to_string(orderPort)});

    // The new file is announced as it is named and again once it is ready.
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    const std::vector<std::string> first = peer.receive(2, 20s);
    ASSERT_EQ(first.size(), 2u) << station.eventLog();
    const std::string letter = loadedName(first[0]);
    ASSERT_FALSE(letter.empty()) << first[0];
    EXPECT_EQ(first[1], first[0]);
    for (const std::string& folder : folders) EXPECT_TRUE(fs::is_directory(folder)) << folder;

    station.press(testing::kMiddlePedal, 2500ms);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();
    station.press(testing::kRightPedal, 300ms);

    // The letter is closed as the close icon does it; a clean delivery is not
    // reported; then the peer hears of the next file.
    const std::vector<std::string> heard = stationMessages(peer, 5, 30s);
    ASSERT_EQ(heard.size(), 5u) << station.eventLog();
    EXPECT_EQ(heard[2], "UserClose_" + letter + "\r\n");
    const std::string next = loadedName(heard[3]);
    EXPECT_FALSE(next.empty()) << heard[3];
    EXPECT_NE(next, letter);
    EXPECT_EQ(heard[4], heard[3]);
    ASSERT_TRUE(station.logShows("NO FAILURES")) << station.eventLog();

    const double recorded = playedSeconds(recordings + "/" + letter);
    EXPECT_GT(recorded, 1.5);
    EXPECT_LT(recorded, 3.5);
    for (const std::string& folder : folders) {
        SCOPED_TRACE(folder);
        EXPECT_NEAR(playedSeconds(folder + "/" + letter), recorded, 0.001);
    }
    EXPECT_TRUE(platform::fileExists(recordings + "/EmailTemp/" + letter));
    EXPECT_TRUE(platform::fileExists(recordings + "/FTPTemp/" + letter));

    // The peer's order, in lower case, ends the station in order.
    ASSERT_TRUE(testing::sendFrom("127.0.0.1", "127.0.0.1", orderPort, "exit\r\n"));
    EXPECT_TRUE(station.logShows("TCP order EXIT received")) << station.eventLog();
    EXPECT_TRUE(station.logShows("Station ended in order")) << station.eventLog();
}

TEST(DeliveryStationTest, AnOrderPortAlreadyTakenEndsTheStationWithItsMessage) {
    testing::StationProcess station;
    testing::LoopbackPeer squatter("0.0.0.0");
    station.changeSettings([&](settings::SettingsRecord& r) { r.TCP = true; });
    const testing::ProcessEnd end = station.runSecond({"--order-port", squatter.portText()});
    EXPECT_TRUE(end.exited && end.status == 1) << end.status;
    EXPECT_NE(end.errors.find("Error starting Port:  " + squatter.portText() +
                              " -Server listener. Port already in use. Program will end"),
              std::string::npos)
        << end.errors;
}

}  // namespace
}  // namespace ovd
