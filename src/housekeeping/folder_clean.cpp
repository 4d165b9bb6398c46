#include "housekeeping/folder_clean.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <vector>

#include "platform/files.h"
#include "platform/result.h"

namespace ovd::housekeeping {

namespace {

struct Entry {
    std::string path;
    std::string name;
    struct stat info {};
};

struct FolderListing {
    std::vector<Entry> folders;
    std::vector<Entry> files;
};

// The folder's sub-folders and regular files, as lstat sees them: a link is neither,
// so a clean never follows one out of the folder it was given.
platform::Result<FolderListing> listFolder(const std::string& folder) {
    std::unique_ptr<DIR, int (*)(DIR*)> dir(::opendir(folder.c_str()), ::closedir);
    if (!dir) return platform::systemFailure("Can't list " + folder, errno);
    FolderListing listing;
    while (const dirent* item = ::readdir(dir.get())) {
        const std::string name = item->d_name;
        if (name == "." || name == "..") continue;
        Entry entry{platform::joinPath(folder, name), name, {}};
        if (::lstat(entry.path.c_str(), &entry.info) != 0) continue;  // gone meanwhile
        if (S_ISDIR(entry.info.st_mode)) {
            listing.folders.push_back(std::move(entry));
        } else if (S_ISREG(entry.info.st_mode)) {
            listing.files.push_back(std::move(entry));
        }
    }
    return listing;
}

// Deletes one dated file by the path it was found at, and notes what became of it.
void removeDated(const Entry& file, const KeptFiles& kept, const char* clean, CleanSummary& summary,
                 const LogLine& log) {
    if (kept.keepsFile(file.info, file.name)) {
        ++summary.kept;
        return;
    }
    const auto removed = removeFileSeen(file.path, file.info);
    if (!removed) {
        ++summary.failed;
        log(std::string(clean) + ": " + removed.error());
        return;
    }
    switch (*removed) {
        case Removal::Deleted:
            ++summary.deleted;
            log(std::string(clean) + " deleted " + file.path + " dated " +
                dateText(localDayOf(file.info.st_mtim.tv_sec)));
            return;
        case Removal::InUse:
            ++summary.inUse;
            log(std::string(clean) + ": " + file.path + " is in use and stays");
            return;
        case Removal::Replaced:
            return;  // a new file of that name: not the one that was dated
    }
}

void scanFolder(const std::string& folder, Day lastDayToDelete, const KeptFiles& kept,
                const LogLine& log, CleanSummary& summary, int depth) {
    // Deeper than any folder tree a person makes: a loop of bind mounts, not recordings.
    constexpr int kDeepestFolder = 64;
    if (depth > kDeepestFolder) return;
    const auto listing = listFolder(folder);
    if (!listing) {
        ++summary.failed;
        log("Drive Scan: " + listing.error());
        return;
    }
    for (const Entry& sub : listing->folders) {
        if (kept.keepsFolder(sub.info)) continue;
        scanFolder(sub.path, lastDayToDelete, kept, log, summary, depth + 1);
    }
    for (const Entry& file : listing->files) {
        if (localDayOf(file.info.st_mtim.tv_sec) > lastDayToDelete) continue;
        // By the path where the file was found: the same name in the top folder is
        // another file, which this one's date says nothing about.
        removeDated(file, kept, "Drive Scan", summary, log);
    }
}

}  // namespace

CleanSummary ScanAndDelete(const std::string& folder, Day lastDayToDelete, const KeptFiles& kept,
                           const LogLine& log) {
    CleanSummary summary;
    struct stat top {};
    if (::stat(folder.c_str(), &top) != 0 || !S_ISDIR(top.st_mode)) {
        log("Drive Scan: " + folder + " is not a folder; nothing deleted");
        return summary;
    }
    if (kept.keepsFolder(top)) {
        log("Drive Scan: " + folder + " holds the station's own files; nothing deleted");
        return summary;
    }
    scanFolder(folder, lastDayToDelete, kept, log, summary, 0);
    return summary;
}

CleanSummary PurgescandirFilesInPath(const std::string& CaptureFilePath, int PurgeDays, Day today,
                                     const KeptFiles& kept, const LogLine& log) {
    CleanSummary summary;
    if (!platform::folderExists(CaptureFilePath)) {
        log("Scheduled deletion: " + CaptureFilePath + " is not there; nothing deleted");
        return summary;
    }
    const auto listing = listFolder(CaptureFilePath);
    if (!listing) {
        ++summary.failed;
        log("Scheduled deletion: " + listing.error());
        return summary;
    }
    if (listing->files.empty()) return summary;
    if (PurgeDays <= 0) {
        log("Scheduled deletion: no age set in this run; nothing deleted");
        return summary;
    }
    // Twice the age set, on purpose: a setting of 30 keeps sixty days of recordings.
    const Day cutOff = today - std::chrono::days(2 * PurgeDays);
    for (const Entry& file : listing->files) {
        if (localDayOf(file.info.st_mtim.tv_sec) >= cutOff) continue;
        removeDated(file, kept, "Scheduled deletion", summary, log);
    }
    return summary;
}

}  // namespace ovd::housekeeping
