// The real station across its ends and starts: a crash's takes are recovered by
// the start after the one that notes them even when that one ends in order, a
// kill in the middle of a save leaves
// nothing half written, and damaged settings or an unusable recordings folder
// are told and never make the station spin, flood its log or litter the
// current directory. Each run stays quiet and ends in order on SIGTERM.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <random>
#include <regex>

#include "engine/codecs.h"
#include "platform/files.h"
#include "settings/config_file.h"
#include "station_checks.h"
#include "station_process.h"
#include "support/letter_names.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;

class LifecycleStationTest : public ::testing::Test {
  protected:
    LifecycleStationTest() {
        station.changeSettings([&](settings::SettingsRecord& r) {
            r.CaptureFilePath = recordings;
            r.RecoveryModule = true;
            r.FileSaveAtStop = true;
        });
    }

    [[nodiscard]] std::vector<std::string> workFiles() const {
        std::vector<std::string> found;
        for (const std::string& name : platform::filesInFolder(recordings + "/Temp")) {
            if (name.size() > 4 && name.substr(name.size() - 4) == ".tmp") found.push_back(name);
        }
        return found;
    }
    [[nodiscard]] bool crashStateStored() const {
        settings::ConfigFile stored(station.folder.path());
        stored.ReadConfig();
        return !stored.record.gNormalShutDown;
    }
    // The letter the take went into, from the log line of its start.
    [[nodiscard]] std::string recordedLetter(std::size_t from = 0) const {
        const std::string log = station.eventLog();
        const auto at = log.find("File Record: ", from);
        if (at == std::string::npos) return "";
        const auto end = log.find_first_of("\r\n", at);
        return log.substr(at + 13, end - at - 13);
    }

    // Quiet while it waits, a small log, and SIGTERM ends it in order at once.
    void expectQuietAndEndInOrder() { testing::expectLightAndEndsInOrder(station); }

    testing::StationProcess station;
    std::string recordings = station.folder.file("Rec");
};

TEST_F(LifecycleStationTest,
       ACrashsTakeIsRecoveredByTheStartAfterTheOneThatNotesItUnderItsLettersName) {
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    station.pty.send(testing::kMiddlePedal);  // held: the take goes on until the crash
    ASSERT_TRUE(station.logShows("File Record: ")) << station.eventLog();
    const std::string letter = recordedLetter();
    std::this_thread::sleep_for(4s);
    station.terminate(SIGKILL);
    ASSERT_EQ(workFiles().size(), 1u);

    // The first start only notes that the take waits, and this time ends in order.
    std::size_t from = station.eventLog().size();
    station.start();
    ASSERT_TRUE(
        station.logShows("Loading: work files of an earlier run left for the next start", from))
        << station.eventLog().substr(from);
    ASSERT_TRUE(station.logShows("Loading: done", from));
    expectQuietAndEndInOrder();
    EXPECT_TRUE(crashStateStored()) << "the take still waits";
    EXPECT_EQ(workFiles().size(), 1u);

    from = station.eventLog().size();
    station.start();
    ASSERT_TRUE(station.logShows("Loading: recovery done", from))
        << station.eventLog().substr(from);
    const std::regex recovered(
        std::regex_replace(platform::baseNameOf(letter), std::regex(R"([.])"), R"(\.)") +
        R"(-[0-9]+\.WAV)");
    std::vector<std::string> made;
    for (const std::string& name : platform::filesInFolder(recordings)) {
        if (std::regex_match(name, recovered)) made.push_back(name);
    }
    ASSERT_EQ(made.size(), 1u) << station.eventLog().substr(from);
    EXPECT_GE(engine::fileLengthMilliseconds(recordings + "/" + made[0]), 3000);
    expectQuietAndEndInOrder();
    EXPECT_TRUE(workFiles().empty());
    EXPECT_FALSE(crashStateStored());
}

