// The transcriber window driven through its view model: entry rules, the save and
// what lands in ClientsInfo.ini, the questions on leaving, the clipboard lines.

#include "settings/transcriber_form.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "platform/files.h"
#include "settings/ini_store.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using platform::Answer;
using testing::ScriptedPrompts;
using testing::TempFolder;

class TranscriberFormTest : public ::testing::Test {
  protected:
    TempFolder folder;
    CompanyRecords records{folder.path()};
    ScriptedPrompts prompts;
    int reloads = 0;

    TranscriberForm openForm(DeliveryUse use = {}) {
        TranscriberForm form(records, prompts, use);
        form.onSaved = [this] { ++reloads; };
        EXPECT_TRUE(form.Form_Load());
        return form;
    }
    void addTranscriber(const std::string& company, const std::string& key = "") {
        TranscriberForm form = openForm();
        prompts.answerNext(Answer::Ok);
        form.chooseCompany(company);
        form.setText("txtRecName", "Someone");
        form.setText("txtRecKey", key);
        ASSERT_TRUE(form.save());
        prompts.clear();
    }
};

TEST_F(TranscriberFormTest, SaveWritesEveryKeyAndRefreshesListFoldersAndGlobals) {
    TranscriberForm form = openForm({.email = true, .peer = false, .encipher = true});
    form.chooseCompany("O'Brien [Typing] \"Pool\"");
    EXPECT_EQ(prompts.texts().back(), kUnknownCompanyMessage);
    form.setText("txtRecName", "Mary O'Brien");
    form.setText("txtRecCity", "Cork");
    form.setText("txtRecEmail", "mary@example.org");
    prompts.answerNextText("MB");
    ASSERT_TRUE(form.enterKey("MaryKey42"));
    EXPECT_EQ(prompts.texts()[1], kKeyCautionMessage);
    EXPECT_EQ(prompts.transcript()[2].text, kTwoCharactersPrompt);
    ASSERT_TRUE(form.save());
    EXPECT_EQ(prompts.texts().back(), "Transcribers information has been saved");

    const IniStore clients = records.clients();
    const std::string section = "O'Brien [Typing] \"Pool\"";
    EXPECT_EQ(clients.ReadKey(section, "CompanyName"), section);
    EXPECT_EQ(clients.ReadKey(section, "Name"), "Mary O'Brien");
    EXPECT_EQ(clients.ReadKey(section, "RECEncryptKey"), "MaryKey42");
    EXPECT_EQ(clients.ReadKey(section, "RECEncryptINITS"), "MB");
    const auto entries = clients.sectionEntries(section);
    ASSERT_EQ(entries.size(), kTranscriberKeys.size()) << "every key, the FTP ones included";
    EXPECT_EQ(entries[20].key, "FTPUseProxyServer");
    struct stat info {};
    ASSERT_EQ(::stat(records.clientsPath().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);

    EXPECT_EQ(form.companies(), std::vector<std::string>{section});
    EXPECT_TRUE(platform::folderExists(records.clientFolder(section, " _FTPScan")));
    EXPECT_EQ(reloads, 1);
    EXPECT_FALSE(form.keyEditable()) << "a saved key is closed";
    form.setText("txtRecKey", "changed");
    EXPECT_EQ(form.text("txtRecKey"), "MaryKey42");
    form.editEncryptionKey();
    EXPECT_TRUE(form.keyEditable());
}

TEST_F(TranscriberFormTest, RequiredFieldsFollowTheDeliveriesInUse) {
    struct Case {
        DeliveryUse use;
        std::vector<std::pair<const char*, const char*>> filled;
        const char* refusal;
    };
    const std::vector<Case> cases = {
        {{}, {}, "Company Name field has not been entered-Record is not saved"},
        {{}, {{"txtRecCompanyName", "Pool"}}, "Name field is now required"},
        {{.email = false, .peer = false, .encipher = true},
         {{"txtRecCompanyName", "Pool"}, {"txtRecName", "Ann"}},
         "Transcibers Encrypt/Decrypt field has not been entered-Record is not saved"},
        {{.email = true, .peer = false, .encipher = false},
         {{"txtRecCompanyName", "Pool"}, {"txtRecName", "Ann"}},
         "Transcibers Email Address field has not been entered-Record is not saved"},
        {{.email = false, .peer = true, .encipher = false},
         {{"txtRecCompanyName", "Pool"}, {"txtRecName", "Ann"}},
         "Transcibers IP Address field has not been entered-Record is not saved"},
        {{},
         {{"txtRecCompanyName", "Pool"}, {"txtRecName", "Ann"}, {"txtRecKey", "a b"}},
         "Please try again. Spaces are not allowed"},
    };
    for (const auto& item : cases) {
        prompts.clear();
        TranscriberForm form = openForm(item.use);
        for (const auto& [control, value] : item.filled) form.setText(control, value);
        EXPECT_FALSE(form.save()) << item.refusal;
        EXPECT_EQ(prompts.texts().back(), item.refusal);
        EXPECT_EQ(form.text("txtRecName"), item.filled.size() > 1 ? "Ann" : "") << "kept as typed";
        EXPECT_FALSE(platform::fileExists(records.clientsPath()));
    }
    TranscriberForm form = openForm({.email = true, .peer = true, .encipher = true});
    for (const char* control :
         {"txtRecCompanyName", "txtRecName", "txtRecPTPHostIP", "txtRecEmail", "txtRecKey"}) {
        EXPECT_TRUE(form.required(control)) << control;
    }
    EXPECT_FALSE(form.required("txtRecCity"));
    EXPECT_FALSE(openForm().required("txtRecEmail"));
    EXPECT_EQ(TranscriberForm::requiredFieldColour(), 8454143);
}

TEST_F(TranscriberFormTest, FirstSixCharactersMustDiffer) {
    addTranscriber("Typing Pool");
    addTranscriber("Ann");
    struct Case {
        const char* name;
        bool accepted;
    };
    const Case cases[] = {{"Typing Services", false},
                          {"TYPINGs", false},
                          {"typing", false},
                          {"Typist", true},
                          {"Annex", true},
                          {"Ann Ltd", true},
                          {"Anne", true}};
    for (const auto& item : cases) {
        prompts.clear();
        TranscriberForm form = openForm();
        form.chooseCompany(item.name);
        prompts.clear();
        EXPECT_EQ(form.leaveCompanyName(), item.accepted) << item.name;
        if (!item.accepted) {
            EXPECT_EQ(prompts.texts().back(), kSixCharactersClashMessage) << item.name;
            EXPECT_EQ(form.text("txtRecCompanyName"), item.name);
        }
    }
    // Editing a transcriber does not clash with itself.
    TranscriberForm form = openForm();
    form.chooseCompany("typing pool");
    EXPECT_EQ(form.text("txtRecCompanyName"), "Typing Pool");
    EXPECT_TRUE(form.leaveCompanyName());
}

TEST_F(TranscriberFormTest, KeyWithABlankIsRefusedOnEntry) {
    TranscriberForm form = openForm();
    for (const char* key : {"two words", " lead", "tab\there"}) {
        prompts.clear();
        EXPECT_FALSE(form.enterKey(key));
        EXPECT_EQ(prompts.texts(),
                  std::vector<std::string>{"Please try again. Spaces are not allowed"});
        EXPECT_EQ(form.text("txtRecKey"), "");
    }
}

TEST_F(TranscriberFormTest, LeavingWithChangesAsksPerField) {
    addTranscriber("Pool", "Key1");
    struct Case {
        const char* control;
        const char* question;
    };
    const Case cases[] = {
        {"txtRecName", "The Transcribers name has changed but the information has not been saved."},
        {"txtRecZip", "The Transcriber zip has changed but the information has not been saved."},
        {"txtRecEmail",
         "The Transcriber Email address has changed but the information has not been saved."},
    };
    for (const auto& item : cases) {
        TranscriberForm form = openForm();
        form.chooseCompany("Pool");
        form.setText(item.control, "new value");
        prompts.clear();
        prompts.answerNext(Answer::No);
        EXPECT_TRUE(form.requestClose());
        EXPECT_EQ(prompts.texts(), std::vector<std::string>{std::string(item.question) +
                                                            "\r\nDo you want to save now? "});
    }
    TranscriberForm form = openForm();
    form.chooseCompany("Pool");
    form.setText("txtRecCity", "Galway");
    prompts.answerNext(Answer::Yes);
    EXPECT_TRUE(form.requestClose());
    EXPECT_EQ(records.clients().ReadKey("Pool", "City"), "Galway");

    TranscriberForm fresh = openForm();
    prompts.answerNext(Answer::Ok);
    fresh.chooseCompany("Newco");
    prompts.clear();
    prompts.answerNext(Answer::No);
    EXPECT_FALSE(fresh.requestClose());
    EXPECT_EQ(prompts.texts().back(),
              "A new company name has been entered but the ecryption field is blank\r\nDo you "
              "want to exit? If Yes record will not be saved ");
}

TEST_F(TranscriberFormTest, ClipboardAndDamagedFile) {
    TranscriberForm form = openForm();
    form.chooseCompany("Pool");
    form.setText("txtRecName", "Ann");
    form.setText("txtRecSt", "Kerry");
    const std::string text = form.clipboardText();
    EXPECT_EQ(text.substr(0, 39), "Company Name: Pool\nName: Ann\nAddress: \n");
    EXPECT_NE(text.find("\nState: Kerry\n"), std::string::npos);

    const std::string damaged("[Pool]\r\nName=A\0\0\0binary", 22);
    ASSERT_TRUE(platform::writeWholeFile(records.clientsPath(), damaged));
    prompts.clear();
    TranscriberForm broken(records, prompts, {});
    EXPECT_FALSE(broken.Form_Load());
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{"An Error has Occurd"});
    EXPECT_TRUE(broken.companies().empty());
    broken.setText("txtRecCompanyName", "Pool");
    broken.setText("txtRecName", "X");
    EXPECT_FALSE(broken.save());
    EXPECT_EQ(platform::readWholeFile(records.clientsPath()).valueOr(""), damaged)
        << "the file is not lost";
}

}  // namespace
}  // namespace ovd::settings

