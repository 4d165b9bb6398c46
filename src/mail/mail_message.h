#pragma once
// One message as the compose window and the unattended sender fill it, and the
// stream that turns it into the bytes that go on the wire (or into a .eml file).
// Attachments are read and encoded piece by piece while the stream is read, so a
// long dictation never sits in memory whole.

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace ovd::mail {

enum class Priority { Highest, High, Normal, Low, Lowest };
enum class Charset { WesternEuropean, EasternEuropean, Cyrillic, Greek, Turkish };
enum class Encoding { SevenBit, QuotedPrintable };
enum class BodyFormat { PlainText, StyledTextHtml };

// The tool bar's command keys and the list texts of the priorities, in enum order.
inline constexpr std::array<const char*, 5> kPriorityKeys = {
    "id_MessagePriorityHighest", "id_MessagePriorityHigh", "id_MessagePriorityNormal",
    "id_MessagePriorityLow", "id_MessagePriorityLowest"};
inline constexpr std::array<const char*, 5> kPriorityTexts = {
    "1 (Highest)", "2 (High)", "3 (Normal)", "4 (Low)", "5 (Lowest)"};
inline constexpr std::array<const char*, 5> kCharsetKeys = {
    "id_FormatCharacterSetWesternEuropean", "id_FormatCharacterSetEasternEuropean",
    "id_FormatCharacterSetCyrillic", "id_FormatCharacterSetGreek", "id_FormatCharacterSetTurkish"};
// The sets as MIME names them, in enum order.
inline constexpr std::array<const char*, 5> kCharsetNames = {
    "ISO-8859-1", "ISO-8859-2", "ISO-8859-5", "ISO-8859-7", "ISO-8859-9"};
inline constexpr std::array<const char*, 2> kEncodingKeys = {"id_FormatEncoding7BitText",
                                                             "id_FormatEncodingQuotedPrintable"};
inline constexpr std::array<const char*, 2> kFormatKeys = {"id_FormatPlainText",
                                                           "id_FormatStyledTextHTML"};
inline constexpr const char* kPlainTextLabel = "Enter the plain text version of your message";
inline constexpr const char* kStyledTextLabel = "Enter the styled text version of your message";
inline constexpr const char* kDefaultFontName = "Arial";

struct Attachment {
    std::string path;  // the file on disk
    std::string name;  // the name it travels under
};

struct MailMessage {
    std::string fromName;     // g_StrSendersName
    std::string fromAddress;  // g_strSenderAddress
    std::vector<std::string> to;
    std::vector<std::string> cc;
    std::vector<std::string> bcc;  // receive the message, never named in it
    std::string organization;
    std::string subject;
    std::string body;  // UTF-8, as typed
    BodyFormat format = BodyFormat::PlainText;
    std::string fontName;  // of the styled text; empty means kDefaultFontName
    int fontSize = 2;
    Priority priority = Priority::Normal;
    Charset charset = Charset::WesternEuropean;
    Encoding encoding = Encoding::SevenBit;
    std::vector<Attachment> attachments;

    // To, Cc and Bcc together: every address the message goes to.
    [[nodiscard]] std::vector<std::string> recipients() const;
};

// The styled body as the sender wraps it: title, font face and size around the text.
std::string htmlWrap(const MailMessage& message);

// The header and every part of one message, produced on demand. An attachment is
// opened when the stream reaches it; one that can't be read then ends the stream
// with its failure (the message would go without it otherwise).
class MessageStream {
  public:
    // Fails when the body can't be put in the chosen character set.
    static platform::Result<std::unique_ptr<MessageStream>> open(const MailMessage& message);
    ~MessageStream();
    MessageStream(const MessageStream&) = delete;
    MessageStream& operator=(const MessageStream&) = delete;

    // Up to `capacity` bytes; 0 at the end. A failure stays in error().
    std::size_t read(char* buffer, std::size_t capacity);
    [[nodiscard]] const std::string& error() const { return error_; }
    // Every byte from the start again (curl rewinds when a server makes it resend).
    void rewind();

  private:
    struct Segment {
        std::string text;        // written as it is
        std::string attachment;  // or, when set, this file in base64 lines
    };
    explicit MessageStream(std::vector<Segment> segments);
    bool fillPending();

    std::vector<Segment> segments_;
    std::size_t next_ = 0;
    std::string pending_;
    std::size_t pendingAt_ = 0;
    std::FILE* file_ = nullptr;
    std::string error_;
};

// The whole message as one text: for a saved .eml file and for the tests.
platform::Result<std::string> composeMessage(const MailMessage& message);
// Saves the message as the mail programs read it (.eml) or as text (.txt).
platform::Result<void> saveMessage(const MailMessage& message, const std::string& path);

}  // namespace ovd::mail
