// The dispatcher: what each pedal keyword does on each edge, the busy rule, the
// end-of-letter button, and the step-back repeat of a held listen pedal.

#include "devices/control_actions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dictation/dictation_fixture.h"

namespace ovd::devices {
namespace {

using platform::Milliseconds;

class RecordingCommands : public TransportCommands {
  public:
    void SwitchCommand(const std::string& command) override {
        calls.push_back("Switch:" + command);
    }
    void StopClick() override { calls.push_back("StopClick"); }
    void CaseStop() override { calls.push_back("CaseStop"); }
    void CaseEnd() override { calls.push_back("CaseEnd"); }
    void pushSwitchPosition(const std::string& status) override {
        calls.push_back("Position:" + status);
    }
    void SwitchAction(const std::string& action) override { calls.push_back("Action:" + action); }
    std::vector<std::string> calls;
};

class PedalDispatcherTest : public dictation::testing::DictationTest {
  protected:
    PedalDispatcherTest() {
        settings.LEFTSERPEDAL = "STEPLIST";
        settings.MIDSERPEDAL = "RECSTOP";
        settings.RIGHTSERPEDAL = "EOLSTOP";
        settings.LEFTUSBPEDAL = "INSAUDIO";
        settings.MIDUSBPEDAL = "OVRAUDIO";
        settings.RIGHTUSBPEDAL = "";
    }
    std::vector<std::string> edge(const std::string& pedal, const std::string& direction,
                                  bool fromUsb = false) {
        commands.calls.clear();
        if (fromUsb) {
            dispatcher.PedalEventUSB(pedal, direction);
        } else {
            dispatcher.PedalEventSER(pedal, direction);
        }
        return commands.calls;
    }

    settings::SettingsRecord settings;
    // The dispatcher is tried on states no pedal leads to by itself.
    dictation::DictationState& state = arrangeState();
    dictation::MainView& view = arrangeView();
    PedalHits& hits = d().pedalPresses();
    RecordingCommands commands;
    platform::Timer ser{loop, "timSERStepBACK"}, usb{loop, "timUSBStepBACK"},
        game{loop, "timGAMEStepBACK"};
    PedalDispatcher dispatcher{settings, d(), commands, {ser, usb, game}};
};

using Calls = std::vector<std::string>;

TEST_F(PedalDispatcherTest, EachKeywordActsOnItsEdgesAsTheTableSays) {
    state.flgPlay = true;
    EXPECT_EQ(edge(kLeft, kDown), Calls{"Switch:STOP"}) << "listen pedal while playing stops";
    EXPECT_EQ(edge(kLeft, kUp), Calls{});

    view.transportBar.Stop = true;  // hold to record
    EXPECT_EQ(edge(kMiddle, kDown), Calls{"Switch:Record"});
    EXPECT_EQ(edge(kMiddle, kUp), Calls{"StopClick"});

    settings.OneTapRecPause = true;  // tap on, tap off
    EXPECT_EQ(edge(kMiddle, kDown), Calls{"Switch:Record"});
    state.Recordingstatus = true;
    EXPECT_EQ(edge(kMiddle, kUp), Calls{}) << "the release never stops a one-tap take";
    EXPECT_EQ(edge(kMiddle, kDown), Calls{"StopClick"});
    EXPECT_EQ(edge(kLeft, kDown), Calls{}) << "busy: the listen pedal is dead";
    view.endOfLetterEnabled = true;
    EXPECT_EQ(edge(kRight, kDown), Calls{}) << "busy: even end of letter waits";

    settings.OneTapRecPause = false;
    state.Recordingstatus = false;
    view.endOfLetterEnabled = false;
    EXPECT_EQ(edge(kRight, kDown), Calls{}) << "end of letter needs its button on";
    view.endOfLetterEnabled = true;
    EXPECT_EQ(edge(kRight, kDown), Calls{"Switch:EOL"});
    EXPECT_TRUE(hits.HandSetHitNotHit);

    view.transportBar.Stop = false;
    EXPECT_EQ(edge(kLeft, kUp, true), Calls{}) << "insert released with nothing to stop";
    EXPECT_EQ(edge(kLeft, kDown, true), Calls{"Switch:Ins"});
    EXPECT_EQ(edge(kMiddle, kDown, true), Calls{"Switch:OVR"});
    EXPECT_EQ(edge(kRight, kDown, true), Calls{}) << "an empty assignment does nothing";
    EXPECT_EQ(edge("FOURTH", kDown, true), Calls{});
}

TEST_F(PedalDispatcherTest, AHeldListenPedalStepsBackEveryTenthOfASecondUntilReleased) {
    view.transportBar.Back = true;
    hits.LEFTSERPEDALHit = true;
    EXPECT_EQ(edge(kLeft, kDown), Calls{}) << "nothing moves before the first tick";
    loop.advance(Milliseconds(99));
    EXPECT_TRUE(commands.calls.empty());
    loop.advance(Milliseconds(201));
    EXPECT_EQ(commands.calls,
              (Calls{"Position:4 Position Switch STATUS: STEPBACK", "Action:STEPBACK",
                     "Position:4 Position Switch STATUS: STEPBACK", "Action:STEPBACK",
                     "Position:4 Position Switch STATUS: STEPBACK", "Action:STEPBACK"}));
    EXPECT_EQ(view.switchPosition, "4 Position Switch STATUS: STEPBACK");

    hits.LEFTSERPEDALHit = false;
    commands.calls.clear();
    loop.advance(Milliseconds(500));
    EXPECT_TRUE(commands.calls.empty());
    EXPECT_FALSE(ser.Enabled());

    // During a held take the first tick ends the take before stepping back.
    state.Recordingstatus = true;
    hits.LEFTSERPEDALHit = true;
    dispatcher.StartStepBackSER();
    loop.advance(Milliseconds(100));
    EXPECT_EQ(commands.calls.front(), "CaseStop");
    EXPECT_EQ(commands.calls[1], "CaseEnd");
}

TEST_F(PedalDispatcherTest, TheEndOfLetterButtonFollowsRecordAndStop) {
    struct Case {
        bool record, stop, recordedOnce, before, after;
    };
    const std::vector<Case> cases = {
        {false, true, true, true, false},   {true, false, true, false, true},
        {true, false, false, false, false}, {false, false, true, true, false},
        {true, true, true, true, true},
    };
    for (const Case& c : cases) {
        view.transportBar.Record = c.record;
        view.transportBar.Stop = c.stop;
        state.RecordedOnce = c.recordedOnce;
        view.endOfLetterEnabled = c.before;
        dispatcher.UpdateEOLButton();
        EXPECT_EQ(view.endOfLetterEnabled, c.after)
            << c.record << c.stop << c.recordedOnce << c.before;
    }
    EXPECT_EQ(buttonDisplayName("FastForward"), "F-FWD");
    EXPECT_EQ(buttonDisplayName("AudioSRC"), "Audio Src");
    EXPECT_EQ(buttonDisplayName("MSG12"), "MSG12");
}

}  // namespace
}  // namespace ovd::devices
