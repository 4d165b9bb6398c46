#pragma once
// The mail servers of this test program, each started the first time a test asks
// for it and stopped after the last test: a plain relay that refuses one address,
// relays that want STARTTLS or TLS with AUTH, Dovecot's POP3 and a name server
// whose MX records lead to the plain relay.

#include <string>

#include "support/mail_servers.h"
#include "support/smtp_test_server.h"

namespace ovd::mail::testing {

inline constexpr const char* kRefusedAddress = "nobody@pool.example";
inline constexpr const char* kSmtpUser = "station";
inline constexpr const char* kSmtpPassword = "s3cret-relay";
// An exchanger of higher preference that nobody answers at, then the relay.
inline constexpr const char* kMxDomain = "transcribers.test";
// A domain without MX record: its own address is its exchanger.
inline constexpr const char* kAddressOnlyDomain = "plain.test";

ovd::testing::SmtpTestServer& plainRelay();
ovd::testing::SmtpTestServer& startTlsRelay();
ovd::testing::SmtpTestServer& implicitTlsRelay();
ovd::testing::SmtpTestServer& loginOnlyRelay();
ovd::testing::Pop3TestServer& popServer();
ovd::testing::DnsTestServer& nameServer();

}  // namespace ovd::mail::testing
