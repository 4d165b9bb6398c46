// The company and transcriber files: the transcriber list every dialog shows, the
// FileFolders tree, the own company's save, the default FTP site and Help.INI.

#include "settings/company_records.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

std::set<std::string> foldersIn(const std::string& folder) {
    std::set<std::string> names;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) {
        if (entry.is_directory()) names.insert(entry.path().filename().string());
    }
    return names;
}

TEST(CompanyRecords, LoadClientsFollowsTheCompanyNameLines) {
    TempFolder folder;
    const CompanyRecords records(folder.path());
    EXPECT_EQ(records.LoadClients().HowMany, 0) << "no file";

    ASSERT_TRUE(platform::writeWholeFile(records.clientsPath(), "; nothing here yet\r\n"));
    EXPECT_EQ(records.LoadClients().HowMany, 0) << "no sections";

    // The middle section has no CompanyName line: the list comes out one short at
    // the end, and the slot that follows the last name stays empty.
    ASSERT_TRUE(platform::writeWholeFile(records.clientsPath(),
                                         "[North Typing]\r\nCompanyName=North Typing\r\n"
                                         "Email=desk@north.example\r\nRECEncryptKey=n-key\r\n"
                                         "[Orphan]\r\nEmail=orphan@example\r\n"
                                         "[South]\nEmail=south@example\nCompanyName=South\n"));
    const ClientList list = records.LoadClients();
    EXPECT_EQ(list.HowMany, 2);
    EXPECT_EQ(list.companyNames, (std::vector<std::string>{"North Typing", "South", ""}));
    EXPECT_EQ(list.emails, (std::vector<std::string>{"desk@north.example", "south@example", ""}));
    EXPECT_EQ(list.encryptKeys, (std::vector<std::string>{"n-key", "", ""}));
}

TEST(CompanyRecords, CreateClientFoldersMakesSixFoldersPerTranscriber) {
    TempFolder folder;
    const CompanyRecords records(folder.path());
    records.CreateClientFolders();
    EXPECT_TRUE(foldersIn(records.fileFoldersPath()).empty()) << "no transcribers";

    ASSERT_TRUE(platform::writeWholeFile(records.clientsPath(),
                                         "[Acme]\r\nCompanyName=Acme\r\n"
                                         "[North/South]\r\nCompanyName=North/South\r\n"
                                         "[Beta Co]\r\nCompanyName=Beta Co\r\n"));
    records.CreateClientFolders();
    records.CreateClientFolders();  // a second run finds them all there

    std::set<std::string> expected;
    for (const char* name : {"Acme", "Beta Co"}) {
        for (const char* suffix : {" _EMAILScan", " _EMAILOutputRenamed", " _FTPScan",
                                   " _FTPOutputRenamed", " _PTPScan", " _PTPOutputRenamed"}) {
            expected.insert(std::string(name) + suffix);
        }
    }
    // The name that can't be a folder name makes no folders, and its record stays.
    EXPECT_EQ(foldersIn(records.fileFoldersPath()), expected);
    EXPECT_EQ(records.LoadClients().HowMany, 3);
}

TEST(CompanyRecords, OurEmailsAreTheEmailLinesInFileOrder) {
    TempFolder folder;
    const CompanyRecords records(folder.path());
    ASSERT_TRUE(platform::writeWholeFile(records.ourCompanyPath(),
                                         "[Company]\r\nEmail2=two@example\r\nName=Ann\r\n"
                                         "Email1=one@example=x\r\nEmail5=\r\n"));
    EXPECT_EQ(records.LoadOurEmails(),
              (std::vector<std::string>{"two@example", "one@example=x", ""}));
}

TEST(CompanyRecords, DefaultFtpClientNeedsTheClientsFile) {
    TempFolder folder;
    const CompanyRecords records(folder.path());
    ASSERT_TRUE(records.defaults().WriteKey("DefaultFTPClient", "DefaultFTP", "North Typing"));
    EXPECT_EQ(records.defaultFtpClient(), "");
    ASSERT_TRUE(records.clients().WriteKey("North Typing", "CompanyName", "North Typing"));
    EXPECT_EQ(records.defaultFtpClient(), "North Typing");
}

TEST(CompanyRecords, SavingOurCompanyAsksForTheRequiredFieldsInTurn) {
    const OurCompanyFields full{"Acme", "Ann Lee", "1 Main St", "Springfield",
                                "IL",   "62701",   "555-0100",  "s3cret"};
    struct Case {
        std::string OurCompanyFields::*emptied;
        const char* message;
    };
    const std::vector<Case> cases = {
        {&OurCompanyFields::CompanyName, "Company Name must be entered to Save record"},
        {&OurCompanyFields::Name, "Name must be entered to Save record"},
        {&OurCompanyFields::EncryptKey, "An ecryption key needs to be entered.  Please re-enter"},
    };
    for (const auto& c : cases) {
        TempFolder folder;
        const CompanyRecords records(folder.path());
        ScriptedPrompts prompts;
        OurCompanyFields fields = full;
        fields.*(c.emptied) = "";
        EXPECT_FALSE(saveOurCompanyInformation(records, fields, prompts)) << c.message;
        EXPECT_EQ(prompts.texts(), std::vector<std::string>{c.message});
        EXPECT_FALSE(platform::fileExists(records.ourCompanyPath())) << c.message;
    }

    TempFolder folder;
    const CompanyRecords records(folder.path());
    ScriptedPrompts prompts;
    OurCompanyFields fields = full;
    fields.Zip.clear();
    EXPECT_TRUE(saveOurCompanyInformation(records, fields, prompts));
    EXPECT_EQ(prompts.texts(),
              std::vector<std::string>{"Thank You... All required fields have "
                                       "been entered --- Company Information saved"});
    EXPECT_EQ(platform::readWholeFile(records.ourCompanyPath()),
              "[Company]\r\nCompanyName=Acme\r\nName=Ann Lee\r\nAddress=1 Main St\r\n"
              "City=Springfield\r\nSt=IL\r\nZip=\r\nPhone=555-0100\r\n\r\n"
              "[Key]\r\nEncryptKey=s3cret\r\n");
    struct stat info {};
    ASSERT_EQ(::stat(records.ourCompanyPath().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST(CompanyRecords, HelpIndexFillsEveryMissingKeyWithItsDefault) {
    TempFolder folder;
    const CompanyRecords records(folder.path());
    ScriptedPrompts prompts;
    const HelpEntry defaults{"", "<UNKNOWN>", "Root", "False", ""};

    const HelpIndex none = readHelpIndex(records, prompts);
    EXPECT_EQ(none.Entries, 1);
    EXPECT_EQ(none.ListWidth, 225);
    EXPECT_EQ(none.FormTitle, "Help");
    EXPECT_EQ(none.items, std::vector<HelpEntry>{defaults});

    ASSERT_TRUE(platform::writeWholeFile(records.helpPath(),
                                         "[General]\r\nEntries=2\r\nForm Title=Station Help\r\n"
                                         "[1]\r\nListItem=Pedals\r\nNode=True\r\nKey=pedals\r\n"));
    const HelpIndex two = readHelpIndex(records, prompts);
    EXPECT_EQ(two.ListWidth, 225);
    EXPECT_EQ(two.FormTitle, "Station Help");
    EXPECT_EQ(two.items, (std::vector<HelpEntry>{{"Pedals", "<UNKNOWN>", "Root", "True", "pedals"},
                                                 defaults}));
    EXPECT_TRUE(prompts.transcript().empty());
}

}  // namespace
}  // namespace ovd::settings
