#include "settings/key_records_form.h"

#include "platform/files.h"
#include "platform/text.h"
#include "settings/config_file.h"
#include "settings/databases.h"

namespace ovd::settings {

namespace {

// A file there that the database can't open is damaged; a missing one is just empty.
bool databaseDamaged(const std::string& dataFolder, StationDatabase which) {
    const std::string path = databasePath(dataFolder, which);
    if (!platform::fileExists(path)) return false;
    DatabaseSession session(dataFolder, which);
    return session.existing() == nullptr;
}

}  // namespace

KeyRecordsForm::KeyRecordsForm(const std::string& dataFolder, platform::Prompts& prompts)
    : dataFolder_(dataFolder), prompts_(prompts) {}

bool KeyRecordsForm::Form_Load() {
    names_.clear();
    if (databaseDamaged(dataFolder_, StationDatabase::Passwords)) {
        prompts_.showMessage(kReadErrorMessage, kProductTitle, platform::Severity::Critical);
        return false;
    }
    DecryptPasswordsTable table(dataFolder_);
    for (const auto& row : table.passwords()) names_.push_back(row.Name);
    return true;
}

bool KeyRecordsForm::listed(const std::string& name) const {
    for (const auto& listedName : names_) {
        if (platform::equalsIgnoreCase(listedName, name)) return true;
    }
    return false;
}

void KeyRecordsForm::chooseName(const std::string& name) {
    DecryptPasswordsTable table(dataFolder_);
    const auto row = table.findPassword(name);
    name_ = row ? row->Name : name;
    key_ = row ? row->Password : std::string();
    savedKey_ = key_;
    keyEditable_ = key_.empty();
}

bool KeyRecordsForm::enterKey(const std::string& key) {
    if (!keyEditable_) return false;
    if (keyHasBlank(key)) {
        prompts_.showMessage(kSpacesNotAllowedMessage, kProductTitle, platform::Severity::Warning);
        return false;
    }
    key_ = key;
    if (!key.empty())
        prompts_.showMessage(kKeyCautionMessage, kProductTitle, platform::Severity::Warning);
    return true;
}

bool KeyRecordsForm::save() {
    name_ = platform::trim(name_);
    const auto refuse = [this](const char* text) {
        prompts_.showMessage(text, kProductTitle, platform::Severity::Warning);
        return false;
    };
    if (name_.empty()) return refuse(kCompanyNotEnteredRecordMessage);
    if (key_.empty()) return refuse(kKeyNotEnteredRecordMessage);
    if (keyHasBlank(key_)) return refuse(kSpacesNotAllowedMessage);
    DecryptPasswordsTable table(dataFolder_);
    const auto old = table.findPassword(name_);
    // The new row goes in before the old one goes, so a failed write loses no key.
    if (!table.addPassword(name_, key_)) {
        return refuse(kReadErrorMessage);
    }
    if (old) {
        // findPassword gives the first of the rows of that name: the old one, added earlier.
        table.deletePassword(old->Name);
    }
    savedKey_ = key_;
    keyEditable_ = false;
    Form_Load();
    return true;
}

bool KeyRecordsForm::deleteRecord() {
    DecryptPasswordsTable table(dataFolder_);
    if (!table.deletePassword(name_)) return false;
    name_.clear();
    key_.clear();
    savedKey_.clear();
    keyEditable_ = true;
    Form_Load();
    return true;
}

bool KeyRecordsForm::requestClose() {
    if (!name_.empty() && !listed(name_) && key_.empty()) {
        return prompts_.askYesNo(
            std::string(kNewNameBlankKeyMessage) + "\r\n" + kExitWithoutSavingQuestion,
            kProductTitle, platform::Answer::No);
    }
    if (key_ != savedKey_) {
        if (prompts_.askYesNo(std::string(kKeyChangedMessage) + "\r\n" + kSaveNowQuestion,
                              kProductTitle, platform::Answer::Yes)) {
            return save();
        }
    }
    return true;
}

}  // namespace ovd::settings
