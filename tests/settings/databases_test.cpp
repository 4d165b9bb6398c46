// The three database files: missing, damaged and new files, the upgrade on open, list
// order, and names with an apostrophe.

#include "settings/databases.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <string>
#include <vector>

#include "database_probe.h"
#include "platform/files.h"
#include "settings/email_sites_tables.h"
#include "settings/passwords_tables.h"
#include "support/temp_folder.h"

namespace ovd::settings {
namespace {

using testing::TempFolder;

constexpr StationDatabase kAllDatabases[] = {
    StationDatabase::Passwords, StationDatabase::EmailAddress, StationDatabase::FTPSites};

// One way into each table: add a row under a name, list the names in order.
struct TableUse {
    const char* what;
    StationDatabase file;
    std::function<bool(const std::string& folder, const std::string& name)> add;
    std::function<std::vector<std::string>(const std::string& folder)> names;
};

std::vector<TableUse> tableUses() {
    return {
        {"speakers", StationDatabase::Passwords,
         [](const std::string& folder, const std::string& name) {
             return SpeakersTable(folder).addSpeaker(name, true);
         },
         [](const std::string& folder) {
             std::vector<std::string> names;
             for (const Speaker& s : SpeakersTable(folder).allSpeakers())
                 names.push_back(s.Dictator);
             return names;
         }},
        {"decrypt passwords", StationDatabase::Passwords,
         [](const std::string& folder, const std::string& name) {
             return DecryptPasswordsTable(folder).addPassword(name, "k");
         },
         [](const std::string& folder) {
             std::vector<std::string> names;
             for (const auto& p : DecryptPasswordsTable(folder).passwords())
                 names.push_back(p.Name);
             return names;
         }},
        {"receivers", StationDatabase::EmailAddress,
         [](const std::string& folder, const std::string& name) {
             return EmailReceiversTable(folder).saveReceiver({name, "a@b.example", "", "", false});
         },
         [](const std::string& folder) {
             std::vector<std::string> names;
             for (const auto& r : EmailReceiversTable(folder).receivers()) {
                 names.push_back(r.EmailCompanyName);
             }
             return names;
         }},
        {"sites", StationDatabase::FTPSites,
         [](const std::string& folder, const std::string& name) {
             FtpSite site;
             site.FTPSiteServer = name;
             return FtpSitesTable(folder).addSite(site);
         },
         [](const std::string& folder) {
             std::vector<std::string> names;
             for (const auto& s : FtpSitesTable(folder).sites()) names.push_back(s.FTPSiteServer);
             return names;
         }},
    };
}

TEST(DatabasesTest, MissingFilesReadAsEmptyListsAndReadingMakesNoFile) {
    TempFolder folder;
    for (const TableUse& use : tableUses()) {
        EXPECT_TRUE(use.names(folder.path()).empty()) << use.what;
    }
    SpeakersTable speakers(folder.path());
    EXPECT_TRUE(speakers.loadSpeakers("ANN").CurrentSpeaker.empty());
    EXPECT_FALSE(speakers.saveSpeakerNumber("ANN", 3));
    EXPECT_FALSE(speakers.deleteSpeaker("ANN"));
    EXPECT_FALSE(EmailReceiversTable(folder.path()).findReceiver("Acme"));
    EXPECT_FALSE(FtpSitesTable(folder.path()).deleteSite("ftp.example"));
    EXPECT_FALSE(DecryptPasswordsTable(folder.path()).findPassword("x"));

    for (StationDatabase which : kAllDatabases) {
        EXPECT_FALSE(platform::fileExists(databasePath(folder.path(), which)))
            << databaseFileName(which);
    }
}

TEST(DatabasesTest, TheFirstWriteMakesAnOwnerOnlyFileThatKeepsTheRow) {
    for (const TableUse& use : tableUses()) {
        TempFolder folder;
        ASSERT_TRUE(use.add(folder.path(), "First")) << use.what;
        EXPECT_EQ(use.names(folder.path()), std::vector<std::string>{"First"}) << use.what;

        struct stat info {};
        ASSERT_EQ(::stat(databasePath(folder.path(), use.file).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, 0600u) << use.what;
    }
}

TEST(DatabasesTest, ADamagedFileReadsEmptyRefusesWritesAndIsLeftAsItWas) {
    const std::string garbage = "this is not a database, just some bytes\n" + std::string(600, 'x');
    for (const TableUse& use : tableUses()) {
        TempFolder folder;
        const std::string path = databasePath(folder.path(), use.file);
        ASSERT_TRUE(platform::writeWholeFile(path, garbage));

        EXPECT_TRUE(use.names(folder.path()).empty()) << use.what;
        EXPECT_FALSE(use.add(folder.path(), "Anne")) << use.what;
        EXPECT_EQ(platform::readWholeFile(path), garbage) << use.what;
    }
    TempFolder folder;
    ASSERT_TRUE(
        platform::writeWholeFile(databasePath(folder.path(), StationDatabase::Passwords), garbage));
    EXPECT_EQ(SpeakersTable(folder.path()).loadSpeakers("Anne").DictatorSeqNo, 0);
}

TEST(DatabasesTest, ListsAreOrderedByTheirKeyWithoutRegardToCase) {
    for (const TableUse& use : tableUses()) {
        TempFolder folder;
        for (const char* name : {"delta", "Alpha", "charlie", "Bravo"}) {
            ASSERT_TRUE(use.add(folder.path(), name)) << use.what;
        }
        EXPECT_EQ(use.names(folder.path()),
                  (std::vector<std::string>{"Alpha", "Bravo", "charlie", "delta"}))
            << use.what;
    }
}

TEST(DatabasesTest, NamesWithAnApostropheAreStoredAndFound) {
    TempFolder folder;
    for (const TableUse& use : tableUses()) {
        ASSERT_TRUE(use.add(folder.path(), "O'Brien's")) << use.what;
        EXPECT_EQ(use.names(folder.path()), std::vector<std::string>{"O'Brien's"}) << use.what;
    }
    EXPECT_TRUE(EmailReceiversTable(folder.path()).findReceiver("O'Brien's"));
    EXPECT_TRUE(FtpSitesTable(folder.path()).findSite("O'Brien's"));
    EXPECT_TRUE(DecryptPasswordsTable(folder.path()).findPassword("O'Brien's"));
    EXPECT_EQ(SpeakersTable(folder.path()).loadSpeakers("o'brien's").CurrentSpeaker, "o'brien's");
}

struct UpgradeCase {
    StationDatabase file;
    const char* table;
    const char* initials;
    const char* oldRow;  // a row written before the initials existed
    const char* oldKey;  // its first column
};

void PrintTo(const UpgradeCase& c, std::ostream* out) { *out << c.table; }

class UpgradeOnOpenTest : public ::testing::TestWithParam<UpgradeCase> {};

TEST_P(UpgradeOnOpenTest, AddsTheInitialsOnceKeepsNullsAndDataAndRepeatsHarmlessly) {
    const UpgradeCase& c = GetParam();
    TempFolder folder;
    const std::string path = databasePath(folder.path(), c.file);
    ASSERT_TRUE(createDatabaseFile(folder.path(), c.file));
    ASSERT_TRUE(probe::run(path, c.oldRow));
    const std::string all = std::string("SELECT * FROM ") + c.table;
    const std::size_t firstColumns = probe::query(path, all).columns().size();

    upgradeOnOpen(folder.path(), c.file);
    const Recordset once = probe::query(path, all);
    ASSERT_EQ(once.columns().size(), firstColumns + 1);
    EXPECT_EQ(once.columns().back(), c.initials);
    EXPECT_TRUE(once.field(0, c.initials).isNull()) << "the old row keeps a null";

    upgradeOnOpen(folder.path(), c.file);
    EXPECT_FALSE(AddTextColumn(path, c.table, c.initials));
    const Recordset twice = probe::query(path, all);
    EXPECT_EQ(twice.columns(), once.columns());
    ASSERT_EQ(twice.rowCount(), 1u);
    EXPECT_EQ(twice.field(0, twice.columns().front()).text(), c.oldKey);
}

INSTANTIATE_TEST_SUITE_P(
    InitialsColumns, UpgradeOnOpenTest,
    ::testing::Values(UpgradeCase{StationDatabase::EmailAddress, "AvailEmails", "EmailINITS",
                                  R"(INSERT INTO AvailEmails (EmailCompanyName, EmailEmailAddress)
                       VALUES ('Acme', 'typist@acme.example'))",
                                  "Acme"},
                      UpgradeCase{StationDatabase::FTPSites, "AvailFTPSites", "FTPINITS",
                                  R"(INSERT INTO AvailFTPSites (FTPSiteServer, FTPPort)
                       VALUES ('ftp.acme.example', '21'))",
                                  "ftp.acme.example"}),
    [](const ::testing::TestParamInfo<UpgradeCase>& param) {
        return std::string(param.param.table);
    });

TEST(DatabaseConnectionTest, ClosedThingsStayHarmless) {
    TempFolder folder;
    ASSERT_TRUE(createDatabaseFile(folder.path(), StationDatabase::Passwords));
    const std::string path = databasePath(folder.path(), StationDatabase::Passwords);

    DatabaseConnection oracle = OpenConnection(kOracleDatabaseKind, "orcl", "scott", "tiger");
    EXPECT_FALSE(oracle.isOpen());
    EXPECT_FALSE(oracle.lastError().empty());

    DatabaseConnection connection = OpenConnection(kLocalDatabaseKind, path);
    ASSERT_TRUE(connection.isOpen());
    Recordset rows;
    ASSERT_TRUE(OpenRecordset(connection, rows, "SELECT * FROM DICTATORS"));
    EXPECT_TRUE(rows.isOpen());
    EXPECT_FALSE(OpenRecordset(connection, rows, "SELECT * FROM NoSuchTable"));
    EXPECT_FALSE(rows.isOpen()) << "a failed query leaves the recordset closed";
    EXPECT_TRUE(rows.field(0, "Dictator").isNull());

    CloseRecordset(rows);
    CloseRecordset(rows);
    CloseConnection(connection);
    CloseConnection(connection);
    EXPECT_FALSE(OpenRecordset(connection, rows, "SELECT 1"));
    EXPECT_FALSE(executeStatement(connection, "DELETE FROM DICTATORS"));
}

}  // namespace
}  // namespace ovd::settings
