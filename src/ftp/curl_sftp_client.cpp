#include "ftp/curl_sftp_client.h"

#include <curl/curl.h>
#include <openssl/evp.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <vector>

#include "ftp/curl_parts.h"
#include "ftp/sftp_host_keys.h"
#include "platform/files.h"
#include "platform/text.h"

namespace ovd::ftp {

using platform::Failure;
using platform::Result;
using namespace curl_parts;

namespace {

constexpr long kConnectTimeoutSeconds = 15;
constexpr long kStalledSeconds = 30;
// SFTP moves data in packets of its own; a large buffer keeps many of them in flight.
constexpr long kBufferBytes = 256 * 1024;

// A path in an SFTP quote command: in double quotes, with quotes and backslashes escaped.
std::string quoted(const std::string& path) {
    std::string text = "\"";
    for (const char c : path) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + "\"";
}

std::string base64(const unsigned char* data, std::size_t length) {
    std::string text(4 * ((length + 2) / 3) + 1, '\0');
    const int written = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), data,
                                        static_cast<int>(length));
    text.resize(written > 0 ? static_cast<std::size_t>(written) : 0);
    return text;
}

std::string decodeBase64(const std::string& text) {
    std::string raw(3 * (text.size() / 4) + 3, '\0');
    const int written = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(raw.data()),
                                        reinterpret_cast<const unsigned char*>(text.data()),
                                        static_cast<int>(text.size()));
    if (written < 0) return {};
    std::size_t length = static_cast<std::size_t>(written);
    // The decoder counts the padding as bytes.
    for (auto it = text.rbegin(); it != text.rend() && *it == '=' && length > 0; ++it) --length;
    raw.resize(length);
    return raw;
}

// What the host key check saw: the key the server offered, and how it matched.
struct KeyCheck {
    HostKey offered;
    curl_khmatch match = CURLKHMATCH_OK;
    bool seen = false;
};

int checkHostKey(CURL* /*handle*/, const curl_khkey* /*known*/, const curl_khkey* found,
                 curl_khmatch match, void* data) {
    auto& check = *static_cast<KeyCheck*>(data);
    check.seen = true;
    check.match = match;
    if (found != nullptr) {
        const std::string blob =
            found->len == 0 ? decodeBase64(found->key) : std::string(found->key, found->len);
        check.offered = hostKeyFromBlob(blob);
    }
    // Only a key the file already holds is trusted; adding one is the user's choice.
    return match == CURLKHMATCH_OK ? CURLKHSTAT_FINE : CURLKHSTAT_REJECT;
}

}  // namespace

HostKey hostKeyFromBlob(const std::string& blob) {
    HostKey key;
    if (blob.size() < 4) return key;
    const auto* bytes = reinterpret_cast<const unsigned char*>(blob.data());
    const std::size_t typeLength = (std::size_t{bytes[0]} << 24) | (std::size_t{bytes[1]} << 16) |
                                   (std::size_t{bytes[2]} << 8) | std::size_t{bytes[3]};
    if (typeLength == 0 || typeLength > blob.size() - 4) return key;
    key.type = blob.substr(4, typeLength);
    key.base64 = base64(bytes, blob.size());
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int digestLength = 0;
    if (EVP_Digest(bytes, blob.size(), digest, &digestLength, EVP_sha256(), nullptr) == 1) {
        std::string encoded = base64(digest, digestLength);
        // ssh shows the fingerprint without the padding.
        while (!encoded.empty() && encoded.back() == '=') encoded.pop_back();
        key.fingerprint = "SHA256:" + encoded;
    }
    return key;
}

std::string knownHostsLine(const std::string& host, int port, const HostKey& key) {
    const std::string name = port == 22 ? host : "[" + host + "]:" + std::to_string(port);
    return name + " " + key.type + " " + key.base64;
}

Result<void> trustHostKey(const std::string& knownHostsFile, const std::string& host, int port,
                          const HostKey& key) {
    if (key.type.empty() || key.base64.empty()) return platform::failure("No host key to trust");
    std::ofstream file(knownHostsFile, std::ios::binary | std::ios::app);
    file << knownHostsLine(host, port, key) << "\n";
    if (!file.flush()) return platform::systemFailure("Can't write " + knownHostsFile, errno);
    return {};
}

struct CurlSftpClient::State : TransferProgress {
    std::unique_ptr<Curl> curl;
    ConnectionSettings settings;
    std::string currentDirectory = "/";
    char errorBuffer[CURL_ERROR_SIZE] = {};
    KeyCheck keyCheck;

    std::string urlFor(const std::string& absolutePath, bool directory) const {
        std::string url = "sftp://" + settings.hostName + ":" + std::to_string(settings.port);
        std::size_t start = 1;
        while (start < absolutePath.size()) {
            std::size_t end = absolutePath.find('/', start);
            if (end == std::string::npos) end = absolutePath.size();
            const std::string part = absolutePath.substr(start, end - start);
            char* escaped =
                curl_easy_escape(curl->handle, part.c_str(), static_cast<int>(part.size()));
            url += "/" + std::string(escaped);
            curl_free(escaped);
            start = end + 1;
        }
        if (directory || absolutePath == "/") url += "/";
        return url;
    }

