#include "archive/archive_store.h"
#include "session/app_state.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

using namespace ArchiveJson;

namespace {
const QString expired = QStringLiteral("Your session expired. Please sign in again.");
}

class TestAppState : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<ArchiveStore> m_store;
    std::unique_ptr<AppState> m_state;
    QTemporaryDir m_dir;

    void makeState() { m_state = std::make_unique<AppState>(**m_settings, m_network); }

    void waitIdle() { QTRY_VERIFY_WITH_TIMEOUT(!m_state->hasRunningTasks(), 10000); }
    void run(QCoro::Task<> task) { runTask(std::move(task)); }

    QStringList paths() const {
        QStringList result;
        for (const RecordedRequest& request : m_backend->requests())
            result << QString::fromLatin1(request.method) + ' ' + request.path;
        return result;
    }

    void serveHappyBackend() {
        m_backend->on("GET", "/api/static/version", FakeResponse::json({{"version", "16.12.1"}}));
        m_backend->on("POST", "/api/auth/login", FakeResponse::json(auth("tok-login")));
        m_backend->on("POST", "/api/auth/register", FakeResponse::json(auth("tok-register")));
        m_backend->on("POST", "/api/riot-accounts/refresh", FakeResponse::json(riotAccounts({riotAccount(1, "me")})));
        m_backend->on("GET", "/api/riot-accounts", FakeResponse::json(riotAccounts({riotAccount(1, "me")})));
        m_backend->on(
            "GET", "/api/sync",
            FakeResponse::json(page({match(1), match(2)}, {participant(10, 1, "me"), participant(11, 2, "me")})));
        m_backend->on("GET", "/api/stats/duos",
                      FakeResponse::json({{"duos", QJsonArray{QJsonObject{{"puuid", "friend-1"},
                                                                          {"riot_id", "Bard Main#EUW"},
                                                                          {"games", 5},
                                                                          {"wins", 3},
                                                                          {"losses", 2},
                                                                          {"winrate", 0.6}},
                                                              QJsonObject{{"puuid", "friend-2"},
                                                                          {"riot_id", "#TAG"},
                                                                          {"games", 4},
                                                                          {"wins", 1},
                                                                          {"losses", 3},
                                                                          {"winrate", 0.25}}}}}));
    }

