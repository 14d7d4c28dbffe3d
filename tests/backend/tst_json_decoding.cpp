#include "backend/account_records.h"
#include "backend/archive_records.h"
#include "backend/backend_date.h"
#include "backend/json_keys.h"
#include "backend/json_reader.h"

#include <QTest>
#include <QTimeZone>

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
        QTest::newRow("three pieces") << "riot_id_game_name"
                                      << "riotIdGameName";
        QTest::newRow("upper-case piece") << "match_ID"
                                          << "matchId";
        QTest::newRow("all upper case") << "NEXT_CURSOR"
                                        << "nextCursor";
        QTest::newRow("no underscore kept") << "Puuid"
                                            << "Puuid";
        QTest::newRow("leading underscore kept") << "_private_key"
                                                 << "_privateKey";
        QTest::newRow("trailing underscores kept") << "has_more__"
                                                   << "hasMore__";
        QTest::newRow("doubled inner underscore") << "kill__participation"
                                                  << "killParticipation";
        QTest::newRow("only underscores") << "___"
                                          << "___";
        QTest::newRow("underscores around one word") << "_id_"
                                                     << "_id_";
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
        QTest::newRow("whole seconds, Z") << "2025-03-01T18:04:05Z" << base;
        QTest::newRow("offset without colon") << "2025-03-01T18:04:05+0100" << base - 3600000;
        QTest::newRow("no zone") << "2025-03-01T18:04:05" << qint64(-1);
        QTest::newRow("trailing text") << "2025-03-01T18:04:05Zjunk" << qint64(-1);
        // The usual shapes are read without the general formatters and must agree with them.
        QTest::newRow("fraction truncated") << "2025-03-01T18:04:05.999999+00:00" << base + 999;
        QTest::newRow("negative half-hour offset")
            << "2025-03-01T18:04:05.000001-05:30" << base + 5 * 3600000 + 30 * 60000;
        QTest::newRow("offset past midnight")
            << "2025-01-01T00:30:00+01:00"
            << QDateTime(QDate(2024, 12, 31), QTime(23, 30), QTimeZone::utc()).toMSecsSinceEpoch();
        QTest::newRow("leap day") << "2024-02-29T12:00:00Z"
                                  << QDateTime(QDate(2024, 2, 29), QTime(12, 0), QTimeZone::utc()).toMSecsSinceEpoch();
        QTest::newRow("no leap day") << "2025-02-29T12:00:00Z" << qint64(-1);
        QTest::newRow("hour 24") << "2025-03-01T24:00:00Z" << qint64(-1);
        QTest::newRow("offset minutes 60") << "2025-03-01T18:04:05+01:60" << qint64(-1);
        QTest::newRow("lower-case t") << "2025-03-01t18:04:05Z" << qint64(-1);
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

    void riotId_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("riotId");
        const QByteArray head = R"({"id":1,"puuid":"p","platform":"euw1","region":"europe")";
        QTest::newRow("name null") << head + R"(,"game_name":null,"tag_line":"EUW"})"
                                   << "EUW";
        QTest::newRow("both missing") << head + "}"
                                      << "";
    }
    void riotId() {
        QFETCH(QByteArray, json);
        QFETCH(QString, riotId);
        QCOMPARE(decode<RiotAccountDto>(json).riotId(), riotId);
    }

    void optionalNullsAreAbsent() {
        const auto account = decode<RiotAccountDto>(
            R"({"id":1,"puuid":"p","platform":"euw1","region":"europe","is_owner":null,"profile_icon_id":null,"summoner_level":null})");
        QVERIFY(!account.isOwner && !account.profileIconId && !account.summonerLevel);

        const auto match = decode<MatchDto>(
            R"({"id":3,"match_id":"EUW1_1","platform":"EUW1","queue_id":420,"game_duration":1799,"season":null,"game_version":null,"updated_at":null})");
        QVERIFY(!match.season && !match.gameVersion && !match.updatedAt && !match.isRanked);
    }

    void participantItems() {
        const QByteArray head =
            R"({"id":1,"match_id":3,"puuid":"p","team_id":100,"win":true,"champion_id":103,"champion_name":"Ahri",)"
            R"("kills":1,"deaths":0,"assists":2,"total_cs":10,"gold_earned":500,"vision_score":1,"damage_to_champions":900)";
        QVERIFY(!decode<ParticipantDto>(head + R"(,"items":null})").items);
        QVERIFY(!decode<ParticipantDto>(head + "}").items);
        const auto empty = decode<ParticipantDto>(head + R"(,"items":[]})").items;
        QVERIFY(empty && empty->isEmpty());
        QCOMPARE(*decode<ParticipantDto>(head + R"(,"items":[3089,0,3020]})").items, (QList<qint64>{3089, 0, 3020}));
    }

    void realMapsKeepValuesAndConvertKeys() {
        const auto score = decode<PerformanceScoreDto>(
            R"({"id":1,"riot_account_id":2,"match_id":3,"champion_id":4,"score":0.1,)"
            R"("components":{"kill_participation":-1.5e-3,"visionScore":7,"c":123456.789012345},"baseline_kind":"self"})");
        QCOMPARE(score.score, 0.1);
        QCOMPARE(score.components.keys(), (QStringList{"c", "killParticipation", "visionScore"}));
        QCOMPARE(score.components.value("killParticipation"), -1.5e-3);
        QCOMPARE(score.components.value("visionScore"), 7.0);
        QCOMPARE(score.components.value("c"), 123456.789012345);
    }

    void failuresNameKeyAndPath_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QStringList>("mustMention");
        QTest::newRow("missing top-level key")
            << QByteArray(R"({"user":{"id":1,"email":"a"}})") << QStringList{"\"token\"", "top level"};
        QTest::newRow("missing nested key")
            << QByteArray(R"({"token":"t","user":{"id":1}})") << QStringList{"\"email\"", "\"user\""};
        QTest::newRow("wrong type") << QByteArray(R"({"token":"t","user":{"id":"seven","email":"a"}})")
                                    << QStringList{"user.id", "integer", "text"};
        QTest::newRow("required null") << QByteArray(R"({"token":null,"user":{"id":1,"email":"a"}})")
                                       << QStringList{"token", "null"};
        QTest::newRow("object expected") << QByteArray(R"({"token":"t","user":[1]})")
                                         << QStringList{"user", "an object", "a list"};
        QTest::newRow("not JSON") << QByteArray("<html>oops</html>") << QStringList{"not valid JSON"};
        QTest::newRow("top-level list") << QByteArray("[1,2]") << QStringList{"top level", "a list"};
        QTest::newRow("empty body") << QByteArray("") << QStringList{"no body"};
    }
    void failuresNameKeyAndPath() {
        QFETCH(QByteArray, json);
        QFETCH(QStringList, mustMention);
        const QString text = failureOf<AuthResponse>(json);
        for (const QString& part : mustMention)
            QVERIFY2(text.contains(part), qPrintable(text + " lacks " + part));
    }

    void failuresNameTheListElement_data() {
        QTest::addColumn<QByteArray>("second"); // the second element of the list
        QTest::addColumn<QStringList>("mustMention");
        QTest::newRow("missing key") << QByteArray(R"({"id":2,"platform":"euw1","region":"europe"})")
                                     << QStringList{"\"puuid\"", "riotAccounts[1]"};
        QTest::newRow("wrong type") << QByteArray(R"({"id":2,"puuid":"b","platform":"euw1","region":7})")
                                    << QStringList{"riotAccounts[1].region", "a number"};
        QTest::newRow("not an object") << QByteArray("7") << QStringList{"riotAccounts[1]", "an object", "a number"};
    }
    void failuresNameTheListElement() {
        QFETCH(QByteArray, second);
        QFETCH(QStringList, mustMention);
        const QString text = failureOf<RiotAccountsResponse>(
            R"({"riot_accounts":[{"id":1,"puuid":"a","platform":"euw1","region":"europe"},)" + second + "]}");
        for (const QString& part : mustMention)
            QVERIFY2(text.contains(part), qPrintable(text + " lacks " + part));
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
