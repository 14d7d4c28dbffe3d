#pragma once

#include "store/sql_connection.h"
#include "store/statement_cache.h"

#include <string>

// A connection to an SQLite file: WAL journal, foreign keys enforced, waits up to ten seconds
// for a lock held by another connection, and keeps every statement it prepared.

struct sqlite3;
struct sqlite3_stmt;

namespace qf {

class SqliteConnection final : public SqlConnection {
public:
    // Opens (creating when missing) the file at path. Throws StoreError.
    explicit SqliteConnection(const std::string& path);
    ~SqliteConnection() override;
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    [[nodiscard]] SqlEngine engine() const override { return SqlEngine::Sqlite; }

    SqlResult query(std::string_view sql, std::span<const SqlValue> params) override;
    using SqlConnection::query;

    void beginRead() override;
    void beginWrite() override;
    void commit() override;
    void rollback() override;
    int64_t nextChangeSeq() override;

    // Runs statements without parameters or results (pragmas, schema changes).
    void execute(const std::string& sql);

private:
    sqlite3_stmt* prepared(std::string_view sql);
    [[noreturn]] void fail(int code, std::string_view what);

    sqlite3* m_db = nullptr;
    StatementCache<sqlite3_stmt*> m_statements;
    bool m_readOnly = false; // inside a read transaction: statements that write are refused
};

} // namespace qf
