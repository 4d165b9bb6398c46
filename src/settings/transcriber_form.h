#pragma once
// The transcriber window as data: its boxes, which of them must be filled, and every
// rule and question of entry, save and leaving. The Qt window draws it and hands the
// user's doings to it; tests drive it the same way.

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/prompts.h"
#include "settings/company_records.h"
#include "settings/record_rules.h"
#include "settings/transcriber_records.h"

namespace ovd::settings {

inline constexpr const char* kTranscriberSavedMessage = "Transcribers information has been saved";
inline constexpr const char* kUnknownCompanyMessage =
    "The Company you are entering in does not exist.  Please Enter New Company information in "
    "the boxes below and then hit save";
inline constexpr const char* kTranscriberNameRequiredMessage = "Name field is now required";
inline constexpr const char* kTranscriberEmailMissingMessage =
    "Transcibers Email Address field has not been entered-Record is not saved";
inline constexpr const char* kTranscriberIpMissingMessage =
    "Transcibers IP Address field has not been entered-Record is not saved";

// One box of the window, the key it is kept under, and the grey prompt it shows empty.
struct TranscriberBox {
    const char* control;
    const char* key;
    const char* prompt;
    const char* clipboardLabel;
    const char* changedMessage;  // asked when the window closes with the box changed
};

inline constexpr TranscriberBox kTranscriberBoxes[] = {
    {"txtRecCompanyName", "CompanyName", "Enter Transcriber Company Name",
     "Company Name: ", nullptr},
    {"txtRecName", "Name", "Enter Transcriber Full Name",
     "Name: ", "The Transcribers name has changed but the information has not been saved."},
    {"txtRecAddress", "Address", "Enter Transcriber Address",
     "Address: ", "The Transcribers address has changed but the information has not been saved."},
    {"txtRecCity", "City", "Enter Transcriber City",
     "City: ", "The Transcribers city has changed but the information has not been saved."},
    {"txtRecSt", "St", "Enter Transcriber State",
     "State: ", "The Transcribers state has changed but the information has not been saved."},
    {"txtRecZip", "Zip", "Enter Transcriber Zip",
     "Zip: ", "The Transcriber zip has changed but the information has not been saved."},
    {"txtRecPhone", "Phone", "Enter Transcriber Phone",
     "Phone: ", "The Transcriber phone has changed but the information has not been saved."},
    {"txtRecPTPHostName", "PTPHostName", "Enter Transcriber HostName", "Host Name: ", nullptr},
    {"txtRecPTPHostIP", "PTPHostIP", "Enter Transcriber HostIP",
     "Host IP: ", "The Transcriber IP address has changed but the information has not been saved."},
    {"txtRecEmail", "Email", "Enter Transcriber Email Address", "Email: ",
     "The Transcriber Email address has changed but the information has not been saved."},
    {"txtRecKey", "RECEncryptKey", "Enter Transcriber Encryption Key",
     "Encryption Key: ", kKeyChangedMessage},
};

// Which deliveries are in use decide which boxes are required.
struct DeliveryUse {
    bool email = false;     // AutoEmail
    bool peer = false;      // TCP
    bool encipher = false;  // enciphering of e-mail or of this transcriber's FTP site
};

class TranscriberForm {
  public:
    TranscriberForm(const CompanyRecords& records, platform::Prompts& prompts, DeliveryUse use);

    // Reads the company list. A file that can't be read shows "An Error has Occurd"
    // and leaves the boxes empty; false then.
    bool Form_Load();
    [[nodiscard]] const std::vector<std::string>& companies() const { return companies_; }

    // cboCompanyName: a listed company is loaded; another name starts a new record.
    void chooseCompany(const std::string& name);

    [[nodiscard]] std::string text(std::string_view control) const;
    void setText(std::string_view control, std::string value);
    [[nodiscard]] std::string initials() const { return record_.get("RECEncryptINITS"); }

    // Leaving txtRecCompanyName: false (with the box left as typed) when its first
    // six characters are those of another transcriber.
    bool leaveCompanyName();
    // A key typed into txtRecKey: refused with a blank; otherwise the caution, then
    // the two characters that label it. False when refused.
    bool enterKey(const std::string& key);
    // Saved keys are closed to editing until id_EditEncryptionKey opens them.
    [[nodiscard]] bool keyEditable() const { return keyEditable_; }
    void editEncryptionKey() { keyEditable_ = true; }

    // The required boxes carry the pale yellow and an asterisk (reqAstrk1..5).
    [[nodiscard]] bool required(std::string_view control) const;
    [[nodiscard]] static int requiredFieldColour() { return kRequiredFieldColour; }

    bool save();
    // Asks about what is not saved; true when the window may close.
    bool requestClose();
    // id_SaveInformationtoClipboard: the record as labelled lines.
    [[nodiscard]] std::string clipboardText() const;

    // After each save: the list is read again and the globals of the current
    // transcriber reloaded by whoever holds them.
    std::function<void()> onSaved;
    std::function<void(const std::string&)> trace;

  private:
    [[nodiscard]] bool changed(std::string_view key) const;
    bool refuse(const char* text);

    const CompanyRecords& records_;
    platform::Prompts& prompts_;
    DeliveryUse use_;
    TranscriberStore store_;
    std::vector<std::string> companies_;
    TranscriberRecord saved_;   // as last read or written; empty for a new record
    TranscriberRecord record_;  // as the boxes hold it
    bool keyEditable_ = true;
};

}  // namespace ovd::settings
