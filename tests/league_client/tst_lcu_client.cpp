#include "league_client/lcu_client.h"
#include "support/fake_league_client.h"
#include "support/task_result.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkRequest>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

namespace {

const QString unreadable = QStringLiteral("Couldn't read the client's match history.");

// The description of what a task threw: a player's text, or a marker for anything else.
template <class T> QString failureOf(QCoro::Task<T> task) {
    try {
        runTask(std::move(task));
    } catch (const UserFacingError& error) {
        return error.description();
    } catch (...) {
        return QStringLiteral("<other>");
    }
    return QString();
}

QByteArray pageBody(qint64 firstId, int count) {
    QJsonArray games;
    for (const QJsonObject& entry : historyEntries(firstId, count))
        games.append(entry);
    return QJsonDocument(QJsonObject{{"games", QJsonObject{{"games", games}}}}).toJson(QJsonDocument::Compact);
}

QJsonObject parsed(const QByteArray& json) {
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class TestLcuClient : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<FakeLeagueClient> m_fake;

    QString firstLockfile() const { return m_dir.filePath(QStringLiteral("first/lockfile")); }
    QString secondLockfile() const { return m_dir.filePath(QStringLiteral("second/lockfile")); }

    // Discovery that finds the fake client through its lockfile and nothing in the process list.
    LcuDiscovery::Sources fakeSources() {
        FakeLeagueClient::writeFile(firstLockfile(), m_fake->lockfileText());
        return {{firstLockfile(), secondLockfile()}, [] { return std::optional<QByteArray>(QByteArray()); }};
    }
    LcuClient::Lockfile fakeLock() const { return {m_fake->port(), m_fake->password()}; }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("first")));
        QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("second")));
    }
    void init() {
        QFile::remove(firstLockfile());
        QFile::remove(secondLockfile());
        m_fake = std::make_unique<FakeLeagueClient>();
    }

    void discovery_data() {
        QTest::addColumn<QByteArray>("first");     // null: no such file
        QTest::addColumn<QByteArray>("second");    // null: no such file
        QTest::addColumn<QByteArray>("processes"); // null: the listing cannot be run
        QTest::addColumn<qint64>("port");          // -1: no client
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("listed"); // whether the process list was consulted

        const QByteArray none;
        QTest::newRow("lockfile") << QByteArray("LeagueClient:1234:54321:abc:https") << none << none << qint64(54321)
                                  << "abc" << false;
        QTest::newRow("bad port falls to the second path")
            << QByteArray("LeagueClient:1234:54321x:abc:https") << QByteArray("LeagueClient:99:60123:def:https") << none
            << qint64(60123) << "def" << false;
        QTest::newRow("four fields") << QByteArray("LeagueClient:1234:54321:abc") << none << none << qint64(-1) << ""
                                     << true;
        QTest::newRow("port beyond 64 bits")
            << QByteArray("LeagueClient:1:9223372036854775808:abc:https") << none << none << qint64(-1) << "" << true;
        QTest::newRow("lockfile not UTF-8")
            << QByteArray("LeagueClient:1:54321:\xff\xfe:https") << none << none << qint64(-1) << "" << true;

        QTest::newRow("quoted arguments")
            << none << none
            << QByteArray("COMMAND\n/sbin/launchd\n\"/Applications/League of Legends.app/Contents/LoL/League of "
                          "Legends.app/Contents/MacOS/LeagueClientUx\" \"--app-port=54321\" "
                          "--remoting-auth-token=abc \"--app-pid=77\"\n")
            << qint64(54321) << "abc" << true;
        QTest::newRow("port without token passed over")
            << none << none
            << QByteArray("LeagueClientUx --app-port=1111\nLeagueClientUx --app-port=2222 --remoting-auth-token=xyz\n")
            << qint64(2222) << "xyz" << true;
        QTest::newRow("line without LeagueClientUx")
            << none << none << QByteArray("LeagueClient --app-port=1111 --remoting-auth-token=aaa\n") << qint64(-1)
            << "" << true;
        QTest::newRow("port not a number") << none << none
                                           << QByteArray("LeagueClientUx --app-port=12ab --remoting-auth-token=abc\n"
                                                         "LeagueClientUx --app-port=4 --remoting-auth-token=d\n")
                                           << qint64(4) << "d" << true;
        QTest::newRow("listing cannot run") << none << none << none << qint64(-1) << "" << true;
        QTest::newRow("listing not UTF-8")
            << none << none << QByteArray("LeagueClientUx --app-port=8 --remoting-auth-token=\xc3\x28\n") << qint64(-1)
            << "" << true;
    }
    void discovery() {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        QFETCH(QByteArray, processes);
        QFETCH(qint64, port);
        QFETCH(QString, password);
        QFETCH(bool, listed);
        if (!first.isNull())
            FakeLeagueClient::writeFile(firstLockfile(), first);
        if (!second.isNull())
            FakeLeagueClient::writeFile(secondLockfile(), second);
        int listings = 0;
        LcuDiscovery::Sources sources{{firstLockfile(), secondLockfile()}, [&]() -> std::optional<QByteArray> {
                                          ++listings;
                                          if (processes.isNull())
                                              return std::nullopt;
                                          return processes;
                                      }};

        const std::optional<LcuClient::Lockfile> lock = LcuClient(sources).discover();

        QCOMPARE(lock.has_value(), port >= 0);
        if (lock) {
            QCOMPARE(lock->port, port);
            QCOMPARE(lock->password, password);
        }
        QCOMPARE(listings, listed ? 1 : 0);
    }

    void processListingShowsThisProcess() {
        const std::optional<QByteArray> output = LcuDiscovery::listProcesses();
        QVERIFY(output);
        QVERIFY(output->contains(QFileInfo(QCoreApplication::applicationFilePath()).fileName().toUtf8()));
    }

    void statusAndCredentials_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("failure");
        QTest::newRow("204 is success") << 204 << QString();
        QTest::newRow("300") << 300 << "League client returned 300.";
    }
    void statusAndCredentials() {
        QFETCH(int, status);
        QFETCH(QString, failure);
        const QByteArray body = status == 204 ? QByteArray() : QByteArray("{\"x\":1}");
        m_fake->serve(QStringLiteral("/probe/path"), FakeResponse{status, body, {}});
        LcuClient client(fakeSources());

        QCOMPARE(failureOf(client.get(QStringLiteral("/probe/path"), fakeLock())), failure);
        if (failure.isEmpty())
            QCOMPARE(runTask(client.get(QStringLiteral("/probe/path"), fakeLock())), body);

        const RecordedRequest request = m_fake->requests().constFirst();
        QCOMPARE(request.method, QByteArray("GET"));
        QCOMPARE(request.header("Authorization"),
                 "Basic " + QByteArray("riot:" + m_fake->password().toUtf8()).toBase64());
        QCOMPARE(request.header("Accept"), QByteArray("application/json"));
    }

    // The League client's certificate is self-signed: accepted on 127.0.0.1, refused for any
    // other name of the same server.
    void selfSignedCertificateOnlyOnLoopbackAddress_data() {
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("127.0.0.1") << "127.0.0.1" << true;
        QTest::newRow("localhost") << "localhost" << false;
    }
    void selfSignedCertificateOnlyOnLoopbackAddress() {
        QFETCH(QString, host);
        QFETCH(bool, accepted);
        m_fake->serve(QStringLiteral("/probe"), FakeResponse::json({{"ok", true}}));
        QNetworkRequest request(QUrl(QStringLiteral("https://%1:%2/probe").arg(host).arg(m_fake->port())));
        request.setRawHeader("Authorization", "Basic " + ("riot:" + m_fake->password().toUtf8()).toBase64());
        LoopbackSession session;
        try {
            const LoopbackSession::Answer answer = runTask(session.get(request));
            QVERIFY(accepted);
            QCOMPARE(answer.status, std::optional<int>(200));
        } catch (const LoopbackTransportError& error) {
            QVERIFY2(!accepted, qPrintable(error.detail()));
            QCOMPARE(error.networkError(), QNetworkReply::SslHandshakeFailedError);
        }
    }

    void historyPaging_data() {
        QTest::addColumn<int>("count");
        QTest::addColumn<QByteArray>("firstPage");
        QTest::addColumn<QByteArray>("secondPage");
        QTest::addColumn<int>("secondStatus");
        QTest::addColumn<QStringList>("queries");
        QTest::addColumn<int>("entries");
        QTest::addColumn<QString>("failure");

        const QString first = QStringLiteral("begIndex=0&endIndex=99");
        const QString second = QStringLiteral("begIndex=100&endIndex=199");
        const QByteArray full = pageBody(1, 100);
        const QByteArray more = pageBody(101, 30);
        QTest::newRow("99 entries: one request")
            << 200 << pageBody(1, 99) << more << 200 << QStringList{first} << 99 << QString();
        QTest::newRow("second page not JSON keeps the first")
            << 200 << full << QByteArray("<html>") << 200 << QStringList{first, second} << 100 << QString();
        QTest::newRow("second page refused")
            << 200 << full << more << 500 << QStringList{first, second} << 0 << "League client returned 500.";
        QTest::newRow("first page not JSON")
            << 200 << QByteArray("<html>") << more << 200 << QStringList{first} << 0 << unreadable;
        QTest::newRow("first page with a non-object entry")
            << 200 << QByteArray("{\"games\":{\"games\":[{\"gameId\":1},5]}}") << more << 200 << QStringList{first} << 0
            << unreadable;
        QTest::newRow("depth of exactly one page")
            << 100 << full << more << 200 << QStringList{first} << 100 << QString();
        QTest::newRow("depth of one and a half pages")
            << 150 << full << more << 200 << QStringList{first, QStringLiteral("begIndex=100&endIndex=149")} << 130
            << QString();
    }
    void historyPaging() {
        QFETCH(int, count);
        QFETCH(QByteArray, firstPage);
        QFETCH(QByteArray, secondPage);
        QFETCH(int, secondStatus);
        QFETCH(QStringList, queries);
        QFETCH(int, entries);
        QFETCH(QString, failure);
        m_fake->serve(QString::fromLatin1(FakeLeagueClient::historyPath), [=](const RecordedRequest& request) {
            if (request.rawQuery.startsWith("begIndex=0&"))
                return FakeResponse{200, firstPage, {}};
            return FakeResponse{secondStatus, secondPage, {}};
        });
        LcuClient client(fakeSources());

        const QString thrown = failureOf(client.fetchList(fakeLock(), count));
        QCOMPARE(thrown, failure);
        QCOMPARE(m_fake->historyQueries(), queries);
        if (!failure.isEmpty())
            return;
        const QList<QJsonObject> list = runTask(client.fetchList(fakeLock(), count));
        QCOMPARE(list.size(), entries);
        // Ids run from 1 without gaps across the pages served, so order and completeness show in the ends.
        if (entries > 0) {
            QCOMPARE(list.constFirst().value("gameId").toInteger(), 1);
            QCOMPARE(list.constLast().value("gameId").toInteger(), entries);
        }
    }

    void gameId_data() {
        QTest::addColumn<QJsonObject>("game");
        QTest::addColumn<QString>("id"); // null: no id
        QTest::newRow("float with zero fraction, as sent") << parsed("{\"gameId\":7123456789.0}") << "7123456789";
        QTest::newRow("negative truncated toward zero") << QJsonObject{{"gameId", -7.9}} << "-7";
        QTest::newRow("largest 64-bit integer") << parsed("{\"gameId\":9223372036854775807}") << "9223372036854775807";
        QTest::newRow("just beyond 64 bits") << parsed("{\"gameId\":9223372036854775808}") << QString();
        QTest::newRow("not a number") << QJsonObject{{"gameId", std::nan("")}} << QString();
    }
    void gameId() {
        QFETCH(QJsonObject, game);
        QFETCH(QString, id);
        const std::optional<QString> found = LcuClient::gameId(game);
        QCOMPARE(found.has_value(), !id.isNull());
        QCOMPARE(found.value_or(QString()), id);
    }

    void recentFullGamesWalksTheListInOrder() {
        const QJsonValue noId(QJsonValue::Undefined);
        const QList<QJsonObject> entries{historyEntry(1), historyEntry(2), historyEntry(noId), historyEntry("4"),
                                         historyEntry(5), historyEntry(6), historyEntry(7),    historyEntry(8)};
        m_fake->serveHistory(entries);
        const QString games = QString::fromLatin1(FakeLeagueClient::gamePathPrefix);
        m_fake->serve(games + "5", FakeResponse::text(404, "gone"));
        m_fake->serve(games + "6", FakeResponse{200, "[1,2]", {}});
        LcuClient client(fakeSources());

        const LcuClient::FullGames found = runTask(client.recentFullGames(4, {QStringLiteral("2")}));

        QCOMPARE(found.processed, (QStringList{"1", "5", "6", "7"}));
        QCOMPARE(found.games.size(), 4);
        QVERIFY(found.games[0].value("fullRecord").toBool());
        QCOMPARE(found.games[1], entries[4]); // the list entry stands in for a game that cannot be read
        QCOMPARE(found.games[2], entries[5]);
        QVERIFY(found.games[3].value("fullRecord").toBool());
        QStringList fetched;
        for (const RecordedRequest& request : m_fake->requests())
            if (request.path.startsWith(games))
                fetched << request.path.mid(games.size());
        QCOMPARE(fetched, (QStringList{"1", "5", "6", "7"}));
    }
};

QTEST_GUILESS_MAIN(TestLcuClient)
#include "tst_lcu_client.moc"
