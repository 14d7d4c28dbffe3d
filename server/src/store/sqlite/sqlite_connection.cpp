// SQLite behind the SqlConnection seam, through the sqlite3 C API.

#include "store/sqlite/sqlite_connection.h"

#include <sqlite3.h>

#include <string>

namespace qf {

namespace {

constexpr int kBusyTimeoutMs = 10'000;

// The start of a statement, to say in an error which one failed.
std::string excerpt(std::string_view sql) {
    constexpr size_t kMax = 80;
    std::string s(sql.substr(0, kMax));
    for (char& c : s)
        if (c == '\n' || c == '\t')
            c = ' ';
    if (sql.size() > kMax)
        s += "…";
    return s;
}

// Resets a statement however its run ends, so the cache never holds one mid-way.
struct StatementReset {
    sqlite3_stmt* statement;
    ~StatementReset() {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }
};

} // namespace

SqliteConnection::SqliteConnection(const std::string& path) {
    int rc =
        sqlite3_open_v2(path.c_str(), &m_db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        std::string message = m_db ? sqlite3_errmsg(m_db) : sqlite3_errstr(rc);
        sqlite3_close(m_db);
        m_db = nullptr;
        throw StoreError("cannot open the SQLite database " + path + ": " + message);
    }
    sqlite3_extended_result_codes(m_db, 1);
    sqlite3_busy_timeout(m_db, kBusyTimeoutMs);
    try {
        // WAL lets readers work while one writer writes; NORMAL sync is durable in WAL except
        // for the last transactions before a power cut, never corrupting.
        execute("PRAGMA journal_mode = WAL");
        execute("PRAGMA synchronous = NORMAL");
        execute("PRAGMA foreign_keys = ON");
        // Reads map the file instead of copying pages through a small private cache per
        // connection: every connection shares the one page cache of the system.
        execute("PRAGMA mmap_size = 1073741824");
    } catch (...) {
        sqlite3_close(m_db);
        m_db = nullptr;
        throw;
    }
}

SqliteConnection::~SqliteConnection() {
    for (auto& [sql, statement] : m_statements)
        sqlite3_finalize(statement);
    sqlite3_close(m_db);
}

void SqliteConnection::fail(int code, std::string_view what) {
    std::string message = "SQLite: " + std::string(sqlite3_errmsg(m_db)) + " (" + excerpt(what) + ")";
    if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY)
        throw UniqueViolation(message);
    throw StoreError(message);
}

void SqliteConnection::execute(const std::string& sql) {
    char* error = nullptr;
    int rc = sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, &error);
    if (rc != SQLITE_OK) {
        std::string message = "SQLite: " + std::string(error ? error : sqlite3_errstr(rc)) + " (" + excerpt(sql) + ")";
        sqlite3_free(error);
        int code = sqlite3_extended_errcode(m_db);
        if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY)
            throw UniqueViolation(message);
        throw StoreError(message);
    }
}

sqlite3_stmt* SqliteConnection::prepared(std::string_view sql) {
    if (auto it = m_statements.find(sql); it != m_statements.end())
        return it->second;
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    int rc = sqlite3_prepare_v3(m_db, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement,
                                &tail);
    if (rc != SQLITE_OK)
        fail(rc, sql);
    if (!statement)
        throw StoreError("SQLite: empty statement (" + excerpt(sql) + ")");
    // One statement per call: anything after it would be silently ignored.
    for (const char* p = tail; p && p < sql.data() + sql.size(); ++p) {
        if (*p != ' ' && *p != '\n' && *p != '\t' && *p != '\r' && *p != ';') {
            sqlite3_finalize(statement);
            throw StoreError("SQLite: more than one statement (" + excerpt(sql) + ")");
        }
    }
    m_statements.emplace(std::string(sql), statement);
    return statement;
}