TEST_F(LifecycleStationTest, AKillJustAfterTheEndOfLetterLeavesNothingHalfWrittenAndLosesNothing) {
    station.changeSettings([](settings::SettingsRecord& r) {
        r.FileSaveAtStop = false;  // the end of letter's save is the letter's first
        r.FormatType = "MP3";
        r.FileBit = "32";
    });
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    station.press(testing::kMiddlePedal, 4s);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();
    const std::string letter = recordedLetter();
    station.pty.send(testing::kRightPedal);  // end of letter
    std::this_thread::sleep_for(50ms);
    station.terminate(SIGKILL);

    for (int run = 0; run < 2; ++run) {
        const std::size_t from = station.eventLog().size();
        station.start();
        ASSERT_TRUE(station.logShows("Loading: done", from)) << station.eventLog().substr(from);
        station.terminate();
    }

    bool whole = false;
    for (const std::string& name : platform::filesInFolder(recordings)) {
        const std::string path = recordings + "/" + name;
        EXPECT_EQ(name.find(".partial"), std::string::npos) << name;
        EXPECT_GT(platform::fileSize(path).valueOr(0), 0u) << name;
        const bool theLetter =
            path == letter || name.rfind(platform::baseNameOf(letter) + "-", 0) == 0;
        if (theLetter && engine::fileLengthMilliseconds(path) >= 3500) whole = true;
    }
    EXPECT_TRUE(whole) << "the letter, saved or recovered, holds the take\n" << station.eventLog();
    EXPECT_TRUE(workFiles().empty());
}

TEST_F(LifecycleStationTest, ARecordingsFolderThatIsAFileIsToldAtStartAndTakesStillGoSomewhere) {
    EXPECT_TRUE(platform::writeWholeFile(recordings, "not a folder"));
    station.start();
    ASSERT_TRUE(station.logShows("can't be used")) << station.eventLog();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    station.press(testing::kMiddlePedal, 3s);
    ASSERT_TRUE(station.logShows(" File Save Successfull")) << station.eventLog();
    const std::string letter = recordedLetter();
    EXPECT_EQ(platform::folderOf(letter), station.folder.file("Recordings"));
    EXPECT_GT(platform::fileSize(letter).valueOr(0), 30311u);
    expectQuietAndEndInOrder();
}

TEST(RelativeDataFolderStationTest,
     ARelativeDataFolderKeepsTheRecordingsInOnePlaceFromStartToStart) {
    testing::StationProcess station;
    station.changeSettings([](settings::SettingsRecord& r) { r.CaptureFilePath = "Letters"; });
    const std::filesystem::path data(station.folder.path());
    station.workingDirectory = data.parent_path().string();
    const std::vector<std::string> relative{"--data-folder", data.filename().string()};
    for (int start = 0; start < 2; ++start) {
        const std::size_t from = station.eventLog().size();
        station.start(relative);
        ASSERT_TRUE(station.logShows("Procedure - CASE NEW", from)) << station.eventLog();
        station.terminate();
    }
    EXPECT_TRUE(std::filesystem::is_directory(data / "Letters"));
    EXPECT_FALSE(std::filesystem::exists(data / data.filename()))
        << "a folder nested under the data folder's own name";
    settings::ConfigFile stored(station.folder.path());
    stored.ReadConfig();
    EXPECT_EQ(stored.record.CaptureFilePath.toText(), (data / "Letters").string());
}

TEST(UnwritableDataFolderStationTest,
     TheAuthorIsToldOnceAndTheNextLetterNeverTakesTheLastOnesName) {
    testing::StationProcess station;
    testing::TempFolder outside;
    const std::string recordings = outside.file("Rec");
    station.changeSettings([&](settings::SettingsRecord& r) {
        testing::nameLettersAB(r, recordings, 6);
        r.FileSaveAtStop = true;
    });
    // The data folder on a disk of its own, which fills up under the station.
    const std::string data = station.folder.path();
    std::vector<std::pair<std::string, std::string>> files;
    for (const std::string& name : platform::filesInFolder(data)) {
        files.emplace_back(name, platform::readWholeFile(data + "/" + name).valueOr(""));
    }
    if (::mount("tmpfs", data.c_str(), "tmpfs", 0, "size=4m") != 0) {
        GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
    }
    for (const auto& [name, content] : files)
        EXPECT_TRUE(platform::writeWholeFile(data + "/" + name, content));
    const std::string errors = outside.file("station.err");
    station.startWithErrorsTo(errors);
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    {
        struct statvfs disk {};
        ASSERT_EQ(::statvfs(data.c_str(), &disk), 0);
        const std::uint64_t free = static_cast<std::uint64_t>(disk.f_bavail) * disk.f_frsize;
        EXPECT_TRUE(platform::writeWholeFile(data + "/filler", std::string(free, 'f')));
    }

    // Two letters, each ended by the end of letter pedal; the log can't be written now.
    const auto dictate = [&](std::chrono::milliseconds held) {
        station.press(testing::kMiddlePedal, held);
        std::this_thread::sleep_for(1500ms);
        station.press(testing::kRightPedal, 300ms);
        std::this_thread::sleep_for(2500ms);
    };
    dictate(4s);
    dictate(2s);

    EXPECT_GT(engine::fileLengthMilliseconds(recordings + "/AB0007.WAV"), 3500);
    EXPECT_GT(engine::fileLengthMilliseconds(recordings + "/AB0008.WAV"), 1500);
    const std::string shown = platform::readWholeFile(errors).valueOr("");
    std::size_t told = 0;
    for (auto at = shown.find("could not be saved to"); at != std::string::npos;
         at = shown.find("could not be saved to", at + 1)) {
        ++told;
    }
    EXPECT_EQ(told, 1u) << shown;
    EXPECT_EQ(shown.find("Overwrite existing file?"), std::string::npos) << shown;
    testing::expectLightAndEndsInOrder(station);
    ::umount2(data.c_str(), MNT_DETACH);
}

