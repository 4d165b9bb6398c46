#include "devices/switch_model.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/files.h"

namespace ovd::devices {

namespace {

using dictation::kSwitchDictate;
using dictation::kSwitchListen;
using dictation::kSwitchStepBack;
using dictation::kSwitchStop;

}  // namespace

SwitchModel::SwitchModel(SwitchModelParts parts)
    : d_(parts.dictation),
      state_(parts.dictation.state()),
      view_(parts.dictation.view()),
      hits_(parts.dictation.pedalPresses()),
      AudioEditor1(parts.AudioEditor1),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      peer_(parts.peer),
      messages_(parts.messages),
      letters_(parts.letters) {
    d_.replaceNewestSwitchPosition(kFirstTime);
    d_.fileReady = [this] { takePendingRecord(); };
}

SwitchModel::~SwitchModel() { d_.fileReady = nullptr; }

bool SwitchModel::fileInTransition() const { return lettersUnderWay_ > 0 || d_.newFileUnderWay(); }

void SwitchModel::recordReleased() {
    if (pendingRecord_.empty()) return;
    // Held and let go before the file was ready: the author asked for no take.
    pendingRecord_.clear();
    trace("Record released before the next file was ready: no take started");
}

void SwitchModel::takePendingRecord() {
    if (pendingRecord_.empty() || fileInTransition()) return;
    const std::string command = std::move(pendingRecord_);
    pendingRecord_.clear();
    if (!state_.flgfileOpen1) {
        trace("Record: no file to record into after the end of letter");
        return;
    }
    trace("Record carried out: the file is ready");
    SwitchCommand(command);
}

// ---- The switch ----

void SwitchModel::SwitchCommand(const std::string& command) {
    d_.rememberSwitchLabel();
    if (command == "Trigger") {
        // An empty hook: the action stores the word and does nothing with it.
        if (!state_.PausedRecording) SwitchAction("Trigger");
    } else if (command == "STEPBACK") {
        stepBack();
    } else if (command == "LISTEN") {
        listen();
    } else if (command == "STOP") {
        stop();
    } else if (command == "Record" || command == "RecordInsOVR") {
        if (fileInTransition()) {
            // Neither dropped nor let loose on a file half closed or half made:
            // the press is carried out once the next file is ready.
            if (pendingRecord_.empty()) trace("Record waits: the next file is not ready yet");
            pendingRecord_ = command;
            return;
        }
        // A take already running: leave at once, and the program does not close now.
        if (!record(command == "Record")) return;
    } else if (command == "STEPFOWARD") {
        stepForward();
    } else if (command == "Ins" || command == "OVR") {
        arm(command == "OVR");
    } else if (command == "EOL") {
        endOfLetterCommand();
    }
    // An exit asked for at the end of a letter waits for the command in hand.
    if (letters_.exitRequested()) letters_.startTimClose();
}

void SwitchModel::pushSwitchPosition(const std::string& status) { d_.pushSwitchPosition(status); }

void SwitchModel::endTakeAndDisarm() {
    if (state_.Recordingstatus) {
        d_.CaseStop();
        d_.CaseEnd();
    }
    d_.disarmInsertOverwrite();
    d_.showMode("");
}

void SwitchModel::stepBack() {
    endTakeAndDisarm();
    d_.showSwitchPosition(kSwitchStepBack);
    pushSwitchPosition(kSwitchStepBack);
    SwitchAction("STEPBACK");
    d_.setStepBackUnderWay(false);
}

void SwitchModel::listen() {
    endTakeAndDisarm();
    if (state_.FirstSwitchPosition == kFirstTime || state_.Recordingstatus || !state_.flgfileOpen1)
        return;

    const bool alreadyListening = state_.FirstSwitchPosition == kSwitchListen;
    const bool atTheEnd = state_.iCurSecond == state_.iTotalSecFile;
    if (state_.SecondSwitchPosition == kSteppedForward && alreadyListening) {
        // Stepped forward while listening: at the end, the file is left at its end.
        if (atTheEnd) {
            if (!view_.transportBar.Record) d_.CaseEnd();
            return;
        }
    } else if (alreadyListening) {
        if (!atTheEnd) return;
        // Listened to the end: the cursor waits at the end for the next take. The
        // record buttons stay as they are.
        AudioEditor1.Stop();
        AudioEditor1.setCursorPosition(AudioEditor1.Length());
        return;
    }

    d_.showSwitchPosition(kSwitchListen);
    if (state_.SecondSwitchPosition == kLast3Secs || alreadyListening) return;
    pushSwitchPosition(kSwitchListen);

    if (state_.PausedRecording) {
        // Stopped during playback: listening goes on from where it paused.
        d_.setJustOpened(true);
        d_.setPausedRecording(false);
        rereadPosition();
        d_.setJustOpened(false);
        d_.play();
        return;
    }
    d_.setPausedRecording(false);

    // Coming from dictate, directly or through stop, replays the last three
    // seconds first; from anywhere else listening simply goes on.
    const std::string& second = state_.SecondSwitchPosition;
    if (second == kSwitchDictate ||
        (second == kSwitchStop && state_.ThirdSwitchPosition == kSwitchDictate)) {
        SwitchAction(kLast3Secs);
    } else if (second != kLast3Secs) {
        if (AudioEditor1.State() != static_cast<int>(engine::EditorState::Playing)) {
            rereadPosition();
            SwitchAction("LISTEN");
        }
    }
}

void SwitchModel::stop() {
    d_.showSwitchPosition(kSwitchStop);
    // Stopping an insert or an overwrite forgets the position the take began
    // from, so the next listen does not take it for a dictation.
    if (state_.DoingInsertUpdate || state_.OverWriteFile) {
        d_.setPausedRecording(false);
        d_.replaceNewestSwitchPosition("");
    }
    d_.forgetFirstBackClick();
    if (state_.FirstSwitchPosition != kSwitchStop) {
        d_.disarmInsertOverwrite();
        d_.showMode("");
        pushSwitchPosition(kSwitchStop);
    }
    if (state_.PausedRecording) return;
    // The first position is always the stop text by now, so this never holds;
    // the switch has always asked it and it stays.
    if (state_.FourthSwitchPosition == kLast3Secs && state_.ThirdSwitchPosition == kSwitchListen &&
        state_.SecondSwitchPosition == kSwitchStop &&
        state_.FirstSwitchPosition == kSwitchStepBack) {
        return;
    }
    SwitchAction("STOP");
}

bool SwitchModel::record(bool plainRecord) {
    if (state_.Recordingstatus) return false;
    if (state_.FirstSwitchPosition != kSwitchStop) d_.replaceNewestSwitchPosition(kSwitchStop);
    d_.showMode("");
    d_.showSwitchPosition(kSwitchDictate);
    pushSwitchPosition(kSwitchDictate);

    const settings::SettingsRecord& s = settings();
    if (plainRecord) {
        // With the automatic modes, the record command inserts or overwrites
        // wherever the buttons for it are on.
        if (view_.overwriteEnabled && s.AutoOverwrite) d_.armOverwrite();
        if (state_.HitTwice) {
            d_.disarmInsertOverwrite();
            HandSetSwitchs3("OVERWRITE");
        }
        if (view_.insertEnabled && s.AutoInsert) d_.armInsert();
        if (state_.HitOnce) {
            d_.disarmInsertOverwrite();
            HandSetSwitchs3("INSERT");
            return true;
        }
        if (!state_.Recordingstatus) {
            if (!state_.DoingInsertUpdate) d_.CaseEnd();
            d_.setPausedRecording(false);
            SwitchAction("DICTATE");
        }
        return true;
    }
    // The armed mode decides.
    if (state_.HitTwice) {
        d_.disarmInsertOverwrite();
        HandSetSwitchs3("OVERWRITE");
    }
    if (state_.HitOnce) {
        d_.disarmInsertOverwrite();
        HandSetSwitchs3("INSERT");
    }
    return true;
}

void SwitchModel::stepForward() {
    endTakeAndDisarm();
    d_.stepForward();
}

void SwitchModel::arm(bool overwrite) {
    // Arming needs both buttons: either one alone means the position or the
    // file allows no take in the middle.
    if (!view_.insertEnabled || !view_.overwriteEnabled) {
        hits_.HandSetHitNotHit = false;
        return;
    }
    d_.disarmInsertOverwrite();
    d_.armInsert();
    if (overwrite) d_.armOverwrite();
    d_.showMode(overwrite ? "Overwrite Mode" : "Insert Mode");
    d_.PlayPrompt("beep2.wav");
    d_.showSwitchPosition(kSwitchDictate);
    if (overwrite) {
        d_.overwriteAtCursor();
    } else {
        d_.insertAtCursor();
    }
}

void SwitchModel::endOfLetterCommand() {
    if (!settings().VoicePrompts) letters_.beep();
    // Refused without a word during a take: the hot key stops first.
    if (state_.Recordingstatus) return;
    d_.replaceNewestSwitchPosition(kSwitchStop);
    d_.CaseStop();
    // After a finished letter the command only stops the transport.
    if (state_.EOLHAPPENED) return;
    ++lettersUnderWay_;
    letters_.startEndOfLetter();
    --lettersUnderWay_;
    takePendingRecord();
}

void SwitchModel::SwitchAction(const std::string& word) {
    d_.noteSwitchWord(word);
    if (state_.CheckingKey || word == "Trigger") return;
    const dictation::TransportBar& bar = view_.transportBar;
    const bool scratchTake =
        state_.DoingAppending || state_.DoingInsertUpdate || state_.OverWriteFile;
    if (word == "STEPBACK") {
        if (!bar.Back) {
            hits_.HandSetHitNotHit = false;
            return;
        }
        d_.withdrawSwitchRequest();
        d_.setStepBackUnderWay(true);
        d_.StepBackward();
        // Playing starts where the step left the cursor: "Backs up N seconds/Listen".
        d_.CasePlay("StepBackwardKey");
    } else if (word == "LISTEN") {
        if (scratchTake || !engineIdle()) return;
        if (AudioEditor1.CursorPosition() >= AudioEditor1.Length()) d_.CaseBeginning();
        if (bar.Play) d_.play();
    } else if (word == "STOP") {
        // The stop that ends a step back only ends the step; playing goes on.
        if (!state_.StepBackRequest) {
            if (bar.Stop) StopClick();
        } else {
            d_.setStepBackUnderWay(false);
        }
        UpdateEOLButton();
    } else if (word == "DICTATE") {
        if (bar.Record) d_.recordTake();
    } else if (word == kLast3Secs) {
        if (!scratchTake && engineIdle()) d_.replayLastThreeSeconds();
    }
}

void SwitchModel::HandSetSwitchs3(const std::string& word) {
    if (word == "EOL") {
        letters_.endOfLetter();
        return;
    }
    if (state_.CheckingKey) return;
    d_.forgetDiscardedFile();
    const dictation::TransportBar& bar = view_.transportBar;
    if (word == "INSERT") {
        if (!view_.insertEnabled) return;
        if (view_.switchPosition != kSwitchDictate)
            askToMoveSwitch(dictation::kMoveSwitchToRecord, "DICTATE");
        d_.insertAtCursor();
    } else if (word == "OVERWRITE") {
        if (!view_.overwriteEnabled) {
            hits_.HandSetHitNotHit = false;
            d_.disarmInsertOverwrite();
            return;
        }
        if (view_.switchPosition != kSwitchDictate)
            askToMoveSwitch(dictation::kMoveSwitchToRecord, "DICTATE");
        d_.overwriteAtCursor();
    } else if (word == "GOTOEND") {
        if (view_.switchPosition != kSwitchListen) askToMoveSwitch(kMoveSwitchToListen, "LISTEN");
        if (bar.Next) d_.goToEnd();
    } else if (word == "STEPFOWARD") {
        if (!bar.Step) {
            hits_.HandSetHitNotHit = false;
            return;
        }
        if (view_.switchPosition != kSwitchStop && view_.switchPosition != kSwitchListen) {
            askToMoveSwitch(kMoveSwitchToListenOrStop, kSteppedForward);
        }
        d_.CaseStepForward();
    }
}

void SwitchModel::askToMoveSwitch(const char* message, const char* waitingFor) {
    d_.askToMoveSwitch(message, waitingFor);
}

void SwitchModel::UpdateEOLButton() { d_.refreshEndOfLetterButton(); }

void SwitchModel::rereadPosition() { d_.rereadCursorSecond(); }

bool SwitchModel::engineIdle() const {
    // A paused playback is as still as a stopped file: either may start playing.
    const int engineState = AudioEditor1.State();
    return engineState == static_cast<int>(engine::EditorState::Stopped) ||
           engineState == static_cast<int>(engine::EditorState::Paused);
}

void SwitchModel::StopClick() { d_.stop(); }
void SwitchModel::CaseStop() { d_.CaseStop(); }
void SwitchModel::CaseEnd() { d_.CaseEnd(); }

}  // namespace ovd::devices
