#pragma once
// An SMTP server for integration tests that keeps every message it receives:
// the Python aiosmtpd server of this folder (smtp_server.py) on a free loopback
// port, storing each message and its envelope in a temporary folder. It may
// demand STARTTLS or speak TLS from the start (with a certificate made for
// 127.0.0.1), require AUTH with one user, and refuse chosen recipients.

#include <string>
#include <vector>

#include "support/child_server.h"
#include "support/temp_folder.h"

namespace ovd::testing {

struct SmtpTestOptions {
    enum class Tls { None, StartTls, Implicit };
    Tls tls = Tls::None;
    std::string user;  // AUTH required when set
    std::string password;
    std::string mechanisms = "PLAIN,LOGIN";
    std::vector<std::string> refused;
};

class SmtpTestServer {
  public:
    explicit SmtpTestServer(SmtpTestOptions options = {});
    ~SmtpTestServer() { stop(); }

    [[nodiscard]] bool running() const { return process_.running(); }
    [[nodiscard]] const std::string& error() const { return error_; }
    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::string certificateFile() const { return folder_.file("cert.pem"); }

    // The messages received so far, oldest first (each a file as it arrived).
    [[nodiscard]] std::vector<std::string> messages() const;
    // "MAIL FROM" address, then the recipients, of one stored message.
    [[nodiscard]] std::vector<std::string> envelopeOf(const std::string& messagePath) const;
    // Forgets what was received, so a test sees only its own messages.
    void clear();
    void stop() { process_.stop(); }

  private:
    TempFolder folder_;
    ChildServer process_;
    std::string error_;
    int port_ = 0;
};

}  // namespace ovd::testing
