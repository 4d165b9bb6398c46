#include "ftp/client_for_site.h"

namespace ovd::ftp {

std::unique_ptr<FtpClient> clientFor(const ConnectionSettings& settings) {
    if (settings.security == Security::Sftp) return std::make_unique<CurlSftpClient>();
    return std::make_unique<CurlFtpClient>();
}

platform::Result<void> AnySiteClient::connect(const ConnectionSettings& settings) {
    FtpClient* wanted = settings.security == Security::Sftp ? static_cast<FtpClient*>(&sftp_)
                                                            : static_cast<FtpClient*>(&ftp_);
    if (wanted != active_.load()) active().disconnect();
    active_.store(wanted);
    return wanted->connect(settings);
}

}  // namespace ovd::ftp
