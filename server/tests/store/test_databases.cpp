// Fresh databases on both engines for the server's tests.

#include "store/test_databases.h"

#include <QFile>

#include <libpq-fe.h>
#include <unistd.h>

#include <atomic>
#include <random>

namespace qf::test {

namespace {

// Runs one statement on the cluster; returns the error text, empty on success.
std::string runOnCluster(const std::string& uri, const std::string& sql) {
    PGconn* c = PQconnectdb(uri.c_str());
    std::string error;
    if (PQstatus(c) != CONNECTION_OK) {
        error = PQerrorMessage(c);
    } else {
        PGresult* r = PQexec(c, sql.c_str());
        if (PQresultStatus(r) != PGRES_COMMAND_OK)
            error = PQresultErrorMessage(r);
        PQclear(r);
    }
    PQfinish(c);
    return error.empty() || error.back() != '\n' ? error : error.substr(0, error.size() - 1);
}

// Unique across processes and across earlier runs that died before dropping theirs.
std::string uniqueName() {
    static std::atomic<int> counter{0};
    static const uint32_t salt = std::random_device{}();
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, "%08x", salt);
    return "qfs_t_" + std::to_string(getpid()) + "_" + std::to_string(counter++) + "_" + suffix;
}

} // namespace

void addEngineRows() {
    QTest::addColumn<QString>("engine");
    QTest::newRow("sqlite") << QStringLiteral("sqlite");
    QTest::newRow("postgres") << QStringLiteral("postgres");
}

std::string withDatabaseName(const std::string& uri, const std::string& name) {
    const size_t scheme = uri.find("://");
    const size_t authority = scheme == std::string::npos ? 0 : scheme + 3;
    const size_t slash = uri.find_first_of("/?", authority);
    if (slash == std::string::npos)
        return uri + "/" + name;
    if (uri[slash] == '?')
        return uri.substr(0, slash) + "/" + name + uri.substr(slash);
    const size_t query = uri.find('?', slash);
    return uri.substr(0, slash + 1) + name + (query == std::string::npos ? "" : uri.substr(query));
}

std::string TestDatabase::clusterUri() {
    QFile file(QStringLiteral(QFS_PG_URI_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().trimmed().toStdString();
}

TestDatabase::TestDatabase(const QString& engine) {
    if (engine == QLatin1String("sqlite")) {
        m_dir = std::make_unique<QTemporaryDir>();
        if (!m_dir->isValid()) {
            m_problem = QStringLiteral("no temporary folder: ") + m_dir->errorString();
            return;
        }
        m_address = m_dir->filePath(QStringLiteral("server.sqlite3")).toStdString();
        return;
    }
    if (engine != QLatin1String("postgres")) {
        m_problem = QStringLiteral("unknown engine ") + engine;
        return;
    }
    m_clusterUri = clusterUri();
    if (m_clusterUri.empty()) {
        m_skipped = true;
        m_problem = QStringLiteral("no PostgreSQL cluster runs for this test run (no %1); run the tests with ctest")
                        .arg(QStringLiteral(QFS_PG_URI_FILE));
        return;
    }
    const std::string name = uniqueName();
    const std::string error = runOnCluster(m_clusterUri, "CREATE DATABASE " + name);
    if (!error.empty()) {
        m_problem = QString::fromStdString("cannot create a PostgreSQL database: " + error);
        return;
    }
    m_name = name;
    m_address = withDatabaseName(m_clusterUri, name);
}

TestDatabase::~TestDatabase() {
    // FORCE ends connections a test left open.
    if (!m_name.empty())
        runOnCluster(m_clusterUri, "DROP DATABASE IF EXISTS " + m_name + " WITH (FORCE)");
}

std::unique_ptr<Database> TestDatabase::open(int connections) const {
    return Database::open(DatabaseOptions{m_address, connections});
}

} // namespace qf::test
