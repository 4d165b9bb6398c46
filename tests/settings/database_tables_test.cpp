// The rows of each table as the windows use them: the speaker box and its numbers,
// the receiver's add-or-change, a site with and without proxy, decrypt passwords.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database_probe.h"
#include "settings/email_sites_tables.h"
#include "settings/passwords_tables.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::TempFolder;

class SpeakersTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(createDatabaseFile(folder.path(), StationDatabase::Passwords));
        // As an older station leaves them: one number never set, one speaker retired.
        ASSERT_TRUE(probe::run(path(), R"(INSERT INTO DICTATORS VALUES
            ('Carl', 1, 12), ('anne', 1, NULL), ('Bob', 0, 40), ('ANNE', 1, 7))"));
    }
    std::string path() const { return databasePath(folder.path(), StationDatabase::Passwords); }
    TempFolder folder;
};

TEST_F(SpeakersTest, TheBoxListsActiveSpeakersInOrderWithNullNumbersAsZero) {
    const SpeakerChoice choice = SpeakersTable(folder.path()).loadSpeakers("");
    EXPECT_EQ(choice.names, (std::vector<std::string>{"anne", "ANNE", "Carl"}));
    EXPECT_EQ(choice.seqNos, (std::vector<std::int32_t>{0, 7, 12}));
}

TEST_F(SpeakersTest, TheCurrentSpeakerIsResolvedWithoutRegardToCaseOrCleared) {
    struct Case {
        const char* current;
        const char* resolved;
        std::int32_t seqNo;
    };
    const Case cases[] = {
        {"carl", "carl", 12},  // kept as given, with the row's number
        {"Anne", "Anne", 0},   // the first of the rows that are one speaker; its null is 0
        {"Bob", "", 0},        // no longer active
        {"Dora", "", 0},       // no longer in the table
    };
    SpeakersTable speakers(folder.path());
    for (const Case& c : cases) {
        const SpeakerChoice choice = speakers.loadSpeakers(c.current);
        EXPECT_EQ(choice.CurrentSpeaker, c.resolved) << c.current;
        EXPECT_EQ(choice.DictatorSeqNo, c.seqNo) << c.current;
    }
}

TEST_F(SpeakersTest, ANumberSavedReachesEveryRowOfThatSpeakerAndNoOther) {
    SpeakersTable speakers(folder.path());
    EXPECT_TRUE(speakers.saveSpeakerNumber("Anne", 8));
    EXPECT_FALSE(speakers.saveSpeakerNumber("Dora", 1));

    const SpeakerChoice choice = SpeakersTable(folder.path()).loadSpeakers("ANNE");
    EXPECT_EQ(choice.seqNos, (std::vector<std::int32_t>{8, 8, 12}));
    EXPECT_EQ(choice.DictatorSeqNo, 8);
}

TEST_F(SpeakersTest, TheListDialogAddsAtZeroAndChangesOrDeletesTheRowPicked) {
    SpeakersTable speakers(folder.path());
    ASSERT_TRUE(speakers.addSpeaker("Dora", false));
    EXPECT_TRUE(speakers.deleteSpeaker("ANNE"));
    EXPECT_FALSE(speakers.deleteSpeaker("carl")) << "the dialog names a row by its own spelling";
    EXPECT_TRUE(speakers.changeSpeaker("Bob", "Robert", true));

    std::vector<std::string> rows;
    for (const Speaker& s : speakers.allSpeakers()) {
        rows.push_back(s.Dictator + (s.Active ? "+" : "-") + std::to_string(s.LastSeqNo));
    }
    EXPECT_EQ(rows, (std::vector<std::string>{"anne+0", "Carl+12", "Dora-0", "Robert+40"}));
}

TEST(DecryptPasswordsTest, FoundAndDeletedByNameInAnyCaseOneRowAtATime) {
    TempFolder folder;
    DecryptPasswordsTable passwords(folder.path());
    ASSERT_TRUE(passwords.addPassword("Acme", "first key"));
    ASSERT_TRUE(passwords.addPassword("ACME", "second key"));

    const auto found = passwords.findPassword("acme");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->Password, "first key");
    EXPECT_TRUE(passwords.deletePassword("acme"));
    ASSERT_EQ(passwords.passwords().size(), 1u);
    EXPECT_EQ(passwords.passwords()[0].Password, "second key");
    EXPECT_TRUE(passwords.deletePassword("acme"));
    EXPECT_FALSE(passwords.deletePassword("acme"));
}