namespace ovd::settings {
namespace {

TEST(TranscriberStoreTest, RenameMovesTheWholeSectionAndLeavesOthers) {
    testing::TempFolder folder;
    const CompanyRecords records(folder.path());
    ASSERT_TRUE(platform::writeWholeFile(
        records.clientsPath(),
        "; kept\r\n[Old Name]\r\nCompanyName=Old Name\r\nName=Ann\r\n"
        "LocalNote=from another tool\r\n[Other]\r\nCompanyName=Other\r\n"));
    const TranscriberStore store(records);
    auto record = store.load("old name");
    ASSERT_TRUE(record.ok());
    record->set("CompanyName", "New Name");
    ASSERT_TRUE(store.save(*record, "Old Name").ok());
    EXPECT_EQ(store.companies().value(), (std::vector<std::string>{"Other", "New Name"}));
    const IniStore clients = records.clients();
    EXPECT_EQ(clients.ReadKey("New Name", "Name"), "Ann");
    EXPECT_EQ(clients.ReadKey("New Name", "LocalNote"), "from another tool");
    EXPECT_EQ(clients.ReadKey("Other", "CompanyName"), "Other");
    EXPECT_EQ(platform::readWholeFile(records.clientsPath())->substr(0, 8), "; kept\r\n");
}

}  // namespace
}  // namespace ovd::settings
