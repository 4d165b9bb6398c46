#pragma once
// The companion's way to send one file staged in EmailTemp: the unattended mail
// sender run in line with the data folder's settings as they are at that moment.
// The failure carries EmailError; the file is never touched here, so the caller
// removes it only after a success (the server's final OK of the message).

#include <functional>
#include <memory>
#include <string>

#include "mail/auto_send_file.h"
#include "mail/mail_transport.h"
#include "platform/prompts.h"
#include "platform/result.h"
#include "settings/company_records.h"

namespace ovd::mail {

class StagedEmailSender {
  public:
    // Boxes the sender would show go to `prompts` (the companion's headless answers).
    StagedEmailSender(std::string dataFolder, platform::Prompts& prompts);
    ~StagedEmailSender();

    // Test-only: where direct sending looks up mail exchangers and which port they use.
    void setDirectDelivery(ResolverSettings resolver, int port);
    // The event log's trace of each failure ("Sending File via Email error = …").
    void setTrace(std::function<void(const std::string&)> trace) { trace_ = std::move(trace); }

    // Sends the file to the default receiver; the status texts go to the trace too.
    platform::Result<void> send(const std::string& stagedFile);
    // Cuts short a send under way, from any thread; the file stays staged.
    void cancel();

  private:
    settings::CompanyRecords records_;
    platform::Prompts& prompts_;
    std::unique_ptr<MailTransport> transport_;
    std::function<void(const std::string&)> trace_;
    ResolverSettings resolver_;
    int directPort_ = 25;
};

}  // namespace ovd::mail
