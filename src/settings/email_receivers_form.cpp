#include "settings/email_receivers_form.h"

#include "platform/files.h"
#include "platform/text.h"
#include "settings/config_file.h"
#include "settings/databases.h"

namespace ovd::settings {

EmailReceiversForm::EmailReceiversForm(const CompanyRecords& records, platform::Prompts& prompts)
    : records_(records), prompts_(prompts) {}

bool EmailReceiversForm::Form_Load() {
    companies_.clear();
    const std::string path = databasePath(records_.dataFolder(), StationDatabase::EmailAddress);
    if (platform::fileExists(path)) {
        DatabaseSession session(records_.dataFolder(), StationDatabase::EmailAddress);
        if (session.existing() == nullptr) {
            prompts_.showMessage(kReadErrorMessage, kProductTitle, platform::Severity::Critical);
            return false;
        }
    }
    EmailReceiversTable table(records_.dataFolder());
    for (const auto& row : table.receivers()) companies_.push_back(row.EmailCompanyName);
    return true;
}

std::string EmailReceiversForm::defaultReceiver() const {
    return records_.defaults().readValue(kDefaultEmailSection, "DefaultRecEMail").value_or("");
}

void EmailReceiversForm::chooseCompany(const std::string& company) {
    EmailReceiversTable table(records_.dataFolder());
    const auto row = table.findReceiver(company);
    receiver = row ? *row : EmailReceiver{company, {}, {}, {}, false};
    keyEditable_ = receiver.EmailEncryptKey.empty();
}

bool EmailReceiversForm::enterKey(const std::string& key) {
    if (!keyEditable_) return false;
    if (keyHasBlank(key)) {
        prompts_.showMessage(kSpacesNotAllowedMessage, kProductTitle, platform::Severity::Warning);
        return false;
    }
    receiver.EmailEncryptKey = key;
    if (key.empty()) {
        receiver.EmailINITS.clear();
        return true;
    }
    prompts_.showMessage(kKeyCautionMessage, kProductTitle, platform::Severity::Warning);
    const auto two = prompts_.input({kTwoCharactersPrompt, kProductTitle, receiver.EmailINITS});
    if (two) receiver.EmailINITS = platform::trim(*two).substr(0, 2);
    return true;
}

bool EmailReceiversForm::save() {
    receiver.EmailCompanyName = platform::trim(receiver.EmailCompanyName);
    receiver.EmailEmailAddress = platform::trim(receiver.EmailEmailAddress);
    const auto refuse = [this](const char* text) {
        prompts_.showMessage(text, kProductTitle, platform::Severity::Warning);
        return false;
    };
    if (receiver.EmailCompanyName.empty()) return refuse(kCompanyNotEnteredRecordMessage);
    if (receiver.EmailEmailAddress.empty()) return refuse(kReceiverEmailMissingMessage);
    if (keyHasBlank(receiver.EmailEncryptKey)) return refuse(kSpacesNotAllowedMessage);
    EmailReceiversTable table(records_.dataFolder());
    if (!table.saveReceiver(receiver)) return refuse(kReadErrorMessage);
    keyEditable_ = receiver.EmailEncryptKey.empty();
    Form_Load();
    return true;
}

bool EmailReceiversForm::deleteReceiver() {
    EmailReceiversTable table(records_.dataFolder());
    if (!table.deleteReceiver(receiver.EmailCompanyName)) return false;
    receiver = {};
    keyEditable_ = true;
    Form_Load();
    return true;
}

bool EmailReceiversForm::makeDefault() {
    if (receiver.EmailEmailAddress.empty()) return false;
    return records_.defaults()
        .WriteKey(kDefaultEmailSection, "DefaultRecEMail", receiver.EmailEmailAddress)
        .ok();
}

}  // namespace ovd::settings
