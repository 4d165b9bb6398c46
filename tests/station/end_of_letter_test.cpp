// The end of letter on a real dictation: the letter is closed and saved, handed
// to delivery, and the next file opens; an empty letter is not delivered.

#include "station/end_of_letter.h"

#include <stdexcept>

#include "delivery_log.h"
#include "dictation/dictation_fixture.h"

namespace ovd::station {
namespace {

using testing::DeliveryLog;

class EndOfLetterTest : public dictation::testing::DictationTest {
  protected:
    DeliveryLog delivery;
    EndOfLetter eol{d(), config, log, loop, voice, delivery};
};

TEST_F(EndOfLetterTest, TheLetterIsSavedDeliveredAndTheNextFileOpens) {
    dictate(3000);
    const std::string letter = state().Filename;
    // A second trigger while the letter is being delivered starts nothing.
    delivery.whileDelivering = [&] { eol.endOfLetter(); };
    eol.startEndOfLetter();
    ASSERT_EQ(delivery.delivered, std::vector<std::string>{letter});
    EXPECT_GT(platform::fileSize(letter).valueOr(0), 90000u);
    EXPECT_NE(state().Filename, letter) << "the next file is open";
    EXPECT_TRUE(state().flgfileOpen1);
    EXPECT_FALSE(eol.DoingEOL);
    EXPECT_FALSE(eol.exitRequested());
}

TEST_F(EndOfLetterTest, AnEmptyLetterIsNotDeliveredAndExitAtEndOfLetterAsksToLeave) {
    d().newLetter();
    const std::string empty = state().Filename;
    eol.startEndOfLetter();
    EXPECT_TRUE(delivery.delivered.empty());
    EXPECT_FALSE(platform::fileExists(empty));
    EXPECT_TRUE(state().flgfileOpen1) << "a new file takes its place";

    config.record.ExitAtEOL = true;
    dictate(2000);
    eol.startEndOfLetter();
    EXPECT_EQ(delivery.delivered.size(), 1u);
    EXPECT_TRUE(eol.exitRequested());
    EXPECT_FALSE(state().flgfileOpen1) << "no next file when the program is to end";
}

TEST_F(EndOfLetterTest, ALetterTooShortToSaveIsNeverWaitedFor) {
    // A station that waits a whole virtual minute inside the end of letter is stuck.
    platform::Timer stuck{loop, "stuck", 60000};
    stuck.setOnTick([] { throw std::runtime_error("the end of letter still waits"); });

    // With crash protection the Stop already tried the save, so the end of letter
    // finds no file on disk: nothing is sent and the next file opens.
    arrangeState().FileSaveAtStop = true;
    dictate(200);  // a fifth of a second: below what counts as recorded on disk
    const std::string letter = state().Filename;
    ASSERT_TRUE(state().RecordedOnce);
    stuck.setEnabled(true);
    ASSERT_NO_THROW(eol.startEndOfLetter());
    EXPECT_TRUE(delivery.delivered.empty());
    EXPECT_FALSE(platform::fileExists(letter));
    EXPECT_FALSE(eol.DoingEOL);
    EXPECT_TRUE(state().flgfileOpen1) << "the next file is open";
    EXPECT_NE(state().Filename, letter);

    // Without it the end of letter's own save fails and the letter stays in hand.
    arrangeState().FileSaveAtStop = false;
    dictate(200);
    const std::string second = state().Filename;
    ASSERT_NO_THROW(eol.startEndOfLetter());
    stuck.setEnabled(false);
    EXPECT_TRUE(delivery.delivered.empty());
    EXPECT_EQ(state().Filename, second);
}

}  // namespace
}  // namespace ovd::station
