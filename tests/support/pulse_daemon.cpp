#include "support/pulse_daemon.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

extern char** environ;

namespace ovd::testing {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kStartTimeout = std::chrono::seconds(10);
constexpr auto kStopTimeout = std::chrono::seconds(3);

std::optional<std::string> swapEnvironment(const char* name, const std::string& value) {
    const char* old = std::getenv(name);
    std::optional<std::string> saved =
        old != nullptr ? std::optional<std::string>(old) : std::nullopt;
    ::setenv(name, value.c_str(), 1);
    return saved;
}

void restoreEnvironment(const char* name, const std::optional<std::string>& saved) {
    if (saved) {
        ::setenv(name, saved->c_str(), 1);
    } else {
        ::unsetenv(name);
    }
}

// The daemon's environment: ours, less anything that could lead it to the
// machine's own server, session bus or settings, plus its private folders.
std::vector<std::string> daemonEnvironment(const std::string& folder) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('='));
        if (name.rfind("PULSE_", 0) == 0 || name.rfind("XDG_", 0) == 0 ||
            name.rfind("LC_", 0) == 0 || name == "HOME" || name == "LANG" || name == "DISPLAY" ||
            name == "DBUS_SESSION_BUS_ADDRESS") {
            continue;
        }
        result.push_back(text);
    }
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "XDG_CONFIG_HOME"}) {
        result.push_back(std::string(name) + "=" + folder);
    }
    result.push_back("PULSE_STATE_PATH=" + folder + "/state");
    // The monitor's name ("Monitor of ...") is translated by the daemon.
    result.push_back("LC_ALL=C");
    return result;
}

// Looked up before forking: the child may only make plain system calls.
std::string findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string candidate = folder + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return {};
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

}  // namespace

PulseDaemon::PulseDaemon() {
    socket_ = folder_.file("native");
    server_ = "unix:" + socket_;
    start();
    if (!running()) return;
    environmentSet_ = true;
    savedServer_ = swapEnvironment("PULSE_SERVER", server_);
    // The client side too keeps its cookie and settings in the folder, not in our home.
    savedCookie_ = swapEnvironment("PULSE_COOKIE", folder_.file("cookie"));
    std::ofstream(folder_.file("client.conf")) << "autospawn = no\n";
    savedClientConfig_ = swapEnvironment("PULSE_CLIENTCONFIG", folder_.file("client.conf"));
}

PulseDaemon::~PulseDaemon() {
    stop();
    if (environmentSet_) {
        restoreEnvironment("PULSE_SERVER", savedServer_);
        restoreEnvironment("PULSE_COOKIE", savedCookie_);
        restoreEnvironment("PULSE_CLIENTCONFIG", savedClientConfig_);
    }
}

void PulseDaemon::start() {
    const std::string program = findProgram("pulseaudio");
    if (program.empty()) {
        error_ = "pulse daemon: pulseaudio is not installed (the pulseaudio package)";
        return;
    }
    const std::string script = folder_.file("daemon.pa");
    // A null sink renders ahead in blocks as long as its slowest listener allows:
    // two seconds while nobody listens, so a stream opened then would wait for
    // that block to end. A loopback of silence keeps it running at a short
    // latency, as a sound card would; the suspend and resume let it start over at
    // that latency. The socket comes last, so a client finds every device there.
    std::ofstream(script) << "load-module module-null-sink sink_name=" << kSinkName
                          << " sink_properties=device.description=" << kSinkLabel << "\n"
                          << "load-module module-null-source source_name=ovd_test_silence"
                          << " description=" << kSilenceLabel << "\n"
                          << "load-module module-loopback source=ovd_test_silence sink="
                          << kSinkName
                          << " latency_msec=20 source_dont_move=true sink_dont_move=true\n"
                          << "load-module module-sine-source source_name=ovd_test_sine frequency="
                          << static_cast<int>(kSineHz) << "\n"
                          << "set-default-source ovd_test_sine\n"
                          << "suspend-sink " << kSinkName << " 1\n"
                          << "suspend-sink " << kSinkName << " 0\n"
                          << "load-module module-native-protocol-unix socket=" << socket_
                          << " auth-anonymous=1\n";
    std::vector<std::string> arguments{"pulseaudio",
                                       "-n",
                                       "--daemonize=no",
                                       "--exit-idle-time=-1",
                                       "--disallow-exit",
                                       "--use-pid-file=no",
                                       "--system=false",
                                       "--realtime=no",
                                       "--high-priority=no",
                                       "--log-target=stderr",
                                       "-F",
                                       script};
    std::vector<std::string> environment = daemonEnvironment(folder_.path());
    std::vector<char*> argv = pointers(arguments);
    std::vector<char*> envp = pointers(environment);
    const std::string logPath = folder_.file("daemon.log");
    const int logFd = ::open(logPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (logFd < 0) {
        error_ = "pulse daemon: cannot create " + logPath + ": " + std::strerror(errno);
        return;
    }
    const pid_t parent = ::getpid();
    pid_ = ::fork();
    if (pid_ == 0) {
        // A test that crashes takes its daemon with it.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != parent) ::_exit(127);
        ::dup2(logFd, STDOUT_FILENO);
        ::dup2(logFd, STDERR_FILENO);
        ::execve(program.c_str(), argv.data(), envp.data());
        ::_exit(127);
    }
    ::close(logFd);
    if (pid_ < 0) {
        error_ = std::string("pulse daemon: fork failed: ") + std::strerror(errno);
        return;
    }
    const Clock::time_point deadline = Clock::now() + kStartTimeout;
    while (!answers()) {
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            error_ = "pulse daemon: pulseaudio exited during start-up (status " +
                     std::to_string(status) + "); its log:\n" + log();
            return;
        }
        if (Clock::now() > deadline) {
            error_ =
                "pulse daemon: no answer on " + socket_ + " within 10 seconds; its log:\n" + log();
            stop();
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

bool PulseDaemon::answers() const {
    const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (probe < 0) return false;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socket_.c_str(), sizeof address.sun_path - 1);
    const bool connected =
        ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(probe);
    return connected;
}

void PulseDaemon::stop() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGTERM);
    const Clock::time_point deadline = Clock::now() + kStopTimeout;
    while (::waitpid(pid_, nullptr, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    pid_ = -1;
}

std::string PulseDaemon::log() const {
    std::ifstream in(folder_.file("daemon.log"));
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace ovd::testing
