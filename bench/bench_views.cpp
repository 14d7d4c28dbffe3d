// Times what a screen costs to build over a 20,000-game archive: the three statistics and every
// archive screen's view model from scratch, plus re-filtering the match history; and what the
// screens that fetch for themselves cost to lay out: a friend record of 2,000 games together
// (built, and switched to another season) and a 60-minute timeline with 400 events.
//   bench_views [GAMES]
// Targets on a 2-core machine: each statistic under 8 ms, each archive screen under 16 ms (one
// frame), the friend record and the timeline under 4 ms.

#include "archive/archive_store.h"
#include "game_data/stats.h"
#include "screens/archive_inputs.h"
#include "screens/champions_model.h"
#include "screens/friend_game_list_model.h"
#include "screens/friend_record_view.h"
#include "screens/history_model.h"
#include "screens/match_detail_model.h"
#include "screens/overview_model.h"
#include "screens/rank_model.h"
#include "screens/timeline_event_list_model.h"
#include "screens/timeline_view_state.h"
#include "session/app_state.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "synthetic_archive.h"

#include <QCoreApplication>
#include <QDateTime>
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

// 2,000 games together over three seasons, in every kind of queue, newest first.
FriendStatsDto friendRecord() {
    static const qint64 queues[] = {420, 440, 450, 1700, 400, 900, 430, 2400};
    static const char* const modes[] = {"CLASSIC", "CLASSIC", "ARAM", "CHERRY", "CLASSIC", "URF", "CLASSIC", "KIWI"};
    FriendStatsDto record;
    record.friendPuuid = QStringLiteral("friend");
    record.friendName = QStringLiteral("Bard Main");
    record.friendTag = QStringLiteral("EUW");
    for (int i = 0; i < 2000; ++i) {
        FriendStatsDto::Game game;
        game.matchId = 100000 - i;
        game.season = 15 - i / 700;
        game.queueId = queues[i % 8];
        game.gameMode = QString::fromLatin1(modes[i % 8]);
        game.playedAt = QDateTime(QDate(2025, 12, 31), QTime(20, 0), Qt::UTC).addSecs(-i * 14400).toString(Qt::ISODate);
        game.win = (i * 7) % 11 < 6;
        game.ownerChampion = QStringLiteral("Ahri");
        game.friendChampion = QStringLiteral("Bard");
        record.games.append(game);
        record.total.wins += game.win ? 1 : 0;
    }
    record.total.games = 2000;
    record.total.losses = 2000 - record.total.wins;
    record.total.winrate = record.total.wins / 2000.0;
    return record;
}

// A 60-minute game's timeline: a frame a minute and 400 events of every kind.
TimelineSummaryDto longTimeline() {
    TimelineSummaryDto summary;
    for (qint64 t = 0; t <= 60; ++t) {
        TimelineSummaryDto::Frame frame;
        frame.t = t;
        frame.goldDiff = (t * 397) % 5000 - 2500;
        summary.frames.append(frame);
    }
    static const char* const kinds[] = {"kill", "kill", "kill", "monster", "building", "ward"};
    static const char* const monsters[] = {"DRAGON", "BARON_NASHOR", "RIFTHERALD", "HORDE"};
    for (int i = 0; i < 400; ++i) {
        TimelineSummaryDto::Event event;
        event.kind = QString::fromLatin1(kinds[i % 6]);
        event.t = i * 9;
        event.mine = i % 3 != 0;
        event.killer = QStringLiteral("Ahri");
        event.victim = QStringLiteral("Zed");
        event.monster = QString::fromLatin1(monsters[i % 4]);
        event.subtype = QStringLiteral("HEXTECH_DRAGON");
        event.building = QStringLiteral("INHIBITOR_BUILDING");
        event.lane = QStringLiteral("BOT_LANE");
        summary.events.append(event);
    }
    summary.stats.goldDiffAt10 = 1260;
    summary.stats.firstBlood = TimelineSummaryDto::FirstBlood{185, true, QStringLiteral("Ahri"), QStringLiteral("Zed")};
    return summary;
}

// The texts of every role of every row, as a list shows them.
void readRows(const QAbstractItemModel& model) {
    const QList<int> roles = model.roleNames().keys();
    for (int row = 0; row < model.rowCount(); ++row)
        for (int role : roles)
            (void)model.index(row, 0).data(role);
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

    const FriendStatsDto record = friendRecord();
    FriendGameListModel friendGames;
    ok &= report("friend record (2,000 games)", medianMs([&] {
                     const FriendRecordView view = FriendRecordView::of(record, QString(), std::nullopt, false, false);
                     friendGames.setGames(view.rows);
                     readRows(friendGames);
                 }),
                 4);
    qint64 season = 13;
    ok &= report("friend record, season switch", medianMs([&] {
                     season = season == 13 ? 14 : 13;
                     const FriendRecordView view = FriendRecordView::of(record, QString(), season, false, false);
                     friendGames.setGames(view.rows);
                     readRows(friendGames);
                 }),
                 4);
    friendGames.setGames({});

    const TimelineSummaryDto summary = longTimeline();
    TimelineEventListModel events;
    ok &= report("timeline (60 min, 400 events)", medianMs([&] {
                     TimelineViewState view = TimelineViewState::of(summary);
                     events.setRows(std::move(view.events));
                 }),
                 4);
    return ok ? 0 : 1;
}
