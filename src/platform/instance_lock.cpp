#include "platform/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <utility>

#include "platform/files.h"

namespace ovd::platform {

namespace {
constexpr const char* kLockFileName = "orvane-voice-desk.lock";
}

std::optional<InstanceLock> InstanceLock::take(const std::string& dataFolder) {
    const std::string path = joinPath(dataFolder, kLockFileName);
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) return InstanceLock(-1);
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        return std::nullopt;
    }
    return InstanceLock(fd);
}

InstanceLock::InstanceLock(InstanceLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

InstanceLock& InstanceLock::operator=(InstanceLock&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

InstanceLock::~InstanceLock() {
    if (fd_ >= 0) ::close(fd_);
}

std::string thisProcessNumber() { return std::to_string(::getpid()); }

}  // namespace ovd::platform
