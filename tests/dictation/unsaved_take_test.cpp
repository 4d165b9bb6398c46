// A take whose file can't be written (a name longer than the disk takes): the
// author is told at the save, and closing the file leaves the take in Temp for
// the recovery rather than deleting it with the document.

#include "conversion/letter_notes.h"
#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class UnsavedTakeTest : public DictationTest {
  protected:
    UnsavedTakeTest() {
        config.record.FileLabelText = std::string(250, 'L');  // with the number, past 255
        config.record.FileSaveAtStop = true;
        config.WriteConfig();
        rebuild();
    }
    [[nodiscard]] std::vector<std::string> workFiles() const {
        std::vector<std::string> found;
        for (const std::string& name : platform::filesInFolder(recordings + "/Temp")) {
            if (name.size() > 4 && name.substr(name.size() - 4) == ".tmp") found.push_back(name);
        }
        return found;
    }
};

TEST_F(UnsavedTakeTest, TheAuthorIsToldOnceAndTheTakeStaysInTempAfterTheClose) {
    dictate(3000);
    const std::string letter = state().Filename;
    ASSERT_FALSE(letter.empty());
    ASSERT_TRUE(state().FileSaveError) << log.text();
    // Further words, a further failed save: still one box.
    d().recordTake();
    run(2000);
    d().stop();

    ASSERT_EQ(prompts.texts().size(), 1u) << log.text();
    EXPECT_NE(prompts.texts()[0].find("could not be saved"), std::string::npos)
        << prompts.texts()[0];
    EXPECT_NE(prompts.texts()[0].find("recovered at the next start"), std::string::npos);

    d().closeFile();

    const std::vector<std::string> kept = workFiles();
    ASSERT_EQ(kept.size(), 1u) << log.text();
    const std::string workFile = recordings + "/Temp/" + kept[0];
    // Five seconds of 16-bit mono at 16 kHz, less what the last flush had not written.
    EXPECT_GT(platform::fileSize(workFile).valueOr(0), 150000u);
    EXPECT_EQ(conversion::letterOfWorkFile(workFile), letter);
    EXPECT_FALSE(platform::fileExists(letter));
}

}  // namespace
}  // namespace ovd::dictation::testing
