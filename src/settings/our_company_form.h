#pragma once
// The own-company window as data: who the station is (the company name travels in
// every enciphered file's name and key) and the station's own key.

#include <functional>
#include <string>
#include <string_view>

#include "platform/prompts.h"
#include "settings/company_records.h"
#include "settings/record_rules.h"

namespace ovd::settings {

inline constexpr const char* kKeyBlankMessage = "Encryption key is blank.  Please re-enter";
inline constexpr const char* kEmailNeedsNameQuestion =
    "The EMail program will not function until the name field has been entered.  "
    "Would you like to do so now? ";
inline constexpr const char* kEmailDataNotSavedMessage = "EMail will not function--Data Not Saved";
inline constexpr const char* kCompanySavedWithoutNameMessage =
    "Thank You...All required fields have been entered except the Name Field has not been "
    "entered.  Email will not function until this step has been completed! --- Company "
    "Information saved";
inline constexpr const char* kInformationNotSavedTitle = "Information Not Saved.";
inline constexpr const char* kNoCompanyQuestion =
    "Company Name has 'NOT' been entered. This Program will not function until this step has "
    "been completed.Would you like to do so now? ";
inline constexpr const char* kNoCompanyClosingMessage =
    "Company Information has 'NOT' been setup.  This program will not function until this step "
    "has been completed!  Program is closing";

// The own company as the rest of the station sees it.
struct OurCompany {
    std::string g_strOrganization;       // CompanyName
    std::string g_strSaveOurCompanyKey;  // EncryptKey
};

// Read from the file each time; a missing file gives empty texts.
OurCompany readOurCompany(const CompanyRecords& records);

struct OurCompanyBox {
    const char* control;
    const char* key;
    const char* changedMessage;  // told when the window closes with the box changed
};

inline constexpr OurCompanyBox kOurCompanyBoxes[] = {
    {"txtCompanyName", "CompanyName", nullptr},
    {"txtName", "Name",
     "Name field has been changed.  The information must be saved before exiting the program."},
    {"txtAddress", "Address",
     "Address field has been changed.  The information must be saved before exiting the program."},
    {"txtCity", "City",
     "City field has been changed.  The information must be saved before exiting the program."},
    {"txtSt", "St",
     "State field has been changed.  The information must be saved before exiting the program."},
    {"txtZip", "Zip",
     "Zip field has been changed.  The information must be saved before exiting the program."},
    {"txtPhone", "Phone",
     "Phone field has been changed.  The information must be saved before exiting the program."},
    {"txtKeyInfo", "EncryptKey", nullptr},
};

class OurCompanyForm {
  public:
    OurCompanyForm(const CompanyRecords& records, platform::Prompts& prompts);

    // A file that can't be read shows "An Error has Occurd" and leaves the boxes empty.
    bool Form_Load();
    [[nodiscard]] std::string text(std::string_view control) const;
    void setText(std::string_view control, std::string value);

    bool enterKey(const std::string& key);
    [[nodiscard]] bool keyEditable() const { return keyEditable_; }
    void editEncryptionKey() { keyEditable_ = true; }
    [[nodiscard]] bool required(std::string_view control) const;

    bool save();
    // True when the window may close: a changed box must be saved first.
    bool requestClose();
    [[nodiscard]] std::string clipboardText() const;

    // Asked to move the focus to the Name box after the user chose to fill it now.
    std::function<void()> focusName;
    std::function<void()> onSaved;

  private:
    [[nodiscard]] std::string& field(std::string_view key);
    [[nodiscard]] std::string fieldOf(const OurCompanyFields& fields, std::string_view key) const;
    bool write();

    const CompanyRecords& records_;
    platform::Prompts& prompts_;
    OurCompanyFields saved_;
    OurCompanyFields fields_;
    bool keyEditable_ = true;
};

// The windows that need the own company (e-mail, FTP, records) ask for it when it is
// missing; `openOurCompany` shows its window and returns when it closes. False, after
// the closing text, when there is still none: the asking window closes, the station
// goes on.
bool ensureOurCompany(const CompanyRecords& records, platform::Prompts& prompts,
                      const std::function<void()>& openOurCompany);

}  // namespace ovd::settings
