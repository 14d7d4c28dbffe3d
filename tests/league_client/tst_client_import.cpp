#include "archive/archive_store.h"
#include "league_client/client_import.h"
#include "session/app_state.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/fake_league_client.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

using namespace ArchiveJson;

namespace {

const QString notRunning =
    QStringLiteral("League client isn't running. Open the client (not just a game) and try again.");
const QString unreadable = QStringLiteral("Couldn't read the client's match history.");
const QString processedKey = QStringLiteral("quill.lcuProcessedGameIds");
const QString ingestPath = QStringLiteral("/api/matches/ingest-local");
const QString backendToken = QStringLiteral("tok-backend");

QStringList idsOf(const QJsonArray& games) {
    QStringList ids;
    for (const QJsonValue& game : games)
        ids << QString::number(game.toObject().value("gameId").toInteger());
    return ids;
}

QStringList range(qint64 first, qint64 last) {
    QStringList ids;
    for (qint64 id = first; id <= last; ++id)
        ids << QString::number(id);
    return ids;
}

QStringList sorted(QStringList list) {
    list.sort();
    return list;
}

} // namespace

class TestClientImport : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<FakeLeagueClient> m_lcu;
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<ArchiveStore> m_store;
    std::unique_ptr<AppState> m_state;
    QTemporaryDir m_dir;

    QString lockfilePath() const { return m_dir.filePath(QStringLiteral("lockfile")); }

    // The state looks for the client only in the test's own lockfile and an empty process list.
    void aimAtLockfile(const QByteArray& contents) {
        QFile::remove(lockfilePath());
        if (!contents.isNull())
            FakeLeagueClient::writeFile(lockfilePath(), contents);
        m_state->setLeagueClientSources({{lockfilePath(), m_dir.filePath(QStringLiteral("absent"))},
                                         [] { return std::optional<QByteArray>(QByteArray()); }});
    }

    // Answers every ingest with the number of games it carried, unless told otherwise.
    void serveBackend() {
        m_backend->on("GET", "/api/static/version", FakeResponse::json({{"version", "16.12.1"}}));
        m_backend->on("POST", "/api/auth/league", FakeResponse::json(auth("tok-league")));
        m_backend->on("POST", "/api/riot-accounts/refresh", FakeResponse::json(riotAccounts({riotAccount(1, "me")})));
        m_backend->on("GET", "/api/sync", FakeResponse::json(page({})));
        m_backend->on("GET", "/api/stats/duos", FakeResponse::json({{"duos", QJsonArray{}}}));
        m_backend->on("POST", ingestPath, [](const RecordedRequest& request) {
            const qsizetype games = request.json().value("games").toArray().size();
            return FakeResponse::json({{"ingested", games}, {"skipped", 0}, {"match_ids", QJsonArray{}}});
        });
    }

    void serveIdentity(const QByteArray& summoner, const QByteArray& region, int regionStatus = 200) {
        m_lcu->serve(QStringLiteral("/lol-summoner/v1/current-summoner"), FakeResponse{200, summoner, {}});
        m_lcu->serve(QStringLiteral("/riotclient/region-locale"), FakeResponse{regionStatus, region, {}});
    }

    QString importOnce() {
        runTask(m_state->importFromClient());
        return m_state->lcuStatus();
    }

    QStringList storedIds() const { return sorted((*m_settings)->value(processedKey).toStringList()); }

    QList<QJsonArray> ingestedBatches() const {
        QList<QJsonArray> batches;
        for (const RecordedRequest& request : m_backend->requestsTo(ingestPath))
            batches << request.json().value("games").toArray();
        return batches;
    }

    QStringList backendPaths() const {
        QStringList result;
        for (const RecordedRequest& request : m_backend->requests())
            if (request.path != QStringLiteral("/api/static/version"))
                result << QString::fromLatin1(request.method) + ' ' + request.path;
        return result;
    }

    // The client's password stays with the client and the backend's token with the backend.
    void verifyCredentialsStayApart() {
        const QByteArray password = m_lcu->password().toUtf8();
        const QByteArray clientCredentials = "Basic " + ("riot:" + password).toBase64();
        for (const RecordedRequest& request : m_lcu->requests()) {
            QCOMPARE(request.header("Authorization"), clientCredentials);
            for (const QByteArray& value : request.headers)
                QVERIFY(!value.contains(backendToken.toUtf8()) && !value.contains("tok-league"));
        }
        for (const RecordedRequest& request : m_backend->requests()) {
            QVERIFY(!request.body.contains(password) && !request.body.contains(clientCredentials));
            for (const QByteArray& value : request.headers)
                QVERIFY(!value.contains(password) && !value.contains(clientCredentials));
        }
        // Nor is the password kept anywhere.
        (*m_settings)->sync();
        QFile stored(m_settings->dir.filePath(QStringLiteral("settings.ini")));
        QVERIFY(stored.open(QIODevice::ReadOnly));
        QVERIFY(!stored.readAll().contains(password));
    }

