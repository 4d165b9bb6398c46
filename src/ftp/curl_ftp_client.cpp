#include "ftp/curl_ftp_client.h"

#include <curl/curl.h>

#include <algorithm>

#include "ftp/curl_parts.h"
#include "platform/text.h"

namespace ovd::ftp {

using namespace curl_parts;

namespace {

constexpr long kServerResponseTimeoutSeconds = 30;
// CURL_SSLVERSION_TLSv1_2 as the lowest and, shifted by 16 bits, as the highest version.
constexpr long kTls12Only = static_cast<long>(CURL_SSLVERSION_TLSv1_2) * ((1L << 16) + 1L);

std::string serverUrl(const ConnectionSettings& settings) {
    return "ftp://" + settings.hostName + ":" + std::to_string(settings.port) + "/";
}

class FtpDialect final : public Dialect {
  public:
    std::string urlFor(CURL* handle, const ConnectionSettings& settings,
                       const std::string& absolutePath, bool directory) const override {
        // "%2F" starts the path at the server's root rather than at the login folder.
        std::string url = serverUrl(settings) + "%2F";
        std::size_t start = 1;
        bool first = true;
        while (start < absolutePath.size()) {
            std::size_t end = absolutePath.find('/', start);
            if (end == std::string::npos) end = absolutePath.size();
            const std::string part = absolutePath.substr(start, end - start);
            char* escaped = curl_easy_escape(handle, part.c_str(), static_cast<int>(part.size()));
            url += (first ? "" : "/") + std::string(escaped);
            curl_free(escaped);
            first = false;
            start = end + 1;
        }
        if (directory) url += "/";
        return url;
    }

    // The login folder: a relative URL path starts there.
    std::string loginUrl(CURL* /*handle*/, const ConnectionSettings& settings) const override {
        return serverUrl(settings);
    }

    // On a line kept slow by its limit, smaller chunks keep the progress moving
    // several times a second; otherwise the chunk serves throughput.
    long chunkBytes(const ConnectionSettings& settings) const override {
        constexpr std::uint64_t kSmallestChunk = 16 * 1024;
        constexpr std::uint64_t kReportsPerSecond = 8;
        if (settings.maxBytesPerSecond == 0) return static_cast<long>(kChunkBytes);
        return static_cast<long>(std::clamp(settings.maxBytesPerSecond / kReportsPerSecond,
                                            kSmallestChunk, kChunkBytes));
    }

    void setOptions(CURL* handle, const ConnectionSettings& settings) override {
        lastReply_.clear();
        curl_easy_setopt(handle, CURLOPT_PASSWORD, settings.password.c_str());
        curl_easy_setopt(handle, CURLOPT_VERBOSE, 1L);
        curl_easy_setopt(handle, CURLOPT_DEBUGFUNCTION, &FtpDialect::onDebug);
        curl_easy_setopt(handle, CURLOPT_DEBUGDATA, this);
        curl_easy_setopt(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, kServerResponseTimeoutSeconds);
        curl_easy_setopt(handle, CURLOPT_FTP_FILEMETHOD,
                         static_cast<long>(CURLFTPMETHOD_SINGLECWD));
        curl_easy_setopt(handle, CURLOPT_TRANSFERTEXT,
                         settings.transferType == TransferType::Ascii ? 1L : 0L);
        curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &discard);
        // Active mode: the server connects back to the address we reached it from.
        if (!settings.passiveMode) curl_easy_setopt(handle, CURLOPT_FTPPORT, "-");
        if (settings.security == Security::ExplicitTls) {
            curl_easy_setopt(handle, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
            curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
            curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
            // TLS 1.2 exactly: over TLS 1.3 the server's session tickets arrive on the
            // data connection unread, curl's close then resets it, and vsftpd throws
            // the upload away ("426 Failure reading network stream.") about one time in five.
            curl_easy_setopt(handle, CURLOPT_SSLVERSION, kTls12Only);
            if (!settings.pinnedCertificateFile.empty()) {
                curl_easy_setopt(handle, CURLOPT_CAINFO, settings.pinnedCertificateFile.c_str());
                curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
            }
        }
    }

    // The server's own last reply, when it refused: that says why far better than
    // curl can. Only a refusal explains a failure; a "150 Ok to send data." does not.
    std::string failureDetail() const override {
        if (!lastReply_.empty() && (lastReply_.front() == '4' || lastReply_.front() == '5')) {
            return " Server: " + lastReply_;
        }
        return {};
    }

    bool listsToProveAFolder() const override { return false; }

    std::vector<std::string> renameLines(const std::string& from,
                                         const std::string& to) const override {
        return {"RNFR " + from, "RNTO " + to};
    }
    std::vector<std::string> replaceLines(const std::string& from,
                                          const std::string& to) const override {
        return renameLines(from, to);
    }
    std::string deleteLine(const std::string& path) const override { return "DELE " + path; }
    std::string makeFolderLine(const std::string& path) const override { return "MKD " + path; }
    std::string removeFolderLine(const std::string& path) const override { return "RMD " + path; }

  private:
    static int onDebug(CURL* /*handle*/, curl_infotype type, char* data, size_t size, void* self) {
        // Every line the server sends arrives here; the last one says why a command failed.
        if (type == CURLINFO_HEADER_IN) {
            const std::string line = platform::trim(std::string(data, size));
            if (!line.empty()) static_cast<FtpDialect*>(self)->lastReply_ = line;
        }
        return 0;
    }

    std::string lastReply_;
};

}  // namespace

CurlFtpClient::CurlFtpClient() : CurlClient(std::make_unique<FtpDialect>()) {}

}  // namespace ovd::ftp
