#include "ftp/ftp_setup_form.h"

#include "ftp/ftp_window_texts.h"
#include "ftp/site_connection.h"
#include "platform/text.h"
#include "settings/delivery_defaults.h"
#include "settings/record_rules.h"
#include "settings/transcriber_form.h"

namespace ovd::ftp {

namespace {
constexpr const char* kDefaultClientSection = "DefaultFTPClient";
constexpr const char* kDefaultClientKey = "DefaultFTP";
}  // namespace

FtpSetupForm::FtpSetupForm(const settings::CompanyRecords& records, platform::Prompts& prompts)
    : records_(records), prompts_(prompts) {}

void FtpSetupForm::Form_Load() {
    const settings::TranscriberStore store(records_);
    auto names = store.companies();
    if (!names) {
        prompts_.showMessage(settings::kReadErrorMessage);
        return;
    }
    companies_ = *names;
    const std::string defaultClient = records_.defaultFtpClient();
    for (const std::string& name : companies_) {
        if (!defaultClient.empty() && platform::equalsIgnoreCase(name, defaultClient)) {
            GetInfoForCrypt(name);
            return;
        }
    }
}

bool FtpSetupForm::GetInfoForCrypt(const std::string& company) {
    if (platform::trim(company).empty()) {
        prompts_.showMessage(kNoTranscriberText);
        return false;
    }
    const settings::TranscriberStore store(records_);
    auto loaded = store.load(company);
    if (!loaded) {
        prompts_.showMessage(settings::kReadErrorMessage);
        return false;
    }
    record_ = *loaded;
    company_ = record_.companyName().empty() ? company : record_.companyName();
    changed_ = false;
    return true;
}

void FtpSetupForm::setField(std::string_view key, std::string value) {
    if (record_.get(key) == value) return;
    record_.set(key, std::move(value));
    changed_ = true;
}

bool FtpSetupForm::askForKey() {
    const auto key = prompts_.input({kEncryptKeyMissingQuestion, {}, {}});
    if (!key || platform::trim(*key).empty()) return false;
    if (settings::keyHasBlank(*key)) {
        prompts_.showMessage(settings::kSpacesNotAllowedMessage);
        return false;
    }
    const auto initials = prompts_.input({settings::kTwoCharactersPrompt, {}, {}});
    if (!initials) return false;
    record_.set("FTPEncryptKey", *key);
    record_.set("FTPEncryptINIT", *initials);
    return true;
}

bool FtpSetupForm::WriteCryptoInfo() {
    if (company_.empty()) {
        prompts_.showMessage(kNoTranscriberText);
        return false;
    }
    if (recordOptionOn(record_.get("FTPEncryptOption"))) {
        if (record_.get("FTPEncryptKey").empty()) {
            if (!askForKey()) return false;
        } else if (settings::keyHasBlank(record_.get("FTPEncryptKey"))) {
            prompts_.showMessage(settings::kSpacesNotAllowedMessage);
            return false;
        }
    }
    if (record_.companyName().empty()) record_.set("CompanyName", company_);
    const settings::TranscriberStore store(records_);
    if (auto saved = store.save(record_); !saved) {
        prompts_.showMessage(saved.error(), {}, platform::Severity::Warning);
        return false;
    }
    const std::string defaultClient = records_.defaultFtpClient();
    if (!defaultClient.empty() && platform::equalsIgnoreCase(defaultClient, company_)) {
        writeDefaultCopy();
    }
    changed_ = false;
    prompts_.showMessage(settings::kTranscriberSavedMessage);
    return true;
}

void FtpSetupForm::writeDefaultCopy() const {
    const settings::IniStore defaults = records_.defaults();
    for (const std::string_view key : kFtpSetupKeys) {
        // A failed write is seen at the next start-up check, which asks for a site.
        (void)defaults.WriteKey(settings::kDefaultFtpSection, key, record_.get(key));
    }
}

bool FtpSetupForm::makeDefaultSite() {
    if (company_.empty()) {
        prompts_.showMessage(kNoTranscriberText);
        return false;
    }
    if (!records_.defaults().WriteKey(kDefaultClientSection, kDefaultClientKey, company_)) {
        return false;
    }
    writeDefaultCopy();
    return true;
}

}  // namespace ovd::ftp
