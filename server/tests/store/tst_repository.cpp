// Every question the server asks of its store, on both engines.

#include "store/test_databases.h"

#include <QTest>

#include <algorithm>
#include <random>
#include <set>
#include <tuple>

using namespace qf;
using qf::test::TestDatabase;

namespace {

auto fields(const Match& m) {
    return std::tie(m.id, m.matchId, m.platform, m.queueId, m.isRanked, m.gameCreation, m.gameDuration, m.gameVersion,
                    m.gameMode, m.season, m.updatedAt, m.changeSeq);
}

auto fields(const Participant& p) {
    return std::tie(p.id, p.matchId, p.puuid, p.riotIdGameName, p.riotIdTagLine, p.teamId, p.win, p.championId,
                    p.championName, p.teamPosition, p.champLevel, p.kills, p.deaths, p.assists, p.totalCs, p.goldEarned,
                    p.visionScore, p.damageToChampions, p.items, p.teamDamagePct, p.killParticipation, p.csPerMin,
                    p.rankTier, p.rankDivision, p.rankLp, p.profileIconId);
}

auto fields(const RiotAccount& a) {
    return std::tie(a.id, a.userId, a.puuid, a.gameName, a.tagLine, a.platform, a.region, a.isOwner, a.profileIconId,
                    a.summonerLevel, a.linkedAt);
}

auto fields(const RankSnapshot& s) {
    return std::tie(s.id, s.riotAccountId, s.queue, s.tier, s.division, s.lp, s.wins, s.losses, s.capturedAt,
                    s.changeSeq);
}

auto fields(const PerformanceScore& s) {
    return std::tie(s.id, s.riotAccountId, s.matchId, s.championId, s.teamPosition, s.score, s.components,
                    s.baselineKind, s.changeSeq);
}

User makeUser(const std::string& emailKey) {
    User u;
    u.email = emailKey;
    u.emailKey = emailKey;
    u.passwordHash = "$argon2id$v=19$m=65536,t=2,p=1$c2FsdA$aGFzaA";
    u.createdAt = 1'700'000'000'000;
    return u;
}

RiotAccount makeAccount(int64_t userId, const std::string& puuid) {
    RiotAccount a;
    a.userId = userId;
    a.puuid = puuid;
    a.gameName = "Name " + puuid;
    a.tagLine = "EUW";
    a.platform = "euw1";
    a.region = "europe";
    a.linkedAt = 1'700'000'000'000;
    return a;
}

Match makeMatch(const std::string& matchId, int64_t creation) {
    Match m;
    m.matchId = matchId;
    m.platform = "EUW1";
    m.queueId = 420;
    m.isRanked = true;
    m.gameCreation = creation;
    m.gameDuration = 1800;
    m.gameVersion = "14.3.558.106";
    m.gameMode = "CLASSIC";
    m.updatedAt = creation + 2'000'000;
    return m;
}

Participant makeParticipant(const std::string& puuid, const std::optional<std::string>& position = "TOP") {
    Participant p;
    p.puuid = puuid;
    p.teamId = 100;
    p.win = true;
    p.championId = 266;
    p.championName = "Aatrox";
    p.teamPosition = position;
    p.kills = 7;
    p.deaths = 2;
    p.assists = 9;
    p.items = {3071, 3047, 0, 6333};
    return p;
}

// Stores a game in which each of puuids played, in the given position.
Match storeGame(Repository& r, const std::string& matchId, int64_t creation, const std::vector<std::string>& puuids,
                const std::optional<std::string>& position = "TOP") {
    Match m = makeMatch(matchId, creation);
    r.insertMatch(m);
    std::vector<Participant> rows;
    for (const std::string& puuid : puuids)
        rows.push_back(makeParticipant(puuid, position));
    r.replaceParticipants(m, rows);
    return m;
}

} // namespace

#define OPEN_DATABASE(database)                                                                                        \
    QFETCH(QString, engine);                                                                                           \
    TestDatabase testDatabase(engine);                                                                                 \
    QFS_REQUIRE_DATABASE(testDatabase);                                                                                \
    auto database = testDatabase.open()

