#include "overlay/live_client_data.h"
#include "support/fake_live_game.h"
#include "support/task_result.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTcpServer>
#include <QTest>

using Snapshot = LiveClientData::Snapshot;
using Ranks = QMap<QString, qint64>;
Q_DECLARE_METATYPE(Ranks)

namespace {

QString describe(const std::optional<Snapshot>& snapshot) {
    if (!snapshot)
        return QStringLiteral("absent");
    QStringList ranks;
    for (auto it = snapshot->abilities.cbegin(); it != snapshot->abilities.cend(); ++it)
        ranks << it.key() + QString::number(it.value());
    return QStringLiteral("'%1' level %2 [%3] time %4")
        .arg(snapshot->championName)
        .arg(snapshot->level)
        .arg(ranks.join(' '))
        .arg(snapshot->gameTimeSeconds);
}

QString expected(const QString& champion, qint64 level, const Ranks& ranks, double time) {
    return describe(Snapshot{champion, level, ranks, time});
}

const Ranks zeros{{"Q", 0}, {"W", 0}, {"E", 0}, {"R", 0}};

} // namespace

// Reading the live game: the answer member by member with its defaults, the real answers the
// game has given, and the request itself over HTTPS on loopback.
class TestLiveClientData : public QObject {
    Q_OBJECT

    std::unique_ptr<FakeLiveGame> m_game;

private Q_SLOTS:
    void init() { m_game = std::make_unique<FakeLiveGame>(); }

    void read_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("snapshot");

