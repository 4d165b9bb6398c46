// The three database files and their tables as the windows use them: missing, damaged
// and new files, list order, names with an apostrophe, the upgrade on open, speakers and
// their numbers, the receiver's add-or-change, a site with and without proxy.

#include "settings/databases.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/files.h"
#include "settings/email_sites_tables.h"
#include "settings/passwords_tables.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::TempFolder;

// Straight into a file past the tables' readers: to see what was stored (a null, a text
// "True") and to plant rows an older station left behind.
Recordset sql(const std::string& path, const std::string& statement) {
    auto connection = OpenConnection(kLocalDatabaseKind, path);
    Recordset rows;
    EXPECT_TRUE(connection) << connection.error();
    if (!connection) return rows;
    const auto read = OpenRecordset(*connection, rows, statement);
    EXPECT_TRUE(read) << read.error();
    return rows;
}

template <class Row>
std::vector<std::string> column(const std::vector<Row>& rows, std::string Row::*field) {
    std::vector<std::string> values;
    for (const Row& row : rows) values.push_back(row.*field);
    return values;
}

// Each table the same way: add a row under a name, list the names in order.
struct TableUse {
    const char* table;
    StationDatabase file;
    const char* initials;  // the column the upgrade on open adds, if any
    std::function<bool(const std::string& folder, const std::string& name)> add;
    std::function<std::vector<std::string>(const std::string& folder)> names;
};

std::vector<TableUse> tableUses() {
    return {
        {"DICTATORS", StationDatabase::Passwords, nullptr,
         [](const auto& f, const auto& n) { return SpeakersTable(f).addSpeaker(n, true); },
         [](const auto& f) { return column(SpeakersTable(f).allSpeakers(), &Speaker::Dictator); }},
        {"DecryptPasswords", StationDatabase::Passwords, nullptr,
         [](const auto& f, const auto& n) { return DecryptPasswordsTable(f).addPassword(n, "k"); },
         [](const auto& f) {
             return column(DecryptPasswordsTable(f).passwords(), &DecryptPassword::Name);
         }},
        {"AvailEmails", StationDatabase::EmailAddress, "EmailINITS",
         [](const auto& f, const auto& n) {
             return EmailReceiversTable(f).saveReceiver({n, "a@b", "", "", false});
         },
         [](const auto& f) {
             return column(EmailReceiversTable(f).receivers(), &EmailReceiver::EmailCompanyName);
         }},
        {"AvailFTPSites", StationDatabase::FTPSites, "FTPINITS",
         [](const auto& f, const auto& n) {
             FtpSite site;
             site.FTPSiteServer = n;
             return FtpSitesTable(f).addSite(site);
         },
         [](const auto& f) { return column(FtpSitesTable(f).sites(), &FtpSite::FTPSiteServer); }},
    };
}