class TestRepository : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void users_data() { qf::test::addEngineRows(); }
    void users();
    void tokens_data() { qf::test::addEngineRows(); }
    void tokens();
    void loginFailures_data() { qf::test::addEngineRows(); }
    void loginFailures();
    void accounts_data() { qf::test::addEngineRows(); }
    void accounts();
    void players_data() { qf::test::addEngineRows(); }
    void players();
    void matchesAndParticipants_data() { qf::test::addEngineRows(); }
    void matchesAndParticipants();
    void participantsOfAnyNumberOfMatches_data() { qf::test::addEngineRows(); }
    void participantsOfAnyNumberOfMatches();
    void touchGivesEachMatchItsOwnNumber_data() { qf::test::addEngineRows(); }
    void touchGivesEachMatchItsOwnNumber();
    void timelines_data() { qf::test::addEngineRows(); }
    void timelines();
    void earlierGames_data() { qf::test::addEngineRows(); }
    void earlierGames();
    void scores_data() { qf::test::addEngineRows(); }
    void scores();
    void rankSnapshots_data() { qf::test::addEngineRows(); }
    void rankSnapshots();
    void syncPagesReturnEachRowOfTheUserOnce_data() { qf::test::addEngineRows(); }
    void syncPagesReturnEachRowOfTheUserOnce();
    void gamesOfUser_data() { qf::test::addEngineRows(); }
    void gamesOfUser();
    void failedWriteKeepsWhatWasStored_data() { qf::test::addEngineRows(); }
    void failedWriteKeepsWhatWasStored();
};

void TestRepository::users() {
    OPEN_DATABASE(database);

    User named = makeUser("ana@example.org");
    named.email = "Ana@Example.org";
    named.name = "Ana";
    User unnamed = makeUser("bo@example.org");
    unnamed.passwordHash.clear();
    // A taken e-mail is refused, and the transaction goes on: the caller may answer and carry on.
    database->write([&](Repository& r) {
        r.insertUser(named);
        User again = makeUser("ana@example.org");
        QVERIFY_THROWS_EXCEPTION(UniqueViolation, r.insertUser(again));
        r.insertUser(unnamed);
    });
    QVERIFY(named.id > 0);
    QVERIFY(unnamed.id > 0 && unnamed.id != named.id);

    database->read([&](Repository& r) {
        for (const User& expected : {named, unnamed}) {
            for (const std::optional<User>& found : {r.userById(expected.id), r.userByEmailKey(expected.emailKey)}) {
                QVERIFY(found.has_value());
                QCOMPARE(found->id, expected.id);
                QCOMPARE(found->email, expected.email);
                QCOMPARE(found->emailKey, expected.emailKey);
                QCOMPARE(found->name, expected.name);
                QCOMPARE(found->passwordHash, expected.passwordHash);
                QCOMPARE(found->createdAt, expected.createdAt);
            }
        }
        QVERIFY(!r.userById(unnamed.id + 100).has_value());
        QVERIFY(!r.userByEmailKey("Ana@Example.org").has_value()); // keys are looked up as given
    });
}

void TestRepository::tokens() {
    OPEN_DATABASE(database);
    constexpr int64_t now = 1'000'000;
    database->write([&](Repository& r) {
        User u = makeUser("t@example.org");
        r.insertUser(u);
        r.insertToken("live", u.id, now + 1);
        r.insertToken("ends-now", u.id, now);
        r.insertToken("old", u.id, now - 5);
    });

    database->read([&](Repository& r) {
        QVERIFY(r.userOfToken("live", now).has_value());
        QVERIFY(!r.userOfToken("ends-now", now).has_value());
        QVERIFY(!r.userOfToken("old", now).has_value());
        QVERIFY(!r.userOfToken("unknown", now).has_value());
        QVERIFY(r.userOfToken("ends-now", now - 1).has_value());
    });

    database->write([&](Repository& r) { r.deleteExpiredTokens(now); });
    database->read([&](Repository& r) {
        QVERIFY(r.userOfToken("live", now).has_value());
        // Gone, not only expired: even a clock set back does not find them.
        QVERIFY(!r.userOfToken("ends-now", 0).has_value());
        QVERIFY(!r.userOfToken("old", 0).has_value());
    });
}

