#pragma once
// The named keys for manual decryption (DecryptPasswords in Passwords.db) as their
// window keeps them: a name per sender, and the key agreed with it.

#include <string>
#include <vector>

#include "platform/prompts.h"
#include "settings/passwords_tables.h"
#include "settings/record_rules.h"

namespace ovd::settings {

class KeyRecordsForm {
  public:
    KeyRecordsForm(const std::string& dataFolder, platform::Prompts& prompts);

    // The names, ordered. A file that is not a database shows "An Error has Occurd"
    // and leaves the list empty; false then.
    bool Form_Load();
    [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

    // cboName: a listed name fills the key and closes it to editing.
    void chooseName(const std::string& name);
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] const std::string& key() const { return key_; }
    void setName(std::string name) { name_ = std::move(name); }
    // A key typed in: refused with a blank, otherwise taken with the caution.
    bool enterKey(const std::string& key);
    [[nodiscard]] bool keyEditable() const { return keyEditable_; }
    void editEncryptionKey() { keyEditable_ = true; }

    bool save();
    bool deleteRecord();
    // Asks about what is not saved; true when the window may close.
    bool requestClose();

  private:
    [[nodiscard]] bool listed(const std::string& name) const;

    std::string dataFolder_;
    platform::Prompts& prompts_;
    std::vector<std::string> names_;
    std::string name_;
    std::string key_;
    std::string savedKey_;  // the key as stored for the chosen name; empty for a new one
    bool keyEditable_ = true;
};

}  // namespace ovd::settings
