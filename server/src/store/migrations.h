#pragma once

#include <string_view>
#include <vector>

// The schema's history, one list per engine. A step is never edited once shipped: a change to
// the schema is a new step at the end. Both lists build the same tables and columns.

namespace qf {

class SqliteConnection;
class PostgresConnection;

struct Migration {
    std::string_view name;
    std::vector<std::string_view> statements;
};

[[nodiscard]] const std::vector<Migration>& sqliteMigrations();
[[nodiscard]] const std::vector<Migration>& postgresMigrations();

// Bring the database up to the last step. SQLite keeps its version in PRAGMA user_version and
// migrates in one write transaction; PostgreSQL keeps a schema_migrations table and migrates
// under a session advisory lock, so processes starting together migrate once. Both refuse a
// database written by a newer server. Throw StoreError.
void migrateSqlite(SqliteConnection& connection);
void migratePostgres(PostgresConnection& connection);

} // namespace qf
