#pragma once
// The mail client on libcurl: SMTP (plain, STARTTLS or implicit TLS, with AUTH)
// and the POP3 login. The only file that sees curl is its .cpp.

#include "mail/mail_transport.h"

namespace ovd::mail {

class CurlMailTransport : public MailTransport {
  public:
    CurlMailTransport();
    ~CurlMailTransport() override;
    CurlMailTransport(const CurlMailTransport&) = delete;
    CurlMailTransport& operator=(const CurlMailTransport&) = delete;

    bool popLogin(const PopServer& server, const TransportEvents& events,
                  SendError& error) override;
    bool send(const SmtpServer& server, const Envelope& envelope, MessageStream& message,
              const TransportEvents& events, SendReport& report, SendError& error) override;
};

}  // namespace ovd::mail
