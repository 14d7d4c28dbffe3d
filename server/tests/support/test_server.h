#pragma once

#include "api/server_api.h"
#include "archive/champion_catalog.h"
#include "http/http_server.h"

#include <memory>
#include <string>
#include <thread>

// The whole server in the test's process: its database (any address Database::open takes),
// every service, the API routes and the HTTP server on a free loopback port, served from a
// thread of its own so the test's event loop stays free for the app's client.
class TestServer {
public:
    struct Options {
        bool leagueLogin = true;
        int threads = 4;
        size_t bodyLimit = 8 * 1024 * 1024;
    };

    explicit TestServer(const std::string& databaseAddress) : TestServer(databaseAddress, Options()) {}
    TestServer(const std::string& databaseAddress, Options options);
    ~TestServer();

    [[nodiscard]] std::string baseUrl() const;
    [[nodiscard]] qf::Database& database() { return *m_database; }
    [[nodiscard]] qf::IngestService& ingest() { return *m_ingest; }
    // Stops it gracefully (requests in flight finish), as SIGTERM would.
    void stop();

private:
    std::unique_ptr<qf::Database> m_database;
    qf::ChampionCatalog m_champions;
    std::unique_ptr<qf::AuthService> m_auth;
    std::unique_ptr<qf::RiotAccountService> m_riotAccounts;
    std::unique_ptr<qf::SyncService> m_sync;
    std::unique_ptr<qf::IngestService> m_ingest;
    std::unique_ptr<qf::SocialService> m_social;
    qf::Router m_router;
    std::unique_ptr<qf::HttpServer> m_http;
    std::thread m_thread;
};
