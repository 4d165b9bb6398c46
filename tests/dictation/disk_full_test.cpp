// A take on a disk that fills up: the station warns in red while the author
// speaks, and the take goes on unless the settings say to stop it.

#include <sys/mount.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class DiskFullTest : public DictationTest {
  protected:
    void SetUp() override {
        EXPECT_TRUE(platform::createFolder(smallDisk));
        if (::mount("tmpfs", smallDisk.c_str(), "tmpfs", 0, "size=1m") != 0) {
            GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno)
                         << "); the disk-full warning is not tried";
        }
        mounted = true;
        EXPECT_TRUE(platform::createFolder(smallDisk + "/Temp"));
        config.record.CaptureFilePath = smallDisk;
        config.WriteConfig();
        rebuild();
    }
    void TearDown() override {
        dictation.reset();
        editor1.Close();
        editor21.Close();
        if (mounted) ::umount2(smallDisk.c_str(), MNT_DETACH);
    }
    std::string smallDisk = folder.file("small");
    bool mounted = false;
};

TEST_F(DiskFullTest, TheWarningComesWhileRecordingAndTheTakeGoesOn) {
    d().newLetter();
    d().recordTake();
    run(2000);
    EXPECT_EQ(view().statusLine, "Recording");
    EXPECT_FALSE(view().statusLineWarning);

    // A megabyte holds about thirty seconds; the warning keeps room for three
    // times what the work file holds.
    run(9000);
    EXPECT_EQ(view().statusLine.rfind("Warning -- Number of Free Bytes : ", 0), 0u)
        << view().statusLine;
    EXPECT_TRUE(view().statusLineWarning);
    EXPECT_TRUE(logged(state().Filename + " Disk Full Warning during Recording"));
    EXPECT_TRUE(state().Recordingstatus) << "without the stop setting the take goes on";
    EXPECT_EQ(editor1.State(), 2);
}

TEST_F(DiskFullTest, AWorkFileTheDiskRefusesIsLoggedOnceAndTheTakeKeepsEverything) {
    config.record.FileSaveAtStop = false;  // the Stop does not try to save on the full disk
    config.WriteConfig();
    rebuild();
    d().newLetter();
    d().recordTake();
    run(45000);  // a megabyte holds about thirty seconds
    EXPECT_EQ(editor1.State(), 2) << "the take goes on";
    d().stop();
    EXPECT_EQ(editor1.Length(), 45 * kRate);
    const std::string refused = "can't write the work file ";
    const std::string text = log.text();
    const auto first = text.find(refused);
    ASSERT_NE(first, std::string::npos) << text;
    EXPECT_EQ(text.find(refused, first + 1), std::string::npos) << "once per take";
    EXPECT_NE(text.find(std::strerror(ENOSPC), first), std::string::npos);
}

TEST_F(DiskFullTest, ASaveWithoutRoomAsksUntilTheAuthorMovesTheFile) {
    config.record.FileSaveAtStop = true;  // every Stop saves
    config.WriteConfig();
    rebuild();
    const std::string roomy = folder.file("roomy");
    EXPECT_TRUE(platform::createFolder(roomy));
    prompts.answerNext(platform::Answer::No);   // stay: there is still no room, so it asks again
    prompts.answerNext(platform::Answer::Yes);  // move
    prompts.answerNextText(roomy);

    d().newLetter();
    const std::string name = platform::withoutFolder(state().Filename);
    d().recordTake();
    run(12000);
    d().stop();

    const std::vector<std::string> texts = prompts.texts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), std::string(kDiskSpaceQuestion)), 2)
        << texts.size();
    EXPECT_TRUE(
        logged("Disk Full Warning --- User Selected to save file in the default location .. "
               "User Response: 7"));
    EXPECT_TRUE(logged("enough disk space to continue working.. User Resonse: 6"));
    EXPECT_EQ(state().Filename, roomy + "/" + name);
    EXPECT_GT(platform::fileSize(roomy + "/" + name).valueOr(0), 300000u);
    EXPECT_FALSE(platform::fileExists(smallDisk + "/" + name));
    settings::ConfigFile stored(folder.path());
    stored.ReadConfig();
    EXPECT_EQ(stored.record.CaptureFilePath.toText(), roomy)
        << "the next files go where there is room";
}

TEST_F(DiskFullTest, AWarningThatStaysTrueIsLoggedAndSentEveryTwoSecondsNotEveryTick) {
    peer.on = true;  // a link that waits for nothing
    d().newLetter();
    d().recordTake();
    run(20000);
    ASSERT_TRUE(view().statusLineWarning)
        << "the disk is short of room for the last ten seconds or so";

    std::size_t warnings = 0;
    const std::string text = log.text();
    const std::string line = state().Filename + " Disk Full Warning during Recording";
    for (auto at = text.find(line); at != std::string::npos; at = text.find(line, at + 1))
        ++warnings;
    const auto diskErrors =
        std::count_if(peer.messages.begin(), peer.messages.end(),
                      [](const std::string& m) { return m.rfind("DiskErr_", 0) == 0; });
    EXPECT_GE(warnings, 3u);
    EXPECT_LE(warnings, 8u) << "about one every two seconds of the warning";
    EXPECT_EQ(static_cast<std::size_t>(diskErrors), warnings);
}

TEST_F(DiskFullTest, WhenNobodyMakesRoomTheSaveStopsAskingAndTheTakeStaysInTemp) {
    // No answers scripted: the question takes its default, No, and would get it for ever.
    d().newLetter();
    const std::string letter = state().Filename;
    d().recordTake();
    run(14000);
    d().stop();
    const engine::SampleCount spoken = editor1.Length();
    d().closeFile();

    const std::vector<std::string> texts = prompts.texts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), std::string(kDiskSpaceQuestion)), 1);
    EXPECT_TRUE(logged(kTakeKeptInTemp)) << log.text();
    EXPECT_FALSE(platform::fileExists(letter)) << "nothing half written";
    std::vector<std::uintmax_t> kept;
    for (const auto& entry : std::filesystem::directory_iterator(smallDisk + "/Temp")) {
        if (entry.is_regular_file()) kept.push_back(entry.file_size());
    }
    EXPECT_EQ(kept, std::vector<std::uintmax_t>{static_cast<std::uintmax_t>(44 + spoken * 2)})
        << "the whole take waits in Temp for the recovery, once";
}

TEST_F(DiskFullTest, AStationEndingStopsTheQuestionAtOnce) {
    prompts.answerNext(platform::Answer::No);
    prompts.answerNext(platform::Answer::No);
    d().newLetter();
    d().recordTake();
    run(14000);
    d().stop();
    arrangeState().Imclosing = true;  // SIGTERM or the peer's EXIT came in
    d().closeFile();
    EXPECT_TRUE(prompts.texts().empty()) << "nobody is asked while the station ends";
    EXPECT_TRUE(logged(kTakeKeptInTemp));
}

}  // namespace
}  // namespace ovd::dictation::testing
