#pragma once
// At start-up, each delivery option that is on must have what it needs: e-mail a
// sender and a default receiver, FTP a default site. Each missing one is asked
// about; Yes opens its setup window, No (or a setup left undone) switches the option
// off for this run, so nothing waits on a delivery that can't happen.

#include <functional>

#include "platform/prompts.h"
#include "settings/company_records.h"
#include "settings/settings_record.h"

namespace ovd::settings {

inline constexpr const char* kEmailNotSetUpQuestion =
    "You have activated Email, but Email has not been setup. Email will not function until this "
    "step has been completed!  Would you like to do so now? ";
inline constexpr const char* kNoDefaultReceiverQuestion =
    "You have activated Email and Email has been setup. But you have not slected a default email "
    "address.Email will not function until this step has been completed!  Would you like to do "
    "so now? ";
inline constexpr const char* kEmailDeactivatedMessage =
    "Email is not setup.The Email option will now be deactivated.";
inline constexpr const char* kNoReceiverDeactivatedMessage =
    "An email address has not been entered.The Email option will now be deactivated.";
inline constexpr const char* kNoDefaultFtpQuestion =
    "You have activated FTP, but a default FTP has not been Selected.. FTP will not function "
    "until this step has been completed!  Would you like to do so now? ";
inline constexpr const char* kFtpDeactivatedMessage =
    "A defautl FTP has not been selected..The FTP option will now be deactivated.";

struct SetupWindows {
    // Each shows its window and returns when it closes; none where there is no window.
    std::function<void()> emailSetup;
    std::function<void()> ftpSetup;
};

// Switches AutoEmail or AutoFTP off in `record` (in memory, for this run) when the
// user declines or the setup still lacks what it needs.
void checkDeliveryOptions(SettingsRecord& record, const CompanyRecords& records,
                          platform::Prompts& prompts, const SetupWindows& windows);

}  // namespace ovd::settings
