// Saving and closing a dictation: the length below which a take counts as not
// recorded, what a close keeps and what it gives back, and the recent files.

#include <filesystem>

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class SavingTest : public DictationTest {
  protected:
    SavingTest() {
        // Saves only when asked, so each test says when.
        config.record.FileSaveAtStop = false;
        config.WriteConfig();
        rebuild();
    }

    // The engine's work file grown to the length with silence past the take's end:
    // what the take holds stays readable, only the file's length is what counts.
    void workFileOf(std::uintmax_t bytes) {
        ASSERT_LE(platform::fileSize(editor1.TempFileName()).valueOr(0), bytes);
        std::filesystem::resize_file(editor1.TempFileName(), bytes);
    }
    void save() {
        arrangeState().SaveRequested = true;
        d().SaveFile();
    }
};

TEST_F(SavingTest, AWorkFileOneByteShortIsNotSavedAndTheLimitItselfIs) {
    peer.on = true;
    dictate(900);  // 28,844 bytes of work file
    const std::string name = state().Filename;

    workFileOf(kMinimumRecordedBytes - 1);
    save();
    EXPECT_FALSE(platform::fileExists(name));
    EXPECT_TRUE(state().FileSaveError);
    EXPECT_FALSE(state().FileChanged) << "a failed save is not asked about again at the close";
    EXPECT_EQ(view().lblReady, kSaveErrorText);
    EXPECT_TRUE(logged(name + "  File Length is :30310 and is < 30311 - File Save ERROR"));
    ASSERT_FALSE(peer.messages.empty());
    EXPECT_EQ(peer.messages.back(), "FileSaveErr_" + platform::withoutFolder(name));
    EXPECT_TRUE(prompts.transcript().empty()) << "a short take is told in the log, never in a box";

    workFileOf(kMinimumRecordedBytes);
    save();
    EXPECT_TRUE(platform::fileExists(name));
    EXPECT_FALSE(state().FileSaveError);
    EXPECT_EQ(view().lblReady, kReadyAfterSave);
    EXPECT_TRUE(logged(name + " File Save Successfull"));
}

TEST_F(SavingTest, ASaveThatCanNotReadTheTakeIsReportedAndTheStationGoesOn) {
    dictate(2000);
    const std::string name = state().Filename;
    // The disk lost the end of the work file under the engine.
    std::filesystem::resize_file(editor1.TempFileName(), 40000);
    save();
    EXPECT_TRUE(state().FileSaveError);
    EXPECT_EQ(view().lblReady, kSaveErrorText);
    EXPECT_TRUE(logged(name + " File Save ERROR: ")) << log.text();
    EXPECT_FALSE(logged(name + " File Save Successfull"));
}

TEST_F(SavingTest, ClosingAnUnrecordedFileDeletesItAndGivesItsNumberBack) {
    d().newLetter();
    const std::string name = state().Filename;
    const double numberAfterNew =
        config.record.FileNameIncrementStartingNum.toNumber().value_or(-1);

    d().closeFile();
    EXPECT_EQ(config.record.FileNameIncrementStartingNum.toNumber(), numberAfterNew - 1);
    EXPECT_TRUE(state().FileKilled);
    EXPECT_FALSE(platform::fileExists(name));
    EXPECT_TRUE(state().Filename.empty());

    // The next new file takes the same name.
    d().newLetter();
    EXPECT_EQ(state().Filename, name);
}

TEST_F(SavingTest, ClosingAShortTakeKeepsItsNumber) {
    dictate(400);  // RecordedOnce, but far below the length worth saving
    const double numberAfterNew =
        config.record.FileNameIncrementStartingNum.toNumber().value_or(-1);

    d().closeFile();
    EXPECT_EQ(config.record.FileNameIncrementStartingNum.toNumber(), numberAfterNew);
    EXPECT_FALSE(state().FileKilled);
    EXPECT_FALSE(logged("File Length to be killed is"));
    EXPECT_TRUE(state().Filename.empty());
}

TEST_F(SavingTest, RecentFilesFollowTheSavesNewestFirst) {
    std::vector<std::string> saved;
    for (int letter = 0; letter < 3; ++letter) {
        dictate(1500);
        save();
        saved.push_back(state().Filename);
        d().closeFile();
    }
    // Opened again, the oldest stays where it is.
    d().openRecentFile(saved[0]);
    EXPECT_EQ(state().Filename, saved[0]);
    const std::vector<std::string> newestFirst{saved[2], saved[1], saved[0]};
    EXPECT_EQ(view().Reopen, newestFirst);
    EXPECT_EQ(platform::readWholeFile(folder.file("MRU.dat")).valueOr(""),
              saved[2] + "\r\n" + saved[1] + "\r\n" + saved[0] + "\r\n");

    d().closeFile();
    std::filesystem::remove(saved[1]);
    d().openRecentFile(saved[1]);
    ASSERT_FALSE(prompts.transcript().empty());
    EXPECT_EQ(prompts.transcript().back().text, "That file does not exist!");
    d().clearRecentFiles();
    EXPECT_TRUE(view().Reopen.empty());
}

}  // namespace
}  // namespace ovd::dictation::testing
