#include "ftp/curl_sftp_client.h"

#include <curl/curl.h>
#include <openssl/evp.h>

#include <cerrno>
#include <fstream>
#include <vector>

#include "ftp/curl_parts.h"
#include "ftp/sftp_host_keys.h"
#include "platform/files.h"
#include "platform/text.h"

namespace ovd::ftp {

using platform::Result;
using namespace curl_parts;

namespace {

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

namespace {

std::string serverUrl(const ConnectionSettings& settings) {
    return "sftp://" + settings.hostName + ":" + std::to_string(settings.port);
}

class SftpDialect final : public Dialect {
  public:
    std::string urlFor(CURL* handle, const ConnectionSettings& settings,
                       const std::string& absolutePath, bool directory) const override {
        std::string url = serverUrl(settings);
        std::size_t start = 1;
        while (start < absolutePath.size()) {
            std::size_t end = absolutePath.find('/', start);
            if (end == std::string::npos) end = absolutePath.size();
            const std::string part = absolutePath.substr(start, end - start);
            char* escaped = curl_easy_escape(handle, part.c_str(), static_cast<int>(part.size()));
            url += "/" + std::string(escaped);
            curl_free(escaped);
            start = end + 1;
        }
        if (directory || absolutePath == "/") url += "/";
        return url;
    }

    // The home folder: where the login starts, as the FTP server's entry folder.
    std::string loginUrl(CURL* /*handle*/, const ConnectionSettings& settings) const override {
        return serverUrl(settings) + "/~/";
    }

    long chunkBytes(const ConnectionSettings& /*settings*/) const override { return kBufferBytes; }

    void setOptions(CURL* handle, const ConnectionSettings& settings) override {
        keyCheck_ = KeyCheck{};
        curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "sftp");
        // The server must be one the known-hosts file holds; no file, no server.
        curl_easy_setopt(handle, CURLOPT_SSH_KNOWNHOSTS, settings.knownHostsFile.c_str());
        curl_easy_setopt(handle, CURLOPT_SSH_KEYFUNCTION, &checkHostKey);
        curl_easy_setopt(handle, CURLOPT_SSH_KEYDATA, &keyCheck_);
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
    }

    std::string failureDetail() const override {
        if (!keyCheck_.seen || keyCheck_.match == CURLKHMATCH_OK) return {};
        const std::string what = keyCheck_.match == CURLKHMATCH_MISSING
                                     ? kHostKeyNotKnownText
                                     : " The server's host key has CHANGED since it was trusted: ";
        return what + keyCheck_.offered.type + " " + keyCheck_.offered.fingerprint;
    }

    // Listing the folder is what proves it is there.
    bool listsToProveAFolder() const override { return true; }

    std::vector<std::string> renameLines(const std::string& from,
                                         const std::string& to) const override {
        return {"rename " + quoted(from) + " " + quoted(to)};
    }
    std::vector<std::string> replaceLines(const std::string& from,
                                          const std::string& to) const override {
        // An SFTP rename does not replace a file: a copy already there from an earlier
        // send (whose end was never heard) goes first. "*" lets that delete fail.
        return {"*rm " + quoted(to), "rename " + quoted(from) + " " + quoted(to)};
    }
    std::string deleteLine(const std::string& path) const override { return "rm " + quoted(path); }
    std::string makeFolderLine(const std::string& path) const override {
        return "mkdir " + quoted(path);
    }
    std::string removeFolderLine(const std::string& path) const override {
        return "rmdir " + quoted(path);
    }

  private:
    KeyCheck keyCheck_;
};

}  // namespace

CurlSftpClient::CurlSftpClient() : CurlClient(std::make_unique<SftpDialect>()) {}

Result<HostKey> offeredHostKey(const ConnectionSettings& settings) {
    initialiseCurlOnce();
    Curl curl;
    if (curl.handle == nullptr) return platform::failure(kCouldNotEstablish);
    KeyCheck check;
    const std::string url = serverUrl(settings) + "/";
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
