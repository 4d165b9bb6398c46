#pragma once
// The unattended mail sender: given a staged file, it fills the message from the
// default receiver, attaches the file (enciphered when the options say so), sends
// it and records how it went in EmailFailed, EmailError and AutoDone, the flags
// the scan of the staging folder reads.
//
// prepare() and finish() run on the loop's thread (they may show boxes); the
// delivery between them runs wherever the caller likes: the companion sends in
// line, the compose window on a worker (MailSession).

#include <functional>
#include <optional>
#include <string>

#include "mail/mail_message.h"
#include "mail/mail_trace.h"
#include "mail/send_step.h"
#include "mail/sender_settings.h"
#include "platform/prompts.h"
#include "settings/company_records.h"

namespace ovd::mail {

inline constexpr const char* kNoFilesToAttach = "There are no files to attach for this message";
inline constexpr const char* kReceiverUnknownMessage =
    "The Company you are entering does not exist in the Transcibers file  "
    "or this company does not have a valid email address. "
    "Please Enter New Company or email address information in Transcribers Information "
    "on Main Menu. Until this process is completed-Please select another Company or Close email.";

// "EMail File " + name + " Sucessfuly Sent", spelled so.
std::string sentStatusText(const std::string& fileName);

// The default receiver as the company combo shows it.
struct Receiver {
    std::string company;  // cboCo
    std::string key;      // cboRecKey
    std::string address;  // cboEmail
};

// DefaultRecEMail found among the e-mail receivers, else among the transcribers.
std::optional<Receiver> defaultReceiver(const settings::CompanyRecords& records);

// The menus' current choices the unattended message takes.
struct MessageChoices {
    Charset charset = Charset::WesternEuropean;
    Encoding encoding = Encoding::SevenBit;
    Priority priority = Priority::Normal;
};

class AutoSendEmail {
  public:
    AutoSendEmail(const settings::CompanyRecords& records, SenderSettings sender,
                  platform::Prompts& prompts);

    // Run-time flags, as the staging scan reads them.
    bool EmailFailed = false;
    std::string EmailError;
    bool AutoDone = false;
    // cboEmail: the receiver's address, cleared when a send fails.
    std::string address;
    // The status bar's last text.
    std::string statusText;

    // Every status text, and every line traced, as it happens.
    std::function<void(const std::string&)> onStatus;
    std::function<void(const std::string&)> onTrace;

    struct Prepared {
        MailMessage message;
        SendPlan plan;
        std::string fileName;
    };
    // The steps up to the send: nothing comes back (and the flags say why) when the
    // message can't go.
    std::optional<Prepared> prepare(const std::string& folder, const std::string& file,
                                    const MessageChoices& choices = {});
    // The events of a delivery, reaching the status bar.
    DeliveryEvents events();
    void finish(const Prepared& prepared, const DeliveryOutcome& outcome);

    // The whole of it in line: prepare, deliver through `transport`, finish.
    void AutoSendThisfile(const std::string& folder, const std::string& file,
                          MailTransport& transport, const MessageChoices& choices = {});

    // AutoEmailTemp with all it holds, as the form's close removes it.
    void removeTemporaryFolder() const;

  private:
    void fail(const std::string& reason);
    void status(const std::string& text);
    void trace(const std::string& text);

    const settings::CompanyRecords& records_;
    SenderSettings sender_;
    platform::Prompts& prompts_;
    MailTrace mailTrace_;
};

}  // namespace ovd::mail
