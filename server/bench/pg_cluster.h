#pragma once

#include <filesystem>
#include <string>

// A throw-away PostgreSQL 15 cluster (the tests' pg_cluster script) for one benchmark run:
// started on a free loopback port, stopped and deleted when this object goes.

namespace qf::bench {

class PgCluster {
public:
    // Throws std::runtime_error with the script's output when it cannot start.
    explicit PgCluster(std::filesystem::path dir);
    ~PgCluster();
    PgCluster(const PgCluster&) = delete;
    PgCluster& operator=(const PgCluster&) = delete;

    // The URI of its database "quillfern".
    [[nodiscard]] const std::string& uri() const { return m_uri; }
    // Creates an empty database and returns its URI.
    [[nodiscard]] std::string createDatabase(const std::string& name) const;
    // Runs one statement without results on the database at uri (ANALYZE after a bulk load).
    static void execute(const std::string& uri, const std::string& sql);

private:
    std::filesystem::path m_dir;
    std::string m_uri;
};

} // namespace qf::bench
