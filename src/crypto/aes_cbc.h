#pragma once
// The one cipher of the station: AES with a 128-bit key in CBC mode, PKCS#7 padding.
// The key and the initialisation vector are the same 16 bytes, made from the key text
// the sender and the transcriber agreed on. An enciphered file is the cipher's output
// and nothing else: no header, no marker, no key check.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace ovd::crypto {

inline constexpr std::size_t kBlockBytes = 16;

using CipherKey = std::array<std::uint8_t, kBlockBytes>;

// The first 16 bytes of the key text, padded with zero bytes when it is shorter.
// What follows the 16th byte plays no part, so two long texts alike in their
// first 16 bytes open each other's files.
CipherKey keyFromText(std::string_view keyText);

enum class Direction { Encipher, Decipher };

// One pass over one file's bytes, fed in pieces of any size. Made per file and
// dropped at its end: no key outlives the call that needed it.
class AesCbcStream {
  public:
    static platform::Result<AesCbcStream> start(Direction direction, const CipherKey& key);
    AesCbcStream(AesCbcStream&&) noexcept;
    AesCbcStream& operator=(AesCbcStream&&) noexcept;
    ~AesCbcStream();

    // Appends what the cipher gives for these bytes to `out`; at most bytes + 16 more.
    platform::Result<void> update(const std::uint8_t* data, std::size_t bytes,
                                  std::vector<std::uint8_t>& out);
    // The last block. Deciphering fails here when the padding does not read right:
    // the wrong key, or a file that is not a whole number of blocks, or empty.
    platform::Result<void> finish(std::vector<std::uint8_t>& out);

  private:
    struct Context;
    explicit AesCbcStream(std::unique_ptr<Context> context);
    std::unique_ptr<Context> context_;
};

// The whole of a small text at once, for callers that hold it in memory.
platform::Result<std::vector<std::uint8_t>> transformBytes(Direction direction,
                                                           const CipherKey& key,
                                                           std::string_view bytes);

}  // namespace ovd::crypto
