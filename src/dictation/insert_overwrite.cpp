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
    if (view().statusLine == kDeskUnitMissing || view().switchPosition == kSwitchDictate)
        return true;
    // The author is asked (on the unit's display) to move the switch; the
    // message is cleared as soon as it is set.
    state_.StatusMessage = kMoveSwitchToRecord;
    state_.WAITINGFORButtonSelected = "DICTATE";
    state_.Recordingstatus = false;
    state_.StatusMessage.clear();
    return false;
}

void Dictation::addToBeginning() {
    trace("Add Comments To Beginning: " + state_.Filename);
    // A second press while a take runs would leave that take recording unseen.
    if (AudioEditor1.State() == kRecording || scratchTakeRuns()) return;
    if (!deskUnitAllowsTake()) return;
    if (view().positionPercent != 0) {
        if (refusedWhileRecording("Command1")) return;
        CaseBeginning();
    } else if (state_.flgfileOpen1) {
        if (refusedWhileRecording("Command1-2")) return;
    } else {
        refusedWhileRecording("Command1-3");
        return;
    }
    if (!state_.flgfileOpen1) return;
    state_.SaveCurrentPosition = 0;
    state_.Recordingstatus = true;
    state_.DoingInsertUpdate = true;
    beginScratchTake(0, true);
}

void Dictation::insertAtCursor() {
    trace("Insert Audio at Current Position: " + state_.Filename);
    if (scratchTakeRuns()) return;  // the take in progress ends by its own button
    if (AudioEditor1.State() == kRecording) {
        state_.DoingInsertUpdate = false;
        return;
    }
    screen().switchPosition = kSwitchDictate;
    hits_.HandSetHitNotHit = true;
    state_.HitOnce = true;
    state_.HitTwice = false;
    screen().lblMode = "Insert Mode";
    PlayPrompt("beep2.wav");
    if (!deskUnitAllowsTake()) return;
    if (!positionAllowsScratchTake()) return;
    if (refusedWhileRecording("Command2")) return;
    if (!state_.flgfileOpen1) return;
    state_.SaveCurrentPosition = AudioEditor1.CursorPosition();
    state_.Recordingstatus = true;
    state_.DoingInsertUpdate = true;
    beginScratchTake(state_.SaveCurrentPosition, true);
    state_.HitOnce = false;
    state_.HitTwice = true;
    PlayPrompt("beep2.wav");
}

void Dictation::overwriteAtCursor() {
    trace("Overwrite Audio at Current Position: " + state_.Filename);
    if (AudioEditor1.State() == kRecording || scratchTakeRuns()) return;
    screen().switchPosition = kSwitchDictate;
    if (!deskUnitAllowsTake()) return;
    if (!positionAllowsScratchTake()) {
        state_.OverWriteFile = false;
        return;
    }
    if (refusedWhileRecording("cmdOVR")) return;
    if (!state_.flgfileOpen1) return;
    state_.SaveCurrentPosition = AudioEditor1.CursorPosition();
    state_.Recordingstatus = true;
    state_.OverWriteFile = true;
    screen().lblMode = "Overwrite Mode";
    beginScratchTake(state_.SaveCurrentPosition, false);
    state_.HitOnce = false;
    state_.HitTwice = true;
    PlayPrompt("beep2.wav");
    waitTraced(1, " -61");
    PlayPrompt("beep2.wav");
}

bool Dictation::positionAllowsScratchTake() const {
    // Inserting at either end is no insert: the bar's own record does that.
    const auto cursor = AudioEditor1.CursorPosition();
    return cursor != 0 && cursor != AudioEditor1.Length() && view().positionPercent != 100;
}

bool Dictation::scratchTakeRuns() const { return AudioEditor21.State() == kRecording; }

