#pragma once
// The e-mail receivers window as data: the rows of AvailEmails, each a company, its
// address and the key agreed with it, and which of them is the default receiver.

#include <string>
#include <vector>

#include "platform/prompts.h"
#include "settings/company_records.h"
#include "settings/email_sites_tables.h"
#include "settings/record_rules.h"

namespace ovd::settings {

inline constexpr const char* kDefaultEmailSection = "DefaultEmailForCO";
inline constexpr const char* kReceiverEmailMissingMessage =
    "Transcibers Email Address field has not been entered-Record is not saved";

class EmailReceiversForm {
  public:
    EmailReceiversForm(const CompanyRecords& records, platform::Prompts& prompts);

    // The companies, ordered. A file that is not a database shows "An Error has
    // Occurd" and leaves the list empty; false then.
    bool Form_Load();
    [[nodiscard]] const std::vector<std::string>& companies() const { return companies_; }
    // DefaultRecEMail of DefaultInfo.ini.
    [[nodiscard]] std::string defaultReceiver() const;

    void chooseCompany(const std::string& company);
    EmailReceiver receiver;  // the boxes
    // Refused with a blank; otherwise the caution and the two characters.
    bool enterKey(const std::string& key);
    [[nodiscard]] bool keyEditable() const { return keyEditable_; }
    void editEncryptionKey() { keyEditable_ = true; }

    bool save();
    bool deleteReceiver();
    // The receiver in the boxes becomes the one letters go to by default.
    bool makeDefault();

  private:
    const CompanyRecords& records_;
    platform::Prompts& prompts_;
    std::vector<std::string> companies_;
    bool keyEditable_ = true;
};

}  // namespace ovd::settings
