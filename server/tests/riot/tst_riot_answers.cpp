// What the Riot client reads and writes without a network: rate-limit headers, request
// addresses, and the real answers of the shared fixtures with their quirks.

#include "riot/rate_limit_headers.h"
#include "riot/riot_answer_parsers.h"
#include "riot/riot_client.h"
#include "riot/riot_urls.h"

#include <QFile>
#include <QTest>

using namespace qf;

namespace {

std::string fixture(const char* name) {
    QFile file(QStringLiteral(QFS_FIXTURES_DIR "/") + QString::fromUtf8(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().toStdString();
}

#define REQUIRE_FIXTURE(text, name)                                                                                    \
    const std::string text = fixture(name);                                                                            \
    if (text.empty())                                                                                                  \
        QSKIP("the shared fixtures are not there");

QString windowsText(const std::optional<std::vector<RateLimitWindow>>& windows) {
    if (!windows)
        return QStringLiteral("malformed");
    QStringList pieces;
    for (const auto& window : *windows)
        pieces << QStringLiteral("%1/%2").arg(window.count).arg(window.seconds);
    return pieces.join(' ');
}

} // namespace

class TestRiotAnswers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rateLimitHeader_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("expected");
        QTest::newRow("personal key") << "20:1,100:120"
                                      << "20/1 100/120";
        QTest::newRow("counts") << "3:1,57:120"
                                << "3/1 57/120";
        QTest::newRow("spaces") << " 500:10 , 30000:600 "
                                << "500/10 30000/600";
        QTest::newRow("zero counted") << "0:1"
                                      << "0/1";
        QTest::newRow("absent") << ""
                                << "";
        QTest::newRow("trailing comma") << "20:1,"
                                        << "20/1";
        QTest::newRow("no colon") << "20"
                                  << "malformed";
        QTest::newRow("word") << "a:1"
                              << "malformed";
        QTest::newRow("no window") << "20:0"
                                   << "malformed";
        QTest::newRow("negative") << "-1:1"
                                  << "malformed";
        QTest::newRow("semicolons") << "20:1;100:120"
                                    << "malformed";
        QTest::newRow("real seconds") << "20:1.5"
                                      << "malformed";
        QTest::newRow("overflow") << "99999999999:1"
                                  << "malformed";
    }
    void rateLimitHeader() {
        QFETCH(QString, header);
        QFETCH(QString, expected);
        QCOMPARE(windowsText(parseRateLimitHeader(header.toStdString())), expected);
    }

