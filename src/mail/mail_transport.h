#pragma once
// What the sender needs of an SMTP and POP3 client, in our own terms. The one
// implementation is curl's (curl_mail_transport.h); tests may put their own in.

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "mail/mail_message.h"
#include "platform/result.h"

namespace ovd::mail {

// How the connection to a relay is protected. Plain is what the sender records
// hold; the others are a sender identity's choice for today's providers.
enum class Security { Plain, StartTls, ImplicitTls };

struct SmtpServer {
    std::string host;
    int port = 25;
    // Connect to this address instead of looking the host up (the exchanger's
    // address found by the MX look-up); the host still names the server.
    std::string address;
    Security security = Security::Plain;
    std::string user;  // SMTP AUTH when set
    std::string password;
    // Trust this certificate (PEM file) alone instead of the system's authorities.
    std::string pinnedCertificateFile;
};

struct PopServer {
    std::string host;
    int port = 110;
    std::string user;
    std::string password;
    int timeoutSeconds = 60;
};

struct Envelope {
    std::string from;
    std::vector<std::string> recipients;
};

// Called on the sending thread, in the order things happen on the wire.
struct TransportEvents {
    std::function<void(const std::string& address)> sendingTo;
    std::function<void(std::uint64_t bytesSent)> progress;
    // Each line of the exchange, passwords already masked: "> " sent, "< " received.
    std::function<void(const std::string& line)> trace;
};

// Who took the message once the server gave its final OK, and who refused it
// with the server's reply.
struct SendReport {
    std::vector<std::string> accepted;
    std::vector<std::pair<std::string, std::string>> refused;
};

// A failure's number: the server's reply code when it answered with an error,
// else the client library's own number; and its words.
struct SendError {
    int code = 0;
    std::string text;
    bool connectionFailed = false;  // nothing was said: worth trying another exchanger
};

class MailTransport {
  public:
    virtual ~MailTransport() = default;
    // Logs in to the POP3 server and out again (POP3 before SMTP).
    virtual bool popLogin(const PopServer& server, const TransportEvents& events,
                          SendError& error) = 0;
    // Sends the message to every recipient the server accepts. The report comes
    // only after the server's final OK of the message; `error` is filled on failure.
    virtual bool send(const SmtpServer& server, const Envelope& envelope, MessageStream& message,
                      const TransportEvents& events, SendReport& report, SendError& error) = 0;
    // Ends a running send or login at its next step; from any thread.
    void cancel() { cancelled_ = true; }
    void clearCancel() { cancelled_ = false; }

  protected:
    std::atomic<bool> cancelled_{false};
};

}  // namespace ovd::mail
