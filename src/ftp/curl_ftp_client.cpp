#include "ftp/curl_ftp_client.h"

#include <curl/curl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <vector>

#include "ftp/curl_parts.h"
#include "platform/text.h"

namespace ovd::ftp {

using platform::Failure;
using platform::Result;
using namespace curl_parts;

namespace {

constexpr long kConnectTimeoutSeconds = 15;
constexpr long kServerResponseTimeoutSeconds = 30;
// A line that moves less than a byte a second for this long counts as dead.
constexpr long kStalledSeconds = 30;
// CURL_SSLVERSION_TLSv1_2 as the lowest and, shifted by 16 bits, as the highest version.
constexpr long kTls12Only = static_cast<long>(CURL_SSLVERSION_TLSv1_2) * ((1L << 16) + 1L);

std::string trimmed(const std::string& text) { return platform::trim(text); }

// On a line kept slow by its limit, smaller chunks keep the progress moving
// several times a second; otherwise the chunk serves throughput.
long chunkBytesFor(std::uint64_t maxBytesPerSecond) {
    constexpr std::uint64_t kSmallestChunk = 16 * 1024;
    constexpr std::uint64_t kReportsPerSecond = 8;
    if (maxBytesPerSecond == 0) return static_cast<long>(kChunkBytes);
    return static_cast<long>(
        std::clamp(maxBytesPerSecond / kReportsPerSecond, kSmallestChunk, kChunkBytes));
}

}  // namespace

struct CurlFtpClient::State : TransferProgress {
    std::unique_ptr<Curl> curl;
    ConnectionSettings settings;
    std::string currentDirectory = "/";
    std::string lastReply;
    char errorBuffer[CURL_ERROR_SIZE] = {};

    static int onDebug(CURL* /*handle*/, curl_infotype type, char* data, size_t size, void* self) {
        // Every line the server sends arrives here; the last one says why a command failed.
        if (type == CURLINFO_HEADER_IN) {
            const std::string line = trimmed(std::string(data, size));
            if (!line.empty()) static_cast<State*>(self)->lastReply = line;
        }
        return 0;
    }

    std::string urlFor(const std::string& absolutePath, bool directory) const {
        std::string url = "ftp://" + settings.hostName + ":" + std::to_string(settings.port) + "/";
        // "%2F" starts the path at the server's root rather than at the login folder.
        url += "%2F";
        std::size_t start = 1;
        bool first = true;
        while (start < absolutePath.size()) {
            std::size_t end = absolutePath.find('/', start);
            if (end == std::string::npos) end = absolutePath.size();
            const std::string part = absolutePath.substr(start, end - start);
            char* escaped =
                curl_easy_escape(curl->handle, part.c_str(), static_cast<int>(part.size()));
            url += (first ? "" : "/") + std::string(escaped);
            curl_free(escaped);
            first = false;
            start = end + 1;
        }
        if (directory) url += "/";
        return url;
    }

    std::string resolve(const std::string& path) const {
        const std::string clean = trimmed(path);
        if (!clean.empty() && clean.front() == '/') return normalisedPath(clean);
        return normalisedPath(currentDirectory + "/" + clean);
    }

