#pragma once
// One station per data folder: the first process takes a lock on a file there
// and keeps it until it ends (the kernel lets go of it even after a crash), so
// a second process started on the same folder knows at once that one is running.

#include <optional>
#include <string>
#include <utility>

#include "platform/locked_file.h"

namespace ovd::platform {

class InstanceLock {
  public:
    // The lock, or nothing when another process holds it. A folder where the
    // lock file can't be made counts as free: the station runs rather than refuse.
    static std::optional<InstanceLock> take(const std::string& dataFolder);
    // The process number of the station holding the folder's lock, as it wrote it
    // there; nothing when it can't be told.
    static std::optional<long> holder(const std::string& dataFolder);

  private:
    explicit InstanceLock(LockedFile file) : file_(std::move(file)) {}
    LockedFile file_;
};

// This process's number, which a second instance writes beside the name it hands over.
std::string thisProcessNumber();

}  // namespace ovd::platform
