#pragma once
// The mail sender's settings as its globals hold them: who sends (the own
// company's contact name and the default sender address), through which relay,
// with or without the POP3 login first, and whether attachments are enciphered.
// Read from OurCompanyInfo.ini and DefaultInfo.ini at each call, like every record.
//
// Beyond the records: each sender identity may ask for STARTTLS or implicit TLS
// with SMTP AUTH and a pinned certificate (keys SMTPSecurityN, SMTPUserN,
// SMTPPasswordN, SMTPCertificateN of OurCompanyInfo.ini). Missing keys give the
// plain relay the records describe.

#include <string>

#include "mail/mail_transport.h"
#include "mail/mx_lookup.h"
#include "settings/company_records.h"

namespace ovd::mail {

inline constexpr const char* kSmtpSecurityKey = "SMTPSecurity";
inline constexpr const char* kSmtpUserKey = "SMTPUser";
inline constexpr const char* kSmtpPasswordKey = "SMTPPassword";
inline constexpr const char* kSmtpCertificateKey = "SMTPCertificate";

struct SenderSettings {
    std::string g_StrSendersName;
    std::string g_strSenderAddress;
    std::string g_strOrganization;
    std::string g_strCameFrom;
    std::string g_strRelayServer;
    std::string g_nRelayPort;  // text: a blank port is told apart from port 0
    bool g_bRelayMessages = false;
    bool g_chkServerAuthentication = false;
    std::string g_POPServer;
    std::string g_POPPort;
    std::string g_POPUserName;
    std::string g_POPPassword;
    std::string g_POPTimeOut;
    bool g_bEncryptDecrypt = false;
    std::string g_strSaveOurCompanyKey;

    // The identity's transport protection.
    Security security = Security::Plain;
    std::string smtpUser;
    std::string smtpPassword;
    std::string pinnedCertificateFile;

    // Direct sending: whose name server finds the exchangers, and the port they
    // listen on. Tests point both at servers of their own.
    ResolverSettings resolver;
    int directPort = 25;
};

// "None", "STARTTLS", "TLS" as the settings file holds them; anything else is None.
Security securityFromText(const std::string& text);
const char* securityText(Security security);

// The account (1 to 5) a DefaultCameFrom names ("POPServer2" is account 2); 0 when none.
int accountOf(const std::string& cameFrom);

SenderSettings loadSenderSettings(const settings::CompanyRecords& records);
// What the options window keeps: the DefaultEmailForCO keys, and the transport
// protection under the chosen account's number.
platform::Result<void> saveSenderSettings(const settings::CompanyRecords& records,
                                          const SenderSettings& sender);

}  // namespace ovd::mail