void TestRepository::loginFailures() {
    OPEN_DATABASE(database);
    database->write([](Repository& r) {
        for (int64_t at : {100, 200, 300})
            r.recordLoginFailure("email:a@example.org", at);
        r.recordLoginFailure("addr:127.0.0.1", 250);
    });
    database->read([](Repository& r) {
        QCOMPARE(r.loginFailuresSince("email:a@example.org", 200), int64_t{2});
        QCOMPARE(r.loginFailuresSince("email:a@example.org", 0), int64_t{3});
        QCOMPARE(r.loginFailuresSince("email:a@example.org", 301), int64_t{0});
        QCOMPARE(r.loginFailuresSince("email:unknown", 0), int64_t{0});
    });
    database->write([](Repository& r) { r.clearLoginFailures("email:a@example.org"); });
    database->read([](Repository& r) {
        QCOMPARE(r.loginFailuresSince("email:a@example.org", 0), int64_t{0});
        QCOMPARE(r.loginFailuresSince("addr:127.0.0.1", 0), int64_t{1});
    });
}

void TestRepository::accounts() {
    OPEN_DATABASE(database);
    User ana = makeUser("ana@example.org"), bo = makeUser("bo@example.org");
    RiotAccount first = makeAccount(0, "puuid-1"), second = makeAccount(0, "puuid-2");
    second.isOwner = true;
    second.gameName.reset();
    second.tagLine.reset();
    second.profileIconId = 4568;
    second.summonerLevel = 312;
    database->write([&](Repository& r) {
        r.insertUser(ana);
        r.insertUser(bo);
        first.userId = second.userId = ana.id;
        r.insertAccount(first);
        r.insertAccount(second);
        // A puuid belongs to one user only, whoever tries next.
        RiotAccount taken = makeAccount(bo.id, "puuid-1");
        QVERIFY_THROWS_EXCEPTION(UniqueViolation, r.insertAccount(taken));
    });

    database->read([&](Repository& r) {
        const auto accounts = r.accountsOfUser(ana.id);
        QCOMPARE(accounts.size(), size_t{2});
        QVERIFY(fields(accounts[0]) == fields(first));
        QVERIFY(fields(accounts[1]) == fields(second));
        QVERIFY(r.accountsOfUser(bo.id).empty());
        QVERIFY(fields(*r.accountByPuuid("puuid-2")) == fields(second));
        QVERIFY(!r.accountByPuuid("puuid-3").has_value());
    });

    RiotAccount changed = second;
    changed.gameName = "Renamed";
    changed.tagLine = "NEW";
    changed.platform = "na1";
    changed.region = "americas";
    changed.isOwner = false;
    changed.profileIconId.reset();
    changed.summonerLevel = 313;
    database->write([&](Repository& r) { r.updateAccount(changed); });
    database->read([&](Repository& r) {
        QVERIFY(fields(*r.accountByPuuid("puuid-2")) == fields(changed));
        QVERIFY(fields(*r.accountByPuuid("puuid-1")) == fields(first));
    });
}

void TestRepository::players() {
    OPEN_DATABASE(database);
    Player p;
    p.puuid = "p1";
    p.gameName = "Fëanor";
    p.tagLine = "Noldo";
    p.nameKey = "fëanor";
    p.tagKey = "noldo";
    p.platform = "euw1";
    p.profileIconId = 29;
    p.lastSeen = 5000;
    database->write([&](Repository& r) { r.upsertPlayer(p); });

    // An older game does not bring back an older name; a newer one without an icon keeps the icon.
    Player older = p;
    older.gameName = "Old Name";
    older.nameKey = "old name";
    older.lastSeen = 4000;
    Player newer = p;
    newer.gameName = "Feanor";
    newer.nameKey = "feanor";
    newer.profileIconId.reset();
    newer.lastSeen = 6000;
    database->write([&](Repository& r) { r.upsertPlayer(older); });
    database->read([&](Repository& r) { QCOMPARE(r.playerByPuuid("p1")->gameName, std::string("Fëanor")); });
    database->write([&](Repository& r) { r.upsertPlayer(newer); });
    database->read([&](Repository& r) {
        const auto found = r.playerByPuuid("p1");
        QCOMPARE(found->gameName, std::string("Feanor"));
        QCOMPARE(found->nameKey, std::string("feanor"));
        QCOMPARE(found->profileIconId, std::optional<int64_t>(29));
        QCOMPARE(found->lastSeen, int64_t{6000});
        QVERIFY(!r.playerByPuuid("p2").has_value());
    });

    // Two players who held the same Riot ID: the one seen last has it. Given in one call with
    // an older sighting of p1 before its newest (PostgreSQL refuses one row changed twice).
    Player earlierHolder = newer;
    earlierHolder.puuid = "p0";
    earlierHolder.lastSeen = 1000;
    Player stale = older;
    stale.lastSeen = 5000;
    database->write([&](Repository& r) { r.upsertPlayers(std::vector<Player>{earlierHolder, newer, stale}); });
    database->read([&](Repository& r) { QCOMPARE(r.playerByPuuid("p1")->gameName, std::string("Feanor")); });
    database->read([&](Repository& r) {
        QCOMPARE(r.playerByRiotIdKey("feanor", "noldo")->puuid, std::string("p1"));
        QCOMPARE(r.playerByRiotIdKey("fëanor", "noldo"), std::nullopt);
    });
}

