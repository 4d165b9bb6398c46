// The editing and file routines of the transport: copy, cut, paste, undo,
// the save and save-as commands, the factory formats and the timers' off switch.

#include "dictation/dictation.h"

namespace ovd::dictation {

void Dictation::CaseCopy() {
    trace("File Copy: " + state_.Filename);
    if (refusedWhileRecording("CaseCopy")) return;
    state_.WhichBut = "Copy";
    if (auto copied = AudioEditor1.Copy(); !copied) trace(copied.error());
}

void Dictation::CaseCut() {
    trace("File Cut: " + state_.Filename);
    if (refusedWhileRecording("CaseCut")) return;
    state_.WhichBut = "Cut";
    // Cut takes what the author selected on the waveform, and only that: the
    // older cut from the cursor to the end pasted back over what was left, and
    // with nothing selected it put the clipboard's audio in place of the letter.
    if (auto cut = AudioEditor1.Cut(); !cut) {
        trace(cut.error());
        return;
    }
    state_.FileChanged = true;
}

void Dictation::CasePaste() {
    trace("File Paste: " + state_.Filename);
    if (refusedWhileRecording("CasePaste")) return;
    state_.FileChanged = true;
    if (!state_.flgfileOpen1) return;
    state_.WhichBut = "Paste";
    if (auto pasted = AudioEditor1.Paste(); !pasted) trace(pasted.error());
}

void Dictation::CaseUndo() {
    trace("File Undo: " + state_.Filename);
    if (refusedWhileRecording("CaseUndo")) return;
    state_.WhichBut = "Undo";
    if (auto undone = AudioEditor1.Undo(); !undone) {
        trace(undone.error());
        return;
    }
    state_.FileChanged = true;
}

void Dictation::CaseRedo() {
    trace("File Redo: " + state_.Filename);
    if (refusedWhileRecording("CaseRedo")) return;
    state_.WhichBut = "Redo";
    if (auto redone = AudioEditor1.Redo(); !redone) {
        trace(redone.error());
        return;
    }
    state_.FileChanged = true;
}

void Dictation::CaseConvertSampleType(int samplesPerSecond, int channels) {
    trace("File Convert: " + state_.Filename);
    if (refusedWhileRecording("CaseConvertSampleType")) return;
    if (!state_.flgfileOpen1) return;
    state_.WhichBut = "Convert";
    // Listening ends here: the document is rebuilt under the player.
    AudioEditor1.Stop();
    if (auto converted = AudioEditor1.ConvertSampleType(samplesPerSecond, channels); !converted) {
        prompts_.showMessage("The recording could not be converted: " + converted.error(),
                             settings::kProductTitle);
        return;
    }
    engine::TargetFormat target = AudioEditor1.chosenFormat();
    target.sampleRate = AudioEditor1.SamplesPerSecond();
    target.channels = AudioEditor1.Channels();
    AudioEditor1.chooseFormat(target);
    state_.FileChanged = true;
    state_.iTotalSecFile = secondsOf(AudioEditor1.Length());
    screen().statusPanel2 = sizeText();
    changed();
}

void Dictation::CaseInsSilence() {
    trace("File Insert Silence: " + state_.Filename);
    if (refusedWhileRecording("CaseInsSilence")) return;
    state_.WhichBut = "InsSilence";
    // Only the value goes to the view; no silence is inserted, and that stays.
    AudioEditor1.setViewValue(343);
}

void Dictation::CaseInsertAppend() {
    trace("File Insert Append: " + state_.Filename);
    if (refusedWhileRecording("CaseInsertAppend")) return;
    normalise(state_);
    SetParam(state_.WhichBut);
}

void Dictation::CasePlayRec() { trace("File Play Record: " + state_.Filename); }

void Dictation::CaseSave() {
    trace("File Save: " + state_.Filename);
    if (state_.flgfileOpen1) {
        SaveFile();
    } else {
        prompts_.showMessage("Please open a file to be 'Saved'", settings::kProductTitle);
    }
}

void Dictation::CaseSaveAs() {
    trace("File Save As: " + state_.Filename);
    if (AudioEditor1.State() == static_cast<int>(engine::EditorState::Playing)) {
        prompts_.showMessage(
            "Please Stop Play before trying to save the file in a different format",
            settings::kProductTitle);
        return;
    }
    if (!state_.flgfileOpen1) {
        prompts_.showMessage("Please open a file to be 'Saved As'", settings::kProductTitle);
        return;
    }
    if (state_.FileChanged && AudioEditor1.FormatName().empty()) {
        prompts_.showMessage("Sorry  No Information has been recorded. File can not be 'Saved As'",
                             settings::kProductTitle);
        return;
    }
    state_.FileChanged = true;
    SaveFileAs();
    state_.FileChanged = false;
    normalise(state_);
    SetParam(state_.WhichBut);
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
    screen().formatOptionsEnabled = true;
    changed();
}

}  // namespace ovd::dictation
