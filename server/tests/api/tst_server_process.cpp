// The quillfern-server program as a person running it sees it: its options, its start-up line,
// data that outlives a restart, and a stop in the middle of an upload that keeps all or nothing.

#include "backend/backend_client.h"
#include "config/server_config.h"
#include "support/client_games.h"
#include "support/task_result.h"

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

namespace {

quint16 freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

} // namespace

class TestServerProcess : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    QTemporaryDir m_dir;
    quint16 m_port = 0;

    // Starts the server on the test's folder and waits for its start-up line.
    std::unique_ptr<QProcess> start(QStringList extra = {}) {
        auto process = std::make_unique<QProcess>();
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->start(QStringLiteral(QUILLFERN_SERVER_BINARY),
                       QStringList{"--listen", "127.0.0.1:" + QString::number(m_port), "--data-dir", m_dir.path(),
                                   "--threads", "2"} +
                           extra);
        for (int i = 0; i < 600 && !process->readAll().contains("listening on"); ++i) {
            if (process->state() == QProcess::NotRunning)
                return nullptr;
            process->waitForReadyRead(100);
        }
        return process;
    }

    BackendClient client(std::optional<QString> token = std::nullopt) {
        BackendClient c(m_network, QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port)));
        c.setAuthToken(std::move(token));
        return c;
    }

    static bool terminate(QProcess& process, int signal = SIGTERM) {
        ::kill(pid_t(process.processId()), signal);
        return process.waitForFinished(30000);
    }

private Q_SLOTS:
    void initTestCase() {
        if (ClientGames::fixtureGame().isEmpty())
            QSKIP("the shared fixtures are not next to this repository");
    }
    void init() { m_port = freePort(); }

    void options_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("help") << QStringList{"--help"} << "Usage: quillfern-server" << 0;
        QTest::newRow("unknown") << QStringList{"--frobnicate"} << "Unknown option --frobnicate." << 2;
        QTest::newRow("listen without port")
            << QStringList{"--listen", "127.0.0.1"} << "Cannot read the listen address" << 2;
        QTest::newRow("value missing") << QStringList{"--database"} << "--database needs an address." << 2;
        QTest::newRow("threads") << QStringList{"--threads=0"} << "--threads needs a number from 1 to 256." << 2;
        QTest::newRow("unreachable database")
            << QStringList{"--database", "postgresql://nobody@127.0.0.1:1/none", "--listen", "127.0.0.1:0"}
            << "quillfern-server could not start:" << 1;
    }
    void options() {
        QFETCH(QStringList, args);
        QFETCH(QString, expected);
        QFETCH(int, exitCode);
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(QUILLFERN_SERVER_BINARY), args);
        QVERIFY(process.waitForFinished(30000));
        QVERIFY2(QString::fromUtf8(process.readAll()).contains(expected), qPrintable(expected));
        QCOMPARE(process.exitCode(), exitCode);
    }

    void settingsFromTheEnvironment() {
        std::map<std::string, std::string> env{
            {"QUILLFERN_LISTEN", "0.0.0.0:9000"}, {"QUILLFERN_DATA_DIR", "/srv/qf"}, {"QUILLFERN_DEMO", "1"}};
        auto lookup = [&](const char* name) -> std::optional<std::string> {
            auto it = env.find(name);
            return it == env.end() ? std::nullopt : std::optional<std::string>(it->second);
        };
        qf::ConfigOutcome fromEnv = qf::parseServerConfig({}, lookup);
        QVERIFY(fromEnv.config);
        QCOMPARE(fromEnv.config->port, 9000);
        QCOMPARE(fromEnv.config->database, std::string("/srv/qf/quillfern.sqlite"));
        QVERIFY(fromEnv.config->demo);
        // Not loopback: a League client's identity cannot be trusted unless told so.
        QVERIFY(!fromEnv.config->leagueLogin);
        // A flag wins over its variable.
        qf::ConfigOutcome flagged = qf::parseServerConfig({"--listen", "[::1]:8001"}, lookup);
        QCOMPARE(flagged.config->host, std::string("::1"));
        QVERIFY(flagged.config->leagueLogin);
    }

    void everythingSurvivesARestart() {
        auto server = start();
        QVERIFY(server);
        const QStringList players = ClientGames::puuids(7);
        const QString token =
            runTask(client().leagueLogin(players[0], "na1", QStringLiteral("Pøllux"), QStringLiteral("NA1"))).token;
        QCOMPARE(runTask(client(token).ingestLocal({ClientGames::game(5001, players)})).ingested, 1);
        runTask(client().registerAccount("restart@example.org", "correct horse", {}));
        QVERIFY(terminate(*server));
        QCOMPARE(server->exitCode(), 0);

        server = start();
        QVERIFY(server);
        // The session token still works, the game is still there, the password still signs in.
        QCOMPARE(runTask(client(token).sync(std::nullopt)).matches.size(), 1);
        QCOMPARE(runTask(client(token).riotAccounts()).riotAccounts.size(), 1);
        QVERIFY(!runTask(client().login("restart@example.org", "correct horse")).token.isEmpty());
        QVERIFY(terminate(*server));
    }

    void aStopDuringAnUploadKeepsAllOrNothing_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << int(SIGTERM);
        QTest::newRow("SIGKILL") << int(SIGKILL);
    }
    void aStopDuringAnUploadKeepsAllOrNothing() {
        QFETCH(int, signal);
        auto server = start();
        QVERIFY(server);
        const QStringList players = ClientGames::puuids(8);
        const QString token = runTask(client().leagueLogin(players[0], "na1", QStringLiteral("Pøllux"), {})).token;
        QJsonArray batch;
        for (int i = 0; i < 100; ++i)
            batch.append(ClientGames::game(6000 + i, players));

        BackendClient uploader = client(token);
        QCoro::Task<IngestLocalResponse> upload = uploader.ingestLocal(batch);
        // Let the request reach the server, then stop it while the batch is being stored.
        QTest::qWait(150);
        QVERIFY(terminate(*server, signal));
        try {
            runTask(std::move(upload));
        } catch (const BackendError&) {
        }

        server = start();
        QVERIFY(server);
        const qsizetype stored = runTask(client(token).sync(std::nullopt)).matches.size();
        QVERIFY2(stored == 0 || stored == 100, qPrintable(QString::number(stored)));
        QVERIFY(terminate(*server));
    }
};

QTEST_GUILESS_MAIN(TestServerProcess)
#include "tst_server_process.moc"
