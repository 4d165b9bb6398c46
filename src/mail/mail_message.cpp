#include "mail/mail_message.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <random>

#include "mail/mime_text.h"

namespace ovd::mail {

namespace {

using platform::Result;

// Read whole base64 lines at a time: 57 bytes make one 76-character line.
constexpr std::size_t kAttachmentChunk = 57 * 1024;

constexpr std::array<const char*, 5> kImportance = {"High", "High", "Normal", "Low", "Low"};

std::string joinAddresses(const std::vector<std::string>& addresses) {
    std::string out;
    for (const auto& address : addresses) {
        if (!out.empty()) out += ",\r\n ";
        out += address;
    }
    return out;
}

std::string dateHeader() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char text[64];
    // The C locale's day and month names are the ones mail wants.
    std::strftime(text, sizeof text, "%a, %d %b %Y %H:%M:%S %z", &local);
    return text;
}

std::string randomToken() {
    std::random_device device;
    std::mt19937_64 generator((static_cast<std::uint64_t>(device()) << 32) ^ device());
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    char text[64];
    std::snprintf(text, sizeof text, "%llx.%llx", static_cast<unsigned long long>(now),
                  static_cast<unsigned long long>(generator()));
    return text;
}

std::string domainOf(const std::string& address) {
    const auto at = address.rfind('@');
    return at == std::string::npos ? "localhost" : address.substr(at + 1);
}

// The text part in its character set and transfer encoding.
Result<std::string> textPart(const MailMessage& message) {
    const bool html = message.format == BodyFormat::StyledTextHtml;
    const std::string charset = kCharsetNames[static_cast<std::size_t>(message.charset)];
    auto converted = convertFromUtf8(html ? htmlWrap(message) : message.body, charset);
    if (!converted) return converted.failed();
    // 7-bit was asked for, but a body with letters past ASCII or endless lines is not
    // 7-bit text: it goes quoted-printable rather than arrive mangled.
    const bool sevenBit = message.encoding == Encoding::SevenBit && fitsSevenBit(*converted);
    std::string part = std::string("Content-Type: ") + (html ? "text/html" : "text/plain") +
                       "; charset=\"" + charset + "\"\r\n" +
                       "Content-Transfer-Encoding: " + (sevenBit ? "7bit" : "quoted-printable") +
                       "\r\n\r\n";
    part += sevenBit ? withCrLf(*converted) : quotedPrintable(*converted);
    if (part.size() < 2 || part.compare(part.size() - 2, 2, "\r\n") != 0) part += "\r\n";
    return part;
}

std::string headers(const MailMessage& message) {
    std::string out;
    out += "Date: " + dateHeader() + "\r\n";
    out += "From: ";
    if (!message.fromName.empty()) out += displayName(message.fromName) + " ";
    out += "<" + message.fromAddress + ">\r\n";
    if (!message.to.empty()) out += "To: " + joinAddresses(message.to) + "\r\n";
    if (!message.cc.empty()) out += "Cc: " + joinAddresses(message.cc) + "\r\n";
    out += "Subject: " + encodedWords(message.subject) + "\r\n";
    if (!message.organization.empty()) {
        out += "Organization: " + encodedWords(message.organization) + "\r\n";
    }
    const auto priority = static_cast<std::size_t>(message.priority);
    out += std::string("X-Priority: ") + kPriorityTexts[priority] + "\r\n";
    out += std::string("Importance: ") + kImportance[priority] + "\r\n";
    out += "Message-ID: <" + randomToken() + "@" + domainOf(message.fromAddress) + ">\r\n";
    out += "MIME-Version: 1.0\r\n";
    return out;
}

}  // namespace

std::vector<std::string> MailMessage::recipients() const {
    std::vector<std::string> all = to;
    all.insert(all.end(), cc.begin(), cc.end());
    all.insert(all.end(), bcc.begin(), bcc.end());
    return all;
}

std::string htmlWrap(const MailMessage& message) {
    const std::string font = message.fontName.empty() ? kDefaultFontName : message.fontName;
    return "<html><head><title>" + message.subject + "</title></head>" + "<body><font " +
           "face=" + font + " " + "size=" + std::to_string(message.fontSize) + ">" + message.body +
           "</font></body></html>";
}

