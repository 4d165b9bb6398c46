// The switch model on a real dictation: what each move of the switch and each
// desk unit button does to the take, the playback and the position history.

#include "devices/switch_model.h"

#include <memory>
#include <vector>

#include "dictation/dictation_fixture.h"

namespace ovd::devices {
namespace {

using dictation::kSwitchDictate;
using dictation::kSwitchListen;
using dictation::kSwitchStepBack;
using dictation::kSwitchStop;
using dictation::testing::kRate;
using History = std::array<std::string, 4>;

class RecordingLetters : public LetterActions {
  public:
    void beep() override { calls.push_back("beep"); }
    void startEndOfLetter() override { calls.push_back("startEndOfLetter"); }
    void endOfLetter() override { calls.push_back("endOfLetter"); }
    [[nodiscard]] bool exitRequested() const override { return exit; }
    void startTimClose() override { calls.push_back("TimClose"); }
    void exitProgram() override { calls.push_back("exit"); }
    void destinationNotTried(int destination, const std::string& notice) override {
        calls.push_back("not tried " + std::to_string(destination) + ": " + notice);
    }
    void sendToDestination(int destination, const std::string& path,
                           const SendWording& wording) override {
        calls.push_back("send " + std::to_string(destination) + ": " + path);
        lastWording = wording;
    }
    void stageForSending(Staging staging, const std::string& path) override {
        calls.push_back(std::string(staging == Staging::Email ? "email: " : "ftp: ") + path);
    }
    bool exit = false;
    std::vector<std::string> calls;
    SendWording lastWording;
};

class SwitchModelTest : public dictation::testing::DictationTest {
  protected:
    void say(const std::string& command) { model->SwitchCommand(command); }
    void press(const std::string& action, int button) { model->Switch1TO8ON(action, button); }
    History history() {
        return {state().FirstSwitchPosition, state().SecondSwitchPosition,
                state().ThirdSwitchPosition, state().FourthSwitchPosition};
    }
    // A four-second letter opened from disk, the cursor at second one: the
    // insert and overwrite buttons are on.
    void openLetterAtSecondOne() {
        d().openRecentFile(dictation::testing::writeRampWave(recordings + "/letter.wav", 4));
        editor1.setCursorPosition(kRate);
        d().timCurPos_Timer();
        ASSERT_TRUE(view().insertEnabled && view().overwriteEnabled);
    }

