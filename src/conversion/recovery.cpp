// The recovery of work files: each folder is worked through until nothing is
// left in it. A file with nothing recorded goes; a take becomes a recording of
// the format in force, named by its length, with a copy in BACK; a take that
// can't be converted is kept under another name rather than lost.

#include <filesystem>

#include "conversion/scan_convert.h"
#include "engine/codecs.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "platform/text.h"

namespace ovd::conversion {

namespace {

enum class Temporary { No, Tmp, TmpWav };

Temporary temporaryKind(const std::string& name) {
    const std::string upper = platform::toUpper(name);
    const auto endsWith = [&upper](const std::string& tail) {
        return upper.size() > tail.size() && upper.compare(upper.size() - tail.size(), tail.size(), tail) == 0;
    };
    if (endsWith(".TMP.WAV")) return Temporary::TmpWav;
    if (endsWith(".TMP")) return Temporary::Tmp;
    return Temporary::No;
}

// The name without the temporary's extension.
std::string stemOf(const std::string& name, Temporary kind) {
    const std::size_t cut = kind == Temporary::TmpWav ? 8 : 4;
    return name.substr(0, name.size() - cut);
}

}  // namespace

void ScanConvert::RecoverAll() {
    UserCanceled = false;
    view.Image1 = true;
    changed();
    RecoverFolder(folderFor(FileBox::Temp));
    refreshLists();
    view.Image1 = false;
    if (!UserCanceled) {
        view.Image1 = true;
        changed();
        RecoverFolder(folderFor(FileBox::Back));
        view.Image1 = false;
    }
    parts_.config.record.gNormalShutDown = true;
    parts_.config.WriteConfig();
    view.Label5 = kRecoveredText;
    LogEvent(kRecoveredText);
    if (onRecovered) onRecovered();
}

void ScanConvert::RecoverFolder(const std::string& folder) {
    view.busy = true;
    changed();
    std::string previous;
    bool emptied = false;
    for (;;) {
        // Folders are listed, never entered.
        const std::vector<std::string> files = platform::filesInFolder(folder);
        if (files.empty()) {
            view.Command2Colour = kWorkingColour;
            emptied = true;
            break;
        }
        const std::string& name = files.front();
        if (name == previous) {
            // The file could be neither converted nor moved away: leave it for the next start.
            LogEvent("Error: " + name + " can't be removed from " + folder);
            break;
        }
        previous = name;
        if (!recoverFirstFile(platform::joinPath(folder, name))) break;
    }
    view.busy = false;
    changed();
    // The crash state goes only once the work files are all taken care of.
    if (emptied && folder == folderFor(FileBox::Temp)) {
        parts_.config.record.gNormalShutDown = true;
        parts_.config.WriteConfig();
    }
}

bool ScanConvert::recoverFirstFile(const std::string& path) {
    const std::string name = platform::withoutFolder(path);
    std::error_code error;
    // Asked before the size: a station that has just begun a take holds a work file
    // with little more than its header, and that one must not go.
    if (!platform::FileAvailable(path)) {
        // Still written by a running station: it waits for the next start, without a word.
        LogEvent(name + " is in use; left for the next start");
        return false;
    }
    if (platform::fileSize(path).value_or(0) < kMinimumFileBytes) {
        parts_.prompts.showMessage(kEmptyFileDeleted, settings::kProductTitle);
        view.Command2Colour = kWorkingColour;
        std::filesystem::remove(path, error);
        LogEvent("Deleted " + name + ": nothing recorded");
        refreshLists();
        return true;
    }
    const Temporary kind = temporaryKind(name);
    if (kind == Temporary::No) return false;

    view.Command2Colour = kWorkingColour;
    changed();
    const std::int64_t milliseconds = engine::fileLengthMilliseconds(path);
    if (milliseconds < 0) {
        LogEvent("Error: " + name + " can't be read; kept as it is");
        RenameTemporary(path);
        return true;
    }
    const std::int64_t seconds = milliseconds / 1000;
    if (seconds == 0) {
        std::filesystem::remove(path, error);
        LogEvent("Deleted " + name + ": shorter than a second");
        refreshLists();
        return true;
    }
    currentFile_ = path;
    TempName = platform::joinPath(recordings(), stemOf(name, kind) + "-" + std::to_string(seconds));
    view.Label6 = TempName;
    changed();

    const auto made = convertToFormatInForce(path);
    if (!made) {
        if (UserCanceled) return false;
        // The take stays, under a name the next round keeps as a backup.
        RenameTemporary(path);
        return true;
    }
    platform::copyFileOver(*made, platform::joinPath(folderFor(FileBox::Back), platform::withoutFolder(*made)));
    std::filesystem::remove(path, error);
    parts_.log.trace("Recovered " + path + " as " + *made);
    refreshLists();
    return true;
}

void ScanConvert::RenameTemporary(const std::string& path) {
    const std::string name = platform::withoutFolder(path);
    std::error_code error;
    if (temporaryKind(name) == Temporary::TmpWav) {
        const std::string backup = platform::joinPath(folderFor(FileBox::Save), "BACKUP " + name);
        const std::string back = platform::joinPath(folderFor(FileBox::Back), name);
        bool kept = platform::copyFileOver(path, backup);
        if (back != path) kept = platform::copyFileOver(path, back) && kept;
        if (kept) {
            std::filesystem::remove(path, error);
            LogEvent("Kept " + name + " as " + backup);
        }
    } else {
        std::filesystem::rename(path, path + ".wav", error);
        LogEvent("Renamed " + name + " to " + name + ".wav");
    }
    refreshLists();
}

}  // namespace ovd::conversion
