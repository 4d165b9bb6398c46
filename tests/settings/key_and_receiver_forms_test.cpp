// The named keys of manual decryption and the e-mail receivers, driven through their
// view models: entry rules, texts, what the databases hold afterwards.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/files.h"
#include "settings/databases.h"
#include "settings/email_receivers_form.h"
#include "settings/key_records_form.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using platform::Answer;
using testing::ScriptedPrompts;
using testing::TempFolder;

class RecordWindowsTest : public ::testing::Test {
  protected:
    TempFolder folder;
    CompanyRecords records{folder.path()};
    ScriptedPrompts prompts;
};

TEST_F(RecordWindowsTest, KeyRecordsSaveRulesAndClosedKeys) {
    KeyRecordsForm form(folder.path(), prompts);
    ASSERT_TRUE(form.Form_Load());
    struct Case {
        const char* name;
        const char* key;
        const char* refusal;
    };
    const Case refusals[] = {
        {"", "k", "Company Name field has not been entered-Record is not saved"},
        {"Pool", "", "Transcibers Encrypt/Decrypt field has not been entered-Record is not saved"},
    };
    for (const auto& item : refusals) {
        prompts.clear();
        form.chooseName(item.name);
        form.setName(item.name);
        ASSERT_TRUE(form.enterKey(item.key));
        EXPECT_FALSE(form.save());
        EXPECT_EQ(prompts.texts().back(), item.refusal);
    }
    EXPECT_FALSE(platform::fileExists(databasePath(folder.path(), StationDatabase::Passwords)));

    for (const char* name : {"zeta", "Alpha's", "beta"}) {
        form.chooseName(name);
        ASSERT_TRUE(form.enterKey(std::string(name) + "Key"));
        ASSERT_TRUE(form.save());
    }
    EXPECT_EQ(form.names(), (std::vector<std::string>{"Alpha's", "beta", "zeta"}));
    form.chooseName("ALPHA'S");
    EXPECT_EQ(form.key(), "Alpha'sKey");
    EXPECT_FALSE(form.keyEditable());
    EXPECT_FALSE(form.enterKey("x"));
    prompts.clear();
    EXPECT_FALSE((form.editEncryptionKey(), form.enterKey("has space")));
    EXPECT_EQ(prompts.texts().back(), "Please try again. Spaces are not allowed");
    ASSERT_TRUE(form.enterKey("NewKey"));
    prompts.answerNext(Answer::Yes);
    EXPECT_TRUE(form.requestClose());
    EXPECT_EQ(prompts.texts().back(),
              "The Transcriber encryption key has changed but the information has not been "
              "saved.\r\nDo you want to save now? ");
    EXPECT_EQ(DecryptPasswordsTable(folder.path()).passwords().size(), 3U) << "changed, not added";
    EXPECT_EQ(DecryptPasswordsTable(folder.path()).findPassword("alpha's")->Password, "NewKey");

    form.chooseName("Gamma");
    prompts.answerNext(Answer::No);
    EXPECT_FALSE(form.requestClose());
    EXPECT_EQ(prompts.texts().back(),
              "A new company name has been entered but the ecryption field is blank\r\nDo you "
              "want to exit? If Yes record will not be saved ");

    form.chooseName("beta");
    EXPECT_TRUE(form.deleteRecord());
    EXPECT_EQ(form.names(), (std::vector<std::string>{"Alpha's", "zeta"}));
}

TEST_F(RecordWindowsTest, ReceiversKeepKeysInitialsAndTheDefault) {
    EmailReceiversForm form(records, prompts);
    ASSERT_TRUE(form.Form_Load());
    form.chooseCompany("Pool \"Ltd\"");
    prompts.clear();
    EXPECT_FALSE(form.save());
    EXPECT_EQ(prompts.texts().back(),
              "Transcibers Email Address field has not been entered-Record is not saved");
    form.receiver.EmailEmailAddress = "pool@example.org";
    prompts.answerNextText("PL");
    ASSERT_TRUE(form.enterKey("PoolKey"));
    EXPECT_EQ(prompts.transcript().back().text,
              "Please Enter Two Unique Characters to associate this Encryption Key with.");
    ASSERT_TRUE(form.save());
    ASSERT_TRUE(form.makeDefault());
    EXPECT_EQ(form.defaultReceiver(), "pool@example.org");

    EmailReceiversForm again(records, prompts);
    ASSERT_TRUE(again.Form_Load());
    EXPECT_EQ(again.companies(), std::vector<std::string>{"Pool \"Ltd\""});
    again.chooseCompany("pool \"ltd\"");
    EXPECT_EQ(again.receiver.EmailEncryptKey, "PoolKey");
    EXPECT_EQ(again.receiver.EmailINITS, "PL");
    EXPECT_FALSE(again.keyEditable());
    EXPECT_TRUE(again.deleteReceiver());
    EXPECT_TRUE(again.companies().empty());
}

TEST_F(RecordWindowsTest, DamagedDatabasesSayAnErrorHasOccurdAndStayAsTheyWere) {
    const std::string junk = "this is not a database, not even close to one....";
    for (const auto which : {StationDatabase::Passwords, StationDatabase::EmailAddress}) {
        ASSERT_TRUE(platform::writeWholeFile(databasePath(folder.path(), which), junk));
    }
    KeyRecordsForm keys(folder.path(), prompts);
    EXPECT_FALSE(keys.Form_Load());
    EmailReceiversForm receivers(records, prompts);
    EXPECT_FALSE(receivers.Form_Load());
    EXPECT_EQ(prompts.texts(),
              (std::vector<std::string>{"An Error has Occurd", "An Error has Occurd"}));
    for (const auto which : {StationDatabase::Passwords, StationDatabase::EmailAddress}) {
        EXPECT_EQ(platform::readWholeFile(databasePath(folder.path(), which)).valueOr(""), junk);
    }
}

}  // namespace
}  // namespace ovd::settings