TEST(DatabasesTest, MissingAndDamagedFilesReadEmptyAndOnlyAMissingOneIsMadeForTheOwner) {
    TempFolder missing;
    const std::string& data = missing.path();
    // Changes to rows that can't be there make no file either.
    EXPECT_FALSE(SpeakersTable(data).saveSpeakerNumber("ANN", 3));
    EXPECT_FALSE(FtpSitesTable(data).deleteSite("ftp.example"));
    const std::string garbage = "this is not a database, just some bytes\n" + std::string(600, 'x');
    for (const TableUse& use : tableUses()) {
        EXPECT_TRUE(use.names(data).empty()) << use.table;
        EXPECT_FALSE(platform::fileExists(databasePath(data, use.file))) << use.table;

        TempFolder damaged;
        const std::string path = databasePath(damaged.path(), use.file);
        ASSERT_TRUE(platform::writeWholeFile(path, garbage));
        EXPECT_TRUE(use.names(damaged.path()).empty()) << use.table;
        EXPECT_FALSE(use.add(damaged.path(), "Anne")) << use.table;
        EXPECT_EQ(platform::readWholeFile(path).valueOr(""), garbage)
            << use.table << " is left as it was";
    }
    for (const TableUse& use : tableUses()) {
        ASSERT_TRUE(use.add(data, "First")) << use.table;
        EXPECT_EQ(use.names(data), std::vector<std::string>{"First"}) << use.table;
        struct stat info {};
        ASSERT_EQ(::stat(databasePath(data, use.file).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777U, 0600U) << use.table;
    }
}

TEST(DatabasesTest, ListsAreOrderedWithoutRegardToCaseAndAnApostropheIsJustALetter) {
    TempFolder folder;
    const std::string& data = folder.path();
    for (const TableUse& use : tableUses()) {
        for (const char* name : {"delta", "O'Brien's", "alpha", "Charlie", "bravo"}) {
            ASSERT_TRUE(use.add(data, name)) << use.table << ": " << name;
        }
        EXPECT_EQ(use.names(data),
                  (std::vector<std::string>{"alpha", "bravo", "Charlie", "delta", "O'Brien's"}))
            << use.table;
    }
    EXPECT_TRUE(EmailReceiversTable(data).findReceiver("o'brien's"));
    EXPECT_TRUE(FtpSitesTable(data).deleteSite("O'BRIEN'S"));
    EXPECT_TRUE(DecryptPasswordsTable(data).deletePassword("O'Brien's"));
    EXPECT_EQ(SpeakersTable(data).loadSpeakers("o'brien's").CurrentSpeaker, "o'brien's");
}

TEST(DatabasesTest, OpeningAnOldFileAddsTheInitialsOnceAndKeepsItsRowsAndNulls) {
    TempFolder folder;
    const std::string& data = folder.path();
    for (const TableUse& use : tableUses()) {
        if (use.initials == nullptr) continue;
        const std::string path = databasePath(data, use.file);
        const std::string all = std::string("SELECT * FROM ") + use.table;
        ASSERT_TRUE(createDatabaseFile(data, use.file));
        std::vector<std::string> columns = sql(path, all).columns();
        ASSERT_TRUE(sql(path, "INSERT INTO " + std::string(use.table) + " (" + columns[0] +
                                  ") VALUES ('Acme')")
                        .isOpen());
        columns.emplace_back(use.initials);

        // The setup window opens on the table; the upgrade it runs then is run again.
        EXPECT_EQ(use.names(data), std::vector<std::string>{"Acme"}) << use.table;
        for (const bool again : {false, true}) {
            if (again) upgradeOnOpen(data, use.file);
            const Recordset rows = sql(path, all);
            EXPECT_EQ(rows.columns(), columns) << use.table;
            ASSERT_EQ(rows.rowCount(), 1U) << use.table;
            EXPECT_EQ(rows.field(0, columns[0]).text(), "Acme") << use.table;
            EXPECT_TRUE(rows.field(0, use.initials).isNull()) << use.table;
        }
        EXPECT_FALSE(AddTextColumn(path, use.table, use.initials));
    }
    // The old rows' nulls read as no initials.
    EXPECT_EQ(EmailReceiversTable(data).receivers().at(0).EmailINITS, "");
    EXPECT_EQ(FtpSitesTable(data).sites().at(0).FTPINITS, "");
}

TEST(SpeakersTest, TheBoxAndItsNumbersMatchAnyCaseButTheDialogChangesOnlyTheRowPicked) {
    TempFolder folder;
    ASSERT_TRUE(createDatabaseFile(folder.path(), StationDatabase::Passwords));
    // As an older station leaves them: one number never set, one speaker retired.
    ASSERT_TRUE(sql(databasePath(folder.path(), StationDatabase::Passwords),
                    "INSERT INTO DICTATORS VALUES ('Carl', 1, 12), ('anne', 1, NULL), "
                    "('Bob', 0, 40), ('ANNE', 1, 7)")
                    .isOpen());
    SpeakersTable speakers(folder.path());
    const std::tuple<const char*, const char*, std::int32_t> cases[] = {
        {"carl", "carl", 12},  // kept as given, with the row's number
        {"Anne", "Anne", 0},   // the first of the rows that are one speaker; its null is 0
        {"Bob", "", 0},        // no longer active
        {"Dora", "", 0},       // no longer in the table
    };
    for (const auto& [current, resolved, seqNo] : cases) {
        const SpeakerChoice choice = speakers.loadSpeakers(current);
        EXPECT_EQ(choice.names, (std::vector<std::string>{"anne", "ANNE", "Carl"}));
        EXPECT_EQ(choice.seqNos, (std::vector<std::int32_t>{0, 7, 12}));
        EXPECT_EQ(choice.CurrentSpeaker, resolved) << current;
        EXPECT_EQ(choice.DictatorSeqNo, seqNo) << current;
    }

    EXPECT_TRUE(speakers.saveSpeakerNumber("Anne", 8));
    EXPECT_FALSE(speakers.saveSpeakerNumber("Dora", 1));
    EXPECT_EQ(speakers.loadSpeakers("").seqNos, (std::vector<std::int32_t>{8, 8, 12}));
    ASSERT_TRUE(speakers.addSpeaker("Dora", false));
    EXPECT_TRUE(speakers.deleteSpeaker("ANNE"));
    EXPECT_FALSE(speakers.deleteSpeaker("carl")) << "the dialog names a row by its own spelling";
    EXPECT_TRUE(speakers.changeSpeaker("Bob", "Robert", true));
    std::vector<std::string> rows;
    for (const Speaker& s : SpeakersTable(folder.path()).allSpeakers()) {
        rows.push_back(s.Dictator + (s.Active ? "+" : "-") + std::to_string(s.LastSeqNo));
    }
    EXPECT_EQ(rows, (std::vector<std::string>{"anne+8", "Carl+12", "Dora-0", "Robert+40"}));
}

TEST(EmailReceiversTest, SavingAnExistingCompanyChangesItsFourFieldsAndKeepsTheDefault) {
    TempFolder folder;
    EmailReceiversTable receivers(folder.path());
    ASSERT_TRUE(receivers.saveReceiver({"Acme", "old@acme.example", "k1", "AC", true}));
    ASSERT_TRUE(receivers.saveReceiver({"ACME", "new@acme.example", "k2", "AM", false}));
    const auto all = receivers.receivers();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(std::tie(all[0].EmailCompanyName, all[0].EmailEmailAddress, all[0].EmailEncryptKey,
                       all[0].EmailINITS, all[0].EmailDeFault),
              std::make_tuple("ACME", "new@acme.example", "k2", "AM", true));
    const Recordset stored =
        sql(databasePath(folder.path(), StationDatabase::EmailAddress),
            "SELECT typeof(EmailDeFault) || EmailDeFault AS d FROM AvailEmails");
    EXPECT_EQ(stored.field(0, "d").text(), "textTrue") << "written as older stations read it";
}

TEST(FtpSitesTest, ProxyFieldsAreStoredOnlyForASiteThatUsesAProxy) {
    TempFolder folder;
    FtpSitesTable sites(folder.path());
    FtpSite site;
    site.FTPSiteServer = "direct";
    site.FTPProxyAddress = "proxy.example";
    site.FTPProxyPort = "8080";
    ASSERT_TRUE(sites.addSite(site));
    site.FTPSiteServer = "proxied";
    site.FTPProxyCheck = true;
    ASSERT_TRUE(sites.addSite(site));
    const Recordset stored = sql(
        databasePath(folder.path(), StationDatabase::FTPSites),
        "SELECT ifnull(coalesce(FTPProxyAddress, FTPProxyUser, FTPProxyPassword, FTPProxyPort), "
        "'null') || ' ' || FTPProxyCheck AS row FROM AvailFTPSites ORDER BY FTPSiteServer");
    EXPECT_EQ(stored.field(0, "row").text() + ", " + stored.field(1, "row").text(),
              "null False, proxy.example True");
    EXPECT_EQ(sites.findSite("PROXIED").value_or(FtpSite{}).FTPProxyPort, "8080");
}

}  // namespace
}  // namespace ovd::settings
