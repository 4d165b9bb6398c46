#pragma once
// The mail server options window as data: the sender identity, the relay or
// direct choice, the POP3 login, encryption, and the transport protection of the
// identity. OK and Apply keep the boxes; Cancel leaves the settings as they were.

#include <string>
#include <vector>

#include "mail/sender_settings.h"
#include "platform/prompts.h"
#include "settings/company_records.h"

namespace ovd::mail {

inline constexpr const char* kRelayFieldsBlankMessage =
    "You have indicated to 'Send all messages through the specified relay server'."
    "The 'Relay Server(outgoing) or the Relay Server Port information is blank"
    "This option is set to 'Send all messages directly to the recipient'";
inline constexpr const char* kPopFieldsBlankMessage =
    "You have indicated to check for 'Server Authentication'."
    "The POP3 Server (incoming) Username or Password information is blank"
    "This option is turn 'OFF'";
inline constexpr const char* kRelayHostRequiredMessage =
    "A relay server host name or IP address must be specified";
inline constexpr const char* kRelayOptionText =
    "Send all messages through the specified relay server";
inline constexpr const char* kDirectOptionText = "Send all messages directly to the recipient";

class OptionsForm {
  public:
    OptionsForm(const settings::CompanyRecords& records, platform::Prompts& prompts);

    void Form_Load();
    SenderSettings boxes;

    // cboSenderAddress: the sender addresses of the five accounts, "" where none.
    [[nodiscard]] std::vector<std::string> identities() const;
    // Copies every field of the account (1 to 5) into the boxes.
    void chooseIdentity(int account);

    // optServer: a relay choice with the relay's host or port blank is told and
    // falls back to direct sending. Returns the choice that stands.
    bool chooseRelay(bool relay);
    // chkServerAuthentication: on with the POP3 user or password blank is told and
    // the box clears. Returns whether it stays on.
    bool setServerAuthentication(bool on);

    // cmdOK: refused, with its text, while relaying is chosen without a host.
    // True when the window may close.
    bool cmdOK();
    bool cmdApply();

  private:
    bool write();

    const settings::CompanyRecords& records_;
    platform::Prompts& prompts_;
};

}  // namespace ovd::mail
