// Files enciphered here open with the openssl command line and the other way round,
// byte for byte: the transcriber's side may use either.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"
#include "platform/files.h"
#include "support/temp_folder.h"

namespace ovd::crypto {
namespace {

using testing::TempFolder;

std::string hexOf(const CipherKey& key) {
    static const char* digits = "0123456789abcdef";
    std::string hex;
    for (const auto byte : key) {
        hex += digits[byte >> 4U];
        hex += digits[byte & 0x0FU];
    }
    return hex;
}

int runOpenssl(bool decipher, const CipherKey& key, const std::string& in, const std::string& out) {
    const std::string hex = hexOf(key);
    const std::string command = std::string("openssl enc -aes-128-cbc ") + (decipher ? "-d " : "") +
                                "-K " + hex + " -iv " + hex + " -in '" + in + "' -out '" + out +
                                "' 2>/dev/null";
    return std::system(command.c_str());
}

std::string randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    for (auto& byte : bytes) byte = static_cast<char>(random() & 0xFFU);
    return bytes;
}

struct InteropCase {
    const char* label;
    std::size_t fileBytes;
    std::string keyText;
};

class OpensslInterop : public ::testing::TestWithParam<InteropCase> {
  protected:
    TempFolder folder;
};

TEST_P(OpensslInterop, BothWaysByteForByte) {
    const auto& param = GetParam();
    const CipherKey key = keyFromText(param.keyText);
    const std::string plain = randomBytes(param.fileBytes, static_cast<unsigned>(param.fileBytes));
    ASSERT_TRUE(platform::writeWholeFile(folder.file("plain"), plain));

    // Ours, then openssl's way back.
    ASSERT_TRUE(
        transformFile(Direction::Encipher, folder.file("plain"), folder.file("ours.enc"), key)
            .ok());
    const auto ours = platform::readWholeFile(folder.file("ours.enc"));
    ASSERT_TRUE(ours);
    EXPECT_EQ(ours->size(), (param.fileBytes / 16 + 1) * 16) << "PKCS#7 always adds a block part";
    ASSERT_EQ(runOpenssl(true, key, folder.file("ours.enc"), folder.file("back")), 0);
    EXPECT_TRUE(platform::readWholeFile(folder.file("back")).valueOr("") == plain);

    // Openssl's, then ours back; and the two cipher texts are the same bytes.
    ASSERT_EQ(runOpenssl(false, key, folder.file("plain"), folder.file("theirs.enc")), 0);
    EXPECT_TRUE(platform::readWholeFile(folder.file("theirs.enc")).valueOr("") == *ours);
    ASSERT_TRUE(
        transformFile(Direction::Decipher, folder.file("theirs.enc"), folder.file("mine"), key)
            .ok());
    EXPECT_TRUE(platform::readWholeFile(folder.file("mine")).valueOr("") == plain);
}

const std::string kShortKey = "abc";
const std::string kExactKey = "0123456789ABCDEF";
const std::string kLongKey = "OurCoKey1Transcriber & Sons, \"Ltd\"TheirKey99";

INSTANTIATE_TEST_SUITE_P(SizesAndKeys, OpensslInterop,
                         ::testing::Values(InteropCase{"Empty_Short", 0, kShortKey},
                                           InteropCase{"Empty_Exact", 0, kExactKey},
                                           InteropCase{"B15_Short", 15, kShortKey},
                                           InteropCase{"B15_Long", 15, kLongKey},
                                           InteropCase{"B16_Exact", 16, kExactKey},
                                           InteropCase{"B16_Long", 16, kLongKey},
                                           InteropCase{"B17_Short", 17, kShortKey},
                                           InteropCase{"B17_Exact", 17, kExactKey},
                                           InteropCase{"B17_Long", 17, kLongKey},
                                           InteropCase{"MB50_Long", 50U * 1024U * 1024U, kLongKey}),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(CipherKeyText, FirstSixteenBytesZeroPadded) {
    CipherKey expected{};
    expected[0] = 'a';
    expected[1] = 'b';
    EXPECT_EQ(keyFromText("ab"), expected);
    EXPECT_EQ(keyFromText(""), CipherKey{});
    EXPECT_EQ(keyFromText("0123456789ABCDEF-and-more"), keyFromText("0123456789ABCDEF"));
    EXPECT_NE(keyFromText("0123456789ABCDE"), keyFromText("0123456789ABCDEF"));
    const std::string twoHundred(200, 'k');
    EXPECT_EQ(keyFromText(twoHundred), keyFromText(twoHundred.substr(0, 16)));
}

}  // namespace
}  // namespace ovd::crypto