    // Sets what every request shares and clears what the previous one left.
    void prepare(const std::string& url) {
        CURL* handle = curl->handle;
        // A reset keeps the live connection, so the next command needs no new login.
        curl_easy_reset(handle);
        lastReply.clear();
        errorBuffer[0] = '\0';
        forgetProgress();
        curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle, CURLOPT_USERNAME, settings.userName.c_str());
        curl_easy_setopt(handle, CURLOPT_PASSWORD, settings.password.c_str());
        curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorBuffer);
        curl_easy_setopt(handle, CURLOPT_VERBOSE, 1L);
        curl_easy_setopt(handle, CURLOPT_DEBUGFUNCTION, &State::onDebug);
        curl_easy_setopt(handle, CURLOPT_DEBUGDATA, this);
        curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
        curl_easy_setopt(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, kServerResponseTimeoutSeconds);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, kStalledSeconds);
        curl_easy_setopt(handle, CURLOPT_FTP_FILEMETHOD,
                         static_cast<long>(CURLFTPMETHOD_SINGLECWD));
        curl_easy_setopt(handle, CURLOPT_TRANSFERTEXT,
                         settings.transferType == TransferType::Ascii ? 1L : 0L);
        // Active mode: the server connects back to the address we reached it from.
        if (!settings.passiveMode) curl_easy_setopt(handle, CURLOPT_FTPPORT, "-");
        if (!settings.proxyAddress.empty()) {
            curl_easy_setopt(handle, CURLOPT_PROXY, settings.proxyAddress.c_str());
            curl_easy_setopt(handle, CURLOPT_HTTPPROXYTUNNEL, 1L);
        }
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
        if (settings.maxBytesPerSecond > 0) {
            const auto limit = static_cast<curl_off_t>(settings.maxBytesPerSecond);
            curl_easy_setopt(handle, CURLOPT_MAX_SEND_SPEED_LARGE, limit);
            curl_easy_setopt(handle, CURLOPT_MAX_RECV_SPEED_LARGE, limit);
        }
        curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, chunkBytesFor(settings.maxBytesPerSecond));
        curl_easy_setopt(handle, CURLOPT_UPLOAD_BUFFERSIZE,
                         chunkBytesFor(settings.maxBytesPerSecond));
        curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &discard);
        curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &discard);
    }

    // "<operation> error code: <n> Message: <curl's text>", and the server's own
    // last reply when it refused: that says why far better than curl can.
    Failure failed(const char* operation, CURLcode code) const {
        std::string message = std::string(operation) +
                              " error code: " + std::to_string(static_cast<int>(code)) +
                              " Message: " + curl_easy_strerror(code);
        const std::string detail = trimmed(errorBuffer);
        if (!detail.empty() && detail != curl_easy_strerror(code)) message += " (" + detail + ")";
        // Only a refusal explains a failure; a "150 Ok to send data." does not.
        if (!lastReply.empty() && (lastReply.front() == '4' || lastReply.front() == '5')) {
            message += " Server: " + lastReply;
        }
        return platform::failure(message);
    }

    Result<void> command(const char* operation, const std::vector<std::string>& lines) {
        prepare(urlFor("/", true));
        SList quote;
        for (const auto& line : lines) quote.add(line);
        curl_easy_setopt(curl->handle, CURLOPT_QUOTE, quote.list);
        curl_easy_setopt(curl->handle, CURLOPT_NOBODY, 1L);
        const CURLcode code = curl_easy_perform(curl->handle);
        if (code != CURLE_OK) return failed(operation, code);
        return {};
    }

    // Which name a failed transfer goes by: the open when nothing moved, the
    // remainder when only the last, short chunk was missing.
    const char* transferFailureName(bool upload) const {
        if (done == 0) return upload ? kOpenForPutError : kOpenForGetError;
        const auto chunk = static_cast<std::uint64_t>(chunkBytesFor(settings.maxBytesPerSecond));
        if (total % chunk != 0 && done >= total - total % chunk) {
            return upload ? kWriteRemainderError : kReadRemainderError;
        }
        return upload ? kWriteError : kReadError;
    }
};

CurlFtpClient::CurlFtpClient() : state_(std::make_unique<State>()) { initialiseCurlOnce(); }

CurlFtpClient::~CurlFtpClient() { disconnect(); }

Result<void> CurlFtpClient::connect(const ConnectionSettings& settings) {
    // A new connect replaces the old connection.
    disconnect();
    state_->settings = settings;
    state_->curl = std::make_unique<Curl>();
    if (state_->curl->handle == nullptr) {
        state_->curl.reset();
        return platform::failure(std::string(kConnectError) + " error code: " +
                                 std::to_string(static_cast<int>(CURLE_FAILED_INIT)) +
                                 " Message: " + kCouldNotEstablish);
    }
    state_->currentDirectory = "/";
    // The login folder: a relative URL path starts there.
    state_->prepare("ftp://" + settings.hostName + ":" + std::to_string(settings.port) + "/");
    curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    const CURLcode code = curl_easy_perform(state_->curl->handle);
    if (code != CURLE_OK) {
        auto failure = state_->failed(kConnectError, code);
        state_->curl.reset();
        return failure;
    }
    char* entryPath = nullptr;
    curl_easy_getinfo(state_->curl->handle, CURLINFO_FTP_ENTRY_PATH, &entryPath);
    if (entryPath != nullptr && entryPath[0] == '/') state_->currentDirectory = entryPath;
    return {};
}

void CurlFtpClient::disconnect() {
    // After a cancelled transfer the server first drains what was still on its way
    // (seconds on a slow line) before it answers the goodbye: the connection is cut
    // instead, so that a cancel or a stop takes effect at once.
    curl_socket_t control = CURL_SOCKET_BAD;
    if (state_->curl && state_->cancelRequested &&
        curl_easy_getinfo(state_->curl->handle, CURLINFO_ACTIVESOCKET, &control) == CURLE_OK &&
        control != CURL_SOCKET_BAD) {
        ::shutdown(control, SHUT_RDWR);
    }
    state_->curl.reset();
}

bool CurlFtpClient::connected() const { return state_->curl != nullptr; }

void CurlFtpClient::setTransferType(TransferType type) { state_->settings.transferType = type; }

const std::string& CurlFtpClient::currentDirectory() const { return state_->currentDirectory; }

