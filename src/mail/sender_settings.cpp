#include "mail/sender_settings.h"

#include <cctype>
#include <cerrno>

#include "platform/files.h"
#include "platform/text.h"
#include "settings/delivery_defaults.h"
#include "settings/email_receivers_form.h"
#include "settings/mail_senders.h"
#include "settings/our_company_form.h"

namespace ovd::mail {

namespace {

constexpr const char* kCompanySection = "Company";

std::string numbered(const char* key, int account) { return key + std::to_string(account); }

const char* checkText(bool value) { return value ? "1" : "0"; }

}  // namespace

Security securityFromText(const std::string& text) {
    if (platform::equalsIgnoreCase(text, "STARTTLS")) return Security::StartTls;
    if (platform::equalsIgnoreCase(text, "TLS")) return Security::ImplicitTls;
    return Security::Plain;
}

const char* securityText(Security security) {
    switch (security) {
        case Security::Plain:
            return "None";
        case Security::StartTls:
            return "STARTTLS";
        case Security::ImplicitTls:
            return "TLS";
    }
    return "None";
}

int accountOf(const std::string& cameFrom) {
    if (cameFrom.empty() || !std::isdigit(static_cast<unsigned char>(cameFrom.back()))) return 0;
    const int account = cameFrom.back() - '0';
    return account >= 1 && account <= settings::kMailAccounts ? account : 0;
}

SenderSettings loadSenderSettings(const settings::CompanyRecords& records) {
    const settings::DefaultEmail defaults = settings::LoadDefaultEmail(records);
    const settings::OurCompany company = settings::readOurCompany(records);
    const settings::IniDocument own = records.ourCompany().load();
    SenderSettings sender;
    sender.g_StrSendersName = own.value(kCompanySection, "Name").value_or("");
    sender.g_strSenderAddress = defaults.DefaultEmail;
    sender.g_strOrganization = company.g_strOrganization;
    sender.g_strCameFrom = defaults.DefaultCameFrom;
    sender.g_strRelayServer = defaults.DefaultRelayServer;
    sender.g_nRelayPort = defaults.DefaultRelayPort;
    sender.g_bRelayMessages = defaults.ChkRelayMessages;
    sender.g_chkServerAuthentication = defaults.ChkServerAuthentication;
    sender.g_POPServer = defaults.DefaultPOPServer;
    sender.g_POPPort = defaults.DefaultPOPPort;
    sender.g_POPUserName = defaults.DefaultPOPUserName;
    sender.g_POPPassword = defaults.DefaultPOPPassword;
    sender.g_POPTimeOut = defaults.DefaultPOPTimeOut;
    sender.g_bEncryptDecrypt = defaults.ChkEncryptDecrypt;
    sender.g_strSaveOurCompanyKey = company.g_strSaveOurCompanyKey;
    if (const int account = accountOf(sender.g_strCameFrom); account > 0) {
        const auto read = [&](const char* key) {
            return own.value(kCompanySection, numbered(key, account)).value_or("");
        };
        sender.security = securityFromText(read(kSmtpSecurityKey));
        sender.smtpUser = read(kSmtpUserKey);
        sender.smtpPassword = read(kSmtpPasswordKey);
        sender.pinnedCertificateFile = read(kSmtpCertificateKey);
    }
    return sender;
}

platform::Result<void> saveSenderSettings(const settings::CompanyRecords& records,
                                          const SenderSettings& sender) {
    const settings::IniStore defaultsStore = records.defaults();
    settings::IniDocument defaults = defaultsStore.load();
    const auto put = [&](const char* key, const std::string& value) {
        defaults.setValue(settings::kDefaultEmailSection, key, value);
    };
    put("DefaultEmail", sender.g_strSenderAddress);
    put("DefaultCameFrom", sender.g_strCameFrom);
    put("DefaultRelayServer", sender.g_strRelayServer);
    put("DefaultRelayPort", sender.g_nRelayPort);
    put("DefaultPOPServer", sender.g_POPServer);
    put("DefaultPOPPort", sender.g_POPPort);
    put("DefaultPOPUserName", sender.g_POPUserName);
    put("DefaultPOPPassword", sender.g_POPPassword);
    put("DefaultPOPTimeOut", sender.g_POPTimeOut);
    put("ChkRelayMessages", checkText(sender.g_bRelayMessages));
    put("ChkServerAuthentication", checkText(sender.g_chkServerAuthentication));
    put("ChkEncryptDecrypt", checkText(sender.g_bEncryptDecrypt));
    if (!platform::replaceFile(defaultsStore.path(), defaults.serialise(), /*ownerOnly=*/true)) {
        return platform::systemFailure("Can't write " + defaultsStore.path(), errno);
    }
    const int account = accountOf(sender.g_strCameFrom);
    if (account == 0) return {};
    const settings::IniStore ownStore = records.ourCompany();
    settings::IniDocument own = ownStore.load();
    own.setValue(kCompanySection, numbered(kSmtpSecurityKey, account),
                 securityText(sender.security));
    own.setValue(kCompanySection, numbered(kSmtpUserKey, account), sender.smtpUser);
    own.setValue(kCompanySection, numbered(kSmtpPasswordKey, account), sender.smtpPassword);
    own.setValue(kCompanySection, numbered(kSmtpCertificateKey, account),
                 sender.pinnedCertificateFile);
    if (!platform::replaceFile(ownStore.path(), own.serialise(), /*ownerOnly=*/true)) {
        return platform::systemFailure("Can't write " + ownStore.path(), errno);
    }
    return {};
}

}  // namespace ovd::mail
