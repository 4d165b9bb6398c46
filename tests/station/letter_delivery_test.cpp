// The end of letter on a real dictation with the real delivery behind it: the
// letter is saved, copied to the destination folders and staged, and the next
// file opens; a second trigger during the ten-second wait changes nothing.

#include <gtest/gtest.h>

#include <filesystem>

#include "letter_delivery_fixture.h"

namespace ovd::station {
namespace {

namespace fs = std::filesystem;

using LetterDeliveryTest = testing::LetterDeliveryFixture;

TEST_F(LetterDeliveryTest, TheLetterReachesBothFoldersAndTheStagingAndTheNextFileOpens) {
    dictate(3000);
    const std::string letter = state().Filename;
    const std::string name = fs::path(letter).filename();
    eol.startEndOfLetter();

    const auto size = platform::fileSize(letter).valueOr(0);
    EXPECT_GT(size, 90000u);
    EXPECT_EQ(platform::fileSize(config.record.SendToOne + "/" + name).valueOr(0), size);
    EXPECT_EQ(platform::fileSize(config.record.SendToTwo + "/" + name).valueOr(0), size);
    EXPECT_EQ(platform::fileSize(recordings + "/EmailTemp/" + name).valueOr(0), size);
    EXPECT_EQ(companion.starts, 1);
    EXPECT_NE(state().Filename, letter) << "the next letter is open";
    EXPECT_EQ(view().titlePicture, "Match.ico");
    EXPECT_TRUE(boxes.transcript().empty()) << "a clean delivery shows nothing";
}

TEST_F(LetterDeliveryTest, ASecondTriggerDuringTheTenSecondWaitDoesNotRestartTheSequence) {
    dictate(2000);
    const std::string name = fs::path(state().Filename).filename();
    fs::create_directory(fs::path(config.record.SendToOne) / name);  // the copy can't land
    int triggers = 0;
    boxes.whileAsking = [&] {
        if (triggers++ == 0) eol.endOfLetter();  // the author presses the pedal again
    };
    eol.startEndOfLetter();

    EXPECT_TRUE(logged("EOL is Executing - DoingEOL = True"));
    // One question, the not-sent box after No and the pop-up; destination two
    // still has the letter.
    EXPECT_EQ(boxes.texts(),
              (std::vector<std::string>{
                  "File has been sending to Destination 1 for 10 Seconds. Would you like "
                  "to keep trying to send?",
                  "File may have not been sent to Destination 1",
                  "OVQDUDR Sending Status :       Destination " + config.record.SendToOne +
                      ": User Canceled-Bypassing step"}));
    EXPECT_TRUE(platform::fileExists(config.record.SendToTwo + "/" + name));
    EXPECT_TRUE(platform::fileExists(recordings + "/EmailTemp/" + name));
    EXPECT_FALSE(eol.DoingEOL);
    EXPECT_TRUE(state().flgfileOpen1) << "the next letter is open";
}

TEST_F(LetterDeliveryTest, AnEmptyLetterIsNeitherSentNorStaged) {
    d().newLetter();
    const std::string name = fs::path(state().Filename).filename();
    eol.startEndOfLetter();
    EXPECT_FALSE(platform::fileExists(config.record.SendToOne + "/" + name));
    EXPECT_FALSE(platform::fileExists(recordings + "/EmailTemp/" + name));
    EXPECT_EQ(companion.starts, 0);
}

}  // namespace
}  // namespace ovd::station
