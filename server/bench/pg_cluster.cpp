// Running the tests' PostgreSQL helper script for the benchmarks.

#include "pg_cluster.h"

#include <cstdlib>

#include "child_process.h"

#include <fstream>
#include <libpq-fe.h>
#include <memory>
#include <stdexcept>

namespace qf::bench {

namespace {

const char* script() {
    return QFS_PG_CLUSTER_SCRIPT;
}

} // namespace

PgCluster::PgCluster(std::filesystem::path dir) : m_dir(std::move(dir)) {
    // A cache that holds a benchmark's archive, as a deployment sizes it for its data (the
    // tests' clusters make do with 64 MB). QFS_PG_SHARED_BUFFERS set by hand wins.
    setenv("QFS_PG_SHARED_BUFFERS", "1GB", 0);
    const std::filesystem::path log = m_dir.parent_path() / (m_dir.filename().string() + "-start.log");
    const int code = ChildProcess::run(script(), {"start", m_dir.string()}, log, std::chrono::minutes(3));
    std::ifstream in(m_dir / "uri");
    if (code != 0 || !std::getline(in, m_uri) || m_uri.empty()) {
        std::ifstream out(log);
        const std::string text((std::istreambuf_iterator<char>(out)), std::istreambuf_iterator<char>());
        throw std::runtime_error("the PostgreSQL cluster did not start:\n" + text);
    }
}

PgCluster::~PgCluster() {
    const std::filesystem::path log = m_dir.parent_path() / (m_dir.filename().string() + "-stop.log");
    ChildProcess::run(script(), {"stop", m_dir.string()}, log, std::chrono::minutes(1));
}

void PgCluster::execute(const std::string& uri, const std::string& sql) {
    std::unique_ptr<PGconn, decltype(&PQfinish)> connection(PQconnectdb(uri.c_str()), PQfinish);
    if (PQstatus(connection.get()) != CONNECTION_OK)
        throw std::runtime_error(std::string("cannot connect to PostgreSQL: ") + PQerrorMessage(connection.get()));
    std::unique_ptr<PGresult, decltype(&PQclear)> result(PQexec(connection.get(), sql.c_str()), PQclear);
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
        throw std::runtime_error(sql + " failed: " + PQerrorMessage(connection.get()));
}

std::string PgCluster::createDatabase(const std::string& name) const {
    execute(m_uri, "CREATE DATABASE \"" + name + "\"");
    return m_uri.substr(0, m_uri.rfind('/') + 1) + name;
}

} // namespace qf::bench
