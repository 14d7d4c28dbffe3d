// quillfern-server: the backend of Quill Fern. Reads its settings, opens (and migrates) its
// database, creates the demo when asked, and serves the app's API until SIGTERM or SIGINT.

#include "api/server_api.h"
#include "backfill/backfill_worker.h"
#include "config/server_config.h"
#include "demo/demo_archive.h"
#include "http/http_server.h"
#include "riot/data_version_keeper.h"
#include "riot/rate_limiter.h"
#include "riot/riot_client.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::string describe(const qf::ServerConfig& c, qf::SqlEngine engine) {
    if (engine == qf::SqlEngine::Postgres)
        return "PostgreSQL";
    return "SQLite " + c.database;
}

} // namespace

int main(int argc, char** argv) {
    const qf::ConfigOutcome parsed =
        qf::parseServerConfig(std::vector<std::string>(argv + 1, argv + argc), environment);
    if (!parsed.config) {
        (parsed.exitCode == 0 ? std::cout : std::cerr) << parsed.message << (parsed.exitCode ? "\n" : "");
        return parsed.exitCode;
    }
    const qf::ServerConfig& config = *parsed.config;

    try {
        std::error_code ignored;
        std::filesystem::create_directories(config.dataDir, ignored);
        auto database = qf::Database::open({config.database, config.threads});
        qf::ChampionDirectoryOptions championOptions;
        championOptions.version = config.staticVersion;
        championOptions.cacheDir = config.dataDir;
        const qf::ChampionDirectory champions(championOptions);

        qf::AuthService auth(*database, {config.leagueLogin});
        std::unique_ptr<qf::RiotClient> riot;
        if (!config.riotApiKey.empty()) {
            qf::RiotApiConfig riotConfig;
            riotConfig.apiKey = config.riotApiKey;
            riotConfig.baseOverride = config.riotApiBase;
            riot = std::make_unique<qf::RiotClient>(riotConfig);
        }
        qf::RiotAccountService riotAccounts(*database, riot.get());
        qf::SyncService sync(*database);
        qf::IngestService ingest(*database, champions);
        qf::SocialService social(*database, riot.get(), &champions);
        std::unique_ptr<qf::BackfillWorker> backfill;
        if (riot)
            backfill = std::make_unique<qf::BackfillWorker>(*database, ingest, *riot, qf::unixNowMs);

        qf::Router router;
        qf::ApiSettings settings;
        settings.staticVersion = config.staticVersion;
        std::unique_ptr<qf::DataVersionKeeper> dataVersion;
        if (riot) {
            dataVersion = std::make_unique<qf::DataVersionKeeper>(
                *riot, config.staticVersion, std::filesystem::path(config.dataDir) / "static-version");
            settings.currentStaticVersion = [keeper = dataVersion.get()] { return keeper->current(); };
        }
        qf::installApi(router, {auth, riotAccounts, sync, ingest, social}, settings, qf::unixNowMs);

        if (config.demo) {
            const qf::DemoSummary demo = qf::installDemo(*database, ingest, qf::unixNowMs());
            if (demo.created)
                std::cout << "Created the demo archive: " << demo.games << " games." << std::endl;
        }

        qf::HttpServerOptions options;
        options.host = config.host;
        options.port = config.port;
        options.threads = config.threads;
        qf::HttpServer server(options, router);
        server.start();

        std::cout << "quillfern-server listening on http://"
                  << (config.host.find(':') != std::string::npos ? "[" + config.host + "]" : config.host) << ":"
                  << server.port() << " (" << describe(config, database->engine()) << ")" << std::endl;
        if (config.demo)
            std::cout << "Demo account: " << qf::DemoCredentials::email
                      << "  password: " << qf::DemoCredentials::password << std::endl;
        if (!config.leagueLogin)
            std::cout << "Sign-in with League is off (not a loopback address; --allow-league-login turns it on)."
                      << std::endl;

        if (backfill)
            backfill->start();
        if (dataVersion)
            dataVersion->start();
        if (riot)
            std::cout << "Riot API: on" << (config.riotApiBase.empty() ? "" : " (through " + config.riotApiBase + ")")
                      << std::endl;
        server.run(true);
        // Requests parked behind a rate-limit window must not hold the stop up.
        qf::RateLimiter::closeAll();
        if (backfill)
            backfill->stop();
        if (dataVersion)
            dataVersion->stop();
        std::cout << "quillfern-server stopped." << std::endl;
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "quillfern-server could not start: " << e.what() << std::endl;
        return 1;
    }
}
