// Dictations driven through the transport bar on the virtual clock: what the
// author sees after each press, and what the engine does.

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

constexpr const char* kTitle = "Orvane Voice Desk - ";

TEST_F(DictationTest, NewRecordStopPlayPauseContinueToTheEnd) {
    d().newLetter();
    EXPECT_EQ(view().caption,
              std::string(kTitle) + "File Is Ready to be Recorded-Please hit the Record Icon");
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CaseNew));
    EXPECT_TRUE(state().flgfileOpen1);
    EXPECT_TRUE(state().RecordingstatusPaused);
    EXPECT_EQ(view().lblReady, "AB0002.WAV");
    EXPECT_FALSE(view().endOfLetterEnabled);
    EXPECT_EQ(backend.promptsPlayed().back().substr(backend.promptsPlayed().back().rfind('/') + 1),
              "TwoBeeps.wav")
        << "the new file is announced even with prompts off";

    d().recordTake();
    EXPECT_EQ(view().caption, std::string(kTitle) + "File is being Recorded");
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CaseRecord));
    EXPECT_FALSE(view().formatOptionsEnabled);
    run(3000);
    EXPECT_EQ(view().timeElapsed, "00:00:03");
    EXPECT_EQ(view().statusLine, "Recording");
    EXPECT_EQ(view().lblOnAir, "ON AIR");
    EXPECT_NE(view().onAirLamp1, view().onAirLamp2) << "the lamps take turns";

    d().stop();
    EXPECT_EQ(editor1.Length(), 3 * kRate);
    EXPECT_EQ(view().caption, std::string(kTitle) + "File is in Recording Mode but is Stopped");
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CaseEnd));
    EXPECT_TRUE(view().endOfLetterEnabled) << "a recorded file waits at its end";
    EXPECT_FALSE(state().Recordingstatus);
    EXPECT_TRUE(state().FileChanged) << "without crash protection a Stop saves nothing";
    EXPECT_FALSE(platform::fileExists(state().Filename));

    d().goToBeginning();
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CaseBeginning));
    EXPECT_EQ(editor1.CursorPosition(), 0);
    d().play();
    EXPECT_EQ(view().caption, std::string(kTitle) + "File is Playing");
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CasePlayOrOpen));
    run(1000);
    EXPECT_EQ(view().timeElapsed, "00:00:01");

    d().pause();
    EXPECT_EQ(editor1.State(), 5);
    EXPECT_EQ(view().caption, std::string(kTitle) + "File is Paused");
    const auto pausedAt = editor1.CursorPosition();
    run(500);
    EXPECT_EQ(editor1.CursorPosition(), pausedAt);

    d().CaseContinue();
    run(2500);
    EXPECT_FALSE(state().flgPlay) << "playback ended at the end of the file";
    EXPECT_EQ(editor1.CursorPosition(), editor1.Length());
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CaseEnd));
    EXPECT_EQ(backend.playedSamples().size(), static_cast<std::size_t>(3 * kRate));
    EXPECT_EQ(prompts.transcript().size(), 0u);
}

// A take stopped before its opening sound is due: the lamps don't light afterwards
// for a take that is over, and the sound that opens a take is not heard.
TEST_F(DictationTest, ATakeStoppedAtOnceLeavesTheLampsDarkAndSilent) {
    d().newLetter();
    d().recordTake();
    run(100);
    d().stop();
    const std::size_t soundsAtStop = backend.promptsPlayed().size();
    run(1000);
    EXPECT_FALSE(state().Recordingstatus);
    EXPECT_FALSE(view().onAirLamp1 || view().onAirLamp2) << "the lamps are off";
    EXPECT_FALSE(view().lblOnAirVisible && view().lblOnAir == "ON AIR");
    EXPECT_EQ(backend.promptsPlayed().size(), soundsAtStop);
}

TEST_F(DictationTest, StopDuringPlaybackPausesAndASecondStopEnds) {
    dictate(2000);
    d().goToBeginning();
    d().play();
    run(500);
    d().stop();
    EXPECT_EQ(editor1.State(), 5);
    EXPECT_TRUE(state().PausedRecording);
    EXPECT_EQ(editor1.CursorPosition(), kRate / 2) << "the position is kept";

    d().stop();
    EXPECT_EQ(editor1.State(), 0);
    EXPECT_EQ(editor1.CursorPosition(), editor1.Length());
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::CaseEnd));
}

