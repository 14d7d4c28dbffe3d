#pragma once

#include "store/database.h"

#include <QString>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

// A fresh, empty database for one test on either engine: an SQLite file in a temporary folder,
// or a PostgreSQL database of its own, created in the cluster the "postgres" test fixture runs
// and dropped again afterwards. Tests never see each other's rows.

namespace qf::test {

// The matches of a sync's changed games, for tests that follow only the change order.
inline std::vector<Match> matchesOnly(const std::vector<SyncedGame>& games) {
    std::vector<Match> matches;
    for (const SyncedGame& g : games)
        matches.push_back(g.match);
    return matches;
}

// Adds the column "engine" and the rows "sqlite" and "postgres" to a QTest data table.
void addEngineRows();

class TestDatabase {
public:
    // engine: "sqlite" or "postgres".
    explicit TestDatabase(const QString& engine);
    ~TestDatabase();
    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    // False when the engine cannot be had; then skipped() says whether that is because no
    // PostgreSQL cluster runs for this test run (a run outside CTest), and problem() why.
    [[nodiscard]] bool ready() const { return !m_address.empty(); }
    [[nodiscard]] bool skipped() const { return m_skipped; }
    [[nodiscard]] const QString& problem() const { return m_problem; }

    // The address Database::open takes.
    [[nodiscard]] const std::string& address() const { return m_address; }
    [[nodiscard]] std::unique_ptr<Database> open(int connections = 2) const;

    // PostgreSQL: the cluster's own URI (its "quillfern" database), empty when no cluster runs.
    [[nodiscard]] static std::string clusterUri();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::string m_address;
    std::string m_clusterUri;
    std::string m_name; // PostgreSQL database to drop
    bool m_skipped = false;
    QString m_problem;
};

// A libpq URI naming another database of the same server.
[[nodiscard]] std::string withDatabaseName(const std::string& uri, const std::string& name);

} // namespace qf::test

// In a test function: skips when the engine is not there for this run, fails when it should be
// and is not.
#define QFS_REQUIRE_DATABASE(db)                                                                                       \
    do {                                                                                                               \
        if ((db).skipped())                                                                                            \
            QSKIP(qPrintable((db).problem()));                                                                         \
        if (!(db).ready())                                                                                             \
            QFAIL(qPrintable((db).problem()));                                                                         \
    } while (false)
