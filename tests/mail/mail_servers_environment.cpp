#include "mail/mail_servers_environment.h"

#include <gtest/gtest.h>

#include <memory>

namespace ovd::mail::testing {

namespace {

using ovd::testing::SmtpTestOptions;

struct Servers {
    std::unique_ptr<ovd::testing::SmtpTestServer> plain, startTls, implicitTls, loginOnly;
    std::unique_ptr<ovd::testing::Pop3TestServer> pop;
    std::unique_ptr<ovd::testing::DnsTestServer> dns;
};

class ServersEnvironment : public ::testing::Environment {
  public:
    void TearDown() override { servers = {}; }
    Servers servers;
};

ServersEnvironment* const environment =
    static_cast<ServersEnvironment*>(::testing::AddGlobalTestEnvironment(new ServersEnvironment));

template <typename Server, typename... Arguments>
Server& started(std::unique_ptr<Server>& server, Arguments&&... arguments) {
    if (!server) server = std::make_unique<Server>(std::forward<Arguments>(arguments)...);
    return *server;
}

}  // namespace

static SmtpTestOptions relayOptions(SmtpTestOptions::Tls tls,
                                    const char* mechanisms = "PLAIN,LOGIN") {
    SmtpTestOptions options;
    options.tls = tls;
    options.user = kSmtpUser;
    options.password = kSmtpPassword;
    options.mechanisms = mechanisms;
    return options;
}

ovd::testing::SmtpTestServer& plainRelay() {
    SmtpTestOptions options;
    options.refused = {kRefusedAddress};
    return started(environment->servers.plain, options);
}

ovd::testing::SmtpTestServer& startTlsRelay() {
    return started(environment->servers.startTls, relayOptions(SmtpTestOptions::Tls::StartTls));
}

ovd::testing::SmtpTestServer& implicitTlsRelay() {
    return started(environment->servers.implicitTls, relayOptions(SmtpTestOptions::Tls::Implicit));
}

ovd::testing::SmtpTestServer& loginOnlyRelay() {
    return started(environment->servers.loginOnly,
                   relayOptions(SmtpTestOptions::Tls::StartTls, "LOGIN"));
}

ovd::testing::Pop3TestServer& popServer() { return started(environment->servers.pop); }

ovd::testing::DnsTestServer& nameServer() {
    ovd::testing::DnsRecords records;
    records.mx = {{kMxDomain, "mx1.transcribers.test", 20},
                  {kMxDomain, "mx0.transcribers.test", 10}};
    records.addresses = {{"mx0.transcribers.test", "127.0.0.2"},
                         {"mx1.transcribers.test", "127.0.0.1"},
                         {kAddressOnlyDomain, "127.0.0.1"}};
    return started(environment->servers.dns, records);
}

}  // namespace ovd::mail::testing