    void retryAfter_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<int>("seconds"); // -1: none
        QTest::newRow("seconds") << "3" << 3;
        QTest::newRow("spaces") << " 10 " << 10;
        QTest::newRow("zero") << "0" << 0;
        QTest::newRow("absent") << "" << -1;
        QTest::newRow("http date") << "Wed, 21 Oct 2015 07:28:00 GMT" << -1;
        QTest::newRow("fraction") << "1.5" << -1;
    }
    void retryAfter() {
        QFETCH(QString, header);
        QFETCH(int, seconds);
        const auto parsed = parseRetryAfter(header.toStdString());
        QCOMPARE(parsed ? int(parsed->count()) : -1, seconds);
    }

    void riotIdPaths_data() {
        QTest::addColumn<QString>("riotId");
        QTest::addColumn<QString>("path"); // empty: not a Riot ID
        QTest::newRow("plain") << "SSG Xayah#NA1"
                               << "/riot/account/v1/accounts/by-riot-id/SSG%20Xayah/NA1";
        QTest::newRow("hash in the name") << "x#y#TAG"
                                          << "/riot/account/v1/accounts/by-riot-id/x%23y/TAG";
        QTest::newRow("slash and percent") << "a/b%c#EUW"
                                           << "/riot/account/v1/accounts/by-riot-id/a%2Fb%25c/EUW";
        QTest::newRow("accents") << QStringLiteral("Ünï#EUW")
                                 << "/riot/account/v1/accounts/by-riot-id/%C3%9Cn%C3%AF/EUW";
        QTest::newRow("hangul") << QStringLiteral("페이커#KR1")
                                << "/riot/account/v1/accounts/by-riot-id/%ED%8E%98%EC%9D%B4%EC%BB%A4/KR1";
        QTest::newRow("spaces around") << "  Name  #  TAG "
                                       << "/riot/account/v1/accounts/by-riot-id/Name/TAG";
        QTest::newRow("query characters") << "a?b&c=d#T+1"
                                          << "/riot/account/v1/accounts/by-riot-id/a%3Fb%26c%3Dd/T%2B1";
        QTest::newRow("no tag") << "Name#"
                                << "";
        QTest::newRow("no hash") << "Name"
                                 << "";
        QTest::newRow("no name") << "#TAG"
                                 << "";
    }
    void riotIdPaths() {
        QFETCH(QString, riotId);
        QFETCH(QString, path);
        const auto id = parseRiotId(riotId.toStdString());
        QCOMPARE(id ? QString::fromStdString(accountByRiotIdPath(*id)) : QString(), path);
    }

    void addresses() {
        RiotApiConfig config;
        QCOMPARE(riotApiUrl(config, "europe", "/riot/account/v1/accounts/by-puuid/p"),
                 std::string("https://europe.api.riotgames.com/riot/account/v1/accounts/by-puuid/p"));
        QCOMPARE(dataDragonVersionsUrl(config), std::string("https://ddragon.leagueoflegends.com/api/versions.json"));
        config.baseOverride = "http://127.0.0.1:9000/";
        QCOMPARE(riotApiUrl(config, "euw1", "/lol/league/v4/entries/by-puuid/p"),
                 std::string("http://127.0.0.1:9000/euw1/lol/league/v4/entries/by-puuid/p"));
        QCOMPARE(dataDragonVersionsUrl(config), std::string("http://127.0.0.1:9000/ddragon/api/versions.json"));
    }

    void matchRegions_data() {
        QTest::addColumn<QString>("matchId");
        QTest::addColumn<QString>("region");
        QTest::newRow("euw") << "EUW1_7684569678"
                             << "europe";
        QTest::newRow("kr") << "KR_6823337832"
                            << "asia";
        QTest::newRow("na") << "NA1_4223689858"
                            << "americas";
        QTest::newRow("oce") << "OC1_1"
                             << "sea";
        QTest::newRow("no platform") << "7684569678"
                                     << "";
        QTest::newRow("unknown platform") << "XX9_1"
                                          << "";
        QTest::newRow("no number") << "EUW1_"
                                   << "";
    }
    void matchRegions() {
        QFETCH(QString, matchId);
        QFETCH(QString, region);
        QCOMPARE(QString::fromStdString(RiotClient::regionOfMatch(matchId.toStdString()).value_or("")), region);
    }

    void account() {
        REQUIRE_FIXTURE(text, "account-v1-1.json");
        const auto account = parseRiotAccount(text);
        QVERIFY(account);
        QCOMPARE(account->puuid.size(), size_t(78));
        QCOMPARE(account->gameName, std::string("SSG Xayah"));
        QCOMPARE(account->tagLine, std::string("NA1"));
        // An answer without a puuid names no one.
        QVERIFY(!parseRiotAccount(R"({"gameName":"x","tagLine":"y"})"));
    }

    // The 2021 answer still carries id, accountId and name; the 2025 one has dropped them.
    void summoners_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<qint64>("icon");
        QTest::addColumn<qint64>("level");
        QTest::newRow("2021") << "summoner-v4-1.json" << qint64(4851) << qint64(138);
        QTest::newRow("2025") << "summoner-v4-2.json" << qint64(6793) << qint64(340);
    }
    void summoners() {
        QFETCH(QString, file);
        QFETCH(qint64, icon);
        QFETCH(qint64, level);
        REQUIRE_FIXTURE(text, file.toUtf8().constData());
        const auto summoner = parseSummoner(text);
        QVERIFY(summoner);
        QCOMPARE(summoner->profileIconId, icon);
        QCOMPARE(summoner->summonerLevel, level);
        QVERIFY(!summoner->puuid.empty());
    }

    void leagueEntries() {
        REQUIRE_FIXTURE(ranked, "league-v4-entries-1.json");
        const auto entries = parseLeagueEntries(ranked);
        QVERIFY(entries);
        QCOMPARE(entries->size(), size_t(2));
        const LeagueEntryDto& solo = entries->at(0);
        QCOMPARE(solo.queueType, std::string("RANKED_SOLO_5x5"));
        QCOMPARE(solo.tier.value_or(""), std::string("GOLD"));
        QCOMPARE(solo.division.value_or(""), std::string("II"));
        QCOMPARE(solo.leaguePoints, int64_t(0));
        QCOMPARE(solo.wins, int64_t(183));
        QCOMPARE(solo.losses, int64_t(165));
        QVERIFY(entries->at(1).hotStreak);
        QCOMPARE(entries->at(1).leaguePoints, int64_t(59));

        // Arena's entries come without tier, rank or league.
        REQUIRE_FIXTURE(arena, "league-v4-entries-3.json");
        const auto cherry = parseLeagueEntries(arena);
        QVERIFY(cherry);
        QCOMPARE(cherry->size(), size_t(1));
        QCOMPARE(cherry->at(0).queueType, std::string("CHERRY"));
        QVERIFY(!cherry->at(0).tier);
        QVERIFY(!cherry->at(0).division);
        QCOMPARE(cherry->at(0).wins, int64_t(7));
        QVERIFY(cherry->at(0).freshBlood);

        QCOMPARE(parseLeagueEntries("[]")->size(), size_t(0));
        QVERIFY(!parseLeagueEntries(R"({"status":{"status_code":403}})"));
    }

    void masteries_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("entries");
        QTest::addColumn<qint64>("topChampion");
        QTest::addColumn<qint64>("topPoints");
        QTest::addColumn<qint64>("topLevel");
        QTest::newRow("2021, all champions") << "mastery-v4-1.json" << 57 << qint64(-1) << qint64(-1) << qint64(-1);
        QTest::newRow("2025 top three") << "mastery-v4-2.json" << 3 << qint64(498) << qint64(710708) << qint64(63);
        QTest::newRow("uncapped levels") << "mastery-v4-3.json" << 3 << qint64(92) << qint64(1969515) << qint64(182);
    }
    void masteries() {
        QFETCH(QString, file);
        QFETCH(int, entries);
        QFETCH(qint64, topChampion);
        QFETCH(qint64, topPoints);
        QFETCH(qint64, topLevel);
        REQUIRE_FIXTURE(text, file.toUtf8().constData());
        const auto masteries = parseChampionMasteries(text);
        QVERIFY(masteries);
        QCOMPARE(int(masteries->size()), entries);
        for (size_t i = 1; i < masteries->size(); ++i)
            QVERIFY(masteries->at(i - 1).championPoints >= masteries->at(i).championPoints);
        if (topChampion >= 0) {
            QCOMPARE(masteries->front().championId, topChampion);
            QCOMPARE(masteries->front().championPoints, topPoints);
            QCOMPARE(masteries->front().championLevel, topLevel);
        }
        QVERIFY(masteries->front().lastPlayTime > 1'500'000'000'000);
    }

    void matchIds() {
        const auto ids = parseMatchIds(R"(["EUW1_2","EUW1_1",7,null,""])");
        QVERIFY(ids);
        QCOMPARE(*ids, (std::vector<std::string>{"EUW1_2", "EUW1_1"}));
        QVERIFY(!parseMatchIds(R"({"status":{}})"));
        QVERIFY(!parseMatchIds("not json"));
    }

    void errorMessages_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("message");
        QTest::newRow("match") << "webapi-error-404-1.json"
                               << "Data not found - match file not found";
        QTest::newRow("account, keys swapped") << "webapi-error-404-2.json"
                                               << "Data not found - No results found for player";
    }
    void errorMessages() {
        QFETCH(QString, file);
        QFETCH(QString, message);
        REQUIRE_FIXTURE(text, file.toUtf8().constData());
        QCOMPARE(QString::fromStdString(riotErrorMessage(text)), message);
        QCOMPARE(riotErrorMessage("<html>Bad gateway</html>"), std::string());
        QCOMPARE(riotErrorMessage(R"({"status":"x"})"), std::string());
    }

    void versions() {
        REQUIRE_FIXTURE(text, "ddragon-versions-1.json");
        // The list's tail holds "lolpatch_3.7" and "0.151.2": neither may pass for the newest.
        QCOMPARE(newestDataVersion(text).value_or(""), std::string("11.2.1"));
        // Compared as numbers, not as text, and wherever the newest stands in the list.
        QCOMPARE(newestDataVersion(R"(["9.9.1","lolpatch_99.1","10.10.5","10.9.1","0.151.2"])").value_or(""),
                 std::string("10.10.5"));
        QVERIFY(!newestDataVersion(R"(["lolpatch_4.11"])"));
        QVERIFY(!newestDataVersion("{}"));
    }
};

QTEST_GUILESS_MAIN(TestRiotAnswers)
#include "tst_riot_answers.moc"
