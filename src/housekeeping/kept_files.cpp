#include "housekeeping/kept_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::housekeeping {

namespace {

// What a save leaves beside the letter while it writes it.
constexpr std::string_view kSaveUnderWaySuffix = ".partial";

bool endsWith(const std::string& text, std::string_view suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

bool contains(const std::vector<std::pair<dev_t, ino_t>>& list, const struct stat& info) {
    return std::find(list.begin(), list.end(), std::pair{info.st_dev, info.st_ino}) != list.end();
}

}  // namespace

std::vector<std::string> recoveryFolders(const std::string& recordingsFolder) {
    if (recordingsFolder.empty()) return {};
    return {platform::joinPath(recordingsFolder, "Temp"),
            platform::joinPath(recordingsFolder, "BACK")};
}

KeptFiles::KeptFiles(const KeptPaths& paths) {
    struct stat info {};
    for (const std::string& file : paths.files) {
        if (!file.empty() && ::stat(file.c_str(), &info) == 0)
            files_.emplace_back(info.st_dev, info.st_ino);
    }
    for (const std::string& folder : paths.folders) {
        if (!folder.empty() && ::stat(folder.c_str(), &info) == 0)
            folders_.emplace_back(info.st_dev, info.st_ino);
    }
}

bool KeptFiles::keepsFile(const struct stat& file, const std::string& name) const {
    // A letter half written by a save is the save's until it is moved into place.
    return contains(files_, file) || endsWith(name, kSaveUnderWaySuffix);
}

bool KeptFiles::keepsFolder(const struct stat& folder) const { return contains(folders_, folder); }

platform::Result<Removal> removeFileSeen(const std::string& path, const struct stat& seen) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return platform::systemFailure("Can't open " + path, errno);
    Removal outcome = Removal::Deleted;
    struct stat now {};
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        ::close(fd);
        if (error == EWOULDBLOCK) return Removal::InUse;
        return platform::systemFailure("Can't lock " + path, error);
    }
    if (::fstat(fd, &now) != 0 || now.st_dev != seen.st_dev || now.st_ino != seen.st_ino) {
        outcome = Removal::Replaced;
    } else if (::unlink(path.c_str()) != 0) {
        const int error = errno;
        ::close(fd);
        return platform::systemFailure("Can't delete " + path, error);
    }
    ::close(fd);  // lets go of the lock
    return outcome;
}

}  // namespace ovd::housekeeping
