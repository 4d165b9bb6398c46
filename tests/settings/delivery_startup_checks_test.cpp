// The start-up checks of the delivery options: each missing piece asked about, the
// setup window on Yes, and the option off for the run when it stays missing.

#include "settings/delivery_startup_checks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/files.h"
#include "settings/delivery_defaults.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using platform::Answer;
using testing::ScriptedPrompts;
using testing::TempFolder;

class DeliveryStartupChecksTest : public ::testing::Test {
  protected:
    TempFolder folder;
    CompanyRecords records{folder.path()};
    ScriptedPrompts prompts;
    SettingsRecord record;
    std::vector<std::string> opened;
    SetupWindows windows{[this] { opened.push_back("email"); },
                         [this] { opened.push_back("ftp"); }};
};

TEST_F(DeliveryStartupChecksTest, EachMissingPieceAskedAndTheOptionOffOnNo) {
    struct Case {
        const char* label;
        std::vector<std::pair<const char*, const char*>> defaults;  // key of DefaultEmailForCO
        std::vector<std::string> texts;
    };
    const std::vector<Case> cases = {
        {"no sender",
         {},
         {kEmailNotSetUpQuestion, "Email is not setup.The Email option will now be deactivated."}},
        {"no receiver",
         {{"DefaultEmail", "us@example.org"}},
         {"You have activated Email and Email has been setup. But you have not slected a default "
          "email address.Email will not function until this step has been completed!  Would you "
          "like to do so now? ",
          "An email address has not been entered.The Email option will now be deactivated."}},
        {"all there",
         {{"DefaultEmail", "us@example.org"}, {"DefaultRecEMail", "pool@example.org"}},
         {}},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.label);
        std::remove(records.defaultsPath().c_str());
        for (const auto& [key, value] : item.defaults) {
            ASSERT_TRUE(records.defaults().WriteKey("DefaultEmailForCO", key, value));
        }
        record.AutoEmail = true;
        record.AutoFTP = false;
        prompts.clear();
        prompts.answerNext(Answer::No);
        checkDeliveryOptions(record, records, prompts, windows);
        EXPECT_EQ(prompts.texts(), item.texts);
        EXPECT_EQ(record.AutoEmail, item.texts.empty());
        EXPECT_TRUE(opened.empty());
        while (prompts.unusedAnswers() > 0) prompts.message({});
    }
}

TEST_F(DeliveryStartupChecksTest, YesOpensTheSetupAndAFinishedSetupKeepsTheOptionOn) {
    record.AutoFTP = true;
    prompts.answerNext(Answer::Yes);
    windows.ftpSetup = [this] {
        opened.push_back("ftp");
        ASSERT_TRUE(records.defaults().WriteKey("DefaultFTPForCO", "FTPServer", "ftp.example.org"));
    };
    checkDeliveryOptions(record, records, prompts, windows);
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{kNoDefaultFtpQuestion});
    EXPECT_EQ(opened, std::vector<std::string>{"ftp"});
    EXPECT_TRUE(record.AutoFTP);

    // With no window to show (headless), Yes can't set anything up.
    std::remove(records.defaultsPath().c_str());
    prompts.clear();
    prompts.answerNext(Answer::Yes);
    checkDeliveryOptions(record, records, prompts, {});
    EXPECT_EQ(prompts.texts().back(),
              "A defautl FTP has not been selected..The FTP option will now be deactivated.");
    EXPECT_FALSE(record.AutoFTP);
}

}  // namespace
}  // namespace ovd::settings

namespace ovd::settings {
namespace {

TEST(DeliveryDefaultsTest, DefaultReceiverBringsItsTranscribersKey) {
    testing::TempFolder folder;
    const CompanyRecords records(folder.path());
    EXPECT_EQ(LoadDefaultEmail(records).RECEncryptKey, "") << "no files at all";
    ASSERT_TRUE(
        platform::writeWholeFile(records.clientsPath(),
                                 "[Pool]\r\nEmail=other@example.org\r\nRECEncryptKey=K1\r\n"
                                 "[Typing]\r\nEmail=Pool@Example.org\r\nRECEncryptKey=K2\r\n"));
    ASSERT_TRUE(platform::writeWholeFile(
        records.defaultsPath(),
        "[DefaultEmailForCO]\r\nDefaultRecEMail=pool@example.org\r\n"
        "ChkEncryptDecrypt=True\r\nChkRelayMessages=0\r\n"
        "[DefaultFTPForCO]\r\nFTPServer=ftp.example.org\r\nFTPPort=21\r\n"));
    const DefaultEmail email = LoadDefaultEmail(records);
    EXPECT_EQ(email.RECEncryptKey, "K2");
    EXPECT_TRUE(email.ChkEncryptDecrypt);
    EXPECT_FALSE(email.ChkRelayMessages);
    const auto site = LoadDefaultFTP(records);
    EXPECT_EQ(site.at("FTPServer"), "ftp.example.org");
    EXPECT_EQ(site.at("FTPPort"), "21");
}

}  // namespace
}  // namespace ovd::settings
