#pragma once
// One vsftpd for the whole test program, started before the first test and
// stopped after the last; tests that need a server of their own (to kill it)
// make one.

#include <gtest/gtest.h>

#include <memory>

#include "support/vsftpd_server.h"

namespace ovd::ftp::testing {

ovd::testing::VsftpdServer& sharedServer();

}  // namespace ovd::ftp::testing