        const QByteArray players = R"("allPlayers":[{"summonerName":"A","championName":"Ahri","level":4},)"
                                   R"({"riotIdGameName":"Me","championName":"Jinx","level":9}])";
        QTest::newRow("riot id picks the player")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":"Me","level":9},)" + players + "}")
            << expected("Jinx", 9, {}, 0);
        QTest::newRow("summoner name when there is no riot id")
            << QByteArray(R"({"activePlayer":{"summonerName":"A","level":3},)" + players + "}")
            << expected("Ahri", 3, {}, 0);
        QTest::newRow("riot id wins over summoner name")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":"Me","summonerName":"A"},)" + players + "}")
            << expected("Jinx", 9, {}, 0);
        QTest::newRow("each player tried against both names in turn")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":"A"},)" + players + "}") << expected("Ahri", 4, {}, 0);
        QTest::newRow("no name matches: the first player")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":"Nobody"},)" + players + "}")
            << expected("Ahri", 4, {}, 0);
        QTest::newRow("names compare exactly")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":"me "},)" + players + "}") << expected("Ahri", 4, {}, 0);
        QTest::newRow("no abilities, no level, no players")
            << QByteArray(R"({"activePlayer":{}})") << expected("", 0, {}, 0);
        QTest::newRow("E missing") << QByteArray(R"({"activePlayer":{"level":7,"abilities":{"Q":{"abilityLevel":3},)"
                                                 R"("W":{"abilityLevel":1},"R":{"abilityLevel":1}}}})")
                                   << expected("", 7, {{"Q", 3}, {"W", 1}, {"E", 0}, {"R", 1}}, 0);
        QTest::newRow("level 0 falls back to the ability points")
            << QByteArray(R"({"activePlayer":{"level":0,"abilities":{"Q":{"abilityLevel":1},)"
                          R"("W":{"abilityLevel":1},"E":{"abilityLevel":0},"R":{"abilityLevel":0}}}})")
            << expected("", 2, {{"Q", 1}, {"W", 1}, {"E", 0}, {"R", 0}}, 0);
        QTest::newRow("level 0 falls back to the player's level")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":"Me","abilities":{"Q":{"abilityLevel":1}}},)" + players +
                          "}")
            << expected("Jinx", 9, {{"Q", 1}, {"W", 0}, {"E", 0}, {"R", 0}}, 0);
        QTest::newRow("player's level 0 too: the ability points")
            << QByteArray(R"({"activePlayer":{"abilities":{"Q":{"abilityLevel":2},"E":{"abilityLevel":1}}},)"
                          R"("allPlayers":[{"championName":"Lux","level":0}]})")
            << expected("Lux", 3, {{"Q", 2}, {"W", 0}, {"E", 1}, {"R", 0}}, 0);
        QTest::newRow("whole doubles are integers")
            << QByteArray(R"({"activePlayer":{"level":6.0,"abilities":{"Q":{"abilityLevel":3.0},)"
                          R"("W":{"abilityLevel":2.5},"E":{"abilityLevel":"1"},"R":{"abilityLevel":1e30}}}})")
            << expected("", 6, {{"Q", 3}, {"W", 0}, {"E", 0}, {"R", 0}}, 0);
        QTest::newRow("mistyped members are defaults")
            << QByteArray(R"({"activePlayer":{"riotIdGameName":5,"summonerName":null,"level":"9",)"
                          R"("abilities":{"Q":3,"W":[],"E":{"abilityLevel":true}}},)"
                          R"("allPlayers":[{"riotIdGameName":"","championName":7,"level":2}],)"
                          R"("gameData":{"gameTime":"12"}})")
            << expected("", 2, zeros, 0);
        QTest::newRow("player list with a non-object is no list")
            << QByteArray(R"({"activePlayer":{"level":4},"allPlayers":[{"championName":"Lux"},3]})")
            << expected("", 4, {}, 0);
        QTest::newRow("gameData without gameTime")
            << QByteArray(R"({"activePlayer":{"level":1},"gameData":{"mapName":"Map11"}})") << expected("", 1, {}, 0);
        QTest::newRow("game time") << QByteArray(R"({"activePlayer":{"level":1},"gameData":{"gameTime":1020.5}})")
                                   << expected("", 1, {}, 1020.5);
        QTest::newRow("huge ranks saturate the level")
            << QByteArray(R"({"activePlayer":{"abilities":{"Q":{"abilityLevel":9007199254740992},)"
                          R"("W":{"abilityLevel":9007199254740992},"E":{"abilityLevel":9223372036854775807},)"
                          R"("R":{"abilityLevel":1}}}})")
            << QStringLiteral("'' level 9223372036854775807 [E9223372036854775807 Q9007199254740992 "
                              "R1 W9007199254740992] time 0");
        QTest::newRow("JSON beyond simdjson: a 100-bit integer, a lone surrogate")
            << QByteArray(R"({"activePlayer":{"level":5,"summonerName":"\ud800"},)"
                          R"("gameData":{"gameTime":12,"id":1234567890123456789012345678901}})")
            << expected("", 5, {}, 12);
        QTest::newRow("activePlayer missing") << QByteArray(R"({"allPlayers":[]})") << "absent";
        QTest::newRow("activePlayer not an object") << QByteArray(R"({"activePlayer":[]})") << "absent";
        QTest::newRow("top level a list") << QByteArray(R"([{"activePlayer":{}}])") << "absent";
        QTest::newRow("not JSON") << QByteArray("<html>") << "absent";
        QTest::newRow("empty") << QByteArray() << "absent";
        QTest::newRow("cut short") << QByteArray(R"({"activePlayer":{"level":3)") << "absent";
    }
    void read() {
        QFETCH(QByteArray, body);
        QFETCH(QString, snapshot);
        QCOMPARE(describe(LiveClientData::read(body)), snapshot);
    }

    // Real answers of the game, served over HTTPS as the game serves them.
    void fixtures_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("snapshot");
        // Practice tool: summoner names only, every ability at its maximum.
        QTest::newRow("practice") << "live-allgamedata-1.json"
                                  << expected("Xayah", 18, {{"Q", 5}, {"W", 5}, {"E", 5}, {"R", 3}},
                                              1020.6035766601562);
        // Ranked: the active player is the fifth of ten; Zyra at 13 with Q still at 1.
        QTest::newRow("ranked") << "live-allgamedata-2.json"
                                << expected("Zyra", 13, {{"Q", 1}, {"W", 5}, {"E", 5}, {"R", 2}}, 1762.9317626953125);
        // Spectating: "activePlayer" is an error object, so there is no name, no level and no
        // abilities; the first player (Nasus, level 7) stands in.
        QTest::newRow("spectated") << "live-allgamedata-3.json" << expected("Nasus", 7, {}, 588.1959228515625);
        // Against bots: the active player is "c4ldas#EU10" while the list says "c4ldas", so no name
        // matches and the first player, who is that player, gives Wukong.
        QTest::newRow("bots") << "live-allgamedata-4.json"
                              << expected("Wukong", 18, {{"Q", 5}, {"W", 5}, {"E", 5}, {"R", 3}}, 2064.0537109375);
    }
    void fixtures() {
        QFETCH(QString, file);
        QFETCH(QString, snapshot);
        QFile fixture(QStringLiteral(QF_FIXTURES_DIR "/") + file);
        if (!fixture.open(QIODevice::ReadOnly))
            QSKIP("the shared fixtures are not next to this repository");
        m_game->setAnswer(FakeResponse{200, fixture.readAll(), {{"Content-Type", "application/json"}}});
        LiveClientData live(m_game->port());
        QCOMPARE(describe(runTask(live.snapshot())), snapshot);
    }

    void request() {
        m_game->setAnswer(FakeResponse::json(FakeLiveGame::game("Ahri", 3, {{"Q", 2}, {"W", 1}})));
        LiveClientData live(m_game->port());
        QCOMPARE(describe(runTask(live.snapshot())),
                 expected("Ahri", 3, {{"Q", 2}, {"W", 1}, {"E", 0}, {"R", 0}}, 300));
        QCOMPARE(m_game->requests().size(), 1);
        const RecordedRequest& sent = m_game->requests().constFirst();
        QCOMPARE(sent.method, QByteArray("GET"));
        QCOMPARE(sent.rawPath, QByteArray("/liveclientdata/allgamedata"));
        QCOMPARE(sent.header("Accept"), QByteArray("application/json"));
        QVERIFY(sent.body.isEmpty());
    }

    // Every failure is an absent snapshot.
    void failures_data() {
        QTest::addColumn<FakeResponse>("answer");
        QTest::newRow("404") << FakeResponse::json({{"activePlayer", QJsonObject{}}}, 404);
        QTest::newRow("500") << FakeResponse::text(500, "oops");
        QTest::newRow("204 without a body") << FakeResponse{204, {}, {}};
        QTest::newRow("not JSON") << FakeResponse::text(200, "<html>loading</html>");
    }
    void failures() {
        QFETCH(FakeResponse, answer);
        m_game->setAnswer(answer);
        LiveClientData live(m_game->port());
        QCOMPARE(describe(runTask(live.snapshot())), QStringLiteral("absent"));
    }

    void noGameRunning() {
        QTcpServer probe;
        QVERIFY(probe.listen(QHostAddress::LocalHost));
        const quint16 port = probe.serverPort();
        probe.close(); // nothing listens there now
        LiveClientData live(port);
        QCOMPARE(describe(runTask(live.snapshot())), QStringLiteral("absent"));
        try {
            runTask(live.get(QStringLiteral("/liveclientdata/allgamedata")));
            QFAIL("a refused connection gave a body");
        } catch (const LiveClientData::RequestError& error) {
            QCOMPARE(error.kind(), LiveClientData::RequestError::Kind::Transport);
        }
    }

    // A game that takes the request and never answers holds a poll up for 3 s, no longer.
    void stalledGameTimesOut() {
        m_game->setStalling(true);
        LiveClientData live(m_game->port());
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(describe(runTask(live.snapshot())), QStringLiteral("absent"));
        // Qt's time-out runs on a coarse timer, which may end up to 5 % early.
        QVERIFY2(clock.elapsed() >= 2850 && clock.elapsed() < 6000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(m_game->requestCount(), 1);
    }

    // Aborting ends the request in flight at once.
    void abortEndsTheRequest() {
        m_game->setStalling(true);
        LiveClientData live(m_game->port());
        std::optional<std::optional<Snapshot>> result;
        const auto wait = [&]() -> QCoro::Task<> { result = co_await live.snapshot(); };
        QCoro::Task<> task = wait();
        QTRY_COMPARE(m_game->requestCount(), 1);
        QVERIFY(!result);
        live.abort();
        QVERIFY(result);
        QVERIFY(!*result);
    }
};

QTEST_GUILESS_MAIN(TestLiveClientData)
#include "tst_live_client_data.moc"
