// The end of letter after a take too short to save: nothing reaches the disk, so
// nothing is sent, and the station goes on with the next file rather than waiting
// for a letter that will never be written.

#include <stdexcept>

#include "devices/end_of_letter.h"
#include "dictation/dictation_fixture.h"

namespace ovd::devices {
namespace {

struct Deliveries : LetterDelivery {
    std::vector<std::string> delivered;
    bool deliver(const std::string& path) override {
        delivered.push_back(path);
        return true;
    }
    void destinationNotTried(int, const std::string&) override {}
    void sendToDestination(int, const std::string&, const SendWording&) override {}
    void stageForSending(Staging, const std::string&) override {}
};

class EndOfLetterShortTakeTest : public dictation::testing::DictationTest {
  protected:
    Deliveries delivery;
    EndOfLetter eol{d(), config, log, loop, voice, delivery};
    // A station that waits a whole virtual minute inside the end of letter is stuck.
    platform::Timer stuck{loop, "stuck", 60000};
};

TEST_F(EndOfLetterShortTakeTest, ALetterTooShortToSaveIsNeverWaitedFor) {
    stuck.setOnTick([] { throw std::runtime_error("the end of letter still waits"); });

    // With crash protection the Stop already tried the save, so the end of letter
    // finds no file on disk: nothing is sent and the next file opens.
    state().FileSaveAtStop = true;
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
    state().FileSaveAtStop = false;
    dictate(200);
    const std::string second = state().Filename;
    ASSERT_NO_THROW(eol.startEndOfLetter());
    stuck.setEnabled(false);
    EXPECT_TRUE(delivery.delivered.empty());
    EXPECT_EQ(state().Filename, second);
}

}  // namespace
}  // namespace ovd::devices
