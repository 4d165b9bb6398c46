#include "ftp/curl_client.h"

#include <curl/curl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <vector>

#include "ftp/curl_parts.h"
#include "platform/text.h"

namespace ovd::ftp {

using platform::Failure;
using platform::Result;
using namespace curl_parts;

namespace {

// A line that moves less than a byte a second for this long counts as dead.
constexpr long kStalledSeconds = 30;

Failure noFileNamed(const char* operation) {
    return platform::failure(std::string(operation) + " error code: 0 Message: no file named");
}

}  // namespace

struct CurlClient::State : TransferProgress {
    explicit State(std::unique_ptr<Dialect> protocol) : dialect(std::move(protocol)) {}

    std::unique_ptr<Dialect> dialect;
    std::unique_ptr<Curl> curl;
    ConnectionSettings settings;
    std::string currentDirectory = "/";
    char errorBuffer[CURL_ERROR_SIZE] = {};

    [[nodiscard]] std::string urlFor(const std::string& absolutePath, bool directory) const {
        return dialect->urlFor(curl->handle, settings, absolutePath, directory);
    }

    [[nodiscard]] std::string resolve(const std::string& path) const {
        const std::string clean = platform::trim(path);
        if (!clean.empty() && clean.front() == '/') return normalisedPath(clean);
        return normalisedPath(currentDirectory + "/" + clean);
    }

    // Sets what every request shares and clears what the previous one left.
    void prepare(const std::string& url) {
        CURL* handle = curl->handle;
        // A reset keeps the live connection, so the next command needs no new login.
        curl_easy_reset(handle);
        errorBuffer[0] = '\0';
        forgetProgress();
        curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle, CURLOPT_USERNAME, settings.userName.c_str());
        curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorBuffer);
        curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, kStalledSeconds);
        if (!settings.proxyAddress.empty()) {
            curl_easy_setopt(handle, CURLOPT_PROXY, settings.proxyAddress.c_str());
            curl_easy_setopt(handle, CURLOPT_HTTPPROXYTUNNEL, 1L);
        }
        if (settings.maxBytesPerSecond > 0) {
            const auto limit = static_cast<curl_off_t>(settings.maxBytesPerSecond);
            curl_easy_setopt(handle, CURLOPT_MAX_SEND_SPEED_LARGE, limit);
            curl_easy_setopt(handle, CURLOPT_MAX_RECV_SPEED_LARGE, limit);
        }
        const long chunk = dialect->chunkBytes(settings);
        curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, chunk);
        curl_easy_setopt(handle, CURLOPT_UPLOAD_BUFFERSIZE, chunk);
        curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &discard);
        dialect->setOptions(handle, settings);
    }

    // "<operation> error code: <n> Message: <curl's text>", and what the protocol
    // knows besides (the server's refusal, a host key not trusted).
    [[nodiscard]] Failure failed(const char* operation, CURLcode code) const {
        std::string message = std::string(operation) +
                              " error code: " + std::to_string(static_cast<int>(code)) +
                              " Message: " + curl_easy_strerror(code);
        const std::string detail = platform::trim(errorBuffer);
        if (!detail.empty() && detail != curl_easy_strerror(code)) message += " (" + detail + ")";
        return platform::failure(message + dialect->failureDetail());
    }

    Result<void> perform(const char* operation) {
        const CURLcode code = curl_easy_perform(curl->handle);
        if (code != CURLE_OK) return failed(operation, code);
        return {};
    }

    Result<void> command(const char* operation, const std::vector<std::string>& lines) {
        prepare(urlFor("/", true));
        SList quote;
        for (const auto& line : lines) quote.add(line);
        curl_easy_setopt(curl->handle, CURLOPT_QUOTE, quote.list);
        curl_easy_setopt(curl->handle, CURLOPT_NOBODY, 1L);
        return perform(operation);
    }

    // Which name a failed transfer goes by: the open when nothing moved, the
    // remainder when only the last, short chunk was missing.
    [[nodiscard]] const char* transferFailureName(bool upload) const {
        if (done == 0) return upload ? kOpenForPutError : kOpenForGetError;
        const auto chunk = static_cast<std::uint64_t>(dialect->chunkBytes(settings));
        if (total % chunk != 0 && done >= total - total % chunk) {
            return upload ? kWriteRemainderError : kReadRemainderError;
        }
        return upload ? kWriteError : kReadError;
    }
};

