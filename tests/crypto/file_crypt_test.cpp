// Enciphering and deciphering a file as the sending and receiving windows do: the
// names, the questions, the texts, and what stays on disk when it goes wrong.

#include "crypto/file_crypt.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::crypto {
namespace {

using platform::Answer;
using testing::ScriptedPrompts;
using testing::TempFolder;

class FileCryptTest : public ::testing::Test {
  protected:
    TempFolder folder;
    ScriptedPrompts prompts;
    const std::string letter = "RIFF....WAVEfmt a short letter of some bytes";

    std::string encipheredLetter(const std::string& key) {
        EXPECT_TRUE(platform::writeWholeFile(folder.file("Letter 1.wav"), letter));
        auto enciphered = EncryptFile(folder.file("Letter 1.wav"), key, prompts);
        EXPECT_TRUE(enciphered.ok()) << enciphered.error();
        return enciphered.valueOr("");
    }
};

TEST_F(FileCryptTest, NamesBesideTheInput) {
    EXPECT_EQ(encipheredName("/d/Letter 1.wav"), "/d/ENC_Letter 1.wav");
    EXPECT_EQ(encipheredName("noextension"), "ENC_noextension");
    EXPECT_EQ(decipheredName("/d/ENC_Letter 1.wav"), "/d/Letter 1.wav");
    // Not "ENC_": the first four characters go all the same.
    EXPECT_EQ(decipheredName("/d/Letter.wav.enc"), "/d/er.wav.enc");
    // Characters, not bytes: a name in another script is not cut inside a letter.
    EXPECT_EQ(decipheredName("/d/\u00e9\u00e9\u00e9\u00e9x.wav"), "/d/x.wav");
}

TEST_F(FileCryptTest, RoundTripKeepsTheInputAndClearsDecryptFailed) {
    const std::string enciphered = encipheredLetter("Key");
    EXPECT_EQ(enciphered, folder.file("ENC_Letter 1.wav"));
    EXPECT_NE(platform::readWholeFile(enciphered).valueOr(""), letter);
    ASSERT_TRUE(platform::writeWholeFile(folder.file("Letter 1.wav"), "older"));

    prompts.answerNext(Answer::Yes);
    const DecryptOutcome outcome = DecryptFile(enciphered, "Key", prompts);
    EXPECT_FALSE(outcome.DecryptFailed);
    ASSERT_EQ(prompts.transcript().size(), 1U);
    EXPECT_EQ(prompts.transcript()[0].title, "Overwrite?");
    EXPECT_EQ(prompts.transcript()[0].text,
              "File " + folder.file("Letter 1.wav") +
                  " already exsists. Do you want to overwrite this file?");
    EXPECT_EQ(platform::readWholeFile(folder.file("Letter 1.wav")).valueOr(""), letter);
    EXPECT_TRUE(platform::fileExists(enciphered)) << "the input stays";
}

TEST_F(FileCryptTest, RefusedOverwriteLeavesTheFileThere) {
    const std::string enciphered = encipheredLetter("Key");
    ASSERT_TRUE(platform::writeWholeFile(folder.file("Letter 1.wav"), "the author's own"));
    prompts.answerNext(Answer::No);
    EXPECT_TRUE(DecryptFile(enciphered, "Key", prompts).DecryptFailed);
    EXPECT_EQ(prompts.texts().back(), "File will not be decrypted.");
    EXPECT_EQ(platform::readWholeFile(folder.file("Letter 1.wav")).valueOr(""), "the author's own");
}

// A wrong key, a file cut short of a whole block, an empty file: each is told with
// the wrong-key text, the input stays and nothing is left under the output name or
// beside it, even when a file of that name was there and the user let it go.
TEST_F(FileCryptTest, BadInputsFailWithTheWrongKeyText) {
    const std::string enciphered = encipheredLetter("Key");
    const std::string whole = *platform::readWholeFile(enciphered);
    struct Case {
        const char* label;
        std::string bytes;
        std::string key;
    };
    const std::vector<Case> cases = {{"wrong key", whole, "Kez"},
                                     {"not whole blocks", whole.substr(0, whole.size() - 3), "Key"},
                                     {"zero bytes", "", "Key"}};
    for (const auto& item : cases) {
        SCOPED_TRACE(item.label);
        ASSERT_TRUE(platform::writeWholeFile(enciphered, item.bytes));
        ASSERT_TRUE(platform::writeWholeFile(folder.file("Letter 1.wav"), "kept"));
        prompts.clear();
        prompts.answerNext(Answer::Yes);
        EXPECT_TRUE(DecryptFile(enciphered, item.key, prompts).DecryptFailed);
        EXPECT_EQ(prompts.texts().back(),
                  "Decrypt File error: The key is incorrect. - Unable to Decrypt file ");
        EXPECT_EQ(platform::readWholeFile(folder.file("Letter 1.wav")).valueOr(""), "kept");
        EXPECT_EQ(platform::readWholeFile(enciphered).valueOr(""), item.bytes);
        EXPECT_EQ(platform::filesInFolder(folder.path()),
                  (std::vector<std::string>{"ENC_Letter 1.wav", "Letter 1.wav"}));
    }
}

TEST_F(FileCryptTest, DiskFailuresAreNotBlamedOnTheKey) {
    EXPECT_TRUE(DecryptFile(folder.file("ENC_missing.wav"), "Key", prompts).DecryptFailed);
    ASSERT_FALSE(prompts.texts().empty());
    EXPECT_NE(prompts.texts().back().find("Decrypt File error: Can't open"), std::string::npos);

    prompts.clear();
    ASSERT_TRUE(platform::writeWholeFile(folder.file("abc"), "x"));
    EXPECT_TRUE(DecryptFile(folder.file("abc"), "Key", prompts).DecryptFailed);
    EXPECT_TRUE(platform::folderExists(folder.path()));

    prompts.clear();
    EXPECT_FALSE(EncryptFile(folder.file("nothing.wav"), "Key", prompts).ok());
    ASSERT_EQ(prompts.transcript().size(), 1U) << "the cipher's reason is shown";
    EXPECT_FALSE(platform::fileExists(folder.file("ENC_nothing.wav")));
}

}  // namespace
}  // namespace ovd::crypto
