// Ingest: League client games stored through IngestService in batches of 100, the way the app
// uploads them, against the raw rate of the same rows (matches and participants) written with
// plain prepared INSERTs (sqlite3, libpq) in one transaction a batch into the same schema.
//
// The games are the client's match-v4 shape with every member a real one carries; one player,
// the uploader (a user with that Riot account linked), is in every game, so every game is also
// scored (--linked no leaves it unlinked: nothing is scored). The ingest clock covers what a request costs past HTTP:
// parsing the body, reading the games, comparing with what is stored, writing, scoring. The raw clock covers only the
// INSERTs of rows read beforehand.
//
// Run by hand, on an optimised build (never in CI):
//   cmake -S . -B build-server-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=ON
//   ninja -C build-server-bench bench_ingest
//   build-server-bench/bin/bench_ingest [--engines sqlite,postgres] [--batches 30] [--batch-size 100]
//       [--linked yes|no]
// Needs PostgreSQL 15 for the second engine (server/tests/pg_cluster starts a throw-away cluster).

#include "bench_args.h"
#include "bench_random.h"
#include "client_game_maker.h"
#include "pg_cluster.h"
#include "raw_inserter.h"
#include "temp_folder.h"

#include "api/server_api.h"
#include "archive/ingest_service.h"
#include "archive/lcu_game_reader.h"
#include "json/json_input.h"

#include <chrono>
#include <cstdio>
#include <iostream>
#include <optional>

using namespace qf;
using namespace qf::bench;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Rate {
    int64_t games = 0;
    int64_t rows = 0;
    double seconds = 0;
    [[nodiscard]] double gamesPerSecond() const { return seconds > 0 ? double(games) / seconds : 0; }
    [[nodiscard]] double rowsPerSecond() const { return seconds > 0 ? double(rows) / seconds : 0; }
};

struct EngineFigures {
    std::string name;
    Rate ingest;
    double parseSeconds = 0; // the part of ingest.seconds spent parsing the bodies
    int64_t scores = 0;
    Rate raw;
};

// The uploader: a user with the Riot account that is in every game. Its user id.
int64_t addUploader(Database& database, const std::string& puuid, int64_t now) {
    return database.write([&](Repository& repository) {
        User user;
        user.email = "uploader@example.invalid";
        user.emailKey = user.email;
        user.createdAt = now;
        repository.insertUser(user);
        RiotAccount account;
        account.userId = user.id;
        account.puuid = puuid;
        account.platform = "euw1";
        account.region = "europe";
        account.isOwner = true;
        account.linkedAt = now;
        repository.insertAccount(account);
        return user.id;
    });
}

