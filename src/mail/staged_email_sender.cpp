#include "mail/staged_email_sender.h"

#include "mail/curl_mail_transport.h"
#include "platform/files.h"

namespace ovd::mail {

StagedEmailSender::StagedEmailSender(std::string dataFolder, platform::Prompts& prompts)
    : records_(std::move(dataFolder)),
      prompts_(prompts),
      transport_(std::make_unique<CurlMailTransport>()) {}

StagedEmailSender::~StagedEmailSender() = default;

void StagedEmailSender::setDirectDelivery(ResolverSettings resolver, int port) {
    resolver_ = std::move(resolver);
    directPort_ = port;
}

platform::Result<void> StagedEmailSender::send(const std::string& stagedFile) {
    SenderSettings sender = loadSenderSettings(records_);
    sender.resolver = resolver_;
    sender.directPort = directPort_;
    AutoSendEmail form(records_, std::move(sender), prompts_);
    form.onTrace = trace_;
    form.onStatus = trace_;
    form.AutoSendThisfile(platform::folderOf(stagedFile), platform::withoutFolder(stagedFile),
                          *transport_);
    // The form is made for each send and its temporary folder goes with it.
    form.removeTemporaryFolder();
    if (form.EmailFailed) return platform::failure(form.EmailError);
    return {};
}

void StagedEmailSender::cancel() { transport_->cancel(); }

}  // namespace ovd::mail
