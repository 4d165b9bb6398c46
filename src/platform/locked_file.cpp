#include "platform/locked_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace ovd::platform {

Result<LockedFile> LockedFile::lock(int fd) {
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        ::close(fd);
        return failure(std::system_category().message(error));
    }
    return LockedFile(fd);
}

Result<LockedFile> LockedFile::open(const std::string& path, int flags, unsigned mode) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC, static_cast<mode_t>(mode));
    if (fd < 0) return systemFailure("can't open " + path, errno);
    auto locked = lock(fd);
    if (!locked) return failure(path + ": " + locked.error());
    return locked;
}

LockedFile::LockedFile(LockedFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

LockedFile& LockedFile::operator=(LockedFile&& other) noexcept {
    if (this != &other) {
        release();
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

LockedFile::~LockedFile() { release(); }

void LockedFile::release() {
    if (fd_ >= 0) ::close(std::exchange(fd_, -1));
}

}  // namespace ovd::platform
