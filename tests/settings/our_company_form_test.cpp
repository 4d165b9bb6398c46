// The own-company window through its view model: the save rules and their texts, the
// key closed after saving, leaving with changes, and the company asked for by the
// delivery windows.

#include "settings/our_company_form.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using platform::Answer;
using testing::ScriptedPrompts;
using testing::TempFolder;

class OurCompanyFormTest : public ::testing::Test {
  protected:
    TempFolder folder;
    CompanyRecords records{folder.path()};
    ScriptedPrompts prompts;

    OurCompanyForm filledForm(const std::string& company, const std::string& name,
                              const std::string& key) {
        OurCompanyForm form(records, prompts);
        EXPECT_TRUE(form.Form_Load());
        form.setText("txtCompanyName", company);
        form.setText("txtName", name);
        form.setText("txtKeyInfo", key);
        return form;
    }
};

TEST_F(OurCompanyFormTest, SaveRulesAndTheirTexts) {
    struct Case {
        const char* company;
        const char* name;
        const char* key;
        std::vector<Answer> answers;
        bool saved;
        std::vector<std::string> texts;
    };
    const std::vector<Case> cases = {
        {"", "Ann", "K", {}, false, {"Company Name must be entered to Save record"}},
        {"Orvane",
         "Ann",
         "",
         {},
         false,
         {"An ecryption key needs to be entered.  Please re-enter"}},
        {"Orvane", "Ann", "   ", {}, false, {"Encryption key is blank.  Please re-enter"}},
        {"Orvane", "Ann", "a key", {}, false, {"Please try again. Spaces are not allowed"}},
        {"Orvane", "", "K", {Answer::Yes}, false, {kEmailNeedsNameQuestion}},
        {"Orvane",
         "",
         "K",
         {Answer::No},
         true,
         {kEmailNeedsNameQuestion, "EMail will not function--Data Not Saved",
          kCompanySavedWithoutNameMessage}},
        {"O'Hara [Medical]",
         "Ann",
         "K",
         {},
         true,
         {"Thank You... All required fields have been entered --- Company Information saved"}},
    };
    for (const auto& item : cases) {
        std::remove(records.ourCompanyPath().c_str());
        prompts.clear();
        for (const auto answer : item.answers) prompts.answerNext(answer);
        OurCompanyForm form = filledForm(item.company, item.name, item.key);
        EXPECT_EQ(form.save(), item.saved) << item.company << "/" << item.name << "/" << item.key;
        EXPECT_EQ(prompts.texts(), item.texts);
        EXPECT_EQ(readOurCompany(records).g_strOrganization, item.saved ? item.company : "");
    }
    EXPECT_EQ(readOurCompany(records).g_strSaveOurCompanyKey, "K");

    // A long key comes back whole: settings reads stop at 99 characters, keys must not.
    const std::string longKey(200, 'k');
    std::remove(records.ourCompanyPath().c_str());
    OurCompanyForm form = filledForm("Orvane", "Ann", longKey);
    ASSERT_TRUE(form.save());
    EXPECT_EQ(readOurCompany(records).g_strSaveOurCompanyKey, longKey);
}

TEST_F(OurCompanyFormTest, SavedKeyIsClosedAndLeavingWithChangesIsStopped) {
    OurCompanyForm form = filledForm("Orvane", "Ann", "OurKey");
    ASSERT_TRUE(form.save());
    OurCompanyForm again(records, prompts);
    ASSERT_TRUE(again.Form_Load());
    EXPECT_EQ(again.text("txtKeyInfo"), "OurKey");
    EXPECT_FALSE(again.keyEditable());
    EXPECT_FALSE(again.enterKey("Other"));
    again.editEncryptionKey();
    prompts.clear();
    EXPECT_TRUE(again.enterKey("Other"));
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{kKeyCautionMessage});

    again.setText("txtCity", "Tralee");
    prompts.clear();
    EXPECT_FALSE(again.requestClose());
    ASSERT_EQ(prompts.transcript().size(), 1U);
    EXPECT_EQ(
        prompts.transcript()[0].text,
        "City field has been changed.  The information must be saved before exiting the program.");
    EXPECT_EQ(prompts.transcript()[0].title, "Information Not Saved.");
    again.setText("txtCity", "");
    EXPECT_TRUE(again.requestClose());
    EXPECT_EQ(again.clipboardText(),
              "Company Name: Orvane\nName: Ann\nAddress: \nCity: \nState: \nZip: \nPhone: \n");
}

TEST_F(OurCompanyFormTest, DeliveryWindowsAskForTheCompany) {
    prompts.answerNext(Answer::No);
    EXPECT_FALSE(ensureOurCompany(records, prompts, [] {}));
    EXPECT_EQ(prompts.texts(),
              (std::vector<std::string>{
                  "Company Name has 'NOT' been entered. This Program will not function until this "
                  "step has been completed.Would you like to do so now? ",
                  "Company Information has 'NOT' been setup.  This program will not function until "
                  "this step has been completed!  Program is closing"}));
    prompts.clear();
    prompts.answerNext(Answer::Yes);
    EXPECT_TRUE(ensureOurCompany(records, prompts, [this] {
        OurCompanyForm form = filledForm("Orvane", "Ann", "K");
        EXPECT_TRUE(form.save());
    }));
    prompts.clear();
    EXPECT_TRUE(ensureOurCompany(records, prompts, nullptr));
    EXPECT_TRUE(prompts.transcript().empty());

    ASSERT_TRUE(platform::writeWholeFile(records.ourCompanyPath(), std::string("\0\0", 2)));
    OurCompanyForm damaged(records, prompts);
    EXPECT_FALSE(damaged.Form_Load());
    EXPECT_EQ(prompts.texts().back(), "An Error has Occurd");
}

}  // namespace
}  // namespace ovd::settings