    ButtonMessages messages;
    RecordingLetters letters;
    std::unique_ptr<SwitchModel> model = std::make_unique<SwitchModel>(
        SwitchModelParts{d(), editor1, config, log, prompts, peer, messages, letters});
};

TEST_F(SwitchModelTest, FromDictateThroughStopListenReplaysTheLastThreeSecondsOnce) {
    d().newLetter();
    say("Record");
    EXPECT_EQ(editor1.State(), 2);
    run(5000);
    say("STOP");
    ASSERT_EQ(editor1.Length(), 5 * kRate);

    say("LISTEN");
    EXPECT_EQ(history(), (History{kSwitchListen, "Last3Secs", "", ""}));
    EXPECT_EQ(editor1.CursorPosition(), 2 * kRate) << "three seconds before the end";
    run(4000);
    EXPECT_EQ(backend.playedSamples().size(), static_cast<std::size_t>(3 * kRate));

    say("STOP");
    say("LISTEN");
    EXPECT_EQ(editor1.State(), 1);
    run(6000);
    EXPECT_EQ(backend.playedSamples().size(), static_cast<std::size_t>(8 * kRate))
        << "the second listen plays the whole letter from its start";
}

TEST_F(SwitchModelTest, RecordWithAutoOverwriteOverwritesInsteadOfAppending) {
    config.record.AutoOverwrite = true;
    openLetterAtSecondOne();
    say("Record");
    EXPECT_TRUE(state().OverWriteFile);
    EXPECT_EQ(editor21.State(), 2) << "the take goes into the scratch editor";
    EXPECT_NE(editor1.State(), 2);
}

TEST_F(SwitchModelTest, RecordDuringATakeChangesNothingAndLeavesTheExitForLater) {
    d().newLetter();
    say("Record");
    run(1000);
    letters.exit = true;
    const History before = history();
    say("Record");
    EXPECT_EQ(history(), before);
    EXPECT_TRUE(state().Recordingstatus);
    EXPECT_TRUE(letters.calls.empty());

    say("STOP");
    EXPECT_EQ(letters.calls, std::vector<std::string>{"TimClose"});
}

TEST_F(SwitchModelTest, InsertArmsOnlyWithBothRecordButtonsOn) {
    openLetterAtSecondOne();
    arrangeView().overwriteEnabled = false;
    d().pedalPresses().HandSetHitNotHit = true;
    say("Ins");
    EXPECT_FALSE(state().HitOnce);
    EXPECT_FALSE(state().DoingInsertUpdate);
    EXPECT_FALSE(d().hits().HandSetHitNotHit);

    arrangeView().overwriteEnabled = true;
    say("Ins");
    EXPECT_TRUE(state().DoingInsertUpdate);
    EXPECT_EQ(view().lblMode, "Insert Mode");
}

TEST_F(SwitchModelTest, StopDuringAnInsertForgetsTheFirstPositionAndPastesTheTake) {
    openLetterAtSecondOne();
    model->pushSwitchPosition(kSwitchDictate);
    say("Ins");
    run(1000);
    say("STOP");
    EXPECT_EQ(history(), (History{kSwitchStop, "", "", ""}));
    EXPECT_FALSE(state().DoingInsertUpdate);
    EXPECT_EQ(editor1.Length(), 5 * kRate);
}

TEST_F(SwitchModelTest, HistoryTakesOnlyAPositionThatDiffersFromTheFirst) {
    const struct {
        std::vector<const char*> pushes;
        History expected;
    } cases[] = {
        {{}, {"FirstTime", "", "", ""}},
        {{kSwitchStop, kSwitchStop}, {kSwitchStop, "FirstTime", "", ""}},
        {{kSwitchDictate, kSwitchStop, kSwitchDictate},
         {kSwitchDictate, kSwitchStop, kSwitchDictate, "FirstTime"}},
        {{kSwitchDictate, kSwitchStop, kSwitchListen, kSwitchListen, kSwitchStepBack, kSwitchStop},
         {kSwitchStop, kSwitchStepBack, kSwitchListen, kSwitchStop}},
    };
    for (const auto& c : cases) {
        arrangeState().clearSwitchPositions();
        arrangeState().FirstSwitchPosition = "FirstTime";
        for (const char* position : c.pushes) model->pushSwitchPosition(position);
        EXPECT_EQ(history(), c.expected) << c.pushes.size() << " pushes";
    }

    arrangeState().clearSwitchPositions();
    say("STOP");
    arrangeState().HitOnce = true;
    say("STOP");
    EXPECT_EQ(history(), (History{kSwitchStop, "", "", ""})) << "the second stop pushed nothing";
    EXPECT_TRUE(state().HitOnce) << "nor did it drop the armed mode";
}

TEST_F(SwitchModelTest, AStopAfterAPedalStepBackStopsAtOnce) {
    config.record.LEFTSERPEDAL = "STEPLIST";
    platform::Timer ser{loop, "timSERStepBACK"}, usb{loop, "timUSBStepBACK"},
        game{loop, "timGAMEStepBACK"};
    PedalDispatcher dispatcher{config.record, d(), *model, {ser, usb, game}};
    dictate(4000);

    d().pedalPresses().LEFTSERPEDALHit = true;
    dispatcher.PedalEventSER(kLeft, kDown);
    run(100);
    d().pedalPresses().LEFTSERPEDALHit = false;
    EXPECT_EQ(editor1.State(), 1) << "stepped back and playing";
    run(500);
    dispatcher.PedalEventSER(kLeft, kDown);
    EXPECT_EQ(editor1.State(), 5) << "the next press stops playback";
}

TEST_F(SwitchModelTest, ButtonsWithNothingToDoChangeOnlyTheLastButtonLine) {
    dictate(2000);
    const struct {
        const char* action;
        int button;
        const char* shown;
    } cases[] = {{"AudioSRC", 5, "Audio Src"},
                 {"ToggleMic", 3, "Mic:On/Off"},
                 {"3Seconds", 2, "Play 3 LSecs"},
                 {"MSG4", 8, "MSG4"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.action);
        const dictation::MainView viewBefore = view();
        const History historyBefore = history();
        press(c.action, c.button);
        EXPECT_EQ(view().statusLine, "Last Button Pressed on QDU Unit was " +
                                         std::to_string(c.button) + " : " + c.shown);
        EXPECT_EQ(view().switchPosition, viewBefore.switchPosition);
        EXPECT_EQ(view().transportBar, viewBefore.transportBar);
        EXPECT_EQ(history(), historyBefore);
        EXPECT_EQ(editor1.State(), 0);
        EXPECT_TRUE(model->BUTHit(c.button));
        model->buttonReleased(c.button);
        EXPECT_FALSE(model->BUTHit(c.button));
    }
    EXPECT_TRUE(letters.calls.empty());
    EXPECT_TRUE(prompts.transcript().empty());

    config.record.QDUDisconnected = true;
    arrangeView().statusLine = dictation::kDeskUnitMissing;
    press("AudioSRC", 5);
    EXPECT_EQ(view().statusLine, dictation::kDeskUnitMissing);
}

TEST_F(SwitchModelTest, SendButtonsRefuseWithTheirOwnWordsAndKeepTheFileOpen) {
    const std::string missing = folder.file("gone");
    auto& r = config.record;
    r.AutoSend1 = false;
    r.AutoSend2 = true;  // and no folder
    r.AutoSend3 = true;
    r.SendToThree = missing;
    r.AutoEmail = true;  // and no address
    r.AutoFTP = false;
    const struct {
        const char* action;
        std::string label40;  // empty: the last button line stays
        std::vector<std::string> calls;
    } cases[] = {
        {"SendToOne",
         "Auto Send Destination One has not been activated",
         {"not tried 1: Destination  Error: Not Sent"}},
        {"SendToTwo", "", {"not tried 2: Destination  Error: Not Sent"}},
        {"SendToThree", "", {"not tried 3: Destination " + missing + " Error: Not Sent"}},
        {"SENDEMAIL", "Auto Send Email Address is blank", {}},
        {"SENDFTP", "Auto Send FTP has not been activated", {}},
    };
    dictate(1000);
    const std::string file = state().Filename;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.action);
        letters.calls.clear();
        press(c.action, 6);
        EXPECT_EQ(letters.calls, c.calls);
        if (!c.label40.empty()) {
            EXPECT_EQ(view().statusLine, c.label40);
        }
        EXPECT_EQ(state().Filename, file);
    }
    EXPECT_TRUE(logged("Destination " + missing + " Does NOT Exist or NOT Available"));

