#include "platform/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
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
    // The holder's number, so that a second start can tell the user which process to end.
    const std::string number = std::to_string(::getpid()) + "\n";
    if (::ftruncate(fd, 0) == 0) (void)writeAll(fd, number.data(), number.size());
    return InstanceLock(fd);
}

std::optional<long> InstanceLock::holder(const std::string& dataFolder) {
    const auto text = readWholeFile(joinPath(dataFolder, kLockFileName));
    if (!text || text->empty()) return std::nullopt;
    char* end = nullptr;
    const long number = std::strtol(text->c_str(), &end, 10);
    if (number <= 0 || end == text->c_str()) return std::nullopt;
    return number;
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