TEST(EmailReceiversTest, SavingAnExistingCompanyChangesItsFourFieldsAndKeepsTheDefault) {
    TempFolder folder;
    EmailReceiversTable receivers(folder.path());
    ASSERT_TRUE(receivers.saveReceiver({"Acme", "old@acme.example", "k1", "AC", true}));
    ASSERT_TRUE(receivers.saveReceiver({"ACME", "new@acme.example", "k2", "AM", false}));

    const auto all = receivers.receivers();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].EmailCompanyName, "ACME");
    EXPECT_EQ(all[0].EmailEmailAddress, "new@acme.example");
    EXPECT_EQ(all[0].EmailEncryptKey, "k2");
    EXPECT_EQ(all[0].EmailINITS, "AM");
    EXPECT_TRUE(all[0].EmailDeFault);

    const Recordset stored =
        probe::query(databasePath(folder.path(), StationDatabase::EmailAddress),
                     "SELECT typeof(EmailDeFault), EmailDeFault FROM AvailEmails");
    EXPECT_EQ(stored.field(0, "typeof(EmailDeFault)").text(), "text");
    EXPECT_EQ(stored.field(0, "EmailDeFault").text(), "True");
}

TEST(EmailReceiversTest, OpeningTheSetupUpgradesAnOldFileAndShowsItsNullsAsEmpty) {
    TempFolder folder;
    const std::string path = databasePath(folder.path(), StationDatabase::EmailAddress);
    ASSERT_TRUE(createDatabaseFile(folder.path(), StationDatabase::EmailAddress));
    ASSERT_TRUE(probe::run(path,
                           "INSERT INTO AvailEmails (EmailCompanyName, EmailDeFault) "
                           "VALUES ('Acme', 'False')"));
    const auto acme = EmailReceiversTable(folder.path()).findReceiver("Acme");
    ASSERT_TRUE(acme);
    EXPECT_EQ(acme->EmailEncryptKey, "");
    EXPECT_EQ(acme->EmailINITS, "");
    EXPECT_FALSE(acme->EmailDeFault);

    const Recordset stored = probe::query(path, "SELECT EmailINITS FROM AvailEmails");
    ASSERT_TRUE(stored.isOpen()) << "the window's opening added the column";
    EXPECT_TRUE(stored.field(0, "EmailINITS").isNull());
}

TEST(FtpSitesTest, ProxyFieldsAreStoredOnlyForASiteThatUsesAProxy) {
    TempFolder folder;
    FtpSitesTable sites(folder.path());
    FtpSite direct{"ftp.direct.example",
                   "21",
                   "Direct",
                   "ann",
                   "pw",
                   false,
                   "proxy.example",
                   "pu",
                   "pp",
                   "8080",
                   "/in",
                   "*.mp3",
                   true,
                   "secret",
                   "DI",
                   true};
    FtpSite proxied = direct;
    proxied.FTPSiteServer = "ftp.proxied.example";
    proxied.FTPProxyCheck = true;
    proxied.FTPEncryption = false;
    ASSERT_TRUE(sites.addSite(direct));
    ASSERT_TRUE(sites.addSite(proxied));

    const Recordset stored =
        probe::query(databasePath(folder.path(), StationDatabase::FTPSites),
                     "SELECT FTPProxyAddress, FTPProxyPort, FTPProxyCheck, FTPEncryption, FTPINITS "
                     "FROM AvailFTPSites ORDER BY FTPSiteServer");
    ASSERT_EQ(stored.rowCount(), 2u);
    EXPECT_TRUE(stored.field(0, "FTPProxyAddress").isNull());
    EXPECT_TRUE(stored.field(0, "FTPProxyPort").isNull());
    EXPECT_EQ(stored.field(0, "FTPProxyCheck").text(), "False");
    EXPECT_EQ(stored.field(0, "FTPEncryption").text(), "True");
    EXPECT_EQ(stored.field(1, "FTPProxyAddress").text(), "proxy.example");
    EXPECT_EQ(stored.field(1, "FTPINITS").text(), "DI");

    const auto read = sites.findSite("FTP.DIRECT.EXAMPLE");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->FTPProxyAddress, "");
    EXPECT_EQ(read->FTPEncyptionPassword, "secret");
    EXPECT_EQ(read->FTPFileSpecification, "*.mp3");
    EXPECT_TRUE(read->FTPDeFault);
    EXPECT_TRUE(sites.deleteSite("ftp.direct.example"));
    ASSERT_EQ(sites.sites().size(), 1u);
    EXPECT_EQ(sites.sites()[0].FTPProxyPort, "8080");
}

}  // namespace
}  // namespace ovd::settings
