#include "backend/json_reader.h"
#include "backend/social_records.h"
#include "backend/timeline_records.h"

#include <QTest>

namespace {

template <class T> QString failureOf(const QByteArray& json) {
    try {
        (void)decodeRecord<T>(json);
    } catch (const DecodingFailure& failure) {
        return failure.text();
    }
    return QStringLiteral("<decoded>");
}

const QByteArray objectives = R"("objectives":{"dragons":{"mine":3,"enemy":1},"barons":{"mine":1,"enemy":0},)"
                              R"("heralds":{"mine":0,"enemy":1},"towers":{"mine":8,"enemy":4}})";

QByteArray timeline(const QByteArray& frames, const QByteArray& events, const QByteArray& stats) {
    return R"({"ownerChampion":"Ahri","ownerTeam":100,"frames":)" + frames + R"(,"events":)" + events + R"(,"stats":)" +
           stats + "}";
}

} // namespace

class TestSocialRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void duoWithoutRiotIdIsKnownByItsPuuid() {
        const auto duos = decodeRecord<DuosResponse>(
            R"({"duos":[{"puuid":"p-1","riot_id":null,"games":4,"wins":3,"losses":1,"winrate":0.75,)"
            R"("last_played":"2025-03-01T18:04:05Z","rank":"GOLD II","profile_icon_id":4568},)"
            R"({"puuid":"p-2","games":3,"wins":0,"losses":3,"winrate":0}]})");
        QCOMPARE(duos.duos.size(), 2);
        QCOMPARE(duos.duos[0].puuid, QStringLiteral("p-1"));
        QVERIFY(!duos.duos[0].riotId);
        QCOMPARE(duos.duos[0].winrate, 0.75);
        QCOMPARE(duos.duos[0].profileIconId, std::optional<qint64>(4568));
        QCOMPARE(duos.duos[0].rank, std::optional<QString>("GOLD II"));
        QVERIFY(!duos.duos[1].lastPlayed && !duos.duos[1].rank && !duos.duos[1].profileIconId);
    }

    void unrankedPlayerWithoutMasteryDecodes() {
        const auto profile = decodeRecord<PlayerProfileDto>(
            R"({"account":{"puuid":"p","game_name":null},"platform":"euw1","ranks":[],"mastery":[]})");
        QCOMPARE(profile.account.puuid, QStringLiteral("p"));
        QCOMPARE(profile.account.riotId(), QString());
        QVERIFY(profile.ranks.isEmpty() && profile.mastery.isEmpty());
    }

    void rankEntryWithOnlyItsQueue() {
        const auto profile = decodeRecord<PlayerProfileDto>(
            R"({"account":{"puuid":"p","game_name":"Ada","tag_line":"EUW"},"platform":"euw1","ranks":[)"
            R"({"queue_type":"RANKED_FLEX_SR","tier":null,"rank":null,"league_points":null,"wins":null,"losses":null}],)"
            R"("mastery":[{"champion_id":103,"champion_level":7,"champion_points":251000}]})");
        QCOMPARE(profile.account.riotId(), QStringLiteral("Ada#EUW"));
        QCOMPARE(profile.ranks.size(), 1);
        const RankEntryDto& entry = profile.ranks[0];
        QCOMPARE(entry.queueType, QStringLiteral("RANKED_FLEX_SR"));
        QVERIFY(!entry.tier && !entry.rank && !entry.leaguePoints && !entry.wins && !entry.losses);
        QCOMPARE(profile.mastery[0].championId, 103);
        QCOMPARE(profile.mastery[0].championPoints, 251000);
    }

    void incompleteRecordsFail_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("isProfile");
        QTest::addColumn<QString>("missing");
        const QByteArray account = R"("account":{"puuid":"p"})";
        QTest::newRow("profile without account")
            << QByteArray(R"({"platform":"euw1","ranks":[],"mastery":[]})") << true << "\"account\"";
        QTest::newRow("profile without platform")
            << QByteArray("{" + account + R"(,"ranks":[],"mastery":[]})") << true << "\"platform\"";
        QTest::newRow("profile without ranks")
            << QByteArray("{" + account + R"(,"platform":"euw1","mastery":[]})") << true << "\"ranks\"";
        QTest::newRow("profile without mastery")
            << QByteArray("{" + account + R"(,"platform":"euw1","ranks":[]})") << true << "\"mastery\"";
        QTest::newRow("friend record without total")
            << QByteArray(R"({"friend_puuid":"f","games":[]})") << false << "\"total\"";
        QTest::newRow("friend record without games")
            << QByteArray(R"({"friend_puuid":"f","total":{"games":0,"wins":0,"losses":0,"winrate":0}})") << false
            << "\"games\"";
    }
    void incompleteRecordsFail() {
        QFETCH(QByteArray, json);
        QFETCH(bool, isProfile);
        QFETCH(QString, missing);
        const QString text = isProfile ? failureOf<PlayerProfileDto>(json) : failureOf<FriendStatsDto>(json);
        QVERIFY2(text.contains(missing), qPrintable(text));
    }

    void friendRecordKeepsTheBackendsOrder() {
        const auto record = decodeRecord<FriendStatsDto>(
            R"({"friend_puuid":"f","friend_name":"Bard Main","friend_tag":null,"friend_icon":0,)"
            R"("total":{"games":2,"wins":1,"losses":1,"winrate":0.5},"games":[)"
            R"({"match_id":9,"season":15,"queue_id":420,"game_mode":"CLASSIC","played_at":"2025-03-12T20:00:00Z",)"
            R"("win":true,"owner_champion":"Ahri","owner_position":"MIDDLE","friend_champion":"Bard"},)"
            R"({"match_id":4,"queue_id":450,"win":false,"owner_champion":"Lux","friend_champion":"Sona"}]})");
        QCOMPARE(record.friendName, std::optional<QString>("Bard Main"));
        QVERIFY(!record.friendTag);
        QCOMPARE(record.friendIcon, std::optional<qint64>(0));
        QCOMPARE(record.games.size(), 2);
        QCOMPARE(record.games[0].matchId, 9);
        QCOMPARE(record.games[0].season, std::optional<qint64>(15));
        QCOMPARE(record.games[1].matchId, 4);
        QVERIFY(!record.games[1].season && !record.games[1].playedAt && !record.games[1].ownerPosition);
    }

    // The timeline's members are camelCase on the wire and pass the snake_case key rule unchanged.
    void timelineKeepsItsMemberNames() {
        const auto summary = decodeRecord<TimelineSummaryDto>(timeline(
            R"([{"t":0,"ownerTeamGold":2500,"enemyTeamGold":2500,"goldDiff":0,"ownerGold":500,"ownerCs":0,"ownerXp":0,"ownerLevel":1},)"
            R"({"t":1,"ownerTeamGold":4100,"enemyTeamGold":3900,"goldDiff":200,"ownerGold":820,"ownerCs":6,"ownerXp":280,"ownerLevel":2}])",
            R"([{"kind":"kill","t":185,"team":100,"mine":true,"killer":"Ahri","victim":"Zed"},)"
            R"({"kind":"monster","t":400,"team":200,"mine":false,"monster":"DRAGON","subtype":"FIRE_DRAGON"}])",
            R"({"ownerCsAt10":81,"goldDiffAt10":-800,"maxGoldLead":1260,"maxGoldLeadAt":1200,)"
            R"("firstBlood":{"t":185,"mine":true,"killer":"Ahri","victim":"Zed"},)" +
                objectives + "}"));
        QCOMPARE(summary.ownerChampion, QStringLiteral("Ahri"));
        QCOMPARE(summary.ownerTeam, 100);
        QCOMPARE(summary.frames.size(), 2);
        QCOMPARE(summary.frames[1].goldDiff, 200);
        QCOMPARE(summary.frames[1].ownerTeamGold, 4100);
        QCOMPARE(summary.frames[1].ownerLevel, 2);
        QCOMPARE(summary.events[1].subtype, std::optional<QString>("FIRE_DRAGON"));
        QCOMPARE(summary.stats.ownerCsAt10, std::optional<qint64>(81));
        QCOMPARE(summary.stats.goldDiffAt10, std::optional<qint64>(-800));
        QVERIFY(!summary.stats.goldDiffAt14);
        QCOMPARE(summary.stats.firstBlood->victim, std::optional<QString>("Zed"));
        QCOMPARE(summary.stats.objectives.towers.mine, 8);
        QCOMPARE(summary.stats.objectives.heralds.enemy, 1);
    }

    void timelineWithNothingToShowDecodes() {
        const auto summary = decodeRecord<TimelineSummaryDto>(timeline("[]", "[]", "{" + objectives + "}"));
        QVERIFY(summary.frames.isEmpty() && summary.events.isEmpty());
        const auto& s = summary.stats;
        QVERIFY(!s.ownerCsAt10 && !s.ownerCsAt14 && !s.goldDiffAt10 && !s.goldDiffAt14 && !s.maxGoldLead &&
                !s.maxGoldDeficit && !s.firstBlood);
    }

    void killWithoutKillerDecodes() {
        const auto summary = decodeRecord<TimelineSummaryDto>(
            timeline("[]", R"([{"kind":"kill","t":60,"team":200,"mine":false}])", "{" + objectives + "}"));
        QVERIFY(!summary.events[0].killer && !summary.events[0].victim);
    }

    void objectivesWithoutHeraldsFail() {
        const QString text = failureOf<TimelineSummaryDto>(timeline(
            "[]", "[]",
            R"({"objectives":{"dragons":{"mine":0,"enemy":0},"barons":{"mine":0,"enemy":0},"towers":{"mine":0,"enemy":0}}})"));
        QVERIFY2(text.contains("\"heralds\"") && text.contains("stats.objectives"), qPrintable(text));
    }
};

QTEST_GUILESS_MAIN(TestSocialRecords)
#include "tst_social_records.moc"
