#include "settings/databases.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::settings {

namespace {

// The tables as the station was first installed. The initials columns are not here: the
// upgrade on open adds them, exactly as it does to files from before they existed, so
// that both kinds of file go through the same road.
std::vector<std::string> firstVersionTables(StationDatabase which) {
    switch (which) {
        case StationDatabase::Passwords:
            return {
                R"(CREATE TABLE IF NOT EXISTS "DICTATORS" ()"
                R"("Dictator" TEXT, "Active" INTEGER, "LastSeqNo" INTEGER))",
                R"(CREATE TABLE IF NOT EXISTS "DecryptPasswords" ()"
                R"("Name" TEXT, "Decrypt Password" TEXT))",
            };
        case StationDatabase::EmailAddress:
            return {
                R"(CREATE TABLE IF NOT EXISTS "AvailEmails" ()"
                R"("EmailCompanyName" TEXT, "EmailEmailAddress" TEXT, "EmailEncryptKey" TEXT, )"
                R"("EmailDeFault" TEXT))",
            };
        case StationDatabase::FTPSites:
            return {
                R"(CREATE TABLE IF NOT EXISTS "AvailFTPSites" ()"
                R"("FTPSiteServer" TEXT, "FTPPort" TEXT, "FTPDescription" TEXT, )"
                R"("FTPUserName" TEXT, "FTPPassword" TEXT, "FTPProxyCheck" TEXT, )"
                R"("FTPProxyAddress" TEXT, "FTPProxyUser" TEXT, "FTPProxyPassword" TEXT, )"
                R"("FTPProxyPort" TEXT, "FTPRemotePath" TEXT, "FTPFileSpecification" TEXT, )"
                R"("FTPEncryption" TEXT, "FTPEncyptionPassword" TEXT, "FTPDeFault" TEXT))",
            };
    }
    return {};
}

// An empty file is a valid empty database to the library. Making it ourselves, owner-only
// from the first byte, means the passwords never sit in a file others can read, and the
// library's journal beside it takes the same permissions.
platform::Result<void> createOwnerOnlyFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) return platform::systemFailure("Can't create " + path, errno);
    // The umask can only take bits away; a default ACL on the folder could add some.
    const int madePrivate = ::fchmod(fd, 0600) == 0 ? 0 : errno;
    ::close(fd);
    if (madePrivate != 0)
        return platform::systemFailure("Can't make " + path + " private", madePrivate);
    return platform::Result<void>::success();
}

}  // namespace

const char* databaseFileName(StationDatabase which) {
    switch (which) {
        case StationDatabase::Passwords:
            return kPasswordsDatabaseFile;
        case StationDatabase::EmailAddress:
            return kEmailAddressDatabaseFile;
        case StationDatabase::FTPSites:
            return kFtpSitesDatabaseFile;
    }
    return kPasswordsDatabaseFile;
}

std::string databasePath(const std::string& dataFolder, StationDatabase which) {
    return platform::joinPath(dataFolder, databaseFileName(which));
}

platform::Result<void> createDatabaseFile(const std::string& dataFolder, StationDatabase which) {
    const std::string path = databasePath(dataFolder, which);
    if (auto created = createOwnerOnlyFile(path); !created) return created;
    platform::Result<DatabaseConnection> connection = OpenConnection(kLocalDatabaseKind, path);
    if (!connection) return connection.failed();
    for (const std::string& table : firstVersionTables(which)) {
        if (auto made = executeStatement(*connection, table); !made) return made.failed();
    }
    return platform::Result<void>::success();
}

void upgradeOnOpen(const std::string& dataFolder, StationDatabase which) {
    const std::string path = databasePath(dataFolder, which);
    switch (which) {
        case StationDatabase::Passwords:
            return;
        case StationDatabase::EmailAddress:
            (void)AddTextColumn(path, kAvailEmailsTable, kEmailInitialsColumn);
            return;
        case StationDatabase::FTPSites:
            (void)AddTextColumn(path, kAvailFtpSitesTable, kFtpInitialsColumn);
            return;
    }
}

const char* booleanText(bool value) { return value ? kTrueText : kFalseText; }

bool isTrueValue(const DbValue& value) {
    if (value.isInteger()) return value.integer() != 0;
    return platform::equalsIgnoreCase(platform::trim(value.text()), kTrueText);
}

DatabaseSession::DatabaseSession(const std::string& dataFolder, StationDatabase which)
    : dataFolder_(dataFolder), which_(which), path_(databasePath(dataFolder, which)) {
    // A missing file is not made here: the upgrade's open fails and is ignored like the
    // failure on a file that has the column.
    upgradeOnOpen(dataFolder_, which_);
}

DatabaseConnection* DatabaseSession::existing() {
    if (!connection_.isOpen()) {
        // A file that can't be opened reads as no rows and takes no changes, as before
        // the window made it; the next use tries again.
        if (auto opened = OpenConnection(kLocalDatabaseKind, path_))
            connection_ = std::move(*opened);
    }
    return connection_.isOpen() ? &connection_ : nullptr;
}

DatabaseConnection* DatabaseSession::createdIfMissing() {
    if (!connection_.isOpen() && !platform::fileExists(path_)) {
        // A file that can't be made shows as the failed open below.
        (void)createDatabaseFile(dataFolder_, which_);
        upgradeOnOpen(dataFolder_, which_);
    }
    return existing();
}

Recordset DatabaseSession::select(const std::string& query, const DbParameters& parameters) {
    Recordset recordset;
    if (DatabaseConnection* connection = existing()) {
        // A failed query leaves the recordset closed: the list shows nothing.
        (void)OpenRecordset(*connection, recordset, query, parameters);
    }
    return recordset;
}

bool DatabaseSession::changeRows(const std::string& statement, const DbParameters& parameters) {
    DatabaseConnection* connection = existing();
    if (connection == nullptr) return false;
    return executeStatement(*connection, statement, parameters).valueOr(0) > 0;
}

bool DatabaseSession::addRow(const std::string& statement, const DbParameters& parameters) {
    DatabaseConnection* connection = createdIfMissing();
    if (connection == nullptr) return false;
    return executeStatement(*connection, statement, parameters).valueOr(0) > 0;
}

}  // namespace ovd::settings
