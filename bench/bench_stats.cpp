// The three statistics every archive screen recomputes on each redraw, over a 20,000-game
// synthetic archive in a store (200,000 participant rows). Target: each under 8 ms, half a
// 60 Hz frame, on this 2-core machine in a Release build.
//
//   bench_stats [--games=N] [Google Benchmark options, e.g. --benchmark_repetitions=5]

#include "archive/archive_store.h"
#include "bench/synthetic_archive.h"
#include "game_data/stats.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <memory>

namespace {

// What a screen holds when it computes: the store's query results, newest game first.
struct Inputs {
    QTemporaryDir dir;
    std::unique_ptr<ArchiveStore> store;
    std::vector<const LocalMatch*> matches;
    std::vector<const LocalParticipant*> participants;
    std::vector<const LocalParticipant*> ownRows;
    QSet<QString> owners;
    QSet<QString> friendNames;
};

int gamesWanted = 20'000;

Inputs& inputs() {
    static Inputs* prepared = [] {
        auto* in = new Inputs;
        const QString path = in->dir.filePath(QStringLiteral("archive.sqlite"));
        // The archive is written by a child process, so that this one reads it into a fresh heap
        // and holds it as the app does after a start, not scattered over the generator's leavings.
        const int written =
            QProcess::execute(QCoreApplication::applicationFilePath(), {QStringLiteral("--write-archive=") + path,
                                                                        QStringLiteral("--games=%1").arg(gamesWanted)});
        if (written != 0)
            qFatal("Could not write the synthetic archive");
        {
            SyntheticArchiveOptions options;
            options.games = 0; // the owner and friends are the same whatever the size
            const SyntheticArchive names(options);
            in->owners = names.ownerPuuids();
            in->friendNames = names.friendGameNames();
        }
        // Read back from the file, as the app holds its archive after a start.
        in->store = std::make_unique<ArchiveStore>(path);
        in->matches = in->store->matches().all();
        std::stable_sort(in->matches.begin(), in->matches.end(), [](const LocalMatch* a, const LocalMatch* b) {
            return a->gameCreation.value_or(QDateTime()) > b->gameCreation.value_or(QDateTime());
        });
        in->participants = in->store->participants().all();
        for (const LocalParticipant* row : in->participants)
            if (in->owners.contains(row->puuid))
                in->ownRows.push_back(row);
        return in;
    }();
    return *prepared;
}

void statsGames(benchmark::State& state) {
    Inputs& in = inputs();
    for (auto _ : state) {
        auto games = Stats::games(in.matches, in.participants, in.owners, in.friendNames);
        benchmark::DoNotOptimize(games.data());
    }
    state.counters["games"] = static_cast<double>(in.matches.size());
    state.counters["rows"] = static_cast<double>(in.participants.size());
}

void statsChampions(benchmark::State& state) {
    Inputs& in = inputs();
    for (auto _ : state) {
        auto champions = Stats::champions(in.ownRows);
        benchmark::DoNotOptimize(champions.data());
    }
    state.counters["rows"] = static_cast<double>(in.ownRows.size());
}

// The same over every stored row, far more than any screen passes: a bound, not a target.
void statsChampionsAllRows(benchmark::State& state) {
    Inputs& in = inputs();
    for (auto _ : state) {
        auto champions = Stats::champions(in.participants);
        benchmark::DoNotOptimize(champions.data());
    }
    state.counters["rows"] = static_cast<double>(in.participants.size());
}

void statsTimeline(benchmark::State& state) {
    Inputs& in = inputs();
    for (auto _ : state) {
        auto timeline = Stats::timeline(in.matches, in.participants, in.owners);
        benchmark::DoNotOptimize(timeline.data());
    }
    state.counters["games"] = static_cast<double>(in.matches.size());
    state.counters["rows"] = static_cast<double>(in.participants.size());
}

// A start: the whole archive read from its file into memory.
void openArchive(benchmark::State& state) {
    Inputs& in = inputs();
    const QString path = in.dir.filePath(QStringLiteral("archive.sqlite"));
    for (auto _ : state) {
        state.PauseTiming();
        in.store.reset(); // one process holds the file at a time
        state.ResumeTiming();
        in.store = std::make_unique<ArchiveStore>(path);
    }
    // The other benchmarks keep reading the rows they were given.
    in.participants = in.store->participants().all();
    in.matches = in.store->matches().all();
    std::stable_sort(in.matches.begin(), in.matches.end(), [](const LocalMatch* a, const LocalMatch* b) {
        return a->gameCreation.value_or(QDateTime()) > b->gameCreation.value_or(QDateTime());
    });
    in.ownRows.clear();
    for (const LocalParticipant* row : in.participants)
        if (in.owners.contains(row->puuid))
            in.ownRows.push_back(row);
    state.counters["rows"] = static_cast<double>(in.store->participants().count() + in.store->matches().count());
    // Where the archive's memory goes: the shared texts, and what malloc holds in all.
    state.counters["texts"] = static_cast<double>(SharedText::distinctCount());
    state.counters["text MB"] = static_cast<double>(SharedText::heldBytes()) / 1e6;
    state.counters["heap MB"] = static_cast<double>(mallinfo2().uordblks) / 1e6;
}

// A start as the app has it: the archive read by a process that holds no texts yet (the
// benchmark above reopens it in a process that already holds every one of them). Each run is
// a child process that reports how long its open took.
void openArchiveFresh(benchmark::State& state) {
    Inputs& in = inputs();
    const QString path = in.dir.filePath(QStringLiteral("archive.sqlite"));
    in.store.reset();
    for (auto _ : state) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--time-open=") + path});
        if (!child.waitForFinished(60'000) || child.exitCode() != 0) {
            state.SkipWithError("the child could not open the archive");
            break;
        }
        state.SetIterationTime(child.readAllStandardOutput().trimmed().toDouble());
    }
    in.store = std::make_unique<ArchiveStore>(path);
}

} // namespace

