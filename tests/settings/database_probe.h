#pragma once
// Looks straight into a database file, past the tables' own readers, so tests can see
// what was stored (a null, a text "True") and plant rows an older station left behind.

#include <string>

#include "settings/database_connection.h"

namespace ovd::settings::probe {

inline Recordset query(const std::string& path, const std::string& sql) {
    DatabaseConnection connection = OpenConnection(kLocalDatabaseKind, path);
    Recordset rows;
    OpenRecordset(connection, rows, sql);
    return rows;
}

inline bool run(const std::string& path, const std::string& sql) {
    DatabaseConnection connection = OpenConnection(kLocalDatabaseKind, path);
    return executeStatement(connection, sql).has_value();
}

}  // namespace ovd::settings::probe
