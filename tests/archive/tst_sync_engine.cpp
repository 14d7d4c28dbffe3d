#include "archive/archive_store.h"
#include "archive/store_error.h"
#include "archive/sync_engine.h"
#include "backend/backend_client.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include "backend/backend_error.h"

#include <QNetworkAccessManager>
#include <QTest>
#include <QUrlQuery>
#include <sqlite3.h>

using namespace ArchiveJson;

class TestSyncEngine : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<BackendClient> m_client;
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<ArchiveStore> m_store;
    QTemporaryDir m_dir;

    // Answers "sync" by cursor: the key "" is the request without a cursor.
    void servePages(QHash<QString, FakeResponse> pages) {
        m_backend->on("GET", "/api/sync", [pages](const RecordedRequest& request) {
            const QString cursor =
                QUrlQuery(QString::fromUtf8(request.rawQuery)).queryItemValue("cursor", QUrl::FullyDecoded);
            return pages.value(cursor, FakeResponse::text(500, "unknown cursor " + cursor.toUtf8()));
        });
    }

    int pull() {
        SyncEngine engine(*m_store, *m_client, **m_settings);
        return runTask(engine.pull());
    }

    QList<QByteArray> sentQueries() const {
        QList<QByteArray> queries;
        for (const RecordedRequest& request : m_backend->requestsTo("/api/sync"))
            queries << (request.hasQuery ? request.rawQuery : QByteArray("<none>"));
        return queries;
    }

    void markMirrorCurrent() { (*m_settings)->setValue("quill.mirrorVersion", 5); }

