// A file named from outside the station: the name on this process's command line,
// or one a second process handed over. The first file of the run is opened by
// tmCommand; after a letter dictated for a named file, handOffLookTimer looks for the next
// hand-off and handOffWaitTimer takes it once no file is open, so a dictation under way is
// never interrupted.

#include <filesystem>

#include "dictation/dictation.h"
#include "dictation/hand_off.h"
#include "platform/files.h"

namespace ovd::dictation {

namespace {
// The name a file dictated while no name was known yet carries: "Temp.wav" in the recordings.
constexpr const char* kTemporaryStem = "Temp";

std::string extensionOf(const std::string& path) {
    const std::string name = platform::withoutFolder(path);
    const auto dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}
}  // namespace

void Dictation::tmCommand_Timer() {
    tmCommand.setEnabled(false);
    ResetRecorderState();
    if (state.flgfileOpen1 || !state.Filename.empty() || state.FileChanged) return;
    state.FirstSwitchPosition = "FirstTime";
    if (state.CommandFileName.empty()) {
        trace(" Calling Case New from tmCommand_Timer ");
        CaseNew();
        return;
    }
    // The name given at start is taken like a handed-over one: a station started for
    // a file dictates into that file.
    std::string named = state.CommandFileName;
    if (platform::folderOf(named).empty()) {
        named = platform::joinPath(config_.record.CaptureFilePath.toText(), named);
    }
    if (platform::fileExists(named)) {
        // An existing letter is opened to be listened to, not replaced.
        state.PRERECORDED = true;
        state.commandLine.DIDDOCOMMANDLINE = true;
        state.FromCurrentList = true;
        state.Filename = named;
        CaseOpen();
        return;
    }
    const std::string folder = platform::folderOf(named);
    platform::createFolder(folder);
    config_.record.CaptureFilePath = folder;
    config_.WriteConfig();
    state.CommandFileName = platform::joinPath(folder, platform::baseNameOf(named));
    CaseNewFileName();
    state.commandLine.DIDDOCOMMANDLINE = true;
}

void Dictation::handOffLook_Timer() {
    handOffLookTimer.setEnabled(false);
    trace("Timer 28 Looking for ovtitemp.ini");
    if (const auto handOff = readHandOff(dataFolder_)) {
        state.NextString = handOff->NextString;
        state.commandLine.MyInstance = handOff->MyInstance;
        handOffWaitTimer.setEnabled(true);
        return;
    }
    // No name waits: dictation starts at once under the temporary name, and the
    // name that comes later is put on it when the take starts or the letter ends.
    startedAt_ = loop_.now();
    state.CommandFileName =
        platform::joinPath(config_.record.CaptureFilePath.toText(), kTemporaryStem);
    CaseNewFileName();
    state.commandLine.DIDDOCOMMANDLINE = true;
}

void Dictation::handOffWait_Timer() {
    if (state.flgfileOpen1) return;
    handOffWaitTimer.setEnabled(false);
    state.commandLine.SecondCommand = true;
    state.commandLine.CommandLineLaunched = false;
    state.CommandFileName = state.NextString;
    state.commandLine.MyCommandString = state.NextString;
    deleteHandOff(dataFolder_);
    tmCommand.setEnabled(true);
}

bool Dictation::renameToHandedOffName(const std::string& moment) {
    if (!state.commandLine.DIDDOCOMMANDLINE) return false;
    if (platform::withoutFolder(state.Filename).find(std::string(kTemporaryStem) + ".") ==
        std::string::npos) {
        return false;
    }
    const auto handOff = readHandOff(dataFolder_);
    if (!handOff) return false;
    handOffLookTimer.setEnabled(false);
    std::string folder = platform::folderOf(handOff->NextString);
    if (folder.empty()) folder = platform::folderOf(state.Filename);
    const std::string stem = platform::joinPath(folder, platform::baseNameOf(handOff->NextString));
    const std::string renamed = stem + "." + extensionOf(state.Filename);
    if (platform::fileExists(state.Filename)) {
        platform::createFolder(folder);
        std::error_code error;
        std::filesystem::rename(state.Filename, renamed, error);
        if (error) {
            // The take goes on under the temporary name; the hand-off stays for the next try.
            trace("Next File Name = " + renamed + " could not be given: " + error.message());
            return false;
        }
    }
    state.Filename = renamed;
    state.CommandFileName = stem;
    trace("Next File Name = " + renamed + " via command line & renamed at " + moment + " time.");
    deleteHandOff(dataFolder_);
    state.NextString.clear();
    state.commandLine.MyInstance.clear();
    showFileName();
    changed();
    return true;
}

}  // namespace ovd::dictation
