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
    if (state_.flgfileOpen1 || !state_.Filename.empty() || state_.FileChanged) return;
    state_.FirstSwitchPosition = "FirstTime";
    if (state_.CommandFileName.empty()) {
        trace(" Calling Case New from tmCommand_Timer ");
        CaseNew();
        return;
    }
    // The name given at start is taken like a handed-over one: a station started for
    // a file dictates into that file.
    std::string named = state_.CommandFileName;
    if (platform::folderOf(named).empty()) {
        named = platform::joinPath(config_.record.CaptureFilePath.toText(), named);
    }
    if (platform::fileExists(named)) {
        // An existing letter is opened to be listened to, not replaced.
        state_.PRERECORDED = true;
        state_.commandLine.DIDDOCOMMANDLINE = true;
        state_.FromCurrentList = true;
        state_.Filename = named;
        CaseOpen();
        return;
    }
    const std::string folder = platform::folderOf(named);
    if (auto made = platform::createFolder(folder); !made) trace(made.error());
    config_.record.CaptureFilePath = folder;
    config_.WriteConfig();
    state_.CommandFileName = platform::joinPath(folder, platform::baseNameOf(named));
    CaseNewFileName();
    state_.commandLine.DIDDOCOMMANDLINE = true;
}

void Dictation::handOffLook_Timer() {
    handOffLookTimer.setEnabled(false);
    trace("Timer 28 Looking for ovtitemp.ini");
    if (const auto handOff = readHandOff(dataFolder_)) {
        state_.NextString = handOff->NextString;
        state_.commandLine.MyInstance = handOff->MyInstance;
        handOffWaitTimer.setEnabled(true);
        return;
    }
    // No name waits: dictation starts at once under the temporary name, and the
    // name that comes later is put on it when the take starts or the letter ends.
    startedAt_ = loop_.now();
    state_.CommandFileName =
        platform::joinPath(config_.record.CaptureFilePath.toText(), kTemporaryStem);
    CaseNewFileName();
    state_.commandLine.DIDDOCOMMANDLINE = true;
}

void Dictation::handOffWait_Timer() {
    if (state_.flgfileOpen1) return;
    handOffWaitTimer.setEnabled(false);
    state_.commandLine.SecondCommand = true;
    state_.commandLine.CommandLineLaunched = false;
    state_.CommandFileName = state_.NextString;
    state_.commandLine.MyCommandString = state_.NextString;
    deleteHandOff(dataFolder_);
    tmCommand.setEnabled(true);
}

bool Dictation::renameToHandedOffName(const std::string& moment) {
    if (!state_.commandLine.DIDDOCOMMANDLINE) return false;
    if (platform::withoutFolder(state_.Filename).find(std::string(kTemporaryStem) + ".") ==
        std::string::npos) {
        return false;
    }
    const auto handOff = readHandOff(dataFolder_);
    if (!handOff) return false;
    handOffLookTimer.setEnabled(false);
    std::string folder = platform::folderOf(handOff->NextString);
    if (folder.empty()) folder = platform::folderOf(state_.Filename);
    const std::string stem = platform::joinPath(folder, platform::baseNameOf(handOff->NextString));
    const std::string renamed = stem + "." + extensionOf(state_.Filename);
    if (platform::fileExists(state_.Filename)) {
        // A folder that can't be made shows in the rename's failure below.
        (void)platform::createFolder(folder);
        std::error_code error;
        std::filesystem::rename(state_.Filename, renamed, error);
        if (error) {
            // The take goes on under the temporary name; the hand-off stays for the next try.
            trace("Next File Name = " + renamed + " could not be given: " + error.message());
            return false;
        }
        if (auto details = engine::moveDetailsFile(state_.Filename, renamed); !details)
            trace("Letter details not renamed: " + details.error());
    }
    state_.Filename = renamed;
    state_.CommandFileName = stem;
    trace("Next File Name = " + renamed + " via command line & renamed at " + moment + " time.");
    deleteHandOff(dataFolder_);
    state_.NextString.clear();
    state_.commandLine.MyInstance.clear();
    showFileName();
    changed();
    return true;
}

}  // namespace ovd::dictation