// The machine is shared: each benchmark runs several times and the best run is the one that
// says what the code costs (the mean and median show what the neighbours cost).
double best(const std::vector<double>& runs) {
    return *std::min_element(runs.begin(), runs.end());
}

void configure(benchmark::internal::Benchmark* b) {
    b->Unit(benchmark::kMillisecond)->Repetitions(7)->ComputeStatistics("min", best);
}

BENCHMARK(statsGames)->Name("Stats.games")->Apply(configure);
BENCHMARK(statsChampions)->Name("Stats.champions")->Apply(configure);
BENCHMARK(statsChampionsAllRows)->Name("Stats.champions (all 200k rows)")->Apply(configure);
BENCHMARK(statsTimeline)->Name("Stats.timeline")->Apply(configure);
BENCHMARK(openArchive)
    ->Name("open the archive")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3)
    ->ComputeStatistics("min", best);
BENCHMARK(openArchiveFresh)
    ->Name("open the archive (fresh process)")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1)
    ->Repetitions(5)
    ->ComputeStatistics("min", best);

int main(int argc, char** argv) {
    // Our own options first; Google Benchmark rejects what it does not know.
    int kept = 1;
    const char* writeTo = nullptr;
    const char* timeOpen = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--games=", 8) == 0)
            gamesWanted = std::max(0, std::atoi(argv[i] + 8));
        else if (std::strncmp(argv[i], "--write-archive=", 16) == 0)
            writeTo = argv[i] + 16;
        else if (std::strncmp(argv[i], "--time-open=", 12) == 0)
            timeOpen = argv[i] + 12;
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    QCoreApplication app(argc, argv);
    if (writeTo) {
        SyntheticArchiveOptions options;
        options.games = gamesWanted;
        ArchiveStore store(QString::fromLocal8Bit(writeTo));
        SyntheticArchive(options).fill(store);
        return 0;
    }
    if (timeOpen) {
        QElapsedTimer clock;
        clock.start();
        const ArchiveStore store(QString::fromLocal8Bit(timeOpen));
        std::printf("%.6f\n", static_cast<double>(clock.nsecsElapsed()) / 1e9);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    inputs(); // built before the clock starts
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
