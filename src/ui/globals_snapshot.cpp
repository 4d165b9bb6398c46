#include "ui/globals_snapshot.h"


namespace ovd::ui {

namespace {

std::string yesNo(bool value) { return value ? "True" : "False"; }

std::vector<settings::NamedValue> dictationGlobals(const dictation::Dictation& d) {
    const dictation::DictationState& s = d.state();
    std::vector<settings::NamedValue> values = {
        {"flgfileOpen1", yesNo(s.flgfileOpen1)},
        {"flgfileOpen2", yesNo(s.flgfileOpen2)},
        {"flgNewToRecord", yesNo(s.flgNewToRecord)},
        {"flgPlay", yesNo(s.flgPlay)},
        {"flgRecord", yesNo(s.flgRecord)},
        {"Recordingstatus", yesNo(s.Recordingstatus)},
        {"RecordingstatusPaused", yesNo(s.RecordingstatusPaused)},
        {"PausedRecording", yesNo(s.PausedRecording)},
        {"FileChanged", yesNo(s.FileChanged)},
        {"RecordedOnce", yesNo(s.RecordedOnce)},
        {"PlayedOnce", yesNo(s.PlayedOnce)},
        {"JustOpened", yesNo(s.JustOpened)},
        {"SavedAlready", yesNo(s.SavedAlready)},
        {"EOLHAPPENED", yesNo(s.EOLHAPPENED)},
        {"UserSelectedNo", yesNo(s.UserSelectedNo)},
        {"DoingInsertUpdate", yesNo(s.DoingInsertUpdate)},
        {"OverWriteFile", yesNo(s.OverWriteFile)},
        {"DoingAppending", yesNo(s.DoingAppending)},
        {"InsertingFile", yesNo(s.InsertingFile)},
        {"AppendingFile", yesNo(s.AppendingFile)},
        {"HitOnce", yesNo(s.HitOnce)},
        {"HitTwice", yesNo(s.HitTwice)},
        {"MYDirty", yesNo(s.MYDirty)},
        {"ManuallyMovedctSlide", yesNo(s.ManuallyMovedctSlide)},
        {"FileSaveAtStop", yesNo(s.FileSaveAtStop)},
        {"SaveRequested", yesNo(s.SaveRequested)},
        {"FileSaveError", yesNo(s.FileSaveError)},
        {"TrueSpeech", yesNo(s.TrueSpeech)},
        {"PriorityOn", yesNo(s.PriorityOn)},
        {"DIDDOCOMMANDLINE", yesNo(s.commandLine.DIDDOCOMMANDLINE)},
        {"CommandLineLaunched", yesNo(s.commandLine.CommandLineLaunched)},
        {"SecondCommand", yesNo(s.commandLine.SecondCommand)},
        {"MyCommandString", s.commandLine.MyCommandString},
        {"MyInstance", s.commandLine.MyInstance},
        {"OnLoad", yesNo(s.OnLoad)},
        {"Imclosing", yesNo(s.Imclosing)},
        {"WhichBut", s.WhichBut},
        {"Filename", s.Filename},
        {"CommandFileName", s.CommandFileName},
        {"CurrentFormatType", s.CurrentFormatType},
        {"NextString", s.NextString},
        {"FirstSwitchPosition", s.FirstSwitchPosition},
        {"SecondSwitchPosition", s.SecondSwitchPosition},
        {"ThirdSwitchPosition", s.ThirdSwitchPosition},
        {"FourthSwitchPosition", s.FourthSwitchPosition},
        {"StatusMessage", s.StatusMessage},
        {"iTotalSecFile", std::to_string(s.iTotalSecFile)},
        {"iCurSecond", std::to_string(s.iCurSecond)},
        {"percentrun", std::to_string(s.percentrun)},
        {"Positionfromslide", std::to_string(s.Positionfromslide)},
        {"SaveCurrentPosition", std::to_string(s.SaveCurrentPosition)},
        {"DictatorSeqNo", std::to_string(s.DictatorSeqNo)},
        {"PreviousNextFile", std::to_string(s.PreviousNextFile)},
    };
    return values;
}

}  // namespace

settings::GlobalsSnapshot snapshotOf(const dictation::Dictation& dictation,
                                     const settings::SettingsRecord& record) {
    settings::GlobalsSnapshot snapshot;
    for (std::size_t i = 0; i < dictation.state().LastThreeNCTTmps.size(); ++i) {
        snapshot.arrays.emplace_back("LastThreeNCTTmps(" + std::to_string(i) + ")",
                                     dictation.state().LastThreeNCTTmps[i]);
    }
    snapshot.timers = settings::timerStates(dictation.timers());
    snapshot.globals = dictationGlobals(dictation);
    for (auto& value : settings::settingsGlobals(record)) snapshot.globals.push_back(std::move(value));
    return snapshot;
}

}  // namespace ovd::ui
