#pragma once
// What the FTP and the SFTP client share of libcurl: the handle and list owners,
// the transfer callbacks, the remote path rule, and the download that writes a
// passing name and gives the letter its own only when whole. Only the two curl
// clients include this file.

#include <curl/curl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "ftp/ftp_client.h"
#include "platform/result.h"
#include "platform/text.h"

namespace ovd::ftp::curl_parts {

void initialiseCurlOnce();

// Joins and tidies a remote path: "." and empty parts vanish, ".." climbs.
std::string normalisedPath(const std::string& path);

struct Curl {
    CURL* handle = nullptr;
    Curl() : handle(curl_easy_init()) {}
    ~Curl() {
        if (handle != nullptr) curl_easy_cleanup(handle);
    }
    Curl(const Curl&) = delete;
    Curl& operator=(const Curl&) = delete;
};

struct SList {
    curl_slist* list = nullptr;
    SList() = default;
    SList(const SList&) = delete;
    SList& operator=(const SList&) = delete;
    void add(const std::string& line) { list = curl_slist_append(list, line.c_str()); }
    ~SList() { curl_slist_free_all(list); }
};

// The running transfer's progress, and a cancel asked for from the loop's thread.
struct TransferProgress {
    std::atomic<bool> cancelRequested{false};
    const ProgressCallback* progress = nullptr;
    std::uint64_t total = 0;
    std::uint64_t done = 0;
    std::chrono::steady_clock::time_point lastReport{};

    void forgetProgress() {
        progress = nullptr;
        total = 0;
        done = 0;
    }
    // Reports through `callback` as curl moves the file (on every change, at most
    // every 50 ms, and always at the end); a cancel stops the transfer.
    void followProgress(CURL* handle, const ProgressCallback& callback, std::uint64_t size);
    static int onProgress(void* self, curl_off_t downloadTotal, curl_off_t downloaded,
                          curl_off_t uploadTotal, curl_off_t uploaded);
};

// What every operation says when asked of a client that is not connected.
inline platform::Failure notConnected(const char* operation) {
    return platform::failure(std::string(operation) +
                             " error code: " + std::to_string(static_cast<int>(CURLE_FAILED_INIT)) +
                             " Message: Not Connected.");
}

size_t appendToText(char* data, size_t size, size_t count, void* text);
// What a command's request brings back besides its reply is of no use to anyone.
size_t discard(char* data, size_t size, size_t count, void* unused);
size_t writeToFile(char* data, size_t size, size_t count, void* file);
size_t readFromFile(char* buffer, size_t size, size_t count, void* file);

// The file is written under "<local>.part" and takes its own name only when
// whole, so a broken line never leaves half a letter where a letter is expected.
// `Session` is a client's state: it prepares a request for a URL and names its
// failures.
template <class Session>
platform::Result<void> downloadWhole(Session& session, const std::string& remote,
                                     const std::string& local, std::uint64_t size,
                                     const ProgressCallback& progress) {
    const std::string partial = local + ".part";
    std::FILE* file = std::fopen(partial.c_str(), "wb");
    if (file == nullptr) {
        return platform::systemFailure(std::string(kOpenForGetError) + ": can't write " + partial,
                                       errno);
    }
    session.prepare(session.urlFor(session.resolve(remote), false));
    curl_easy_setopt(session.curl->handle, CURLOPT_WRITEFUNCTION, &writeToFile);
    curl_easy_setopt(session.curl->handle, CURLOPT_WRITEDATA, file);
    session.followProgress(session.curl->handle, progress, size);
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
// `renameLines(temporary, final)` gives the commands that rename it there.
template <class Session, class RenameLines>
platform::Result<void> uploadWhole(Session& session, const std::string& localPath,
                                   const std::string& remoteFile, const ProgressCallback& progress,
                                   RenameLines renameLines) {
    const std::string remote = platform::trim(remoteFile);
    const std::string local = platform::trim(localPath);
    if (remote.empty() || local.empty()) {
        return platform::failure(std::string(kOpenForPutError) +
                                 " error code: 0 Message: no file named");
    }
    std::FILE* file = std::fopen(local.c_str(), "rb");
    if (file == nullptr) {
        return platform::systemFailure(std::string(kOpenForPutError) + ": can't read " + local,
                                       errno);
    }
    struct stat status {};
    ::fstat(::fileno(file), &status);
    const auto size = static_cast<std::uint64_t>(status.st_size);

    const std::string finalPath = session.resolve(remote);
    const std::string slash = finalPath.substr(0, finalPath.rfind('/') + 1);
    const std::string temporaryPath =
        slash + temporaryUploadName(finalPath.substr(finalPath.rfind('/') + 1));
    session.prepare(session.urlFor(temporaryPath, false));
    SList rename;
    for (const std::string& line : renameLines(temporaryPath, finalPath)) rename.add(line);
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

}  // namespace ovd::ftp::curl_parts
