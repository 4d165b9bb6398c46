// The manual decryption window through its view model: a named key, the file dialog
// with its title and filter, the status lines for success and a wrong key, and the
// save of the result.

#include "crypto/manual_decrypt.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "crypto/file_crypt.h"
#include "platform/files.h"
#include "settings/passwords_tables.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::crypto {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

TEST(ManualDecryptTest, NamedKeyDecryptsAndAWrongOneExplains) {
    TempFolder folder;
    ScriptedPrompts prompts;
    ASSERT_TRUE(platform::writeWholeFile(folder.file("Letter.wav"), "spoken"));
    ASSERT_TRUE(EncryptFile(folder.file("Letter.wav"), "PoolKey", prompts).ok());
    ASSERT_EQ(std::remove(folder.file("Letter.wav").c_str()), 0);
    settings::DecryptPasswordsTable table(folder.path());
    ASSERT_TRUE(table.addPassword("pool", "PoolKey"));
    ASSERT_TRUE(table.addPassword("Other", "Wrong"));

    ManualDecryptForm form(folder.path(), prompts);
    ASSERT_TRUE(form.Form_Load());
    EXPECT_EQ(form.keys.names(), (std::vector<std::string>{"Other", "pool"}));

    form.keys.chooseName("Other");
    prompts.answerNextText(folder.file("ENC_Letter.wav"));
    EXPECT_FALSE(form.decryptChosenFile());
    EXPECT_EQ(prompts.transcript()[0].kind, "file");
    EXPECT_EQ(prompts.transcript()[0].title, "Get Encrypted File");
    EXPECT_EQ(form.status(),
              (std::vector<std::string>{
                  "Your key must match the information provided by the person from "
                  "whom the file was sent- Unable to Decrypt file ",
                  "Problem Solving: ",
                  "To Decrypt a file: Please enter the correct key and try again."}));
    EXPECT_FALSE(platform::fileExists(folder.file("Letter.wav")));

    form.keys.chooseName("POOL");
    EXPECT_TRUE(form.decryptFile(folder.file("ENC_Letter.wav")));
    EXPECT_EQ(form.status(), std::vector<std::string>{"File Decrypted"});
    EXPECT_EQ(platform::readWholeFile(folder.file("Letter.wav")).valueOr(""), "spoken");

    prompts.answerNextText(folder.file("Saved.wav"));
    EXPECT_TRUE(form.saveDecryptedFile());
    EXPECT_EQ(prompts.transcript().back().title, "Save File");
    EXPECT_EQ(platform::readWholeFile(folder.file("Saved.wav")).valueOr(""), "spoken");

    form.keys.chooseName("nobody");
    EXPECT_FALSE(form.decryptFile(folder.file("ENC_Letter.wav")));
    EXPECT_EQ(form.status(), std::vector<std::string>{kNoKeyText});
}

}  // namespace
}  // namespace ovd::crypto
