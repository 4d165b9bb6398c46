#include "ftp/ftp_server_environment.h"

namespace ovd::ftp::testing {

namespace {

class ServerEnvironment : public ::testing::Environment {
  public:
    void SetUp() override { server = std::make_unique<ovd::testing::VsftpdServer>(); }
    void TearDown() override { server.reset(); }
    std::unique_ptr<ovd::testing::VsftpdServer> server;
};

ServerEnvironment* const environment =
    static_cast<ServerEnvironment*>(::testing::AddGlobalTestEnvironment(new ServerEnvironment));

}  // namespace

ovd::testing::VsftpdServer& sharedServer() { return *environment->server; }

}  // namespace ovd::ftp::testing
