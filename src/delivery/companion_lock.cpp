#include "delivery/companion_lock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::delivery {

namespace {

constexpr const char* kProgramName = "orvane-autosend";

std::string lockPath(const std::string& dataFolder) {
    return platform::joinPath(dataFolder, kCompanionLockFile);
}

// A lock on the whole file that belongs to the open file rather than the process:
// a look at it with F_OFD_GETLK from the same process sees it too.
struct flock wholeFile(short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return lock;
}

bool lockedByAnother(const std::string& dataFolder) {
    const int fd = ::open(lockPath(dataFolder).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    struct flock probe = wholeFile(F_WRLCK);
    const bool held = ::fcntl(fd, F_OFD_GETLK, &probe) == 0 && probe.l_type != F_UNLCK;
    ::close(fd);
    return held;
}

std::optional<long> numberInLockFile(const std::string& dataFolder) {
    const auto text = platform::readWholeFile(lockPath(dataFolder));
    if (!text) return std::nullopt;
    char* end = nullptr;
    const long number = std::strtol((*text).c_str(), &end, 10);
    if (number <= 0 || end == (*text).c_str()) return std::nullopt;
    return number;
}

// The number must still be a companion's: a number written by one that has since
// ended may belong to another program now.
bool isCompanion(long pid) {
    const auto name = platform::readWholeFile("/proc/" + std::to_string(pid) + "/comm");
    return name && platform::trim(*name) == kProgramName;
}

}  // namespace

platform::Result<CompanionLock> CompanionLock::take(const std::string& dataFolder) {
    const std::string path = lockPath(dataFolder);
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return platform::systemFailure("can't open " + path, errno);
    struct flock lock = wholeFile(F_WRLCK);
    if (::fcntl(fd, F_OFD_SETLK, &lock) != 0) {
        ::close(fd);
        const auto holder = runningCompanion(dataFolder);
        return platform::failure(std::string(kProgramName) + " already runs on " + dataFolder +
                                 (holder ? " (process " + std::to_string(*holder) + ")" : ""));
    }
    const std::string number = std::to_string(::getpid()) + "\n";
    // A number that can't be written only keeps --stop from finding this companion;
    // the lock still keeps a second one out.
    if (::ftruncate(fd, 0) == 0) (void)platform::writeAll(fd, number.data(), number.size());
    return CompanionLock(fd);
}

CompanionLock::CompanionLock(CompanionLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

CompanionLock& CompanionLock::operator=(CompanionLock&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

CompanionLock::~CompanionLock() {
    if (fd_ >= 0) ::close(fd_);
}

std::optional<long> runningCompanion(const std::string& dataFolder) {
    if (!lockedByAnother(dataFolder)) return std::nullopt;
    const auto number = numberInLockFile(dataFolder);
    if (!number || !isCompanion(*number)) return std::nullopt;
    return number;
}

platform::Result<void> stopCompanion(const std::string& dataFolder, int timeoutMs) {
    const auto pid = runningCompanion(dataFolder);
    if (!pid) return {};
    // The process's own descriptor: its end is waited for without polling, and a
    // number reused meanwhile can't be mistaken for it.
    const int pidFd = static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(*pid), 0));
    if (pidFd < 0)
        return platform::systemFailure("can't reach process " + std::to_string(*pid), errno);
    if (::syscall(SYS_pidfd_send_signal, pidFd, SIGTERM, nullptr, 0) != 0) {
        const int error = errno;
        ::close(pidFd);
        if (error == ESRCH) return {};
        return platform::systemFailure("can't stop process " + std::to_string(*pid), error);
    }
    pollfd ended{pidFd, POLLIN, 0};
    const int ready = ::poll(&ended, 1, timeoutMs);
    ::close(pidFd);
    if (ready <= 0) {
        return platform::failure(std::string(kProgramName) + " (process " + std::to_string(*pid) +
                                 ") did not end within " + std::to_string(timeoutMs) + " ms");
    }
    return {};
}

}  // namespace ovd::delivery
