// The station program as a transcriber's decryptor: a file enciphered by the openssl
// command line comes back whole with the right key, and a wrong key ends with status
// 1, one line on standard error and no file.

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/files.h"
#include "settings/passwords_tables.h"
#include "station_process.h"

namespace ovd {
namespace {

TEST(DecryptCommandStationTest, DecryptsWhatOpensslEnciphered) {
    testing::StationProcess station;
    const std::string plain = station.folder.file("Letter.wav");
    ASSERT_TRUE(platform::writeWholeFile(plain, "RIFF and a letter"));
    // "Pool key" zero-padded to 16 bytes, as key and as vector.
    const std::string hex = "506f6f6c206b65790000000000000000";
    const std::string command = "openssl enc -aes-128-cbc -K " + hex + " -iv " + hex + " -in '" +
                                plain + "' -out '" + plain + ".enc'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    ASSERT_EQ(std::remove(plain.c_str()), 0);

    settings::DecryptPasswordsTable keys(station.folder.path());
    ASSERT_TRUE(keys.addPassword("Pool Ltd", "Pool key"));
    const testing::ProcessEnd byName =
        station.runSecond({"--decrypt", plain + ".enc", "--key-name", "Pool Ltd"});
    EXPECT_TRUE(byName.exited && byName.status == 0) << byName.errors;
    EXPECT_EQ(platform::readWholeFile(plain).valueOr(""), "RIFF and a letter");

    const testing::ProcessEnd wrong = station.runSecond(
        {"--decrypt", plain + ".enc", "--key-text", "Pool kez", "--output", plain + ".2"});
    EXPECT_TRUE(wrong.exited && wrong.status == 1);
    EXPECT_EQ(wrong.errors, "orvane-voice-desk: " + plain +
                                ".enc: wrong key - the file can't be decrypted with this key\n");
    EXPECT_FALSE(platform::fileExists(plain + ".2"));

    const testing::ProcessEnd misused = station.runSecond({"--key-text", "x"});
    EXPECT_TRUE(misused.exited && misused.status == 2);
}

}  // namespace
}  // namespace ovd
