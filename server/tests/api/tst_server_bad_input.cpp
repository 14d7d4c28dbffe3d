// Hostile and broken requests against the whole server: each is refused with a 4xx and a short
// sentence (never a 5xx, never a crash), and what was stored before stays as it was.

#include "store/test_databases.h"
#include "support/client_games.h"
#include "support/test_server.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

namespace {

struct Answer {
    int status = 0;
    QByteArray contentType;
    QByteArray body;
};

} // namespace

class TestServerBadInput : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<qf::test::TestDatabase> m_database;
    std::unique_ptr<TestServer> m_server;
    QByteArray m_token;

    Answer send(const QByteArray& method, const QByteArray& pathAndQuery, const QByteArray& body = {},
                bool authorized = true) {
        QNetworkRequest request(QUrl::fromEncoded(QByteArray::fromStdString(m_server->baseUrl()) + pathAndQuery));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        if (authorized)
            request.setRawHeader("Authorization", "Bearer " + m_token);
        QNetworkReply* reply = m_network.sendCustomRequest(request, method, body);
        QEventLoop loop;
        connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        Answer a{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                 reply->header(QNetworkRequest::ContentTypeHeader).toByteArray(), reply->readAll()};
        reply->deleteLater();
        return a;
    }

    QByteArray archive() { return send("GET", "/api/sync").body; }

private Q_SLOTS:
    void initTestCase() {
        if (ClientGames::fixtureGame().isEmpty())
            QSKIP("the shared fixtures are not next to this repository");
        m_database = std::make_unique<qf::test::TestDatabase>(QStringLiteral("sqlite"));
        TestServer::Options options;
        options.bodyLimit = 1024 * 1024;
        m_server = std::make_unique<TestServer>(m_database->address(), options);
        const QStringList players = ClientGames::puuids(9);
        const Answer signedIn =
            send("POST", "/api/auth/league", R"({"puuid":")" + players[0].toUtf8() + R"(","platform":"na1"})", false);
        QCOMPARE(signedIn.status, 200);
        m_token = QJsonDocument::fromJson(signedIn.body)["token"].toString().toUtf8();
        const QByteArray games = QJsonDocument(QJsonObject{{"games", QJsonArray{ClientGames::game(7001, players)}}})
                                     .toJson(QJsonDocument::Compact);
        QCOMPARE(send("POST", "/api/matches/ingest-local", games).status, 200);
    }

    void refused_data() {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");

        const QByteArray ingest = "/api/matches/ingest-local";
        QTest::newRow("not JSON") << QByteArray("POST") << ingest << QByteArray("{\"games\": [") << 400
                                  << "The request body is not valid JSON.";
        QTest::newRow("a list for an object")
            << QByteArray("POST") << QByteArray("/api/auth/login") << QByteArray("[1,2]") << 400
            << "The request body must be a JSON object.";
        QTest::newRow("number for text") << QByteArray("POST") << QByteArray("/api/auth/register")
                                         << QByteArray(R"({"email":5,"password":"correct horse"})") << 400
                                         << "The request needs \"email\" as text.";
        QTest::newRow("games not a list") << QByteArray("POST") << ingest << QByteArray(R"({"games":{"0":{}}})") << 400
                                          << "Expected a JSON object with a \"games\" list.";
        QTest::newRow("invalid UTF-8") << QByteArray("POST") << QByteArray("/api/riot-accounts")
                                       << QByteArray("{\"riot_id\":\"\xff\xfe#EUW\",\"platform\":\"euw1\"}") << 400
                                       << "The request body is not valid JSON.";
        QTest::newRow("too large") << QByteArray("POST") << ingest
                                   << ("{\"games\":[\"" + QByteArray(2 * 1024 * 1024, 'x') + "\"]}") << 413
                                   << "The request body is too large.";
        QTest::newRow("unknown path") << QByteArray("GET") << QByteArray("/api/admin/users") << QByteArray() << 404
                                      << "No such endpoint.";
        QTest::newRow("wrong method") << QByteArray("DELETE") << QByteArray("/api/sync") << QByteArray() << 405
                                      << "This endpoint does not accept DELETE.";
        QTest::newRow("NUL in a path piece")
            << QByteArray("GET") << QByteArray("/api/stats/friend/ab%00cd") << QByteArray() << 400 << "Bad path.";
        QTest::newRow("climbing path") << QByteArray("GET") << QByteArray("/api/players/..%2F..%2Fetc%2Fpasswd/profile")
                                       << QByteArray() << 400 << "Enter a Riot ID in the form Name#TAG.";
        QTest::newRow("huge puuid") << QByteArray("GET") << ("/api/stats/friend/" + QByteArray(5000, 'a'))
                                    << QByteArray() << 400 << "That is not a player id.";
        QTest::newRow("someone's match id") << QByteArray("GET") << QByteArray("/api/matches/1%20OR%201=1/timeline")
                                            << QByteArray() << 404 << "This game has no timeline on this server.";
        QTest::newRow("negative cursor") << QByteArray("GET") << QByteArray("/api/sync?cursor=c1.-5") << QByteArray()
                                         << 400 << "The sync cursor is not one this server made.";
        QTest::newRow("overflowing cursor")
            << QByteArray("GET") << QByteArray("/api/sync?cursor=c1.99999999999999999999") << QByteArray() << 400
            << "The sync cursor is not one this server made.";
        QTest::newRow("unknown platform")
            << QByteArray("GET") << QByteArray("/api/players/A%23B/profile?platform=%27;--") << QByteArray() << 400
            << "Unknown platform \"';--\".";
        QTest::newRow("bad puuid at sign-in") << QByteArray("POST") << QByteArray("/api/auth/league")
                                              << QByteArray(R"({"puuid":"../x","platform":"euw1"})") << 400
                                              << "The League client's player id is not valid.";
    }
    void refused() {
        QFETCH(QByteArray, method);
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(QString, text);
        const QByteArray before = archive();
        const Answer answer = send(method, path, body);
        QCOMPARE(answer.status, status);
        QVERIFY2(answer.contentType.startsWith("text/plain"), answer.contentType);
        QCOMPARE(QString::fromUtf8(answer.body), text);
        QCOMPARE(archive(), before);
    }

    // Odd members inside games are read with defaults: the games are stored or skipped, never
    // the request refused.
    void oddGamesAreSkippedNotFatal() {
        const QStringList players = ClientGames::puuids(9);
        QJsonObject nul = ClientGames::game(7002, players);
        QJsonArray identities = nul["participantIdentities"].toArray();
        QJsonObject first = identities[1].toObject();
        QJsonObject player = first["player"].toObject();
        player["gameName"] = QStringLiteral("Null%1Byte").arg(QChar(0));
        first["player"] = player;
        identities[1] = first;
        nul["participantIdentities"] = identities;
        const QJsonArray games{1,  "text", QJsonValue(), QJsonArray{}, QJsonObject{}, QJsonObject{{"gameId", true}},
                               nul};
        const Answer answer = send("POST", "/api/matches/ingest-local",
                                   QJsonDocument(QJsonObject{{"games", games}}).toJson(QJsonDocument::Compact));
        QCOMPARE(answer.status, 200);
        const QJsonObject result = QJsonDocument::fromJson(answer.body).object();
        QCOMPARE(result["ingested"].toInt(), 1);
        QCOMPARE(result["skipped"].toInt(), 6);
        QVERIFY(archive().contains("NullByte"));
    }

    void cleanupTestCase() { m_server.reset(); }
};

QTEST_GUILESS_MAIN(TestServerBadInput)
#include "tst_server_bad_input.moc"
