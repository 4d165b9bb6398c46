#pragma once
// The station's three small databases in the data folder, as files: where they are,
// how a file is laid down on first use, and the upgrade the setup windows run each time
// they open. The tables themselves are read and written by passwords_tables.h and
// email_sites_tables.h.
//
// A file that is not there reads as empty lists and is not made by reading; the first
// write makes it, readable by its owner only, since it holds passwords and keys.

#include <string>

#include "settings/database_connection.h"

namespace ovd::settings {

inline constexpr const char* kPasswordsDatabaseFile = "Passwords.db";
inline constexpr const char* kEmailAddressDatabaseFile = "EmailAddress.db";
inline constexpr const char* kFtpSitesDatabaseFile = "FTPSites.db";

inline constexpr const char* kDictatorsTable = "DICTATORS";
inline constexpr const char* kDecryptPasswordsTable = "DecryptPasswords";
inline constexpr const char* kAvailEmailsTable = "AvailEmails";
inline constexpr const char* kAvailFtpSitesTable = "AvailFTPSites";

// The initials columns came after the first version of their tables.
inline constexpr const char* kEmailInitialsColumn = "EmailINITS";
inline constexpr const char* kFtpInitialsColumn = "FTPINITS";

// How the yes/no columns of receivers and sites are written.
inline constexpr const char* kTrueText = "True";
inline constexpr const char* kFalseText = "False";

enum class StationDatabase {
    Passwords,     // DICTATORS and DecryptPasswords
    EmailAddress,  // AvailEmails
    FTPSites,      // AvailFTPSites
};

[[nodiscard]] const char* databaseFileName(StationDatabase which);
[[nodiscard]] std::string databasePath(const std::string& dataFolder, StationDatabase which);

// Lays the file down as the station is first installed: owner-only, its tables in their
// first version (without the initials columns) and empty. A failure when the file is
// already there or can't be made.
platform::Result<void> createDatabaseFile(const std::string& dataFolder, StationDatabase which);

// What the e-mail and FTP setup windows do each time they open: add the initials column,
// with no test beforehand. On a file that has it already the attempt fails and that
// is the expected outcome, so nothing is reported. The passwords file has no upgrade.
void upgradeOnOpen(const std::string& dataFolder, StationDatabase which);

[[nodiscard]] const char* booleanText(bool value);
// "True" in any case, or a number other than 0: the yes/no columns hold either, depending
// on who wrote them.
[[nodiscard]] bool isTrueValue(const DbValue& value);

// One window's hold on one database file: made when the window opens (running the
// upgrade), the connection opened when first needed, closed when the window goes.
class DatabaseSession {
  public:
    DatabaseSession(const std::string& dataFolder, StationDatabase which);

    [[nodiscard]] const std::string& path() const { return path_; }

    // The connection to the file as it is; null when there is no file or it is not a
    // database. Never makes the file.
    DatabaseConnection* existing();
    // The same, laying the file down first (and upgrading it) when there is none.
    DatabaseConnection* createdIfMissing();

    // A whole query's rows; a closed, empty recordset when there is no file or the query
    // fails.
    [[nodiscard]] Recordset select(const std::string& query, const DbParameters& parameters = {});
    // An UPDATE or DELETE on the file as it is: true when it changed at least one row.
    bool changeRows(const std::string& statement, const DbParameters& parameters);
    // An INSERT, laying the file down first when there is none: true when the row is in.
    bool addRow(const std::string& statement, const DbParameters& parameters);

  private:
    std::string dataFolder_;
    StationDatabase which_;
    std::string path_;
    DatabaseConnection connection_;
};

}  // namespace ovd::settings
