#include "support/sshd_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

namespace ovd::testing {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kStartTimeout = std::chrono::seconds(10);
constexpr auto kStopTimeout = std::chrono::seconds(3);
constexpr const char* kProgram = "/usr/sbin/sshd";
// sshd refuses to start without the folder its unprivileged children use.
constexpr const char* kPrivilegeFolder = "/run/sshd";

int freePort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0) return 0;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
        port = ntohs(address.sin_port);
    }
    ::close(fd);
    return port;
}

// Every process below `root`: sshd serves each login from processes of its own.
std::vector<pid_t> descendantsOf(pid_t root) {
    std::vector<std::pair<pid_t, pid_t>> parents;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos) continue;
        std::ifstream stat(entry.path() / "stat");
        std::string line;
        std::getline(stat, line);
        const auto close = line.rfind(')');
        if (close == std::string::npos) continue;
        std::istringstream fields(line.substr(close + 2));
        std::string state;
        pid_t parent = 0;
        fields >> state >> parent;
        parents.emplace_back(static_cast<pid_t>(std::stoi(name)), parent);
    }
    std::vector<pid_t> found{root};
    for (std::size_t i = 0; i < found.size(); ++i) {
        for (const auto& [pid, parent] : parents)
            if (parent == found[i]) found.push_back(pid);
    }
    found.erase(found.begin());
    return found;
}

bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

std::string contentOf(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

}  // namespace

SshdServer::SshdServer() {
    namespace fs = std::filesystem;
    if (::access(kProgram, X_OK) != 0) {
        error_ = "sshd is not installed (scripts/install-deps.sh installs openssh-server)";
        return;
    }
    // Made when missing and left in place: it is the folder the installed package
    // expects, and another test program's sshd may be using it at this moment.
    if (::access(kPrivilegeFolder, F_OK) != 0) ::mkdir(kPrivilegeFolder, 0755);
    fs::create_directories(siteRoot());
    const std::string quiet = " >/dev/null 2>&1";
    if (!run("ssh-keygen -q -t ed25519 -N '' -f '" + folder_.file("host_key") + "'" + quiet) ||
        !run("ssh-keygen -q -t ecdsa -b 256 -m PEM -N '' -f '" + clientKeyFile() + "'" + quiet)) {
        error_ = "ssh-keygen could not make the keys";
        return;
    }
    fs::copy_file(clientKeyFile() + ".pub", folder_.file("authorized_keys"));
    port_ = freePort();
    std::ofstream(knownHostsFile()) << "[127.0.0.1]:" << port_ << " " << hostKeyLine() << "\n";
    std::ofstream(folder_.file("sshd_config"))
        << "Port " << port_ << "\nListenAddress 127.0.0.1\n"
        << "HostKey " << folder_.file("host_key") << "\n"
        << "PidFile " << folder_.file("sshd.pid") << "\n"
        << "AuthorizedKeysFile " << folder_.file("authorized_keys") << "\n"
        << "UsePAM no\nStrictModes no\nPermitRootLogin prohibit-password\nAllowUsers root\n"
        << "PasswordAuthentication no\nKbdInteractiveAuthentication no\n"
        << "PubkeyAuthentication yes\nX11Forwarding no\nAllowTcpForwarding no\n"
        << "Subsystem sftp internal-sftp\n"
        << "ForceCommand internal-sftp -d " << siteRoot() << "\n"
        << "LogLevel VERBOSE\n";
    launch();
}

SshdServer::~SshdServer() { stop(); }

std::string SshdServer::hostKeyLine() const {
    std::istringstream line(contentOf(folder_.file("host_key.pub")));
    std::string type, key;
    line >> type >> key;
    return type + " " + key;
}

std::string SshdServer::log() const { return contentOf(folder_.file("sshd.out")); }

void SshdServer::launch() {
    const std::string config = folder_.file("sshd_config");
    const std::string output = folder_.file("sshd.out");
    const pid_t child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        const int fd = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        if (fd >= 0) {
            ::dup2(fd, 1);
            ::dup2(fd, 2);
        }
        ::execl(kProgram, kProgram, "-D", "-e", "-f", config.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    if (child < 0) {
        error_ = "fork failed";
        return;
    }
    ::setpgid(child, child);
    pid_ = child;
    const auto deadline = Clock::now() + kStartTimeout;
    while (Clock::now() < deadline) {
        if (greets()) return;
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            error_ = "sshd ended at start: " + log();
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    error_ = "sshd did not greet within ten seconds: " + log();
    stop();
}

void SshdServer::restart() {
    if (pid_ > 0) return;
    error_.clear();
    launch();
}

bool SshdServer::greets() const {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bool greeted = false;
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0) {
        char banner[8] = {};
        timeval wait{2, 0};
        ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof(wait));
        greeted = ::recv(fd, banner, 4, MSG_WAITALL) == 4 && std::string(banner, 4) == "SSH-";
    }
    ::close(fd);
    return greeted;
}

void SshdServer::stop() {
    if (pid_ <= 0) return;
    for (const pid_t session : descendantsOf(pid_)) ::kill(session, SIGKILL);
    ::kill(-pid_, SIGTERM);
    const auto deadline = Clock::now() + kStopTimeout;
    int status = 0;
    while (::waitpid(pid_, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            ::kill(-pid_, SIGKILL);
            ::waitpid(pid_, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    pid_ = -1;
}

}  // namespace ovd::testing
