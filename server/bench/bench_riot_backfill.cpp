// Backfill under a personal key's rate limits: 1,000 match-v5 games (and the ten pages of ids
// that list them) fetched through the Riot client's limiter from the fake Riot API on loopback,
// against the time the limits themselves allow for that many requests.
//
// A personal key allows 20 requests per second and 100 per two minutes, so 1,000 games take 18
// minutes whatever the client does. The fake announces the long window shortened (--long-window
// seconds, 12 by default: a tenth) and the client learns it from the answers' headers as it
// would Riot's, so the run takes two minutes and measures the same thing: how close the client
// comes to the limit without ever being refused. --long-window 120 runs the real thing.
// --unlimited lets the fake announce a production-sized limit, to see the client's own rate.
//
// Run by hand, on an optimised build (never in CI):
//   cmake -S . -B build-riot-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_TESTS=OFF -DQF_BUILD_BENCH=ON
//   ninja -C build-riot-bench bench_riot_backfill
//   build-riot-bench/bin/bench_riot_backfill [--games 1000] [--long-window 12] [--threads 2] [--unlimited yes]

#include "bench_args.h"
#include "fake_riot_api.h"

#include "riot/riot_client.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <thread>

using namespace qf;
using namespace qf::bench;
using qf::test::FakeRiotApi;
using qf::test::FakeWindow;

namespace {

using Clock = std::chrono::steady_clock;

// When the last of `requests` requests may be sent at the earliest, sending each as soon as
// every window allows: request i waits for request i - count of each window to be a window old.
double earliestLastSend(const std::vector<FakeWindow>& windows, int requests) {
    std::vector<double> sendAt(size_t(requests), 0.0);
    for (int i = 0; i < requests; ++i)
        for (const FakeWindow& window : windows)
            if (i >= window.count)
                sendAt[size_t(i)] = std::max(sendAt[size_t(i)], sendAt[size_t(i - window.count)] + window.seconds);
    return requests > 0 ? sendAt.back() : 0.0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const BenchArgs args(argc, argv, {"games", "long-window", "threads", "unlimited"},
                             "bench_riot_backfill [--games 1000] [--long-window 12] [--threads 2] [--unlimited yes]");
        const int games = std::max(1, args.integer("games", 1000));
        const int longWindow = std::max(1, args.integer("long-window", 12));
        const int threads = std::max(1, args.integer("threads", 2));
        const bool unlimited = args.text("unlimited", "no") == "yes";
        const std::vector<FakeWindow> limits =
            unlimited ? std::vector<FakeWindow>{{1000000, 1}} : std::vector<FakeWindow>{{20, 1}, {100, longWindow}};

        FakeRiotApi fake(QFS_FIXTURES_DIR, limits);
        const std::string puuid = "bench-player";
        fake.setMatchHistory(puuid, games);
        RiotApiConfig config;
        config.apiKey = "RGAPI-bench";
        config.baseOverride = fake.baseUrl();
        const RiotClient client(config);

        const Clock::time_point start = Clock::now();
        // The ids first, a page of 100 at a time and newest first, as a backfill pages them.
        std::vector<std::string> ids;
        for (int page = 0; int(ids.size()) < games; ++page) {
            const auto answer = client.matchIdsByPuuid(puuid, "euw1", page * 100, 100, RiotPriority::Background);
            if (!answer.ok() || answer.value.empty()) {
                std::cerr << "match ids: " << answer.text << "\n";
                return 1;
            }
            ids.insert(ids.end(), answer.value.begin(), answer.value.end());
        }
        const int idPages = fake.requestCount();

        std::atomic<size_t> next{0};
        std::atomic<int> failed{0};
        std::atomic<size_t> bytes{0};
        std::vector<std::thread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([&] {
                for (size_t i = next++; i < ids.size(); i = next++) {
                    const auto match = client.matchJson(ids[i], RiotPriority::Background);
                    if (match.ok())
                        bytes += match.value.size();
                    else
                        ++failed;
                }
            });
        for (auto& worker : workers)
            worker.join();
        const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();

        const int requests = fake.requestCount();
        const double allowed = earliestLastSend(limits, requests);
        if (unlimited)
            std::printf("limits: 1,000,000 per 1 s (none that bind)\n");
        else
            std::printf("limits: 20 per 1 s and 100 per %d s (a personal key's%s)\n", longWindow,
                        longWindow == 120 ? "" : ", long window scaled");
        std::printf("requests: %d (%d pages of ids, %zu games, %.1f MB), failed %d, refused with 429 by the fake %d\n",
                    requests, idPages, ids.size(), double(bytes) / 1e6, failed.load(), fake.limitRefusals());
        std::printf("time: %.2f s; the limits allow the last request at %.2f s at the earliest\n", elapsed, allowed);
        if (unlimited)
            std::printf("rate: %.0f games per second\n", double(ids.size()) / elapsed);
        else
            std::printf("ratio: %.4f (target <= 1.05); at a personal key's real windows this run is %.1f min\n",
                        elapsed / allowed, earliestLastSend({{20, 1}, {100, 120}}, requests) / 60.0);
        return failed == 0 && fake.limitRefusals() == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 2;
    }
}
