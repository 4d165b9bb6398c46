#pragma once
// The connection-and-recordset layer under the station's small databases (speakers,
// decrypt passwords, e-mail receivers, FTP sites). Each is one SQLite file in the data
// folder. The layer keeps the four operations the dialogs are written against, and its
// one rule for failures: nothing throws, a failed open leaves things closed, and a
// closed recordset reads as an empty list.
//
// Every value travels as a bound parameter, never as part of the SQL text, so a name
// with an apostrophe is stored and found like any other.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;

#include "platform/result.h"

namespace ovd::settings {

// The only kind the station opens: a single-file database on this machine.
inline constexpr const char* kLocalDatabaseKind = "MSACCESS";
// A server database reached through an ODBC driver. There is no such driver set-up on
// this platform and no caller asks for one, so the kind is refused: the connection
// comes back closed, as after any failed open.
inline constexpr const char* kOracleDatabaseKind = "ORACLE";

// How long a statement waits for another connection's lock before it gives up.
inline constexpr int kCommandTimeoutMs = 5000;

// One field of a row, or one parameter of a query: null, a whole number or a text.
class DbValue {
  public:
    DbValue() = default;
    DbValue(std::string text) : value_(std::move(text)) {}
    DbValue(const char* text) : value_(std::string(text)) {}
    DbValue(std::int64_t number) : value_(number) {}
    DbValue(int number) : value_(std::int64_t{number}) {}

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(value_); }
    [[nodiscard]] bool isInteger() const { return std::holds_alternative<std::int64_t>(value_); }
    // Null reads as the empty text, a number as its decimal digits.
    [[nodiscard]] std::string text() const;
    // Null reads as 0, a text as the number it starts with (0 when none).
    [[nodiscard]] std::int64_t integer() const;

    bool operator==(const DbValue&) const = default;

  private:
    std::variant<std::monostate, std::int64_t, std::string> value_;
};

using DbParameters = std::vector<DbValue>;

class Recordset;

// An open database file. Closed when default-made, after a failed open, after
// CloseConnection and when destroyed.
class DatabaseConnection {
  public:
    DatabaseConnection() = default;
    ~DatabaseConnection();
    DatabaseConnection(DatabaseConnection&& other) noexcept;
    DatabaseConnection& operator=(DatabaseConnection&& other) noexcept;
    DatabaseConnection(const DatabaseConnection&) = delete;
    DatabaseConnection& operator=(const DatabaseConnection&) = delete;

    [[nodiscard]] bool isOpen() const { return db_ != nullptr; }

  private:
    friend platform::Result<DatabaseConnection> OpenConnection(std::string_view, const std::string&,
                                                               const std::string&,
                                                               const std::string&);
    friend platform::Result<void> OpenRecordset(DatabaseConnection&, Recordset&, const std::string&,
                                                const DbParameters&);
    friend platform::Result<int> executeStatement(DatabaseConnection&, const std::string&,
                                                  const DbParameters&);
    friend void CloseConnection(DatabaseConnection&);

    sqlite3* db_ = nullptr;
};

// The whole result of a query, read at once: the tables are small and every list is
// rebuilt from a new query, so nothing stays attached to the file.
class Recordset {
  public:
    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] std::size_t rowCount() const { return rows_.size(); }
    [[nodiscard]] const std::vector<std::string>& columns() const { return columns_; }
    // The field of the column named so (any case); null when there is no such column,
    // which is how a column not yet added by an upgrade reads.
    [[nodiscard]] DbValue field(std::size_t row, std::string_view column) const;

  private:
    friend platform::Result<void> OpenRecordset(DatabaseConnection&, Recordset&, const std::string&,
                                                const DbParameters&);
    friend void CloseRecordset(Recordset&);

    bool open_ = false;
    std::vector<std::string> columns_;
    std::vector<std::vector<DbValue>> rows_;
};

// Opens an existing database file for reading and writing; never creates one, so that
// looking at a list leaves no file behind. `user` and `password` only mean something to
// the server kind. A missing file, a file that is not a database, or another kind is a
// failure with the library's words.
platform::Result<DatabaseConnection> OpenConnection(std::string_view kind,
                                                    const std::string& database,
                                                    const std::string& user = {},
                                                    const std::string& password = {});

// Runs a query with its parameters (?1, ?2 ... in the text) and takes every row. An open
// recordset is closed first; on failure it stays closed.
platform::Result<void> OpenRecordset(DatabaseConnection& connection, Recordset& recordset,
                                     const std::string& query, const DbParameters& parameters = {});

// Runs one statement that returns no rows: the number of rows an INSERT, UPDATE or
// DELETE changed.
platform::Result<int> executeStatement(DatabaseConnection& connection, const std::string& statement,
                                       const DbParameters& parameters = {});

// Closing what is closed is no error.
void CloseRecordset(Recordset& recordset);
void CloseConnection(DatabaseConnection& connection);

// Appends a nullable text column to a table of an existing file. Callers run it with no
// test beforehand and let a failure be: it fails when the column is already there, when
// the file is missing or damaged.
platform::Result<void> AddTextColumn(const std::string& path, const std::string& table,
                                     const std::string& column);

// A table or column name as SQL text: in double quotes, so names with a blank (the
// decrypt password column) and names that are keywords are taken as they are.
std::string quoteIdentifier(std::string_view name);

}  // namespace ovd::settings
