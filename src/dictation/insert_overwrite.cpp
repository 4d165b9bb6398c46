// Adding audio in the middle of a file: comments at the beginning, an insert
// or an overwrite at the current position. None records into the file itself;
// the take goes into the scratch editor and is pasted in when it ends, so the
// file under dictation is never half changed.

#include "dictation/dictation.h"

namespace ovd::dictation {

namespace {

constexpr int kRecording = static_cast<int>(engine::EditorState::Recording);

enum class ScratchKind { Beginning, Insert, Overwrite };

}  // namespace

bool Dictation::deskUnitAllowsTake() {
    if (view.Label40 == kDeskUnitMissing || view.Lbl4Pos == kSwitchDictate) return true;
    // The author is asked (on the unit's display) to move the switch; the
    // message is cleared as soon as it is set.
    state.StatusMessage = kMoveSwitchToRecord;
    state.WAITINGFORButtonSelected = "DICTATE";
    state.Recordingstatus = false;
    state.StatusMessage.clear();
    return false;
}

void Dictation::addToBeginning() {
    trace("Add Comments To Beginning: " + state.Filename);
    // A second press while a take runs would leave that take recording unseen.
    if (AudioEditor1.State() == kRecording || scratchTakeRuns()) return;
    if (!deskUnitAllowsTake()) return;
    if (view.ctSlide1 != 0) {
        if (refusedWhileRecording("Command1")) return;
        CaseBeginning();
    } else if (state.flgfileOpen1) {
        if (refusedWhileRecording("Command1-2")) return;
    } else {
        refusedWhileRecording("Command1-3");
        return;
    }
    if (!state.flgfileOpen1) return;
    state.SaveCurrentPosition = 0;
    state.Recordingstatus = true;
    state.DoingInsertUpdate = true;
    beginScratchTake(0, true);
}

void Dictation::insertAtCursor() {
    trace("Insert Audio at Current Position: " + state.Filename);
    if (scratchTakeRuns()) return;  // the take in progress ends by its own button
    if (AudioEditor1.State() == kRecording) {
        state.DoingInsertUpdate = false;
        return;
    }
    view.Lbl4Pos = kSwitchDictate;
    hits.HandSetHitNotHit = true;
    state.HitOnce = true;
    state.HitTwice = false;
    view.lblMode = "Insert Mode";
    PlayPrompt("beep2.wav");
    if (!deskUnitAllowsTake()) return;
    if (!positionAllowsScratchTake()) return;
    if (refusedWhileRecording("Command2")) return;
    if (!state.flgfileOpen1) return;
    state.SaveCurrentPosition = AudioEditor1.CursorPosition();
    state.Recordingstatus = true;
    state.DoingInsertUpdate = true;
    beginScratchTake(state.SaveCurrentPosition, true);
    state.HitOnce = false;
    state.HitTwice = true;
    PlayPrompt("beep2.wav");
}

void Dictation::overwriteAtCursor() {
    trace("Overwrite Audio at Current Position: " + state.Filename);
    if (AudioEditor1.State() == kRecording || scratchTakeRuns()) return;
    view.Lbl4Pos = kSwitchDictate;
    if (!deskUnitAllowsTake()) return;
    if (!positionAllowsScratchTake()) {
        state.OverWriteFile = false;
        return;
    }
    if (refusedWhileRecording("cmdOVR")) return;
    if (!state.flgfileOpen1) return;
    state.SaveCurrentPosition = AudioEditor1.CursorPosition();
    state.Recordingstatus = true;
    state.OverWriteFile = true;
    view.lblMode = "Overwrite Mode";
    beginScratchTake(state.SaveCurrentPosition, false);
    state.HitOnce = false;
    state.HitTwice = true;
    PlayPrompt("beep2.wav");
    waitTraced(1, " -61");
    PlayPrompt("beep2.wav");
}

bool Dictation::positionAllowsScratchTake() const {
    // Inserting at either end is no insert: the bar's own record does that.
    const auto cursor = AudioEditor1.CursorPosition();
    return cursor != 0 && cursor != AudioEditor1.Length() && view.ctSlide1 != 100;
}

bool Dictation::scratchTakeRuns() const { return AudioEditor21.State() == kRecording; }

void Dictation::beginScratchTake(engine::SampleCount at, bool showEndButton) {
    timLight.setEnabled(true);
    view.ButtonEx1Visible = showEndButton;
    state.FileChanged = true;
    AudioEditor1.Stop();
    // A playback in progress ends here: the screen shows the take instead.
    state.flgPlay = false;
    state.WhichBut = "Record";
    SetParam(state.WhichBut);
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(at);
    AudioEditor1.setSelectionStart(at);
    AudioEditor1.setSelectionEnd(at);

    // The scratch take is made exactly like the file: same wave format, same
    // devices, same file format.
    AudioEditor21.Close();
    if (auto made = AudioEditor21.New(AudioEditor1.SamplesPerSecond(), AudioEditor1.Channels()); !made) {
        trace("Scratch take could not start: " + made.error());
    }
    AudioEditor21.chooseFormat(AudioEditor1.chosenFormat());
    if (auto recording = AudioEditor21.Record(); !recording) {
        trace("Scratch take could not record: " + recording.error());
    }

    view.formatOptionsEnabled = false;
    timRecord.setEnabled(true);
    timLight.setEnabled(true);
    timCurPos.setEnabled(false);
    applyEOLRule();
    view.ctSlide1Enabled = false;
    changed();
}

void Dictation::selectScratchTake() {
    AudioEditor21.Stop();
    AudioEditor21.setSelectionActive(true);
    AudioEditor21.setSelectionStart(0);
    AudioEditor21.setSelectionEnd(AudioEditor21.Length());
}

void Dictation::copyScratchTake() {
    if (auto copied = AudioEditor21.Copy(); !copied) trace("Scratch take copy: " + copied.error());
}

void Dictation::closeScratchTake(const std::string& waitTag) {
    waitTraced(1, waitTag);
    AudioEditor21.Stop();
    AudioEditor21.Close();
    view.ButtonEx1Visible = false;
    view.lblMode.clear();  // the insert or overwrite is over
    applyEOLRule();
    view.ctSlide1Enabled = true;
    timCurPos.setEnabled(true);
    timSave.setEnabled(true);
    timLight.setEnabled(false);
    setLamps(false);
    state.Recordingstatus = false;
    // The times are read from the file once the take is in it: while the take ran
    // they counted the take, and the armed state keeps them from being read again.
    AdjustNCTTimeDisplay();
    view.lblOnAir = "STAND BY";
    // The take is in the file, which stands still until the author moves on.
    state.WhichBut = "Stop";
    SetParam(state.WhichBut);
    changed();
}

void Dictation::endInsert() {
    if (!state.DoingInsertUpdate) return;  // nothing in the scratch take to put in
    trace("End of Insert: " + state.Filename);
    selectScratchTake();
    copyScratchTake();
    // No selection in the file: the paste inserts at the cursor.
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(state.SaveCurrentPosition);
    if (auto pasted = AudioEditor1.Paste(); !pasted) trace("Insert paste: " + pasted.error());
    AudioEditor1.setSelectionStart(0);
    state.DoingInsertUpdate = false;
    closeScratchTake(" -60");
}

void Dictation::OverWriteFileOK(const std::string& from) {
    if (!state.OverWriteFile) return;
    trace("End of Overwrite: " + state.Filename + " from " + from);
    state.PedalsBusy = true;
    selectScratchTake();
    const engine::SampleCount start = state.SaveCurrentPosition;
    if (config_.record.OverwriteToEnd) {
        // Everything behind the start of the overwrite goes.
        AudioEditor1.setSelectionActive(true);
        AudioEditor1.setSelectionStart(start);
        AudioEditor1.setSelectionEnd(AudioEditor1.Length());
        if (auto cut = AudioEditor1.Cut(); !cut) trace("Overwrite cut: " + cut.error());
    }
    // The clipboard is shared with the file, so the take is copied only now,
    // after the cut. The paste replaces exactly as much audio as was spoken.
    copyScratchTake();
    AudioEditor1.setSelectionActive(true);
    AudioEditor1.setSelectionStart(start);
    AudioEditor1.setSelectionEnd(std::min(start + AudioEditor21.Length(), AudioEditor1.Length()));
    if (auto pasted = AudioEditor1.Paste(); !pasted) trace("Overwrite paste: " + pasted.error());
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(start);
    AudioEditor1.setSelectionEnd(start);
    state.OverWriteFile = false;
    closeScratchTake(" -59");
    CaseEnd();
    state.DoingAppending = false;
    state.PedalsBusy = false;
}

void Dictation::endAppend() {
    trace("End of Append: " + state.Filename);
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setSelectionStart(0);
    CaseStop();
    view.ButtonEx2Visible = false;
    state.DoingAppending = false;
    timCurPos.setEnabled(true);
    timSave.setEnabled(true);
    applyEOLRule();
}

void Dictation::appendAtEnd() {
    if (!state.flgfileOpen1 || refusedWhileRecording("CaseInsertAppend")) return;
    // An append is a take at the end, ended by its own button.
    state.DoingAppending = true;
    view.ButtonEx2Visible = true;
    CaseEnd();
    CaseRecord();
}

void Dictation::ActuallyInsert() {
    if (auto opened = AudioEditor1.Open(state.SaveFileName); !opened) trace(opened.error());
    if (auto pasted = AudioEditor1.PasteFile(state.Filename); !pasted) trace(pasted.error());
}

}  // namespace ovd::dictation
