#pragma once
// A private FTP server for integration tests: vsftpd as a child process on
// loopback, on a free port, with its configuration, its site and its log in a
// fresh temporary folder. It stops (with the processes that serve its logins)
// when the object goes, or on stop().
//
// Running as root in a container: the site is anonymous (any password), because
// a local user would mean changing the machine's accounts. vsftpd refuses an
// anonymous root it could write to, so the site's root belongs to root and the
// writable folder is "/incoming", owned by the system's "ftp" user, which is
// who anonymous files are written as. A user name other than "anonymous" or
// "ftp" is turned away with the server's own "530" reply. The seccomp sandbox
// and the network namespaces are off: they fail inside a container.
//
// A server that does not start is a test failure, with its own words in error().

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "support/child_server.h"
#include "support/temp_folder.h"

namespace ovd::testing {

struct VsftpdOptions {
    // A server that sends at most this many bytes a second (0: no limit) stands
    // for a slow line whose data is still on its way when the server goes.
    std::uint64_t maxBytesPerSecond = 0;
    // Logins and data only over explicit TLS ("AUTH TLS"), with a certificate
    // made for 127.0.0.1 (certificateFile()).
    bool explicitTls = false;
};

class VsftpdServer {
  public:
    static constexpr const char* kUser = "anonymous";
    static constexpr const char* kPassword = "ovd@example.com";
    static constexpr const char* kWritableFolder = "/incoming";

    // Starts the server and waits (up to ten seconds) until it greets.
    explicit VsftpdServer(VsftpdOptions options = {});
    ~VsftpdServer();
    VsftpdServer(const VsftpdServer&) = delete;
    VsftpdServer& operator=(const VsftpdServer&) = delete;

    [[nodiscard]] bool running() const { return process_.running(); }
    [[nodiscard]] const std::string& error() const { return error_; }
    [[nodiscard]] int port() const { return port_; }
    // The local folder the server shows as "/".
    [[nodiscard]] std::string siteRoot() const { return folder_.file("site"); }
    // Where a remote path ("/incoming/a b.wav") lies on this machine.
    [[nodiscard]] std::string localPathOf(const std::string& remotePath) const {
        return siteRoot() + remotePath;
    }
    [[nodiscard]] std::string log() const;
    // The server's own certificate (PEM), for a client to trust it alone.
    [[nodiscard]] std::string certificateFile() const { return folder_.file("cert.pem"); }
    // Ends the server and every session it serves, now: to its clients, a
    // server that went away mid-transfer.
    void stop();
    // Starts the stopped server again on the same port, with the same site.
    void restart();

  private:
    void start(const VsftpdOptions& options);
    void launch();
    bool makeCertificate();

    TempFolder folder_;
    std::string error_;
    int port_ = 0;
    ChildServer process_;
};

}  // namespace ovd::testing
