// Opening the database: the engine by its address, the pool, the schema brought up to date.

#include "store/database.h"

#include "store/migrations.h"
#include "store/postgres/postgres_connection.h"
#include "store/sqlite/sqlite_connection.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace qf {

namespace {

bool isPostgresAddress(const std::string& address) {
    return address.starts_with("postgresql://") || address.starts_with("postgres://");
}

} // namespace

std::unique_ptr<Database> Database::open(const DatabaseOptions& options) {
    const std::string& address = options.address;
    const size_t size = static_cast<size_t>(std::max(1, options.connections));
    std::vector<std::unique_ptr<SqlConnection>> pool;
    pool.reserve(size);

    if (isPostgresAddress(address)) {
        auto first = std::make_unique<PostgresConnection>(address);
        migratePostgres(*first);
        pool.push_back(std::move(first));
        while (pool.size() < size)
            pool.push_back(std::make_unique<PostgresConnection>(address));
        return std::unique_ptr<Database>(new Database(SqlEngine::Postgres, std::move(pool)));
    }

    if (address.empty())
        throw StoreError("no database address given");
    std::filesystem::path path(address);
    if (path.has_parent_path()) {
        std::error_code error;
        std::filesystem::create_directories(path.parent_path(), error);
        if (error)
            throw StoreError("cannot create the folder of the SQLite database " + address + ": " + error.message());
    }
    auto first = std::make_unique<SqliteConnection>(address);
    migrateSqlite(*first);
    pool.push_back(std::move(first));
    // Every connection to ":memory:" would be a database of its own.
    const size_t sqliteSize = address == ":memory:" ? 1 : size;
    while (pool.size() < sqliteSize)
        pool.push_back(std::make_unique<SqliteConnection>(address));
    return std::unique_ptr<Database>(new Database(SqlEngine::Sqlite, std::move(pool)));
}

Database::Database(SqlEngine engine, std::vector<std::unique_ptr<SqlConnection>> pool)
    : m_engine(engine), m_all(std::move(pool)) {
    for (auto& c : m_all)
        m_free.push_back(c.get());
}

Database::~Database() = default;

SqlConnection* Database::acquire() {
    std::unique_lock lock(m_mutex);
    m_available.wait(lock, [this] { return !m_free.empty(); });
    SqlConnection* c = m_free.back();
    m_free.pop_back();
    return c;
}

void Database::release(SqlConnection* connection) {
    {
        std::lock_guard lock(m_mutex);
        m_free.push_back(connection);
    }
    m_available.notify_one();
}

} // namespace qf