private Q_SLOTS:
    void init() {
        m_state.reset();
        m_store.reset();
        m_backend = std::make_unique<FakeBackend>();
        m_settings = std::make_unique<TestSettings>();
        (*m_settings)->setValue("backendBaseURL", m_backend->baseUrl().toString());
        const QString path = m_dir.filePath(QStringLiteral("%1.sqlite").arg(QTest::currentTestFunction()));
        QFile::remove(path);
        m_store = std::make_unique<ArchiveStore>(path);
        makeState();
    }
    void cleanup() {
        if (m_state)
            waitIdle();
    }

    void firstStartWithoutToken() {
        serveHappyBackend();
        QCOMPARE(m_state->phase(), AppState::Phase::Loading);
        m_state->bootstrap(m_store.get());
        QCOMPARE(m_state->phase(), AppState::Phase::SignedOut);
        waitIdle();
        QCOMPARE(paths(), QStringList{"GET /api/static/version"});
        QCOMPARE(m_state->staticData().version(), QStringLiteral("16.12.1"));
        QVERIFY(!m_state->hasError());
    }

    void restoredButExpiredToken() {
        (*m_settings)->setValue("authToken", "stale");
        const FakeResponse rejected = FakeResponse::text(401, "{\"detail\":\"expired\"}");
        m_backend->on("POST", "/api/riot-accounts/refresh", rejected);
        m_backend->on("GET", "/api/sync", rejected);
        QList<AppState::Phase> phases;
        connect(m_state.get(), &AppState::phaseChanged, this, [&] { phases << m_state->phase(); });

        m_state->bootstrap(m_store.get());
        QCOMPARE(m_state->phase(), AppState::Phase::SignedIn);
        QCOMPARE(m_backend->requestsTo("/api/riot-accounts/refresh").size(), 0); // not validated first
        waitIdle();

        QCOMPARE(phases, (QList<AppState::Phase>{AppState::Phase::SignedIn, AppState::Phase::SignedOut}));
        QCOMPARE(m_state->errorMessage(), expired);
        QVERIFY(!(*m_settings)->contains("authToken"));
        QVERIFY(!m_state->client().authToken());
        QCOMPARE(m_backend->requestsTo("/api/riot-accounts/refresh").first().header("Authorization"),
                 QByteArray("Bearer stale"));
        // The sync that follows still runs, now without a token, and fails the same way.
        QCOMPARE(m_backend->requestsTo("/api/sync").size(), 1);
        QVERIFY(!m_backend->requestsTo("/api/sync").first().hasHeader("Authorization"));
        QVERIFY(!m_state->isSyncing());
    }

    void signInTailInOrder() {
        serveHappyBackend();
        m_state->bootstrap(m_store.get());
        waitIdle();
        m_backend->clearRequests();
        bool tokenStoredBeforeSignedIn = false;
        connect(m_state.get(), &AppState::phaseChanged, this, [&] {
            tokenStoredBeforeSignedIn = (*m_settings)->value("authToken").toString() == "tok-login" &&
                                        m_state->client().authToken() == QStringLiteral("tok-login") && m_state->user();
        });

        run(m_state->login("ada@example.com", "password1"));

        QVERIFY(tokenStoredBeforeSignedIn);
        QCOMPARE(m_state->phase(), AppState::Phase::SignedIn);
        QCOMPARE(m_state->user()->email, QStringLiteral("ada@example.com"));
        QCOMPARE(paths(), (QStringList{"POST /api/auth/login", "POST /api/riot-accounts/refresh", "GET /api/sync",
                                       "GET /api/stats/duos"}));
        QCOMPARE(m_state->riotAccounts().size(), 1);
        QCOMPARE(m_state->lastSyncedMatches(), std::optional<int>(2));
        QCOMPARE(m_store->matches().count(), 2);
        QCOMPARE(m_state->friendPuuids(), (QSet<QString>{"friend-1", "friend-2"}));
        QCOMPARE(m_state->friendGameNames(), (QSet<QString>{"bard main", "tag"}));
        QCOMPARE(m_state->friendNames().value("friend-1"), QStringLiteral("Bard Main#EUW"));
        QVERIFY(!m_state->isSyncing());
    }

    void rejectedSignInShowsTheServersText() {
        serveHappyBackend();
        m_backend->on("POST", "/api/auth/register", FakeResponse::text(409, "Email already registered"));
        m_state->bootstrap(m_store.get());
        waitIdle();
        run(m_state->registerAccount("ada@example.com", "password1", std::nullopt));
        QCOMPARE(m_state->phase(), AppState::Phase::SignedOut);
        QCOMPARE(m_state->errorMessage(), QStringLiteral("Server error 409. Email already registered"));

        // The next attempt clears the message as soon as it starts.
        QSignalSpy cleared(m_state.get(), &AppState::errorMessageChanged);
        run(m_state->login("ada@example.com", "password1"));
        QVERIFY(cleared.count() >= 1);
        QVERIFY(!m_state->hasError());
        QCOMPARE(m_state->phase(), AppState::Phase::SignedIn);
    }

    void syncBeforeBootstrapDoesNothing() {
        QSignalSpy syncing(m_state.get(), &AppState::isSyncingChanged);
        run(m_state->sync());
        QCOMPARE(syncing.count(), 0);
        QVERIFY(m_backend->requests().isEmpty());
    }

    // A second press, or a link, while a sync runs starts no second import or pull: the first
    // sync alone sets and clears the flag and refreshes the duos. The backend keeps the first
    // pull going, page after page, until the second attempt has returned.
    void overlappingSyncsRunOnce_data() {
        QTest::addColumn<bool>("byLink");
        QTest::newRow("second press") << false;
        QTest::newRow("account linked mid-sync") << true;
    }
    void overlappingSyncsRunOnce() {
        QFETCH(bool, byLink);
        serveHappyBackend();
        m_backend->on("POST", "/api/riot-accounts", FakeResponse::json({{"riot_account", riotAccount(2, "p2")}}));
        bool secondReturned = false;
        int pages = 0;
        m_backend->on("GET", "/api/sync", [&](const RecordedRequest&) {
            ++pages;
            return FakeResponse::json(page({}, {}, {}, {}, QStringLiteral("c%1").arg(pages), !secondReturned));
        });
        m_state->bootstrap(m_store.get());
        waitIdle();
        m_state->client().setAuthToken(QStringLiteral("t"));
        m_backend->clearRequests();
        QSignalSpy syncing(m_state.get(), &AppState::isSyncingChanged);

        m_state->requestSync();
        QVERIFY(m_state->isSyncing());
        if (byLink)
            run(m_state->addRiotAccount(QStringLiteral("Ada#EUW")));
        else
            run(m_state->sync());
        QVERIFY(m_state->isSyncing()); // the first pull is still paging
        secondReturned = true;
        waitIdle();

        QCOMPARE(syncing.count(), 2);
        QVERIFY(!m_state->isSyncing());
        QCOMPARE(m_backend->requestsTo("/api/stats/duos").size(), 1);
        // One pull only: every page was asked for once, each after the one before.
        QStringList cursors;
        for (const RecordedRequest& request : m_backend->requestsTo("/api/sync"))
            cursors << QString::fromLatin1(request.rawQuery);
        QCOMPARE(cursors.size(), pages);
        QCOMPARE(cursors.removeDuplicates(), 0);
        // Once it has ended, the next sync runs again.
        run(m_state->sync());
        QCOMPARE(syncing.count(), 4);
    }

    void failedPullKeepsTheLastCountAndSkipsDuos() {
        serveHappyBackend();
        m_state->bootstrap(m_store.get());
        waitIdle();
        run(m_state->sync());
        QCOMPARE(m_state->lastSyncedMatches(), std::optional<int>(2));

        m_backend->on("GET", "/api/sync", FakeResponse::text(502, "<html>bad gateway</html>"));
        m_backend->clearRequests();
        QSignalSpy syncing(m_state.get(), &AppState::isSyncingChanged);
        run(m_state->sync());
        QCOMPARE(syncing.count(), 2);
        QVERIFY(!m_state->isSyncing());
        QCOMPARE(m_state->lastSyncedMatches(), std::optional<int>(2));
        QCOMPARE(m_state->errorMessage(), QStringLiteral("Server error 502. <html>bad gateway</html>"));
        QVERIFY(m_backend->requestsTo("/api/stats/duos").isEmpty());
        QCOMPARE(m_store->matches().count(), 2);
    }

    // The digest of the duo list: the first Riot ID of a puuid wins, a duo without one is tagged by
    // its puuid only, and the game name is the first non-empty piece before or after "#".
    void duoDigest() {
        const auto duo = [](const char* puuid, const QJsonValue& riotId) {
            return QJsonObject{{"puuid", puuid}, {"riot_id", riotId}, {"games", 3},
                               {"wins", 2},      {"losses", 1},       {"winrate", 0.667}};
        };
        m_backend->on(
            "GET", "/api/stats/duos",
            FakeResponse::json({{"duos", QJsonArray{duo("p1", "Zed Main#EUW"), duo("p1", "Other#EUW"),
                                                    duo("p2", QJsonValue::Null), duo("p3", "#KR1"), duo("p4", "")}}}));
        m_state->client().setAuthToken(QStringLiteral("t"));
        QSignalSpy changed(m_state.get(), &AppState::friendsChanged);
        run(m_state->loadDuos());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(m_state->friendPuuids(), (QSet<QString>{"p1", "p2", "p3", "p4"}));
        QCOMPARE(m_state->friendNames(), (QHash<QString, QString>{{"p1", "Zed Main#EUW"}, {"p3", "#KR1"}, {"p4", ""}}));
        QCOMPARE(m_state->friendGameNames(), (QSet<QString>{"zed main", "other", "kr1"}));
    }

    // A failed duo refresh keeps the digest the screens use and shows nothing.
    void failedDuoRefreshKeepsTheDigest() {
        serveHappyBackend();
        m_state->bootstrap(m_store.get());
        waitIdle();
        run(m_state->sync());
        QCOMPARE(m_state->friendPuuids().size(), 2);

        m_backend->on("GET", "/api/stats/duos", FakeResponse::text(500, "duos are down"));
        QSignalSpy changed(m_state.get(), &AppState::friendsChanged);
        run(m_state->sync());
        QCOMPARE(m_backend->requestsTo("/api/stats/duos").size(), 2);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(m_state->friendPuuids(), (QSet<QString>{"friend-1", "friend-2"}));
        QCOMPARE(m_state->friendNames().value("friend-1"), QStringLiteral("Bard Main#EUW"));
        QVERIFY(!m_state->hasError());
    }

    void accountRefreshFallsBackSilently_data() {
        QTest::addColumn<int>("listStatus");
        QTest::addColumn<QString>("message");
        QTest::newRow("list answers") << 200 << QString();
        QTest::newRow("list fails too") << 500 << "Server error 500. down";
    }
    void accountRefreshFallsBackSilently() {
        QFETCH(int, listStatus);
        QFETCH(QString, message);
        serveHappyBackend();
        m_backend->on("POST", "/api/riot-accounts/refresh", FakeResponse::text(503, "riot is down"));
        if (listStatus != 200)
            m_backend->on("GET", "/api/riot-accounts", FakeResponse::text(listStatus, "down"));
        m_state->bootstrap(m_store.get());
        waitIdle();
        m_state->client().setAuthToken(QStringLiteral("t"));
        run(m_state->refreshAccountsFromRiot());
        QCOMPARE(m_state->riotAccounts().size(), listStatus == 200 ? 1 : 0);
        QCOMPARE(m_state->errorMessage(), message);
        QCOMPARE(m_state->hasError(), !message.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAppState)
#include "tst_app_state.moc"
