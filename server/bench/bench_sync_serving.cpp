// Sync serving: many users mirroring their whole archives from the real quillfern-server at
// once, on SQLite and on PostgreSQL, against Debian's nginx sending the very same page bytes
// from files on the same machine (what the transport alone allows).
//
// The archive: 100 users with one linked Riot account each and 20,000 games of 10 of them, so
// each user's archive is 2,000 games, 20,000 participant rows and 2,000 performance scores.
// Every user gets one kept-alive connection and pulls GET /api/sync with the previous page's
// cursor until has_more is false; every page's body is then written to a file and nginx serves
// the same sequence. Loopback only; every loop ends by itself (page cap and a deadline).
//
// Run by hand, on an optimised build (never in CI: it takes minutes):
//   cmake -S . -B build-server-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=ON
//   ninja -C build-server-bench quillfern-server bench_sync_serving
//   build-server-bench/bin/bench_sync_serving [--engines sqlite,postgres] [--users 100] [--games 20000]
//       [--threads 8] [--rounds 2] [--nginx-workers 2] [--http yes|no]
// It first times the server's own work per page in-process on one thread (reading the page,
// writing its JSON); --http no stops there, after all the users' mirrors (a run to profile).
// Needs nginx and PostgreSQL 15 (server/tests/pg_cluster starts a throw-away cluster).
// QFS_SERVER_BINARY names another server binary; QFS_BENCH_KEEP=1 keeps the scratch folder.

#include "bench_archive.h"
#include "bench_args.h"
#include "load_figures.h"
#include "mirror_archive.h"
#include "nginx_server.h"
#include "pg_cluster.h"
#include "server_process.h"
#include "sync_load_client.h"
#include "temp_folder.h"

#include "api/api_answers.h"
#include "api/server_api.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>

using namespace qf;
using namespace qf::bench;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Settings {
    int users = 100;
    int games = 20000;
    int threads = 8;
    int rounds = 2;
    int nginxWorkers = 2;
    bool http = true; // false: only the in-process figures
};

struct EngineOutcome {
    std::vector<LoadFigures> rows;
    double serverPagesPerSecond = 0; // best round
    double nginxPagesPerSecond = 0;
    bool ok = true;
};

std::vector<MirrorJob> jobsOf(const BenchArchive& archive, bool withTokens) {
    std::vector<MirrorJob> jobs;
    for (size_t u = 0; u < archive.users.size(); ++u)
        jobs.push_back({int(u), withTokens ? archive.users[u].token : std::string()});
    return jobs;
}

// Every user received their whole archive, each game once.
std::string checkComplete(const LoadResult& result, const BenchArchive& archive,
                          const std::map<std::pair<int, int>, SyncPageRows>& rows) {
    std::map<int, SyncPageRows> perUser;
    for (const PageRecord& page : result.pages) {
        const SyncPageRows& r = rows.at({page.user, page.page});
        SyncPageRows& sum = perUser[page.user];
        sum.matches += r.matches;
        sum.participants += r.participants;
        sum.scores += r.scores;
    }
    for (size_t u = 0; u < archive.users.size(); ++u) {
        const SyncPageRows& sum = perUser[int(u)];
        if (sum.matches != archive.gamesPerUser || sum.scores != archive.gamesPerUser ||
            sum.participants != archive.gamesPerUser * 10)
            return "user " + std::to_string(u) + " received " + std::to_string(sum.matches) + " games, " +
                   std::to_string(sum.participants) + " participants and " + std::to_string(sum.scores) +
                   " scores; expected " + std::to_string(archive.gamesPerUser) + " games";
    }
    return {};
}

// The server's own cost of a page without HTTP, on one thread: reading it from the database
// (SyncService::page) and writing its JSON (the answer the route sends). Taken over the first
// users' whole mirrors.
void measureInProcess(const std::string& name, const std::string& address, const BenchArchive& archive, int users) {
    auto database = Database::open({address, 1});
    SyncService sync(*database);
    int64_t pages = 0;
    int64_t bytes = 0;
    double query = 0;
    double json = 0;
    for (int u = 0; u < users && u < int(archive.users.size()); ++u) {
        std::optional<std::string> cursor;
        for (bool more = true; more && pages < 100'000;) {
            const Clock::time_point start = Clock::now();
            const SyncPage page = sync.page(archive.users[size_t(u)].userId, cursor ? &*cursor : nullptr);
            const Clock::time_point read = Clock::now();
            const std::string body = answers::syncPage(page);
            json += secondsSince(read);
            query += std::chrono::duration<double>(read - start).count();
            bytes += int64_t(body.size());
            ++pages;
            more = page.hasMore;
            cursor = page.nextCursor;
        }
    }
    std::printf("%s in-process, one thread, %lld pages (%.2f MB each): %.2f ms reading a page, %.2f ms writing its "
                "JSON\n",
                name.c_str(), static_cast<long long>(pages), pages ? double(bytes) / 1e6 / double(pages) : 0.0,
                pages ? 1000.0 * query / double(pages) : 0.0, pages ? 1000.0 * json / double(pages) : 0.0);
}

