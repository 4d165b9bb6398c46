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

constexpr auto kStartTimeout = std::chrono::seconds(10);
constexpr const char* kProgram = "/usr/sbin/sshd";
// sshd refuses to start without the folder its unprivileged children use.
constexpr const char* kPrivilegeFolder = "/run/sshd";

// Every process below `root`: sshd serves each login from processes of its own.
bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

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
    port_ = freeLoopbackPort();
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
    std::istringstream line(readTextFile(folder_.file("host_key.pub")));
    std::string type, key;
    line >> type >> key;
    return type + " " + key;
}

std::string SshdServer::log() const { return readTextFile(folder_.file("sshd.out")); }

void SshdServer::launch() {
    const std::string config = folder_.file("sshd_config");
    if (!process_.start({kProgram, "-D", "-e", "-f", config}, folder_.file("sshd.out"))) {
        error_ = "fork failed";
        return;
    }
    if (process_.waitUntil([this] { return greets(port_, "SSH-"); }, kStartTimeout)) return;
    error_ = process_.running() ? "sshd did not greet within ten seconds: " + log()
                                : "sshd ended at start: " + log();
    stop();
}

void SshdServer::restart() {
    if (running()) return;
    error_.clear();
    launch();
}

void SshdServer::stop() { process_.stop(); }

}  // namespace ovd::testing