EngineFigures runEngine(const std::string& engine, const std::vector<std::string>& bodies, const std::string& uploader,
                        bool linked, const TempFolder& scratch) {
    EngineFigures figures;
    figures.name = engine == "postgres" ? "PostgreSQL" : "SQLite";
    std::optional<PgCluster> cluster;
    std::string ingestAddress;
    std::string rawAddress;
    if (engine == "postgres") {
        std::cout << "Starting a throw-away PostgreSQL cluster..." << std::endl;
        cluster.emplace(scratch.path() / "pg");
        ingestAddress = cluster->createDatabase("qf_ingest");
        rawAddress = cluster->createDatabase("qf_raw");
    } else {
        ingestAddress = (scratch.sub("sqlite") / "ingest.sqlite").string();
        rawAddress = (scratch.sub("sqlite") / "raw.sqlite").string();
    }
    const ChampionCatalog& champions = ChampionCatalog::shipped();
    const int64_t now = unixNowMs();

    {
        auto database = Database::open({ingestAddress, 1});
        const int64_t user = linked ? addUploader(*database, uploader, now) : 0;
        IngestService ingest(*database, champions);
        for (const std::string& body : bodies) {
            const Clock::time_point start = Clock::now();
            const json::Document document(body);
            const std::optional<json::Element> games = json::member(document.root(), "games");
            figures.parseSeconds += secondsSince(start);
            const IngestOutcome outcome = ingest.ingest(*games, now);
            figures.ingest.seconds += secondsSince(start);
            figures.ingest.games += outcome.ingested;
        }
        figures.scores = database->read(
            [&](Repository& repository) { return int64_t(repository.changedScoresOfUser(user, 0, 1'000'000).size()); });
    }

    // The same rows, read outside the clock, for the raw INSERTs.
    std::vector<std::vector<GameRecord>> batches;
    for (const std::string& body : bodies) {
        const json::Document document(body);
        simdjson::dom::array games;
        if (json::member(document.root(), "games")->get(games) != simdjson::SUCCESS)
            throw std::runtime_error("an upload without its games");
        std::vector<GameRecord>& batch = batches.emplace_back();
        for (const json::Element game : games)
            if (std::optional<ClientGame> read = readClientGame(game, champions)) {
                read->game.match.updatedAt = now;
                figures.ingest.rows += 1 + int64_t(read->game.participants.size());
                batch.push_back(std::move(read->game));
            }
    }
    Database::open({rawAddress, 1}); // the server's schema, then closed
    auto raw = RawInserter::open(rawAddress);
    for (const std::vector<GameRecord>& batch : batches) {
        const Clock::time_point start = Clock::now();
        raw->insertBatch(batch);
        figures.raw.seconds += secondsSince(start);
        figures.raw.games += int64_t(batch.size());
        for (const GameRecord& game : batch)
            figures.raw.rows += 1 + int64_t(game.participants.size());
    }
    return figures;
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // progress lines show while it runs
    std::vector<std::string> engines;
    int batches = 30;
    int batchSize = 100;
    bool linked = true;
    try {
        const BenchArgs args(argc, argv, {"engines", "batches", "batch-size", "linked"},
                             "usage: bench_ingest [--engines sqlite,postgres] [--batches 30] [--batch-size 100] "
                             "[--linked yes|no]");
        engines = args.list("engines", "sqlite,postgres");
        batches = args.integer("batches", batches);
        batchSize = args.integer("batch-size", batchSize);
        const std::string linkedText = args.text("linked", "yes");
        if (linkedText != "yes" && linkedText != "no")
            throw std::invalid_argument("--linked is yes or no");
        linked = linkedText == "yes";
        for (const std::string& e : engines)
            if (e != "sqlite" && e != "postgres")
                throw std::invalid_argument("unknown engine " + e + " (sqlite, postgres)");
    } catch (const std::invalid_argument& e) {
        std::cerr << e.what() << "\n";
        return 2;
    }

    // The uploads, made once and sent to every engine alike.
    BenchRandom random(7);
    const std::string uploader = ClientGameMaker::uuidPuuid(random);
    ClientGameMaker maker(11, uploader);
    std::vector<std::string> bodies;
    size_t bytes = 0;
    const int64_t firstCreation = unixNowMs() - int64_t(batches) * batchSize * 120'000;
    for (int b = 0; b < batches; ++b) {
        bodies.push_back(maker.batch(7'100'000'000LL + int64_t(b) * batchSize, batchSize,
                                     firstCreation + int64_t(b) * batchSize * 120'000));
        bytes += bodies.back().size();
    }
    std::printf("%d uploads of %d client games, %.1f KB a game; the uploader's account is %s\n", batches, batchSize,
                double(bytes) / 1024.0 / double(batches * batchSize),
                linked ? "linked, so every game is also scored" : "not linked: nothing is scored");

    std::vector<EngineFigures> results;
    try {
        const TempFolder scratch("qfs-bench-ingest");
        for (const std::string& engine : engines)
            results.push_back(runEngine(engine, bodies, uploader, linked, scratch));
    } catch (const std::exception& e) {
        std::cerr << "bench_ingest: " << e.what() << "\n";
        return 1;
    }

    bool ok = true;
    std::printf("\n%-12s %-28s %8s %9s %8s %10s %12s\n", "", "", "games", "rows", "s", "games/s", "rows/s");
    for (const EngineFigures& f : results) {
        std::printf("%-12s %-28s %8lld %9lld %8.2f %10.1f %12.0f\n", f.name.c_str(), "IngestService::ingest",
                    static_cast<long long>(f.ingest.games), static_cast<long long>(f.ingest.rows), f.ingest.seconds,
                    f.ingest.gamesPerSecond(), f.ingest.rowsPerSecond());
        std::printf("%-12s %-28s %8s %9s %8.2f\n", "", "  of which parsing the bodies", "", "", f.parseSeconds);
        std::printf("%-12s %-28s %8lld %9lld %8.2f %10.1f %12.0f\n", "", "raw prepared INSERTs",
                    static_cast<long long>(f.raw.games), static_cast<long long>(f.raw.rows), f.raw.seconds,
                    f.raw.gamesPerSecond(), f.raw.rowsPerSecond());
        const double ratio = f.raw.gamesPerSecond() > 0 ? f.ingest.gamesPerSecond() / f.raw.gamesPerSecond() : 0;
        std::printf("%-12s ingest/raw %.2f (target >= 0.33) %s; %lld games scored\n", "", ratio,
                    ratio >= 1.0 / 3 ? "met" : "MISSED", static_cast<long long>(f.scores));
        if (f.ingest.games != int64_t(batches) * batchSize || f.scores != (linked ? f.ingest.games : 0)) {
            std::printf("%-12s expected %d games stored and scored\n", "", batches * batchSize);
            ok = false;
        }
    }
    return ok ? 0 : 1;
}
