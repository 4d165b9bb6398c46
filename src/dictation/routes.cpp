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
    if (view.Label40 == kDeskUnitMissing) view.Lbl4Pos = kSwitchListen;
    if (view.Lbl4Pos != kSwitchListen) {
        state.RememberLastSwitchLabel = view.Lbl4Pos;
        hits.HandSetHitNotHit = true;
    }
    CasePlay("MMControl1_PlayClick");
    if (!state.MYDirty) CaseContinue();
    state.MYDirty = false;
}

void Dictation::recordTake() {
    if (AudioEditor1.State() == kRecording) return;
    hits.HandSetHitNotHit = true;
    state.RememberLastSwitchLabel = view.Lbl4Pos;
    CaseRecord();
    applyEOLRule();
}

void Dictation::stop() {
    if (state.OverWriteFile) {
        OverWriteFileOK("MMControl1_StopClick");
        state.OverWriteFile = false;
    }
    if (state.DoingAppending) {
        endAppend();
        state.DoingAppending = false;
    }
    if (state.DoingInsertUpdate) {
        endInsert();
        state.DoingInsertUpdate = false;
    }
    PlayPrompt("bloop3.wav");
    const int engineState = AudioEditor1.State();
    if (engineState == kPlaying) {
        // Stop during playback only pauses; the next Stop ends.
        state.PausedRecording = true;
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
    if (view.caption.find("File is Playing") != std::string::npos) CasePlay("MMControl1_BackClick");
}

void Dictation::stepForward() {
    CaseStepForward();
    barByPosition();
    if (view.caption.find("File is Playing") != std::string::npos) CasePlay("MMControl1_StepClick");
}

void Dictation::newLetter() {
    state.HitOnce = false;
    state.HitTwice = false;
    CaseNew();
}

void Dictation::openLetter() {
    CaseStop();
    closeFile();
    state.FromCurrentList = false;
    CaseOpen();
}

void Dictation::saveNow() {
    if (state.Recordingstatus || state.Filename.empty()) return;
    // The save icon saves whatever crash protection says; the check box's own
    // value comes back afterwards.
    const bool crashProtection = state.FileSaveAtStop;
    state.FileSaveAtStop = true;
    state.SaveRequested = true;
    SaveFile();
    state.FileSaveAtStop = crashProtection;
    state.SaveRequested = false;
    state.FileChanged = false;
    state.flgPlay = false;
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
    state.SecondSwitchPosition = "Last3Secs";
    state.ThirdSwitchPosition.clear();
    state.FourthSwitchPosition.clear();
}

void Dictation::finishLetter() {
    hits.HandSetHitNotHit = true;
    if (switchCommand) switchCommand("EOL");
    view.cmdEOL = false;
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
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::clearRecentFiles() {
    recent.clearRecentFiles();
    view.Reopen.clear();
    changed();
}

void Dictation::openRecentFile(const std::string& path) {
    // Another file while a take runs would leave that take recording unseen.
    if (refusedWhileRecording("OpenMyList")) return;
    if (platform::fileExists(path)) {
        state.FromCurrentList = true;
        state.Filename = path;
        CaseOpen();
        return;
    }
    state.flgfileOpen1 = false;
    setFileLabels("");
    state.iTotalSecFile = 0;
    state.iCurSecond = 0;
    state.flgPlay = false;
    state.Recordingstatus = false;
    changed();
    prompts_.showMessage("That file does not exist!", "File Not Found! ");
    if (state.PreviousNextFile > 0) --state.PreviousNextFile;
}

}  // namespace ovd::dictation
