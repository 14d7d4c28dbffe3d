#pragma once

#include "store/sql_connection.h"
#include "store/statement_cache.h"

#include <string>

// A connection to PostgreSQL through libpq. The portable SQL's "?" placeholders become $1, $2…;
// each statement is prepared once per session and run with text parameters. A connection that
// broke is opened again on its next use (outside a transaction; inside one the work is lost and
// the failure is reported).

struct pg_conn;

namespace qf {

// "?" placeholders outside quotes and comments become $1, $2… in order. count receives their
// number.
std::string numberedPlaceholders(std::string_view sql, int& count);

class PostgresConnection final : public SqlConnection {
public:
    // uri: a libpq connection URI or key=value string. Throws StoreError.
    explicit PostgresConnection(const std::string& uri);
    ~PostgresConnection() override;
    PostgresConnection(const PostgresConnection&) = delete;
    PostgresConnection& operator=(const PostgresConnection&) = delete;

    [[nodiscard]] SqlEngine engine() const override { return SqlEngine::Postgres; }

    SqlResult query(std::string_view sql, std::span<const SqlValue> params) override;
    using SqlConnection::query;

    void beginRead() override;
    void beginWrite() override;
    void commit() override;
    void rollback() override;
    int64_t nextChangeSeq() override;

    // Runs statements without parameters (schema changes, locks), through the simple protocol.
    void execute(const std::string& sql);

    // The key of the transaction-scoped advisory lock every write transaction takes.
    static constexpr int64_t kWriteLockKey = 0x51460001;

private:
    struct Prepared {
        std::string name;
        int parameters = 0;
    };

    void ensureConnected();
    void begin(const std::string& sql);
    const Prepared& prepared(std::string_view sql);

    pg_conn* m_conn = nullptr;
    StatementCache<Prepared> m_statements;
    int m_nextName = 0;
    bool m_inTransaction = false;
};

} // namespace qf