void TestRepository::matchesAndParticipants() {
    OPEN_DATABASE(database);
    Match match = makeMatch("EUW1_7000000001", 1'700'000'000'000);
    match.season = 14;
    match.isRanked = false;
    Participant full = makeParticipant("me");
    full.riotIdGameName = "Me";
    full.riotIdTagLine = "EUW";
    full.win = false;
    full.teamId = 200;
    full.champLevel = 18;
    full.totalCs = 245;
    full.goldEarned = 14250;
    full.visionScore = 31;
    full.damageToChampions = 28990;
    full.teamDamagePct = 0.3125;
    full.killParticipation = 2.0 / 3.0;
    full.csPerMin = 8.1666666666666661;
    full.rankTier = "EMERALD";
    full.rankDivision = "II";
    full.rankLp = 61;
    full.profileIconId = 5367;
    Participant sparse = makeParticipant("other", std::nullopt);
    sparse.items.clear();
    std::vector<Participant> rows = {full, sparse};

    database->write([&](Repository& r) {
        r.insertMatch(match);
        r.replaceParticipants(match, rows);
        Match twin = makeMatch("EUW1_7000000001", 1);
        QVERIFY_THROWS_EXCEPTION(UniqueViolation, r.insertMatch(twin));
    });
    QVERIFY(match.id > 0 && match.changeSeq > 0);
    QVERIFY(rows[0].id > 0 && rows[1].id > rows[0].id);
    QCOMPARE(rows[1].matchId, match.id);

    database->read([&](Repository& r) {
        const auto game = r.gameByMatchId("EUW1_7000000001");
        QVERIFY(game.has_value());
        QVERIFY(fields(game->match) == fields(match));
        QCOMPARE(game->participants.size(), size_t{2});
        QVERIFY(fields(game->participants[0]) == fields(rows[0]));
        QVERIFY(fields(game->participants[1]) == fields(rows[1]));
        QVERIFY(!r.gameByMatchId("EUW1_7000000002").has_value());
    });

    // An update stores every field and moves the match past every cursor.
    Match updated = match;
    updated.gameDuration = 1999;
    updated.season.reset();
    updated.updatedAt += 1;
    std::vector<Participant> replacement = {makeParticipant("third")};
    database->write([&](Repository& r) {
        r.updateMatch(updated);
        r.replaceParticipants(updated, replacement);
        Match missing = makeMatch("EUW1_1", 1);
        missing.id = updated.id + 1000;
        QVERIFY_THROWS_EXCEPTION(StoreError, r.updateMatch(missing));
    });
    QVERIFY(updated.changeSeq > match.changeSeq);
    database->read([&](Repository& r) {
        const auto game = r.gameByMatchId("EUW1_7000000001");
        QVERIFY(fields(game->match) == fields(updated));
        QCOMPARE(game->participants.size(), size_t{1});
        QVERIFY(fields(game->participants[0]) == fields(replacement[0]));
    });
}

