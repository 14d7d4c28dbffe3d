// The permanent archive from the Riot API: backfills that page through a history, stop at what
// the previous run stored and resume after a restart; one player under one puuid whichever
// source brought their games; timelines condensed once from Riot and kept.

#include "fake_riot_api.h"

#include "archive/champion_catalog.h"
#include "archive/ingest_service.h"
#include "archive/riot_match_reader.h"
#include "archive/riot_timeline_summary.h"
#include "auth/riot_account_service.h"
#include "backfill/backfill_worker.h"
#include "http/http_message.h"
#include "social/social_service.h"
#include "store/test_databases.h"
#include "json/json_input.h"

#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <set>
#include <thread>

using namespace qf;
using qf::test::FakeRiotApi;
using qf::test::TestDatabase;

namespace {

constexpr int64_t kNow = 1'760'000'000'000;

RiotApiConfig configFor(const std::string& base, std::string key) {
    RiotApiConfig c;
    c.apiKey = std::move(key);
    c.baseOverride = base;
    c.retryBackoff = std::chrono::milliseconds(10);
    return c;
}

int64_t makeUser(Database& database, const std::string& email) {
    return database.write([&](Repository& r) {
        User u;
        u.email = u.emailKey = email;
        u.createdAt = kNow;
        r.insertUser(u);
        return u.id;
    });
}

void drain(BackfillWorker& worker) {
    for (int guard = 0; guard < 1000 && worker.runOnce(); ++guard) {
    }
}

int requestsTo(const FakeRiotApi& fake, const std::string& pathPart) {
    const auto log = fake.log();
    return int(std::count_if(log.begin(), log.end(),
                             [&](const auto& entry) { return entry.path.find(pathPart) != std::string::npos; }));
}

// Every participant of the user's games, as the sync sends them.
std::vector<std::string> participantPuuidsOf(Database& database, int64_t userId) {
    std::vector<std::string> puuids;
    database.read([&](Repository& r) {
        for (const SyncedGame& g : r.changedGamesOfUser(userId, 0, 100'000))
            for (size_t at = g.participantsJson.find("\"puuid\":\""); at != std::string::npos;
                 at = g.participantsJson.find("\"puuid\":\"", at + 1)) {
                const size_t start = at + 9;
                puuids.push_back(g.participantsJson.substr(start, g.participantsJson.find('"', start) - start));
            }
    });
    return puuids;
}

const ChampionCatalog& champions() {
    static const ChampionCatalog catalog = ChampionCatalog::shipped();
    return catalog;
}

// Large limits: these tests are about what is fetched, not when (the limiter has its own).
const std::vector<qf::test::FakeWindow> kRoomyLimits = {{500, 1}, {50'000, 120}};

} // namespace

class TestRiotBackfill : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (!QFileInfo::exists(QStringLiteral(QFS_FIXTURES_DIR "/account-v1-1.json")))
            QSKIP("the shared fixtures are not next to this repository");
    }
    void historyStopsAtStoredGamesAndResumes_data() { qf::test::addEngineRows(); }
    void historyStopsAtStoredGamesAndResumes();
    void personalKeyLimitsAreNeverOverrun();
    void leagueSignInOwnsRiotGames();
    void sameGameFromBothSourcesIsOneMatch();
    void timelineCondensedOnceAndKept();
};

void TestRiotBackfill::historyStopsAtStoredGamesAndResumes() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    FakeRiotApi fake(QFS_FIXTURES_DIR, kRoomyLimits);
    fake.setMatchHistory(FakeRiotApi::fixtureAccountPuuid(), 130);
    const RiotClient riot(configFor(fake.baseUrl(), "key-backfill-" + engine.toStdString()));
    IngestService ingest(*database, champions());
    RiotAccountService accounts(*database, &riot);
    const int64_t user = makeUser(*database, "me@example.org");
    const RiotAccount account = accounts.link(user, "SSG Xayah#NA1", "na1", kNow);

    // A restart after the first page: the next worker carries on at game 51.
    BackfillOptions pages;
    pages.pageSize = 50;
    {
        BackfillWorker first(
            *database, ingest, riot, [] { return kNow; }, pages);
        QVERIFY(first.runOnce());
    }
    const auto afterPage = database->read([&](Repository& r) { return r.backfillOf(account.id); });
    QCOMPARE(afterPage->fetched, int64_t(50));
    QCOMPARE(afterPage->found, int64_t(50));
    QVERIFY(!afterPage->done);
    BackfillWorker second(
        *database, ingest, riot, [] { return kNow; }, pages);
    drain(second);

    const auto done = database->read([&](Repository& r) { return r.backfillOf(account.id); });
    QVERIFY(done->done);
    QCOMPARE(done->fetched, int64_t(130));
    QCOMPARE(done->stopAt, std::optional<std::string>("EUW1_7000000000"));
    QCOMPARE(requestsTo(fake, "/lol/match/v5/matches/EUW1_"), 130); // none twice
    QCOMPARE(database->read([&](Repository& r) { return r.changedGamesOfUser(user, 0, 1000).size(); }), size_t(130));

    // A refresh starts a new run, which reads only what is newer than the last one's newest.
    fake.addGame(FakeRiotApi::fixtureAccountPuuid(), "match-v5-5.json", "match-v5-timeline-6.json");
    (void)accounts.refresh(user, kNow + 1);
    drain(second);
    const auto again = database->read([&](Repository& r) { return r.backfillOf(account.id); });
    QVERIFY(again->done);
    QCOMPARE(again->found, int64_t(1));
    QCOMPARE(again->stopAt, std::optional<std::string>("EUW1_7684569678"));
    QCOMPARE(requestsTo(fake, "/lol/match/v5/matches/EUW1_"), 131);
    QVERIFY(database->read([&](Repository& r) { return r.hasMatch("EUW1_7684569678"); }));

    // A game Riot keeps no timeline of, and one whose timeline is of another game: both 404.
    ChampionDirectoryOptions offline;
    offline.fetch = false;
    const ChampionDirectory directory(offline);
    SocialService social(*database, &riot, &directory);
    fake.dropTimeline("EUW1_6999999999");
    for (const auto& [id, text] : {std::pair{"EUW1_6999999999", "Riot keeps no timeline of this game."},
                                   std::pair{"EUW1_6999999998", "This game's timeline cannot be read."}}) {
        try {
            (void)social.timeline(user, id);
            QFAIL("a timeline was made up");
        } catch (const HttpError& e) {
            QCOMPARE(e.status(), 404);
            QCOMPARE(std::string(e.what()), std::string(text));
        }
    }
}

// 300 games under a personal key's limits, the two-minute window announced as twelve seconds so
// the test takes half a minute (the limiter learns windows from the answers, as from Riot's):
// the fake never has to refuse a request, and a look-up in the middle is answered at once.
void TestRiotBackfill::personalKeyLimitsAreNeverOverrun() {
    TestDatabase db("sqlite");
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    FakeRiotApi fake(QFS_FIXTURES_DIR, {{20, 1}, {100, 12}});
    fake.setMatchHistory(FakeRiotApi::fixtureAccountPuuid(), 300);
    const RiotClient riot(configFor(fake.baseUrl(), "key-backfill-personal"));
    IngestService ingest(*database, champions());
    RiotAccountService accounts(*database, &riot);
    SocialService social(*database, &riot);
    const int64_t user = makeUser(*database, "personal@example.org");
    (void)accounts.link(user, "SSG Xayah#NA1", "na1", kNow);

    BackfillWorker worker(*database, ingest, riot, [] { return kNow; });
    worker.start();
    while (database->read([&](Repository& r) { return r.changedGamesOfUser(user, 0, 1000).size(); }) < 120)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto asked = std::chrono::steady_clock::now();
    const PlayerProfile profile = social.profile("SSG Xayah#NA1", nullptr);
    const double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - asked).count();
    QVERIFY2(waited < 3.0, qPrintable(QString::number(waited)));
    QVERIFY(!profile.ranks.empty());
    for (int i = 0; i < 1200; ++i) {
        const auto run = database->read([&](Repository& r) { return r.backfillOf(1); });
        if (run && run->done)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    worker.stop();
    QCOMPARE(database->read([&](Repository& r) { return r.changedGamesOfUser(user, 0, 1000).size(); }), size_t(300));
    QCOMPARE(fake.limitRefusals(), 0);
}

void TestRiotBackfill::leagueSignInOwnsRiotGames() {
    TestDatabase db("sqlite");
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    FakeRiotApi fake(QFS_FIXTURES_DIR, kRoomyLimits);
    fake.setMatchHistory(FakeRiotApi::fixtureAccountPuuid(), 3);
    const RiotClient riot(configFor(fake.baseUrl(), "key-backfill-league"));
    IngestService ingest(*database, champions());
    RiotAccountService accounts(*database, &riot);

    // Signed in with League: the account is the client's UUID.
    const std::string clientPuuid = "0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0";
    const int64_t user = makeUser(*database, "league@example.org");
    database->write([&](Repository& r) {
        RiotAccount a;
        a.userId = user;
        a.puuid = clientPuuid;
        a.gameName = "SSG Xayah";
        a.tagLine = "NA1";
        a.platform = "na1";
        a.region = "americas";
        a.isOwner = true;
        r.insertAccount(a);
    });
    (void)accounts.refresh(user, kNow);
    BackfillWorker worker(*database, ingest, riot, [] { return kNow; });
    drain(worker);

    // Each of the three games is the user's, with the user's own puuid on their row.
    const std::vector<std::string> puuids = participantPuuidsOf(*database, user);
    QCOMPARE(puuids.size(), size_t(30));
    QCOMPARE(std::count(puuids.begin(), puuids.end(), clientPuuid), 3);
    QCOMPARE(std::count(puuids.begin(), puuids.end(), FakeRiotApi::fixtureAccountPuuid()), 0);
}

void TestRiotBackfill::sameGameFromBothSourcesIsOneMatch() {
    TestDatabase db("sqlite");
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    FakeRiotApi fake(QFS_FIXTURES_DIR);
    const json::Document riotCopy(fake.fixture("match-v5-5.json"));
    IngestService ingest(*database, champions());

    // The League client's copy: the same game and figures, every player under a UUID.
    std::optional<ClientGame> clientCopy = readRiotMatch(riotCopy.root(), champions());
    QVERIFY(clientCopy.has_value());
    std::map<std::string, std::string> uuidOf;
    for (Participant& row : clientCopy->game.participants) {
        const std::string uuid = "00000000-0000-0000-0000-" + std::to_string(100000000000 + uuidOf.size());
        uuidOf[row.puuid] = uuid;
        row.puuid = uuid;
    }
    for (Player& p : clientCopy->players)
        p.puuid = uuidOf[p.puuid];
    std::vector<ClientGame> games;
    games.push_back(*clientCopy);
    QCOMPARE(ingest.ingestGames(std::move(games), kNow).ingested, int64_t(1));

    const IngestOutcome second = ingest.ingestRiotMatch(riotCopy.root(), kNow + 1);
    QCOMPARE(second.ingested + second.skipped, int64_t(1));
    const auto stored = database->read([&](Repository& r) { return r.gameByMatchId("EUW1_7684569678"); });
    QCOMPARE(stored->participants.size(), size_t(10));
    for (const Participant& row : stored->participants)
        QVERIFY2(row.puuid.starts_with("00000000-"), row.puuid.c_str());
    // Riot's ids now stand for the same players.
    std::vector<std::string> riotIds;
    for (const auto& [riotId, uuid] : uuidOf)
        riotIds.push_back(riotId);
    const auto stable = database->read([&](Repository& r) { return r.stablePuuids(riotIds); });
    QCOMPARE(stable.size(), size_t(10));
    for (const auto& [riotId, uuid] : uuidOf)
        QCOMPARE(stable.at(riotId), uuid);
}

void TestRiotBackfill::timelineCondensedOnceAndKept() {
    TestDatabase db("sqlite");
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    FakeRiotApi fake(QFS_FIXTURES_DIR, kRoomyLimits);
    const json::Document match(fake.fixture("match-v5-5.json"));
    std::string_view ownerPuuid;
    QVERIFY(match.root()["info"]["participants"].at(0)["puuid"].get(ownerPuuid) == simdjson::SUCCESS);
    fake.addAccount("Mangeur2Zitoune", "3945", std::string(ownerPuuid));
    fake.addGame(std::string(ownerPuuid), "match-v5-5.json", "match-v5-timeline-6.json");
    fake.setMatchHistory("nobody", 0);

    const RiotClient riot(configFor(fake.baseUrl(), "key-backfill-timeline"));
    IngestService ingest(*database, champions());
    RiotAccountService accounts(*database, &riot);
    ChampionDirectoryOptions offline;
    offline.fetch = false;
    const ChampionDirectory directory(offline);
    SocialService social(*database, &riot, &directory);
    const int64_t user = makeUser(*database, "timeline@example.org");
    (void)accounts.link(user, "Mangeur2Zitoune#3945", "euw1", kNow);
    BackfillWorker worker(*database, ingest, riot, [] { return kNow; });
    drain(worker);

    const json::Document timeline(fake.fixture("match-v5-timeline-6.json"));
    const std::optional<std::string> expected =
        riotTimelineSummaryJson(match.root(), timeline.root(), ownerPuuid, champions());
    QVERIFY(expected.has_value());
    QCOMPARE(social.timeline(user, "EUW1_7684569678"), *expected);
    const int asked = requestsTo(fake, "/timeline");
    QCOMPARE(social.timeline(user, "EUW1_7684569678"), *expected);
    QCOMPARE(requestsTo(fake, "/timeline"), asked); // kept, not asked again

    // Someone else's request for the game is the same 404 as for a game the server lacks.
    const int64_t stranger = makeUser(*database, "stranger@example.org");
    try {
        (void)social.timeline(stranger, "EUW1_7684569678");
        QFAIL("a stranger read the timeline");
    } catch (const HttpError& e) {
        QCOMPARE(e.status(), 404);
    }
}

QTEST_GUILESS_MAIN(TestRiotBackfill)
#include "tst_riot_backfill.moc"
