#include "support/engines.h"

#include <QFile>
#include <QTest>
#include <atomic>
#include <libpq-fe.h>
#include <unistd.h>

namespace Engines {

void addRows() {
    QTest::addColumn<QString>("engine");
    QTest::newRow("sqlite") << QStringLiteral("sqlite");
    QTest::newRow("postgres") << QStringLiteral("postgres");
}

} // namespace Engines

namespace {

bool run(const std::string& uri, const std::string& sql) {
    PGconn* c = PQconnectdb(uri.c_str());
    bool ok = PQstatus(c) == CONNECTION_OK;
    if (ok) {
        PGresult* r = PQexec(c, sql.c_str());
        ok = PQresultStatus(r) == PGRES_COMMAND_OK;
        PQclear(r);
    }
    PQfinish(c);
    return ok;
}

} // namespace

std::unique_ptr<FreshDatabase> FreshDatabase::make(const QString& engine) {
    std::unique_ptr<FreshDatabase> db(new FreshDatabase);
    if (engine == QLatin1String("sqlite")) {
        db->m_dir = std::make_unique<QTemporaryDir>();
        db->m_address = db->m_dir->filePath(QStringLiteral("server.sqlite")).toStdString();
        return db;
    }
    QFile file(QStringLiteral(QFS_PG_URI_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    db->m_serverUri = file.readAll().trimmed().toStdString();
    const size_t slash = db->m_serverUri.rfind('/');
    if (slash == std::string::npos || slash < 12)
        return nullptr;
    static std::atomic<int> counter{0};
    db->m_name = "qf_test_" + std::to_string(getpid()) + "_" + std::to_string(counter++);
    if (!run(db->m_serverUri, "CREATE DATABASE " + db->m_name))
        return nullptr;
    db->m_address = db->m_serverUri.substr(0, slash + 1) + db->m_name;
    return db;
}

FreshDatabase::~FreshDatabase() {
    if (!m_name.empty())
        run(m_serverUri, "DROP DATABASE IF EXISTS " + m_name + " WITH (FORCE)");
}
