// The Riot client against a fake Riot API on loopback that serves the shared fixtures and
// enforces rate limits as Riot does. Where the personal key's two-minute window would make a
// test last minutes, the fake announces a shorter long window (50 per 3 s, 40 per 2 s): the
// client learns windows from the answers' headers, so the behaviour is the same, only faster.
// Every test uses a key of its own, as the limiters are shared per key for the whole process.

#include "capture_listener.h"
#include "fake_riot_api.h"
#include "riot/rate_limiter.h"
#include "riot/riot_client.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTest>

#include <atomic>
#include <thread>

using namespace qf;
using namespace std::chrono_literals;
using qf::test::CaptureListener;
using qf::test::FakeRiotApi;
using qf::test::FakeWindow;

namespace {

const char* const kFixtures = QFS_FIXTURES_DIR;

RiotApiConfig configFor(const std::string& base) {
    static std::atomic<int> keys{0};
    RiotApiConfig config;
    config.apiKey = "RGAPI-5ec7e7-" + std::to_string(++keys) + "-" + QTest::currentTestFunction();
    config.baseOverride = base;
    config.retryBackoff = 100ms;
    config.connectTimeout = 2000ms;
    config.totalTimeout = 5000ms;
    return config;
}

double secondsBetween(std::chrono::steady_clock::time_point a, std::chrono::steady_clock::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

#define REQUIRE_FIXTURES()                                                                                             \
    if (!QFileInfo::exists(QString::fromUtf8(kFixtures)))                                                              \
        QSKIP("the shared fixtures are not there");

} // namespace

class TestRiotClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void typedCallsReadTheRealAnswers() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures);
        const std::string puuid = FakeRiotApi::fixtureAccountPuuid();
        fake.setMatchHistory(puuid, 150);
        const RiotClient client(configFor(fake.baseUrl()));

        const auto account = client.accountByRiotId("SSG Xayah#NA1", "NA1");
        QVERIFY2(account.ok(), account.text.c_str());
        QCOMPARE(account.value.puuid, puuid);
        QCOMPARE(account.value.gameName, std::string("SSG Xayah"));
        QCOMPARE(client.accountByPuuid(puuid, "na1").value.tagLine, std::string("NA1"));

        const auto summoner = client.summonerByPuuid(puuid, "na1");
        QVERIFY(summoner.ok());
        QCOMPARE(summoner.value.profileIconId, int64_t(4851));
        QCOMPARE(summoner.value.summonerLevel, int64_t(138));

        const auto entries = client.leagueEntriesByPuuid(puuid, "na1");
        QVERIFY(entries.ok());
        QCOMPARE(entries.value.size(), size_t(2));
        QCOMPARE(entries.value[0].tier.value_or(""), std::string("GOLD"));

        const auto masteries = client.topMasteriesByPuuid(puuid, "na1", 2);
        QVERIFY(masteries.ok());
        QCOMPARE(masteries.value.size(), size_t(2));
        QCOMPARE(masteries.value[0].championId, int64_t(498));

        const auto firstPage = client.matchIdsByPuuid(puuid, "euw1", 0, 100);
        const auto lastPage = client.matchIdsByPuuid(puuid, "euw1", 100, 100);
        QVERIFY(firstPage.ok() && lastPage.ok());
        QCOMPARE(firstPage.value.size(), size_t(100));
        QCOMPARE(lastPage.value.size(), size_t(50));
        QCOMPARE(firstPage.value.front(), std::string("EUW1_7000000000"));
        QCOMPARE(lastPage.value.front(), std::string("EUW1_6999999900"));
        QCOMPARE(client.matchIdsByPuuid("someone-else", "euw1", 0, 20).value.size(), size_t(0));

        const auto match = client.matchJson(firstPage.value.front());
        QVERIFY(match.ok());
        // The fixture game, under the id asked for.
        QVERIFY(match.value.find("\"EUW1_7000000000\"") != std::string::npos);
        QVERIFY(match.value.find("NA1_4223689858") == std::string::npos);
        QCOMPARE(match.value.size(), fake.fixture("match-v5-1.json").size() + 2);
        const auto timeline = client.timelineJson(firstPage.value.front());
        QVERIFY(timeline.ok());
        QCOMPARE(timeline.value, fake.fixture("match-v5-timeline-1.json"));

        const auto version = client.newestDataVersion();
        QVERIFY2(version.ok(), version.text.c_str());
        QCOMPARE(version.value, std::string("11.2.1"));

        // Each call went to its host: accounts and matches to the region, the rest to the platform.
        std::vector<std::string> routings;
        for (const auto& entry : fake.log())
            routings.push_back(entry.routing);
        QCOMPARE(routings, (std::vector<std::string>{"americas", "americas", "na1", "na1", "na1", "europe", "europe",
                                                     "europe", "europe", "europe", ""}));
    }

    void riotIdPiecesTravelEncoded() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures);
        fake.addAccount("Ünï Côde#x", "EUW", "puuid-unicode");
        const RiotClient client(configFor(fake.baseUrl()));
        const auto account = client.accountByRiotId("Ünï Côde#x#EUW", "euw1");
        QVERIFY2(account.ok(), account.text.c_str());
        QCOMPARE(account.value.puuid, std::string("puuid-unicode"));
        QCOMPARE(fake.log().at(0).path,
                 std::string("/europe/riot/account/v1/accounts/by-riot-id/%C3%9Cn%C3%AF%20C%C3%B4de%23x/EUW"));
        // Players of the sea platforms have their accounts served from asia.
        QVERIFY(client.accountByRiotId("SSG Xayah#NA1", "oc1").ok());
        QCOMPARE(fake.log().at(1).routing, std::string("asia"));
    }

    void notFoundAndRefusals() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures);
        fake.setMatchHistory("p", 3);
        fake.dropTimeline("EUW1_6999999998");
        const RiotApiConfig config = configFor(fake.baseUrl());
        const RiotClient client(config);

        const auto nobody = client.accountByRiotId("Nobody Here#EUW", "euw1");
        QCOMPARE(nobody.outcome, RiotOutcome::NotFound);
        QCOMPARE(nobody.status, 404);
        QVERIFY2(nobody.text.find("Nobody Here#EUW") != std::string::npos, nobody.text.c_str());

        QCOMPARE(client.matchJson("EUW1_1").outcome, RiotOutcome::NotFound);
        const auto noTimeline = client.timelineJson("EUW1_6999999998");
        QCOMPARE(noTimeline.outcome, RiotOutcome::NotFound);
        QVERIFY(noTimeline.text.find("no timeline") != std::string::npos);
        QVERIFY(client.timelineJson("EUW1_6999999999").ok());

        // Refused before asking Riot.
        const int asked = fake.requestCount();
        QCOMPARE(client.accountByRiotId("no tag at all", "euw1").outcome, RiotOutcome::Refused);
        QCOMPARE(client.summonerByPuuid("p", "zz9").outcome, RiotOutcome::Refused);
        QCOMPARE(client.matchJson("not-a-match").outcome, RiotOutcome::Refused);
        QCOMPARE(fake.requestCount(), asked);

        fake.inject(403, 1, std::nullopt, {}, R"({"status":{"message":"Forbidden","status_code":403}})");
        const auto forbidden = client.summonerByPuuid("p", "euw1");
        QCOMPARE(forbidden.outcome, RiotOutcome::Refused);
        QCOMPARE(forbidden.status, 403);
        QVERIFY(forbidden.text.find("API key") != std::string::npos);

        // A body that repeats the key (a proxy's error page) never brings it into a text.
        for (const int status : {400, 500}) {
            fake.inject(status, 10, std::nullopt, {},
                        R"({"status":{"message":"bad token )" + config.apiKey + R"(","status_code":400}})");
            const auto echoed = client.leagueEntriesByPuuid("p", "euw1");
            QVERIFY(!echoed.ok());
            QVERIFY2(echoed.text.find(config.apiKey) == std::string::npos, echoed.text.c_str());
            QVERIFY(echoed.text.find("bad token") != std::string::npos);
        }
    }

    // The key goes in the X-Riot-Token header and nowhere else: not in the address, not to the CDN.
    void keyTravelsOnlyInItsHeader() {
        CaptureListener listener;
        const RiotApiConfig config = configFor(listener.baseUrl());
        const RiotClient client(config);
        (void)client.summonerByPuuid("abc", "euw1");
        (void)client.newestDataVersion();
        const auto heads = listener.heads();
        QCOMPARE(heads.size(), size_t(2));
        QVERIFY2(heads[0].starts_with("GET /euw1/lol/summoner/v4/summoners/by-puuid/abc HTTP/1.1\r\n"),
                 heads[0].c_str());
        QVERIFY(heads[0].find("\r\nX-Riot-Token: " + config.apiKey + "\r\n") != std::string::npos);
        QVERIFY2(heads[1].starts_with("GET /ddragon/api/versions.json HTTP/1.1\r\n"), heads[1].c_str());
        QVERIFY(heads[1].find(config.apiKey) == std::string::npos);
        QVERIFY(heads[1].find("X-Riot-Token") == std::string::npos);
    }

    void unreachableIsItsOwnOutcome() {
        RiotApiConfig config = configFor("http://127.0.0.1:" + std::to_string(CaptureListener::closedPort()));
        config.serverErrorRetries = 1;
        const auto refused = RiotClient(config).accountByRiotId("Name#TAG", "euw1");
        QCOMPARE(refused.outcome, RiotOutcome::Unavailable);
        QCOMPARE(refused.status, 0);
        QVERIFY2(refused.text.starts_with("The Riot API could not be reached: "), refused.text.c_str());
        QVERIFY(refused.text.find(config.apiKey) == std::string::npos);

        // A host that takes the connection and never answers times out the same way.
        CaptureListener silent(true);
        config = configFor(silent.baseUrl());
        config.totalTimeout = 300ms;
        config.serverErrorRetries = 1;
        const auto hung = RiotClient(config).matchJson("EUW1_1");
        QCOMPARE(hung.outcome, RiotOutcome::Unavailable);
        QCOMPARE(hung.status, 0);
        QVERIFY2(hung.text.find("could not be reached") != std::string::npos, hung.text.c_str());
        QVERIFY(hung.text.find(config.apiKey) == std::string::npos);
    }

    // 120 requests from four threads through two clients of one key: the limiter they share
    // learns the fake's limits and never lets a request be refused.
    void manyRequestsNeverMeetA429() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures, {{20, 1}, {50, 3}});
        fake.setMatchHistory("p", 120);
        const RiotApiConfig config = configFor(fake.baseUrl());
        const RiotClient first(config);
        const RiotClient second(config);
        std::atomic<int> ok{0};
        std::vector<std::thread> workers;
        for (int w = 0; w < 4; ++w)
            workers.emplace_back([&, w] {
                const RiotClient& client = w % 2 ? first : second;
                for (int i = w; i < 120; i += 4)
                    ok += client.matchJson("EUW1_" + std::to_string(7000000000LL - i), RiotPriority::Background).ok();
            });
        for (auto& worker : workers)
            worker.join();
        QCOMPARE(ok.load(), 120);
        QCOMPARE(fake.limitRefusals(), 0);
        QCOMPARE(fake.requestCount(), 120);
        QCOMPARE(RateLimiter::shared(config.apiKey, "europe")->applicationLimits(),
                 (std::vector<RateLimitWindow>{{20, 1}, {50, 3}}));
    }

    void injected429IsWaitedOut_data() {
        QTest::addColumn<QString>("type");
        QTest::newRow("application") << "application";
        QTest::newRow("method") << "method";
        QTest::newRow("service") << "service";
        QTest::newRow("no type") << "";
    }
    void injected429IsWaitedOut() {
        REQUIRE_FIXTURES();
        QFETCH(QString, type);
        FakeRiotApi fake(kFixtures);
        fake.setMatchHistory("p", 2);
        const RiotClient client(configFor(fake.baseUrl()));
        fake.inject(429, 1, 2, type.toStdString());
        const auto match = client.matchJson("EUW1_7000000000");
        QVERIFY2(match.ok(), match.text.c_str());
        const auto log = fake.log();
        QCOMPARE(log.size(), size_t(2));
        QCOMPARE(log[0].status, 429);
        QCOMPARE(log[1].status, 200);
        QVERIFY2(secondsBetween(log[0].at, log[1].at) >= 2.0,
                 qPrintable(QString::number(secondsBetween(log[0].at, log[1].at))));
    }

    // A user is not kept waiting for a long Retry-After: told when to try again, while the
    // key's requests to that host stay held back for the whole of it.
    void longRetryAfterTurnsTheUserAway() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures);
        RiotApiConfig config = configFor(fake.baseUrl());
        config.foregroundMaxWait = 1000ms;
        const RiotClient client(config);
        fake.inject(429, 1, 30, "application");
        QElapsedTimer timer;
        timer.start();
        const auto first = client.accountByRiotId("SSG Xayah#NA1", "na1");
        QCOMPARE(first.outcome, RiotOutcome::Unavailable);
        QCOMPARE(first.status, 429);
        QVERIFY2(first.text.find("try again in 30 s") != std::string::npos, first.text.c_str());
        const auto second = client.accountByPuuid(FakeRiotApi::fixtureAccountPuuid(), "na1");
        QCOMPARE(second.outcome, RiotOutcome::Unavailable);
        QVERIFY(timer.elapsed() < 1000);
        QCOMPARE(fake.requestCount(), 1);
        // Another host has limits of its own.
        QVERIFY(client.summonerByPuuid(FakeRiotApi::fixtureAccountPuuid(), "na1").ok());
    }

    // A 429 naming the application's limit holds back every request of the key on that host,
    // not only the one refused.
    void applicationBlockHoldsOtherRequests() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures);
        fake.setMatchHistory("p", 2);
        const RiotClient client(configFor(fake.baseUrl()));
        fake.inject(429, 1, 2, "application");
        std::thread refused([&] { (void)client.matchJson("EUW1_7000000000"); });
        while (fake.log().empty())
            std::this_thread::sleep_for(5ms);
        std::this_thread::sleep_for(100ms);
        QVERIFY(client.matchIdsByPuuid("p", "euw1", 0, 10).ok());
        refused.join();
        const auto log = fake.log();
        QCOMPARE(log.size(), size_t(3));
        for (size_t i = 1; i < log.size(); ++i)
            QVERIFY(secondsBetween(log[0].at, log[i].at) >= 2.0);
    }

    void serverErrorsAreRetriedABoundedNumberOfTimes() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures);
        RiotApiConfig config = configFor(fake.baseUrl());
        config.serverErrorRetries = 2;
        const RiotClient client(config);

        fake.inject(503, 4);
        const auto failing = client.summonerByPuuid(FakeRiotApi::fixtureAccountPuuid(), "na1");
        QCOMPARE(failing.outcome, RiotOutcome::Unavailable);
        QCOMPARE(failing.status, 503);
        QVERIFY2(failing.text.find("503") != std::string::npos, failing.text.c_str());
        auto log = fake.log();
        QCOMPARE(log.size(), size_t(3));
        // The pause grows: 100 ms, then 200 ms.
        QVERIFY(secondsBetween(log[0].at, log[1].at) >= 0.1);
        QVERIFY(secondsBetween(log[1].at, log[2].at) >= 0.2);

        // One 503 is still due, then a 500: a request that fails twice and then succeeds is fine.
        fake.inject(500, 1);
        const auto recovered = client.summonerByPuuid(FakeRiotApi::fixtureAccountPuuid(), "na1");
        QVERIFY2(recovered.ok(), recovered.text.c_str());
        QCOMPARE(fake.requestCount(), 3 + 3);
    }

    // A user's look-up while a long backfill waits on the same limiter (32 threads, each with
    // a request queued) is let through at the next free place, not behind the queue.
    void foregroundGoesAheadOfBackfill() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures, {{20, 1}, {40, 2}});
        fake.setMatchHistory("p", 200);
        const RiotClient client(configFor(fake.baseUrl()));
        std::atomic<int> done{0};
        std::vector<std::thread> backfill;
        for (int w = 0; w < 32; ++w)
            backfill.emplace_back([&, w] {
                for (int i = w; i < 200; i += 32) {
                    (void)client.matchJson("EUW1_" + std::to_string(7000000000LL - i), RiotPriority::Background);
                    ++done;
                }
            });
        while (done < 60)
            std::this_thread::sleep_for(10ms);

        const auto issued = std::chrono::steady_clock::now();
        const auto account = client.accountByRiotId("SSG Xayah#NA1", "euw1");
        const double waited = secondsBetween(issued, std::chrono::steady_clock::now());
        for (auto& thread : backfill)
            thread.join();

        QVERIFY2(account.ok(), account.text.c_str());
        QVERIFY2(waited < 3.0, qPrintable(QString::number(waited)));
        // Only backfill requests already let through when the look-up was asked for (a moment's
        // worth: a few more on a loaded machine, where the threads' sends stretch) reached the
        // fake between the two; without the priority it would be most of the 140 left.
        int overtaken = 0;
        for (const auto& entry : fake.log()) {
            if (entry.path.find("by-riot-id") != std::string::npos)
                break;
            overtaken += entry.at > issued;
        }
        QVERIFY2(overtaken <= 10, qPrintable(QString::number(overtaken)));
        QCOMPARE(fake.limitRefusals(), 0);
    }

    // A backfill that has used its share of a long window stalls until it slides; a look-up
    // and a timeline asked for then still go at once, in the share it leaves free.
    void userFindsRoomInAWindowTheBackfillFilled() {
        REQUIRE_FIXTURES();
        FakeRiotApi fake(kFixtures, {{20, 1}, {100, 10}});
        fake.setMatchHistory("p", 110);
        const RiotClient client(configFor(fake.baseUrl()));
        std::atomic<int> done{0};
        std::vector<std::thread> backfill;
        for (int w = 0; w < 4; ++w)
            backfill.emplace_back([&, w] {
                for (int i = w; i < 110; i += 4) {
                    (void)client.matchJson("EUW1_" + std::to_string(7000000000LL - i), RiotPriority::Background);
                    ++done;
                }
            });
        while (done < 98)
            std::this_thread::sleep_for(10ms);
        std::this_thread::sleep_for(200ms);

        QElapsedTimer waited;
        waited.start();
        const auto account = client.accountByRiotId("SSG Xayah#NA1", "euw1");
        const auto timeline = client.timelineJson("EUW1_7000000000");
        const qint64 milliseconds = waited.elapsed();
        const int doneThen = done;
        for (auto& thread : backfill)
            thread.join();

        QVERIFY(account.ok() && timeline.ok());
        QCOMPARE(doneThen, 98); // the backfill was stalled all along
        QVERIFY2(milliseconds < 1500, qPrintable(QString::number(milliseconds)));
        QCOMPARE(fake.limitRefusals(), 0);
        QCOMPARE(fake.requestCount(), 112);
    }
};

QTEST_GUILESS_MAIN(TestRiotClient)
#include "tst_riot_client.moc"