void Dictation::beginScratchTake(engine::SampleCount at, bool showEndButton) {
    timLight.setEnabled(true);
    screen().endInsertVisible = showEndButton;
    state_.FileChanged = true;
    AudioEditor1.Stop();
    // A playback in progress ends here: the screen shows the take instead.
    state_.flgPlay = false;
    state_.WhichBut = "Record";
    SetParam(state_.WhichBut);
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(at);
    AudioEditor1.setSelectionStart(at);
    AudioEditor1.setSelectionEnd(at);

    // The scratch take is made exactly like the file: same wave format, same
    // devices, same file format.
    AudioEditor21.Close();
    if (auto made = AudioEditor21.New(AudioEditor1.SamplesPerSecond(), AudioEditor1.Channels());
        !made) {
        trace("Scratch take could not start: " + made.error());
    }
    AudioEditor21.chooseFormat(AudioEditor1.chosenFormat());
    if (auto recording = AudioEditor21.Record(); !recording) {
        trace("Scratch take could not record: " + recording.error());
    }

    screen().formatOptionsEnabled = false;
    timRecord.setEnabled(true);
    timLight.setEnabled(true);
    timCurPos.setEnabled(false);
    applyEOLRule();
    screen().positionSliderEnabled = false;
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
    screen().endInsertVisible = false;
    screen().lblMode.clear();  // the insert or overwrite is over
    applyEOLRule();
    screen().positionSliderEnabled = true;
    timCurPos.setEnabled(true);
    timSave.setEnabled(true);
    timLight.setEnabled(false);
    setLamps(false);
    state_.Recordingstatus = false;
    // The times are read from the file once the take is in it: while the take ran
    // they counted the take, and the armed state keeps them from being read again.
    AdjustNCTTimeDisplay();
    screen().lblOnAir = "STAND BY";
    // The take is in the file, which stands still until the author moves on.
    state_.WhichBut = "Stop";
    SetParam(state_.WhichBut);
    changed();
}

void Dictation::endInsert() {
    if (!state_.DoingInsertUpdate) return;  // nothing in the scratch take to put in
    trace("End of Insert: " + state_.Filename);
    selectScratchTake();
    copyScratchTake();
    // No selection in the file: the paste inserts at the cursor.
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setCursorPosition(state_.SaveCurrentPosition);
    if (auto pasted = AudioEditor1.Paste(); !pasted) trace("Insert paste: " + pasted.error());
    AudioEditor1.setSelectionStart(0);
    state_.DoingInsertUpdate = false;
    closeScratchTake(" -60");
}

void Dictation::OverWriteFileOK(const std::string& from) {
    if (!state_.OverWriteFile) return;
    trace("End of Overwrite: " + state_.Filename + " from " + from);
    state_.PedalsBusy = true;
    selectScratchTake();
    const engine::SampleCount start = state_.SaveCurrentPosition;
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
    state_.OverWriteFile = false;
    closeScratchTake(" -59");
    CaseEnd();
    state_.DoingAppending = false;
    state_.PedalsBusy = false;
}

void Dictation::endAppend() {
    trace("End of Append: " + state_.Filename);
    AudioEditor1.setSelectionActive(false);
    AudioEditor1.setSelectionStart(0);
    CaseStop();
    screen().endAppendVisible = false;
    state_.DoingAppending = false;
    timCurPos.setEnabled(true);
    timSave.setEnabled(true);
    applyEOLRule();
}

void Dictation::appendAtEnd() {
    if (!state_.flgfileOpen1 || refusedWhileRecording("CaseInsertAppend")) return;
    // An append is a take at the end, ended by its own button.
    state_.DoingAppending = true;
    screen().endAppendVisible = true;
    CaseEnd();
    CaseRecord();
}

void Dictation::ActuallyInsert() {
    if (auto opened = AudioEditor1.Open(state_.SaveFileName); !opened) trace(opened.error());
    if (auto pasted = AudioEditor1.PasteFile(state_.Filename); !pasted) trace(pasted.error());
}

}  // namespace ovd::dictation
