#include "ftp/client_for_site.h"

#include "ftp/curl_ftp_client.h"
#include "ftp/curl_sftp_client.h"

namespace ovd::ftp {

std::unique_ptr<FtpClient> clientFor(const ConnectionSettings& settings) {
    if (settings.security == Security::Sftp) return std::make_unique<CurlSftpClient>();
    return std::make_unique<CurlFtpClient>();
}

}  // namespace ovd::ftp
