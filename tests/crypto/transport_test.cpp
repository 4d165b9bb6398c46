// What a file travels under and with which key: the key text of each route, the
// transport names, and the enciphered copies the senders hand on.

#include "crypto/transport.h"

#include <gtest/gtest.h>

#include <string>

#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"
#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::crypto {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

TEST(TransportNames, EmailAndFtpNames) {
    struct Case {
        const char* file;
        const char* ours;
        const char* theirs;
        const char* email;
        const char* ftp;
    };
    const Case cases[] = {
        {"Letter.wav", "Orvane Medical", "Typing Pool", "Letter.wav_Orvane_to_Typing.enc",
         "Letter.wav.enc"},
        {"NoDot", "Orvane", "Ty", "NoDot_Orvane_to_Ty.enc", "NoDot.enc"},
        {"a.b.c", "O'Hara & Co", "[Pool]", "a.b.c_O'Hara_to_[Pool].enc", "a.b.c.enc"},
        {"x.wav", "\u00c5rhus T\u00e4xt", "Zed", "x.wav_\u00c5rhus _to_Zed.enc", "x.wav.enc"},
    };
    for (const auto& item : cases) {
        EXPECT_EQ(emailTransportName(item.file, item.ours, item.theirs), item.email);
        EXPECT_EQ(ftpTransportName(item.file), item.ftp);
    }
    EXPECT_EQ(splitAtLastDot("a.b.wav").name, "a.b");
    EXPECT_EQ(splitAtLastDot("a.b.wav").extension, "wav");
    EXPECT_EQ(splitAtLastDot("plain").name, "plain");
    EXPECT_EQ(splitAtLastDot("plain").extension, "");
}

TEST(TransportKeys, EachRouteJoinsItsPartsInItsOrder) {
    EXPECT_EQ(emailSendingKeyText("OURKEY", "Pool Ltd", "POOLKEY"), "OURKEYPool LtdPOOLKEY");
    EXPECT_EQ(ftpReceivingKeyText("POOLKEY", "Orvane", "OURKEY"), "POOLKEYOrvaneOURKEY");
    EXPECT_EQ(ftpSendingKeyText("SITEKEY"), "SITEKEY");
    EXPECT_TRUE(alreadyEnciphered("Letter.wav.enc"));
    EXPECT_TRUE(alreadyEnciphered("Letter.enc.wav"));
    EXPECT_FALSE(alreadyEnciphered("Letter.wav"));
}

class TransportFiles : public ::testing::Test {
  protected:
    TempFolder folder;
    ScriptedPrompts prompts;
    std::string letterPath;
    void SetUp() override {
        letterPath = folder.file("Letter 7.wav");
        ASSERT_TRUE(platform::writeWholeFile(letterPath, "the letter as spoken"));
    }
    std::string decipher(const std::string& path, const std::string& keyText) {
        if (!transformFile(Direction::Decipher, path, folder.file("out"), keyFromText(keyText))
                 .ok()) {
            return "<failed>";
        }
        return platform::readWholeFile(folder.file("out")).valueOr("");
    }
};

TEST_F(TransportFiles, EmailAttachmentIsEncipheredUnderItsTransportName) {
    const auto attachment = encipherEmailAttachment(
        {letterPath, folder.path(), "OURKEY", "Orvane Medical", "Pool Ltd", "POOLKEY"}, prompts);
    ASSERT_TRUE(attachment.ok()) << attachment.error();
    EXPECT_EQ(*attachment, folder.file("AutoEmailTemp/Letter 7.wav_Orvane_to_Pool L.enc"));
    EXPECT_EQ(platform::filesInFolder(folder.file("AutoEmailTemp")),
              std::vector<std::string>{"Letter 7.wav_Orvane_to_Pool L.enc"})
        << "no clear copy is left beside it";
    EXPECT_EQ(decipher(*attachment, "OURKEYPool LtdPOOLKEY"), "the letter as spoken");
    EXPECT_EQ(platform::readWholeFile(letterPath).valueOr(""), "the letter as spoken");
    EXPECT_TRUE(prompts.transcript().empty());

    const auto missing = encipherEmailAttachment(
        {folder.file("gone.wav"), folder.path(), "K", "O", "P", "Q"}, prompts);
    EXPECT_FALSE(missing.ok());
    EXPECT_EQ(prompts.texts().back(),
              "gone.wav--File not attached! File Not found or File already Attached");
}

TEST_F(TransportFiles, FtpUploadIsEncipheredUnlessRefused) {
    const auto upload = encipherFtpUpload(letterPath, "SITEKEY", folder.file("FTPTemp"), prompts);
    ASSERT_TRUE(upload.ok()) << upload.error();
    EXPECT_EQ(upload->remoteName, "Letter 7.wav.enc");
    EXPECT_EQ(decipher(upload->path, "SITEKEY"), "the letter as spoken");

    const auto noKey = encipherFtpUpload(letterPath, "", folder.file("FTPTemp"), prompts);
    ASSERT_TRUE(noKey.ok());
    EXPECT_EQ(noKey->path, letterPath);
    EXPECT_EQ(prompts.texts().back(),
              "Encryption has been checked for this Transcriber but this Transcriber does not "
              "have a valid encrytion key. WARNING---Message will not be encrypted.");

    ASSERT_TRUE(platform::writeWholeFile(folder.file("Old.wav.enc"), "locked"));
    const auto twice =
        encipherFtpUpload(folder.file("Old.wav.enc"), "SITEKEY", folder.file("FTPTemp"), prompts);
    ASSERT_TRUE(twice.ok());
    EXPECT_EQ(twice->remoteName, "Old.wav.enc");
    EXPECT_EQ(prompts.texts().back(),
              "Old.wav.enc has already been encrypted.\r\nA file can 'NOT' be ecncrypted more "
              "than once.\r\nFile will 'NOT' BE encrypted again.");
}

}  // namespace
}  // namespace ovd::crypto