private Q_SLOTS:
    void init() {
        m_backend = std::make_unique<FakeBackend>();
        m_client = std::make_unique<BackendClient>(m_network, m_backend->baseUrl());
        m_client->setAuthToken(QStringLiteral("tok"));
        m_settings = std::make_unique<TestSettings>();
        m_store.reset();
        const QString path = m_dir.filePath(QStringLiteral("%1.sqlite").arg(QTest::currentTestFunction()));
        QFile::remove(path);
        m_store = std::make_unique<ArchiveStore>(path);
    }

    void firstPullEver() {
        servePages({{"", FakeResponse::json(page({match(1), match(2)}, {participant(10, 1, "me")}, {snapshot(5, 1)},
                                                 {score(7, 1, 1)}, QStringLiteral("c1"), false))}});
        QCOMPARE(pull(), 2);
        QCOMPARE(sentQueries(), QList<QByteArray>{"<none>"});
        QCOMPARE((*m_settings)->value("quill.mirrorVersion").toInt(), 5);
        QCOMPARE((*m_settings)->value("quill.syncCursor").toString(), QStringLiteral("c1"));
        QCOMPARE(m_store->matches().count(), 2);
        QCOMPARE(m_store->participants().count(), 1);
        QCOMPARE(m_store->rankSnapshots().count(), 1);
        QCOMPARE(m_store->performanceScores().count(), 1);
        QVERIFY(!m_backend->requests().first().header("Authorization").isEmpty());
    }

    void resumesFromStoredCursor() {
        markMirrorCurrent();
        (*m_settings)->setValue("quill.syncCursor", "c7+x");
        servePages({{"c7+x", FakeResponse::json(page({}))}});
        QCOMPARE(pull(), 0);
        QCOMPARE(sentQueries(), QList<QByteArray>{"cursor=c7%2Bx"});
        QCOMPARE((*m_settings)->value("quill.syncCursor").toString(), QStringLiteral("c7+x"));
    }

    void hasMoreWithoutCursorStopsAtTheCap() {
        markMirrorCurrent();
        (*m_settings)->setValue("quill.syncCursor", "same");
        servePages({{"same", FakeResponse::json(page({match(1)}, {}, {}, {}, std::nullopt, true))}});
        QCOMPARE(pull(), 1000);
        const auto queries = sentQueries();
        QCOMPARE(queries.size(), 1000);
        QVERIFY(std::all_of(queries.begin(), queries.end(), [](const QByteArray& q) { return q == "cursor=same"; }));
        QCOMPARE(m_store->matches().count(), 1);
    }

    void sameIdTwiceInOnePage() {
        markMirrorCurrent();
        QJsonObject later = match(1);
        later["game_duration"] = 2222;
        servePages({{"", FakeResponse::json(
                             page({match(1), later}, {}, {snapshot(3, 1), snapshot(3, 1, "RANKED_FLEX_SR")}))}});
        QCOMPARE(pull(), 2);
        QCOMPARE(m_store->matches().count(), 1);
        QCOMPARE(m_store->matches().all().front()->gameDuration, 2222);
        QCOMPARE(m_store->rankSnapshots().count(), 1);
        QCOMPARE(m_store->rankSnapshots().all().front()->queue, QStringLiteral("RANKED_FLEX_SR"));
    }

    void participantsReplacedPerGame() {
        markMirrorCurrent();
        servePages(
            {{"", FakeResponse::json(page({match(1), match(2)},
                                          {participant(10, 1, "a"), participant(11, 1, "b"), participant(20, 2, "c")},
                                          {}, {}, QStringLiteral("p1"), false))},
             {"p1",
              FakeResponse::json(page({match(1)}, {participant(12, 1, "d")}, {}, {}, QStringLiteral("p2"), false))}});
        pull();
        const qint64 gameOneId = m_store->matches().withServerIds({1}).front()->localId;
        pull();
        QCOMPARE(m_store->matches().count(), 2);
        QCOMPARE(m_store->matches().withServerIds({1}).front()->localId, gameOneId); // updated in place
        const auto gameOne = m_store->participants().withMatchServerId(1);
        QCOMPARE(gameOne.size(), std::size_t(1));
        QCOMPARE(gameOne.front()->puuid, QStringLiteral("d"));
        QCOMPARE(m_store->participants().withMatchServerId(2).size(), std::size_t(1));
    }

    void failureOnThirdPageKeepsTheFirstTwo_data() {
        QTest::addColumn<FakeResponse>("third");
        QJsonObject broken = match(5);
        broken.remove("platform");
        QTest::newRow("server error") << FakeResponse::text(500, "boom");
        QTest::newRow("element without a required key") << FakeResponse::json(page({match(4), broken}));
    }
    void failureOnThirdPageKeepsTheFirstTwo() {
        QFETCH(FakeResponse, third);
        markMirrorCurrent();
        servePages(
            {{"", FakeResponse::json(page({match(1)}, {participant(10, 1, "a")}, {}, {}, QStringLiteral("c1"), true))},
             {"c1", FakeResponse::json(page({match(2)}, {}, {}, {}, QStringLiteral("c2"), true))},
             {"c2", third}});
        QVERIFY_THROWS_EXCEPTION(BackendError, pull());
        QCOMPARE(m_store->matches().count(), 2);
        QCOMPARE((*m_settings)->value("quill.syncCursor").toString(), QStringLiteral("c2"));

        // The archive on disk holds the two saved pages, and the next pull resumes after them.
        m_backend->clearRequests();
        servePages({{"c2", FakeResponse::json(page({match(3)}))}});
        QCOMPARE(pull(), 1);
        QCOMPARE(sentQueries(), QList<QByteArray>{"cursor=c2"});
        QCOMPARE(m_store->matches().count(), 3);
    }

    void storeFailureDoesNotAdvanceTheCursor_data() {
        QTest::addColumn<bool>("hasMore");
        QTest::newRow("last page") << false;
        // The next page is already on its way when the store fails: it is aborted.
        QTest::newRow("next page asked for") << true;
    }
    void storeFailureDoesNotAdvanceTheCursor() {
        QFETCH(bool, hasMore);
        markMirrorCurrent();
        servePages({{"", FakeResponse::json(page({match(1)}, {}, {}, {}, QStringLiteral("c1"), hasMore))},
                    {"c1", FakeResponse::json(page({match(2)}))}});
        sqlite3_exec(m_store->database().handle(), "PRAGMA query_only = 1", nullptr, nullptr, nullptr);
        QVERIFY_THROWS_EXCEPTION(StoreError, pull());
        QVERIFY(!(*m_settings)->contains("quill.syncCursor"));

        // Nothing of the failed pull is left over: the next one starts again from the top.
        sqlite3_exec(m_store->database().handle(), "PRAGMA query_only = 0", nullptr, nullptr, nullptr);
        QCOMPARE(pull(), hasMore ? 2 : 1);
        QCOMPARE(m_store->matches().count(), hasMore ? 2 : 1);
    }

    void oldMirrorIsWipedAndDownloadedAgain_data() {
        QTest::addColumn<QVariant>("storedVersion");
        QTest::addColumn<bool>("wiped");
        QTest::newRow("version 4") << QVariant(4) << true;
        QTest::newRow("version 5") << QVariant(5) << false;
        QTest::newRow("version 6") << QVariant(6) << false;
    }
    void oldMirrorIsWipedAndDownloadedAgain() {
        QFETCH(QVariant, storedVersion);
        QFETCH(bool, wiped);
        if (storedVersion.isValid())
            (*m_settings)->setValue("quill.mirrorVersion", storedVersion);
        (*m_settings)->setValue("quill.syncCursor", "old");
        m_store->matches().insert(std::make_unique<LocalMatch>(MatchDto{.id = 99}));
        m_store->participants().insert(std::make_unique<LocalParticipant>(ParticipantDto{.id = 98, .matchId = 99}));
        m_store->rankSnapshots().insert(std::make_unique<LocalRankSnapshot>(RankSnapshotDto{.id = 97}));
        m_store->performanceScores().insert(std::make_unique<LocalPerformanceScore>(PerformanceScoreDto{.id = 96}));
        m_store->save();
        servePages({{"", FakeResponse::json(page({match(1)}))}, {"old", FakeResponse::json(page({match(1)}))}});

        QCOMPARE(pull(), 1);
        QCOMPARE(sentQueries(), QList<QByteArray>{wiped ? "<none>" : "cursor=old"});
        QCOMPARE(m_store->matches().count(), wiped ? 1 : 2);
        QCOMPARE(m_store->participants().count(), wiped ? 0 : 1);
        QCOMPARE(m_store->rankSnapshots().count(), wiped ? 0 : 1);
        QCOMPARE(m_store->performanceScores().count(), wiped ? 0 : 1);
        QCOMPARE((*m_settings)->value("quill.mirrorVersion").toInt(), wiped ? 5 : storedVersion.toInt());
    }
};

QTEST_GUILESS_MAIN(TestSyncEngine)
#include "tst_sync_engine.moc"