void TestRepository::participantsOfAnyNumberOfMatches() {
    OPEN_DATABASE(database);
    constexpr int kMatches = 600;
    std::vector<int64_t> matchIds;
    database->write([&](Repository& r) {
        for (int i = 0; i < kMatches; ++i)
            matchIds.push_back(storeGame(r, "EUW1_" + std::to_string(i), i, {"a" + std::to_string(i), "b"}).id);
    });

    std::mt19937 random(7);
    // Counts around the sizes of the statements' id lists, and more than the largest.
    for (size_t count :
         {size_t{0}, size_t{1}, size_t{8}, size_t{9}, size_t{64}, size_t{65}, size_t{513}, size_t{kMatches}}) {
        std::vector<int64_t> asked(matchIds.begin(), matchIds.begin() + static_cast<ptrdiff_t>(count));
        std::vector<int64_t> query = asked;
        if (count > 1)
            query.push_back(asked[1]);         // asked twice
        query.push_back(matchIds.back() + 10); // no such match
        std::shuffle(query.begin(), query.end(), random);

        const auto rows = database->read([&](Repository& r) { return r.participantsOf(query); });
        QCOMPARE(rows.size(), count * 2);
        for (size_t i = 0; i < rows.size(); ++i) {
            QCOMPARE(rows[i].matchId, asked[i / 2]);
            QCOMPARE(rows[i].puuid, i % 2 ? std::string("b") : "a" + std::to_string(i / 2));
        }
    }
}

void TestRepository::touchGivesEachMatchItsOwnNumber() {
    OPEN_DATABASE(database);
    Match a, b, c, d;
    database->write([&](Repository& r) {
        a = storeGame(r, "EUW1_1", 1, {"x", "y"});
        b = storeGame(r, "EUW1_2", 2, {"y"});
        c = storeGame(r, "EUW1_3", 3, {"x"});
        d = storeGame(r, "EUW1_4", 4, {"y"});
        // c changed after d, so its number is now the newest.
        r.updateMatch(c);
    });

    database->write([](Repository& r) { r.touchMatchesOf("x"); });
    database->read([&](Repository& r) {
        const auto na = r.gameByMatchId("EUW1_1")->match, nb = r.gameByMatchId("EUW1_2")->match,
                   nc = r.gameByMatchId("EUW1_3")->match, nd = r.gameByMatchId("EUW1_4")->match;
        QCOMPARE(nb.changeSeq, b.changeSeq);
        QCOMPARE(nd.changeSeq, d.changeSeq);
        QVERIFY(na.changeSeq > c.changeSeq);
        QVERIFY(nc.changeSeq > c.changeSeq);
        QVERIFY(na.changeSeq != nc.changeSeq);
        QVERIFY(na.changeSeq < nc.changeSeq); // the order they had before
    });
}

void TestRepository::timelines() {
    OPEN_DATABASE(database);
    Match m;
    database->write([&](Repository& r) {
        m = storeGame(r, "EUW1_1", 1, {"x", "y"});
        r.storeTimeline(m.id, "x", R"({"frames":[1]})");
        r.storeTimeline(m.id, "y", R"({"frames":[2]})");
        r.storeTimeline(m.id, "x", R"({"frames":[3],"text":"日本 'q'"})");
    });
    database->read([&](Repository& r) {
        QCOMPARE(r.timelineOf(m.id, "x"), std::optional<std::string>(R"({"frames":[3],"text":"日本 'q'"})"));
        QCOMPARE(r.timelineOf(m.id, "y"), std::optional<std::string>(R"({"frames":[2]})"));
        QCOMPARE(r.timelineOf(m.id, "z"), std::nullopt);
        QCOMPARE(r.timelineOf(m.id + 1, "x"), std::nullopt);
    });
}

void TestRepository::earlierGames() {
    OPEN_DATABASE(database);
    // x plays TOP at 100, 300, 500, JUNGLE at 200, 400, and without a position at 250.
    database->write([](Repository& r) {
        for (int64_t at : {100, 300, 500})
            storeGame(r, "TOP_" + std::to_string(at), at, {"x", "other"});
        for (int64_t at : {200, 400})
            storeGame(r, "JG_" + std::to_string(at), at, {"x"}, "JUNGLE");
        storeGame(r, "NONE_250", 250, {"x"}, std::nullopt);
        storeGame(r, "NOT_X", 350, {"other"});
    });
    const auto creations = [](const std::vector<OwnGame>& games) {
        std::vector<int64_t> out;
        for (const OwnGame& g : games)
            out.push_back(g.match.gameCreation);
        return out;
    };

    database->read([&](Repository& r) {
        const auto top = r.earlierGames("x", std::string("TOP"), 500, 10);
        QCOMPARE(creations(top), (std::vector<int64_t>{300, 100}));
        for (const OwnGame& g : top) {
            QCOMPARE(g.me.puuid, std::string("x"));
            QCOMPARE(g.me.matchId, g.match.id);
        }
        QCOMPARE(creations(r.earlierGames("x", std::nullopt, 450, 10)),
                 (std::vector<int64_t>{400, 300, 250, 200, 100}));
        QCOMPARE(creations(r.earlierGames("x", std::nullopt, 1000, 2)), (std::vector<int64_t>{500, 400}));
        QVERIFY(r.earlierGames("x", std::string("UTILITY"), 1000, 10).empty());
        QVERIFY(r.earlierGames("nobody", std::nullopt, 1000, 10).empty());
    });
}

