// The command-line decryptor: output names, key by name or text, exit status, and
// the one line a script sees when it fails.

#include "crypto/decrypt_command.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"
#include "platform/files.h"
#include "settings/passwords_tables.h"
#include "support/temp_folder.h"

namespace ovd::crypto {
namespace {

using testing::TempFolder;

TEST(DecryptCommandNames, OutputBesideTheInput) {
    EXPECT_EQ(commandOutputName("/in/ENC_Letter.wav"), "/in/Letter.wav");
    EXPECT_EQ(commandOutputName("/in/Letter.wav_Orvane_to_Pool.enc"),
              "/in/Letter.wav_Orvane_to_Pool");
    EXPECT_EQ(commandOutputName("Letter.wav.enc"), "Letter.wav");
    EXPECT_EQ(commandOutputName("/in/.enc"), "/in/.enc.dec");
    EXPECT_EQ(commandOutputName("/in/blob"), "/in/blob.dec");
}

class DecryptCommandTest : public ::testing::Test {
  protected:
    TempFolder folder;
    std::ostringstream out;
    std::ostringstream err;
    void SetUp() override {
        ASSERT_TRUE(platform::writeWholeFile(folder.file("plain"), "spoken words"));
        ASSERT_TRUE(transformFile(Direction::Encipher, folder.file("plain"),
                                  folder.file("L.wav.enc"), keyFromText("Pool's key"))
                        .ok());
    }
    DecryptExit run(DecryptCommand command) {
        command.dataFolder = folder.path();
        out.str({});
        err.str({});
        return runDecryptCommand(command, out, err);
    }
};

TEST_F(DecryptCommandTest, ByKeyTextAndByKeyName) {
    EXPECT_EQ(
        run({.inputPath = folder.file("L.wav.enc"), .keyText = "Pool's key", .keyTextGiven = true}),
        kDecrypted);
    EXPECT_EQ(out.str(), folder.file("L.wav") + "\n");
    EXPECT_EQ(platform::readWholeFile(folder.file("L.wav")).valueOr(""), "spoken words");

    settings::DecryptPasswordsTable table(folder.path());
    ASSERT_TRUE(table.addPassword("Pool Ltd", "Pool's key"));
    EXPECT_EQ(run({.inputPath = folder.file("L.wav.enc"),
                   .keyName = "pool ltd",
                   .outputPath = folder.file("again.wav")}),
              kDecrypted);
    EXPECT_EQ(platform::readWholeFile(folder.file("again.wav")).valueOr(""), "spoken words");
}

TEST_F(DecryptCommandTest, FailuresSayWhyInOneLineAndTouchNothing) {
    ASSERT_TRUE(platform::writeWholeFile(folder.file("L.wav"), "already here"));
    EXPECT_EQ(
        run({.inputPath = folder.file("L.wav.enc"), .keyText = "Pool's key", .keyTextGiven = true}),
        kNotDecrypted);
    EXPECT_NE(err.str().find("already there"), std::string::npos);
    EXPECT_EQ(platform::readWholeFile(folder.file("L.wav")).valueOr(""), "already here");

    const auto wrong = run({.inputPath = folder.file("L.wav.enc"),
                            .keyText = "other",
                            .keyTextGiven = true,
                            .outputPath = folder.file("w.wav")});
    EXPECT_EQ(wrong, kNotDecrypted);
    EXPECT_EQ(err.str(), "orvane-voice-desk: " + folder.file("L.wav.enc") +
                             ": wrong key - the file can't be decrypted with this key\n");
    EXPECT_FALSE(platform::fileExists(folder.file("w.wav")));

    EXPECT_EQ(run({.inputPath = folder.file("L.wav.enc"),
                   .keyName = "Nobody",
                   .outputPath = folder.file("w.wav")}),
              kNotDecrypted);
    EXPECT_NE(err.str().find("no key named \"Nobody\""), std::string::npos);

    EXPECT_EQ(run({.inputPath = folder.file("L.wav.enc"), .keyTextGiven = true}), kBadCommand);
    EXPECT_EQ(run({.inputPath = folder.file("L.wav.enc")}), kBadCommand);
    EXPECT_EQ(run({.inputPath = folder.file("L.wav.enc"),
                   .keyName = "a",
                   .keyText = "b",
                   .keyTextGiven = true}),
              kBadCommand);
    for (const std::string& line : {err.str()}) EXPECT_EQ(line.find('\n'), line.size() - 1);
}

}  // namespace
}  // namespace ovd::crypto
