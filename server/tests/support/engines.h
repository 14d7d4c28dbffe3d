#pragma once

#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <string>

// The two database engines the server's tests run on, and a fresh, empty database of either for
// each test: a file in a temporary folder for SQLite; a database of its own in the throw-away
// PostgreSQL cluster the "postgres" test fixture starts, dropped afterwards.
namespace Engines {
// Adds the column "engine" and the rows "sqlite" and "postgres" to a QTest data table.
void addRows();
} // namespace Engines

class FreshDatabase {
public:
    // nullptr when the engine is PostgreSQL and no cluster runs for this test run.
    static std::unique_ptr<FreshDatabase> make(const QString& engine);
    ~FreshDatabase();

    [[nodiscard]] const std::string& address() const { return m_address; }

private:
    FreshDatabase() = default;

    std::unique_ptr<QTemporaryDir> m_dir;
    std::string m_address;
    std::string m_serverUri; // PostgreSQL: the cluster's maintenance database
    std::string m_name;
};
