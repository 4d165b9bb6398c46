#include "platform/instance_lock.h"

#include <fcntl.h>
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
    if (fd < 0) return InstanceLock(LockedFile());
    auto locked = LockedFile::lock(fd);
    if (!locked) return std::nullopt;
    // The holder's number, so that a second start can tell the user which process to end.
    const std::string number = std::to_string(::getpid()) + "\n";
    if (::ftruncate(locked->fd(), 0) == 0)
        (void)writeAll(locked->fd(), number.data(), number.size());
    return InstanceLock(std::move(*locked));
}

std::optional<long> InstanceLock::holder(const std::string& dataFolder) {
    const auto text = readWholeFile(joinPath(dataFolder, kLockFileName));
    if (!text || text->empty()) return std::nullopt;
    char* end = nullptr;
    const long number = std::strtol(text->c_str(), &end, 10);
    if (number <= 0 || end == text->c_str()) return std::nullopt;
    return number;
}

std::string thisProcessNumber() { return std::to_string(::getpid()); }

}  // namespace ovd::platform
