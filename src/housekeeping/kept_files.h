#pragma once
// What no clean may delete, whatever its date: the letter open in the station, the
// work files of a take, a file being saved, and the folders where takes wait to be
// recovered. Files are told apart by what they are on disk (device and inode), so a
// second name for the same file, or a path spelt another way, is kept all the same.

#include <sys/stat.h>
#include <sys/types.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/result.h"

namespace ovd::housekeeping {

struct KeptPaths {
    std::vector<std::string> files;    // kept themselves
    std::vector<std::string> folders;  // kept with everything below them
};

// What the station has in hand at the moment a clean starts.
using KeptPathsSource = std::function<KeptPaths()>;

// The work files' folders of a recordings folder: the takes under way ("Temp", with
// the notes of which letter each belongs to) and the recovered backups ("BACK").
[[nodiscard]] std::vector<std::string> recoveryFolders(const std::string& recordingsFolder);

class KeptFiles {
  public:
    explicit KeptFiles(const KeptPaths& paths);

    [[nodiscard]] bool keepsFile(const struct stat& file, const std::string& name) const;
    [[nodiscard]] bool keepsFolder(const struct stat& folder) const;

  private:
    std::vector<std::pair<dev_t, ino_t>> files_;
    std::vector<std::pair<dev_t, ino_t>> folders_;
};

enum class Removal { Deleted, InUse, Replaced };

// Deletes the regular file found at path, as it was seen by lstat. A file some
// program holds under a lock (a save under way, a take being written) stays, and
// so does one that was replaced since it was seen.
[[nodiscard]] platform::Result<Removal> removeFileSeen(const std::string& path,
                                                       const struct stat& seen);

}  // namespace ovd::housekeeping
