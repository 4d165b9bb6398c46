#include "settings/delivery_defaults.h"

#include "platform/text.h"
#include "settings/email_receivers_form.h"

namespace ovd::settings {

namespace {

// A check box is stored as "1", "True" or "-1", depending on who wrote it.
bool checked(const std::string& value) {
    return value == "1" || value == "-1" || platform::equalsIgnoreCase(value, "True");
}

}  // namespace

DefaultEmail LoadDefaultEmail(const CompanyRecords& records) {
    const IniDocument document = records.defaults().load();
    const auto read = [&document](const char* key) {
        return document.value(kDefaultEmailSection, key).value_or("");
    };
    DefaultEmail defaults;
    defaults.DefaultRecEMail = read("DefaultRecEMail");
    defaults.DefaultEmail = read("DefaultEmail");
    defaults.DefaultCameFrom = read("DefaultCameFrom");
    defaults.DefaultRelayServer = read("DefaultRelayServer");
    defaults.DefaultRelayPort = read("DefaultRelayPort");
    defaults.DefaultPOPServer = read("DefaultPOPServer");
    defaults.DefaultPOPPort = read("DefaultPOPPort");
    defaults.DefaultPOPUserName = read("DefaultPOPUserName");
    defaults.DefaultPOPPassword = read("DefaultPOPPassword");
    defaults.DefaultPOPTimeOut = read("DefaultPOPTimeOut");
    defaults.ChkRelayMessages = checked(read("ChkRelayMessages"));
    defaults.ChkServerAuthentication = checked(read("ChkServerAuthentication"));
    defaults.ChkEncryptDecrypt = checked(read("ChkEncryptDecrypt"));
    if (!defaults.DefaultRecEMail.empty()) {
        const IniDocument clients = records.clients().load();
        for (const auto& company : clients.sectionNames()) {
            if (platform::equalsIgnoreCase(clients.value(company, "Email").value_or(""),
                                           defaults.DefaultRecEMail)) {
                defaults.RECEncryptKey = clients.value(company, "RECEncryptKey").value_or("");
                break;
            }
        }
    }
    return defaults;
}

std::map<std::string, std::string> LoadDefaultFTP(const CompanyRecords& records) {
    std::map<std::string, std::string> site;
    for (const auto& entry : records.defaults().sectionEntries(kDefaultFtpSection)) {
        site.emplace(entry.key, entry.value);
    }
    return site;
}

}  // namespace ovd::settings
