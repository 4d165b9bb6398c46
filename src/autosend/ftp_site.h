#pragma once
// The default FTP site of delivery (DefaultInfo.ini, section DefaultFTPForCO) as
// the companion sender connects to it: the site record read through the same
// mapping every FTP window uses, with what only the unattended upload needs.

#include <string>

#include "ftp/ftp_client.h"
#include "platform/result.h"
#include "settings/company_records.h"

namespace ovd::autosend {

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
