// Backfill with a production key's room: the server's own backfill worker reads 1,000 match-v5
// games from the fake Riot API on loopback (which announces a limit that never binds) and stores
// each through the archive's ingest into a fresh SQLite database, as a server does after a link.
// The figure is games stored per second, the whole path: ids, fetch, read, compare, write, score.
//
// Run by hand, on an optimised build (never in CI):
//   cmake -S . -B build-server-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=ON
//   ninja -C build-server-bench bench_riot_store
//   build-server-bench/bin/bench_riot_store [--games 1000]

#include "bench_args.h"
#include "fake_riot_api.h"
#include "temp_folder.h"

#include "archive/ingest_service.h"
#include "backfill/backfill_worker.h"
#include "riot/riot_client.h"

#include <chrono>
#include <cstdio>
#include <iostream>

using namespace qf;
using namespace qf::bench;
using qf::test::FakeRiotApi;

int main(int argc, char** argv) {
    try {
        const BenchArgs args(argc, argv, {"games"}, "bench_riot_store [--games 1000]");
        const int games = args.integer("games", 1000);
        FakeRiotApi fake(QFS_FIXTURES_DIR, {{1'000'000, 1}});
        fake.setMatchHistory(FakeRiotApi::fixtureAccountPuuid(), games);
        TempFolder folder("quillfern-riot-store");
        auto database = Database::open({(folder.path() / "archive.sqlite").string(), 4});
        const ChampionCatalog champions = ChampionCatalog::shipped();
        IngestService ingest(*database, champions);
        RiotApiConfig config;
        config.apiKey = "bench-store-key";
        config.baseOverride = fake.baseUrl();
        const RiotClient riot(config);

        // A user with the fixture account linked: every game is theirs, so every game is scored.
        database->write([&](Repository& r) {
            User user;
            user.email = user.emailKey = "bench@example.org";
            r.insertUser(user);
            RiotAccount account;
            account.userId = user.id;
            account.puuid = FakeRiotApi::fixtureAccountPuuid();
            account.platform = "na1";
            account.region = "americas";
            r.insertAccount(account);
            r.requestBackfill(account.id, account.puuid, account.platform, 0);
        });

        BackfillWorker worker(*database, ingest, riot, [] { return int64_t(1'760'000'000'000); });
        const auto start = std::chrono::steady_clock::now();
        while (worker.runOnce()) {
        }
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const size_t stored =
            database->read([](Repository& r) { return r.changedGamesOfUser(1, 0, 1'000'000).size(); });
        std::printf("Backfill into SQLite, no binding limit: %zu games stored in %.2f s: %.0f games/s "
                    "(target >= 200)\n",
                    stored, seconds, double(stored) / seconds);
        return stored == size_t(games) ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << "bench_riot_store: " << e.what() << std::endl;
        return 1;
    }
}
