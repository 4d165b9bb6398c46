// The end of letter on a real dictation: the letter is closed and saved, handed
// to delivery, and the next file opens; an empty letter is not delivered.

#include "devices/end_of_letter.h"

#include "dictation/dictation_fixture.h"

namespace ovd::devices {
namespace {

struct DeliveryLog : LetterDelivery {
    std::vector<std::string> delivered;
    std::function<void()> whileDelivering;
    bool deliver(const std::string& path) override {
        delivered.push_back(path);
        if (whileDelivering) whileDelivering();
        return true;
    }
    void destinationNotTried(int, const std::string&) override {}
    void sendToDestination(int, const std::string&, const SendWording&) override {}
    void stageForSending(Staging, const std::string&) override {}
};

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
    EXPECT_GT(platform::fileSize(letter).value_or(0), 90000u);
    EXPECT_NE(state().Filename, letter) << "the next file is open";
    EXPECT_TRUE(state().flgfileOpen1);
    EXPECT_FALSE(eol.DoingEOL);
    EXPECT_FALSE(eol.exitRequested());
}

TEST_F(EndOfLetterTest, AnEmptyLetterIsNotDeliveredAndExitAtEndOfLetterAsksToLeave) {
    d().Image2_Click();
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

}  // namespace
}  // namespace ovd::devices
