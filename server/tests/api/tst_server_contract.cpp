// The app's own BackendClient against the real server, on SQLite and on PostgreSQL: every
// endpoint answers what the app decodes, refusals read well after "Server error N. ", and one
// user never sees another's archive.

#include "backend/backend_client.h"
#include "store/database.h"
#include "store/test_databases.h"
#include "support/client_games.h"
#include "support/task_result.h"
#include "support/test_server.h"

#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QTest>

namespace {

QString describe(const std::optional<BackendError>& error) {
    return describeOrEmpty(error);
}

} // namespace

class TestServerContract : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<qf::test::TestDatabase> m_database;
    std::unique_ptr<TestServer> m_server;

    BackendClient client(std::optional<QString> token = std::nullopt) {
        BackendClient c(m_network, QUrl(QString::fromStdString(m_server->baseUrl())));
        c.setAuthToken(std::move(token));
        return c;
    }

    QString signUp(const QString& email) {
        BackendClient c = client();
        return runTask(c.registerAccount(email, QStringLiteral("correct horse"), QStringLiteral("Player"))).token;
    }

    // Signs in with League as the first player of the puuid set; the account is its owner.
    QString leagueSignIn(const QStringList& puuids) {
        BackendClient c = client();
        return runTask(c.leagueLogin(puuids[0], "na1", QStringLiteral("Pøllux"), QStringLiteral("NA1"))).token;
    }

    IngestLocalResponse ingest(const QString& token, const QJsonArray& games) {
        BackendClient c = client(token);
        return runTask(c.ingestLocal(games));
    }

    // Pulls the whole archive as the app's sync engine does.
    SyncResponse pullAll(const QString& token, std::optional<QString> cursor = std::nullopt) {
        BackendClient c = client(token);
        SyncResponse all;
        for (int page = 0; page < 100; ++page) {
            SyncResponse r = runTask(c.sync(cursor));
            all.matches += r.matches;
            all.participants += r.participants;
            all.rankSnapshots += r.rankSnapshots;
            all.performanceScores += r.performanceScores;
            if (r.nextCursor)
                cursor = r.nextCursor;
            all.nextCursor = cursor;
            if (!r.hasMore)
                break;
        }
        return all;
    }

