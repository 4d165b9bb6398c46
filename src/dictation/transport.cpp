// The transport routines every way of driving the recorder ends in. Each one
// tests and sets the flags in a fixed order; the order matters because pedals
// and peer orders can arrive while a routine waits half way through.

#include "dictation/dictation.h"
#include "platform/files.h"
#include "platform/text.h"

namespace ovd::dictation {

void Dictation::finishPendingInsertOrAppend() {
    if (state_.InsertingFile) {
        state_.FileChanged = true;
        AudioEditor1.Close();
        ActuallyInsert();
        state_.InsertingFile = false;
        std::remove(state_.Filename.c_str());
    }
    if (state_.AppendingFile) {
        if (auto opened = AudioEditor1.Open(state_.Filename); !opened) trace(opened.error());
        state_.RecordedOnce = true;
    }
}

void Dictation::closeBeforeNewFile() {
    if (state_.FileChanged) {
        // The file in hand is closed (and saved) before a new one is named.
        state_.FileChanged = false;
        CaseStop();
        closeFile();
    }
    timCurPos.setEnabled(false);
}

bool Dictation::newFileAbandoned() {
    if (!state_.UserSelectedNo) return false;
    state_.UserSelectedNo = false;
    timCurPos.setEnabled(false);
    timRecord.setEnabled(false);
    timLight.setEnabled(false);
    timSave.setEnabled(false);
    state_.flgfileOpen1 = false;
    state_.JustOpened = false;
    state_.Filename.clear();
    setFileLabels(kReadyText);
    changed();
    return true;
}

void Dictation::CaseNew() {
    trace("File New: " + state_.Filename);
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
    state_.CheckedOnce = false;
    state_.WhichBut = "New";
    state_.Filename.clear();
    screen().lblReady.clear();
    naming.Newfile();
    if (newFileAbandoned()) return;
    SetParam(state_.WhichBut);
    if (refusedWhileRecording("CaseNew-2")) return;
    if (!state_.flgPlay) {
        // A moment in which the new file counts as taking: a pedal that comes in
        // now is refused rather than acting on a file half set up.
        state_.FileChanged = true;
        state_.Recordingstatus = true;
        timSave.setEnabled(true);
        waitTraced(1, " -56");
        state_.Recordingstatus = false;
    }
    if (state_.flgfileOpen1) {
        timSave.setEnabled(false);
        state_.flgPlay = false;
        finishPendingInsertOrAppend();
        state_.TrueSpeech = false;
        AudioEditor1.Stop();
        AudioEditor1.setSelectionActive(false);
        AudioEditor1.setCursorPosition(0);
        AudioEditor1.setSelectionEnd(0);
        normalise(state_);
        SetParam(state_.WhichBut);
        screen().lblOnAirVisible = true;
        setBar(BarAfter::CaseNew);
    }
    trace("CaseNew-FileSaveError =: " + platform::boolText(state_.FileSaveError));
    trace("LOADED New File: " + state_.Filename + " Procedure - CASE NEW");
    notifyPeer("LOADED_" + platform::withoutFolder(state_.Filename), " -57");
    // The author hears that the new file is ready even with prompts switched off.
    voice_.PlayPrompt("TwoBeeps.wav", true);
}

void Dictation::CaseNewFileName() {
    trace("File New (named): " + state_.CommandFileName);
    state_.PedalsBusy = true;
    closeBeforeNewFile();
    state_.CheckedOnce = false;
    state_.WhichBut = "New";
    state_.Filename.clear();
    naming.Newfile();
    if (newFileAbandoned()) {
        state_.PedalsBusy = false;
        return;
    }
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(0);
    normalise(state_);
    SetParam(state_.WhichBut);
    setBar(BarAfter::CaseNew);
    if (view().statusLine == kDeskUnitMissing || view().switchPosition.empty())
        screen().switchPosition = kSwitchPlain;
    if (view().switchPosition == kSwitchDictate || view().switchPosition == kSwitchPlain)
        PlayPrompt("beep2.wav");
    const auto sinceStart =
        std::chrono::duration_cast<std::chrono::seconds>(loop_.now() - startedAt_).count();
    trace(" Ready To record in " + std::to_string(sinceStart) + " Seconds");
    state_.PedalsBusy = false;
}

void Dictation::CaseOpen() {
    trace("File Open: " + state_.Filename);
    state_.EOLHAPPENED = false;
    if (refusedWhileRecording("CaseOpen")) return;
    state_.clearSwitchPositions();
    if (state_.FileChanged) {
        CaseStop();
        CaseClose();
    }
    AudioEditor1.Close();
    AudioEditor21.Close();
    if (!state_.FromCurrentList) ResetRecorderState();
    state_.JustOpened = true;
    screen().lblBusyVisible = true;
    screen().audioFrameVisible = false;
    screen().positionSliderEnabled = false;
    OpenFile();
    if (!state_.Filename.empty()) {
        state_.FromCurrentList = false;
        if (!state_.FileOpenError) {
            state_.WhichBut = "Open";
            SetParam(state_.WhichBut);
            AudioEditor1.setSelectionActive(false);
            AudioEditor1.setCursorPosition(0);
            normalise(state_);
            SetParam(state_.WhichBut);
            timCurPos.setEnabled(true);
            setBar(BarAfter::CasePlayOrOpen);
            setRecordButtons(true);
        } else {
            state_.FileOpenError = false;
        }
    } else {
        state_.JustOpened = false;
        screen().lblBusyVisible = false;
        screen().audioFrameVisible = true;
        ResetRecorderState();
        CaseClose();
    }
    changed();
}

void Dictation::CaseRecord() {
    state_.EOLHAPPENED = false;
    if (!state_.flgfileOpen1) return;
    if (refusedWhileRecording("CaseRecord")) return;
    if (state_.flgPlay) return;
    renameToHandedOffName("recording");
    trace("File Record: " + state_.Filename);
    state_.WhichBut = "Record";
    state_.FileChanged = true;
    state_.Recordingstatus = true;
    state_.PausedRecording = false;
    rotateWorkFileNames();
    if (auto recording = AudioEditor1.Record(); !recording) {
        trace("Record: " + recording.error());
        // Nothing records: the station must not show a take, nor refuse what
        // follows as if one ran.
        state_.Recordingstatus = false;
        state_.WhichBut = "Stop";
        changed();
        return;
    }
    if (!state_.Once) {
        state_.StartTime = loop_.now();
        state_.Once = true;
    }
    timSave.setEnabled(true);
    timCurPos.setEnabled(false);
    screen().formatOptionsEnabled = false;
    timRecord.setInterval(250);
    timRecord.setEnabled(true);
    timsync.setEnabled(true);
    normalise(state_);
    SetParam(state_.WhichBut);
    setBar(BarAfter::CaseRecord);
    setRecordButtons(false);
    screen().positionSliderEnabled = false;
    state_.RecordedOnce = true;
    changed();
}

void Dictation::CaseStop() {
    screen().lblMode.clear();
    if (!state_.flgfileOpen1) {
        changed();
        return;
    }
    trace("File Stop: " + state_.Filename);
    timSave.setEnabled(false);
    state_.flgNewToRecord = false;
    if (state_.Recordingstatus) {
        screen().lblOnAirVisible = true;
        screen().lblOnAir = "STAND BY";
    }
    state_.flgPlay = false;
    state_.WhichBut = "Stop";
    timCurPos.setEnabled(true);
    AudioEditor1.Stop();
    if (state_.DoingAppending) {
        // An append ended by any stop (a pedal, the switch) is over: its own
        // button has nothing left to end, and the station no longer appends.
        state_.DoingAppending = false;
        screen().endAppendVisible = false;
    }
    Manip_Files();
    finishPendingInsertOrAppend();
    const bool takeEnded = state_.Recordingstatus;
    normalise(state_);
    if (takeEnded) {
        // From the first Stop on, the periodic save writes the file itself.
        state_.JustOpened = true;
        state_.FileChanged = true;
        timSave.setEnabled(true);
    }
    SetParam(state_.WhichBut);
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setSelectionStart(AudioEditor1.Length());
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    setBar(BarAfter::CaseStop);
    setRecordButtons(true);
    screen().positionSliderEnabled = true;
    AdjustNCTTimeDisplay();
    screen().audioFrameEnabled = true;
    screen().frameSpeakerEnabled = true;
    changed();
    // Without crash protection a Stop never saves a changed file.
    if (!state_.FileSaveAtStop && state_.FileChanged) return;
    SaveFile();
}

void Dictation::CasePlay(const std::string& from) {
    trace("File Play: " + state_.Filename + " from " + from);
    state_.PausedRecording = false;
    if (state_.Recordingstatus) {
        refusedWhileRecording("CasePlay");
        state_.MYDirty = true;
        return;
    }
    if (!state_.flgfileOpen1) return;
    if (!timCurPos.Enabled()) timCurPos.setEnabled(true);
    state_.flgPlay = true;
    state_.WhichBut = "Play";
    AdjustNCTTimeDisplay();
    if (auto playing = AudioEditor1.Play(engine::kPlayToEnd); !playing)
        trace("Play: " + playing.error());
    if (AudioEditor1.State() != static_cast<int>(engine::EditorState::Playing)) {
        // Nothing to play from here (an empty file, the cursor at its end): the
        // screen must not say the file plays.
        state_.flgPlay = false;
        state_.WhichBut = "Stop";
        SetParam(state_.WhichBut);
        changed();
        return;
    }
    screen().mnuScanConvertEnabled = false;
    refreshSeconds();
    normalise(state_);
    SetParam(state_.WhichBut);
    setBar(BarAfter::CasePlayOrOpen);
    screen().audioFrameEnabled = false;
    screen().frameSpeakerEnabled = false;
    changed();
}

void Dictation::CasePlayLooped() {
    trace("File Play Looped: " + state_.Filename);
    if (refusedWhileRecording("CasePlayLooped")) return;
    if (!state_.flgfileOpen1 || state_.flgPlay) return;
    state_.flgPlay = true;
    state_.WhichBut = "PlayLooped";
    if (auto playing = AudioEditor1.Play(engine::kPlayLooped); !playing) trace(playing.error());
    normalise(state_);
    SetParam(state_.WhichBut);
}

void Dictation::CasePlayToEnd() {
    trace("File Play To End: " + state_.Filename);
    if (refusedWhileRecording("CasePlayToEnd")) return;
    if (!state_.flgfileOpen1 || state_.flgPlay) return;
    state_.flgPlay = true;
    state_.WhichBut = "PlayToEnd";
    if (auto playing = AudioEditor1.Play(engine::kPlayToEnd); !playing) trace(playing.error());
    normalise(state_);
    SetParam(state_.WhichBut);
}

void Dictation::CasePause(const std::string& from) {
    trace("File Pause: " + state_.Filename + " from " + from);
    if (!state_.flgfileOpen1) return;
    state_.WhichBut = "Pause";
    AudioEditor1.Pause();
    normalise(state_);
    SetParam(state_.WhichBut);
    AudioEditor1.setSelectionStart(AudioEditor1.CursorPosition());
}

void Dictation::CaseContinue() {
    trace("File Continue: " + state_.Filename);
    // After a Stop there is nothing to go on with.
    if (!state_.flgfileOpen1 || state_.WhichBut == "Stop") return;
    state_.WhichBut = "Continue";
    AudioEditor1.Continue();
    normalise(state_);
    SetParam(state_.WhichBut);
}

void Dictation::CasePauseStop() {
    trace("File Pause Stop: " + state_.Filename);
    state_.PausedRecording = true;
    CaseStop();
    CaseEnd();
}

void Dictation::CaseBeginning() {
    if (refusedWhileRecording("CaseBeginning")) return;
    if (!state_.flgfileOpen1) return;
    trace("File Add recording to beginning: " + state_.Filename);
    timCurPos.setEnabled(true);
    AudioEditor1.Stop();
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(0);
    AudioEditor1.setSelectionEnd(0);
    AdjustNCTTimeDisplay();
    state_.Recordingstatus = false;
    state_.JustOpened = true;
    state_.WhichBut = "BEG";
    SetParam(state_.WhichBut);
    setBar(BarAfter::CaseBeginning);
    screen().insertEnabled = false;
    screen().overwriteEnabled = false;
    changed();
}

void Dictation::CaseEnd() {
    if (!state_.flgfileOpen1) return;
    trace("File End: " + state_.Filename);
    AudioEditor1.Stop();
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(AudioEditor1.Length());
    AudioEditor1.setSelectionEnd(AudioEditor1.Length());
    screen().positionPercent = 100;
    normalise(state_);
    SetParam(state_.WhichBut);
    if (!state_.Recordingstatus) {
        setBar(BarAfter::CaseEnd);
        screen().insertEnabled = false;
        screen().overwriteEnabled = false;
        if (state_.iCurSecond == state_.iTotalSecFile) screen().endOfLetterEnabled = true;
    }
    changed();
}

void Dictation::CaseStepForward() {
    if (!state_.flgfileOpen1) return;
    if (refusedWhileRecording("CaseStepForward")) return;
    trace("File Step Forward: " + state_.Filename);
    StepForward();
    normalise(state_);
    SetParam(state_.WhichBut);
}

void Dictation::CaseStepBackward() {
    if (!state_.flgfileOpen1) return;
    if (refusedWhileRecording("CaseStepBackward")) return;
    trace("File Step Backward: " + state_.Filename);
    StepBackward();
    normalise(state_);
    SetParam(state_.WhichBut);
}

}  // namespace ovd::dictation
