#include "support/vsftpd_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <pwd.h>
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
constexpr const char* kProgram = "/usr/sbin/vsftpd";
constexpr int kPassivePorts = 40;

// A port nobody listens on right now; the kernel picks it.
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

std::string configuration(const std::string& folder, int port, int passiveFirst,
                          const VsftpdOptions& options) {
    std::ostringstream text;
    text << "listen=YES\nlisten_ipv6=NO\nlisten_address=127.0.0.1\n"
         << "listen_port=" << port << "\n"
         << "background=NO\n"
         << "anonymous_enable=YES\nlocal_enable=NO\nno_anon_password=NO\n"
         << "anon_root=" << folder << "/site\n"
         << "write_enable=YES\nanon_upload_enable=YES\nanon_mkdir_write_enable=YES\n"
         << "anon_other_write_enable=YES\nanon_world_readable_only=NO\nanon_umask=022\n"
         << "ftp_username=ftp\n"
         << "anon_max_rate=" << options.maxBytesPerSecond << "\n"
         << "pasv_enable=YES\npasv_address=127.0.0.1\n"
         << "pasv_min_port=" << passiveFirst << "\n"
         << "pasv_max_port=" << passiveFirst + kPassivePorts << "\n"
         << "port_enable=YES\nconnect_from_port_20=NO\n"
         << "seccomp_sandbox=NO\nisolate=NO\nisolate_network=NO\n"
         << "secure_chroot_dir=" << folder << "/empty\n"
         << "xferlog_enable=YES\nvsftpd_log_file=" << folder << "/vsftpd.log\n";
    if (options.explicitTls) {
        text << "ssl_enable=YES\nallow_anon_ssl=YES\n"
             << "force_anon_logins_ssl=YES\nforce_anon_data_ssl=YES\n"
             << "require_ssl_reuse=NO\nssl_ciphers=HIGH\n"
             << "rsa_cert_file=" << folder << "/cert.pem\n"
             << "rsa_private_key_file=" << folder << "/key.pem\n";
    }
    return text.str();
}

// Every process below `root`: vsftpd serves each login from processes of its
// own, in sessions of their own, which outlive the listener unless ended too.
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

}  // namespace

VsftpdServer::VsftpdServer(VsftpdOptions options) { start(options); }

VsftpdServer::~VsftpdServer() { stop(); }

bool VsftpdServer::makeCertificate() {
    const std::string command =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1"
        " -addext subjectAltName=IP:127.0.0.1 -keyout '" +
        folder_.file("key.pem") + "' -out '" + certificateFile() + "' >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

void VsftpdServer::start(const VsftpdOptions& options) {
    namespace fs = std::filesystem;
    const passwd* ftpUser = ::getpwnam("ftp");
    if (::access(kProgram, X_OK) != 0 || ftpUser == nullptr) {
        error_ = "vsftpd is not installed (scripts/install-deps.sh installs it)";
        return;
    }
    ::chmod(folder_.path().c_str(), 0755);
    fs::create_directories(folder_.file("empty"));
    fs::create_directories(siteRoot() + kWritableFolder);
    if (::chown((siteRoot() + kWritableFolder).c_str(), ftpUser->pw_uid, ftpUser->pw_gid) != 0) {
        error_ = "can't give " + std::string(kWritableFolder) + " to the ftp user (not root?)";
        return;
    }
    if (options.explicitTls && !makeCertificate()) {
        error_ = "openssl could not make the server's certificate";
        return;
    }
    port_ = freePort();
    // The passive range starts at another free port; vsftpd skips those in use.
    const int passiveFirst = freePort();
    const std::string config = folder_.file("vsftpd.conf");
    std::ofstream(config) << configuration(folder_.path(), port_, passiveFirst, options);
    launch();
}

void VsftpdServer::restart() {
    if (pid_ > 0) return;
    error_.clear();
    launch();
}

void VsftpdServer::launch() {
    const std::string config = folder_.file("vsftpd.conf");
    const std::string output = folder_.file("vsftpd.out");

    const pid_t child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        const int fd = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd >= 0) {
            ::dup2(fd, 1);
            ::dup2(fd, 2);
        }
        ::execl(kProgram, kProgram, config.c_str(), static_cast<char*>(nullptr));
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
            error_ = "vsftpd ended at start: " + log();
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    error_ = "vsftpd did not greet within ten seconds: " + log();
    stop();
}

bool VsftpdServer::greets() const {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port_));
    bool greeted = false;
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0) {
        char reply[4] = {};
        greeted = ::recv(fd, reply, 3, MSG_WAITALL) == 3 && std::string(reply, 3) == "220";
    }
    ::close(fd);
    return greeted;
}

void VsftpdServer::stop() {
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

std::string VsftpdServer::log() const {
    std::string text;
    for (const char* name : {"vsftpd.out", "vsftpd.log"}) {
        std::ifstream file(folder_.file(name));
        std::ostringstream content;
        content << file.rdbuf();
        text += content.str();
    }
    return text;
}

}  // namespace ovd::testing