EngineOutcome runEngine(const std::string& engine, const Settings& settings, const TempFolder& scratch) {
    EngineOutcome outcome;
    const std::string name = engine == "postgres" ? "PostgreSQL" : "SQLite";
    std::optional<PgCluster> cluster;
    std::string address;
    if (engine == "postgres") {
        std::cout << "Starting a throw-away PostgreSQL cluster..." << std::endl;
        cluster.emplace(scratch.path() / "pg");
        address = cluster->uri();
    } else {
        address = (scratch.sub("sqlite") / "quillfern.sqlite").string();
    }

    // The archive, written directly (the server is not running yet).
    BenchArchive archive;
    {
        const Clock::time_point start = Clock::now();
        auto database = Database::open({address, 1});
        BenchArchiveShape shape;
        shape.users = settings.users;
        shape.games = settings.games;
        archive = buildBenchArchive(*database, shape, unixNowMs());
        // What autovacuum would do within a minute of such a load; the plans then are the ones a
        // running server keeps using.
        if (cluster)
            PgCluster::execute(address, "ANALYZE");
        std::printf("%s: built %lld games, %lld participants, %lld scores for %zu users in %.1f s\n", name.c_str(),
                    static_cast<long long>(archive.games), static_cast<long long>(archive.participants),
                    static_cast<long long>(archive.scores), archive.users.size(), secondsSince(start));
    }

    // Ten users' mirrors are enough for the figure; without HTTP, all of them (a profiler's run).
    measureInProcess(name, address, archive, settings.http ? 10 : settings.users);
    if (!settings.http)
        return outcome;

    ServerLaunch launch;
    launch.binary = defaultServerBinary();
    launch.database = address;
    launch.dataDir = scratch.sub("data-" + engine);
    launch.logFile = scratch.path() / ("server-" + engine + ".log");
    launch.threads = settings.threads;
    auto server = std::make_unique<ServerProcess>(launch);
    std::printf("%s: quillfern-server (pid %d, %d threads) on port %u\n", name.c_str(), int(server->pid()),
                settings.threads, unsigned(server->port()));

    // Rows per page are counted after the run, from the kept bodies, so the client reads only
    // the two members it needs while the clock runs.
    std::map<std::pair<int, int>, SyncPageRows> pageRows;
    std::map<std::pair<int, int>, size_t> pageBytes;
    const auto rowsOf = [&](const PageRecord& p) { return pageRows.at({p.user, p.page}).total(); };
    const std::vector<MirrorJob> jobs = jobsOf(archive, true);
    const std::filesystem::path www = scratch.sub("www-" + engine);

    for (int round = 1; round <= settings.rounds; ++round) {
        LoadOptions options;
        options.port = server->port();
        options.keepBodies = round == 1;
        const double cpuBefore = cpuSecondsOf(server->pid());
        LoadResult result = SyncLoadClient::run(jobs, options);
        const double serverCpu = cpuSecondsOf(server->pid()) - cpuBefore;
        if (result.failedUsers > 0) {
            std::printf("%s: %d users failed: %s\n", name.c_str(), result.failedUsers, result.firstError.c_str());
            outcome.ok = false;
            return outcome;
        }
        if (round == 1) {
            for (PageRecord& page : result.pages) {
                pageRows[{page.user, page.page}] = countSyncPageRows(page.body);
                pageBytes[{page.user, page.page}] = page.bytes;
                const std::filesystem::path file = www / pageFilePath(page.user, page.page);
                std::filesystem::create_directories(file.parent_path());
                std::ofstream(file, std::ios::binary).write(page.body.data(), std::streamsize(page.body.size()));
                page.body = std::string(); // the memory goes now, not at the end
            }
            if (const std::string problem = checkComplete(result, archive, pageRows); !problem.empty()) {
                std::printf("%s: incomplete mirror: %s\n", name.c_str(), problem.c_str());
                outcome.ok = false;
                return outcome;
            }
        }
        outcome.rows.push_back(figuresOf("quillfern " + name + " #" + std::to_string(round), result, rowsOf));
        outcome.rows.back().serverCpuSeconds = serverCpu;
        outcome.serverPagesPerSecond = std::max(outcome.serverPagesPerSecond, outcome.rows.back().pagesPerSecond());
    }
    server.reset(); // nginx gets the machine to itself

    auto nginx = NginxServer::serveFiles(scratch.path() / ("nginx-" + engine), www, settings.nginxWorkers);
    for (int round = 1; round <= settings.rounds; ++round) {
        LoadOptions options;
        options.port = nginx->port();
        options.source = PageSource::Files;
        const double cpuBefore = cpuSecondsOf(nginx->pid());
        const LoadResult result = SyncLoadClient::run(jobsOf(archive, false), options);
        const double nginxCpu = cpuSecondsOf(nginx->pid()) - cpuBefore;
        if (result.failedUsers > 0) {
            std::printf("nginx: %d users failed: %s\n", result.failedUsers, result.firstError.c_str());
            outcome.ok = false;
            return outcome;
        }
        for (const PageRecord& page : result.pages)
            if (pageBytes.at({page.user, page.page}) != page.bytes) {
                std::printf("nginx: page %d of user %d has %zu bytes, the server sent %zu\n", page.page, page.user,
                            page.bytes, pageBytes.at({page.user, page.page}));
                outcome.ok = false;
            }
        outcome.rows.push_back(figuresOf("nginx, same bytes #" + std::to_string(round), result, rowsOf));
        outcome.rows.back().serverCpuSeconds = nginxCpu;
        outcome.nginxPagesPerSecond = std::max(outcome.nginxPagesPerSecond, outcome.rows.back().pagesPerSecond());
    }
    return outcome;
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // progress lines show while it runs
    Settings settings;
    std::vector<std::string> engines;
    try {
        const BenchArgs args(argc, argv, {"engines", "users", "games", "threads", "rounds", "nginx-workers", "http"},
                             "usage: bench_sync_serving [--engines sqlite,postgres] [--users 100] [--games 20000] "
                             "[--threads 8] [--rounds 2] [--nginx-workers 2] [--http yes|no]");
        engines = args.list("engines", "sqlite,postgres");
        settings.users = args.integer("users", settings.users);
        settings.games = args.integer("games", settings.games);
        settings.threads = args.integer("threads", settings.threads);
        settings.rounds = args.integer("rounds", settings.rounds);
        settings.nginxWorkers = args.integer("nginx-workers", settings.nginxWorkers);
        const std::string http = args.text("http", "yes");
        if (http != "yes" && http != "no")
            throw std::invalid_argument("--http is yes or no");
        settings.http = http == "yes";
        for (const std::string& e : engines)
            if (e != "sqlite" && e != "postgres")
                throw std::invalid_argument("unknown engine " + e + " (sqlite, postgres)");
    } catch (const std::invalid_argument& e) {
        std::cerr << e.what() << "\n";
        return 2;
    }

    bool ok = true;
    std::vector<LoadFigures> table;
    std::vector<std::string> verdicts;
    try {
        const TempFolder scratch("qfs-bench-sync");
        for (const std::string& engine : engines) {
            const EngineOutcome outcome = runEngine(engine, settings, scratch);
            ok = ok && outcome.ok;
            table.insert(table.end(), outcome.rows.begin(), outcome.rows.end());
            if (outcome.ok && outcome.nginxPagesPerSecond > 0) {
                const double ratio = outcome.serverPagesPerSecond / outcome.nginxPagesPerSecond;
                char line[160];
                std::snprintf(line, sizeof line, "%s: server/nginx throughput %.2f (best rounds; target >= 0.33) %s",
                              engine == "postgres" ? "PostgreSQL" : "SQLite", ratio,
                              ratio >= 1.0 / 3 ? "met" : "MISSED");
                verdicts.emplace_back(line);
            }
        }
    } catch (const std::exception& e) {
        std::cerr << "bench_sync_serving: " << e.what() << "\n";
        return 1;
    }
    std::printf("\nSync serving: %d users, %d games, %d server threads\n", settings.users, settings.games,
                settings.threads);
    printFigures(table);
    for (const std::string& v : verdicts)
        std::printf("%s\n", v.c_str());
    return ok ? 0 : 1;
}
