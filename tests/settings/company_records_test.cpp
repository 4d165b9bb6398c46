// The company and transcriber files: the transcriber list every dialog shows, the
// FileFolders tree, the own company's save, the default FTP site and Help.INI.

#include "settings/company_records.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::ScriptedPrompts;
using testing::TempFolder;

unsigned modeOf(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777U : 0U;
}

// A data folder with its records, and the boxes they show.
class CompanyRecordsTest : public ::testing::Test {
  protected:
    TempFolder folder;
    CompanyRecords records{folder.path()};
    ScriptedPrompts prompts;
};

TEST_F(CompanyRecordsTest, LoadClientsFollowsTheCompanyNameLines) {
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

TEST_F(CompanyRecordsTest, CreateClientFoldersMakesSixFoldersPerTranscriber) {
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
    std::set<std::string> made;
    for (const auto& entry : std::filesystem::directory_iterator(records.fileFoldersPath())) {
        if (entry.is_directory()) made.insert(entry.path().filename().string());
    }
    EXPECT_EQ(made, expected);
    EXPECT_EQ(records.LoadClients().HowMany, 3);
}

TEST_F(CompanyRecordsTest, OurEmailsAreTheEmailLinesInFileOrder) {
    ASSERT_TRUE(platform::writeWholeFile(records.ourCompanyPath(),
                                         "[Company]\r\nEmail2=two@example\r\nName=Ann\r\n"
                                         "Email1=one@example=x\r\nEmail5=\r\n"));
    EXPECT_EQ(records.LoadOurEmails(),
              (std::vector<std::string>{"two@example", "one@example=x", ""}));
}

TEST_F(CompanyRecordsTest, DefaultFtpClientNeedsTheClientsFileAndBothStayTheOwners) {
    ASSERT_TRUE(records.defaults().WriteKey("DefaultFTPClient", "DefaultFTP", "North Typing"));
    EXPECT_EQ(records.defaultFtpClient(), "");
    ASSERT_TRUE(records.clients().WriteKey("North Typing", "CompanyName", "North Typing"));
    EXPECT_EQ(records.defaultFtpClient(), "North Typing");
    EXPECT_EQ(modeOf(records.defaultsPath()), 0600U);
    EXPECT_EQ(modeOf(records.clientsPath()), 0600U);
}

TEST_F(CompanyRecordsTest, SavingOurCompanyTellsTheMissingFieldOrSavesForTheOwnerOnly) {
    const std::vector<std::pair<std::string OurCompanyFields::*, const char*>> cases = {
        {&OurCompanyFields::CompanyName, "Company Name must be entered to Save record"},
        {&OurCompanyFields::Name, "Name must be entered to Save record"},
        {&OurCompanyFields::EncryptKey, "An ecryption key needs to be entered.  Please re-enter"},
        // Last, as the one that saves: the zip code is not required.
        {&OurCompanyFields::Zip,
         "Thank You... All required fields have been entered --- Company Information saved"},
    };
    for (const auto& [emptied, message] : cases) {
        OurCompanyFields fields{"Acme", "Ann Lee", "1 Main St", "Springfield",
                                "IL",   "62701",   "555-0100",  "s3cret"};
        fields.*emptied = "";
        prompts.clear();
        const bool saves = emptied == &OurCompanyFields::Zip;
        EXPECT_EQ(saveOurCompanyInformation(records, fields, prompts), saves) << message;
        EXPECT_EQ(prompts.texts(), std::vector<std::string>{message});
        EXPECT_EQ(platform::fileExists(records.ourCompanyPath()), saves) << message;
    }
    EXPECT_EQ(platform::readWholeFile(records.ourCompanyPath()).valueOr(""),
              "[Company]\r\nCompanyName=Acme\r\nName=Ann Lee\r\nAddress=1 Main St\r\n"
              "City=Springfield\r\nSt=IL\r\nZip=\r\nPhone=555-0100\r\n\r\n"
              "[Key]\r\nEncryptKey=s3cret\r\n");
    EXPECT_EQ(modeOf(records.ourCompanyPath()), 0600U);
}

TEST_F(CompanyRecordsTest, HelpIndexFillsEveryMissingKeyWithItsDefault) {
    ASSERT_TRUE(
        platform::writeWholeFile(records.helpPath(), "[1]\r\nListItem=Pedals\r\nKey=pedals\r\n"));
    const HelpIndex help = readHelpIndex(records, prompts);
    const std::vector<HelpEntry> items = {{"Pedals", "<UNKNOWN>", "Root", "False", "pedals"}};
    EXPECT_EQ(std::tie(help.Entries, help.ListWidth, help.FormTitle, help.items),
              std::make_tuple(1, 225, "Help", items));
    EXPECT_TRUE(prompts.transcript().empty());
}

}  // namespace
}  // namespace ovd::settings
