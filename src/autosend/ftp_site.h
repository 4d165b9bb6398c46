#pragma once
// The default FTP site of delivery (DefaultInfo.ini, section DefaultFTPForCO) as
// the companion sender connects to it. FTPServer may carry the kind of site in
// front of the host: "ftp://" (or nothing), "ftps://" for FTP over TLS, "sftp://"
// for SFTP. FTPCertificate names a certificate to trust for an FTPS site that
// made its own; FTPKeyFile a private key for an SFTP login. An SFTP server's key
// is checked against the known-hosts file of the data folder.

#include <string>

#include "ftp/ftp_client.h"
#include "platform/result.h"
#include "settings/company_records.h"

namespace ovd::autosend {

inline constexpr const char* kKnownHostsFile = "sftp_known_hosts";

struct FtpSite {
    ftp::ConnectionSettings connection;
    std::string description;   // FTPDescription
    std::string remoteFolder;  // FTPUFLMRemotePath: where uploads go; empty for the login folder
    bool encrypt = false;      // FTPEncryptOption
    std::string key;           // FTPEncryptKey
};

// The default site; a failure when none is chosen (FTPServer empty).
platform::Result<FtpSite> defaultFtpSite(const settings::CompanyRecords& records);

}  // namespace ovd::autosend
