#include "mail/curl_mail_transport.h"

#include <curl/curl.h>

#include <mutex>

#include "platform/text.h"

namespace ovd::mail {

namespace {

constexpr long kConnectTimeoutSeconds = 30;
constexpr long kResponseTimeoutSeconds = 60;
// A transfer that moves nothing for this long is dead, not slow.
constexpr long kStalledSeconds = 60;
constexpr const char* kMask = "********";

void initialiseCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct Slist {
    curl_slist* list = nullptr;
    ~Slist() { curl_slist_free_all(list); }
    void add(const std::string& text) { list = curl_slist_append(list, text.c_str()); }
};

// One request's watch over the wire: the trace with secrets masked, the
// recipients' replies, progress and cancelling.
class Exchange {
  public:
    Exchange(const TransportEvents& events, const std::atomic<bool>& cancelled)
        : events_(events), cancelled_(cancelled) {}

    static int onDebug(CURL*, curl_infotype type, char* data, size_t size, void* self) {
        auto* exchange = static_cast<Exchange*>(self);
        if (type == CURLINFO_HEADER_OUT || type == CURLINFO_HEADER_IN) {
            exchange->lines(std::string(data, size), type == CURLINFO_HEADER_OUT);
        }
        return 0;
    }

    static int onProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
        auto* exchange = static_cast<Exchange*>(self);
        if (exchange->cancelled_) return 1;
        if (sent > exchange->reported_ && exchange->events_.progress) {
            exchange->reported_ = sent;
            exchange->events_.progress(static_cast<std::uint64_t>(sent));
        }
        return 0;
    }

    SendReport report;
    std::string lastReply;  // the server's last reply line
    bool serverSpoke = false;

  private:
    void lines(const std::string& text, bool sent) {
        for (std::string line : platform::splitLines(text)) {
            if (sent) {
                outgoing(line);
            } else {
                incoming(line);
            }
        }
    }

    void outgoing(std::string line) {
        const std::string upper = platform::toUpper(line);
        if (expectingSecret_) {
            // The answers to the server's 334 challenges are the user and password.
            line = kMask;
        } else if (platform::startsWith(upper, "AUTH ")) {
            const auto blank = line.find(' ', 5);
            if (blank != std::string::npos) line = line.substr(0, blank + 1) + kMask;
        } else if (platform::startsWith(upper, "PASS ")) {
            line = "PASS " + std::string(kMask);
        } else if (platform::startsWith(upper, "RCPT TO:")) {
            std::string address = line.substr(8);
            if (!address.empty() && address.front() == '<') address = address.substr(1);
            if (!address.empty() && address.back() == '>') address.pop_back();
            pendingRecipient_ = address;
            if (events_.sendingTo) events_.sendingTo(address);
        }
        trace("> " + line);
    }

    void incoming(const std::string& line) {
        trace("< " + line);
        serverSpoke = true;
        lastReply = line;
        // SMTP challenges with 334, POP3 with a lone "+".
        expectingSecret_ =
            platform::startsWith(line, "334") || line == "+" || platform::startsWith(line, "+ ");
        // A reply line "250-..." continues; "250 ..." ends the reply.
        const bool lastLine = line.size() < 4 || line[3] != '-';
        if (!pendingRecipient_.empty() && lastLine) {
            if (!line.empty() && line[0] == '2') {
                report.accepted.push_back(pendingRecipient_);
            } else {
                report.refused.emplace_back(pendingRecipient_, line);
            }
            pendingRecipient_.clear();
        }
    }

    void trace(const std::string& line) {
        if (events_.trace) events_.trace(line);
    }

    const TransportEvents& events_;
    const std::atomic<bool>& cancelled_;
    std::string pendingRecipient_;
    bool expectingSecret_ = false;
    curl_off_t reported_ = 0;
};

size_t readMessage(char* buffer, size_t size, size_t count, void* stream) {
    auto* message = static_cast<MessageStream*>(stream);
    const std::size_t got = message->read(buffer, size * count);
    // An attachment that can't be read must not end the message as if it were whole.
    if (got == 0 && !message->error().empty()) return CURL_READFUNC_ABORT;
    return got;
}

int seekMessage(void* stream, curl_off_t offset, int origin) {
    if (offset != 0 || origin != SEEK_SET) return CURL_SEEKFUNC_CANTSEEK;
    static_cast<MessageStream*>(stream)->rewind();
    return CURL_SEEKFUNC_OK;
}

void commonOptions(CURL* handle, Exchange& exchange) {
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(handle, CURLOPT_DEBUGFUNCTION, &Exchange::onDebug);
    curl_easy_setopt(handle, CURLOPT_DEBUGDATA, &exchange);
    curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &Exchange::onProgress);
    curl_easy_setopt(handle, CURLOPT_XFERINFODATA, &exchange);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
    curl_easy_setopt(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, kResponseTimeoutSeconds);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, kStalledSeconds);
}

int replyCode(const std::string& reply) {
    if (reply.size() < 3) return 0;
    int code = 0;
    for (int i = 0; i < 3; ++i) {
        if (reply[i] < '0' || reply[i] > '9') return 0;
        code = code * 10 + (reply[i] - '0');
    }
    return code;
}