void TestRepository::scores() {
    OPEN_DATABASE(database);
    RiotAccount mine, theirs;
    Match early, late;
    database->write([&](Repository& r) {
        User u = makeUser("u@example.org");
        r.insertUser(u);
        mine = makeAccount(u.id, "x");
        theirs = makeAccount(u.id, "y");
        r.insertAccount(mine);
        r.insertAccount(theirs);
        late = storeGame(r, "LATE", 200, {"x", "y"});
        early = storeGame(r, "EARLY", 100, {"x"});
    });

    const auto unscored = [&](const RiotAccount& a) {
        return database->read([&](Repository& r) {
            std::vector<std::string> ids;
            for (const OwnGame& g : r.gamesWithoutScore(a.id, a.puuid)) {
                ids.push_back(g.match.matchId);
                if (g.me.puuid != a.puuid)
                    ids.push_back("wrong row");
            }
            return ids;
        });
    };
    QCOMPARE(unscored(mine), (std::vector<std::string>{"EARLY", "LATE"}));

    PerformanceScore score;
    score.riotAccountId = mine.id;
    score.matchId = late.id;
    score.championId = 266;
    score.teamPosition = "TOP";
    score.score = 71.25;
    score.components = {{"kda", 1.5}, {"cs_per_min", -0.25}, {"damage_share", 1.0 / 3.0}, {"vision \"score\"", 0}};
    score.baselineKind = "self";
    database->write([&](Repository& r) {
        r.insertScore(score);
        PerformanceScore twice = score;
        QVERIFY_THROWS_EXCEPTION(UniqueViolation, r.insertScore(twice));
    });
    QVERIFY(score.id > 0 && score.changeSeq > late.changeSeq);

    QCOMPARE(unscored(mine), (std::vector<std::string>{"EARLY"}));
    QCOMPARE(unscored(theirs), (std::vector<std::string>{"LATE"}));
    database->read([&](Repository& r) {
        QVERIFY(r.hasScore(mine.id, late.id));
        QVERIFY(!r.hasScore(mine.id, early.id));
        QVERIFY(!r.hasScore(theirs.id, late.id));
        const auto stored = r.changedScoresOfUser(mine.userId, 0, 10);
        QCOMPARE(stored.size(), size_t{1});
        QVERIFY(fields(stored[0]) == fields(score));
    });
}

void TestRepository::rankSnapshots() {
    OPEN_DATABASE(database);
    RiotAccount account;
    std::vector<RankSnapshot> stored;
    database->write([&](Repository& r) {
        User u = makeUser("u@example.org");
        r.insertUser(u);
        account = makeAccount(u.id, "x");
        r.insertAccount(account);
        // Stored out of time order: the latest is by capture time, not by insertion.
        const std::vector<std::tuple<std::string, int64_t, int64_t>> snapshots = {{"RANKED_SOLO_5x5", 300, 75},
                                                                                  {"RANKED_SOLO_5x5", 100, 20},
                                                                                  {"RANKED_FLEX_SR", 50, 0},
                                                                                  {"RANKED_SOLO_5x5", 200, 40}};
        for (const auto& [queue, at, lp] : snapshots) {
            RankSnapshot s;
            s.riotAccountId = account.id;
            s.queue = queue;
            s.tier = "GOLD";
            s.division = "II";
            s.lp = lp;
            s.wins = 10;
            s.losses = 8;
            s.capturedAt = at;
            r.insertRankSnapshot(s);
            stored.push_back(s);
        }
        RankSnapshot unranked;
        unranked.riotAccountId = account.id;
        unranked.queue = "RANKED_TFT";
        unranked.capturedAt = 10;
        r.insertRankSnapshot(unranked);
        stored.push_back(unranked);
    });
    database->read([&](Repository& r) {
        QVERIFY(fields(*r.latestSnapshot(account.id, "RANKED_SOLO_5x5")) == fields(stored[0]));
        QVERIFY(fields(*r.latestSnapshot(account.id, "RANKED_FLEX_SR")) == fields(stored[2]));
        QVERIFY(fields(*r.latestSnapshot(account.id, "RANKED_TFT")) == fields(stored[4]));
        QVERIFY(!r.latestSnapshot(account.id, "CHERRY").has_value());
        QVERIFY(!r.latestSnapshot(account.id + 1, "RANKED_SOLO_5x5").has_value());
    });
}

