#include "mail/auto_send_file.h"

#include <filesystem>

#include "crypto/transport.h"
#include "platform/files.h"
#include "platform/text.h"
#include "settings/delivery_defaults.h"
#include "settings/email_sites_tables.h"

namespace ovd::mail {

std::string sentStatusText(const std::string& fileName) {
    return "EMail File " + fileName + " Sucessfuly Sent";
}

std::optional<Receiver> defaultReceiver(const settings::CompanyRecords& records) {
    const settings::DefaultEmail defaults = settings::LoadDefaultEmail(records);
    if (defaults.DefaultRecEMail.empty()) return std::nullopt;
    settings::EmailReceiversTable table(records.dataFolder());
    for (const auto& row : table.receivers()) {
        if (platform::equalsIgnoreCase(row.EmailEmailAddress, defaults.DefaultRecEMail)) {
            return Receiver{row.EmailCompanyName, row.EmailEncryptKey, row.EmailEmailAddress};
        }
    }
    const settings::ClientList clients = records.LoadClients();
    for (int i = 0; i < clients.HowMany; ++i) {
        if (platform::equalsIgnoreCase(clients.emails[i], defaults.DefaultRecEMail)) {
            return Receiver{clients.companyNames[i], clients.encryptKeys[i], clients.emails[i]};
        }
    }
    return std::nullopt;
}

AutoSendEmail::AutoSendEmail(const settings::CompanyRecords& records, SenderSettings sender,
                             platform::Prompts& prompts)
    : records_(records),
      sender_(std::move(sender)),
      prompts_(prompts),
      mailTrace_(records.dataFolder()) {}

void AutoSendEmail::status(const std::string& text) {
    statusText = text;
    if (onStatus) onStatus(text);
}

void AutoSendEmail::trace(const std::string& text) {
    if (onTrace) onTrace(text);
}

void AutoSendEmail::fail(const std::string& reason) {
    EmailFailed = true;
    EmailError = reason;
    address.clear();
    // Whoever waits for the form must always see it finish, whatever stopped it.
    AutoDone = true;
}

void AutoSendEmail::removeTemporaryFolder() const {
    std::error_code ignored;
    std::filesystem::remove_all(
        platform::joinPath(records_.dataFolder(), crypto::kEmailTempFolderName), ignored);
}

std::optional<AutoSendEmail::Prepared> AutoSendEmail::prepare(const std::string& folder,
                                                              const std::string& file,
                                                              const MessageChoices& choices) {
    EmailFailed = false;
    EmailError.clear();
    AutoDone = false;
    if (file.empty()) {
        fail(kNoFilesToAttach);
        return std::nullopt;
    }
    removeTemporaryFolder();

    const auto receiver = defaultReceiver(records_);
    if (!receiver) {
        fail(kReceiverUnknownMessage);
        return std::nullopt;
    }
    address = receiver->address;

    Prepared prepared;
    prepared.fileName = file;
    MailMessage& message = prepared.message;
    message.charset = choices.charset;
    message.encoding = choices.encoding;
    message.priority = choices.priority;
    message.fromName = sender_.g_StrSendersName;
    message.fromAddress = sender_.g_strSenderAddress;
    message.organization = sender_.g_strOrganization;
    message.to = {receiver->address};
    message.subject = file;

    const std::string path = platform::joinPath(folder, file);
    if (!platform::fileExists(path)) {
        // A message without its letter would count the letter as sent: the staged
        // file stays for the next scan instead.
        const std::string text = file + crypto::kNotAttachedSuffix;
        status(text);
        fail(text);
        return std::nullopt;
    }
    if (sender_.g_bEncryptDecrypt && receiver->key.empty()) {
        prompts_.showMessage(crypto::kEmailNoKeyWarning, {}, platform::Severity::Warning);
        message.attachments.push_back({path, file});
    } else if (sender_.g_bEncryptDecrypt) {
        const auto enciphered = crypto::encipherEmailAttachment(
            {path, records_.dataFolder(), sender_.g_strSaveOurCompanyKey, sender_.g_strOrganization,
             receiver->company, receiver->key},
            prompts_);
        if (!enciphered) {
            // The receiver asked for it locked: it never leaves in clear by accident.
            fail(file + crypto::kNotAttachedSuffix);
            return std::nullopt;
        }
        message.attachments.push_back({*enciphered, platform::withoutFolder(*enciphered)});
    } else {
        message.attachments.push_back({path, file});
    }

    PlanRefusal refusal;
    auto plan = planSend(message, sender_, prompts_, refusal);
    if (!plan) {
        fail(refusal.text);
        return std::nullopt;
    }
    prepared.plan = std::move(*plan);
    return prepared;
}

DeliveryEvents AutoSendEmail::events() {
    DeliveryEvents events;
    events.transport.sendingTo = [this](const std::string& to) { status(kSendingMessageTo + to); };
    events.transport.trace = [this](const std::string& line) { mailTrace_.line(line); };
    events.deliveredTo = [this](const std::string& to) { status(kMessageDeliveredTo + to); };
    return events;
}

void AutoSendEmail::finish(const Prepared& prepared, const DeliveryOutcome& outcome) {
    if (outcome.delivered) {
        EmailFailed = false;
        EmailError.clear();
        status(sentStatusText(prepared.fileName));
    } else {
        const std::string text = sendErrorText(outcome.error);
        trace(text);
        EmailFailed = true;
        EmailError = outcome.error.text;
        address.clear();
    }
    AutoDone = true;
}

void AutoSendEmail::AutoSendThisfile(const std::string& folder, const std::string& file,
                                     MailTransport& transport, const MessageChoices& choices) {
    auto prepared = prepare(folder, file, choices);
    if (!prepared) return;
    const DeliveryOutcome outcome = deliver(prepared->plan, prepared->message, transport, events());
    finish(*prepared, outcome);
}

}  // namespace ovd::mail
