// The whole way a game travels: a League client holding real games → the app's sync reads and
// uploads them → the server ingests them → the same sync's pull brings them into the app's
// archive, with the right players, champions and figures, owned by the signed-in player.

#include "archive/archive_store.h"
#include "session/app_state.h"
#include "store/test_databases.h"
#include "support/client_games.h"
#include "support/fake_league_client.h"
#include "support/task_result.h"
#include "support/test_server.h"
#include "support/test_settings.h"

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QTemporaryDir>
#include <QTest>

class TestEndToEnd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clientGamesReachTheArchive() {
        if (ClientGames::fixtureGame().isEmpty())
            QSKIP("the shared fixtures are not next to this repository");
        qf::test::TestDatabase database(QStringLiteral("sqlite"));
        TestServer server(database.address());

        // The client's player is the fixture's first; three games, one won by the other side.
        const QStringList players = ClientGames::puuids(11);
        const QList<QJsonObject> games{ClientGames::game(8001, players, 100), ClientGames::game(8002, players, 200),
                                       ClientGames::game(8003, players, 100)};
        FakeLeagueClient lcu;
        lcu.serve(QStringLiteral("/lol-summoner/v1/current-summoner"),
                  FakeResponse::json({{"puuid", players[0]}, {"gameName", "Pøllux"}, {"tagLine", "NA1"}}));
        lcu.serve(QStringLiteral("/riotclient/region-locale"), FakeResponse::json({{"region", "NA"}}));
        QJsonArray list;
        for (const QJsonObject& game : games) {
            list.append(ClientGames::listEntry(game, 0));
            lcu.serve(QString::fromLatin1(FakeLeagueClient::gamePathPrefix) +
                          QString::number(game["gameId"].toInteger()),
                      FakeResponse::json(game));
        }
        lcu.serve(QString::fromLatin1(FakeLeagueClient::historyPath),
                  FakeResponse::json({{"games", QJsonObject{{"games", list}}}}));

        QTemporaryDir dir;
        const QString lockfile = FakeLeagueClient::writeFile(dir.filePath("lockfile"), lcu.lockfileText());
        TestSettings settings;
        settings->setValue("backendBaseURL", QString::fromStdString(server.baseUrl()));
        QNetworkAccessManager network;
        ArchiveStore store(dir.filePath(QStringLiteral("archive.sqlite")));
        AppState state(*settings, network);
        state.setLeagueClientSources({{lockfile, dir.filePath(QStringLiteral("absent"))},
                                      [] { return std::optional<QByteArray>(QByteArray()); }});
        state.bootstrap(&store);

        // Sign in with League: the server links the client's account and the sync that follows
        // uploads the three games and pulls them back.
        runTask(state.loginWithLeague());
        QTRY_VERIFY_WITH_TIMEOUT(!state.hasRunningTasks(), 60000);
        QVERIFY2(!state.hasError(), qPrintable(state.errorMessage()));
        QCOMPARE(state.lcuStatus(), QStringLiteral("client: +3 games"));
        QCOMPARE(state.lastSyncedMatches(), std::optional<int>(3));

        QCOMPARE(store.matches().count(), 3);
        QCOMPARE(store.participants().count(), 30);
        QCOMPARE(store.performanceScores().count(), 3);
        int ownRows = 0, ownWins = 0;
        for (const LocalParticipant* p : store.participants().all()) {
            if (p->puuid != players[0])
                continue;
            ++ownRows;
            ownWins += p->win ? 1 : 0;
            QCOMPARE(p->championName.toString(), QStringLiteral("Singed"));
            QCOMPARE(p->teamPosition.toOptional(), std::optional<QString>(QStringLiteral("TOP")));
            QVERIFY(p->csPerMin && *p->csPerMin > 0);
        }
        QCOMPARE(ownRows, 3);
        QCOMPARE(ownWins, 2);
        for (const LocalMatch* m : store.matches().all()) {
            QVERIFY(m->matchId.toString().startsWith(QStringLiteral("NA1_800")));
            QCOMPARE(m->gameDuration, 1919);
            QVERIFY(m->gameCreation.has_value());
        }

        // A second sync finds nothing new anywhere.
        runTask(state.sync());
        QCOMPARE(state.lcuStatus(), QStringLiteral("client: up to date"));
        QCOMPARE(state.lastSyncedMatches(), std::optional<int>(0));
        QCOMPARE(store.matches().count(), 3);
    }
};

QTEST_GUILESS_MAIN(TestEndToEnd)
#include "tst_end_to_end.moc"