void TestRepository::syncPagesReturnEachRowOfTheUserOnce() {
    OPEN_DATABASE(database);
    // u links x and y; v links z. Games mix them; one has both of u's accounts in it.
    int64_t u = 0, v = 0;
    std::set<std::string> gamesOfU, gamesOfV;
    std::vector<int64_t> snapshotsOfU, scoresOfU;
    database->write([&](Repository& r) {
        User uu = makeUser("u@example.org"), vv = makeUser("v@example.org");
        r.insertUser(uu);
        r.insertUser(vv);
        u = uu.id;
        v = vv.id;
        RiotAccount x = makeAccount(u, "x"), y = makeAccount(u, "y"), z = makeAccount(v, "z");
        r.insertAccount(x);
        r.insertAccount(y);
        r.insertAccount(z);
        for (int i = 0; i < 30; ++i) {
            std::vector<std::string> players;
            for (const char* p : {"x", "y", "z"})
                if ((i + p[0]) % 3 == 0 || (i % 7 == 0))
                    players.push_back(p);
            players.push_back("stranger");
            const std::string id = "G" + std::to_string(i);
            const Match m = storeGame(r, id, i, players);
            if (std::count(players.begin(), players.end(), "x") || std::count(players.begin(), players.end(), "y"))
                gamesOfU.insert(id);
            if (std::count(players.begin(), players.end(), "z"))
                gamesOfV.insert(id);
            if (i % 4 == 0) {
                RankSnapshot s;
                s.riotAccountId = i % 8 == 0 ? x.id : z.id;
                s.queue = "RANKED_SOLO_5x5";
                s.capturedAt = i;
                r.insertRankSnapshot(s);
                if (i % 8 == 0)
                    snapshotsOfU.push_back(s.id);
            }
            // Scores of both of u's accounts, so pages merge two accounts' rows in change order.
            for (const RiotAccount* account : {&x, &y}) {
                if (!std::count(players.begin(), players.end(), account->puuid))
                    continue;
                PerformanceScore s;
                s.riotAccountId = account->id;
                s.matchId = m.id;
                s.components = {{"kda", static_cast<double>(i)}};
                r.insertScore(s);
                scoresOfU.push_back(s.id);
            }
        }
    });
    QVERIFY(gamesOfU.size() > 5 && gamesOfV.size() > 5);

    // Pages of three, each after the last number of the one before, until one is empty.
    const auto pageThrough = [&](int64_t user, int64_t from, auto changed) {
        std::vector<std::string> seen;
        std::vector<int64_t> numbers;
        int64_t cursor = from;
        // Bounded: a cursor that does not move on would page forever (and then fail below).
        for (int pages = 0; pages < 100; ++pages) {
            const auto page = database->read([&](Repository& r) { return changed(r, user, cursor); });
            if (page.empty())
                break;
            for (const auto& row : page) {
                if constexpr (std::is_same_v<std::decay_t<decltype(row)>, Match>)
                    seen.push_back(row.matchId);
                else
                    seen.push_back(std::to_string(row.id));
                numbers.push_back(row.changeSeq);
            }
            cursor = page.back().changeSeq;
        }
        return std::pair{seen, numbers};
    };
    const auto matches = [](Repository& r, int64_t user, int64_t after) {
        return qf::test::matchesOnly(r.changedGamesOfUser(user, after, 3));
    };

    for (auto [user, expected] : {std::pair{u, gamesOfU}, std::pair{v, gamesOfV}}) {
        const auto [seen, numbers] = pageThrough(user, 0, matches);
        QCOMPARE(std::set<std::string>(seen.begin(), seen.end()), expected);
        QCOMPARE(seen.size(), expected.size()); // none twice
        QVERIFY(std::is_sorted(numbers.begin(), numbers.end()));
    }

    const auto [snapshots, snapshotNumbers] = pageThrough(
        u, 0, [](Repository& r, int64_t user, int64_t after) { return r.changedSnapshotsOfUser(user, after, 3); });
    QCOMPARE(snapshots.size(), snapshotsOfU.size());
    for (size_t i = 0; i < snapshots.size(); ++i)
        QCOMPARE(snapshots[i], std::to_string(snapshotsOfU[i]));
    const auto [scores, scoreNumbers] = pageThrough(
        u, 0, [](Repository& r, int64_t user, int64_t after) { return r.changedScoresOfUser(user, after, 3); });
    QCOMPARE(scores.size(), scoresOfU.size());
    for (size_t i = 0; i < scores.size(); ++i)
        QCOMPARE(scores[i], std::to_string(scoresOfU[i]));

    // Once both mirrors are up to date, a touch of z's games brings them back to every user who
    // has them, and nothing else.
    const int64_t upToDate = database->read([&](Repository& r) {
        return std::max(qf::test::matchesOnly(r.changedGamesOfUser(u, 0, 1000)).back().changeSeq,
                        qf::test::matchesOnly(r.changedGamesOfUser(v, 0, 1000)).back().changeSeq);
    });
    database->write([](Repository& r) { r.touchMatchesOf("z"); });
    std::set<std::string> shared;
    std::set_intersection(gamesOfU.begin(), gamesOfU.end(), gamesOfV.begin(), gamesOfV.end(),
                          std::inserter(shared, shared.end()));
    QVERIFY(!shared.empty());
    for (auto [user, expected] : {std::pair{u, shared}, std::pair{v, gamesOfV}}) {
        const auto [again, numbers] = pageThrough(user, upToDate, matches);
        QCOMPARE(std::set<std::string>(again.begin(), again.end()), expected);
        QCOMPARE(again.size(), expected.size());
    }
}

