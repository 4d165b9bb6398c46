#include "settings/database_connection.h"

#include <sqlite3.h>

#include <charconv>
#include <memory>
#include <utility>

#include "platform/result.h"
#include "platform/text.h"

namespace ovd::settings {

namespace {

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

std::string errorText(sqlite3* db) { return db != nullptr ? sqlite3_errmsg(db) : "not open"; }

// Prepares one statement and binds its parameters.
platform::Result<Statement> prepare(sqlite3* db, const std::string& sql,
                                    const DbParameters& parameters) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &raw, nullptr) !=
        SQLITE_OK) {
        sqlite3_finalize(raw);
        return platform::failure(errorText(db));
    }
    Statement statement(raw);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const DbValue& value = parameters[i];
        const int index = static_cast<int>(i) + 1;
        int rc = SQLITE_OK;
        if (value.isNull()) {
            rc = sqlite3_bind_null(raw, index);
        } else if (value.isInteger()) {
            rc = sqlite3_bind_int64(raw, index, value.integer());
        } else {
            const std::string text = value.text();
            rc = sqlite3_bind_text(raw, index, text.data(), static_cast<int>(text.size()),
                                   SQLITE_TRANSIENT);
        }
        if (rc != SQLITE_OK) return platform::failure(errorText(db));
    }
    return statement;
}

DbValue columnValue(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return DbValue(static_cast<std::int64_t>(sqlite3_column_int64(statement, column)));
        default: {
            const auto* text =
                reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            const int bytes = sqlite3_column_bytes(statement, column);
            return DbValue(text != nullptr ? std::string(text, static_cast<std::size_t>(bytes))
                                           : std::string());
        }
    }
}

}  // namespace

std::string DbValue::text() const {
    if (const auto* number = std::get_if<std::int64_t>(&value_)) return std::to_string(*number);
    if (const auto* text = std::get_if<std::string>(&value_)) return *text;
    return {};
}

std::int64_t DbValue::integer() const {
    if (const auto* number = std::get_if<std::int64_t>(&value_)) return *number;
    if (const auto* text = std::get_if<std::string>(&value_)) {
        const std::string trimmed = platform::trim(*text);
        std::int64_t parsed = 0;
        std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), parsed);
        return parsed;
    }
    return 0;
}

DatabaseConnection::~DatabaseConnection() { CloseConnection(*this); }

DatabaseConnection::DatabaseConnection(DatabaseConnection&& other) noexcept
    : db_(std::exchange(other.db_, nullptr)) {}

DatabaseConnection& DatabaseConnection::operator=(DatabaseConnection&& other) noexcept {
    if (this != &other) {
        CloseConnection(*this);
        db_ = std::exchange(other.db_, nullptr);
    }
    return *this;
}

DbValue Recordset::field(std::size_t row, std::string_view column) const {
    if (row >= rows_.size()) return {};
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (platform::equalsIgnoreCase(columns_[i], column)) return rows_[row][i];
    }
    return {};
}

platform::Result<DatabaseConnection> OpenConnection(std::string_view kind,
                                                    const std::string& database,
                                                    const std::string& /*user*/,
                                                    const std::string& /*password*/) {
    if (kind != kLocalDatabaseKind) {
        return platform::failure("database kind " + std::string(kind) + " is not available");
    }
    sqlite3* db = nullptr;
    // Read and write, but no create flag: a missing file stays missing.
    const int rc = sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    if (rc != SQLITE_OK) {
        const std::string reason = errorText(db);
        sqlite3_close_v2(db);
        return platform::failure(database + ": " + reason);
    }
    sqlite3_busy_timeout(db, kCommandTimeoutMs);
    // The library opens any file lazily; reading the catalogue now is what tells a damaged
    // or foreign file from a database, so that it reads as closed rather than half open.
    if (sqlite3_exec(db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) !=
        SQLITE_OK) {
        const std::string reason = errorText(db);
        sqlite3_close_v2(db);
        return platform::failure(database + ": " + reason);
    }
    DatabaseConnection connection;
    connection.db_ = db;
    return connection;
}

platform::Result<void> OpenRecordset(DatabaseConnection& connection, Recordset& recordset,
                                     const std::string& query, const DbParameters& parameters) {
    CloseRecordset(recordset);
    if (!connection.isOpen()) return platform::failure(errorText(nullptr));
    platform::Result<Statement> prepared = prepare(connection.db_, query, parameters);
    if (!prepared) return prepared.failed();
    const Statement statement = std::move(*prepared);

    Recordset result;
    const int columnCount = sqlite3_column_count(statement.get());
    for (int i = 0; i < columnCount; ++i) {
        const char* name = sqlite3_column_name(statement.get(), i);
        result.columns_.emplace_back(name != nullptr ? name : "");
    }
    for (;;) {
        const int rc = sqlite3_step(statement.get());
        if (rc == SQLITE_DONE) break;
        if (rc != SQLITE_ROW) return platform::failure(errorText(connection.db_));
        std::vector<DbValue> row;
        row.reserve(static_cast<std::size_t>(columnCount));
        for (int i = 0; i < columnCount; ++i) row.push_back(columnValue(statement.get(), i));
        result.rows_.push_back(std::move(row));
    }
    result.open_ = true;
    recordset = std::move(result);
    return platform::Result<void>::success();
}

platform::Result<int> executeStatement(DatabaseConnection& connection, const std::string& statement,
                                       const DbParameters& parameters) {
    if (!connection.isOpen()) return platform::failure(errorText(nullptr));
    platform::Result<Statement> prepared = prepare(connection.db_, statement, parameters);
    if (!prepared) return prepared.failed();
    int rc = SQLITE_ROW;
    while (rc == SQLITE_ROW) rc = sqlite3_step(prepared->get());
    if (rc != SQLITE_DONE) return platform::failure(errorText(connection.db_));
    return sqlite3_changes(connection.db_);
}

void CloseRecordset(Recordset& recordset) {
    recordset.open_ = false;
    recordset.columns_.clear();
    recordset.rows_.clear();
}

void CloseConnection(DatabaseConnection& connection) {
    if (connection.db_ == nullptr) return;
    sqlite3_close_v2(connection.db_);
    connection.db_ = nullptr;
}

platform::Result<void> AddTextColumn(const std::string& path, const std::string& table,
                                     const std::string& column) {
    platform::Result<DatabaseConnection> connection = OpenConnection(kLocalDatabaseKind, path);
    if (!connection) return connection.failed();
    // A text column with no constraint takes null and the empty text alike, which is what
    // the rows written before the column existed need.
    const auto added =
        executeStatement(*connection, "ALTER TABLE " + quoteIdentifier(table) + " ADD COLUMN " +
                                          quoteIdentifier(column) + " TEXT");
    if (!added) return added.failed();
    return platform::Result<void>::success();
}

std::string quoteIdentifier(std::string_view name) {
    std::string quoted = "\"";
    for (const char c : name) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    quoted += '"';
    return quoted;
}

}  // namespace ovd::settings