// Damage as it meets a station in the field: a record cut short, bytes that are
// no record at all, and one field grown to a megabyte.
class DamagedSettingsStationTest : public ::testing::TestWithParam<const char*> {};

std::string damagedRecord(const std::string& kind) {
    const std::string shipped =
        platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg").valueOr("");
    if (kind == "first 40 fields") {
        std::size_t at = 0;
        for (int comma = 0; comma < 40; ++comma) at = shipped.find(',', at) + 1;
        return shipped.substr(0, at - 1) + "\r\n";
    }
    if (kind == "random bytes") {
        std::mt19937 generator(1124);
        std::uniform_int_distribution<int> byte(0, 255);
        std::string bytes(8192, '\0');
        for (char& c : bytes) c = static_cast<char>(byte(generator));
        return bytes;
    }
    // The megabyte stands where the label of the file names is.
    std::string record = shipped;
    const std::size_t label = record.find("\"\",#FALSE#");
    return record.replace(label, 2, "\"" + std::string(1 << 20, 'A') + "\"");
}

TEST_P(DamagedSettingsStationTest, TheUserIsToldTheFileIsKeptAndTheStationStaysQuiet) {
    testing::StationProcess station;
    const std::string damaged = damagedRecord(GetParam());
    EXPECT_TRUE(platform::writeWholeFile(station.folder.file("DigitalRecorder.cfg"), damaged));
    const std::string workingFolder = station.folder.file("cwd");
    EXPECT_TRUE(platform::createFolder(workingFolder));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(workingFolder);
    station.start();
    std::filesystem::current_path(before);

    ASSERT_TRUE(station.logShows("was damaged")) << station.eventLog().substr(0, 4000);
    ASSERT_TRUE(station.logShows("Loading: done")) << station.eventLog().substr(0, 4000);
    std::this_thread::sleep_for(1s);
    EXPECT_LE(station.cpuPercentOver(3s), 5.0);
    EXPECT_LT(station.eventLogBytes(), 1024u * 1024u);
    EXPECT_TRUE(std::filesystem::is_empty(workingFolder))
        << "nothing made in the current directory";
    std::vector<std::string> copies;
    for (const std::string& name : platform::filesInFolder(station.folder.path())) {
        if (name.rfind("DigitalRecorder.cfg.damaged-", 0) == 0) copies.push_back(name);
    }
    ASSERT_EQ(copies.size(), 1u);
    EXPECT_EQ(platform::readWholeFile(station.folder.file(copies[0])).valueOr(""), damaged);
    EXPECT_LT(platform::fileSize(station.folder.file("DigitalRecorder.cfg")).valueOr(0),
              64u * 1024u);

    const testing::StationProcess::TimedEnd end = station.terminateTimed();
    EXPECT_TRUE(end.end.exited && end.end.status == 0) << end.end.status;
    EXPECT_LT(end.took, 5s);
}

INSTANTIATE_TEST_SUITE_P(Damage, DamagedSettingsStationTest,
                         ::testing::Values("first 40 fields", "random bytes", "a megabyte field"));

}  // namespace
}  // namespace ovd
