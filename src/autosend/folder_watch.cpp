#include "autosend/folder_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "autosend/staged_files.h"
#include "platform/files.h"

namespace ovd::autosend {

namespace {
// A file written and closed, moved in, or made (a folder made is watched too).
constexpr std::uint32_t kEvents =
    IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_ATTRIB | IN_ONLYDIR | IN_EXCL_UNLINK;
}  // namespace

FolderWatch::FolderWatch(platform::EventLoop& loop, std::function<void()> changed)
    : loop_(loop), changed_(std::move(changed)) {
    fd_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd_ >= 0) {
        watch_ = loop_.watchFd(fd_, platform::FdEvent::Readable, [this] { onReadable(); });
    }
}

FolderWatch::~FolderWatch() {
    if (watch_) loop_.unwatchFd(*watch_);
    if (fd_ >= 0) ::close(fd_);
}

platform::Result<void> FolderWatch::watchTree(const std::string& folder) {
    if (fd_ < 0) return platform::failure("inotify is not available");
    const int wd = ::inotify_add_watch(fd_, folder.c_str(), kEvents);
    if (wd < 0) return platform::systemFailure("can't watch " + folder, errno);
    folders_[wd] = folder;
    for (const std::string& sub : subFoldersOf(folder)) watchOne(platform::joinPath(folder, sub));
    return {};
}

void FolderWatch::watchOne(const std::string& folder) {
    // A folder that can't be watched is still looked through at every rescan.
    (void)watchTree(folder);
}

void FolderWatch::onReadable() {
    alignas(inotify_event) char buffer[16 * 1024];
    bool any = false;
    for (;;) {
        const ssize_t length = ::read(fd_, buffer, sizeof buffer);
        if (length <= 0) break;
        for (ssize_t offset = 0; offset < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
            offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            if ((event->mask & IN_IGNORED) != 0) {
                folders_.erase(event->wd);
                continue;
            }
            any = true;
            const auto folder = folders_.find(event->wd);
            if ((event->mask & IN_ISDIR) != 0 && event->len > 0 && folder != folders_.end() &&
                event->name[0] != '.') {
                watchOne(platform::joinPath(folder->second, event->name));
            }
        }
    }
    if (any && changed_) changed_();
}

}  // namespace ovd::autosend
