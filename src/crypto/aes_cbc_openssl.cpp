// The cipher through OpenSSL's EVP interface.

#include <openssl/err.h>
#include <openssl/evp.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>

#include "crypto/aes_cbc.h"

namespace ovd::crypto {

namespace {

// The library's own words for its last failure, or what we were doing.
std::string libraryError(const char* what) {
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    if (code == 0) return what;
    char text[256] = {};
    ERR_error_string_n(code, text, sizeof text);
    return std::string(what) + ": " + text;
}

}  // namespace

CipherKey keyFromText(std::string_view keyText) {
    CipherKey key{};
    std::memcpy(key.data(), keyText.data(), std::min(keyText.size(), key.size()));
    return key;
}

struct AesCbcStream::Context {
    EVP_CIPHER_CTX* cipher = nullptr;
    ~Context() { EVP_CIPHER_CTX_free(cipher); }
};

AesCbcStream::AesCbcStream(std::unique_ptr<Context> context) : context_(std::move(context)) {}
AesCbcStream::AesCbcStream(AesCbcStream&&) noexcept = default;
AesCbcStream& AesCbcStream::operator=(AesCbcStream&&) noexcept = default;
AesCbcStream::~AesCbcStream() = default;

platform::Result<AesCbcStream> AesCbcStream::start(Direction direction, const CipherKey& key) {
    auto context = std::make_unique<Context>();
    context->cipher = EVP_CIPHER_CTX_new();
    if (context->cipher == nullptr) return platform::failure(libraryError("Can't make a cipher"));
    // Key and initialisation vector are the same bytes on purpose: that is how both
    // ends of every delivery have always formed them.
    if (EVP_CipherInit_ex(context->cipher, EVP_aes_128_cbc(), nullptr, key.data(), key.data(),
                          direction == Direction::Encipher ? 1 : 0) != 1) {
        return platform::failure(libraryError("Can't set up the cipher"));
    }
    return AesCbcStream(std::move(context));
}

platform::Result<void> AesCbcStream::update(const std::uint8_t* data, std::size_t bytes,
                                            std::vector<std::uint8_t>& out) {
    while (bytes > 0) {
        const std::size_t piece = std::min<std::size_t>(bytes, INT_MAX - kBlockBytes);
        const std::size_t before = out.size();
        out.resize(before + piece + kBlockBytes);
        int written = 0;
        if (EVP_CipherUpdate(context_->cipher, out.data() + before, &written, data,
                             static_cast<int>(piece)) != 1) {
            out.resize(before);
            return platform::failure(libraryError("The cipher failed"));
        }
        out.resize(before + static_cast<std::size_t>(written));
        data += piece;
        bytes -= piece;
    }
    return {};
}

platform::Result<void> AesCbcStream::finish(std::vector<std::uint8_t>& out) {
    const std::size_t before = out.size();
    out.resize(before + kBlockBytes);
    int written = 0;
    if (EVP_CipherFinal_ex(context_->cipher, out.data() + before, &written) != 1) {
        out.resize(before);
        return platform::failure(libraryError("The cipher failed at the last block"));
    }
    out.resize(before + static_cast<std::size_t>(written));
    return {};
}

platform::Result<std::vector<std::uint8_t>> transformBytes(Direction direction,
                                                           const CipherKey& key,
                                                           std::string_view bytes) {
    auto stream = AesCbcStream::start(direction, key);
    if (!stream) return stream.failed();
    std::vector<std::uint8_t> out;
    out.reserve(bytes.size() + kBlockBytes);
    if (auto fed =
            stream->update(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), out);
        !fed) {
        return fed.failed();
    }
    if (auto last = stream->finish(out); !last) return last.failed();
    return out;
}

}  // namespace ovd::crypto