void TestRepository::gamesOfUser() {
    OPEN_DATABASE(database);
    int64_t u = 0;
    database->write([&](Repository& r) {
        User uu = makeUser("u@example.org");
        r.insertUser(uu);
        u = uu.id;
        RiotAccount x = makeAccount(u, "x"), y = makeAccount(u, "y");
        r.insertAccount(x);
        r.insertAccount(y);
        storeGame(r, "OLD", 100, {"x", "a", "b"});
        storeGame(r, "BOTH", 300, {"x", "y", "c"});
        storeGame(r, "NEW", 400, {"y"});
        storeGame(r, "OTHERS", 500, {"a", "b"});
        // Same creation time as BOTH, stored later: the later id comes first.
        storeGame(r, "TIE", 300, {"a", "x"});
    });

    const auto games = database->read([&](Repository& r) { return r.gamesOfUser(u); });
    std::vector<std::string> order;
    std::vector<size_t> rowCounts;
    for (const GameWithRows& g : games) {
        order.push_back(g.match.matchId);
        rowCounts.push_back(g.participants.size());
        for (const Participant& p : g.participants)
            QCOMPARE(p.matchId, g.match.id);
        QVERIFY(std::is_sorted(g.participants.begin(), g.participants.end(),
                               [](const Participant& a, const Participant& b) { return a.id < b.id; }));
    }
    QCOMPARE(order, (std::vector<std::string>{"NEW", "TIE", "BOTH", "OLD"}));
    QCOMPARE(rowCounts, (std::vector<size_t>{1, 2, 3, 3}));
    QVERIFY(database->read([](Repository& r) { return r.gamesOfUser(999); }).empty());
}

void TestRepository::failedWriteKeepsWhatWasStored() {
    OPEN_DATABASE(database);
    const Match kept = database->write([](Repository& r) { return storeGame(r, "KEPT", 1, {"x"}); });

    // A write that fails half-way leaves nothing of itself behind, and the stored game intact.
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, database->write([](Repository& r) {
        storeGame(r, "HALF", 2, {"x"});
        r.touchMatchesOf("x");
        throw std::runtime_error("the caller gave up");
    }));
    const auto found = database->read([](Repository& r) { return r.gameByMatchId("KEPT"); });
    QVERIFY(found.has_value());
    QVERIFY(fields(found->match) == fields(kept));
    QCOMPARE(found->participants.size(), size_t{1});
    QVERIFY(!database->read([](Repository& r) { return r.gameByMatchId("HALF"); }).has_value());
}

QTEST_GUILESS_MAIN(TestRepository)
#include "tst_repository.moc"