std::string curlText(CURLcode code, const char* detail) {
    std::string text = curl_easy_strerror(code);
    if (detail != nullptr && *detail != '\0') text += std::string(" (") + detail + ")";
    return text;
}

}  // namespace

CurlMailTransport::CurlMailTransport() { initialiseCurlOnce(); }
CurlMailTransport::~CurlMailTransport() = default;

bool CurlMailTransport::popLogin(const PopServer& server, const TransportEvents& events,
                                 SendError& error) {
    CURL* handle = curl_easy_init();
    if (handle == nullptr) {
        error = {0, "Can't start the mail client", true};
        return false;
    }
    Exchange exchange(events, cancelled_);
    commonOptions(handle, exchange);
    const std::string url = "pop3://" + server.host + ":" + std::to_string(server.port) + "/";
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_USERNAME, server.user.c_str());
    curl_easy_setopt(handle, CURLOPT_PASSWORD, server.password.c_str());
    // The login is all that is wanted: no listing comes back.
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    if (server.timeoutSeconds > 0) {
        curl_easy_setopt(handle, CURLOPT_TIMEOUT, static_cast<long>(server.timeoutSeconds));
    }
    char detail[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, detail);
    const CURLcode code = curl_easy_perform(handle);
    curl_easy_cleanup(handle);
    if (code == CURLE_OK) return true;
    std::string text = curlText(code, detail);
    if (!exchange.lastReply.empty() && exchange.lastReply[0] == '-') {
        text += " Server: " + exchange.lastReply;
    }
    error = {static_cast<int>(code), text, !exchange.serverSpoke};
    return false;
}

bool CurlMailTransport::send(const SmtpServer& server, const Envelope& envelope,
                             MessageStream& message, const TransportEvents& events,
                             SendReport& report, SendError& error) {
    CURL* handle = curl_easy_init();
    if (handle == nullptr) {
        error = {0, "Can't start the mail client", true};
        return false;
    }
    Exchange exchange(events, cancelled_);
    commonOptions(handle, exchange);
    const std::string scheme = server.security == Security::ImplicitTls ? "smtps://" : "smtp://";
    const std::string url = scheme + server.host + ":" + std::to_string(server.port);
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    Slist resolve;
    if (!server.address.empty()) {
        resolve.add(server.host + ":" + std::to_string(server.port) + ":" + server.address);
        curl_easy_setopt(handle, CURLOPT_RESOLVE, resolve.list);
    }
    if (server.security == Security::StartTls) {
        curl_easy_setopt(handle, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
    }
    if (server.security != Security::Plain) {
        curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
        curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
        if (!server.pinnedCertificateFile.empty()) {
            curl_easy_setopt(handle, CURLOPT_CAINFO, server.pinnedCertificateFile.c_str());
        }
    }
    if (!server.user.empty()) {
        curl_easy_setopt(handle, CURLOPT_USERNAME, server.user.c_str());
        curl_easy_setopt(handle, CURLOPT_PASSWORD, server.password.c_str());
    }
    const std::string from = "<" + envelope.from + ">";
    curl_easy_setopt(handle, CURLOPT_MAIL_FROM, from.c_str());
    Slist recipients;
    for (const auto& address : envelope.recipients) recipients.add("<" + address + ">");
    curl_easy_setopt(handle, CURLOPT_MAIL_RCPT, recipients.list);
    // One refused recipient must not keep the message from the others.
    curl_easy_setopt(handle, CURLOPT_MAIL_RCPT_ALLLOWFAILS, 1L);
    curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(handle, CURLOPT_READFUNCTION, &readMessage);
    curl_easy_setopt(handle, CURLOPT_READDATA, &message);
    curl_easy_setopt(handle, CURLOPT_SEEKFUNCTION, &seekMessage);
    curl_easy_setopt(handle, CURLOPT_SEEKDATA, &message);
    char detail[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, detail);

    const CURLcode code = curl_easy_perform(handle);
    curl_easy_cleanup(handle);
    report = exchange.report;
    if (code == CURLE_OK) {
        // Every accepted recipient has the message now; a refused one is still a failure.
        if (report.refused.empty()) return true;
        const auto& [address, reply] = report.refused.front();
        error = {replyCode(reply), address + ": " + reply, false};
        return false;
    }
    // Whatever the server said last explains the failure best when it was an error.
    const int serverCode = replyCode(exchange.lastReply);
    if (!message.error().empty()) {
        error = {static_cast<int>(code), message.error(), false};
    } else if (!report.refused.empty() && report.accepted.empty()) {
        const auto& [address, reply] = report.refused.front();
        error = {replyCode(reply), address + ": " + reply, false};
    } else if (serverCode >= 400) {
        error = {serverCode, exchange.lastReply, false};
    } else {
        error = {static_cast<int>(code), curlText(code, detail), !exchange.serverSpoke};
    }
    // The recipients a failed message seemed to reach did not get it.
    report.accepted.clear();
    return false;
}

}  // namespace ovd::mail
