// The window redraws only when the dictation says its view changed. Whatever
// moves the screen (a pedal edge, a switch word, a timer tick during a take, a
// control of the window, a desk unit button) must be announced once the loop
// turns, and what the announcement shows must be what the window then reads.

#include <memory>
#include <string>
#include <vector>

#include "devices/control_actions.h"
#include "devices/switch_model.h"
#include "dictation/dictation_fixture.h"

namespace ovd::devices {
namespace {

using dictation::MainView;

class NoLetters : public LetterActions {
  public:
    void beep() override {}
    void startEndOfLetter() override {}
    void endOfLetter() override {}
    [[nodiscard]] bool exitRequested() const override { return false; }
    void startTimClose() override {}
    void exitProgram() override {}
    void destinationNotTried(int, const std::string&) override {}
    void sendToDestination(int, const std::string&, const SendWording&) override {}
    void stageForSending(Staging, const std::string&) override {}
};

class ViewAnnouncementTest : public dictation::testing::DictationTest {
  protected:
    ViewAnnouncementTest() {
        config.record.LEFTSERPEDAL = "STEPLIST";
        config.record.MIDSERPEDAL = "RECSTOP";
        d().onViewChanged = [this] {
            ++signals;
            // What a window redrawing now would show.
            drawn = view();
        };
        settle();
    }

    // Lets the loop turn without moving the clock, and starts counting afresh.
    void settle() {
        loop.runPending();
        signals = 0;
    }

    // The screen after an action, once the loop turned: announced, and the
    // window's copy equal to the view.
    void expectAnnounced(const std::string& what) {
        loop.runPending();
        EXPECT_GE(signals, 1) << what;
        EXPECT_FALSE(d().viewAnnouncementDue()) << what;
        EXPECT_EQ(drawn, view()) << what << ": the window would show a stale screen";
        signals = 0;
    }

    int signals = 0;
    MainView drawn;
    ButtonMessages messages;
    NoLetters letters;
    std::unique_ptr<SwitchModel> model = std::make_unique<SwitchModel>(
        SwitchModelParts{d(), editor1, config, log, prompts, peer, messages, letters});
    platform::Timer ser{loop, "timSERStepBACK"}, usb{loop, "timUSBStepBACK"},
        game{loop, "timGAMEStepBACK"};
    PedalDispatcher dispatcher{config.record, d(), *model, {ser, usb, game}};
};

TEST_F(ViewAnnouncementTest, EveryKindOfActionIsAnnouncedAndShowsWhatTheWindowReads) {
    d().newLetter();
    expectAnnounced("the window's new-file icon");

    d().pedalPresses().MIDSERPEDALHit = true;
    dispatcher.PedalEventSER(kMiddle, kDown);
    ASSERT_TRUE(state().Recordingstatus) << "the record pedal started a take";
    expectAnnounced("a pedal edge");

    // The timers move the time and the slider during the take, with no command at all.
    const std::string before = view().timeElapsed;
    run(2000);
    EXPECT_NE(view().timeElapsed, before);
    expectAnnounced("timer ticks during a take");

    d().pedalPresses().MIDSERPEDALHit = false;
    dispatcher.PedalEventSER(kMiddle, kUp);
    ASSERT_FALSE(state().Recordingstatus);
    expectAnnounced("the pedal let go");

    model->SwitchCommand("LISTEN");
    EXPECT_EQ(view().switchPosition, dictation::kSwitchListen);
    expectAnnounced("a switch word");

    model->Switch1TO8ON("AudioSRC", 5);
    EXPECT_EQ(view().statusLine, "Last Button Pressed on QDU Unit was 5 : Audio Src");
    expectAnnounced("a desk unit button");

    d().closeFile();
    expectAnnounced("the close icon");
}

TEST_F(ViewAnnouncementTest, ChangesOfOneTurnAreAnnouncedOnceAndAnUnchangedScreenNotAtAll) {
    const unsigned long revision = view().revision;
    const unsigned long announced = d().viewAnnouncements();
    d().showStatus("one");
    d().showSwitchPosition(dictation::kSwitchStop);
    d().showStatus("two");
    EXPECT_EQ(signals, 0) << "announced when the loop turns, not in the middle of a routine";
    EXPECT_TRUE(d().viewAnnouncementDue());
    loop.runPending();
    EXPECT_EQ(signals, 1);
    EXPECT_EQ(d().viewAnnouncements(), announced + 1);
    EXPECT_GT(view().revision, revision) << "the revision moves with every change";
    EXPECT_EQ(drawn.statusLine, "two");

    // Written again as it already stands: nothing to redraw.
    d().showStatus("two");
    d().rememberSwitchLabel();
    d().refreshEndOfLetterButton();
    loop.runPending();
    EXPECT_EQ(signals, 1);
    EXPECT_FALSE(d().viewAnnouncementDue());

    // A change and its undoing within one turn leave the screen as drawn.
    d().showStatus("three");
    d().showStatus("two");
    loop.runPending();
    EXPECT_EQ(signals, 1);
}

TEST_F(ViewAnnouncementTest, ADictationGoneBeforeTheLoopTurnsLeavesNothingBehindToCall) {
    d().showStatus("changed just before the end");
    ASSERT_TRUE(d().viewAnnouncementDue());
    model.reset();
    dictation.reset();
    loop.runPending();  // the posted check finds nobody: no call into freed memory
    EXPECT_EQ(signals, 0);
}

}  // namespace
}  // namespace ovd::devices
