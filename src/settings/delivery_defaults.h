#pragma once
// The default receiver and FTP site of delivery, as DefaultInfo.ini keeps them, and
// the key of the transcriber the default receiver belongs to. Read again at each
// call: after a save in a record window the next reader sees the change.

#include <map>
#include <string>

#include "settings/company_records.h"

namespace ovd::settings {

inline constexpr const char* kDefaultFtpSection = "DefaultFTPForCO";

struct DefaultEmail {
    std::string DefaultRecEMail;
    std::string DefaultEmail;
    std::string DefaultCameFrom;
    std::string DefaultRelayServer;
    std::string DefaultRelayPort;
    std::string DefaultPOPServer;
    std::string DefaultPOPPort;
    std::string DefaultPOPUserName;
    std::string DefaultPOPPassword;
    std::string DefaultPOPTimeOut;
    bool ChkRelayMessages = false;
    bool ChkServerAuthentication = false;
    bool ChkEncryptDecrypt = false;  // g_bEncryptDecrypt
    // RECEncryptKey of the transcriber whose Email is DefaultRecEMail (case-blind);
    // empty when none is.
    std::string RECEncryptKey;
};

DefaultEmail LoadDefaultEmail(const CompanyRecords& records);
// Every key of the DefaultFTPForCO section: FTPServer and the other keys of the site.
std::map<std::string, std::string> LoadDefaultFTP(const CompanyRecords& records);

}  // namespace ovd::settings
