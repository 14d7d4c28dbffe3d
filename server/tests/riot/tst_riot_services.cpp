// The services that answer the app with the Riot API behind them: linking by Riot ID, refresh
// (icons, levels and rank snapshots), and player look-ups, against the fake Riot API serving
// real answers; and what each does when Riot cannot be reached.

#include "fake_riot_api.h"

#include "auth/riot_account_service.h"
#include "http/http_message.h"
#include "riot/data_version_keeper.h"
#include "social/social_service.h"
#include "store/test_databases.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace qf;
using qf::test::FakeRiotApi;
using qf::test::TestDatabase;

namespace {

constexpr int64_t kNow = 1'760'000'000'000;

int64_t makeUser(Database& database, const std::string& email) {
    return database.write([&](Repository& r) {
        User u;
        u.email = u.emailKey = email;
        u.createdAt = kNow;
        r.insertUser(u);
        return u.id;
    });
}

RiotApiConfig configFor(const std::string& base, const char* key) {
    RiotApiConfig c;
    c.apiKey = key; // limiters are per key: each test its own
    c.baseOverride = base;
    c.serverErrorRetries = 1;
    c.retryBackoff = std::chrono::milliseconds(10);
    c.connectTimeout = std::chrono::milliseconds(500);
    c.foregroundMaxWait = std::chrono::milliseconds(2000);
    return c;
}

int statusOf(const std::function<void()>& call, std::string* text = nullptr) {
    try {
        call();
    } catch (const HttpError& e) {
        if (text)
            *text = e.what();
        return e.status();
    }
    return 200;
}

size_t snapshotCount(Database& database, int64_t userId) {
    return database.read([&](Repository& r) { return r.changedSnapshotsOfUser(userId, 0, 1000).size(); });
}

} // namespace

class TestRiotServices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (!QFileInfo::exists(QStringLiteral(QFS_FIXTURES_DIR "/account-v1-1.json")))
            QSKIP("the shared fixtures are not next to this repository");
    }
    void linkRefreshAndLookUp_data() { qf::test::addEngineRows(); }
    void linkRefreshAndLookUp();
    void riotUnreachable();
    void dataVersionKeptAcrossRestarts();
};

void TestRiotServices::linkRefreshAndLookUp() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    FakeRiotApi fake(QFS_FIXTURES_DIR);
    const RiotClient riot(
        configFor(fake.baseUrl(), engine == QLatin1String("sqlite") ? "key-services-sqlite" : "key-services-pg"));
    RiotAccountService accounts(*database, &riot);
    SocialService social(*database, &riot);
    const int64_t user = makeUser(*database, "me@example.org");
    const int64_t other = makeUser(*database, "other@example.org");

    // Riot's spelling wins over the one typed; its puuid and icon are the account's.
    const RiotAccount linked = accounts.link(user, "ssg xayah#na1", "NA1", kNow);
    QCOMPARE(linked.puuid, FakeRiotApi::fixtureAccountPuuid());
    QCOMPARE(linked.gameName, std::optional<std::string>("SSG Xayah"));
    QCOMPARE(linked.platform, std::string("na1"));
    QCOMPARE(linked.region, std::string("americas"));
    QVERIFY(linked.profileIconId.has_value() && linked.summonerLevel.has_value());
    QCOMPARE(accounts.link(user, "SSG Xayah#NA1", "na1", kNow).id, linked.id); // again: the same
    QCOMPARE(statusOf([&] { (void)accounts.link(other, "SSG Xayah#NA1", "na1", kNow); }), 409);
    std::string text;
    QCOMPARE(statusOf([&] { (void)accounts.link(user, "Nobody Here#EUW", "euw1", kNow); }, &text), 404);
    QVERIFY2(text.find("Nobody Here#EUW") != std::string::npos, text.c_str());

    // The first refresh records each ranked queue; nothing changed, nothing new; a ladder that
    // moved since the last snapshot (here: a newer stored one with other LP) gives exactly one.
    (void)accounts.refresh(user, kNow + 1);
    QCOMPARE(snapshotCount(*database, user), size_t(2));
    (void)accounts.refresh(user, kNow + 2);
    QCOMPARE(snapshotCount(*database, user), size_t(2));
    database->write([&](Repository& r) {
        RankSnapshot moved = *r.latestSnapshot(linked.id, "RANKED_FLEX_SR");
        moved.lp += 17;
        moved.capturedAt = kNow + 3;
        r.insertRankSnapshot(moved);
    });
    (void)accounts.refresh(user, kNow + 4);
    QCOMPARE(snapshotCount(*database, user), size_t(4));
    const std::optional<RankSnapshot> flex =
        database->read([&](Repository& r) { return r.latestSnapshot(linked.id, "RANKED_FLEX_SR"); });
    QCOMPARE(flex->lp, int64_t(59));
    QCOMPARE(flex->tier, std::optional<std::string>("BRONZE"));

    // Any player by Riot ID: ranks and the top champions, most points first.
    const PlayerProfile profile = social.profile("SSG Xayah#NA1", nullptr);
    QCOMPARE(profile.puuid, FakeRiotApi::fixtureAccountPuuid());
    QCOMPARE(profile.ranks.size(), size_t(2));
    QVERIFY(!profile.masteries.empty());
    for (size_t i = 1; i < profile.masteries.size(); ++i)
        QVERIFY(profile.masteries[i - 1].championPoints >= profile.masteries[i].championPoints);
    QCOMPARE(statusOf([&] { (void)social.profile("Nobody Here#EUW", nullptr); }), 404);
}

