#pragma once
// Which staged files are ready to go. The station copies a letter into a staging
// folder without holding a lock on the copy, so a file is taken as whole once its
// size and modification time have stayed the same for a settling time; and a file
// some writer still holds under an exclusive lock (the station's own saves take
// one) waits as well. Either rule alone lets a file slip out half written.

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace ovd::autosend {

using SteadyClock = std::chrono::steady_clock;

// What a file looked like when last seen.
struct FileLook {
    std::uint64_t size = 0;
    std::int64_t modifiedNs = 0;
    bool operator==(const FileLook&) const = default;
};

class SettleTracker {
  public:
    explicit SettleTracker(std::chrono::milliseconds settleTime) : settleTime_(settleTime) {}

    // True when the file has looked like this for the whole settling time. A file
    // seen for the first time, or changed since the last look, starts its time again.
    bool settled(const std::string& path, const FileLook& look, SteadyClock::time_point now);
    // Files no longer staged are forgotten.
    void keepOnly(const std::set<std::string>& present);

    [[nodiscard]] std::chrono::milliseconds settleTime() const { return settleTime_; }

  private:
    struct Seen {
        FileLook look;
        SteadyClock::time_point since;
    };
    std::chrono::milliseconds settleTime_;
    std::map<std::string, Seen> seen_;
};

// The look of a file now; false when it is gone or not a regular file.
bool lookAt(const std::string& path, FileLook& look);

// The staged files of one folder, by name, leaving out names that start with a
// dot: the companion's own work files and other programs' passing names.
std::vector<std::string> stagedFilesIn(const std::string& folder);
// The sub-folders of a folder, by name, the same way.
std::vector<std::string> subFoldersOf(const std::string& folder);

}  // namespace ovd::autosend