private Q_SLOTS:
    void init() {
        m_state.reset();
        m_backend = std::make_unique<FakeBackend>();
        m_lcu = std::make_unique<FakeLeagueClient>();
        m_settings = std::make_unique<TestSettings>();
        (*m_settings)->setValue("backendBaseURL", m_backend->baseUrl().toString());
        m_store.reset();
        const QString path = m_dir.filePath(QStringLiteral("%1.sqlite").arg(QTest::currentTestFunction()));
        QFile::remove(path);
        m_store = std::make_unique<ArchiveStore>(path);
        m_state = std::make_unique<AppState>(**m_settings, m_network);
        m_state->client().setAuthToken(backendToken);
        aimAtLockfile(m_lcu->lockfileText());
        serveBackend();
    }
    void cleanup() {
        if (m_state)
            QTRY_VERIFY_WITH_TIMEOUT(!m_state->hasRunningTasks(), 10000);
    }

    void failedReadsOnlySetTheStatus_data() {
        QTest::addColumn<QByteArray>("lockfile"); // null: no client; "fake": the fake client's
        QTest::addColumn<QByteArray>("historyBody");
        QTest::addColumn<QString>("status");

        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost, 0));
        const QByteArray refused = "LeagueClient:1:" + QByteArray::number(closed.serverPort()) + ":pw:https";
        closed.close();

        QTest::newRow("no client") << QByteArray() << QByteArray() << "client offline";
        QTest::newRow("history not JSON") << QByteArray("fake") << QByteArray("<html>") << unreadable;
        QTest::newRow("nothing listens on the port") << refused << QByteArray() << "client read failed";
        QTest::newRow("port no URL can carry")
            << QByteArray("LeagueClient:1:70000:pw:https") << QByteArray() << notRunning;
    }
    void failedReadsOnlySetTheStatus() {
        QFETCH(QByteArray, lockfile);
        QFETCH(QByteArray, historyBody);
        QFETCH(QString, status);
        aimAtLockfile(lockfile == "fake" ? m_lcu->lockfileText() : lockfile);
        m_lcu->serve(QString::fromLatin1(FakeLeagueClient::historyPath), FakeResponse{200, historyBody, {}});
        (*m_settings)->setValue(processedKey, QStringList{"1"});
        QSignalSpy changed(m_state.get(), &AppState::lcuStatusChanged);

        QCOMPARE(importOnce(), status);

        QCOMPARE(changed.count(), 1);
        QVERIFY(m_backend->requests().isEmpty());
        QCOMPARE(storedIds(), QStringList{"1"});
        QVERIFY(!m_state->hasError());
        if (lockfile.isNull())
            QVERIFY(m_lcu->requests().isEmpty());
    }

    void newGamesGoEightyAtATime() {
        m_lcu->serveHistory(historyEntries(1, 130));

        QCOMPARE(importOnce(), QStringLiteral("client: +80 games"));
        QCOMPARE(ingestedBatches().size(), 1);
        QCOMPARE(idsOf(ingestedBatches().at(0)), range(1, 80));
        QVERIFY(ingestedBatches().at(0).at(0).toObject().value("fullRecord").toBool());
        QCOMPARE(storedIds(), sorted(range(1, 80)));

        QCOMPARE(importOnce(), QStringLiteral("client: +50 games"));
        QCOMPARE(ingestedBatches().size(), 2);
        QCOMPARE(idsOf(ingestedBatches().at(1)), range(81, 130));
        QCOMPARE(storedIds(), sorted(range(1, 130)));

        // Every id known: only the history itself is read.
        m_lcu->clearRequests();
        QCOMPARE(importOnce(), QStringLiteral("client: up to date"));
        QCOMPARE(ingestedBatches().size(), 2);
        QCOMPARE(m_lcu->historyQueries(), (QStringList{"begIndex=0&endIndex=99", "begIndex=100&endIndex=199"}));
        QCOMPARE(m_lcu->requests().size(), 2);
        verifyCredentialsStayApart();
    }

    void idsAreRecordedWhateverTheBackendSays_data() {
        QTest::addColumn<int>("ingestStatus"); // 0: the backend cannot be reached
        QTest::addColumn<QByteArray>("ingestBody");
        QTest::newRow("ingested nothing") << 200 << QByteArray("{\"ingested\":0,\"skipped\":3,\"match_ids\":[]}");
        QTest::newRow("session expired") << 401 << QByteArray("{}");
        QTest::newRow("backend unreachable") << 0 << QByteArray();
    }
    void idsAreRecordedWhateverTheBackendSays() {
        QFETCH(int, ingestStatus);
        QFETCH(QByteArray, ingestBody);
        if (ingestStatus == 0)
            m_backend.reset();
        else
            m_backend->on("POST", ingestPath, FakeResponse{ingestStatus, ingestBody, {}});
        m_lcu->serveHistory(historyEntries(500, 3));
        (*m_settings)->setValue(processedKey, QStringList{"9"});

        QCOMPARE(importOnce(), QStringLiteral("client: +0 games"));

        QCOMPARE(storedIds(), (QStringList{"500", "501", "502", "9"}));
        QVERIFY(!m_state->hasError());
        QCOMPARE(m_state->client().authToken(), std::optional<QString>(backendToken));
        QCOMPARE(importOnce(), QStringLiteral("client: up to date"));
    }

    void leagueSignInFailsBeforeTheBackend_data() {
        QTest::addColumn<QByteArray>("summoner"); // null: no client
        QTest::addColumn<QString>("message");
        QTest::newRow("no client") << QByteArray() << notRunning;
        QTest::newRow("summoner without puuid") << QByteArray("{\"gameName\":\"Ada\"}") << unreadable;
    }
    void leagueSignInFailsBeforeTheBackend() {
        QFETCH(QByteArray, summoner);
        QFETCH(QString, message);
        m_state->client().setAuthToken(std::nullopt);
        m_state->bootstrap(m_store.get());
        if (summoner.isNull())
            aimAtLockfile(QByteArray());
        m_lcu->serve(QStringLiteral("/lol-summoner/v1/current-summoner"), FakeResponse{200, summoner, {}});

        runTask(m_state->loginWithLeague());

        QCOMPARE(m_state->errorMessage(), message);
        QCOMPARE(m_state->phase(), AppState::Phase::SignedOut);
        QCOMPARE(backendPaths(), QStringList());
        QVERIFY(!(*m_settings)->contains("authToken"));
    }

    void leagueSignInBody_data() {
        QTest::addColumn<QByteArray>("summoner");
        QTest::addColumn<int>("regionStatus");
        QTest::addColumn<QByteArray>("region");
        QTest::addColumn<QJsonObject>("body");
        QTest::newRow("full identity on KR")
            << QByteArray("{\"puuid\":\"p-1\",\"gameName\":\"Ada\",\"tagLine\":\"KR1\"}") << 200
            << QByteArray("{\"region\":\"kr\",\"locale\":\"ko_KR\"}")
            << QJsonObject{{"puuid", "p-1"}, {"platform", "kr"}, {"game_name", "Ada"}, {"tag_line", "KR1"}};
        QTest::newRow("empty tag leaves out tag_line")
            << QByteArray("{\"puuid\":\"p-1\",\"gameName\":\"Ada\",\"tagLine\":\"\"}") << 200
            << QByteArray("{\"region\":\"EUNE\"}")
            << QJsonObject{{"puuid", "p-1"}, {"platform", "eun1"}, {"game_name", "Ada"}};
        QTest::newRow("unknown region sends euw1")
            << QByteArray("{\"puuid\":\"p-1\"}") << 200 << QByteArray("{\"region\":\"PBE\"}")
            << QJsonObject{{"puuid", "p-1"}, {"platform", "euw1"}};
        QTest::newRow("unreadable region sends euw1")
            << QByteArray("{\"puuid\":\"p-1\"}") << 500 << QByteArray("{\"region\":\"KR\"}")
            << QJsonObject{{"puuid", "p-1"}, {"platform", "euw1"}};
    }
    void leagueSignInBody() {
        QFETCH(QByteArray, summoner);
        QFETCH(int, regionStatus);
        QFETCH(QByteArray, region);
        QFETCH(QJsonObject, body);
        serveIdentity(summoner, region, regionStatus);

        runTask(m_state->loginWithLeague());

        const QList<RecordedRequest> sent = m_backend->requestsTo(QStringLiteral("/api/auth/league"));
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent.first().json(), body);
        QVERIFY(!sent.first().hasHeader("Authorization"));
    }

    void leagueSignInRunsTheWholeTail() {
        m_state->client().setAuthToken(std::nullopt);
        m_state->bootstrap(m_store.get());
        QTRY_VERIFY_WITH_TIMEOUT(!m_state->hasRunningTasks(), 10000);
        m_lcu->serveHistory(historyEntries(1, 2));

        // A first press without an answer from the client leaves its message; the second clears it.
        m_lcu->serve(QStringLiteral("/lol-summoner/v1/current-summoner"), FakeResponse::text(503, "starting"));
        runTask(m_state->loginWithLeague());
        QCOMPARE(m_state->errorMessage(), QStringLiteral("League client returned 503."));

        serveIdentity("{\"puuid\":\"p-1\",\"gameName\":\"Ada\",\"tagLine\":\"EUW\"}", "{\"region\":\"EUW\"}");
        QSignalSpy errors(m_state.get(), &AppState::errorMessageChanged);
        runTask(m_state->loginWithLeague());

        QVERIFY(errors.count() >= 1);
        QVERIFY(!m_state->hasError());
        QCOMPARE(m_state->phase(), AppState::Phase::SignedIn);
        QCOMPARE((*m_settings)->value("authToken").toString(), QStringLiteral("tok-league"));
        QCOMPARE(m_state->client().authToken(), std::optional<QString>(QStringLiteral("tok-league")));
        QVERIFY(m_state->user());
        QCOMPARE(backendPaths(), (QStringList{"POST /api/auth/league", "POST /api/riot-accounts/refresh",
                                              "POST " + ingestPath, "GET /api/sync", "GET /api/stats/duos"}));
        QCOMPARE(m_backend->requestsTo(ingestPath).first().header("Authorization"), QByteArray("Bearer tok-league"));
        QCOMPARE(m_state->lcuStatus(), QStringLiteral("client: +2 games"));
        verifyCredentialsStayApart();
    }
};

QTEST_GUILESS_MAIN(TestClientImport)
#include "tst_client_import.moc"
