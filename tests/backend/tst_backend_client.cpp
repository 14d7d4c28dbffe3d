#include "backend/backend_client.h"
#include "backend/backend_error.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/raw_tcp_server.h"
#include "support/task_result.h"

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QTcpServer>
#include <QTest>

using namespace ArchiveJson;

class TestBackendClient : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<BackendClient> m_client;

    BackendClient& client() { return *m_client; }

    enum SocialEndpoint { Profile, Friend, Timeline };

private Q_SLOTS:
    void init() {
        m_backend = std::make_unique<FakeBackend>();
        m_client = std::make_unique<BackendClient>(m_network, m_backend->baseUrl());
        m_backend->on("GET", "/api/riot-accounts", FakeResponse::json(riotAccounts({})));
        m_backend->on("POST", "/api/riot-accounts/refresh", FakeResponse::json(riotAccounts({})));
        m_backend->on("GET", "/api/sync", FakeResponse::json(page({})));
        m_backend->on("POST", "/api/auth/login", FakeResponse::json(auth()));
        m_backend->on("POST", "/api/auth/register", FakeResponse::json(auth()));
        m_backend->on("POST", "/api/auth/league", FakeResponse::json(auth()));
    }

    void basePathIsReplaced() {
        BackendClient prefixed(m_network, QUrl(m_backend->baseUrl().toString() + "/prefix/v2"));
        QVERIFY(!backendErrorOf(prefixed.riotAccounts()));
        QCOMPARE(m_backend->requests().last().path, QStringLiteral("/api/riot-accounts"));
    }

    void queryValuesAreEncoded_data() {
        QTest::addColumn<QString>("cursor");
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("delimiters") << "x&y=z#w" << QByteArray("cursor=x%26y%3Dz%23w");
        QTest::newRow("base64-like") << "MTIz/NDU2+Nzg=" << QByteArray("cursor=MTIz/NDU2%2BNzg%3D");
    }
    void queryValuesAreEncoded() {
        QFETCH(QString, cursor);
        QFETCH(QByteArray, wire);
        QVERIFY(!backendErrorOf(client().sync(cursor)));
        QCOMPARE(m_backend->requests().last().rawQuery, wire);
    }

    // The path pieces of the social endpoints as they go out on the wire.
    void socialRequestPaths_data() {
        QTest::addColumn<int>("endpoint");
        QTest::addColumn<QString>("argument");
        QTest::addColumn<QByteArray>("rawPath");
        QTest::addColumn<QByteArray>("rawQuery");
        QTest::newRow("Riot ID sent whole")
            << int(Profile) << "Name#TAG" << QByteArray("/api/players/Name%23TAG/profile")
            << QByteArray("platform=euw1");
        QTest::newRow("space and non-ASCII letter")
            << int(Profile) << QStringLiteral("Zoë Main#EUW")
            << QByteArray("/api/players/Zo%C3%AB%20Main%23EUW/profile") << QByteArray("platform=euw1");
        QTest::newRow("slash and percent stay inside the segment")
            << int(Profile) << "a/b%c#1" << QByteArray("/api/players/a%2Fb%25c%231/profile")
            << QByteArray("platform=euw1");
        // "-" and "_" leave the encoder as %2D and %5F, but QUrl writes every unreserved character
        // plainly; RFC 3986 (2.3) makes the two spellings the same address.
        QTest::newRow("puuid") << int(Friend) << "Ab-c_9" << QByteArray("/api/stats/friend/Ab-c_9") << QByteArray();
        QTest::newRow("puuid with a dot and a colon")
            << int(Friend) << "a.b:c" << QByteArray("/api/stats/friend/a.b%3Ac") << QByteArray();
        QTest::newRow("match id unencoded") << int(Timeline) << "EUW1_7123456789"
                                            << QByteArray("/api/matches/EUW1_7123456789/timeline") << QByteArray();
    }
    void socialRequestPaths() {
        QFETCH(int, endpoint);
        QFETCH(QString, argument);
        QFETCH(QByteArray, rawPath);
        QFETCH(QByteArray, rawQuery);
        client().setAuthToken(QStringLiteral("t"));
        // Every route is unscripted: the 404 is expected, only the request counts.
        if (endpoint == Profile)
            (void)backendErrorOf(client().playerProfile(argument, QStringLiteral("euw1")));
        else if (endpoint == Friend)
            (void)backendErrorOf(client().friendStats(argument));
        else
            (void)backendErrorOf(client().matchTimeline(argument));
        const RecordedRequest& sent = m_backend->requests().last();
        QCOMPARE(sent.method, QByteArray("GET"));
        QCOMPARE(sent.rawPath, rawPath);
        QCOMPARE(sent.rawQuery, rawQuery);
        QCOMPARE(sent.header("Authorization"), QByteArray("Bearer t"));
        QVERIFY(sent.body.isEmpty());
    }

    void pathSegmentEncoding_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("segment");
        QTest::newRow("letters and digits stay") << "abcXYZ019"
                                                 << "abcXYZ019";
        QTest::newRow("unreserved punctuation too") << "a-b_c.d~e"
                                                    << "a%2Db%5Fc%2Ed%7Ee";
        QTest::newRow("hash and space") << "Name #TAG"
                                        << "Name%20%23TAG";
        QTest::newRow("UTF-8 bytes, upper-case hex") << QStringLiteral("é한") << "%C3%A9%ED%95%9C";
        QTest::newRow("empty") << ""
                               << "";
    }
    void pathSegmentEncoding() {
        QFETCH(QString, text);
        QFETCH(QString, segment);
        QCOMPARE(BackendUrl::encodePathSegment(text), segment);
    }

    // A screen that goes away takes its request with it: the task ends instead of waiting for an
    // answer nobody will read.
    void requestEndsWhenItsRequesterGoes() {
        client().setAuthToken(QStringLiteral("t"));
        QTcpServer silent; // takes the connection and never answers
        QVERIFY(silent.listen(QHostAddress::LocalHost, 0));
        BackendClient slow(m_network, QUrl(QStringLiteral("http://127.0.0.1:%1").arg(silent.serverPort())));
        auto requester = std::make_unique<QObject>();
        bool ended = false;
        std::optional<BackendError> error;
        auto waiting = [&]() -> QCoro::Task<> {
            try {
                (void)co_await slow.matchTimeline(QStringLiteral("EUW1_1"), requester.get());
            } catch (const BackendError& e) {
                error = e;
            }
            ended = true;
        }();
        QTest::qWait(100);
        QVERIFY(!ended);
        requester.reset();
        QTRY_VERIFY_WITH_TIMEOUT(ended, 5000);
        QVERIFY(error && error->kind() == BackendError::Kind::Transport);
    }

    void authorizationHeader() {
        QVERIFY(!backendErrorOf(client().riotAccounts()));
        QVERIFY(!m_backend->requests().last().hasHeader("Authorization"));

        client().setAuthToken(QStringLiteral("tok-9"));
        QVERIFY(!backendErrorOf(client().riotAccounts()));
        QCOMPARE(m_backend->requests().last().header("Authorization"), QByteArray("Bearer tok-9"));

        // Sign-in calls never carry the token, even when one is held.
        QVERIFY(!backendErrorOf(client().login("a@b.c", "password1")));
        QVERIFY(!backendErrorOf(client().registerAccount("a@b.c", "password1", std::nullopt)));
        QVERIFY(!backendErrorOf(client().leagueLogin("p", "euw1", std::nullopt, std::nullopt)));
        for (const RecordedRequest& request : m_backend->requests().mid(2))
            QVERIFY2(!request.hasHeader("Authorization"), qPrintable(request.path));
    }

    void acceptAlwaysContentTypeOnlyWithBody() {
        client().setAuthToken(QStringLiteral("t"));
        QVERIFY(!backendErrorOf(client().riotAccounts()));
        QVERIFY(!backendErrorOf(client().refreshRiotAccounts()));
        QVERIFY(!backendErrorOf(client().login("a@b.c", "password1")));
        const auto& requests = m_backend->requests();
        for (const RecordedRequest& request : requests)
            QCOMPARE(request.header("Accept"), QByteArray("application/json"));
        QVERIFY(!requests[0].hasHeader("Content-Type"));
        QCOMPARE(requests[1].method, QByteArray("POST"));
        QVERIFY(!requests[1].hasHeader("Content-Type"));
        QVERIFY(requests[1].body.isEmpty());
        QCOMPARE(requests[2].header("Content-Type"), QByteArray("application/json"));
    }

    void requestBodies() {
        client().setAuthToken(QStringLiteral("t"));
        m_backend->on("POST", "/api/riot-accounts", FakeResponse::json({{"riot_account", riotAccount(4, "p4")}}));
        m_backend->on("POST", "/api/matches/ingest-local",
                      FakeResponse::json({{"ingested", 0}, {"skipped", 0}, {"match_ids", QJsonArray{}}}));

        QVERIFY(!backendErrorOf(client().registerAccount("a@b.c", "secret12", std::nullopt)));
        QVERIFY(!backendErrorOf(client().login("a@b.c", "secret12")));
        QVERIFY(!backendErrorOf(client().leagueLogin("p1", "euw1", QStringLiteral("Ada"), std::nullopt)));
        QVERIFY(!backendErrorOf(client().leagueLogin("p1", "euw1", std::nullopt, QStringLiteral("EUW"))));
        QVERIFY(!backendErrorOf(client().addRiotAccount("Ada Lovelace#EUW", "euw1")));
        QVERIFY(!backendErrorOf(client().ingestLocal({})));

        const auto& r = m_backend->requests();
        QCOMPARE(r[0].json(), (QJsonObject{{"email", "a@b.c"}, {"password", "secret12"}, {"name", ""}}));
        QCOMPARE(r[1].json(), (QJsonObject{{"email", "a@b.c"}, {"password", "secret12"}}));
        QCOMPARE(r[2].json(), (QJsonObject{{"puuid", "p1"}, {"platform", "euw1"}, {"game_name", "Ada"}}));
        QCOMPARE(r[3].json(), (QJsonObject{{"puuid", "p1"}, {"platform", "euw1"}, {"tag_line", "EUW"}}));
        QCOMPARE(r[4].json(), (QJsonObject{{"riot_id", "Ada Lovelace#EUW"}, {"platform", "euw1"}}));
        QCOMPARE(r[5].body, QByteArray(R"({"games":[]})"));
        QCOMPARE(r[5].path, QStringLiteral("/api/matches/ingest-local"));
    }

    void staticVersionIsAnonymous() {
        client().setAuthToken(QStringLiteral("t"));
        m_backend->on("GET", "/api/static/version",
                      FakeResponse::json({{"version", "16.12.1"}, {"ddragon_base_url", "https://cdn.example/"}}));
        StaticVersionResponse answer = runTask(client().staticVersion());
        QCOMPARE(answer.version, QStringLiteral("16.12.1"));
        QCOMPARE(answer.ddragonBaseUrl, std::optional<QString>(QStringLiteral("https://cdn.example/")));
        QVERIFY(!m_backend->requests().last().hasHeader("Authorization"));
    }

    void statusHandling_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        const int http = int(BackendError::Kind::Http), unauthorized = int(BackendError::Kind::Unauthorized),
                  decoding = int(BackendError::Kind::Decoding);
        QTest::newRow("500 with body") << 500 << QByteArray("oops") << http << "Server error 500. oops";
        QTest::newRow("404 not UTF-8") << 404 << QByteArray("\xff\xfe\xfd") << http << "Server error 404. ";
        QTest::newRow("401 whatever the body")
            << 401 << QByteArray(R"({"token":"x"})") << unauthorized << "Your session expired. Please sign in again.";
        QTest::newRow("204 no body") << 204 << QByteArray() << decoding << "Couldn't read the server response. ";
    }
    void statusHandling() {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(int, kind);
        QFETCH(QString, text);
        m_backend->on("GET", "/api/riot-accounts", FakeResponse::text(status, body));
        const auto error = backendErrorOf(client().riotAccounts());
        QVERIFY(error);
        QCOMPARE(int(error->kind()), kind);
        if (error->kind() == BackendError::Kind::Decoding)
            QVERIFY2(error->description().startsWith(text), qPrintable(error->description()));
        else
            QCOMPARE(error->description(), text);
    }

    void decodingTextNamesTheKey() {
        QJsonObject wrongId = riotAccount(1, "p1");
        wrongId["id"] = "one";
        m_backend->on("GET", "/api/riot-accounts", FakeResponse::json(riotAccounts({wrongId})));
        const auto error = backendErrorOf(client().riotAccounts());
        QVERIFY(error && error->kind() == BackendError::Kind::Decoding);
        QVERIFY2(error->description().contains("riotAccounts[0].id"), qPrintable(error->description()));
    }

    void transportFailures_data() {
        QTest::addColumn<QByteArray>("rawReply");
        QTest::newRow("not HTTP") << QByteArray("HELLO THERE\r\n\r\n");
        QTest::newRow("truncated body") << QByteArray(
            "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n{\"riot_accounts\":[");
    }
    void transportFailures() {
        QFETCH(QByteArray, rawReply);
        RawTcpServer server(rawReply);
        BackendClient raw(m_network, QUrl(QStringLiteral("http://127.0.0.1:%1").arg(server.port())));
        const auto error = backendErrorOf(raw.riotAccounts());
        QVERIFY(error);
        QCOMPARE(int(error->kind()), int(BackendError::Kind::Transport));
        QVERIFY2(error->description().startsWith("Network error. ") && error->description().size() > 15,
                 qPrintable(error->description()));
    }

    void badBaseUrl() {
        BackendClient broken(m_network, QUrl(QStringLiteral("not a url")));
        const auto error = backendErrorOf(broken.riotAccounts());
        QCOMPARE(describeOrEmpty(error), QStringLiteral("Network error. Bad base URL"));
    }
};

QTEST_GUILESS_MAIN(TestBackendClient)
#include "tst_backend_client.moc"
