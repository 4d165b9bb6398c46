#include "mail/options_form.h"

#include "settings/mail_senders.h"

namespace ovd::mail {

namespace {

constexpr const char* kCompanySection = "Company";

}  // namespace

OptionsForm::OptionsForm(const settings::CompanyRecords& records, platform::Prompts& prompts)
    : records_(records), prompts_(prompts) {}

void OptionsForm::Form_Load() { boxes = loadSenderSettings(records_); }

std::vector<std::string> OptionsForm::identities() const {
    std::vector<std::string> addresses;
    for (int account = 1; account <= settings::kMailAccounts; ++account) {
        addresses.push_back(settings::readMailSender(records_, account)[3]);
    }
    return addresses;
}

void OptionsForm::chooseIdentity(int account) {
    if (account < 1 || account > settings::kMailAccounts) return;
    const settings::MailSender sender = settings::readMailSender(records_, account);
    // In the order of the account's keys: POP server, user, password, address,
    // POP port, POP time-out, relay, relay port.
    boxes.g_POPServer = sender[0];
    boxes.g_POPUserName = sender[1];
    boxes.g_POPPassword = sender[2];
    boxes.g_strSenderAddress = sender[3];
    boxes.g_POPPort = sender[4];
    boxes.g_POPTimeOut = sender[5];
    boxes.g_strRelayServer = sender[6];
    boxes.g_nRelayPort = sender[7];
    boxes.g_strCameFrom = "POPServer" + std::to_string(account);
    const settings::IniDocument own = records_.ourCompany().load();
    const auto read = [&](const char* key) {
        return own.value(kCompanySection, key + std::to_string(account)).value_or("");
    };
    boxes.security = securityFromText(read(kSmtpSecurityKey));
    boxes.smtpUser = read(kSmtpUserKey);
    boxes.smtpPassword = read(kSmtpPasswordKey);
    boxes.pinnedCertificateFile = read(kSmtpCertificateKey);
}

bool OptionsForm::chooseRelay(bool relay) {
    boxes.g_bRelayMessages = relay;
    if (relay && (boxes.g_strRelayServer.empty() || boxes.g_nRelayPort.empty())) {
        prompts_.showMessage(kRelayFieldsBlankMessage, {}, platform::Severity::Warning);
        boxes.g_bRelayMessages = false;
    }
    return boxes.g_bRelayMessages;
}

bool OptionsForm::setServerAuthentication(bool on) {
    boxes.g_chkServerAuthentication = on;
    if (on && (boxes.g_POPUserName.empty() || boxes.g_POPPassword.empty())) {
        prompts_.showMessage(kPopFieldsBlankMessage, {}, platform::Severity::Warning);
        boxes.g_chkServerAuthentication = false;
    }
    return boxes.g_chkServerAuthentication;
}

bool OptionsForm::write() {
    const auto saved = saveSenderSettings(records_, boxes);
    if (!saved) prompts_.showMessage(saved.error(), {}, platform::Severity::Critical);
    return saved.ok();
}

bool OptionsForm::cmdOK() {
    if (boxes.g_bRelayMessages && boxes.g_strRelayServer.empty()) {
        prompts_.showMessage(kRelayHostRequiredMessage, {}, platform::Severity::Warning);
        return false;
    }
    return write();
}

bool OptionsForm::cmdApply() { return write(); }

}  // namespace ovd::mail
