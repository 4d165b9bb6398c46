#pragma once
// The client that speaks a site's kind: FTP (plain or over TLS) or SFTP.

#include <memory>

#include "ftp/ftp_client.h"

namespace ovd::ftp {

std::unique_ptr<FtpClient> clientFor(const ConnectionSettings& settings);

}  // namespace ovd::ftp
