#pragma once
// The other servers the mail tests need, each a real program on loopback with its
// configuration in a temporary folder, stopped by PID:
// - Dovecot's POP3 server with one test user (passwd-file; no account of the
//   machine is touched), for the login before SMTP;
// - dnsmasq answering MX and A records of made-up domains, for direct sending.

#include <string>
#include <vector>

#include "support/child_server.h"
#include "support/temp_folder.h"

namespace ovd::testing {

class Pop3TestServer {
  public:
    static constexpr const char* kUser = "popuser";
    static constexpr const char* kPassword = "pop-secret";

    Pop3TestServer();
    ~Pop3TestServer() { stop(); }

    [[nodiscard]] bool running() const { return process_.running(); }
    [[nodiscard]] const std::string& error() const { return error_; }
    [[nodiscard]] int port() const { return port_; }
    // The server's log: who logged in, who was refused.
    [[nodiscard]] std::string log() const { return readTextFile(folder_.file("dovecot.log")); }
    void stop() { process_.stop(); }

  private:
    TempFolder folder_;
    ChildServer process_;
    std::string error_;
    int port_ = 0;
};

struct DnsRecords {
    struct Mx {
        std::string domain;
        std::string exchanger;
        int preference = 10;
    };
    struct Address {
        std::string host;
        std::string ipv4;
    };
    std::vector<Mx> mx;
    std::vector<Address> addresses;
};

class DnsTestServer {
  public:
    explicit DnsTestServer(const DnsRecords& records);
    ~DnsTestServer() { stop(); }

    [[nodiscard]] bool running() const { return process_.running(); }
    [[nodiscard]] const std::string& error() const { return error_; }
    [[nodiscard]] int port() const { return port_; }
    void stop() { process_.stop(); }

  private:
    TempFolder folder_;
    ChildServer process_;
    std::string error_;
    int port_ = 0;
};

}  // namespace ovd::testing
