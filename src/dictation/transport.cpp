// The transport routines every way of driving the recorder ends in. Each one
// tests and sets the flags in a fixed order; the order matters because pedals
// and peer orders can arrive while a routine waits half way through.

#include "dictation/dictation.h"
#include "platform/files.h"

namespace ovd::dictation {

namespace {

std::string yesNo(bool value) { return value ? "True" : "False"; }

std::string baseNameOf(const std::string& path) {
    std::string name = path.substr(path.find_last_of('/') + 1);
    const auto dot = name.find_last_of('.');
    return dot == std::string::npos ? name : name.substr(0, dot);
}

}  // namespace

void Dictation::finishPendingInsertOrAppend() {
    if (state.InsertingFile) {
        state.FileChanged = true;
        AudioEditor1.Close();
        AcutallyInsert();
        state.InsertingFile = false;
        std::remove(state.Filename.c_str());
    }
    if (state.AppendingFile) {
        if (auto opened = AudioEditor1.Open(state.Filename); !opened) trace(opened.error());
        state.RecordedOnce = true;
    }
}

void Dictation::CaseNew() {
    trace("File New: " + state.Filename);
    if (state.FileChanged) {
        // The file in hand is closed (and saved) before a new one is named.
        state.FileChanged = false;
        CaseStop();
        Image10_Click();
    }
    timCurPos.setEnabled(false);
    if (refusedWhileRecording("CaseNew")) return;
    state.CheckedOnce = false;
    state.WhichBut = "New";
    state.Filename.clear();
    view.lblReady.clear();
    naming.Newfile();
    if (state.UserSelectedNo) {
        state.UserSelectedNo = false;
        timCurPos.setEnabled(false);
        timRecord.setEnabled(false);
        timLight.setEnabled(false);
        timSave.setEnabled(false);
        state.flgfileOpen1 = false;
        state.JustOpened = false;
        state.Filename.clear();
        setFileLabels(kReadyText);
        changed();
        return;
    }
    SetParam(state.WhichBut);
    if (refusedWhileRecording("CaseNew-2")) return;
    if (!state.flgPlay) {
        // A moment in which the new file counts as taking: a pedal that comes in
        // now is refused rather than acting on a file half set up.
        state.FileChanged = true;
        state.Recordingstatus = true;
        timSave.setEnabled(true);
        waitTraced(1, " -56");
        state.Recordingstatus = false;
    }
    if (state.flgfileOpen1) {
        timSave.setEnabled(false);
        state.flgPlay = false;
        finishPendingInsertOrAppend();
        state.TrueSpeech = false;
        AudioEditor1.Stop();
        AudioEditor1.setSelectionActive(false);
        AudioEditor1.setCursorPosition(0);
        AudioEditor1.setSelectionEnd(0);
        normalise(state);
        SetParam(state.WhichBut);
        view.lblOnAirVisible = true;
        setBar(BarAfter::CaseNew);
    }
    trace("CaseNew-FileSaveError =: " + yesNo(state.FileSaveError));
    trace("LOADED New File: " + state.Filename + " Procedure - CASE NEW");
    notifyPeer("LOADED_" + baseNameOf(state.Filename), " -57");
    // The author hears that the new file is ready even with prompts switched off.
    voice_.PlayPrompt("TwoBeeps.wav", true);
}

void Dictation::CaseNewFileName() {
    trace("File New (named): " + state.CommandFileName);
    state.PedalsBusy = true;
    if (state.FileChanged) {
        state.FileChanged = false;
        CaseStop();
        Image10_Click();
    }
    timCurPos.setEnabled(false);
    state.CheckedOnce = false;
    state.WhichBut = "New";
    state.Filename.clear();
    naming.Newfile();
    if (state.UserSelectedNo) {
        state.UserSelectedNo = false;
        timCurPos.setEnabled(false);
        timRecord.setEnabled(false);
        timLight.setEnabled(false);
        timSave.setEnabled(false);
        state.flgfileOpen1 = false;
        state.JustOpened = false;
        state.Filename.clear();
        setFileLabels(kReadyText);
        state.PedalsBusy = false;
        changed();
        return;
    }
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(0);
    normalise(state);
    SetParam(state.WhichBut);
    setBar(BarAfter::CaseNew);
    if (view.Label40 == kDeskUnitMissing || view.Lbl4Pos.empty()) view.Lbl4Pos = kSwitchPlain;
    if (view.Lbl4Pos == kSwitchDictate || view.Lbl4Pos == kSwitchPlain) PlayPrompt("beep2.wav");
    const auto sinceStart =
        std::chrono::duration_cast<std::chrono::seconds>(loop_.now() - startedAt_).count();
    trace(" Ready To record in " + std::to_string(sinceStart) + " Seconds");
    state.PedalsBusy = false;
}

void Dictation::CaseOpen() {
    trace("File Open: " + state.Filename);
    state.EOLHAPPENED = false;
    if (refusedWhileRecording("CaseOpen")) return;
    state.clearSwitchPositions();
    if (state.FileChanged) {
        CaseStop();
        CaseClose();
    }
    AudioEditor1.Close();
    AudioEditor21.Close();
    if (!state.FromCurrentList) ResetRecorderState();
    state.JustOpened = true;
    view.lblBusyVisible = true;
    view.audioFrameVisible = false;
    view.ctSlide1Enabled = false;
    OpenFile();
    if (!state.Filename.empty()) {
        state.FromCurrentList = false;
        if (!state.FileOpenError) {
            state.WhichBut = "Open";
            SetParam(state.WhichBut);
            AudioEditor1.setSelectionActive(false);
            AudioEditor1.setCursorPosition(0);
            normalise(state);
            SetParam(state.WhichBut);
            timCurPos.setEnabled(true);
            setBar(BarAfter::CasePlayOrOpen);
            setRecordButtons(true);
        } else {
            state.FileOpenError = false;
        }
    } else {
        state.JustOpened = false;
        view.lblBusyVisible = false;
        view.audioFrameVisible = true;
        ResetRecorderState();
        CaseClose();
    }
    changed();
}

void Dictation::CaseRecord() {
    state.EOLHAPPENED = false;
    if (!state.flgfileOpen1) return;
    if (refusedWhileRecording("CaseRecord")) return;
    if (state.flgPlay) return;
    trace("File Record: " + state.Filename);
    state.WhichBut = "Record";
    state.FileChanged = true;
    state.Recordingstatus = true;
    state.PausedRecording = false;
    rotateWorkFileNames();
    if (auto recording = AudioEditor1.Record(); !recording) trace("Record: " + recording.error());
    if (!state.Once) {
        state.StartTime = loop_.now();
        state.Once = true;
    }
    timSave.setEnabled(true);
    timCurPos.setEnabled(false);
    view.formatOptionsEnabled = false;
    timRecord.setInterval(250);
    timRecord.setEnabled(true);
    timsync.setEnabled(true);
    normalise(state);
    SetParam(state.WhichBut);
    setBar(BarAfter::CaseRecord);
    setRecordButtons(false);
    view.ctSlide1Enabled = false;
    state.RecordedOnce = true;
    changed();
}

void Dictation::CaseStop() {
    view.lblMode.clear();
    if (!state.flgfileOpen1) {
        changed();
        return;
    }
    trace("File Stop: " + state.Filename);
    timSave.setEnabled(false);
    state.flgNewToRecord = false;
    if (state.Recordingstatus) {
        view.lblOnAirVisible = true;
        view.lblOnAir = "STAND BY";
    }
    state.flgPlay = false;
    state.WhichBut = "Stop";
    timCurPos.setEnabled(true);
    AudioEditor1.Stop();
    Manip_Files();
    finishPendingInsertOrAppend();
    const bool takeEnded = state.Recordingstatus;
    normalise(state);
    if (takeEnded) {
        // From the first Stop on, the periodic save writes the file itself.
        state.JustOpened = true;
        state.FileChanged = true;
        timSave.setEnabled(true);
    }
    SetParam(state.WhichBut);
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setSelectionStart(AudioEditor1.Length());
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    setBar(BarAfter::CaseStop);
    setRecordButtons(true);
    view.ctSlide1Enabled = true;
    AdjustNCTTimeDisplay();
    view.audioFrameEnabled = true;
    view.frameSpeakerEnabled = true;
    changed();
    // Without crash protection a Stop never saves a changed file.
    if (!state.FileSaveAtStop && state.FileChanged) return;
    SaveFile();
}

void Dictation::CasePlay(const std::string& from) {
    trace("File Play: " + state.Filename + " from " + from);
    state.PausedRecording = false;
    if (state.Recordingstatus) {
        refusedWhileRecording("CasePlay");
        state.MYDirty = true;
        return;
    }
    if (!state.flgfileOpen1) return;
    if (!timCurPos.Enabled()) timCurPos.setEnabled(true);
    state.flgPlay = true;
    state.WhichBut = "Play";
    AdjustNCTTimeDisplay();
    if (auto playing = AudioEditor1.Play(engine::kPlayToEnd); !playing) trace("Play: " + playing.error());
    view.mnuScanConvertEnabled = false;
    refreshSeconds();
    normalise(state);
    SetParam(state.WhichBut);
    setBar(BarAfter::CasePlayOrOpen);
    view.audioFrameEnabled = false;
    view.frameSpeakerEnabled = false;
    changed();
}

void Dictation::CasePlayLooped() {
    trace("File Play Looped: " + state.Filename);
    if (refusedWhileRecording("CasePlayLooped")) return;
    if (!state.flgfileOpen1 || state.flgPlay) return;
    state.flgPlay = true;
    state.WhichBut = "PlayLooped";
    if (auto playing = AudioEditor1.Play(engine::kPlayLooped); !playing) trace(playing.error());
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CasePlayToEnd() {
    trace("File Play To End: " + state.Filename);
    if (refusedWhileRecording("CasePlayToEnd")) return;
    if (!state.flgfileOpen1 || state.flgPlay) return;
    state.flgPlay = true;
    state.WhichBut = "PlayToEnd";
    if (auto playing = AudioEditor1.Play(engine::kPlayToEnd); !playing) trace(playing.error());
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CasePause(const std::string& from) {
    trace("File Pause: " + state.Filename + " from " + from);
    if (!state.flgfileOpen1) return;
    state.WhichBut = "Pause";
    AudioEditor1.Pause();
    normalise(state);
    SetParam(state.WhichBut);
    AudioEditor1.setSelectionStart(AudioEditor1.CursorPosition());
}

void Dictation::CaseContinue() {
    trace("File Continue: " + state.Filename);
    // After a Stop there is nothing to go on with.
    if (!state.flgfileOpen1 || state.WhichBut == "Stop") return;
    state.WhichBut = "Continue";
    AudioEditor1.Continue();
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CasePauseStop() {
    trace("File Pause Stop: " + state.Filename);
    state.PausedRecording = true;
    CaseStop();
    CaseEnd();
}

void Dictation::CaseBeginning() {
    if (refusedWhileRecording("CaseBeginning")) return;
    if (!state.flgfileOpen1) return;
    trace("File Add recording to beginning: " + state.Filename);
    timCurPos.setEnabled(true);
    AudioEditor1.Stop();
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(0);
    AudioEditor1.setSelectionEnd(0);
    AdjustNCTTimeDisplay();
    state.Recordingstatus = false;
    state.JustOpened = true;
    state.WhichBut = "BEG";
    SetParam(state.WhichBut);
    setBar(BarAfter::CaseBeginning);
    view.Command2 = false;
    view.cmdOVR = false;
    changed();
}

void Dictation::CaseEnd() {
    if (!state.flgfileOpen1) return;
    trace("File End: " + state.Filename);
    AudioEditor1.Stop();
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(AudioEditor1.Length());
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    view.ctSlide1 = 100;
    normalise(state);
    SetParam(state.WhichBut);
    if (!state.Recordingstatus) {
        setBar(BarAfter::CaseEnd);
        view.Command2 = false;
        view.cmdOVR = false;
        if (state.iCurSecond == state.iTotalSecFile) view.cmdEOL = true;
    }
    changed();
}

void Dictation::CaseStepForward() {
    if (!state.flgfileOpen1) return;
    if (refusedWhileRecording("CaseStepForward")) return;
    trace("File Step Forward: " + state.Filename);
    StepForward();
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CaseStepBackward() {
    if (!state.flgfileOpen1) return;
    if (refusedWhileRecording("CaseStepBackward")) return;
    trace("File Step Backward: " + state.Filename);
    StepBackward();
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CaseCopy() {
    trace("File Copy: " + state.Filename);
    if (refusedWhileRecording("CaseCopy")) return;
    state.WhichBut = "Copy";
    if (auto copied = AudioEditor1.Copy(); !copied) trace(copied.error());
}

void Dictation::CaseCut() {
    trace("File Cut: " + state.Filename);
    if (refusedWhileRecording("CaseCut")) return;
    state.WhichBut = "Cut";
    // The tail is cut and then pasted over what is left: that is what the
    // station's Cut has always done, and it stays.
    AudioEditor1.setSelectionActive(true);
    AudioEditor1.setSelectionStart(AudioEditor1.CursorPosition());
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    if (auto cut = AudioEditor1.Cut(); !cut) trace(cut.error());
    AudioEditor1.setSelectionStart(0);
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    if (auto pasted = AudioEditor1.Paste(); !pasted) trace(pasted.error());
}

void Dictation::CasePaste() {
    trace("File Paste: " + state.Filename);
    if (refusedWhileRecording("CasePaste")) return;
    state.FileChanged = true;
    if (!state.flgfileOpen1) return;
    state.WhichBut = "Paste";
    if (auto pasted = AudioEditor1.Paste(); !pasted) trace(pasted.error());
}

void Dictation::CaseUndo() {
    trace("File Undo: " + state.Filename);
    if (refusedWhileRecording("CaseUndo")) return;
    state.WhichBut = "Undo";
    if (auto undone = AudioEditor1.Undo(); !undone) trace(undone.error());
}

void Dictation::CaseRedo() {
    trace("File Redo: " + state.Filename);
    if (refusedWhileRecording("CaseRedo")) return;
    state.WhichBut = "Redo";
    if (auto redone = AudioEditor1.Redo(); !redone) trace(redone.error());
}

void Dictation::CaseInsSilence() {
    trace("File Insert Silence: " + state.Filename);
    if (refusedWhileRecording("CaseInsSilence")) return;
    state.WhichBut = "InsSilence";
    // Only the value goes to the view; no silence is inserted, and that stays.
    AudioEditor1.setViewValue(343);
}

void Dictation::CaseInsertAppend() {
    trace("File Insert Append: " + state.Filename);
    if (refusedWhileRecording("CaseInsertAppend")) return;
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CasePlayRec() { trace("File Play Record: " + state.Filename); }

void Dictation::CaseSave() {
    trace("File Save: " + state.Filename);
    if (state.flgfileOpen1) {
        SaveFile();
    } else {
        prompts_.showMessage("Please open a file to be 'Saved'", settings::kProductTitle);
    }
}

void Dictation::CaseSaveAs() {
    trace("File Save As: " + state.Filename);
    if (AudioEditor1.State() == static_cast<int>(engine::EditorState::Playing)) {
        prompts_.showMessage("Please Stop Play before trying to save the file in a different format",
                             settings::kProductTitle);
        return;
    }
    if (!state.flgfileOpen1) {
        prompts_.showMessage("Please open a file to be 'Saved As'", settings::kProductTitle);
        return;
    }
    if (state.FileChanged && AudioEditor1.FormatName().empty()) {
        prompts_.showMessage("Sorry  No Information has been recorded. File can not be 'Saved As'",
                             settings::kProductTitle);
        return;
    }
    state.FileChanged = true;
    SaveFileAs();
    state.FileChanged = false;
    normalise(state);
    SetParam(state.WhichBut);
}

void Dictation::CaseDefault() {
    trace("File Defaults: ");
    config_.ReadConfig();
    settings::SettingsRecord& record = config_.record;
    // A device list with nothing stored takes its first device.
    for (auto* devices : {&AudioEditor1.RecordingDevices(), &AudioEditor1.PlaybackDevices()}) {
        if (devices->Count() > 0 && devices->Current() < 0) (void)devices->setCurrent(0);
    }
    if (record.kDeviceInput.empty() && AudioEditor1.RecordingDevices().Count() > 0) {
        record.kDeviceInput = "0";
        record.InputDeviceName = AudioEditor1.RecordingDevices().Name(0);
    }
    record.FormatType = "MP3";
    record.FormatType2 = "MP3";
    record.Frequency = "16000";
    record.Frequency2 = "32000";
    record.Channel = "MONO";
    record.Channel2 = "MONO";
    record.FileBit = "8";
    record.FileBit2 = "16";
    config_.WriteConfig();
    SetParam("load");
}

void Dictation::TurnOffTimers() {
    if (refusedWhileRecording("TurnOffTimers")) return;
    timCurPos.setEnabled(false);
    timRecord.setEnabled(false);
    timLight.setEnabled(false);
    timSave.setEnabled(false);
    timLastThreeSecondsCon.setEnabled(false);
    view.formatOptionsEnabled = true;
    changed();
}

}  // namespace ovd::dictation
