#pragma once
// The servers shared by the whole test program, started before the first test
// and stopped after the last; a test that kills its server makes its own.

#include "support/vsftpd_server.h"

namespace ovd::autosend::testing {

ovd::testing::VsftpdServer& sharedFtpServer();

}  // namespace ovd::autosend::testing