private Q_SLOTS:
    void initTestCase_data() { qf::test::addEngineRows(); }
    void initTestCase() {
        if (ClientGames::fixtureGame().isEmpty())
            QSKIP("the shared fixtures are not next to this repository");
    }

    void init() {
        QFETCH_GLOBAL(QString, engine);
        m_database = std::make_unique<qf::test::TestDatabase>(engine);
        QFS_REQUIRE_DATABASE(*m_database);
        m_server = std::make_unique<TestServer>(m_database->address());
    }

    void cleanup() {
        m_server.reset();
        m_database.reset();
    }

    void accountsAndSessions() {
        BackendClient anonymous = client();
        const AuthResponse registered =
            runTask(anonymous.registerAccount("Ana@Example.org", "correct horse", std::nullopt));
        QCOMPARE(registered.user.email, QStringLiteral("Ana@Example.org"));
        QVERIFY(registered.token.size() >= 43);

        QCOMPARE(describe(backendErrorOf(anonymous.registerAccount("ana@example.org", "another one", "Ana"))),
                 QStringLiteral("Server error 409. An account with this e-mail already exists."));
        QCOMPARE(describe(backendErrorOf(anonymous.registerAccount("bo@example.org", "short", std::nullopt))),
                 QStringLiteral("Server error 400. The password must be at least 8 characters long."));
        QCOMPARE(describe(backendErrorOf(anonymous.registerAccount("not an address", "correct horse", {}))),
                 QStringLiteral("Server error 400. Enter a valid e-mail address."));
        QCOMPARE(describe(backendErrorOf(anonymous.login("ana@example.org", "wrong horse"))),
                 QStringLiteral("Server error 403. Wrong e-mail or password."));
        QCOMPARE(describe(backendErrorOf(anonymous.login("nobody@example.org", "correct horse"))),
                 QStringLiteral("Server error 403. Wrong e-mail or password."));

        const AuthResponse again = runTask(anonymous.login(" ANA@example.org ", "correct horse"));
        QCOMPARE(again.user.id, registered.user.id);
        QVERIFY(again.token != registered.token);

        // Both sessions work; a made-up token is an expired session to the app.
        QCOMPARE(runTask(client(again.token).riotAccounts()).riotAccounts.size(), 0);
        QCOMPARE(runTask(client(registered.token).refreshRiotAccounts()).riotAccounts.size(), 0);
        QCOMPARE(describe(backendErrorOf(client(QStringLiteral("made-up")).riotAccounts())),
                 QStringLiteral("Your session expired. Please sign in again."));
        QCOMPARE(describe(backendErrorOf(client().sync(std::nullopt))),
                 QStringLiteral("Your session expired. Please sign in again."));
    }

    void failedSignInsAreThrottled() {
        signUp(QStringLiteral("cy@example.org"));
        BackendClient c = client();
        for (int i = 0; i < 5; ++i)
            QVERIFY(backendErrorOf(c.login("cy@example.org", "guess number " + QString::number(i))));
        QCOMPARE(describe(backendErrorOf(c.login("cy@example.org", "correct horse"))),
                 QStringLiteral("Server error 429. Too many failed sign-ins. Wait a few minutes and try again."));
    }

    void leagueSignInIngestAndPull() {
        const QStringList players = ClientGames::puuids(1);
        const QString token = leagueSignIn(players);
        const QList<RiotAccountDto> accounts = runTask(client(token).riotAccounts()).riotAccounts;
        QCOMPARE(accounts.size(), 1);
        QCOMPARE(accounts[0].puuid, players[0]);
        QCOMPARE(accounts[0].riotId(), QStringLiteral("Pøllux#NA1"));
        QCOMPARE(accounts[0].platform, QStringLiteral("na1"));
        QCOMPARE(accounts[0].region, QStringLiteral("americas"));
        QCOMPARE(accounts[0].isOwner, std::optional<bool>(true));

        const QJsonArray games{ClientGames::game(3724412289, players), ClientGames::game(3724412290, players, 200),
                               QJsonValue(42), QJsonObject{{"gameId", "not a number"}}};
        const IngestLocalResponse first = ingest(token, games);
        QCOMPARE(first.ingested, 2);
        QCOMPARE(first.skipped, 2);
        QCOMPARE(first.matchIds, (QStringList{"NA1_3724412289", "NA1_3724412290"}));
        const IngestLocalResponse repeat = ingest(token, games);
        QCOMPARE(repeat.ingested, 0);
        QCOMPARE(repeat.skipped, 4);

        const SyncResponse pulled = pullAll(token);
        QCOMPARE(pulled.matches.size(), 2);
        QCOMPARE(pulled.participants.size(), 20);
        QCOMPARE(pulled.performanceScores.size(), 2);
        const MatchDto& m = pulled.matches[0];
        QCOMPARE(m.matchId, QStringLiteral("NA1_3724412289"));
        QCOMPARE(m.platform, QStringLiteral("NA1"));
        QCOMPARE(m.queueId, 420);
        QCOMPARE(m.isRanked, std::optional<bool>(true));
        QCOMPARE(m.gameDuration, 1919);
        QCOMPARE(m.season, std::optional<qint64>(10));
        QVERIFY(m.gameCreation && m.gameCreation->endsWith('Z'));

        const ParticipantDto* me = nullptr;
        for (const ParticipantDto& p : pulled.participants)
            if (p.puuid == players[0] && p.matchId == m.id)
                me = &p;
        QVERIFY(me);
        QCOMPARE(me->championId, 27);
        QCOMPARE(me->championName, QStringLiteral("Singed"));
        QCOMPARE(me->teamPosition, std::optional<QString>(QStringLiteral("TOP")));
        QCOMPARE(me->riotIdGameName, std::optional<QString>(QStringLiteral("Pøllux")));
        QVERIFY(me->items && me->items->size() == 7);
        QVERIFY(me->teamDamagePct && *me->teamDamagePct > 0 && *me->teamDamagePct < 1);
        QVERIFY(me->csPerMin && *me->csPerMin > 0);

        const PerformanceScoreDto& score = pulled.performanceScores[0];
        QCOMPARE(score.riotAccountId, accounts[0].id);
        QCOMPARE(score.baselineKind, QStringLiteral("self"));
        QVERIFY(score.components.contains(QStringLiteral("killParticipation")));

        // Nothing new: the stored cursor gives an empty, final page.
        const SyncResponse nothing = runTask(client(token).sync(pulled.nextCursor));
        QVERIFY(nothing.matches.isEmpty() && !nothing.hasMore);
        // A cursor this server never wrote is refused, not taken for the beginning.
        QCOMPARE(describe(backendErrorOf(client(token).sync(QStringLiteral("garbage")))),
                 QStringLiteral("Server error 400. The sync cursor is not one this server made."));
    }

    void aChangedGameIsSentAgain() {
        const QStringList players = ClientGames::puuids(2);
        const QString token = leagueSignIn(players);
        ingest(token, {ClientGames::game(1001, players, 100)});
        const SyncResponse first = pullAll(token);
        QCOMPARE(first.matches.size(), 1);

        // The same game read again after a remake of the result: new figures, same backend id.
        QCOMPARE(ingest(token, {ClientGames::game(1001, players, 200)}).ingested, 1);
        const SyncResponse second = pullAll(token, first.nextCursor);
        QCOMPARE(second.matches.size(), 1);
        QCOMPARE(second.matches[0].id, first.matches[0].id);
        QCOMPARE(second.participants.size(), 10);
        // A history-list entry of a game already stored whole changes nothing.
        QCOMPARE(ingest(token, {ClientGames::listEntry(ClientGames::game(1001, players, 200), 0)}).skipped, 1);
    }

    void linkingByRiotId() {
        const QStringList players = ClientGames::puuids(3);
        const QString owner = leagueSignIn(players);
        ingest(owner, {ClientGames::game(2001, players)});

        const QString other = signUp(QStringLiteral("dee@example.org"));
        const QString third = signUp(QStringLiteral("eve@example.org"));
        BackendClient c = client(other);
        // The fixture's second player, typed in another case: names compare case-insensitively.
        const RiotAccountDto linked = runTask(c.addRiotAccount(QStringLiteral("atl DOINB#na1"), "na1"));
        QCOMPARE(linked.puuid, players[1]);
        QCOMPARE(linked.isOwner, std::optional<bool>(false));
        // The game of the new account is now in the linking user's archive.
        QCOMPARE(pullAll(other).matches.size(), 1);
        QCOMPARE(runTask(c.addRiotAccount(QStringLiteral("ATL Doinb#NA1"), "na1")).id, linked.id);

        QCOMPARE(describe(backendErrorOf(client(third).addRiotAccount("ATL Doinb#NA1", "na1"))),
                 QStringLiteral("Server error 409. This Riot account is already linked to another user."));
        QCOMPARE(describe(backendErrorOf(c.addRiotAccount("Nobody Here#EUW", "euw1"))),
                 QStringLiteral("Server error 404. No player named Nobody Here#EUW has been seen on this server "
                                "yet. Import a game of theirs first."));
        QCOMPARE(describe(backendErrorOf(c.addRiotAccount("no tag", "euw1"))),
                 QStringLiteral("Server error 400. Enter a Riot ID in the form Name#TAG."));
        QCOMPARE(describe(backendErrorOf(c.addRiotAccount("Some#One", "mars1"))),
                 QStringLiteral("Server error 400. Unknown platform \"mars1\"."));
    }

    void duosFriendsProfilesAndTimelines() {
        const QStringList players = ClientGames::puuids(4);
        const QString token = leagueSignIn(players);
        QJsonArray games;
        for (int i = 0; i < 4; ++i)
            games.append(ClientGames::game(3001 + i, players, i == 0 ? 200 : 100));
        ingest(token, games);

        // The fixture's own player is on team 100 with players 2–5: four games together each.
        const QList<DuoDto> duos = runTask(client(token).duos()).duos;
        QCOMPARE(duos.size(), 4);
        QCOMPARE(duos[0].games, 4);
        QCOMPARE(duos[0].wins, 3);
        QCOMPARE(duos[0].losses, 1);
        QCOMPARE(duos[0].winrate, 0.75);
        QVERIFY(duos[0].riotId && duos[0].riotId->endsWith(QStringLiteral("#NA1")));
        QVERIFY(duos[0].lastPlayed);

        const FriendStatsDto friendStats = runTask(client(token).friendStats(players[1]));
        QCOMPARE(friendStats.total.games, 4);
        QCOMPARE(friendStats.games.size(), 4);
        QCOMPARE(friendStats.games[0].ownerChampion, QStringLiteral("Singed"));
        QCOMPARE(describe(backendErrorOf(client(token).friendStats(QStringLiteral("never-seen")))),
                 QStringLiteral("Server error 404. No player with this id has been seen on this server."));

        const PlayerProfileDto profile = runTask(client(token).playerProfile(QStringLiteral("Atl doinb#NA1"), "na1"));
        QCOMPARE(profile.account.puuid, players[1]);
        QVERIFY(profile.ranks.isEmpty() && profile.mastery.isEmpty());
        QCOMPARE(describe(backendErrorOf(client(token).playerProfile(QStringLiteral("Zed Main#ÄÖÜ"), "euw1"))),
                 QStringLiteral("Server error 404. No player named Zed Main#ÄÖÜ has been seen on this server."));

        QCOMPARE(describe(backendErrorOf(client(token).matchTimeline(QStringLiteral("NA1_3001")))),
                 QStringLiteral("Server error 404. This game has no timeline on this server."));
        m_server->database().write([&](qf::Repository& repository) {
            const auto game = repository.gameByMatchId("NA1_3001");
            repository.storeTimeline(
                game->match.id, players[0].toStdString(),
                R"({"ownerChampion":"Singed","ownerTeam":100,"frames":[{"t":0,"ownerTeamGold":2500,)"
                R"("enemyTeamGold":2500,"goldDiff":0,"ownerGold":500,"ownerCs":0,"ownerXp":0,)"
                R"("ownerLevel":1}],"events":[],"stats":{"objectives":{"dragons":{"mine":1,)"
                R"("enemy":2},"barons":{"mine":0,"enemy":1},"heralds":{"mine":1,"enemy":0},)"
                R"("towers":{"mine":3,"enemy":9}}}})");
        });
        const TimelineSummaryDto timeline = runTask(client(token).matchTimeline(QStringLiteral("NA1_3001")));
        QCOMPARE(timeline.ownerChampion, QStringLiteral("Singed"));
        QCOMPARE(timeline.frames.size(), 1);
        QCOMPARE(timeline.stats.objectives.towers.enemy, 9);

        const StaticVersionResponse version = runTask(client().staticVersion());
        QCOMPARE(version.version, QStringLiteral("16.11.1"));
    }

    void usersNeverSeeEachOthersArchives() {
        const QStringList players = ClientGames::puuids(5);
        const QString owner = leagueSignIn(players);
        ingest(owner, {ClientGames::game(4001, players)});
        m_server->database().write([&](qf::Repository& repository) {
            repository.storeTimeline(repository.gameByMatchId("NA1_4001")->match.id, players[0].toStdString(),
                                     R"({"ownerChampion":"Singed"})");
        });

        const QString stranger = signUp(QStringLiteral("mallory@example.org"));
        BackendClient c = client(stranger);
        // Only a user who played in a stored game can change it.
        QCOMPARE(runTask(c.ingestLocal({ClientGames::game(4001, players, 200)})).skipped, 1);
        const SyncResponse pulled = pullAll(stranger);
        QVERIFY(pulled.matches.isEmpty() && pulled.participants.isEmpty() && pulled.performanceScores.isEmpty());
        QVERIFY(runTask(c.duos()).duos.isEmpty());
        QCOMPARE(runTask(c.friendStats(players[1])).total.games, 0);
        QCOMPARE(describe(backendErrorOf(c.matchTimeline(QStringLiteral("NA1_4001")))),
                 QStringLiteral("Server error 404. This game has no timeline on this server."));
        // Another user's cursor is only a number: it gives the stranger nothing of the owner's.
        const SyncResponse ownerPull = pullAll(owner);
        QCOMPARE(ownerPull.matches.size(), 1);
        for (const ParticipantDto& p : ownerPull.participants)
            QCOMPARE(p.win, p.teamId == 100);
        QVERIFY(runTask(c.sync(QStringLiteral("c1.0"))).matches.isEmpty());
        QCOMPARE(runTask(c.riotAccounts()).riotAccounts.size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestServerContract)
#include "tst_server_contract.moc"
