#pragma once
// An open file under an exclusive lock that lasts as long as this object does.
// Every "one holder at a time" rule of the station goes through it: the data
// folder's instance lock, a work file while it is written, a sound file while it
// is saved, a serial port while a pedal is on it. The kernel lets go of the lock
// when the descriptor closes, so a crashed holder never keeps a file.

#include <string>

#include "platform/result.h"

namespace ovd::platform {

class LockedFile {
  public:
    // Nothing open and nothing held.
    LockedFile() = default;

    // Takes the lock on an open descriptor without waiting and owns the
    // descriptor from then on. When another holds the file, the descriptor is
    // closed and the failure is the system's words for why.
    static Result<LockedFile> lock(int fd);

    // Opens the file and takes the lock; the failure names the file.
    static Result<LockedFile> open(const std::string& path, int flags, unsigned mode = 0644);

    LockedFile(LockedFile&& other) noexcept;
    LockedFile& operator=(LockedFile&& other) noexcept;
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile();

    [[nodiscard]] bool held() const { return fd_ >= 0; }
    // The descriptor, for reading and writing; it stays this object's.
    [[nodiscard]] int fd() const { return fd_; }
    // Closes the file, which lets go of the lock.
    void release();

  private:
    explicit LockedFile(int fd) : fd_(fd) {}
    int fd_ = -1;
};

}  // namespace ovd::platform
