#include "settings/delivery_startup_checks.h"

#include <string>

#include "settings/config_file.h"
#include "settings/delivery_defaults.h"

namespace ovd::settings {

namespace {

// One check: nothing to do when `present` says so; otherwise the question, the window
// on Yes, and the option off when it is still missing.
void check(bool& option, const std::function<bool()>& present, const char* question,
           const char* deactivated, const std::function<void()>& window,
           platform::Prompts& prompts) {
    if (!option || present()) return;
    if (prompts.askYesNo(question, kProductTitle, platform::Answer::Yes) && window) {
        window();
        if (present()) return;
    }
    prompts.showMessage(deactivated, kProductTitle, platform::Severity::Warning);
    option = false;
}

}  // namespace

void checkDeliveryOptions(SettingsRecord& record, const CompanyRecords& records,
                          platform::Prompts& prompts, const SetupWindows& windows) {
    bool email = record.AutoEmail;
    check(
        email, [&] { return !LoadDefaultEmail(records).DefaultEmail.empty(); },
        kEmailNotSetUpQuestion, kEmailDeactivatedMessage, windows.emailSetup, prompts);
    check(
        email, [&] { return !LoadDefaultEmail(records).DefaultRecEMail.empty(); },
        kNoDefaultReceiverQuestion, kNoReceiverDeactivatedMessage, windows.emailSetup, prompts);
    record.AutoEmail = email;

    bool ftp = record.AutoFTP;
    check(
        ftp,
        [&] {
            return !records.defaults()
                        .readValue(kDefaultFtpSection, "FTPServer")
                        .value_or("")
                        .empty();
        },
        kNoDefaultFtpQuestion, kFtpDeactivatedMessage, windows.ftpSetup, prompts);
    record.AutoFTP = ftp;
}

}  // namespace ovd::settings
