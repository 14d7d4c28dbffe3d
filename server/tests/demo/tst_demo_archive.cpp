// The demo archive: its games agree with themselves, it comes out the same every time, and
// installed on a fresh database of either engine it fills every screen the app has.

#include "archive/champion_catalog.h"
#include "archive/ingest_service.h"
#include "auth/password_hasher.h"
#include "demo/demo_archive.h"
#include "demo/demo_games.h"
#include "demo/demo_ranks.h"
#include "demo/demo_timeline.h"
#include "http/http_message.h"
#include "social/social_service.h"
#include "store/test_databases.h"
#include "json/json_input.h"

#include <QTest>

#include <algorithm>
#include <future>
#include <map>
#include <set>

using namespace qf;

namespace {

// 2026-11-23 09:10 UTC.
constexpr int64_t kNow = 1'795'444'200'000;
constexpr int64_t kDay = 86'400'000;

std::string allText(const std::vector<demo::Game>& games) {
    std::string text;
    for (const demo::Game& game : games) {
        json::Writer out;
        demo::writeClientGame(out, game);
        text += out.take();
        text += demo::timelineSummaryJson(game, "Ahri").value_or("-");
    }
    return text;
}

// The app's six categories, by its rule: the queue first, then the mode.
std::string categoryOf(const Match& m) {
    switch (m.queueId) {
    case 420:
    case 440:
        return "Ranked";
    case 700:
    case 720:
        return "Normal";
    case 900:
    case 2400:
        return "Mayhem";
    case 1700:
    case 1710:
        return "Arena";
    default:
        break;
    }
    if (m.gameMode == "ARAM")
        return "ARAM";
    if (m.gameMode == "URF" || m.gameMode == "KIWI")
        return "Mayhem";
    if (m.gameMode == "CHERRY")
        return "Arena";
    if (m.gameMode == "CLASSIC")
        return "Normal";
    return "Other";
}

std::string describe(const demo::Game& game) {
    return demo::riotMatchId(game) + " (queue " + std::to_string(game.queue->id) + ")";
}

int64_t integerAt(json::Element object, std::string_view key) {
    return json::integer(object, key, -1);
}

struct ChangeMarks {
    size_t rows = 0;
    int64_t newest = 0;
    bool operator==(const ChangeMarks&) const = default;
};

ChangeMarks changeMarksOf(Database& database, int64_t userId) {
    return database.read([&](Repository& r) {
        ChangeMarks marks;
        for (const Match& m : qf::test::matchesOnly(r.changedGamesOfUser(userId, 0, 100'000)))
            marks.newest = std::max(marks.newest, m.changeSeq);
        for (const RankSnapshot& s : r.changedSnapshotsOfUser(userId, 0, 100'000))
            marks.newest = std::max(marks.newest, s.changeSeq);
        for (const PerformanceScore& s : r.changedScoresOfUser(userId, 0, 100'000))
            marks.newest = std::max(marks.newest, s.changeSeq);
        marks.rows = qf::test::matchesOnly(r.changedGamesOfUser(userId, 0, 100'000)).size() +
                     r.changedSnapshotsOfUser(userId, 0, 100'000).size() +
                     r.changedScoresOfUser(userId, 0, 100'000).size();
        return marks;
    });
}

} // namespace

class TestDemoArchive : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sameGamesEveryTimeOnlyDatesMove();
    void gamesAgreeWithThemselves();
    void ladder_data();
    void ladder();
    void install_data() { qf::test::addEngineRows(); }
    void install();
    void serversStartingTogetherMakeOneDemo();

private:
    const ChampionCatalog m_champions = ChampionCatalog::shipped();
};

void TestDemoArchive::sameGamesEveryTimeOnlyDatesMove() {
    const std::vector<demo::Game> games = demo::generateGames(kNow);
    QVERIFY(allText(games) == allText(demo::generateGames(kNow)));

    const std::vector<demo::Game> later = demo::generateGames(kNow + 3 * kDay);
    QCOMPARE(later.size(), games.size());
    for (size_t i = 0; i < games.size(); ++i) {
        QCOMPARE(later[i].creation - games[i].creation, 3 * kDay);
        QCOMPARE(later[i].duration, games[i].duration);
        QCOMPARE(later[i].participants.size(), games[i].participants.size());
        for (size_t p = 0; p < games[i].participants.size(); ++p) {
            QCOMPARE(later[i].participants[p].person.puuid, games[i].participants[p].person.puuid);
            QCOMPARE(later[i].participants[p].championId, games[i].participants[p].championId);
            QCOMPARE(later[i].participants[p].kills, games[i].participants[p].kills);
        }
    }
}

void TestDemoArchive::gamesAgreeWithThemselves() {
    const std::vector<demo::Game> games = demo::generateGames(kNow);
    QVERIFY2(games.size() >= 300 && games.size() <= 400, std::to_string(games.size()).c_str());

    // Fourteen months or so, the newest a few hours old.
    const demo::Game& newest = games.back();
    const int64_t newestEnd = newest.creation + newest.duration * 1000;
    QVERIFY(newestEnd < kNow && newestEnd > kNow - 6 * 3'600'000);
    QVERIFY(games.front().creation < kNow - 365 * kDay && games.front().creation > kNow - 480 * kDay);

    std::set<int64_t> gameIds;
    for (size_t g = 0; g < games.size(); ++g) {
        const demo::Game& game = games[g];
        const std::string name = describe(game);
        QVERIFY2(gameIds.insert(game.gameId).second, name.c_str());
        if (g > 0)
            QVERIFY2(game.creation > games[g - 1].creation + games[g - 1].duration * 1000, name.c_str());

        std::set<std::string> puuids;
        std::set<int64_t> champions;
        std::map<int64_t, int64_t> kills, deaths, players;
        for (const demo::Participant& p : game.participants) {
            puuids.insert(p.person.puuid);
            champions.insert(p.championId);
            kills[p.teamId] += p.kills;
            deaths[p.teamId] += p.deaths;
            players[p.teamId] += 1;
            QVERIFY2(m_champions.nameOf(p.championId) != "", name.c_str());
            QCOMPARE(p.person.puuid.size(), size_t(36));
            QVERIFY2(p.gold >= game.startGold, name.c_str());
        }
        QVERIFY2(puuids.size() == game.participants.size(), name.c_str());
        QVERIFY2(champions.size() == game.participants.size(), name.c_str());

        const demo::Participant& owner = game.participants[static_cast<size_t>(game.owner)];
        const demo::Person& account = game.ownerAccount == demo::Owner::Main ? demo::roster().main : demo::roster().alt;
        QCOMPARE(owner.person.puuid, account.puuid);
        const demo::Person& other = game.ownerAccount == demo::Owner::Main ? demo::roster().alt : demo::roster().main;
        QVERIFY2(!puuids.count(other.puuid), name.c_str());

        if (game.queue->map == demo::Map::Arena) {
            QCOMPARE(game.participants.size(), size_t(16));
            std::map<int64_t, std::set<int64_t>> placesOfPairs;
            for (const demo::Participant& p : game.participants) {
                placesOfPairs[p.subteam].insert(p.placement);
                QCOMPARE(p.win, p.placement <= 4);
            }
            QCOMPARE(placesOfPairs.size(), size_t(8));
            std::set<int64_t> places;
            for (const auto& [pair, placesOfPair] : placesOfPairs) {
                QCOMPARE(placesOfPair.size(), size_t(1));
                places.insert(*placesOfPair.begin());
            }
            QCOMPARE(places.size(), size_t(8));
            continue;
        }

        // Two sides of five: one side's deaths are the other's kills, and the kill list says so.
        QCOMPARE(players[100], int64_t(5));
        QCOMPARE(players[200], int64_t(5));
        QVERIFY2(kills[100] == deaths[200] && kills[200] == deaths[100], name.c_str());
        QCOMPARE(int64_t(game.kills.size()), kills[100] + kills[200]);
        const int64_t winner = game.participants.front().win ? 100 : 200;
        std::map<int64_t, int64_t> towers;
        for (const demo::Objective& o : game.objectives) {
            QVERIFY2(o.t > 0 && o.t <= game.duration, name.c_str());
            towers[o.team] += o.type == "TOWER_BUILDING";
        }
        QVERIFY2(towers[winner] > towers[winner == 100 ? 200 : 100], name.c_str());
        for (const demo::Participant& p : game.participants)
            QCOMPARE(p.level, demo::levelOfXp(p.xp));
        if (game.queue->positions) {
            std::set<demo::Position> positions;
            for (const demo::Participant& p : game.participants)
                if (p.teamId == 100)
                    positions.insert(p.position);
            QVERIFY2(positions.size() == 5 && !positions.count(demo::Position::None), name.c_str());
        }
    }
}

void TestDemoArchive::ladder_data() {
    QTest::addColumn<int>("tier");
    QTest::addColumn<int>("division");
    QTest::addColumn<int>("lp");
    QTest::addColumn<bool>("win");
    QTest::addColumn<int>("change");
    QTest::addColumn<QString>("expected"); // "GOLD I 90"

    QTest::newRow("win inside a division") << 3 << 1 << 40 << true << 20 << QStringLiteral("GOLD III 60");
    QTest::newRow("win into the next division") << 3 << 1 << 90 << true << 25 << QStringLiteral("GOLD II 15");
    QTest::newRow("win into the next tier") << 3 << 3 << 95 << true << 20 << QStringLiteral("PLATINUM IV 15");
    QTest::newRow("Diamond I into Master") << 6 << 3 << 90 << true << 20 << QStringLiteral("MASTER  10");
    QTest::newRow("Master keeps its points") << 7 << 0 << 180 << true << 20 << QStringLiteral("MASTER  200");
    QTest::newRow("loss stops at 0") << 2 << 2 << 10 << false << 20 << QStringLiteral("SILVER II 0");
    QTest::newRow("loss at 0 drops a division") << 2 << 2 << 0 << false << 20 << QStringLiteral("SILVER III 75");
    QTest::newRow("loss at 0 drops a tier") << 3 << 0 << 0 << false << 18 << QStringLiteral("SILVER I 75");
    QTest::newRow("Master at 0 drops to Diamond") << 7 << 0 << 0 << false << 18 << QStringLiteral("DIAMOND I 75");
    QTest::newRow("nothing below Iron IV") << 0 << 0 << 0 << false << 18 << QStringLiteral("IRON IV 0");
}

void TestDemoArchive::ladder() {
    QFETCH(int, tier);
    QFETCH(int, division);
    QFETCH(int, lp);
    QFETCH(bool, win);
    QFETCH(int, change);
    QFETCH(QString, expected);
    const demo::Standing after = demo::afterGame(demo::Standing{tier, division, lp}, win, change);
    const std::string text =
        after.tierName() + " " + after.divisionName().value_or("") + " " + std::to_string(after.lp);
    QCOMPARE(QString::fromStdString(text), expected);
}

void TestDemoArchive::install() {
    QFETCH(QString, engine);
    qf::test::TestDatabase testDatabase(engine);
    QFS_REQUIRE_DATABASE(testDatabase);
    auto database = testDatabase.open();
    IngestService ingest(*database, m_champions);

    const std::vector<demo::Game> games = demo::generateGames(kNow);
    const DemoSummary summary = installDemo(*database, ingest, kNow);
    QVERIFY(summary.created);
    QCOMPARE(summary.games, int64_t(games.size()));
    QCOMPARE(summary.ingested, summary.games);
    QCOMPARE(summary.skipped, int64_t(0));

    const std::optional<User> user =
        database->read([](Repository& r) { return r.userByEmailKey("demo@quillfern.local"); });
    QVERIFY(user);
    QVERIFY(verifyPassword(user->passwordHash, DemoCredentials::password));
    const std::vector<RiotAccount> accounts = database->read([&](Repository& r) { return r.accountsOfUser(user->id); });
    QCOMPARE(accounts.size(), size_t(2));
    QVERIFY(accounts[0].isOwner && !accounts[1].isOwner);
    QCOMPARE(accounts[0].puuid, demo::roster().main.puuid);
    QCOMPARE(accounts[1].puuid, demo::roster().alt.puuid);
    std::map<std::string, int64_t> accountOfPuuid;
    for (const RiotAccount& a : accounts)
        accountOfPuuid[a.puuid] = a.id;

    // Every game reached the archive, and every category has some.
    const std::vector<GameWithRows> archive = database->read([&](Repository& r) { return r.gamesOfUser(user->id); });
    QCOMPARE(archive.size(), games.size());
    std::map<std::string, int> categories;
    for (const GameWithRows& g : archive)
        categories[categoryOf(g.match)] += 1;
    for (const char* category : {"Ranked", "Mayhem", "ARAM", "Arena", "Normal", "Other"})
        QVERIFY2(categories[category] >= 5, category);
    std::set<int64_t> seasons;
    for (const GameWithRows& g : archive)
        seasons.insert(g.match.season.value_or(0));
    QCOMPARE(seasons, (std::set<int64_t>{15, 16}));

    // Partners for the friends screen, some good for the user and some not.
    SocialService social(*database);
    const std::vector<Duo> duos = social.duos(user->id);
    QVERIFY2(duos.size() >= 3, std::to_string(duos.size()).c_str());
    double best = 0, worst = 1;
    for (const Duo& d : duos) {
        QVERIFY(d.games >= 3);
        best = std::max(best, d.winrate);
        worst = std::min(worst, d.winrate);
    }
    QVERIFY(best > 0.55 && worst < 0.45);

    // One score per game, for the account that played it.
    const std::vector<PerformanceScore> scores =
        database->read([&](Repository& r) { return r.changedScoresOfUser(user->id, 0, 100'000); });
    QCOMPARE(scores.size(), games.size());
    std::map<int64_t, int64_t> scoredAccountOfMatch;
    for (const PerformanceScore& s : scores)
        QVERIFY(scoredAccountOfMatch.emplace(s.matchId, s.riotAccountId).second);
    for (const GameWithRows& g : archive) {
        const auto mine = std::find_if(g.participants.begin(), g.participants.end(),
                                       [&](const Participant& p) { return accountOfPuuid.count(p.puuid) > 0; });
        QVERIFY(mine != g.participants.end());
        QCOMPARE(scoredAccountOfMatch[g.match.id], accountOfPuuid[mine->puuid]);
    }

    // A climb per queue of the main account: one more game at each snapshot, points following the result.
    const std::vector<RankSnapshot> snapshots =
        database->read([&](Repository& r) { return r.changedSnapshotsOfUser(user->id, 0, 100'000); });
    QCOMPARE(int64_t(snapshots.size()), summary.snapshots);
    std::map<std::pair<int64_t, std::string>, std::vector<RankSnapshot>> ladders;
    for (const RankSnapshot& s : snapshots)
        ladders[{s.riotAccountId, s.queue}].push_back(s);
    const auto climbOf = [&](const RiotAccount& account, const char* queue) {
        return ladders[std::pair<int64_t, std::string>(account.id, queue)].size();
    };
    QVERIFY(climbOf(accounts[0], "RANKED_SOLO_5x5") >= 30);
    QVERIFY(climbOf(accounts[0], "RANKED_FLEX_SR") >= 5);
    // The second account has none: the app draws all accounts' snapshots as one line.
    QCOMPARE(climbOf(accounts[1], "RANKED_SOLO_5x5"), size_t(0));
    auto absolute = [](const RankSnapshot& s) {
        static const std::vector<std::string> tiers = {"IRON",     "BRONZE",  "SILVER",  "GOLD",
                                                       "PLATINUM", "EMERALD", "DIAMOND", "MASTER"};
        static const std::vector<std::string> divisions = {"IV", "III", "II", "I"};
        const auto tier = std::find(tiers.begin(), tiers.end(), s.tier.value_or("")) - tiers.begin();
        const auto division =
            std::find(divisions.begin(), divisions.end(), s.division.value_or("IV")) - divisions.begin();
        return 400 * tier + (tier >= 7 ? 0 : 100 * division) + s.lp;
    };
    for (auto& [key, ladder] : ladders) {
        std::sort(ladder.begin(), ladder.end(),
                  [](const RankSnapshot& a, const RankSnapshot& b) { return a.capturedAt < b.capturedAt; });
        for (size_t i = 1; i < ladder.size(); ++i) {
            const RankSnapshot& before = ladder[i - 1];
            const RankSnapshot& after = ladder[i];
            QCOMPARE(after.wins + after.losses, before.wins + before.losses + 1);
            if (after.wins > before.wins)
                QVERIFY(absolute(after) > absolute(before));
            else
                QVERIFY(absolute(after) <= absolute(before));
        }
    }

    // A timeline for every game but Arena's, from the user's side, ending at the game's figures.
    int64_t timelines = 0;
    for (const demo::Game& game : games) {
        const std::string matchId = demo::riotMatchId(game);
        const auto stored = std::find_if(archive.begin(), archive.end(),
                                         [&](const GameWithRows& g) { return g.match.matchId == matchId; });
        QVERIFY(stored != archive.end());
        std::string text;
        try {
            text = social.timeline(user->id, matchId);
        } catch (const HttpError& e) {
            QVERIFY2(game.queue->map == demo::Map::Arena, (matchId + ": " + e.what()).c_str());
            continue;
        }
        QVERIFY2(game.queue->map != demo::Map::Arena, matchId.c_str());
        ++timelines;
        const std::string& ownerPuuid = game.participants[static_cast<size_t>(game.owner)].person.puuid;
        const Participant& me = *std::find_if(stored->participants.begin(), stored->participants.end(),
                                              [&](const Participant& p) { return p.puuid == ownerPuuid; });
        const json::Document document(text);
        const json::Element root = document.root();
        QCOMPARE(json::text(root, "ownerChampion"), me.championName);
        QCOMPARE(integerAt(root, "ownerTeam"), me.teamId);

        simdjson::dom::array frames;
        QVERIFY(json::member(root, "frames")->get(frames) == simdjson::SUCCESS);
        int64_t minute = 0;
        json::Element last;
        for (const json::Element frame : frames) {
            QCOMPARE(integerAt(frame, "t"), minute++);
            QCOMPARE(integerAt(frame, "goldDiff"),
                     integerAt(frame, "ownerTeamGold") - integerAt(frame, "enemyTeamGold"));
            last = frame;
        }
        QCOMPARE(minute, (stored->match.gameDuration + 59) / 60 + 1);
        QCOMPARE(integerAt(last, "ownerCs"), me.totalCs);
        QCOMPARE(integerAt(last, "ownerGold"), me.goldEarned);
        QCOMPARE(integerAt(last, "ownerLevel"), me.champLevel.value_or(-1));

        std::map<int64_t, int64_t> killsOf, killEvents;
        for (const Participant& p : stored->participants)
            killsOf[p.teamId] += p.kills;
        std::map<bool, int64_t> towers;
        simdjson::dom::array events;
        QVERIFY(json::member(root, "events")->get(events) == simdjson::SUCCESS);
        int64_t previous = 0;
        for (const json::Element event : events) {
            const int64_t t = integerAt(event, "t");
            QVERIFY(t >= previous && t <= stored->match.gameDuration);
            previous = t;
            QCOMPARE(json::boolean(event, "mine"), integerAt(event, "team") == me.teamId);
            if (json::text(event, "kind") == "kill")
                killEvents[integerAt(event, "team")] += 1;
            if (json::text(event, "building") == "TOWER_BUILDING")
                towers[json::boolean(event, "mine")] += 1;
        }
        QCOMPARE(killEvents[100], killsOf[100]);
        QCOMPARE(killEvents[200], killsOf[200]);
        const json::Element objectives = *json::member(*json::member(root, "stats"), "objectives");
        const json::Element towerCounts = *json::member(objectives, "towers");
        QCOMPARE(integerAt(towerCounts, "mine"), towers[true]);
        QCOMPARE(integerAt(towerCounts, "enemy"), towers[false]);
        QCOMPARE(towers[true] > towers[false], me.win);
        for (const char* key : {"dragons", "barons", "heralds"})
            QVERIFY(json::member(objectives, key));
        const bool reachedFourteen = stored->match.gameDuration >= 14 * 60;
        QCOMPARE(json::member(*json::member(root, "stats"), "goldDiffAt14").has_value(), reachedFourteen);
    }
    QCOMPARE(timelines, summary.timelines);
    QVERIFY(timelines >= int64_t(games.size()) - categories["Arena"]);

    // A second start finds the demo and touches nothing.
    const ChangeMarks before = changeMarksOf(*database, user->id);
    const DemoSummary again = installDemo(*database, ingest, kNow + kDay);
    QVERIFY(!again.created);
    QCOMPARE(again.games, int64_t(0));
    QVERIFY(changeMarksOf(*database, user->id) == before);
}

void TestDemoArchive::serversStartingTogetherMakeOneDemo() {
    qf::test::TestDatabase testDatabase("sqlite");
    QFS_REQUIRE_DATABASE(testDatabase);
    auto database = testDatabase.open(4);
    IngestService ingest(*database, m_champions);
    auto start = [&] { return installDemo(*database, ingest, kNow); };
    auto first = std::async(std::launch::async, start);
    auto second = std::async(std::launch::async, start);
    const DemoSummary a = first.get();
    const DemoSummary b = second.get();
    QVERIFY(a.created != b.created);
    const std::optional<User> user =
        database->read([](Repository& r) { return r.userByEmailKey("demo@quillfern.local"); });
    QVERIFY(user);
    const auto scores = database->read([&](Repository& r) { return r.changedScoresOfUser(user->id, 0, 100'000); });
    QCOMPARE(int64_t(scores.size()), std::max(a.games, b.games));
}

QTEST_GUILESS_MAIN(TestDemoArchive)
#include "tst_demo_archive.moc"
