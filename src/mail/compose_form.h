#pragma once
// The compose window as data: receiver, copies, subject, plain or styled text,
// the tool bar's priority, character set, encoding and format, the attachments,
// and the commands of its tool bar. Sending runs on a MailSession; the status
// text follows each recipient. The window renders this on `changed`.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mail/auto_send_file.h"
#include "mail/mail_session.h"
#include "mail/mail_trace.h"
#include "mail/sender_settings.h"
#include "mail/speller.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "settings/company_records.h"

namespace ovd::mail {

// The tool bar's keys.
inline constexpr const char* kNewMessageKey = "NewMessage";
inline constexpr const char* kSendMessageKey = "SendMessage";
inline constexpr const char* kViewEmailsKey = "ViewEMails";
inline constexpr const char* kOptionsKey = "Options";
inline constexpr const char* kCloseKey = "Close";
inline constexpr const char* kFileNewKey = "id_FileNew";
inline constexpr const char* kFileAttachKey = "id_FileAttach";
inline constexpr const char* kFileSaveAsKey = "id_FileSaveAs";
inline constexpr const char* kFileDeleteAttachmentKey = "id_FileDeleteAttachment";
inline constexpr const char* kFileSpellCheckKey = "id_FileSpellCheck";

inline constexpr const char* kSaveFilter =
    "Text Files (*.txt)|*.txt|"
    "E-Mail Message Files (*.eml)|*.eml|"
    "All Files (*.*)|*.*";
inline constexpr const char* kUnableToCreateSavedMessage = "Unable to create message";
inline constexpr const char* kUnableToSaveMessageTo = "Unable to save message to ";
inline constexpr const char* kBadAddressMessage = "This is not a valid e-mail address: ";

class ComposeForm {
  public:
    ComposeForm(platform::EventLoop& loop, const settings::CompanyRecords& records,
                platform::Prompts& prompts, std::unique_ptr<MailTransport> transport);

    // Receivers, sender settings and the default receiver chosen.
    void Form_Load();

    // The boxes.
    std::vector<Receiver> receivers;  // cboCo with their addresses
    std::string cboEmail;             // the receiver: a company of the list or its address
    std::string editCc;
    std::string editBcc;
    std::string editSubject;
    std::string editMessageText;
    std::string editMessageHTML;
    std::string fontName;  // of the styled text; empty is Arial
    BodyFormat format = BodyFormat::PlainText;
    Priority priority = Priority::Normal;
    Charset charset = Charset::WesternEuropean;
    Encoding encoding = Encoding::SevenBit;
    std::vector<std::string> comboAttachment;       // full paths
    std::vector<std::string> comboAttachmentShort;  // names beside them
    std::string statusText;
    std::uint64_t bytesSent = 0;
    bool EmailFailed = false;
    std::string EmailError;

    [[nodiscard]] const char* formatLabel() const;
    [[nodiscard]] bool sending() const { return session_.busy(); }

    // Runs a tool bar key; false for a key it does not know.
    bool command(const std::string& key);
    // Leaving cboEmail: a name or address not on the list is told. True when known.
    bool leaveReceiver();

    void newMessage();
    // A file already attached or not there is told, and the rest goes on.
    void attach(const std::string& path);
    void browse();  // cmdBrowse
    // cmdDelete: the attachment leaves the list, and its enciphered copy the disk.
    void deleteAttachment(std::size_t index);
    void saveAs();
    // Starts the send; false when it can't start (the reason has been shown).
    bool send();
    void spellCheck(Speller* speller);

    // The window's own parts.
    std::function<void()> changed;
    std::function<void()> openOptions;
    std::function<void()> viewEmails;
    std::function<void()> close;
    std::function<std::unique_ptr<Speller>()> openSpeller = [] { return openDictionary(); };

  private:
    [[nodiscard]] std::optional<Receiver> receiverOf(const std::string& entry) const;
    [[nodiscard]] std::optional<MailMessage> message();
    void status(const std::string& text);
    void notify() const;

    const settings::CompanyRecords& records_;
    platform::Prompts& prompts_;
    MailSession session_;
    SenderSettings sender_;
    MailTrace mailTrace_;
};

// Addresses typed into a copy box, split at commas and semicolons.
std::vector<std::string> addressList(const std::string& text);
// One '@' with something both sides, and no blanks or angle brackets.
bool plausibleAddress(const std::string& address);

}  // namespace ovd::mail
