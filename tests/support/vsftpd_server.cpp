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

constexpr auto kStartTimeout = std::chrono::seconds(10);
constexpr const char* kProgram = "/usr/sbin/vsftpd";
constexpr int kPassivePorts = 40;

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
    port_ = freeLoopbackPort();
    // The passive range starts at another free port; vsftpd skips those in use.
    const int passiveFirst = freeLoopbackPort();
    const std::string config = folder_.file("vsftpd.conf");
    std::ofstream(config) << configuration(folder_.path(), port_, passiveFirst, options);
    launch();
}

void VsftpdServer::restart() {
    if (running()) return;
    error_.clear();
    launch();
}

void VsftpdServer::launch() {
    const std::string config = folder_.file("vsftpd.conf");
    if (!process_.start({kProgram, config}, folder_.file("vsftpd.out"))) {
        error_ = "fork failed";
        return;
    }
    if (process_.waitUntil([this] { return greets(port_, "220"); }, kStartTimeout)) return;
    error_ = process_.running() ? "vsftpd did not greet within ten seconds: " + log()
                                : "vsftpd ended at start: " + log();
    stop();
}

void VsftpdServer::stop() { process_.stop(); }

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
