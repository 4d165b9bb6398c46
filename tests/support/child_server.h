#pragma once
// What the mail fixtures share: a free loopback port, a server program started
// in a process group of its own with its output in a file, and its end by PID.

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace ovd::testing {

// A port nobody listens on right now on 127.0.0.1; the kernel picks it.
int freeLoopbackPort(bool udp = false);

class ChildServer {
  public:
    ChildServer() = default;
    ~ChildServer() { stop(); }
    ChildServer(const ChildServer&) = delete;
    ChildServer& operator=(const ChildServer&) = delete;

    // Starts the program; standard output and error go to `outputFile`.
    bool start(const std::vector<std::string>& arguments, const std::string& outputFile);
    // Polls `ready` until it holds or the time is up; false also when the program ended.
    bool waitUntil(const std::function<bool()>& ready,
                   std::chrono::milliseconds timeout = std::chrono::seconds(10));
    // SIGTERM to the group, SIGKILL after three seconds.
    void stop();
    [[nodiscard]] bool running() const { return pid_ > 0; }
    [[nodiscard]] pid_t pid() const { return pid_; }

  private:
    pid_t pid_ = -1;
};

// A TCP connection to 127.0.0.1:port that reads a greeting starting with `prefix`.
bool greets(int port, const std::string& prefix);
bool acceptsConnections(int port);

// A self-signed certificate for 127.0.0.1 and localhost (PEM files).
bool makeTestCertificate(const std::string& certificateFile, const std::string& keyFile);

std::string readTextFile(const std::string& path);

}  // namespace ovd::testing