Result<void> CurlFtpClient::setCurrentDirectory(const std::string& path) {
    if (!connected()) return notConnected(kSetDirectoryError);
    const std::string target = state_->resolve(path);
    state_->prepare(state_->urlFor(target, true));
    curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    const CURLcode code = curl_easy_perform(state_->curl->handle);
    if (code != CURLE_OK) return state_->failed(kSetDirectoryError, code);
    state_->currentDirectory = target;
    return {};
}

Result<cDirList> CurlFtpClient::list(const std::string& fileSpec) {
    if (!connected()) return notConnected(kFindFirstError);
    state_->prepare(state_->urlFor(state_->currentDirectory, true));
    std::string listing;
    curl_easy_setopt(state_->curl->handle, CURLOPT_TRANSFERTEXT, 1L);
    curl_easy_setopt(state_->curl->handle, CURLOPT_WRITEFUNCTION, &appendToText);
    curl_easy_setopt(state_->curl->handle, CURLOPT_WRITEDATA, &listing);
    const CURLcode code = curl_easy_perform(state_->curl->handle);
    if (code != CURLE_OK) return state_->failed(kFindFirstError, code);
    cDirList result;
    for (auto& item : parseListing(listing, std::chrono::system_clock::now())) {
        if (matchesFileSpec(item.name, fileSpec)) result.push_back(std::move(item));
    }
    return result;
}

Result<std::uint64_t> CurlFtpClient::remoteSize(const std::string& remoteFile) {
    if (!connected()) return notConnected(kFindFirstError);
    // The file is asked for by its own name, blanks and all: SIZE takes a name,
    // not a pattern, so blanks need no stand-in.
    state_->prepare(state_->urlFor(state_->resolve(remoteFile), false));
    // Sizes are counted in bytes as stored, whatever the transfer type.
    curl_easy_setopt(state_->curl->handle, CURLOPT_TRANSFERTEXT, 0L);
    curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    const CURLcode code = curl_easy_perform(state_->curl->handle);
    if (code != CURLE_OK) return state_->failed(kFindFirstError, code);
    curl_off_t size = -1;
    curl_easy_getinfo(state_->curl->handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
    if (size < 0) return state_->failed(kFindFirstError, CURLE_REMOTE_FILE_NOT_FOUND);
    return static_cast<std::uint64_t>(size);
}

Result<void> CurlFtpClient::download(const std::string& remoteFile, const std::string& localPath,
                                     const ProgressCallback& progress) {
    const std::string remote = trimmed(remoteFile);
    const std::string local = trimmed(localPath);
    if (remote.empty() || local.empty()) {
        return platform::failure(std::string(kOpenForGetError) +
                                 " error code: 0 Message: " + "no file named");
    }
    const auto size = remoteSize(remote);
    if (!size) return size.failed();
    if (*size == 0) {
        return platform::failure(std::string(kOpenForGetError) +
                                 " error code: 0 Message: " + remote + " is empty on the server");
    }
    return curl_parts::downloadWhole(*state_, remote, local, *size, progress);
}

Result<void> CurlFtpClient::upload(const std::string& localPath, const std::string& remoteFile,
                                   const ProgressCallback& progress) {
    if (!connected()) return notConnected(kOpenForPutError);
    return uploadWhole(*state_, localPath, remoteFile, progress,
                       [](const std::string& temporary, const std::string& final) {
                           return std::vector<std::string>{"RNFR " + temporary, "RNTO " + final};
                       });
}

Result<void> CurlFtpClient::rename(const std::string& oldName, const std::string& newName) {
    if (!connected()) return notConnected(kRenameError);
    return state_->command(
        kRenameError, {"RNFR " + state_->resolve(oldName), "RNTO " + state_->resolve(newName)});
}

Result<void> CurlFtpClient::deleteFile(const std::string& remoteFile) {
    if (!connected()) return notConnected(kDeleteError);
    return state_->command(kDeleteError, {"DELE " + state_->resolve(remoteFile)});
}

Result<void> CurlFtpClient::createDirectory(const std::string& path) {
    if (!connected()) return notConnected(kCreateDirectoryError);
    return state_->command(kCreateDirectoryError, {"MKD " + state_->resolve(path)});
}

Result<void> CurlFtpClient::removeDirectory(const std::string& path) {
    if (!connected()) return notConnected(kRemoveDirectoryError);
    return state_->command(kRemoveDirectoryError, {"RMD " + state_->resolve(path)});
}

void CurlFtpClient::cancel() { state_->cancelRequested = true; }

void CurlFtpClient::clearCancel() { state_->cancelRequested = false; }

std::string temporaryUploadName(const std::string& remoteFile) {
    // A dot name is left out of ordinary listings, and ".part" of every letter pattern.
    return "." + remoteFile + ".part";
}

}  // namespace ovd::ftp
