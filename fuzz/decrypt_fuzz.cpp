// Any bytes as a received .enc file under any key text: deciphering either fails
// cleanly or gives a result that enciphers back to exactly the bytes received, and
// whatever deciphers through the file path deciphers the same in memory.

#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"
#include "platform/files.h"

namespace {

void check(bool condition) {
    if (!condition) __builtin_trap();
}

std::string scratchFolder() {
    static const std::string folder = [] {
        std::string pattern = "/tmp/ovd-decrypt-fuzz-XXXXXX";
        check(::mkdtemp(pattern.data()) != nullptr);
        static std::string made;
        made = pattern;
        // The scratch files go with the run.
        std::atexit([] {
            ::unlink((made + "/in.enc").c_str());
            ::unlink((made + "/out").c_str());
            ::rmdir(made.c_str());
        });
        return pattern;
    }();
    return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovd::crypto;
    FuzzedDataProvider input(data, size);
    const std::string keyText = input.ConsumeRandomLengthString(200);
    const std::string received = input.ConsumeRemainingBytesAsString();
    const CipherKey key = keyFromText(keyText);

    const auto inMemory = transformBytes(Direction::Decipher, key, received);
    if (inMemory.ok()) {
        check(received.size() % kBlockBytes == 0 && !received.empty());
        const std::string plain(inMemory->begin(), inMemory->end());
        const auto again = transformBytes(Direction::Encipher, key, plain);
        check(again.ok() && std::string(again->begin(), again->end()) == received);
    }

    const std::string in = scratchFolder() + "/in.enc";
    const std::string out = scratchFolder() + "/out";
    ::unlink(out.c_str());
    check(ovd::platform::writeWholeFile(in, received).ok());
    const auto onDisk = transformFile(Direction::Decipher, in, out, key);
    check(onDisk.ok() == inMemory.ok());
    if (onDisk.ok()) {
        check(ovd::platform::readWholeFile(out).valueOr("") ==
              std::string(inMemory->begin(), inMemory->end()));
    } else {
        check(!ovd::platform::fileExists(out));
    }
    return 0;
}