SqlResult SqliteConnection::query(std::string_view sql, std::span<const SqlValue> params) {
    sqlite3_stmt* statement = prepared(sql);
    StatementReset reset{statement};
    if (m_readOnly && !sqlite3_stmt_readonly(statement))
        throw StoreError("SQLite: a write inside a read transaction (" + excerpt(sql) + ")");

    if (static_cast<int>(params.size()) != sqlite3_bind_parameter_count(statement))
        throw StoreError("SQLite: " + std::to_string(params.size()) + " values for " +
                         std::to_string(sqlite3_bind_parameter_count(statement)) + " placeholders (" + excerpt(sql) +
                         ")");
    for (size_t i = 0; i < params.size(); ++i) {
        int index = static_cast<int>(i) + 1;
        const SqlValue& v = params[i];
        int rc = SQLITE_OK;
        if (auto n = std::get_if<int64_t>(&v))
            rc = sqlite3_bind_int64(statement, index, *n);
        else if (auto d = std::get_if<double>(&v))
            rc = sqlite3_bind_double(statement, index, *d);
        else if (auto s = std::get_if<std::string>(&v)) {
            // PostgreSQL cannot store a NUL in text; refusing it here too keeps the engines alike.
            if (s->find('\0') != std::string::npos)
                throw StoreError("SQLite: a text value holds a NUL character (" + excerpt(sql) + ")");
            // The values outlive the statement's run: no copy needed.
            rc = sqlite3_bind_text64(statement, index, s->data(), s->size(), SQLITE_STATIC, SQLITE_UTF8);
        } else
            rc = sqlite3_bind_null(statement, index);
        if (rc != SQLITE_OK)
            fail(rc, sql);
    }

    const int columns = sqlite3_column_count(statement);
    std::vector<SqlValue> cells;
    for (;;) {
        int rc = sqlite3_step(statement);
        if (rc == SQLITE_DONE)
            break;
        if (rc != SQLITE_ROW)
            fail(sqlite3_extended_errcode(m_db), sql);
        for (int c = 0; c < columns; ++c) {
            switch (sqlite3_column_type(statement, c)) {
            case SQLITE_INTEGER:
                cells.emplace_back(static_cast<int64_t>(sqlite3_column_int64(statement, c)));
                break;
            case SQLITE_FLOAT:
                cells.emplace_back(sqlite3_column_double(statement, c));
                break;
            case SQLITE_NULL:
                cells.emplace_back(std::monostate{});
                break;
            default: {
                // Text, and blobs read as their bytes.
                auto data = reinterpret_cast<const char*>(sqlite3_column_text(statement, c));
                int size = sqlite3_column_bytes(statement, c);
                cells.emplace_back(std::string(data ? data : "", data ? static_cast<size_t>(size) : 0));
                break;
            }
            }
        }
    }
    return SqlResult(columns, std::move(cells));
}

// A write inside a read transaction fails, as PostgreSQL's READ ONLY does, so a mistake shows on
// both engines alike. It is checked per statement rather than with PRAGMA query_only: setting
// that pragma expires every prepared statement of the connection, so each transaction would
// compile all its SQL again.
void SqliteConnection::beginRead() {
    rollback(); // a transaction some failure left open would swallow this one
    query("BEGIN", {});
    m_readOnly = true;
}

// IMMEDIATE takes the write lock at once, so two writers never both read and then collide on
// the upgrade (which SQLite answers with SQLITE_BUSY without waiting).
void SqliteConnection::beginWrite() {
    rollback();
    query("BEGIN IMMEDIATE", {});
}

void SqliteConnection::commit() {
    query("COMMIT", {});
    m_readOnly = false;
}

void SqliteConnection::rollback() {
    if (!sqlite3_get_autocommit(m_db))
        query("ROLLBACK", {});
    m_readOnly = false;
}

int64_t SqliteConnection::nextChangeSeq() {
    SqlResult r = query("UPDATE change_counter SET value = value + 1 WHERE id = 1 RETURNING value", {});
    if (r.empty())
        throw StoreError("SQLite: the change counter is missing");
    return r.integer(0, 0);
}

} // namespace qf
