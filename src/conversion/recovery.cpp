// The recovery of work files: each folder is worked through until nothing is
// left in it. A file with nothing recorded goes; a take becomes a recording of
// the format in force, named by its length, with a copy in BACK; a take that
// can't be converted is kept under another name rather than lost. A take cut
// off by a crash is recovered short of at most its last quarter of a second:
// the work file holds everything older than that.

#include <filesystem>

#include "conversion/letter_notes.h"
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
        return upper.size() > tail.size() &&
               upper.compare(upper.size() - tail.size(), tail.size(), tail) == 0;
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

// The longest name a folder entry can have; a recovered name must leave room for
// its length, its extension and the "_DSP" of a speech file.
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kRoomForLengthAndExtension = 24;

bool removed(const std::string& path) {
    std::error_code error;
    std::filesystem::remove(path, error);
    return !platform::fileExists(path);
}

}  // namespace

bool anyWorkFileIn(const std::string& folder) {
    for (const std::string& name : platform::filesInFolder(folder)) {
        if (temporaryKind(name) != Temporary::No) return true;
    }
    return false;
}

void ScanConvert::clearInterruptedSaves() {
    const std::string temp = folderFor(FileBox::Temp);
    for (const std::string& name : platform::filesInFolder(temp)) {
        const std::string workFile = platform::joinPath(temp, name);
        const auto letter = letterOfWorkFile(workFile);
        // A take still held belongs to a save that may be under way right now.
        if (!letter || !platform::FileAvailable(workFile)) continue;
        // What a save cut short left is never a letter: the take it was made from is here.
        const std::string partial = *letter + kPartialSuffix;
        if (platform::fileExists(partial) && removed(partial))
            LogEvent("Deleted " + partial + ": an interrupted save");
        if (platform::fileExists(*letter) && platform::fileSize(*letter).valueOr(1) == 0 &&
            removed(*letter)) {
            LogEvent("Deleted " + *letter + ": an interrupted save left it empty");
        }
    }
    pruneLetterNotes(temp);
}

std::string ScanConvert::recoveredStem(const std::string& workFile,
                                       const std::string& fallback) const {
    const auto letter = letterOfWorkFile(workFile);
    if (!letter) return fallback;
    const std::string stem = platform::baseNameOf(*letter);
    if (stem.empty() || stem.size() + kRoomForLengthAndExtension > kLongestName) return fallback;
    return stem;
}

void ScanConvert::RecoverAll() {
    UserCanceled = false;
    spaceShort_ = false;
    view.workingSign = true;
    changed();
    clearInterruptedSaves();
    RecoverFolder(folderFor(FileBox::Temp));
    refreshLists();
    view.workingSign = false;
    if (!UserCanceled && !spaceShort_) {
        view.workingSign = true;
        changed();
        RecoverFolder(folderFor(FileBox::Back));
        view.workingSign = false;
    }
    // Takes still waiting (held, or short of room) keep the crash state, so that the
    // next start tries them again by itself.
    parts_.config.record.gNormalShutDown = !anyWorkFileIn(folderFor(FileBox::Temp));
    parts_.config.WriteConfig();
    view.recoveredNotice = kRecoveredText;
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
            view.restoreButtonColour = kWorkingColour;
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
    if (platform::fileSize(path).valueOr(0) < kMinimumFileBytes) {
        parts_.prompts.showMessage(kEmptyFileDeleted, settings::kProductTitle);
        view.restoreButtonColour = kWorkingColour;
        if (!removed(path)) {
            LogEvent("Error: " + name + " can't be deleted");
            return false;
        }
        forgetLetterOfWorkFile(path);
        LogEvent("Deleted " + name + ": nothing recorded");
        refreshLists();
        return true;
    }
    const Temporary kind = temporaryKind(name);
    if (kind == Temporary::No) return false;

    view.restoreButtonColour = kWorkingColour;
    changed();
    const std::int64_t milliseconds = engine::fileLengthMilliseconds(path);
    if (milliseconds < 0) {
        LogEvent("Error: " + name + " can't be read; kept as it is");
        RenameTemporary(path);
        return true;
    }
    const std::int64_t seconds = milliseconds / 1000;
    if (seconds == 0) {
        if (!removed(path)) {
            LogEvent("Error: " + name + " can't be deleted");
            return false;
        }
        forgetLetterOfWorkFile(path);
        LogEvent("Deleted " + name + ": shorter than a second");
        refreshLists();
        return true;
    }
    currentFile_ = path;
    // The letter's own name where the take noted it; an existing letter of that name
    // is never replaced by its recovered take.
    const std::string length = "-" + std::to_string(seconds);
    TempName = platform::joinPath(recordings(), recoveredStem(path, stemOf(name, kind)) + length);
    if (platform::fileExists(TempName + "." + gFormatType_)) {
        TempName = platform::joinPath(recordings(), stemOf(name, kind) + length);
    }
    view.currentFileText = TempName;
    changed();

    const auto made = convertToFormatInForce(path);
    if (!made) {
        if (UserCanceled) return false;
        if (shortOfRoomFor(path)) return false;
        // The take stays, under a name the next round keeps as a backup.
        RenameTemporary(path);
        return true;
    }
    const std::string back =
        platform::joinPath(folderFor(FileBox::Back), platform::withoutFolder(*made));
    // A copy cut short by a full disk is no copy.
    if (!platform::copyFileOver(*made, back).ok()) std::filesystem::remove(back, error);
    std::filesystem::remove(path, error);
    forgetLetterOfWorkFile(path);
    parts_.log.trace("Recovered " + path + " as " + *made);
    refreshLists();
    return true;
}

bool ScanConvert::shortOfRoomFor(const std::string& path) {
    const auto free = platform::freeDiskBytes(recordings());
    const auto needed = platform::fileSize(path).valueOr(0);
    if (!free || *free >= needed) return false;
    // The take is worth more than the round: it waits, untouched, for a disk with room.
    spaceShort_ = true;
    const std::string text =
        "There is not enough disk space to recover " + platform::withoutFolder(path) + " in " +
        recordings() +
        ". The recording stays in the Temp folder and is recovered at the next "
        "start; please free some space on that disk.";
    LogEvent("Error: not enough disk space to recover " + platform::withoutFolder(path));
    parts_.prompts.showMessage(text, settings::kProductTitle, platform::Severity::Warning);
    return true;
}

void ScanConvert::RenameTemporary(const std::string& path) {
    const std::string name = platform::withoutFolder(path);
    std::error_code error;
    if (temporaryKind(name) == Temporary::TmpWav) {
        const std::string backup = platform::joinPath(folderFor(FileBox::Save), "BACKUP " + name);
        const std::string back = platform::joinPath(folderFor(FileBox::Back), name);
        bool kept = platform::copyFileOver(path, backup).ok();
        if (back != path) kept = platform::copyFileOver(path, back).ok() && kept;
        if (kept) {
            std::filesystem::remove(path, error);
            forgetLetterOfWorkFile(path);
            LogEvent("Kept " + name + " as " + backup);
        } else {
            // Copies cut short by a full disk are not kept beside the whole take.
            std::filesystem::remove(backup, error);
            if (back != path) std::filesystem::remove(back, error);
            LogEvent("Error: " + name + " can't be copied; kept as it is");
        }
    } else {
        std::filesystem::rename(path, path + ".wav", error);
        LogEvent("Renamed " + name + " to " + name + ".wav");
    }
    refreshLists();
}

}  // namespace ovd::conversion
