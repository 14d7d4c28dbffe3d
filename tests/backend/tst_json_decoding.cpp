#include "backend/account_records.h"
#include "backend/archive_records.h"
#include "backend/backend_date.h"
#include "backend/json_keys.h"
#include "backend/json_reader.h"

#include <QJsonDocument>
#include <QTimeZone>
#include <QTest>

namespace {

template <class T> T decode(const QByteArray& json) {
    return decodeRecord<T>(json);
}

template <class T> QString failureOf(const QByteArray& json) {
    try {
        (void)decodeRecord<T>(json);
    } catch (const DecodingFailure& failure) {
        return failure.text();
    }
    return QStringLiteral("<decoded>");
}

} // namespace

class TestJsonDecoding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keyConversion_data() {
        QTest::addColumn<QString>("wire");
        QTest::addColumn<QString>("field");
        QTest::newRow("two pieces") << "riot_id" << "riotId";
        QTest::newRow("three pieces") << "riot_id_game_name" << "riotIdGameName";
        QTest::newRow("acronym piece") << "ddragon_base_url" << "ddragonBaseUrl";
        QTest::newRow("upper-case piece") << "match_ID" << "matchId";
        QTest::newRow("all upper case") << "NEXT_CURSOR" << "nextCursor";
        QTest::newRow("camel case kept") << "matchId" << "matchId";
        QTest::newRow("no underscore kept") << "Puuid" << "Puuid";
        QTest::newRow("leading underscore kept") << "_private_key" << "_privateKey";
        QTest::newRow("trailing underscores kept") << "has_more__" << "hasMore__";
        QTest::newRow("doubled inner underscore") << "kill__participation" << "killParticipation";
        QTest::newRow("only underscores") << "___" << "___";
        QTest::newRow("underscores around one word") << "_id_" << "_id_";
        QTest::newRow("empty") << "" << "";
    }
    void keyConversion() {
        QFETCH(QString, wire);
        QFETCH(QString, field);
        QCOMPARE(JsonKeys::fromSnakeCase(wire), field);
    }

    void backendDate_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("expectedMs"); // -1: no date
        const qint64 base = QDateTime(QDate(2025, 3, 1), QTime(18, 4, 5), QTimeZone::utc()).toMSecsSinceEpoch();
        QTest::newRow("six fraction digits, offset") << "2025-03-01T18:04:05.123456+02:00" << base + 123 - 2 * 3600000;
        QTest::newRow("six fraction digits, Z") << "2025-03-01T18:04:05.123456Z" << base + 123;
        QTest::newRow("whole seconds, Z") << "2025-03-01T18:04:05Z" << base;
        QTest::newRow("whole seconds, offset") << "2025-03-01T18:04:05+01:00" << base - 3600000;
        QTest::newRow("offset without colon") << "2025-03-01T18:04:05+0100" << base - 3600000;
        QTest::newRow("date only") << "2025-03-01" << qint64(-1);
        QTest::newRow("no zone") << "2025-03-01T18:04:05" << qint64(-1);
        QTest::newRow("trailing text") << "2025-03-01T18:04:05Zjunk" << qint64(-1);
        QTest::newRow("month 13") << "2025-13-01T18:04:05Z" << qint64(-1);
        QTest::newRow("empty") << "" << qint64(-1);
        QTest::newRow("words") << "yesterday" << qint64(-1);
        // The usual shapes are read without the general formatters and must agree with them.
        QTest::newRow("fraction truncated") << "2025-03-01T18:04:05.999999+00:00" << base + 999;
        QTest::newRow("negative half-hour offset") << "2025-03-01T18:04:05.000001-05:30" << base + 5 * 3600000 + 30 * 60000;
        QTest::newRow("offset past midnight") << "2025-01-01T00:30:00+01:00" << QDateTime(QDate(2024, 12, 31), QTime(23, 30), QTimeZone::utc()).toMSecsSinceEpoch();
        QTest::newRow("leap day") << "2024-02-29T12:00:00Z" << QDateTime(QDate(2024, 2, 29), QTime(12, 0), QTimeZone::utc()).toMSecsSinceEpoch();
        QTest::newRow("no leap day") << "2025-02-29T12:00:00Z" << qint64(-1);
        QTest::newRow("hour 24") << "2025-03-01T24:00:00Z" << qint64(-1);
        QTest::newRow("minute 60") << "2025-03-01T18:60:00Z" << qint64(-1);
        QTest::newRow("month 0") << "2025-00-10T18:04:05Z" << qint64(-1);
        QTest::newRow("offset minutes 60") << "2025-03-01T18:04:05+01:60" << qint64(-1);
        QTest::newRow("lower-case t") << "2025-03-01t18:04:05Z" << qint64(-1);
        QTest::newRow("space for T") << "2025-03-01 18:04:05Z" << qint64(-1);
        QTest::newRow("trailing space") << "2025-03-01T18:04:05Z " << qint64(-1);
    }
    void backendDate() {
        QFETCH(QString, text);
        QFETCH(qint64, expectedMs);
        const auto date = BackendDate::fromBackend(text);
        if (expectedMs < 0) {
            QVERIFY2(!date, qPrintable(date ? date->toString(Qt::ISODateWithMs) : QString()));
        } else {
            QVERIFY(date);
            QCOMPARE(date->toMSecsSinceEpoch(), expectedMs);
        }
    }
    void backendDateOfNothingIsNothing() { QVERIFY(!BackendDate::fromBackend(std::nullopt)); }

    void riotId_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("riotId");
        const QByteArray head = R"({"id":1,"puuid":"p","platform":"euw1","region":"europe")";
        QTest::newRow("name and tag") << head + R"(,"game_name":"Ahri","tag_line":"EUW"})" << "Ahri#EUW";
        QTest::newRow("tag missing") << head + R"(,"game_name":"Ahri"})" << "Ahri";
        QTest::newRow("name null") << head + R"(,"game_name":null,"tag_line":"EUW"})" << "EUW";
        QTest::newRow("both missing") << head + "}" << "";
    }
    void riotId() {
        QFETCH(QByteArray, json);
        QFETCH(QString, riotId);
        QCOMPARE(decode<RiotAccountDTO>(json).riotId(), riotId);
    }

    void optionalNullsAreAbsent() {
        const auto account = decode<RiotAccountDTO>(
            R"({"id":1,"puuid":"p","platform":"euw1","region":"europe","is_owner":null,"profile_icon_id":null,"summoner_level":null})");
        QVERIFY(!account.isOwner && !account.profileIconId && !account.summonerLevel);

        const auto match = decode<MatchDTO>(
            R"({"id":3,"match_id":"EUW1_1","platform":"EUW1","queue_id":420,"game_duration":1799,"season":null,"game_version":null,"updated_at":null})");
        QVERIFY(!match.season && !match.gameVersion && !match.updatedAt && !match.isRanked);
    }

    void participantItems() {
        const QByteArray head =
            R"({"id":1,"match_id":3,"puuid":"p","team_id":100,"win":true,"champion_id":103,"champion_name":"Ahri",)"
            R"("kills":1,"deaths":0,"assists":2,"total_cs":10,"gold_earned":500,"vision_score":1,"damage_to_champions":900)";
        QVERIFY(!decode<ParticipantDTO>(head + R"(,"items":null})").items);
        QVERIFY(!decode<ParticipantDTO>(head + "}").items);
        const auto empty = decode<ParticipantDTO>(head + R"(,"items":[]})").items;
        QVERIFY(empty && empty->isEmpty());
        QCOMPARE(*decode<ParticipantDTO>(head + R"(,"items":[3089,0,3020]})").items, (QList<qint64>{3089, 0, 3020}));
    }

    void snakeAndCamelKeysBothFill() {
        QCOMPARE(decode<SyncResponse>(R"({"matches":[],"participants":[],"rank_snapshots":[],"performance_scores":[],"next_cursor":"c1","has_more":true})")
                     .nextCursor,
                 std::optional<QString>(QStringLiteral("c1")));
        const auto camel = decode<SyncResponse>(
            R"({"matches":[],"participants":[],"rankSnapshots":[],"performanceScores":[],"nextCursor":"c2","hasMore":false})");
        QCOMPARE(camel.nextCursor, std::optional<QString>(QStringLiteral("c2")));
        QVERIFY(!camel.hasMore);
    }

    void emptyFinalPage() {
        const auto page = decode<SyncResponse>(
            R"({"matches":[],"participants":[],"rank_snapshots":[],"performance_scores":[],"has_more":false})");
        QVERIFY(page.matches.isEmpty() && page.participants.isEmpty() && !page.nextCursor && !page.hasMore);
    }

    void mapKeysAreConverted() {
        const auto score = decode<PerformanceScoreDTO>(
            R"({"id":1,"riot_account_id":2,"match_id":3,"champion_id":4,"score":61.5,)"
            R"("components":{"kill_participation":0.64,"visionScore":0.4},"baseline_kind":"self"})");
        QCOMPARE(score.components.keys(), (QStringList{"killParticipation", "visionScore"}));
        QCOMPARE(score.components.value("killParticipation"), 0.64);
    }

    void integers_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("plain") << QByteArray("42") << true << qint64(42);
        QTest::newRow("whole float") << QByteArray("42.0") << true << qint64(42);
        QTest::newRow("beyond 2^53 keeps digits") << QByteArray("9007199254740993") << true << qint64(9007199254740993);
        QTest::newRow("negative") << QByteArray("-5") << true << qint64(-5);
        QTest::newRow("fraction") << QByteArray("42.5") << false << qint64(0);
        QTest::newRow("huge") << QByteArray("1e300") << false << qint64(0);
        QTest::newRow("text") << QByteArray("\"42\"") << false << qint64(0);
        QTest::newRow("flag") << QByteArray("true") << false << qint64(0);
    }
    void integers() {
        QFETCH(QByteArray, value);
        QFETCH(bool, accepted);
        QFETCH(qint64, expected);
        const QByteArray json = R"({"id":)" + value + R"(,"email":"a@b.c"})";
        if (accepted) {
            QCOMPARE(decode<UserDTO>(json).id, expected);
        } else {
            const QString text = failureOf<UserDTO>(json);
            QVERIFY2(text.contains("\"id\"") && text.contains("integer"), qPrintable(text));
        }
    }

    void failuresNameKeyAndPath_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QStringList>("mustMention");
        QTest::newRow("missing top-level key") << QByteArray(R"({"user":{"id":1,"email":"a"}})")
                                               << QStringList{"\"token\"", "top level"};
        QTest::newRow("missing nested key") << QByteArray(R"({"token":"t","user":{"id":1}})")
                                            << QStringList{"\"email\"", "\"user\""};
        QTest::newRow("wrong type") << QByteArray(R"({"token":"t","user":{"id":"seven","email":"a"}})")
                                    << QStringList{"user.id", "integer", "text"};
        QTest::newRow("required null") << QByteArray(R"({"token":null,"user":{"id":1,"email":"a"}})")
                                       << QStringList{"token", "null"};
        QTest::newRow("object expected") << QByteArray(R"({"token":"t","user":[1]})")
                                         << QStringList{"user", "an object", "a list"};
        QTest::newRow("not JSON") << QByteArray("<html>oops</html>") << QStringList{"not valid JSON"};
        QTest::newRow("top-level list") << QByteArray("[1,2]") << QStringList{"top level", "a list"};
        QTest::newRow("empty body") << QByteArray("") << QStringList{"no body"};
        QTest::newRow("truncated") << QByteArray("{\"token\":\"t\",\"us") << QStringList{"not valid JSON"};
    }
    void failuresNameKeyAndPath() {
        QFETCH(QByteArray, json);
        QFETCH(QStringList, mustMention);
        const QString text = failureOf<AuthResponse>(json);
        for (const QString& part : mustMention)
            QVERIFY2(text.contains(part), qPrintable(text + " lacks " + part));
    }

    void listElementPath() {
        const QString text = failureOf<RiotAccountsResponse>(
            R"({"riot_accounts":[{"id":1,"puuid":"a","platform":"euw1","region":"europe"},{"id":2,"platform":"euw1","region":"europe"}]})");
        QVERIFY2(text.contains("\"puuid\"") && text.contains("riotAccounts[1]"), qPrintable(text));
    }

    void emptyAccountListIsValid() {
        QVERIFY(decode<RiotAccountsResponse>(R"({"riot_accounts":[]})").riotAccounts.isEmpty());
    }

    void deeplyNestedAnswerFailsCleanly() {
        QByteArray json = R"({"token":"t","user":)";
        for (int i = 0; i < 5000; ++i)
            json += "[";
        QVERIFY(!failureOf<AuthResponse>(json).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestJsonDecoding)
#include "tst_json_decoding.moc"