CurlClient::CurlClient(std::unique_ptr<Dialect> dialect)
    : state_(std::make_unique<State>(std::move(dialect))) {
    initialiseCurlOnce();
}

CurlClient::~CurlClient() { disconnect(); }

Result<void> CurlClient::connect(const ConnectionSettings& settings) {
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
    state_->prepare(state_->dialect->loginUrl(state_->curl->handle, settings));
    curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    if (auto login = state_->perform(kConnectError); !login) {
        state_->curl.reset();
        return login;
    }
    char* entryPath = nullptr;
    curl_easy_getinfo(state_->curl->handle, CURLINFO_FTP_ENTRY_PATH, &entryPath);
    if (entryPath != nullptr && entryPath[0] == '/') state_->currentDirectory = entryPath;
    return {};
}

void CurlClient::disconnect() {
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

bool CurlClient::connected() const { return state_->curl != nullptr; }

void CurlClient::setTransferType(TransferType type) { state_->settings.transferType = type; }

const std::string& CurlClient::currentDirectory() const { return state_->currentDirectory; }

Result<void> CurlClient::setCurrentDirectory(const std::string& path) {
    if (!connected()) return notConnected(kSetDirectoryError);
    const std::string target = state_->resolve(path);
    state_->prepare(state_->urlFor(target, true));
    if (!state_->dialect->listsToProveAFolder()) {
        curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    }
    if (auto found = state_->perform(kSetDirectoryError); !found) return found;
    state_->currentDirectory = target;
    return {};
}

Result<cDirList> CurlClient::list(const std::string& fileSpec) {
    if (!connected()) return notConnected(kFindFirstError);
    state_->prepare(state_->urlFor(state_->currentDirectory, true));
    std::string listing;
    curl_easy_setopt(state_->curl->handle, CURLOPT_TRANSFERTEXT, 1L);
    curl_easy_setopt(state_->curl->handle, CURLOPT_WRITEFUNCTION, &appendToText);
    curl_easy_setopt(state_->curl->handle, CURLOPT_WRITEDATA, &listing);
    if (auto listed = state_->perform(kFindFirstError); !listed) return listed.failed();
    cDirList result;
    for (auto& item : parseListing(listing, std::chrono::system_clock::now())) {
        if (matchesFileSpec(item.name, fileSpec)) result.push_back(std::move(item));
    }
    return result;
}

Result<std::uint64_t> CurlClient::remoteSize(const std::string& remoteFile) {
    if (!connected()) return notConnected(kFindFirstError);
    // The file is asked for by its own name, blanks and all: a size request takes a
    // name, not a pattern, so blanks need no stand-in.
    state_->prepare(state_->urlFor(state_->resolve(remoteFile), false));
    // Sizes are counted in bytes as stored, whatever the transfer type.
    curl_easy_setopt(state_->curl->handle, CURLOPT_TRANSFERTEXT, 0L);
    curl_easy_setopt(state_->curl->handle, CURLOPT_NOBODY, 1L);
    if (auto asked = state_->perform(kFindFirstError); !asked) return asked.failed();
    curl_off_t size = -1;
    curl_easy_getinfo(state_->curl->handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
    if (size < 0) return state_->failed(kFindFirstError, CURLE_REMOTE_FILE_NOT_FOUND);
    return static_cast<std::uint64_t>(size);
}

// The file is written under "<local>.part" and takes its own name only when
// whole, so a broken line never leaves half a letter where a letter is expected.
Result<void> CurlClient::download(const std::string& remoteFile, const std::string& localPath,
                                  const ProgressCallback& progress) {
    const std::string remote = platform::trim(remoteFile);
    const std::string local = platform::trim(localPath);
    if (remote.empty() || local.empty()) return noFileNamed(kOpenForGetError);
    const auto size = remoteSize(remote);
    if (!size) return size.failed();
    if (*size == 0) {
        return platform::failure(std::string(kOpenForGetError) +
                                 " error code: 0 Message: " + remote + " is empty on the server");
    }
    const std::string partial = local + ".part";
    std::FILE* file = std::fopen(partial.c_str(), "wb");
    if (file == nullptr) {
        return platform::systemFailure(std::string(kOpenForGetError) + ": can't write " + partial,
                                       errno);
    }
    State& session = *state_;
    session.prepare(session.urlFor(session.resolve(remote), false));
    curl_easy_setopt(session.curl->handle, CURLOPT_WRITEFUNCTION, &writeToFile);
    curl_easy_setopt(session.curl->handle, CURLOPT_WRITEDATA, file);
    session.followProgress(session.curl->handle, progress, *size);
    const CURLcode code = curl_easy_perform(session.curl->handle);
    const bool closed = std::fclose(file) == 0;
    if (code != CURLE_OK) return session.failed(session.transferFailureName(false), code);
    if (!closed) return platform::systemFailure(std::string(kReadError) + ": " + partial, errno);
    if (std::rename(partial.c_str(), local.c_str()) != 0) {
        return platform::systemFailure(std::string(kReadError) + ": can't name " + local, errno);
    }
    return {};
}

// The file goes up under a passing name (".<name>.part") and takes its own name on
// the server only when whole, so a transcriber never picks up half a letter.
Result<void> CurlClient::upload(const std::string& localPath, const std::string& remoteFile,
                                const ProgressCallback& progress) {
    if (!connected()) return notConnected(kOpenForPutError);
    const std::string remote = platform::trim(remoteFile);
    const std::string local = platform::trim(localPath);
    if (remote.empty() || local.empty()) return noFileNamed(kOpenForPutError);
    std::FILE* file = std::fopen(local.c_str(), "rb");
    if (file == nullptr) {
        return platform::systemFailure(std::string(kOpenForPutError) + ": can't read " + local,
                                       errno);
    }
    struct stat status {};
    ::fstat(::fileno(file), &status);
    const auto size = static_cast<std::uint64_t>(status.st_size);

    State& session = *state_;
    const std::string finalPath = session.resolve(remote);
    const std::string slash = finalPath.substr(0, finalPath.rfind('/') + 1);
    const std::string temporaryPath =
        slash + temporaryUploadName(finalPath.substr(finalPath.rfind('/') + 1));
    session.prepare(session.urlFor(temporaryPath, false));
    SList rename;
    for (const std::string& line : session.dialect->replaceLines(temporaryPath, finalPath)) {
        rename.add(line);
    }
    CURL* handle = session.curl->handle;
    curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(handle, CURLOPT_READFUNCTION, &readFromFile);
    curl_easy_setopt(handle, CURLOPT_READDATA, file);
    curl_easy_setopt(handle, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(size));
    curl_easy_setopt(handle, CURLOPT_POSTQUOTE, rename.list);
    session.followProgress(handle, progress, size);
    const CURLcode code = curl_easy_perform(handle);
    std::fclose(file);
    if (code == CURLE_QUOTE_ERROR) return session.failed(kRenameError, code);
    if (code != CURLE_OK) return session.failed(session.transferFailureName(true), code);
    return {};
}

Result<void> CurlClient::rename(const std::string& oldName, const std::string& newName) {
    if (!connected()) return notConnected(kRenameError);
    return state_->command(kRenameError, state_->dialect->renameLines(state_->resolve(oldName),
                                                                      state_->resolve(newName)));
}

Result<void> CurlClient::deleteFile(const std::string& remoteFile) {
    if (!connected()) return notConnected(kDeleteError);
    return state_->command(kDeleteError,
                           {state_->dialect->deleteLine(state_->resolve(remoteFile))});
}

Result<void> CurlClient::createDirectory(const std::string& path) {
    if (!connected()) return notConnected(kCreateDirectoryError);
    return state_->command(kCreateDirectoryError,
                           {state_->dialect->makeFolderLine(state_->resolve(path))});
}

Result<void> CurlClient::removeDirectory(const std::string& path) {
    if (!connected()) return notConnected(kRemoveDirectoryError);
    return state_->command(kRemoveDirectoryError,
                           {state_->dialect->removeFolderLine(state_->resolve(path))});
}

void CurlClient::cancel() { state_->cancelRequested = true; }

void CurlClient::clearCancel() { state_->cancelRequested = false; }

std::string temporaryUploadName(const std::string& remoteFile) {
    // A dot name is left out of ordinary listings, and ".part" of every letter pattern.
    return "." + remoteFile + ".part";
}

}  // namespace ovd::ftp
