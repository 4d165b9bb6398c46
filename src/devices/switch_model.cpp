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
      state_(parts.dictation.state),
      view_(parts.dictation.view),
      hits_(parts.dictation.hits),
      AudioEditor1(parts.AudioEditor1),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      peer_(parts.peer),
      messages_(parts.messages),
      letters_(parts.letters) {
    state_.FirstSwitchPosition = kFirstTime;
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
    state_.RememberLastSwitchLabel = view_.Lbl4Pos;
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

void SwitchModel::pushSwitchPosition(const std::string& status) {
    if (status == state_.FirstSwitchPosition) return;
    state_.FourthSwitchPosition = std::move(state_.ThirdSwitchPosition);
    state_.ThirdSwitchPosition = std::move(state_.SecondSwitchPosition);
    state_.SecondSwitchPosition = std::move(state_.FirstSwitchPosition);
    state_.FirstSwitchPosition = status;
}

void SwitchModel::endTakeAndDisarm() {
    if (state_.Recordingstatus) {
        d_.CaseStop();
        d_.CaseEnd();
    }
    state_.HitOnce = false;
    state_.HitTwice = false;
    view_.lblMode.clear();
}

void SwitchModel::stepBack() {
    endTakeAndDisarm();
    view_.Lbl4Pos = kSwitchStepBack;
    shown();
    pushSwitchPosition(kSwitchStepBack);
    SwitchAction("STEPBACK");
    d_.state.StepBackRequest = false;
}

void SwitchModel::listen() {
    endTakeAndDisarm();
    shown();
    if (state_.FirstSwitchPosition == kFirstTime || state_.Recordingstatus || !state_.flgfileOpen1)
        return;

    const bool alreadyListening = state_.FirstSwitchPosition == kSwitchListen;
    const bool atTheEnd = state_.iCurSecond == state_.iTotalSecFile;
    if (state_.SecondSwitchPosition == kSteppedForward && alreadyListening) {
        // Stepped forward while listening: at the end, the file is left at its end.
        if (atTheEnd) {
            if (!view_.MMControl1.Record) d_.CaseEnd();
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

    view_.Lbl4Pos = kSwitchListen;
    shown();
    if (state_.SecondSwitchPosition == kLast3Secs || alreadyListening) return;
    pushSwitchPosition(kSwitchListen);

    if (state_.PausedRecording) {
        // Stopped during playback: listening goes on from where it paused.
        state_.JustOpened = true;
        state_.PausedRecording = false;
        rereadPosition();
        state_.JustOpened = false;
        d_.play();
        return;
    }
    state_.PausedRecording = false;

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
    view_.Lbl4Pos = kSwitchStop;
    // Stopping an insert or an overwrite forgets the position the take began
    // from, so the next listen does not take it for a dictation.
    if (state_.DoingInsertUpdate || state_.OverWriteFile) {
        state_.PausedRecording = false;
        state_.FirstSwitchPosition.clear();
    }
    state_.BackClickKeyFirstTime = false;
    if (state_.FirstSwitchPosition != kSwitchStop) {
        state_.HitOnce = false;
        state_.HitTwice = false;
        view_.lblMode.clear();
        pushSwitchPosition(kSwitchStop);
    }
    shown();
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
    if (state_.FirstSwitchPosition != kSwitchStop) state_.FirstSwitchPosition = kSwitchStop;
    view_.lblMode.clear();
    view_.Lbl4Pos = kSwitchDictate;
    shown();
    pushSwitchPosition(kSwitchDictate);

    const settings::SettingsRecord& s = settings();
    if (plainRecord) {
        // With the automatic modes, the record command inserts or overwrites
        // wherever the buttons for it are on.
        if (view_.cmdOVR && s.AutoOverwrite) state_.HitTwice = true;
        if (state_.HitTwice) {
            state_.HitOnce = false;
            state_.HitTwice = false;
            HandSetSwitchs3("OVERWRITE");
        }
        if (view_.Command2 && s.AutoInsert) state_.HitOnce = true;
        if (state_.HitOnce) {
            state_.HitOnce = false;
            state_.HitTwice = false;
            HandSetSwitchs3("INSERT");
            return true;
        }
        if (!state_.Recordingstatus) {
            if (!state_.DoingInsertUpdate) d_.CaseEnd();
            state_.PausedRecording = false;
            SwitchAction("DICTATE");
        }
        return true;
    }
    // The armed mode decides.
    if (state_.HitTwice) {
        state_.HitOnce = false;
        state_.HitTwice = false;
        HandSetSwitchs3("OVERWRITE");
    }
    if (state_.HitOnce) {
        state_.HitOnce = false;
        state_.HitTwice = false;
        HandSetSwitchs3("INSERT");
    }
    return true;
}

void SwitchModel::stepForward() {
    endTakeAndDisarm();
    shown();
    d_.stepForward();
}

void SwitchModel::arm(bool overwrite) {
    // Arming needs both buttons: either one alone means the position or the
    // file allows no take in the middle.
    if (!view_.Command2 || !view_.cmdOVR) {
        hits_.HandSetHitNotHit = false;
        return;
    }
    state_.HitOnce = true;
    state_.HitTwice = overwrite;
    view_.lblMode = overwrite ? "Overwrite Mode" : "Insert Mode";
    d_.PlayPrompt("beep2.wav");
    view_.Lbl4Pos = kSwitchDictate;
    shown();
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
    state_.FirstSwitchPosition = kSwitchStop;
    d_.CaseStop();
    // After a finished letter the command only stops the transport.
    if (state_.EOLHAPPENED) return;
    ++lettersUnderWay_;
    letters_.startEndOfLetter();
    --lettersUnderWay_;
    takePendingRecord();
}

void SwitchModel::SwitchAction(const std::string& word) {
    state_.CurrentButtonSelected = word;
    if (state_.CheckingKey || word == "Trigger") return;
    const dictation::TransportBar& bar = view_.MMControl1;
    const bool scratchTake =
        state_.DoingAppending || state_.DoingInsertUpdate || state_.OverWriteFile;
    if (word == "STEPBACK") {
        if (!bar.Back) {
            hits_.HandSetHitNotHit = false;
            return;
        }
        state_.StatusMessage.clear();
        d_.state.StepBackRequest = true;
        d_.StepBackward();
        // Playing starts where the step left the cursor: "Backs up N seconds/Listen".
        d_.CasePlay("StepBackwardKey");
    } else if (word == "LISTEN") {
        if (scratchTake || !engineIdle()) return;
        if (AudioEditor1.CursorPosition() >= AudioEditor1.Length()) d_.CaseBeginning();
        if (bar.Play) d_.play();
    } else if (word == "STOP") {
        // The stop that ends a step back only ends the step; playing goes on.
        if (!d_.state.StepBackRequest) {
            if (bar.Stop) StopClick();
        } else {
            d_.state.StepBackRequest = false;
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
    state_.FileKilled = false;
    const dictation::TransportBar& bar = view_.MMControl1;
    if (word == "INSERT") {
        if (!view_.Command2) return;
        if (view_.Lbl4Pos != kSwitchDictate)
            askToMoveSwitch(dictation::kMoveSwitchToRecord, "DICTATE");
        d_.insertAtCursor();
    } else if (word == "OVERWRITE") {
        if (!view_.cmdOVR) {
            hits_.HandSetHitNotHit = false;
            state_.HitOnce = false;
            state_.HitTwice = false;
            return;
        }
        if (view_.Lbl4Pos != kSwitchDictate)
            askToMoveSwitch(dictation::kMoveSwitchToRecord, "DICTATE");
        d_.overwriteAtCursor();
    } else if (word == "GOTOEND") {
        if (view_.Lbl4Pos != kSwitchListen) askToMoveSwitch(kMoveSwitchToListen, "LISTEN");
        if (bar.Next) d_.goToEnd();
    } else if (word == "STEPFOWARD") {
        if (!bar.Step) {
            hits_.HandSetHitNotHit = false;
            return;
        }
        if (view_.Lbl4Pos != kSwitchStop && view_.Lbl4Pos != kSwitchListen) {
            askToMoveSwitch(kMoveSwitchToListenOrStop, kSteppedForward);
        }
        d_.CaseStepForward();
    }
}

void SwitchModel::askToMoveSwitch(const char* message, const char* waitingFor) {
    state_.StatusMessage = message;
    state_.WAITINGFORButtonSelected = waitingFor;
    state_.StatusMessage.clear();
}

void SwitchModel::UpdateEOLButton() {
    view_.cmdEOL = dictation::cmdEOLAfter(view_.MMControl1, state_.RecordedOnce, view_.cmdEOL);
    shown();
}

void SwitchModel::rereadPosition() {
    state_.iCurSecond = d_.secondsOf(AudioEditor1.CursorPosition());
}

bool SwitchModel::engineIdle() const {
    // A paused playback is as still as a stopped file: either may start playing.
    const int engineState = AudioEditor1.State();
    return engineState == static_cast<int>(engine::EditorState::Stopped) ||
           engineState == static_cast<int>(engine::EditorState::Paused);
}

void SwitchModel::StopClick() { d_.stop(); }
void SwitchModel::CaseStop() { d_.CaseStop(); }
void SwitchModel::CaseEnd() { d_.CaseEnd(); }

void SwitchModel::shown() {
    ++view_.revision;
    if (d_.onViewChanged) d_.onViewChanged();
}

}  // namespace ovd::devices
