// The microphone of a take is taken away: the take ends as a Stop ends it, all
// that was said stays in the file, the screen no longer shows a take, and the
// author reads why it stopped.

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class MicrophoneLostTest : public DictationTest {
  protected:
    [[nodiscard]] std::vector<std::string> messagesNaming(const std::string& device) const {
        std::vector<std::string> found;
        for (const std::string& text : prompts.texts()) {
            if (text.find(device) != std::string::npos) found.push_back(text);
        }
        return found;
    }
    void expectNoTakeShows() {
        EXPECT_FALSE(state().Recordingstatus);
        EXPECT_EQ(editor1.State(), 0);
        EXPECT_EQ(editor21.State(), 0);
        EXPECT_FALSE(view().onAirLamp1 || view().onAirLamp2) << "the lamps are off";
        EXPECT_NE(view().lblOnAir, "ON AIR");
        EXPECT_FALSE(timer("timRecord").Enabled());
        EXPECT_NE(view().statusLine, "Recording");
        EXPECT_EQ(view().caption.find("Recorded"), std::string::npos) << view().caption;
    }
};

TEST_F(MicrophoneLostTest, ATakeEndsInOrderAndKeepsWhatWasSaid) {
    d().newLetter();
    d().recordTake();
    run(3000);
    d().recordingDeviceLost("USB Headset");
    run(100);

    expectNoTakeShows();
    EXPECT_EQ(editor1.Length(), 3 * kRate) << "every second spoken is in the file";
    EXPECT_EQ(frames(3 * kRate - 1, 1).front(), rampAt(3 * kRate - 1));
    EXPECT_TRUE(state().flgfileOpen1) << "the file stays open for another microphone";
    EXPECT_TRUE(view().transportBar.Prev) << "the take can be gone back to and listened to";
    ASSERT_EQ(messagesNaming("USB Headset").size(), 1U);
    EXPECT_TRUE(logged("Recording device lost: USB Headset"));
}

TEST_F(MicrophoneLostTest, AnInsertIsPutInPlaceBeforeTheTakeEnds) {
    dictate(4000);
    editor1.setCursorPosition(kRate);
    d().timCurPos_Timer();
    d().insertAtCursor();
    run(2000);
    d().recordingDeviceLost("USB Headset");
    run(100);

    expectNoTakeShows();
    EXPECT_FALSE(state().DoingInsertUpdate);
    EXPECT_EQ(editor1.Length(), 6 * kRate) << "the insert went in";
    EXPECT_EQ(view().lblMode, "");
    EXPECT_EQ(messagesNaming("USB Headset").size(), 1U);
}

TEST_F(MicrophoneLostTest, WithNoTakeRunningNothingIsStoppedOrShown) {
    dictate(2000);
    const auto length = editor1.Length();
    const std::string caption = view().caption;
    d().recordingDeviceLost("USB Headset");
    EXPECT_EQ(editor1.Length(), length);
    EXPECT_EQ(view().caption, caption);
    EXPECT_TRUE(messagesNaming("USB Headset").empty());
}

}  // namespace
}  // namespace ovd::dictation::testing
