#include "backend/account_records.h"
#include "backend/archive_records.h"
#include "backend/json_reader.h"

#include <QTest>

namespace {

QString failureOf(const QByteArray& json) {
    try {
        (void)decodeRecord<UserDto>(json);
    } catch (const DecodingFailure& failure) {
        return failure.text();
    }
    return QStringLiteral("<decoded>");
}

} // namespace

// The answer parser: strings, numbers, keys and the grammar, beyond what the record tests see.
class TestJsonReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void strings_data() {
        QTest::addColumn<QByteArray>("wire"); // the JSON text of the value, quotes included
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QByteArray("\"\"") << QString();
        QTest::newRow("quote and backslash") << QByteArray("\"a\\\"b\\\\c\"") << QStringLiteral("a\"b\\c");
        QTest::newRow("short escapes") << QByteArray("\"\\/\\b\\f\\n\\r\\t\"") << QStringLiteral("/\b\f\n\r\t");
        QTest::newRow("unicode escape") << QByteArray("\"Z\\u00e9lie\"") << QStringLiteral("Zélie");
        QTest::newRow("surrogate pair") << QByteArray("\"\\ud83d\\ude00\"") << QString::fromUtf8("\xF0\x9F\x98\x80");
        QTest::newRow("lone high surrogate") << QByteArray("\"a\\ud83dz\"") << QStringLiteral("a\uFFFDz");
        QTest::newRow("lone low surrogate") << QByteArray("\"\\ude00\"") << QStringLiteral("\uFFFD");
        QTest::newRow("raw UTF-8") << QByteArray("\"\xC3\x98rn \xE2\x82\xAC \xF0\x9F\x98\x80\"")
                                   << QString::fromUtf8("Ørn € \xF0\x9F\x98\x80");
        // Long texts are scanned eight bytes at a time: the special byte at every place of a word.
        for (int at = 5; at <= 18; ++at) {
            const QByteArray head(at, 'x');
            QTest::addRow("escape after %d bytes", at)
                << QByteArray("\"" + head + "\\\"tail\"") << QString(head + "\"tail");
            QTest::addRow("end after %d bytes", at) << QByteArray("\"" + head + "\"") << QString(head);
            QTest::addRow("UTF-8 after %d bytes", at)
                << QByteArray("\"" + head + "\xC3\xA9" + "abcdefgh\"") << QString(head + QStringLiteral("éabcdefgh"));
        }
    }
    void strings() {
        QFETCH(QByteArray, wire);
        QFETCH(QString, text);
        QCOMPARE(decodeRecord<UserDto>("{\"id\":1,\"email\":" + wire + "}").email, text);
    }

    void malformed_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("overlong UTF-8") << QByteArray("{\"id\":1,\"email\":\"\xC0\x80\"}");
        QTest::newRow("cut UTF-8 sequence") << QByteArray("{\"id\":1,\"email\":\"\xE2\x82\"}");
        QTest::newRow("UTF-8 surrogate") << QByteArray("{\"id\":1,\"email\":\"\xED\xA0\x80\"}");
        QTest::newRow("beyond U+10FFFF") << QByteArray("{\"id\":1,\"email\":\"\xF4\x90\x80\x80\"}");
        QTest::newRow("unknown escape") << QByteArray("{\"id\":1,\"email\":\"\\x41\"}");
        QTest::newRow("short unicode escape") << QByteArray("{\"id\":1,\"email\":\"\\u12\"}");
        QTest::newRow("unterminated text") << QByteArray("{\"id\":1,\"email\":\"abc");
        QTest::newRow("trailing comma in object") << QByteArray("{\"id\":1,\"email\":\"a\",}");
        QTest::newRow("trailing comma in list") << QByteArray("{\"id\":1,\"email\":\"a\",\"x\":[1,]}");
        QTest::newRow("leading zero") << QByteArray("{\"id\":01,\"email\":\"a\"}");
        QTest::newRow("bare minus") << QByteArray("{\"id\":-,\"email\":\"a\"}");
        QTest::newRow("fraction without digits") << QByteArray("{\"id\":1.,\"email\":\"a\"}");
        QTest::newRow("exponent without digits") << QByteArray("{\"id\":1e,\"email\":\"a\"}");
        QTest::newRow("number beyond a double") << QByteArray("{\"id\":1e999,\"email\":\"a\"}");
        QTest::newRow("misspelt word") << QByteArray("{\"id\":1,\"email\":\"a\",\"x\":tru}");
        QTest::newRow("missing colon") << QByteArray("{\"id\" 1,\"email\":\"a\"}");
        QTest::newRow("key without quotes") << QByteArray("{id:1,\"email\":\"a\"}");
        QTest::newRow("text after the object") << QByteArray("{\"id\":1,\"email\":\"a\"} {}");
        // Long texts are scanned eight bytes at a time: a bad byte at every place of a word.
        for (int at = 5; at <= 18; ++at) {
            QTest::addRow("stray continuation byte after %d bytes", at)
                << QByteArray("{\"id\":1,\"email\":\"" + QByteArray(at, 'x') + "\x80" + "abcdefgh\"}");
            QTest::addRow("control character after %d bytes", at)
                << QByteArray("{\"id\":1,\"email\":\"" + QByteArray(at, 'x') + "\n" + "abcdefgh\"}");
        }
    }
    void malformed() {
        QFETCH(QByteArray, json);
        const QString text = failureOf(json);
        QVERIFY2(text.contains(QStringLiteral("not valid JSON")), qPrintable(text));
    }

    void numbers_data() {
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<QString>("outcome"); // the integer read, or "rejected"
        QTest::newRow("largest 64-bit") << QByteArray("9223372036854775807") << "9223372036854775807";
        QTest::newRow("smallest 64-bit") << QByteArray("-9223372036854775808") << "-9223372036854775808";
        QTest::newRow("one past the largest") << QByteArray("9223372036854775808") << "rejected";
        QTest::newRow("twenty digits") << QByteArray("18446744073709551616") << "rejected";
        QTest::newRow("exponent of a whole number") << QByteArray("12e2") << "1200";
        QTest::newRow("tiny") << QByteArray("1e-400") << "0";
        QTest::newRow("negative fraction") << QByteArray("-2.5") << "rejected";
    }
    void numbers() {
        QFETCH(QByteArray, wire);
        QFETCH(QString, outcome);
        const QByteArray json = "{\"id\":" + wire + ",\"email\":\"a\"}";
        if (outcome == QLatin1String("rejected"))
            QVERIFY2(failureOf(json).contains(QStringLiteral("an integer")), qPrintable(failureOf(json)));
        else
            QCOMPARE(QString::number(decodeRecord<UserDto>(json).id), outcome);
    }

    void laterSpellingOfAKeyWins_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("cursor");
        const QByteArray lists =
            "\"matches\":[],\"participants\":[],\"rank_snapshots\":[],\"performance_scores\":[],\"has_more\":false";
        QTest::newRow("snake then camel")
            << QByteArray("{" + lists + ",\"next_cursor\":\"a\",\"nextCursor\":\"b\"}") << "b";
        QTest::newRow("null later") << QByteArray("{" + lists + ",\"next_cursor\":\"a\",\"nextCursor\":null}") << "";
        QTest::newRow("escaped spelling")
            << QByteArray("{" + lists + ",\"next_cursor\":\"a\",\"next\\u005fcursor\":\"b\"}") << "b";
    }
    void laterSpellingOfAKeyWins() {
        QFETCH(QByteArray, json);
        QFETCH(QString, cursor);
        QCOMPARE(decodeRecord<SyncResponse>(json).nextCursor.value_or(QString()), cursor);
    }

    // Objects of one list are read with the previous element's keys as a guess: elements with
    // other orders, extra keys, look-alike keys and missing optional keys must still decode.
    void listElementsWithDifferentKeys() {
        const QByteArray json =
            "{\"riot_accounts\":["
            "{\"id\":1,\"puuid\":\"p1\",\"game_name\":\"A\",\"tag_line\":\"T1\",\"platform\":\"euw1\",\"region\":"
            "\"europe\"},"
            "{\"id\":3,\"puuid_old\":\"x\",\"puuid\":\"p3\",\"game\":\"y\",\"game_name\":\"C\",\"platform\":\"kr\","
            "\"region\":\"asia\"},"
            "{\"region\":\"americas\",\"platform\":\"na1\",\"tag_line\":\"T2\",\"game_name\":\"B\",\"puuid\":\"p2\","
            "\"id\":2},"
            "{\"id\":4,\"puuid\":\"p4\",\"platform\":\"euw1\",\"region\":\"europe\",\"is_owner\":true},"
            " { \"id\" : 5 , \"puuid\" : \"p5\" , \"platform\" : \"eun1\" , \"region\" : \"europe\" } ]}";
        const auto accounts = decodeRecord<RiotAccountsResponse>(json).riotAccounts;
        QCOMPARE(accounts.size(), 5);
        QCOMPARE(accounts[0].riotId(), QStringLiteral("A#T1"));
        QCOMPARE(accounts[1].puuid, QStringLiteral("p3"));
        QCOMPARE(accounts[1].riotId(), QStringLiteral("C"));
        QCOMPARE(accounts[2].riotId(), QStringLiteral("B#T2"));
        QCOMPARE(accounts[2].region, QStringLiteral("americas"));
        QCOMPARE(accounts[2].id, 2);
        QCOMPARE(accounts[3].isOwner, std::optional<bool>(true));
        QVERIFY(!accounts[3].gameName);
        QCOMPARE(accounts[4].platform, QStringLiteral("eun1"));
        QVERIFY(!accounts[4].isOwner);
    }

    // Short texts are shared through a small cache: many different ones, some alike in length
    // and first and last letters, must each come back as themselves.
    void manyShortTexts() {
        QStringList expected;
        QByteArray json = "{\"ingested\":1,\"skipped\":0,\"match_ids\":[";
        for (int i = 0; i < 3000; ++i) {
            const QString id = QStringLiteral("A%1Z").arg(i % 1700, 1 + i % 7, 10, QLatin1Char('0'));
            expected << id;
            json += (i ? "," : "") + ("\"" + id.toUtf8() + "\"");
        }
        json += "]}";
        QCOMPARE(decodeRecord<IngestLocalResponse>(json).matchIds, expected);
    }

    // Lone escaped surrogates and integers beyond 64 bits are rewritten before a second parse:
    // each form beside the other, and nothing that merely looks like one, inside text or after
    // an escaped backslash.
    void rewrittenForms_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("outcome"); // the email read, or "fails: " and a part of the failure
        QTest::newRow("surrogate beside a huge number")
            << QByteArray(R"({"id":1,"email":"a\ud83d","x":18446744073709551616})") << QStringLiteral("a\uFFFD");
        QTest::newRow("huge id beside a surrogate")
            << QByteArray(R"({"id":18446744073709551616,"email":"\ud800"})") << "fails: an integer";
        QTest::newRow("escaped backslash before u")
            << QByteArray(R"({"id":1,"email":"\\ud83d","x":"\udfff"})") << QStringLiteral("\\ud83d");
        QTest::newRow("digits in text") << QByteArray(R"({"id":1,"email":"18446744073709551616\udc00"})")
                                        << QStringLiteral("18446744073709551616\uFFFD");
        QTest::newRow("pair then lone low") << QByteArray(R"({"id":1,"email":"\ud83d\ude00\ude00"})")
                                            << QString::fromUtf8("\xF0\x9F\x98\x80\xEF\xBF\xBD");
        QTest::newRow("bad escape after a surrogate")
            << QByteArray(R"({"id":1,"email":"\ud800\x"})") << "fails: not valid JSON";
        QTest::newRow("huge number with a fraction")
            << QByteArray(R"({"id":1,"email":"a","x":18446744073709551616.5})") << "a";
    }
    void rewrittenForms() {
        QFETCH(QByteArray, json);
        QFETCH(QString, outcome);
        if (outcome.startsWith(QLatin1String("fails: ")))
            QVERIFY2(failureOf(json).contains(outcome.mid(7)), qPrintable(failureOf(json)));
        else
            QCOMPARE(decodeRecord<UserDto>(json).email, outcome);
    }

    void objectsFromQtKeepEveryDigit() {
        const QJsonObject object{{"id", qint64(9007199254740993)}, {"email", "a@b.c"}, {"name", QJsonValue::Null}};
        const UserDto user = UserDto::decode(JsonReader(object));
        QCOMPARE(user.id, qint64(9007199254740993));
        QVERIFY(!user.name);
    }
};

QTEST_GUILESS_MAIN(TestJsonReader)
#include "tst_json_reader.moc"
