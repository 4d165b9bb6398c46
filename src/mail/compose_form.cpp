#include "mail/compose_form.h"

#include <cstdio>

#include "crypto/transport.h"
#include "platform/files.h"
#include "platform/text.h"
#include "settings/delivery_defaults.h"
#include "settings/email_sites_tables.h"

namespace ovd::mail {

namespace {

constexpr const char* kSpellingTitle = "Spelling";

std::string joinedSuggestions(const std::vector<std::string>& suggestions) {
    std::string text;
    for (std::size_t i = 0; i < suggestions.size() && i < 5; ++i) {
        text += (i == 0 ? "" : ", ") + suggestions[i];
    }
    return text;
}

}  // namespace

std::vector<std::string> addressList(const std::string& text) {
    std::vector<std::string> addresses;
    std::string current;
    for (const char c : text + ",") {
        if (c == ',' || c == ';') {
            std::string address = platform::trim(current);
            if (!address.empty()) addresses.push_back(std::move(address));
            current.clear();
        } else {
            current += c;
        }
    }
    return addresses;
}

bool plausibleAddress(const std::string& address) {
    const auto at = address.find('@');
    if (at == std::string::npos || at == 0 || at + 1 >= address.size()) return false;
    if (address.find('@', at + 1) != std::string::npos) return false;
    for (const char c : address) {
        if (static_cast<unsigned char>(c) < 33) return false;
    }
    return address.find_first_of("<>,;\"") == std::string::npos;
}

ComposeForm::ComposeForm(platform::EventLoop& loop, const settings::CompanyRecords& records,
                         platform::Prompts& prompts, std::unique_ptr<MailTransport> transport)
    : records_(records),
      prompts_(prompts),
      session_(loop, std::move(transport)),
      mailTrace_(records.dataFolder()) {}

void ComposeForm::Form_Load() {
    sender_ = loadSenderSettings(records_);
    receivers.clear();
    settings::EmailReceiversTable table(records_.dataFolder());
    for (const auto& row : table.receivers()) {
        if (!row.EmailEmailAddress.empty()) {
            receivers.push_back({row.EmailCompanyName, row.EmailEncryptKey, row.EmailEmailAddress});
        }
    }
    // The transcribers with an address are receivers too, as the default may be one of them.
    const settings::ClientList clients = records_.LoadClients();
    for (int i = 0; i < clients.HowMany; ++i) {
        if (clients.emails[i].empty() || receiverOf(clients.emails[i])) continue;
        receivers.push_back({clients.companyNames[i], clients.encryptKeys[i], clients.emails[i]});
    }
    if (const auto chosen = defaultReceiver(records_)) cboEmail = chosen->address;
    notify();
}

const char* ComposeForm::formatLabel() const {
    return format == BodyFormat::PlainText ? kPlainTextLabel : kStyledTextLabel;
}

void ComposeForm::notify() const {
    if (changed) changed();
}

void ComposeForm::status(const std::string& text) {
    statusText = text;
    notify();
}

bool ComposeForm::command(const std::string& key) {
    if (key == kNewMessageKey || key == kFileNewKey) {
        newMessage();
    } else if (key == kSendMessageKey) {
        send();
    } else if (key == kViewEmailsKey) {
        if (viewEmails) viewEmails();
    } else if (key == kOptionsKey) {
        if (openOptions) openOptions();
        sender_ = loadSenderSettings(records_);
    } else if (key == kCloseKey) {
        if (close) close();
    } else if (key == kFileAttachKey) {
        browse();
    } else if (key == kFileSaveAsKey) {
        saveAs();
    } else if (key == kFileDeleteAttachmentKey) {
        if (!comboAttachment.empty()) deleteAttachment(comboAttachment.size() - 1);
    } else if (key == kFileSpellCheckKey) {
        const auto speller = openSpeller ? openSpeller() : nullptr;
        spellCheck(speller.get());
    } else {
        for (std::size_t i = 0; i < kPriorityKeys.size(); ++i) {
            if (key == kPriorityKeys[i]) priority = static_cast<Priority>(i);
        }
        for (std::size_t i = 0; i < kCharsetKeys.size(); ++i) {
            if (key == kCharsetKeys[i]) charset = static_cast<Charset>(i);
        }
        if (key == kEncodingKeys[0]) encoding = Encoding::SevenBit;
        if (key == kEncodingKeys[1]) encoding = Encoding::QuotedPrintable;
        if (key == kFormatKeys[0]) format = BodyFormat::PlainText;
        if (key == kFormatKeys[1]) format = BodyFormat::StyledTextHtml;
        const auto known = [&key](const auto& keys) {
            for (const char* each : keys) {
                if (key == each) return true;
            }
            return false;
        };
        if (!known(kPriorityKeys) && !known(kCharsetKeys) && !known(kEncodingKeys) &&
            !known(kFormatKeys)) {
            return false;
        }
        notify();
    }
    return true;
}

std::optional<Receiver> ComposeForm::receiverOf(const std::string& entry) const {
    const std::string wanted = platform::trim(entry);
    for (const auto& receiver : receivers) {
        if (platform::equalsIgnoreCase(receiver.company, wanted) ||
            platform::equalsIgnoreCase(receiver.address, wanted)) {
            return receiver;
        }
    }
    return std::nullopt;
}

bool ComposeForm::leaveReceiver() {
    const auto receiver = receiverOf(cboEmail);
    if (!receiver) {
        prompts_.showMessage(kReceiverUnknownMessage, {}, platform::Severity::Warning);
        return false;
    }
    cboEmail = receiver->address;
    notify();
    return true;
}

void ComposeForm::newMessage() {
    editCc.clear();
    editBcc.clear();
    editSubject.clear();
    editMessageText.clear();
    editMessageHTML.clear();
    for (std::size_t i = comboAttachment.size(); i > 0; --i) deleteAttachment(i - 1);
    statusText.clear();
    bytesSent = 0;
    notify();
}

void ComposeForm::attach(const std::string& path) {
    const std::string name = platform::withoutFolder(path);
    bool already = false;
    for (const auto& attached : comboAttachment) already = already || attached == path;
    if (already || !platform::fileExists(path)) {
        prompts_.showMessage(name + crypto::kNotAttachedSuffix, {}, platform::Severity::Warning);
        return;
    }
    const auto receiver = receiverOf(cboEmail);
    if (sender_.g_bEncryptDecrypt && receiver && !receiver->key.empty()) {
        const auto enciphered = crypto::encipherEmailAttachment(
            {path, records_.dataFolder(), sender_.g_strSaveOurCompanyKey, sender_.g_strOrganization,
             receiver->company, receiver->key},
            prompts_);
        // The box has said the file is not attached.
        if (!enciphered) return;
        comboAttachment.push_back(*enciphered);
        comboAttachmentShort.push_back(platform::withoutFolder(*enciphered));
    } else {
        if (sender_.g_bEncryptDecrypt) {
            prompts_.showMessage(crypto::kEmailNoKeyWarning, {}, platform::Severity::Warning);
        }
        comboAttachment.push_back(path);
        comboAttachmentShort.push_back(name);
    }
    notify();
}

void ComposeForm::browse() {
    platform::FileRequest request;
    request.title = "Attach";
    request.filters = {{"All Files", {"*.*"}}};
    if (const auto chosen = prompts_.chooseFile(request)) attach(*chosen);
}

void ComposeForm::deleteAttachment(std::size_t index) {
    if (index >= comboAttachment.size()) return;
    const std::string path = comboAttachment[index];
    comboAttachment.erase(comboAttachment.begin() + static_cast<std::ptrdiff_t>(index));
    comboAttachmentShort.erase(comboAttachmentShort.begin() + static_cast<std::ptrdiff_t>(index));
    // Only the window's own enciphered copy is deleted: the author's file stays.
    const std::string temporary =
        platform::joinPath(records_.dataFolder(), crypto::kEmailTempFolderName);
    if (platform::folderOf(path) == temporary) std::remove(path.c_str());
    notify();
}

std::optional<MailMessage> ComposeForm::message() {
    MailMessage built;
    built.fromName = sender_.g_StrSendersName;
    built.fromAddress = sender_.g_strSenderAddress;
    built.organization = sender_.g_strOrganization;
    built.subject = editSubject;
    built.format = format;
    built.body = format == BodyFormat::PlainText ? editMessageText : editMessageHTML;
    built.fontName = fontName;
    built.priority = priority;
    built.charset = charset;
    built.encoding = encoding;
    if (!platform::trim(cboEmail).empty()) {
        const auto receiver = receiverOf(cboEmail);
        if (!receiver) {
            prompts_.showMessage(kReceiverUnknownMessage, {}, platform::Severity::Warning);
            return std::nullopt;
        }
        built.to = {receiver->address};
    }
    built.cc = addressList(editCc);
    built.bcc = addressList(editBcc);
    for (const auto& list : {built.cc, built.bcc}) {
        for (const auto& address : list) {
            if (!plausibleAddress(address)) {
                prompts_.showMessage(kBadAddressMessage + address, {}, platform::Severity::Warning);
                return std::nullopt;
            }
        }
    }
    for (std::size_t i = 0; i < comboAttachment.size(); ++i) {
        built.attachments.push_back({comboAttachment[i], comboAttachmentShort[i]});
    }
    return built;
}

void ComposeForm::saveAs() {
    platform::FileRequest request;
    request.mode = platform::FileRequest::Mode::Save;
    request.title = "Save As";
    request.initialName = editSubject;
    request.filters = {
        {"Text Files", {"*.txt"}}, {"E-Mail Message Files", {"*.eml"}}, {"All Files", {"*.*"}}};
    const auto chosen = prompts_.chooseFile(request);
    if (!chosen) return;
    const auto built = message();
    if (!built) {
        prompts_.showMessage(kUnableToCreateSavedMessage, {}, platform::Severity::Warning);
        return;
    }
    if (!saveMessage(*built, *chosen)) {
        prompts_.showMessage(kUnableToSaveMessageTo + *chosen, {}, platform::Severity::Warning);
    }
}

bool ComposeForm::send() {
    if (session_.busy()) {
        prompts_.showMessage(kSendRunningText);
        return false;
    }
    bytesSent = 0;
    auto built = message();
    if (!built) return false;
    if (!MessageStream::open(*built)) {
        prompts_.showMessage(kUnableToCreateMessage, {}, platform::Severity::Warning);
        return false;
    }
    PlanRefusal refusal;
    auto plan = planSend(*built, sender_, prompts_, refusal);
    if (!plan) {
        EmailFailed = true;
        EmailError = refusal.text;
        notify();
        return false;
    }
    DeliveryEvents events;
    events.transport.sendingTo = [this](const std::string& to) { status(kSendingMessageTo + to); };
    events.transport.trace = [this](const std::string& line) { mailTrace_.line(line); };
    events.transport.progress = [this](std::uint64_t sent) {
        bytesSent = sent;
        notify();
    };
    events.deliveredTo = [this](const std::string& to) { status(kMessageDeliveredTo + to); };
    const std::string name =
        comboAttachmentShort.empty() ? editSubject : comboAttachmentShort.front();
    const auto started = session_.start(std::move(*plan), std::move(*built), std::move(events),
                                        [this, name](const DeliveryOutcome& outcome) {
                                            if (outcome.delivered) {
                                                EmailFailed = false;
                                                EmailError.clear();
                                                editSubject.clear();
                                                editMessageText.clear();
                                                editMessageHTML.clear();
                                                cboEmail.clear();
                                                editCc.clear();
                                                editBcc.clear();
                                                status(sentStatusText(name));
                                            } else {
                                                EmailFailed = true;
                                                EmailError = outcome.error.text;
                                                status(sendErrorText(outcome.error));
                                            }
                                        });
    if (!started) {
        prompts_.showMessage(started.error());
        return false;
    }
    return true;
}

void ComposeForm::spellCheck(Speller* speller) {
    if (speller == nullptr) {
        prompts_.showMessage(kNoDictionaryMessage, {}, platform::Severity::Warning);
        return;
    }
    std::string& text = format == BodyFormat::PlainText ? editMessageText : editMessageHTML;
    std::size_t shift = 0;
    for (const auto& wrong : misspellings(text, *speller)) {
        const auto suggestions = speller->suggest(wrong.word);
        platform::InputRequest request;
        request.title = kSpellingTitle;
        request.prompt =
            "Not in the dictionary: " + wrong.word +
            (suggestions.empty() ? "" : "\nSuggestions: " + joinedSuggestions(suggestions));
        request.initialText = suggestions.empty() ? wrong.word : suggestions.front();
        const auto answer = prompts_.input(request);
        // Cancel ends the check; every change made so far stays.
        if (!answer) break;
        text.replace(wrong.offset + shift, wrong.word.size(), *answer);
        shift += answer->size() - wrong.word.size();
    }
    notify();
}

}  // namespace ovd::mail
