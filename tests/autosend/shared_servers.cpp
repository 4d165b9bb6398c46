#include "autosend/shared_servers.h"

#include <gtest/gtest.h>

#include <memory>

namespace ovd::autosend::testing {

namespace {

class ServerEnvironment : public ::testing::Environment {
  public:
    void SetUp() override { ftp = std::make_unique<ovd::testing::VsftpdServer>(); }
    void TearDown() override { ftp.reset(); }
    std::unique_ptr<ovd::testing::VsftpdServer> ftp;
};

ServerEnvironment* const environment =
    static_cast<ServerEnvironment*>(::testing::AddGlobalTestEnvironment(new ServerEnvironment));

}  // namespace

ovd::testing::VsftpdServer& sharedFtpServer() { return *environment->ftp; }

}  // namespace ovd::autosend::testing
