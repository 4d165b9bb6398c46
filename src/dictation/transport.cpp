// The transport routines every way of driving the recorder ends in. Each one
// tests and sets the flags in a fixed order; the order matters because pedals
// and peer orders can arrive while a routine waits half way through.

#include "dictation/dictation.h"
#include "platform/files.h"
#include "platform/text.h"

namespace ovd::dictation {

void Dictation::finishPendingInsertOrAppend() {
    if (state.InsertingFile) {
        state.FileChanged = true;
        AudioEditor1.Close();
        ActuallyInsert();
        state.InsertingFile = false;
        std::remove(state.Filename.c_str());
    }
    if (state.AppendingFile) {
        if (auto opened = AudioEditor1.Open(state.Filename); !opened) trace(opened.error());
        state.RecordedOnce = true;
    }
}

void Dictation::closeBeforeNewFile() {
    if (state.FileChanged) {
        // The file in hand is closed (and saved) before a new one is named.
        state.FileChanged = false;
        CaseStop();
        closeFile();
    }
    timCurPos.setEnabled(false);
}

bool Dictation::newFileAbandoned() {
    if (!state.UserSelectedNo) return false;
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
    return true;
}

void Dictation::CaseNew() {
    trace("File New: " + state.Filename);
    {
        // While the file is made, the waits inside let pedals in: they see a file
        // in the making, and the file ready once it is.
        ++newFilesUnderWay_;
        newFileSteps();
        --newFilesUnderWay_;
    }
    if (!newFileUnderWay() && fileReady) fileReady();
}

void Dictation::newFileSteps() {
    closeBeforeNewFile();
    if (refusedWhileRecording("CaseNew")) return;
    state.CheckedOnce = false;
    state.WhichBut = "New";
    state.Filename.clear();
    view.lblReady.clear();
    naming.Newfile();
    if (newFileAbandoned()) return;
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
    trace("CaseNew-FileSaveError =: " + platform::boolText(state.FileSaveError));
    trace("LOADED New File: " + state.Filename + " Procedure - CASE NEW");
    notifyPeer("LOADED_" + platform::withoutFolder(state.Filename), " -57");
    // The author hears that the new file is ready even with prompts switched off.
    voice_.PlayPrompt("TwoBeeps.wav", true);
}

void Dictation::CaseNewFileName() {
    trace("File New (named): " + state.CommandFileName);
    state.PedalsBusy = true;
    closeBeforeNewFile();
    state.CheckedOnce = false;
    state.WhichBut = "New";
    state.Filename.clear();
    naming.Newfile();
    if (newFileAbandoned()) {
        state.PedalsBusy = false;
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
    renameToHandedOffName("recording");
    trace("File Record: " + state.Filename);
    state.WhichBut = "Record";
    state.FileChanged = true;
    state.Recordingstatus = true;
    state.PausedRecording = false;
    rotateWorkFileNames();
    if (auto recording = AudioEditor1.Record(); !recording) {
        trace("Record: " + recording.error());
        // Nothing records: the station must not show a take, nor refuse what
        // follows as if one ran.
        state.Recordingstatus = false;
        state.WhichBut = "Stop";
        changed();
        return;
    }
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
    if (state.DoingAppending) {
        // An append ended by any stop (a pedal, the switch) is over: its own
        // button has nothing left to end, and the station no longer appends.
        state.DoingAppending = false;
        view.ButtonEx2Visible = false;
    }
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
    if (AudioEditor1.State() != static_cast<int>(engine::EditorState::Playing)) {
        // Nothing to play from here (an empty file, the cursor at its end): the
        // screen must not say the file plays.
        state.flgPlay = false;
        state.WhichBut = "Stop";
        SetParam(state.WhichBut);
        changed();
        return;
    }
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

}  // namespace ovd::dictation
