#pragma once

#include "store/repository.h"
#include "store/sql_connection.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// The server's database: an engine chosen by its address, a pool of connections shared by the
// request threads, and the schema brought up to date when it opens.

namespace qf {

struct DatabaseOptions {
    // "postgresql://…" or "postgres://…" for PostgreSQL (libpq connection URI); anything else
    // is the path of an SQLite file (created, with its folder, when missing).
    std::string address;
    int connections = 8;
};

class Database {
public:
    // Opens the pool and runs the engine's migrations (once, even when several server processes
    // start together on one PostgreSQL database). Throws StoreError with a readable text.
    static std::unique_ptr<Database> open(const DatabaseOptions& options);
    ~Database();

    [[nodiscard]] SqlEngine engine() const { return m_engine; }

    // Runs fn(Repository&) in a transaction on a pooled connection and returns its result.
    // Commits when fn returns, rolls back when it throws (and rethrows).
    template <class F> auto read(F&& fn) { return run(false, std::forward<F>(fn)); }
    template <class F> auto write(F&& fn) { return run(true, std::forward<F>(fn)); }

private:
    Database(SqlEngine engine, std::vector<std::unique_ptr<SqlConnection>> pool);

    class Lease {
    public:
        Lease(Database& db, SqlConnection* c) : m_db(db), m_connection(c) {}
        ~Lease() { m_db.release(m_connection); }
        SqlConnection& operator*() const { return *m_connection; }

    private:
        Database& m_db;
        SqlConnection* m_connection;
    };

    SqlConnection* acquire();
    void release(SqlConnection* connection);

    template <class F> auto run(bool write, F&& fn) {
        Lease lease(*this, acquire());
        SqlConnection& c = *lease;
        write ? c.beginWrite() : c.beginRead();
        try {
            Repository repository(c);
            if constexpr (std::is_void_v<decltype(fn(repository))>) {
                fn(repository);
                c.commit();
            } else {
                auto result = fn(repository);
                c.commit();
                return result;
            }
        } catch (...) {
            try {
                c.rollback();
            } catch (...) {
            }
            throw;
        }
    }

    SqlEngine m_engine;
    std::vector<std::unique_ptr<SqlConnection>> m_all;
    std::vector<SqlConnection*> m_free;
    std::mutex m_mutex;
    std::condition_variable m_available;
};

} // namespace qf
