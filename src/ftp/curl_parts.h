#pragma once
// What the FTP and the SFTP client share of libcurl: the handle and list owners,
// the transfer callbacks, the remote path rule, and the dialect by which a
// protocol tells the common client what it does its own way. Only the curl
// clients include this file.

#include <curl/curl.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "ftp/ftp_client.h"
#include "platform/result.h"
#include "platform/text.h"

namespace ovd::ftp::curl_parts {

void initialiseCurlOnce();

// How long a server may take to accept the connection.
inline constexpr long kConnectTimeoutSeconds = 15;

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

// What tells one protocol from the other; the rest of a client is common.
class Dialect {
  public:
    virtual ~Dialect() = default;

    // The URL of an absolute remote path; `directory` when it names a folder.
    [[nodiscard]] virtual std::string urlFor(CURL* handle, const ConnectionSettings& settings,
                                             const std::string& absolutePath,
                                             bool directory) const = 0;
    // Where the login starts: its folder becomes the current one.
    [[nodiscard]] virtual std::string loginUrl(CURL* handle,
                                               const ConnectionSettings& settings) const = 0;
    // How much curl moves at a time.
    [[nodiscard]] virtual long chunkBytes(const ConnectionSettings& settings) const = 0;
    // Sets this protocol's options on a request the client has prepared, and forgets
    // what the previous request noted.
    virtual void setOptions(CURL* handle, const ConnectionSettings& settings) = 0;
    // What this protocol can add to curl's own words on why a request failed.
    [[nodiscard]] virtual std::string failureDetail() const = 0;
    // A folder is proved to be there by listing it, not by a request without a body.
    [[nodiscard]] virtual bool listsToProveAFolder() const = 0;

    // The remote commands, on absolute paths.
    [[nodiscard]] virtual std::vector<std::string> renameLines(const std::string& from,
                                                               const std::string& to) const = 0;
    // Gives a whole upload its own name: `to` may already stand there from an earlier send.
    [[nodiscard]] virtual std::vector<std::string> replaceLines(const std::string& from,
                                                                const std::string& to) const = 0;
    [[nodiscard]] virtual std::string deleteLine(const std::string& path) const = 0;
    [[nodiscard]] virtual std::string makeFolderLine(const std::string& path) const = 0;
    [[nodiscard]] virtual std::string removeFolderLine(const std::string& path) const = 0;
};

}  // namespace ovd::ftp::curl_parts
