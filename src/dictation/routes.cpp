// The entry points of the window's controls, menus and tool icons. Each one is
// the same short sequence of transport routines whatever calls it: the mouse,
// a pedal through the switch model, or a hot key.

#include "dictation/dictation.h"
#include "platform/files.h"

namespace ovd::dictation {

namespace {

constexpr int kPlaying = static_cast<int>(engine::EditorState::Playing);
constexpr int kRecording = static_cast<int>(engine::EditorState::Recording);

}  // namespace

void Dictation::play() {
    if (view().statusLine == kDeskUnitMissing) screen().switchPosition = kSwitchListen;
    if (view().switchPosition != kSwitchListen) {
        state_.RememberLastSwitchLabel = view().switchPosition;
        hits_.HandSetHitNotHit = true;
    }
    CasePlay("MMControl1_PlayClick");
    if (!state_.MYDirty) CaseContinue();
    state_.MYDirty = false;
}

void Dictation::recordTake() {
    if (AudioEditor1.State() == kRecording) return;
    hits_.HandSetHitNotHit = true;
    state_.RememberLastSwitchLabel = view().switchPosition;
    CaseRecord();
    applyEOLRule();
}

void Dictation::stop() {
    if (state_.OverWriteFile) {
        OverWriteFileOK("MMControl1_StopClick");
        state_.OverWriteFile = false;
    }
    if (state_.DoingAppending) {
        endAppend();
        state_.DoingAppending = false;
    }
    if (state_.DoingInsertUpdate) {
        endInsert();
        state_.DoingInsertUpdate = false;
    }
    PlayPrompt("bloop3.wav");
    const int engineState = AudioEditor1.State();
    if (engineState == kPlaying) {
        // Stop during playback only pauses; the next Stop ends.
        state_.PausedRecording = true;
        pause();
    } else if (engineState > 0) {
        CaseStop();
        CaseEnd();
        applyEOLRule();
    }
}

void Dictation::pause() {
    // Pause while recording ends the take.
    if (AudioEditor1.State() == kRecording) {
        CasePauseStop();
    } else {
        CasePause("MMControl1_PauseClick");
    }
}

void Dictation::goToBeginning() {
    CasePause("MMControl1_PrevClick");
    CaseBeginning();
}

void Dictation::goToEnd() {
    CaseStop();
    CasePause("MMControl1_NextClick");
    CaseEnd();
}

void Dictation::stepBack() {
    CaseStepBackward();
    barByPosition();
    if (view().caption.find("File is Playing") != std::string::npos)
        CasePlay("MMControl1_BackClick");
}

void Dictation::stepForward() {
    CaseStepForward();
    barByPosition();
    if (view().caption.find("File is Playing") != std::string::npos)
        CasePlay("MMControl1_StepClick");
}

void Dictation::newLetter() {
    state_.HitOnce = false;
    state_.HitTwice = false;
    CaseNew();
}

void Dictation::openLetter() {
    CaseStop();
    closeFile();
    state_.FromCurrentList = false;
    CaseOpen();
}

void Dictation::saveNow() {
    if (state_.Recordingstatus || state_.Filename.empty()) return;
    // The save icon saves whatever crash protection says; the check box's own
    // value comes back afterwards.
    const bool crashProtection = state_.FileSaveAtStop;
    state_.FileSaveAtStop = true;
    state_.SaveRequested = true;
    SaveFile();
    state_.FileSaveAtStop = crashProtection;
    state_.SaveRequested = false;
    state_.FileChanged = false;
    state_.flgPlay = false;
}

void Dictation::restoreFactoryFormats() { CaseDefault(); }

void Dictation::saveAs() { CaseSaveAs(); }

void Dictation::replayLastThreeSeconds() {
    if (refusedWhileRecording("Command3")) return;
    if (!config_.record.Last3SecsAR) {
        CaseThreeSeconds();
    } else {
        CaseLastThreeSecondsCon();
    }
    state_.SecondSwitchPosition = "Last3Secs";
    state_.ThirdSwitchPosition.clear();
    state_.FourthSwitchPosition.clear();
}

void Dictation::finishLetter() {
    hits_.HandSetHitNotHit = true;
    if (switchCommand) switchCommand("EOL");
    screen().endOfLetterEnabled = false;
    changed();
}

void Dictation::insertAtBeginningFromMenu() { addToBeginning(); }

void Dictation::lastThreeSecondsContinueFromMenu() { LastThreeSecondsContinue(); }

void Dictation::toolbarButton(const std::string& key) {
    timSave.setEnabled(false);
    const std::pair<const char*, void (Dictation::*)()> routines[] = {
        {"Continue", &Dictation::CaseContinue},
        {"PlayLooped", &Dictation::CasePlayLooped},
        {"PlayToEnd", &Dictation::CasePlayToEnd},
        {"Record", &Dictation::CaseRecord},
        {"ThreeSeconds", &Dictation::CaseThreeSeconds},
        {"LastThreeSecondsCon", &Dictation::CaseLastThreeSecondsCon},
        {"Stop", &Dictation::CaseStop},
        {"New", &Dictation::CaseNew},
        {"Open", &Dictation::CaseOpen},
        {"Save", &Dictation::CaseSave},
        {"SaveAs", &Dictation::CaseSaveAs},
        {"Close", &Dictation::CaseClose},
        {"Copy", &Dictation::CaseCopy},
        {"Cut", &Dictation::CaseCut},
        {"Paste", &Dictation::CasePaste},
        {"Undo", &Dictation::CaseUndo},
        {"Redo", &Dictation::CaseRedo},
        {"InsSilence", &Dictation::CaseInsSilence},
        {"PlayRec", &Dictation::CasePlayRec},
        {"Beginning", &Dictation::CaseBeginning},
        {"End", &Dictation::CaseEnd},
        {"StepForward", &Dictation::CaseStepForward},
        {"StepBackward", &Dictation::CaseStepBackward},
        {"InsertAppend", &Dictation::CaseInsertAppend},
    };
    if (key == "Pause") {
        CasePause("Toolbar1_ButtonClick");
    } else if (key == "Play") {
        CasePlay("Toolbar1_ButtonClick");
    } else {
        // "AGC", "Mix", "Left", "Right", "Properties" and the zoom keys have no
        // routine and do nothing.
        for (const auto& [name, routine] : routines) {
            if (key == name) {
                (this->*routine)();
                break;
            }
        }
    }
    normalise(state_);
    SetParam(state_.WhichBut);
}

void Dictation::clearRecentFiles() {
    recent.clearRecentFiles();
    screen().Reopen.clear();
    changed();
}

void Dictation::openRecentFile(const std::string& path) {
    // Another file while a take runs would leave that take recording unseen.
    if (refusedWhileRecording("OpenMyList")) return;
    if (platform::fileExists(path)) {
        state_.FromCurrentList = true;
        state_.Filename = path;
        CaseOpen();
        return;
    }
    state_.flgfileOpen1 = false;
    setFileLabels("");
    state_.iTotalSecFile = 0;
    state_.iCurSecond = 0;
    state_.flgPlay = false;
    state_.Recordingstatus = false;
    changed();
    prompts_.showMessage("That file does not exist!", "File Not Found! ");
    if (state_.PreviousNextFile > 0) --state_.PreviousNextFile;
}

}  // namespace ovd::dictation
