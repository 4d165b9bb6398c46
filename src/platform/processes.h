#pragma once
// Starting the station's companion programs: the folder they are installed in,
// and the child processes themselves, whose end the loop hears of like any other
// event, so that no wait for a program ever holds up the station.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/result.h"

namespace ovd::platform {

// The folder of the running program, where its companions are installed.
std::string executableFolder();

// A program the station started. Its end is heard through the loop (the kernel
// makes a descriptor for the process readable when it ends), and the process is
// reaped then, so that no ended child lingers in the process table.
class ChildProcess {
  public:
    // The exit status, -1 for a program ended by a signal; or why the wait ended
    // without one (the time ran out).
    using OnEnd = std::function<void(const Result<int>& status)>;

    // Starts the program. onEnd runs on the loop once: when it ends, or when it
    // has not ended within `timeout` (it is still reaped when it does). No
    // timeout waits as long as it runs. Destroying the object stops the waiting
    // and leaves the program running.
    static Result<std::unique_ptr<ChildProcess>> start(EventLoop& loop, const std::string& path,
                                                       const std::vector<std::string>& arguments,
                                                       std::optional<Milliseconds> timeout = {},
                                                       OnEnd onEnd = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] int pid() const { return pid_; }
    [[nodiscard]] bool ended() const { return ended_; }

  private:
    ChildProcess(EventLoop& loop, std::string path, int pid, int pidFd, OnEnd onEnd);
    void reap();
    void timedOut(Milliseconds timeout);
    void stopWatching();
    void finish(const Result<int>& status);

    EventLoop& loop_;
    std::string path_;
    int pid_;
    int pidFd_;
    OnEnd onEnd_;
    std::optional<EventLoop::Handle> watch_;
    std::optional<EventLoop::Handle> deadline_;
    bool ended_ = false;
};

}  // namespace ovd::platform