TEST_F(DictationTest, RoutinesThatFindNothingToDoChangeNothing) {
    arrangeView().lblMode = "Insert Mode";
    const auto before = view().transportBar;
    d().CaseStop();
    EXPECT_EQ(view().lblMode, "");
    EXPECT_EQ(view().transportBar, before);
    EXPECT_EQ(state().WhichBut, "");

    dictate(2000);
    d().CaseContinue();  // after a Stop there is nothing to go on with
    EXPECT_EQ(state().WhichBut, "Stop");
    EXPECT_EQ(editor1.State(), 0);

    d().goToBeginning();
    d().play();
    const auto length = editor1.Length();
    d().CaseRecord();  // while playing: nothing, and nothing shown
    EXPECT_EQ(editor1.State(), 1);
    EXPECT_FALSE(state().Recordingstatus);
    EXPECT_EQ(editor1.Length(), length);
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST_F(DictationTest, EveryRefusalCarriesItsTag) {
    config.record.Last3SecsAR = true;
    dictate(3000);
    const auto middle = editor1.Length() / 2;
    const auto atTheMiddle = [&] {
        editor1.setCursorPosition(middle);
        arrangeView().positionPercent = 50;
        arrangeView().statusLine = kDeskUnitMissing;
    };
    struct Case {
        const char* tag;
        std::function<void()> arrange;
        std::function<void()> act;
    };
    const std::vector<Case> cases = {
        {"CaseBeginning", {}, [&] { d().CaseBeginning(); }},
        {"CaseCopy", {}, [&] { d().CaseCopy(); }},
        {"CaseCut", {}, [&] { d().CaseCut(); }},
        {"CaseInsertAppend", {}, [&] { d().CaseInsertAppend(); }},
        {"CaseInsSilence", {}, [&] { d().CaseInsSilence(); }},
        {"CaseNew", [&] { arrangeState().FileChanged = false; }, [&] { d().CaseNew(); }},
        {"CaseOpen", {}, [&] { d().CaseOpen(); }},
        {"CasePaste", {}, [&] { d().CasePaste(); }},
        {"CasePlay", {}, [&] { d().CasePlay("test"); }},
        {"CasePlayLooped", {}, [&] { d().CasePlayLooped(); }},
        {"CasePlayToEnd", {}, [&] { d().CasePlayToEnd(); }},
        {"CaseRecord", {}, [&] { d().CaseRecord(); }},
        {"CaseRedo", {}, [&] { d().CaseRedo(); }},
        {"CaseStepBackward", {}, [&] { d().CaseStepBackward(); }},
        {"CaseStepForward", {}, [&] { d().CaseStepForward(); }},
        {"CaseUndo", {}, [&] { d().CaseUndo(); }},
        {"Command1", atTheMiddle, [&] { d().addToBeginning(); }},
        {"Command1-2",
         [&] {
             atTheMiddle();
             arrangeView().positionPercent = 0;
         },
         [&] { d().addToBeginning(); }},
        {"Command1-3",
         [&] {
             atTheMiddle();
             arrangeView().positionPercent = 0;
             arrangeState().flgfileOpen1 = false;
         },
         [&] { d().addToBeginning(); }},
        {"Command2", atTheMiddle, [&] { d().insertAtCursor(); }},
        {"Command3", {}, [&] { d().replayLastThreeSeconds(); }},
        {"cmdOVR", atTheMiddle, [&] { d().overwriteAtCursor(); }},
        {"TurnOffTimers", {}, [&] { d().TurnOffTimers(); }},
        {"timLastThreeSecondsCon",
         [&] {
             editor1.setCursorPosition(editor1.Length() - kRate);
             arrangeState().iTotalSecFile = 3;
         },
         [&] { d().timLastThreeSeconds_Timer(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tag);
        arrangeState().flgfileOpen1 = true;
        if (c.arrange) c.arrange();
        // A take is running, as when a pedal came in during a routine's wait.
        arrangeState().Recordingstatus = true;
        const auto length = editor1.Length();
        prompts.clear();
        c.act();
        ASSERT_EQ(prompts.texts().size(), 1u);
        EXPECT_EQ(prompts.texts()[0], refusalText(c.tag));
        EXPECT_TRUE(state().Recordingstatus);
        EXPECT_EQ(editor1.Length(), length);
        EXPECT_EQ(editor1.State(), 0);
    }
}

TEST_F(DictationTest, APedalDuringTheNewFilesAnnouncementIsRefusedOnTheSecondPath) {
    config.record.TCP = true;
    peer.on = true;
    peer.duringWait = [&] { arrangeState().Recordingstatus = true; };
    d().newLetter();
    ASSERT_FALSE(prompts.texts().empty());
    EXPECT_EQ(prompts.texts()[0], refusalText("CaseNew-2"));
    ASSERT_FALSE(peer.messages.empty());
    EXPECT_EQ(peer.messages[0], "LOADED_AB0002.WAV");
}

TEST_F(DictationTest, CrashProtectionSavesAtEveryStopAndTheSaveTimerRunsOn) {
    config.record.FileSaveAtStop = true;
    rebuild();
    dictate(3000);
    ASSERT_TRUE(platform::fileExists(state().Filename));
    EXPECT_GT(*platform::fileSize(state().Filename), 90000u);
    EXPECT_FALSE(state().FileChanged);
    EXPECT_TRUE(timer("timSave").Enabled());
    EXPECT_TRUE(logged(state().Filename + " File Save Successfull"));
}

TEST_F(DictationTest, AfterTheFirstStopThePeriodicSaveKeepsTheFileOneIntervalBehind) {
    EXPECT_EQ(timer("timSave").Interval(), 16192);
    dictate(2000);
    const std::string file = state().Filename;
    EXPECT_FALSE(platform::fileExists(file))
        << "before the save timer, only the work file holds it";
    d().recordTake();
    run(16192);
    editor1.finishSaving();  // the file takes its name once the save is complete
    ASSERT_TRUE(platform::fileExists(file));
    d().stop();
}

TEST(SaveIntervalTest, SharesOfTheLongestIntervalAndNothingElse) {
    EXPECT_EQ(saveIntervalFor(0), 0);
    EXPECT_EQ(saveIntervalFor(15), 16192);
    EXPECT_EQ(saveIntervalFor(30), 32384);
    EXPECT_EQ(saveIntervalFor(45), 48575);
    EXPECT_EQ(saveIntervalFor(60), 64767);
    EXPECT_EQ(saveIntervalFor(20), std::nullopt) << "not seconds: the interval stays as it was";
}

}  // namespace
}  // namespace ovd::dictation::testing