    r.AutoEmailName = "typist@example.org";
    d().closeFile();
    press("SENDEMAIL", 6);
    EXPECT_EQ(view().statusLine, "There is not a file to Auto Send.");
}

TEST_F(SwitchModelTest, SendToOneClosesTheLetterAndHandsItToDelivery) {
    config.record.AutoSend1 = true;
    config.record.SendToOne = folder.file("dest1");
    EXPECT_TRUE(platform::createFolder(config.record.SendToOne));
    dictate(2000);
    const std::string file = state().Filename;
    press("SendToOne", 6);
    EXPECT_EQ(letters.calls, std::vector<std::string>{"send 1: " + file});
    EXPECT_EQ(letters.lastWording.keepTrying,
              "File has been sending to Destination Two for 10 Seconds. Would you like to keep "
              "trying to send?");
    EXPECT_EQ(state().Filename, "");
    EXPECT_TRUE(platform::fileExists(file)) << "closed and saved before it is sent";
}

TEST_F(SwitchModelTest, MessageButtonsSendToThePeerAndShowAFailure) {
    config.record.TCPButtonScreen = true;
    peer.on = true;
    messages.texts[2] = "Ready for typing";
    dictate(1000);
    const std::string file = state().Filename;
    press("MSG3", 4);
    ASSERT_FALSE(peer.messages.empty());
    EXPECT_EQ(peer.messages.back(), "BTN4_AB0002 Ready for typing");
    EXPECT_EQ(view().statusLine, "Last Button Pressed on QDU Unit was 4 : MSG3");

    peer.reachable = false;
    press("MSG3", 4);
    EXPECT_EQ(view().statusLine, kPeerConnectionError);
    EXPECT_TRUE(logged("  MSG NOT SENT  "));

    press("New", 1);
    EXPECT_EQ(state().Filename, file) << "standard actions are off while the buttons send messages";
}

TEST_F(SwitchModelTest, PreviousAndNextStepThroughTheRecentFiles) {
    const std::string older = dictation::testing::writeRampWave(recordings + "/older.wav", 2);
    const std::string newer = dictation::testing::writeRampWave(recordings + "/newer.wav", 2);
    d().recent.AddToMRUX(older);
    d().recent.AddToMRUX(newer);
    d().openRecentFile(newer);
    const struct {
        const char* action;
        std::string opened;
        int index;
    } steps[] = {
        {"Previous", older, 1}, {"Previous", "", 1}, {"Next", newer, 0}, {"Next", newer, 0}};
    for (const auto& step : steps) {
        press(step.action, 3);
        EXPECT_EQ(state().Filename, step.opened) << step.action;
        EXPECT_EQ(state().PreviousNextFile, step.index) << step.action;
    }
}

TEST_F(SwitchModelTest, DeleteButtonMovesTheLetterToBackWithoutOverwritingAnOlderOne) {
    d().newLetter();
    const std::string letter = state().Filename;
    const std::string name = platform::withoutFolder(letter);
    // A letter of the same name deleted earlier is already in BACK.
    EXPECT_TRUE(platform::createFolder(recordings + "/BACK"));
    EXPECT_TRUE(platform::writeWholeFile(recordings + "/BACK/" + name, "an older letter"));
    say("Record");
    run(3000);
    say("STOP");

    press("EraseFile", 8);
    EXPECT_EQ(view().statusLine, "Last Button Pressed on QDU Unit was 8 : Delete");
    EXPECT_TRUE(state().Filename.empty()) << "the letter is closed";
    EXPECT_FALSE(platform::fileExists(letter)) << "gone from the recordings";
    EXPECT_EQ(platform::readWholeFile(recordings + "/BACK/" + name).valueOr(""), "an older letter");
    const auto stem = name.substr(0, name.rfind('.'));
    const std::string kept = recordings + "/BACK/" + stem + " (2)" + name.substr(name.rfind('.'));
    EXPECT_GT(platform::fileSize(kept).valueOr(0), static_cast<std::uintmax_t>(2 * kRate * 2))
        << "the three seconds spoken are kept in BACK";
}

}  // namespace
}  // namespace ovd::devices
