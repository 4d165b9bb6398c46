#pragma once
// A private SSH server for the SFTP tests: OpenSSH's sshd as a child process on
// loopback, on a free port, with its own configuration, its own host key and its
// log in a fresh temporary folder; stopped by its process number (with the
// processes serving its logins) when the object goes, or on stop().
//
// Running as root in a container, the login is root's, by a key made for the test
// and nothing else: no password, sftp only (ForceCommand internal-sftp), starting
// in the site folder. That changes no account of the machine, which a test user
// would; the price is that password logins can't be tried against it.

#include <sys/types.h>

#include <string>

#include "support/child_server.h"
#include "support/temp_folder.h"

namespace ovd::testing {

class SshdServer {
  public:
    static constexpr const char* kUser = "root";

    // Starts the server and waits (up to ten seconds) until it greets.
    SshdServer();
    ~SshdServer();
    SshdServer(const SshdServer&) = delete;
    SshdServer& operator=(const SshdServer&) = delete;

    [[nodiscard]] bool running() const { return process_.running(); }
    [[nodiscard]] const std::string& error() const { return error_; }
    [[nodiscard]] int port() const { return port_; }
    // The folder a login starts in; the server writes there.
    [[nodiscard]] std::string siteRoot() const { return folder_.file("site"); }
    // The private key that logs in (PEM, no passphrase).
    [[nodiscard]] std::string clientKeyFile() const { return folder_.file("client_key"); }
    // A known-hosts file that trusts this server, and nothing else.
    [[nodiscard]] std::string knownHostsFile() const { return folder_.file("known_hosts"); }
    // Its host key's line "type base64" as the server's .pub file has it.
    [[nodiscard]] std::string hostKeyLine() const;
    [[nodiscard]] std::string log() const;

    void stop();
    // Starts the stopped server again on the same port with the same keys.
    void restart();

  private:
    void launch();

    TempFolder folder_;
    std::string error_;
    int port_ = 0;
    ChildServer process_;
};

}  // namespace ovd::testing