Result<std::unique_ptr<MessageStream>> MessageStream::open(const MailMessage& message) {
    auto text = textPart(message);
    if (!text) return text.failed();
    std::vector<Segment> segments;
    if (message.attachments.empty()) {
        segments.push_back({headers(message) + *text, {}});
    } else {
        const std::string boundary = "=_ovd_" + randomToken();
        segments.push_back({headers(message) + "Content-Type: multipart/mixed; boundary=\"" +
                                boundary + "\"\r\n\r\n" +
                                "This is a multi-part message in MIME format.\r\n\r\n--" +
                                boundary + "\r\n" + *text,
                            {}});
        for (const auto& attachment : message.attachments) {
            segments.push_back(
                {"--" + boundary + "\r\n" + "Content-Type: application/octet-stream; " +
                     nameParameter("name", attachment.name) + "\r\n" +
                     "Content-Transfer-Encoding: base64\r\n" + "Content-Disposition: attachment; " +
                     nameParameter("filename", attachment.name) + "\r\n\r\n",
                 {}});
            segments.push_back({{}, attachment.path});
        }
        segments.push_back({"--" + boundary + "--\r\n", {}});
    }
    return std::unique_ptr<MessageStream>(new MessageStream(std::move(segments)));
}

MessageStream::MessageStream(std::vector<Segment> segments) : segments_(std::move(segments)) {}

MessageStream::~MessageStream() {
    if (file_ != nullptr) std::fclose(file_);
}

void MessageStream::rewind() {
    if (file_ != nullptr) std::fclose(file_);
    file_ = nullptr;
    next_ = 0;
    pending_.clear();
    pendingAt_ = 0;
    error_.clear();
}

bool MessageStream::fillPending() {
    pending_.clear();
    pendingAt_ = 0;
    while (pending_.empty()) {
        if (file_ != nullptr) {
            std::string chunk(kAttachmentChunk, '\0');
            const std::size_t got = std::fread(chunk.data(), 1, chunk.size(), file_);
            if (got > 0) {
                pending_ = base64Lines(std::string_view(chunk.data(), got));
                continue;
            }
            const bool failed = std::ferror(file_) != 0;
            std::fclose(file_);
            file_ = nullptr;
            if (failed) {
                error_ = "Can't read " + segments_[next_ - 1].attachment;
                return false;
            }
            continue;
        }
        if (next_ >= segments_.size()) return false;
        const Segment& segment = segments_[next_++];
        if (segment.attachment.empty()) {
            pending_ = segment.text;
            continue;
        }
        file_ = std::fopen(segment.attachment.c_str(), "rb");
        if (file_ == nullptr) {
            error_ = "Can't open " + segment.attachment + ": " + std::strerror(errno);
            return false;
        }
    }
    return true;
}

std::size_t MessageStream::read(char* buffer, std::size_t capacity) {
    std::size_t given = 0;
    while (given < capacity && error_.empty()) {
        if (pendingAt_ >= pending_.size() && !fillPending()) break;
        const std::size_t take = std::min(capacity - given, pending_.size() - pendingAt_);
        std::memcpy(buffer + given, pending_.data() + pendingAt_, take);
        pendingAt_ += take;
        given += take;
    }
    return given;
}

Result<std::string> composeMessage(const MailMessage& message) {
    auto stream = MessageStream::open(message);
    if (!stream) return stream.failed();
    std::string text;
    char buffer[16384];
    while (const std::size_t got = (*stream)->read(buffer, sizeof buffer)) text.append(buffer, got);
    if (!(*stream)->error().empty()) return platform::failure((*stream)->error());
    return text;
}

Result<void> saveMessage(const MailMessage& message, const std::string& path) {
    auto stream = MessageStream::open(message);
    if (!stream) return stream.failed();
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return platform::systemFailure("Can't create " + path, errno);
    char buffer[65536];
    bool written = true;
    while (const std::size_t got = (*stream)->read(buffer, sizeof buffer)) {
        written = written && std::fwrite(buffer, 1, got, file) == got;
    }
    written = std::fclose(file) == 0 && written;
    if (!(*stream)->error().empty()) return platform::failure((*stream)->error());
    if (!written) return platform::systemFailure("Can't write " + path, errno);
    return {};
}

}  // namespace ovd::mail
