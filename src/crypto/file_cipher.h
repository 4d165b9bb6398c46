#pragma once
// A whole file through the cipher, in pieces, so a file of any length costs the
// same little memory. The result is written beside its target under a scratch
// name and moved onto the target only when the last block has passed: a refused or
// failed pass leaves no half file under the final name, and a file already there
// under that name stays as it was.

#include <string>

#include "crypto/aes_cbc.h"
#include "platform/result.h"

namespace ovd::crypto {

// The input is only read. The result takes the input's permission bits. When
// `refusedByCipher` is given it tells a failure of the cipher itself (a wrong key, a
// file that was never whole blocks) from one of the disk.
platform::Result<void> transformFile(Direction direction, const std::string& inputPath,
                                     const std::string& outputPath, const CipherKey& key,
                                     bool* refusedByCipher = nullptr);

}  // namespace ovd::crypto
