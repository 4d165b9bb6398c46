#pragma once
// One companion sender per data folder. The companion holds a lock on a file in
// the data folder for as long as it runs, with its process number written in the
// file; the station and `orvane-autosend --stop` look at that lock without taking
// it, so a look never keeps a companion that is starting from taking its lock.

#include <optional>
#include <string>

#include "platform/result.h"

namespace ovd::delivery {

inline constexpr const char* kCompanionLockFile = "orvane-autosend.lock";

class CompanionLock {
  public:
    // The lock, or a failure saying which process holds it.
    static platform::Result<CompanionLock> take(const std::string& dataFolder);

    CompanionLock(CompanionLock&& other) noexcept;
    CompanionLock& operator=(CompanionLock&& other) noexcept;
    CompanionLock(const CompanionLock&) = delete;
    CompanionLock& operator=(const CompanionLock&) = delete;
    ~CompanionLock();

  private:
    explicit CompanionLock(int fd) : fd_(fd) {}
    int fd_ = -1;
};

// The process number of the companion running on the data folder; nothing when none runs.
std::optional<long> runningCompanion(const std::string& dataFolder);

// Asks the companion running on the data folder to end (SIGTERM: it stops a
// transfer in its tracks and leaves the file staged) and waits up to `timeoutMs`
// for it to be gone. Success also when none was running.
platform::Result<void> stopCompanion(const std::string& dataFolder, int timeoutMs);

}  // namespace ovd::delivery
