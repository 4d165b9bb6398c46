#include "support/child_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

namespace ovd::testing {

namespace {

using Clock = std::chrono::steady_clock;

// Every process below `root`: a server may serve each login from processes in
// sessions of their own (vsftpd, sshd), which outlive the listener unless ended too.
std::vector<pid_t> descendantsOf(pid_t root) {
    std::vector<std::pair<pid_t, pid_t>> parents;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos) continue;
        std::ifstream stat(entry.path() / "stat");
        std::string line;
        std::getline(stat, line);
        // "pid (name) state ppid ...": the name may hold blanks, so read after its ')'.
        const auto close = line.rfind(')');
        if (close == std::string::npos) continue;
        std::istringstream rest(line.substr(close + 1));
        std::string state;
        pid_t parent = 0;
        rest >> state >> parent;
        parents.emplace_back(static_cast<pid_t>(std::stoi(name)), parent);
    }
    std::vector<pid_t> found{root};
    for (std::size_t index = 0; index < found.size(); ++index) {
        for (const auto& [pid, parent] : parents) {
            if (parent == found[index]) found.push_back(pid);
        }
    }
    found.erase(found.begin());
    return found;
}

int connectTo(int port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

}  // namespace

int freeLoopbackPort(bool udp) {
    const int fd = ::socket(AF_INET, udp ? SOCK_DGRAM : SOCK_STREAM, 0);
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

bool ChildServer::start(const std::vector<std::string>& arguments, const std::string& outputFile) {
    std::vector<char*> argv;
    for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        // A test program that dies (a crash, a closed pipe) takes its servers along.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        const int fd = ::open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd >= 0) {
            ::dup2(fd, 1);
            ::dup2(fd, 2);
        }
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    if (child < 0) return false;
    ::setpgid(child, child);
    pid_ = child;
    return true;
}

bool ChildServer::waitUntil(const std::function<bool()>& ready, std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (Clock::now() < deadline && pid_ > 0) {
        if (ready()) return true;
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

void ChildServer::stop() {
    if (pid_ <= 0) return;
    for (const pid_t session : descendantsOf(pid_)) ::kill(session, SIGKILL);
    ::kill(-pid_, SIGTERM);
    const auto deadline = Clock::now() + std::chrono::seconds(3);
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

bool greets(int port, const std::string& prefix) {
    const int fd = connectTo(port);
    if (fd < 0) return false;
    std::string reply(prefix.size(), '\0');
    const bool greeted =
        ::recv(fd, reply.data(), reply.size(), MSG_WAITALL) == static_cast<ssize_t>(reply.size()) &&
        reply == prefix;
    ::close(fd);
    return greeted;
}

bool acceptsConnections(int port) {
    const int fd = connectTo(port);
    if (fd < 0) return false;
    ::close(fd);
    return true;
}

bool makeTestCertificate(const std::string& certificateFile, const std::string& keyFile) {
    const std::string command =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1"
        " -addext subjectAltName=IP:127.0.0.1,DNS:localhost -keyout '" +
        keyFile + "' -out '" + certificateFile + "' >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

std::string readTextFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

}  // namespace ovd::testing
