// Scale-out check: two quillfern-server processes on one PostgreSQL database, behind nginx
// balancing round-robin, serve one user whose pages therefore come from both processes in
// turn. The archive mirrored that way must be the very one mirrored from a single process:
// the same matches, participant rows and performance scores, field by field. Prints the
// verdict; exits 1 on any difference (or when the pages did not alternate), 2 on bad options.
//
// Run by hand (never in CI):
//   cmake -S . -B build-server-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=ON
//   ninja -C build-server-bench quillfern-server scale_out_check
//   build-server-bench/bin/scale_out_check [--users 20] [--games 3000] [--threads 4]
// Needs nginx and PostgreSQL 15 (server/tests/pg_cluster starts a throw-away cluster).

#include "bench_archive.h"
#include "bench_args.h"
#include "mirror_archive.h"
#include "nginx_server.h"
#include "pg_cluster.h"
#include "server_process.h"
#include "sync_load_client.h"
#include "temp_folder.h"

#include "api/server_api.h"

#include <cstdio>
#include <iostream>
#include <set>

using namespace qf;
using namespace qf::bench;

namespace {

struct Mirrored {
    MirrorArchive archive;
    std::vector<std::string> servedBy; // X-Upstream of each page, through nginx
};

Mirrored mirror(const BenchUser& user, uint16_t port, const char* what) {
    LoadOptions options;
    options.port = port;
    options.keepBodies = true;
    options.recordHeader = "X-Upstream";
    options.deadline = std::chrono::seconds(300);
    const LoadResult result = SyncLoadClient::run({{0, user.token}}, options);
    if (result.failedUsers > 0)
        throw std::runtime_error(std::string("mirroring ") + what + " failed: " + result.firstError);
    Mirrored out;
    for (const PageRecord& page : result.pages) {
        out.archive.apply(page.body);
        out.servedBy.push_back(page.header);
    }
    std::printf("%-28s %zu pages: %zu matches, %zu participants, %zu scores\n", what, result.pages.size(),
                out.archive.matches(), out.archive.participants(), out.archive.scores());
    return out;
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // progress lines show while it runs
    BenchArchiveShape shape;
    shape.users = 20;
    shape.games = 3000;
    int threads = 4;
    try {
        const BenchArgs args(argc, argv, {"users", "games", "threads"},
                             "usage: scale_out_check [--users 20] [--games 3000] [--threads 4]");
        shape.users = args.integer("users", shape.users);
        shape.games = args.integer("games", shape.games);
        threads = args.integer("threads", threads);
    } catch (const std::invalid_argument& e) {
        std::cerr << e.what() << "\n";
        return 2;
    }

    try {
        const TempFolder scratch("qfs-scale-out");
        std::cout << "Starting a throw-away PostgreSQL cluster..." << std::endl;
        const PgCluster cluster(scratch.path() / "pg");
        BenchArchive built;
        {
            auto database = Database::open({cluster.uri(), 1});
            built = buildBenchArchive(*database, shape, unixNowMs());
        }
        std::printf("Archive: %lld games; the user mirrored has %lld\n", static_cast<long long>(built.games),
                    static_cast<long long>(built.gamesPerUser));

        ServerLaunch launch;
        launch.binary = defaultServerBinary();
        launch.database = cluster.uri();
        launch.threads = threads;
        launch.dataDir = scratch.sub("data-a");
        launch.logFile = scratch.path() / "server-a.log";
        const ServerProcess a(launch);
        launch.dataDir = scratch.sub("data-b");
        launch.logFile = scratch.path() / "server-b.log";
        const ServerProcess b(launch);
        const auto nginx = NginxServer::balance(scratch.path() / "nginx", {a.port(), b.port()});
        std::printf("Processes on ports %u and %u, nginx on %u\n", unsigned(a.port()), unsigned(b.port()),
                    unsigned(nginx->port()));

        const BenchUser& user = built.users.front();
        const Mirrored balanced = mirror(user, nginx->port(), "through nginx (both):");
        const Mirrored onlyA = mirror(user, a.port(), "from process A alone:");
        const Mirrored onlyB = mirror(user, b.port(), "from process B alone:");

        bool ok = true;
        std::string order;
        for (const std::string& s : balanced.servedBy)
            order += (s == "127.0.0.1:" + std::to_string(a.port())   ? "A"
                      : s == "127.0.0.1:" + std::to_string(b.port()) ? "B"
                                                                     : "?");
        std::printf("Pages through nginx were served by: %s\n", order.c_str());
        bool alternated = order.size() >= 2 && order.find('?') == std::string::npos;
        for (size_t i = 1; i < order.size(); ++i)
            alternated = alternated && order[i] != order[i - 1];
        if (!alternated) {
            std::printf("FAIL: consecutive pages did not alternate between the two processes\n");
            ok = false;
        }
        if (int64_t(onlyA.archive.matches()) != built.gamesPerUser ||
            int64_t(onlyA.archive.scores()) != built.gamesPerUser ||
            int64_t(onlyA.archive.participants()) != built.gamesPerUser * shape.playersPerGame) {
            std::printf("FAIL: the single-process mirror is not the user's whole archive\n");
            ok = false;
        }
        for (const auto& [name, other] : {std::pair{"process A", &onlyA}, std::pair{"process B", &onlyB}}) {
            const std::string difference = balanced.archive.differenceFrom(other->archive);
            if (difference.empty()) {
                std::printf("Mirror through nginx = mirror from %s: identical\n", name);
            } else {
                std::printf("FAIL: mirror through nginx differs from %s: %s\n", name, difference.c_str());
                ok = false;
            }
        }
        std::printf("%s\n", ok ? "PASS: two processes behind nginx serve the same archive as one"
                               : "FAIL: scale-out check failed");
        return ok ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << "scale_out_check: " << e.what() << "\n";
        return 1;
    }
}
