#include "platform/processes.h"

#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

extern char** environ;

namespace ovd::platform {

std::string executableFolder() {
    std::error_code error;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : exe.parent_path().string();
}

namespace {

// A descriptor that becomes readable when the process ends; the process stays
// ours to reap. Also good for a child that has ended already and is not reaped.
int openPidFd(pid_t pid) { return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)); }

}  // namespace

Result<std::unique_ptr<ChildProcess>> ChildProcess::start(EventLoop& loop, const std::string& path,
                                                          const std::vector<std::string>& arguments,
                                                          std::optional<Milliseconds> timeout,
                                                          OnEnd onEnd) {
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int status = ::posix_spawn(&pid, path.c_str(), nullptr, nullptr, argv.data(), environ);
    if (status != 0) return systemFailure(path, status);
    const int pidFd = openPidFd(pid);
    if (pidFd < 0) {
        // Started, but its end can't be heard: it runs on unwatched, as it would have anyway.
        return systemFailure(path, errno);
    }
    std::unique_ptr<ChildProcess> child(new ChildProcess(loop, path, pid, pidFd, std::move(onEnd)));
    ChildProcess* self = child.get();
    child->watch_ = loop.watchFd(pidFd, FdEvent::Readable, [self] { self->reap(); });
    if (timeout) {
        child->deadline_ =
            loop.startRepeating(*timeout, [self, limit = *timeout] { self->timedOut(limit); });
    }
    return child;
}

ChildProcess::ChildProcess(EventLoop& loop, std::string path, int pid, int pidFd, OnEnd onEnd)
    : loop_(loop), path_(std::move(path)), pid_(pid), pidFd_(pidFd), onEnd_(std::move(onEnd)) {}

ChildProcess::~ChildProcess() {
    stopWatching();
    ::close(pidFd_);
}

void ChildProcess::reap() {
    int status = 0;
    pid_t done = 0;
    do {
        done = ::waitpid(pid_, &status, WNOHANG);
    } while (done < 0 && errno == EINTR);
    if (done == 0) return;  // readable before the end could be collected: the next turn has it
    stopWatching();
    ended_ = true;
    if (done < 0) {
        finish(systemFailure(path_, errno));
        return;
    }
    finish(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
}

void ChildProcess::timedOut(Milliseconds timeout) {
    // The program is still watched, so that it is reaped whenever it does end.
    if (deadline_) loop_.stopRepeating(*deadline_);
    deadline_.reset();
    finish(failure(path_ + " did not end within " + std::to_string(timeout.count()) + " ms"));
}

void ChildProcess::stopWatching() {
    if (watch_) loop_.unwatchFd(*watch_);
    if (deadline_) loop_.stopRepeating(*deadline_);
    watch_.reset();
    deadline_.reset();
}

void ChildProcess::finish(const Result<int>& status) {
    // Taken out first: the callback runs once, and may destroy this object.
    OnEnd onEnd = std::exchange(onEnd_, {});
    if (onEnd) onEnd(status);
}

}  // namespace ovd::platform