    std::string resolve(const std::string& path) const {
        const std::string clean = platform::trim(path);
        if (!clean.empty() && clean.front() == '/') return normalisedPath(clean);
        return normalisedPath(currentDirectory + "/" + clean);
    }

    void prepare(const std::string& url) {
        CURL* handle = curl->handle;
        curl_easy_reset(handle);
        errorBuffer[0] = '\0';
        forgetProgress();
        keyCheck = KeyCheck{};
        curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "sftp");
        curl_easy_setopt(handle, CURLOPT_USERNAME, settings.userName.c_str());
        curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorBuffer);
        curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, kStalledSeconds);
        curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kBufferBytes);
        curl_easy_setopt(handle, CURLOPT_UPLOAD_BUFFERSIZE, kBufferBytes);
        // The server must be one the known-hosts file holds; no file, no server.
        curl_easy_setopt(handle, CURLOPT_SSH_KNOWNHOSTS, settings.knownHostsFile.c_str());
        curl_easy_setopt(handle, CURLOPT_SSH_KEYFUNCTION, &checkHostKey);
        curl_easy_setopt(handle, CURLOPT_SSH_KEYDATA, &keyCheck);
        if (!settings.privateKeyFile.empty()) {
            curl_easy_setopt(handle, CURLOPT_SSH_AUTH_TYPES,
                             static_cast<long>(CURLSSH_AUTH_PUBLICKEY));
            curl_easy_setopt(handle, CURLOPT_SSH_PRIVATE_KEYFILE, settings.privateKeyFile.c_str());
            if (!settings.password.empty())
                curl_easy_setopt(handle, CURLOPT_KEYPASSWD, settings.password.c_str());
        } else {
            curl_easy_setopt(handle, CURLOPT_SSH_AUTH_TYPES,
                             static_cast<long>(CURLSSH_AUTH_PASSWORD | CURLSSH_AUTH_KEYBOARD));
            curl_easy_setopt(handle, CURLOPT_PASSWORD, settings.password.c_str());
        }
        if (!settings.proxyAddress.empty()) {
            curl_easy_setopt(handle, CURLOPT_PROXY, settings.proxyAddress.c_str());
            curl_easy_setopt(handle, CURLOPT_HTTPPROXYTUNNEL, 1L);
        }
        if (settings.maxBytesPerSecond > 0) {
            const auto limit = static_cast<curl_off_t>(settings.maxBytesPerSecond);
            curl_easy_setopt(handle, CURLOPT_MAX_SEND_SPEED_LARGE, limit);
            curl_easy_setopt(handle, CURLOPT_MAX_RECV_SPEED_LARGE, limit);
        }
        curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &discard);
    }

    Failure failed(const char* operation, CURLcode code) const {
        std::string message = std::string(operation) +
                              " error code: " + std::to_string(static_cast<int>(code)) +
                              " Message: " + curl_easy_strerror(code);
        const std::string detail = platform::trim(errorBuffer);
        if (!detail.empty() && detail != curl_easy_strerror(code)) message += " (" + detail + ")";
        if (keyCheck.seen && keyCheck.match != CURLKHMATCH_OK) {
            message += keyCheck.match == CURLKHMATCH_MISSING
                           ? kHostKeyNotKnownText
                           : " The server's host key has CHANGED since it was trusted: ";
            message += keyCheck.offered.type + " " + keyCheck.offered.fingerprint;
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

    const char* transferFailureName(bool upload) const {
        if (done == 0) return upload ? kOpenForPutError : kOpenForGetError;
        const auto chunk = static_cast<std::uint64_t>(kBufferBytes);
        if (total % chunk != 0 && done >= total - total % chunk) {
            return upload ? kWriteRemainderError : kReadRemainderError;
        }
        return upload ? kWriteError : kReadError;
    }
};

CurlSftpClient::CurlSftpClient() : state_(std::make_unique<State>()) { initialiseCurlOnce(); }

CurlSftpClient::~CurlSftpClient() = default;

Result<void> CurlSftpClient::connect(const ConnectionSettings& settings) {
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
    // The home folder: where the login starts, as the FTP server's entry folder.
    state_->prepare(state_->urlFor("/", true) + "~/");
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

void CurlSftpClient::disconnect() { state_->curl.reset(); }

bool CurlSftpClient::connected() const { return state_->curl != nullptr; }

// SFTP moves bytes as they are; there is no ASCII mode to switch to.
void CurlSftpClient::setTransferType(TransferType type) { state_->settings.transferType = type; }

const std::string& CurlSftpClient::currentDirectory() const { return state_->currentDirectory; }

Result<void> CurlSftpClient::setCurrentDirectory(const std::string& path) {
    if (!connected()) return notConnected(kSetDirectoryError);
    const std::string target = state_->resolve(path);
    // Listing the folder is what proves it is there.
    state_->prepare(state_->urlFor(target, true));
    const CURLcode code = curl_easy_perform(state_->curl->handle);
    if (code != CURLE_OK) return state_->failed(kSetDirectoryError, code);
    state_->currentDirectory = target;
    return {};
}

Result<cDirList> CurlSftpClient::list(const std::string& fileSpec) {
    if (!connected()) return notConnected(kFindFirstError);
    state_->prepare(state_->urlFor(state_->currentDirectory, true));
    std::string listing;
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

Result<std::uint64_t> CurlSftpClient::remoteSize(const std::string& remoteFile) {
    if (!connected()) return notConnected(kFindFirstError);
    const std::string path = state_->resolve(remoteFile);
    state_->prepare(state_->urlFor(path, false));
    curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    const CURLcode code = curl_easy_perform(state_->curl->handle);
    if (code != CURLE_OK) return state_->failed(kFindFirstError, code);
    curl_off_t size = -1;
    curl_easy_getinfo(state_->curl->handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
    if (size < 0) return state_->failed(kFindFirstError, CURLE_REMOTE_FILE_NOT_FOUND);
    return static_cast<std::uint64_t>(size);
}

Result<void> CurlSftpClient::download(const std::string& remoteFile, const std::string& localPath,
                                      const ProgressCallback& progress) {
    const std::string remote = platform::trim(remoteFile);
    const std::string local = platform::trim(localPath);
    if (remote.empty() || local.empty()) {
        return platform::failure(std::string(kOpenForGetError) +
                                 " error code: 0 Message: no file named");
    }
    const auto size = remoteSize(remote);
    if (!size) return size.failed();
    if (*size == 0) {
        return platform::failure(std::string(kOpenForGetError) +
                                 " error code: 0 Message: " + remote + " is empty on the server");
    }
    return curl_parts::downloadWhole(*state_, remote, local, *size, progress);
}

Result<void> CurlSftpClient::upload(const std::string& localPath, const std::string& remoteFile,
                                    const ProgressCallback& progress) {
    if (!connected()) return notConnected(kOpenForPutError);
    return uploadWhole(*state_, localPath, remoteFile, progress,
                       [](const std::string& temporary, const std::string& final) {
                           // An SFTP rename does not replace a file: a copy already there from an
                           // earlier send (whose end was never heard) goes first. "*" lets that
                           // delete fail.
                           return std::vector<std::string>{
                               "*rm " + quoted(final),
                               "rename " + quoted(temporary) + " " + quoted(final)};
                       });
}

Result<void> CurlSftpClient::rename(const std::string& oldName, const std::string& newName) {
    if (!connected()) return notConnected(kRenameError);
    return state_->command(kRenameError, {"rename " + quoted(state_->resolve(oldName)) + " " +
                                          quoted(state_->resolve(newName))});
}

Result<void> CurlSftpClient::deleteFile(const std::string& remoteFile) {
    if (!connected()) return notConnected(kDeleteError);
    return state_->command(kDeleteError, {"rm " + quoted(state_->resolve(remoteFile))});
}

Result<void> CurlSftpClient::createDirectory(const std::string& path) {
    if (!connected()) return notConnected(kCreateDirectoryError);
    return state_->command(kCreateDirectoryError, {"mkdir " + quoted(state_->resolve(path))});
}

Result<void> CurlSftpClient::removeDirectory(const std::string& path) {
    if (!connected()) return notConnected(kRemoveDirectoryError);
    return state_->command(kRemoveDirectoryError, {"rmdir " + quoted(state_->resolve(path))});
}

void CurlSftpClient::cancel() { state_->cancelRequested = true; }

void CurlSftpClient::clearCancel() { state_->cancelRequested = false; }

Result<HostKey> offeredHostKey(const ConnectionSettings& settings) {
    initialiseCurlOnce();
    Curl curl;
    if (curl.handle == nullptr) return platform::failure(kCouldNotEstablish);
    KeyCheck check;
    const std::string url =
        "sftp://" + settings.hostName + ":" + std::to_string(settings.port) + "/";
    curl_easy_setopt(curl.handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl.handle, CURLOPT_PROTOCOLS_STR, "sftp");
    curl_easy_setopt(curl.handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.handle, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(curl.handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
    curl_easy_setopt(curl.handle, CURLOPT_SSH_KNOWNHOSTS, settings.knownHostsFile.c_str());
    curl_easy_setopt(curl.handle, CURLOPT_SSH_KEYFUNCTION, &checkHostKey);
    curl_easy_setopt(curl.handle, CURLOPT_SSH_KEYDATA, &check);
    // No login is tried: the key is all that is wanted.
    curl_easy_setopt(curl.handle, CURLOPT_USERNAME, "");
    const CURLcode code = curl_easy_perform(curl.handle);
    if (!check.seen || check.offered.type.empty()) {
        return platform::failure(std::string(kConnectError) +
                                 " error code: " + std::to_string(static_cast<int>(code)) +
                                 " Message: " + curl_easy_strerror(code));
    }
    return check.offered;
}

}  // namespace ovd::ftp