void TestRiotServices::riotUnreachable() {
    TestDatabase db("sqlite");
    QFS_REQUIRE_DATABASE(db);
    auto database = db.open();
    // A port nothing listens on: bound once, then closed.
    std::string deadBase;
    {
        FakeRiotApi gone(QFS_FIXTURES_DIR);
        deadBase = gone.baseUrl();
    }
    const RiotClient riot(configFor(deadBase, "key-services-dead"));
    RiotAccountService accounts(*database, &riot);
    SocialService social(*database, &riot);
    const int64_t user = makeUser(*database, "me@example.org");
    database->write([&](Repository& r) {
        Player seen;
        seen.puuid = "seen-puuid";
        seen.gameName = "Seen Before";
        seen.tagLine = "EUW";
        seen.nameKey = "seen before";
        seen.tagKey = "euw";
        seen.platform = "EUW1";
        seen.lastSeen = kNow;
        r.upsertPlayer(seen);
    });

    // Players the server has seen still link and answer; anyone else gets Riot's trouble.
    QCOMPARE(accounts.link(user, "Seen Before#EUW", "euw1", kNow).puuid, std::string("seen-puuid"));
    QCOMPARE(social.profile("Seen Before#EUW", nullptr).puuid, std::string("seen-puuid"));
    std::string text;
    QCOMPARE(statusOf([&] { (void)accounts.link(user, "Unknown#EUW", "euw1", kNow); }, &text), 503);
    QVERIFY2(!text.empty() && text.find("key-services-dead") == std::string::npos, text.c_str());
    QCOMPARE(statusOf([&] { (void)social.profile("Unknown#EUW", nullptr); }), 503);
    // A refresh keeps what is stored.
    const std::vector<RiotAccount> after = accounts.refresh(user, kNow + 1);
    QCOMPARE(after.size(), size_t(1));
    QCOMPARE(after[0].gameName, std::optional<std::string>("Seen Before"));
}

// The newest version the CDN lists is announced, and remembered by a server started offline.
void TestRiotServices::dataVersionKeptAcrossRestarts() {
    QTemporaryDir folder;
    const std::filesystem::path file = folder.filePath("static-version").toStdString();
    {
        FakeRiotApi fake(QFS_FIXTURES_DIR);
        const RiotClient riot(configFor(fake.baseUrl(), "key-version"));
        DataVersionKeeper keeper(riot, "1.0.0", file);
        QCOMPARE(keeper.current(), std::string("1.0.0"));
        QVERIFY(keeper.refresh());
        QCOMPARE(keeper.current(), std::string("11.2.1"));
    }
    std::string deadBase;
    {
        FakeRiotApi gone(QFS_FIXTURES_DIR);
        deadBase = gone.baseUrl();
    }
    const RiotClient offline(configFor(deadBase, "key-version-offline"));
    DataVersionKeeper keeper(offline, "1.0.0", file);
    QVERIFY(!keeper.refresh());
    QCOMPARE(keeper.current(), std::string("11.2.1"));
}

QTEST_GUILESS_MAIN(TestRiotServices)
#include "tst_riot_services.moc"
