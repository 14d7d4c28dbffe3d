#include "support/test_server.h"

TestServer::TestServer(const std::string& databaseAddress, Options options)
    : m_database(qf::Database::open({databaseAddress, options.threads})), m_champions(qf::ChampionCatalog::shipped()) {
    m_auth = std::make_unique<qf::AuthService>(*m_database, qf::AuthOptions{options.leagueLogin});
    m_riotAccounts = std::make_unique<qf::RiotAccountService>(*m_database);
    m_sync = std::make_unique<qf::SyncService>(*m_database);
    m_ingest = std::make_unique<qf::IngestService>(*m_database, m_champions);
    m_social = std::make_unique<qf::SocialService>(*m_database);
    qf::installApi(m_router, {*m_auth, *m_riotAccounts, *m_sync, *m_ingest, *m_social}, {}, qf::unixNowMs);

    qf::HttpServerOptions http;
    http.host = "127.0.0.1";
    http.port = 0;
    http.threads = options.threads;
    http.bodyLimit = options.bodyLimit;
    m_http = std::make_unique<qf::HttpServer>(http, m_router);
    m_http->start();
    m_thread = std::thread([this] { m_http->run(false); });
}

TestServer::~TestServer() {
    stop();
}

void TestServer::stop() {
    if (m_thread.joinable()) {
        m_http->stop();
        m_thread.join();
    }
}

std::string TestServer::baseUrl() const {
    return "http://127.0.0.1:" + std::to_string(m_http->port());
}
