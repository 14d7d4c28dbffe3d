// Times what a screen costs to build over a 20,000-game archive: the three statistics and every
// archive screen's view model from scratch, plus re-filtering the match history.
//   bench_views [GAMES]
// Targets on a 2-core machine: each statistic under 8 ms, each screen under 16 ms (one frame).

#include "archive/archive_store.h"
#include "game_data/stats.h"
#include "screens/archive_inputs.h"
#include "screens/champions_model.h"
#include "screens/history_model.h"
#include "screens/match_detail_model.h"
#include "screens/overview_model.h"
#include "screens/rank_model.h"
#include "session/app_state.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "synthetic_archive.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QSettings>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int rounds = 15;

// The median of several runs, in milliseconds.
double medianMs(const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

bool report(const char* name, double ms, double target) {
    const bool ok = ms < target;
    std::printf("%-34s %8.2f ms   (target < %4.0f ms)  %s\n", name, ms, target, ok ? "ok" : "MISSED");
    return ok;
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    SyntheticArchiveOptions options;
    options.games = argc > 1 ? QByteArray(argv[1]).toInt() : 20'000;
    const SyntheticArchive archive(options);

    QTemporaryDir dir;
    ArchiveStore store(dir.filePath("archive.sqlite"));
    archive.fill(store);

    FakeBackend backend;
    QJsonArray accounts;
    for (const RiotAccountDto& a : archive.ownerAccounts())
        accounts.append(QJsonObject{{"id", a.id}, {"puuid", a.puuid}, {"platform", a.platform}, {"region", a.region}});
    backend.on("GET", "/api/riot-accounts", FakeResponse::json({{"riot_accounts", accounts}}));
    QSettings settings(dir.filePath("settings.ini"), QSettings::IniFormat);
    settings.setValue("backendBaseURL", backend.baseUrl().toString());
    QNetworkAccessManager network;
    AppState state(settings, network);
    state.bootstrap(&store);
    state.client().setAuthToken(QStringLiteral("bench"));
    runTask(state.refreshAccounts());

    std::printf("archive: %lld games, %lld participants\n", static_cast<long long>(store.matches().count()),
                static_cast<long long>(store.participants().count()));

    const QSet<QString> owners = archive.ownerPuuids();
    const auto matches = ArchiveInputs::matchesNewestFirst(store);
    const auto participants = store.participants().all();
    std::vector<const LocalParticipant*> mine;
    for (const LocalParticipant* row : participants)
        if (owners.contains(row->puuid))
            mine.push_back(row);

    // For a profiler: QF_PROFILE_OVERVIEW=1 builds the overview 300 times and stops, so that its
    // share of the samples stands out from the archive's generation.
    if (qEnvironmentVariableIsSet("QF_PROFILE_OVERVIEW")) {
        for (int i = 0; i < 300; ++i) {
            OverviewModel model;
            model.setAppState(&state);
        }
        return 0;
    }
    bool ok = true;
    ok &= report("Stats.games",
                 medianMs([&] { (void)Stats::games(matches, participants, owners, archive.friendGameNames()); }), 8);
    ok &= report("Stats.champions", medianMs([&] { (void)Stats::champions(mine); }), 8);
    ok &= report("Stats.timeline", medianMs([&] { (void)Stats::timeline(matches, participants, owners); }), 8);

    ok &= report("history screen", medianMs([&] {
                     HistoryModel model;
                     model.setAppState(&state);
                 }),
                 16);
    HistoryModel history;
    history.setAppState(&state);
    int filter = 0;
    ok &= report("history re-filter", medianMs([&] {
                     history.setFilter(HistoryModel::filterOf(GameCategories::all[static_cast<std::size_t>(filter)]));
                     filter = (filter + 1) % 6;
                 }),
                 16);
    const qint64 newest = history.rows()->games().front().id();
    ok &= report("match detail", medianMs([&] {
                     MatchDetailModel model;
                     model.setAppState(&state);
                     model.setMatchServerId(newest);
                 }),
                 16);
    ok &= report("overview screen", medianMs([&] {
                     OverviewModel model;
                     model.setAppState(&state);
                 }),
                 16);
    ok &= report("champion pool screen", medianMs([&] {
                     ChampionsModel model;
                     model.setAppState(&state);
                 }),
                 16);
    ChampionsModel pool;
    pool.setAppState(&state);
    int sort = 0;
    ok &= report("champion pool re-sort", medianMs([&] {
                     sort = (sort + 1) % 3;
                     pool.setSort(static_cast<ChampionsModel::Sort>(sort));
                 }),
                 16);
    ok &= report("rank screen", medianMs([&] {
                     RankModel model;
                     model.setAppState(&state);
                 }),
                 16);
    return ok ? 0 : 1;
}
