// Reading the League client's games: the real game of the fixtures checked by hand, and the
// shapes and oddities a client (or a caller) can send.

#include "archive/champion_catalog.h"
#include "archive/lcu_game_reader.h"
#include "support/client_games.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <cmath>
#include <map>

using namespace qf;

namespace {

constexpr qint64 fixtureGameId = 3724412289;

std::optional<ClientGame> readGame(const QJsonObject& game) {
    static const ChampionCatalog champions = ChampionCatalog::shipped();
    const QByteArray text = QJsonDocument(game).toJson(QJsonDocument::Compact);
    const json::Document document(std::string_view(text.constData(), size_t(text.size())));
    return readClientGame(document.root(), champions);
}

QJsonObject fixtureWithPlayers() {
    return ClientGames::game(fixtureGameId, ClientGames::puuids(1));
}

// Sets stats[key] of participant index to value.
void setStat(QJsonObject& game, int index, const QString& key, const QJsonValue& value) {
    QJsonArray participants = game["participants"].toArray();
    QJsonObject p = participants[index].toObject();
    QJsonObject stats = p["stats"].toObject();
    if (value.isUndefined())
        stats.remove(key);
    else
        stats[key] = value;
    p["stats"] = stats;
    participants[index] = p;
    game["participants"] = participants;
}

void setMember(QJsonObject& game, const QString& array, int index, const QString& key, const QJsonValue& value) {
    QJsonArray list = game[array].toArray();
    QJsonObject o = list[index].toObject();
    o[key] = value;
    list[index] = o;
    game[array] = list;
}

// Sixteen players in eight pairs, as Arena plays: the fixture's rows reused, two to a team.
QJsonObject arenaGame(bool subteams) {
    const QJsonObject base = fixtureWithPlayers();
    const QJsonArray rows = base["participants"].toArray();
    const QJsonArray identities = base["participantIdentities"].toArray();
    QJsonArray participants, players;
    for (int i = 0; i < 16; ++i) {
        QJsonObject p = rows[i % 10].toObject();
        p["participantId"] = i + 1;
        if (subteams) {
            p["teamId"] = i < 8 ? 100 : 200;
            QJsonObject stats = p["stats"].toObject();
            stats["playerSubteamId"] = i / 2 + 1;
            p["stats"] = stats;
        } else {
            p["teamId"] = 100 * (i / 2 + 1);
        }
        participants.append(p);
        QJsonObject identity = identities[i % 10].toObject();
        identity["participantId"] = i + 1;
        QJsonObject player = identity["player"].toObject();
        player["puuid"] = QStringLiteral("arena-player-%1").arg(i);
        identity["player"] = player;
        players.append(identity);
    }
    QJsonObject game = base;
    game["participants"] = participants;
    game["participantIdentities"] = players;
    game["gameMode"] = "CHERRY";
    game["queueId"] = 1700;
    game["mapId"] = 30;
    game["teams"] = QJsonArray();
    return game;
}

} // namespace

class TstLcuGameReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (ClientGames::fixtureGame().isEmpty())
            QSKIP("The shared fixtures folder is not there.");
    }

    void fixtureGame() {
        // The fixture is a web API answer of 2020: it has no puuids, so nobody in it can be stored.
        QVERIFY(!readGame(ClientGames::fixtureGame()));

        const auto game = readGame(fixtureWithPlayers());
        QVERIFY(game);
        const Match& m = game->game.match;
        QCOMPARE(m.matchId, "NA1_3724412289");
        QCOMPARE(m.platform, "NA1");
        QCOMPARE(m.queueId, 420);
        QVERIFY(m.isRanked);
        QCOMPARE(m.gameCreation, 1609314094943);
        QCOMPARE(m.gameDuration, 1919);
        QCOMPARE(m.gameVersion, "10.25.350.1724");
        QCOMPARE(m.gameMode, "CLASSIC");
        QCOMPARE(m.season, 10);
        QVERIFY(game->complete);

        const std::vector<Participant>& rows = game->game.participants;
        QCOMPARE(rows.size(), size_t(10));
        const std::vector<std::string> champions{"Singed", "Pantheon", "Jinx",  "Senna", "Vi",
                                                 "Elise",  "RekSai",   "Xayah", "Sion",  "Blitzcrank"};
        const std::vector<std::string> positions{"TOP",    "MIDDLE", "BOTTOM", "UTILITY", "JUNGLE",
                                                 "MIDDLE", "JUNGLE", "BOTTOM", "TOP",     "UTILITY"};
        std::map<int64_t, double> damageShares;
        for (size_t i = 0; i < rows.size(); ++i) {
            QCOMPARE(rows[i].championName, champions[i]);
            QCOMPARE(rows[i].teamPosition, positions[i]);
            QCOMPARE(rows[i].puuid, ClientGames::puuids(1)[int(i)].toStdString());
            QCOMPARE(rows[i].win, rows[i].teamId == 100);
            damageShares[rows[i].teamId] += rows[i].teamDamagePct.value_or(-10);
        }
        QCOMPARE(damageShares.size(), size_t(2));
        QVERIFY(std::fabs(damageShares[100] - 1.0) < 1e-9);
        QVERIFY(std::fabs(damageShares[200] - 1.0) < 1e-9);

        const Participant& singed = rows[0];
        QCOMPARE(singed.riotIdGameName, "Pøllux");
        QCOMPARE(singed.riotIdTagLine, "NA1");
        QCOMPARE(singed.teamId, 100);
        QCOMPARE(singed.championId, 27);
        QCOMPARE(singed.champLevel, 16);
        QCOMPARE(singed.kills, 2);
        QCOMPARE(singed.deaths, 7);
        QCOMPARE(singed.assists, 10);
        QCOMPARE(singed.totalCs, 176 + 8);
        QCOMPARE(singed.goldEarned, 11387);
        QCOMPARE(singed.visionScore, 15);
        QCOMPARE(singed.damageToChampions, 17561);
        QCOMPARE(singed.items, (std::vector<int64_t>{4633, 3047, 3742, 3916, 4637, 0, 3340}));
        QCOMPARE(singed.profileIconId, 1425);
        // Team 100 killed 2 + 13 + 3 + 13 + 9 = 40 and dealt 120590 damage to champions.
        QCOMPARE(*singed.killParticipation, 12.0 / 40.0);
        QCOMPARE(*singed.teamDamagePct, 17561.0 / 120590.0);
        QCOMPARE(*singed.csPerMin, 184.0 / (1919.0 / 60.0));
        // Blitzcrank: (2 + 10) of team 200's 31 kills.
        QCOMPARE(*rows[9].killParticipation, 12.0 / 31.0);

        QCOMPARE(game->players.size(), size_t(10));
        const Player& pollux = game->players[0];
        QCOMPARE(pollux.puuid, singed.puuid);
        QCOMPARE(pollux.gameName, "Pøllux");
        QCOMPARE(pollux.nameKey, "pøllux");
        QCOMPARE(pollux.tagKey, "na1");
        QCOMPARE(pollux.platform, "na1");
        QCOMPARE(pollux.profileIconId, 1425);
        QCOMPARE(pollux.lastSeen, m.gameCreation);
        // Player 4's account dates from before numbered platforms ("NA"); it plays on NA1 now.
        QCOMPARE(game->players[3].platform, "na1");
    }

    void cases_data() {
        QTest::addColumn<QJsonObject>("game");
        QTest::addColumn<QString>("matchId"); // empty: not readable
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("complete");
        QTest::addColumn<qint64>("duration");
        QTest::addColumn<qint64>("team");      // of the first row, and the checks below too
        QTest::addColumn<QString>("position"); // empty: none
        QTest::addColumn<QString>("champion");
        QTest::addColumn<QList<qint64>>("kda");        // kills, deaths, assists
        QTest::addColumn<double>("killParticipation"); // negative: none
        QTest::addColumn<bool>("win");

        const QJsonObject full = fixtureWithPlayers();
        const QList<qint64> singedKda{2, 7, 10};
        const QString id = QStringLiteral("NA1_3724412289");

        QTest::newRow("history-list entry: one player, no team figures")
            << ClientGames::listEntry(full, 3) << id << 1 << false << qint64(1919) << qint64(100) << "UTILITY"
            << "Senna" << QList<qint64>{13, 7, 11} << -1.0 << true;

        QTest::newRow("Arena: 16 players, teams 100 to 800")
            << arenaGame(false) << id << 16 << true << qint64(1919) << qint64(100) << ""
            << "Singed" << singedKda << 12.0 / 15.0 << true;
        QTest::newRow("Arena: pairs named by sub-team")
            << arenaGame(true) << id << 16 << true << qint64(1919) << qint64(1) << ""
            << "Singed" << singedKda << 12.0 / 15.0 << true;

        QJsonObject g = full;
        g["gameId"] = 3724412289.0;
        setStat(g, 0, "kills", "2");
        setStat(g, 0, "deaths", 7.9);
        setStat(g, 0, "assists", QJsonValue::Undefined);
        QTest::newRow("numbers as text, reals and missing")
            << g << id << 10 << true << qint64(1919) << qint64(100) << "TOP"
            << "Singed" << QList<qint64>{0, 7, 0} << 0.0 << true;

        g = full;
        setStat(g, 0, "kills", -5);
        setStat(g, 0, "deaths", 1e300);
        QTest::newRow("negative and absurd counts") << g << id << 10 << true << qint64(1919) << qint64(100) << "TOP"
                                                    << "Singed" << QList<qint64>{0, 0, 10} << 10.0 / 38.0 << true;

        g = full;
        g["gameDuration"] = 1919000;
        QTest::newRow("duration in milliseconds") << g << id << 10 << true << qint64(1919) << qint64(100) << "TOP"
                                                  << "Singed" << singedKda << 12.0 / 40.0 << true;

        g = full;
        setMember(g, "participants", 0, "championId", 99999);
        QTest::newRow("champion the list does not know")
            << g << id << 10 << true << qint64(1919) << qint64(100) << "TOP"
            << "" << singedKda << 12.0 / 40.0 << true;

        g = full;
        g["gameMode"] = "ARAM";
        g["mapId"] = 12;
        g["queueId"] = 450;
        QTest::newRow("ARAM has no positions") << g << id << 10 << true << qint64(1919) << qint64(100) << ""
                                               << "Singed" << singedKda << 12.0 / 40.0 << true;

        g = full;
        setMember(g, "participants", 0, "teamPosition", "utility");
        QTest::newRow("a position the client names wins over the lane")
            << g << id << 10 << true << qint64(1919) << qint64(100) << "UTILITY"
            << "Singed" << singedKda << 12.0 / 40.0 << true;

        g = full;
        setStat(g, 0, "win", QJsonValue::Undefined);
        setMember(g, "teams", 0, "win", "Fail");
        QTest::newRow("result from the team when the player's is missing")
            << g << id << 10 << true << qint64(1919) << qint64(100) << "TOP"
            << "Singed" << singedKda << 12.0 / 40.0 << false;

        g = full;
        g["platformId"] = "euw1";
        QTest::newRow("platform upper-cased")
            << g << "EUW1_3724412289" << 10 << true << qint64(1919) << qint64(100) << "TOP"
            << "Singed" << singedKda << 12.0 / 40.0 << true;

        g = full;
        g.remove("participantIdentities");
        QTest::newRow("no identities") << g << "" << 0 << false << qint64(0) << qint64(0) << ""
                                       << "" << singedKda << 0.0 << false;

        g = full;
        const QJsonObject bot{{"puuid", "00000000-0000-0000-0000-000000000000"}};
        setMember(g, "participantIdentities", 0, "player", bot);
        QTest::newRow("a bot is not stored, but counts in its team")
            << g << id << 9 << true << qint64(1919) << qint64(100) << "MIDDLE"
            << "Pantheon" << QList<qint64>{13, 6, 14} << 27.0 / 40.0 << true;

        for (const auto& [name, value] : std::initializer_list<std::pair<const char*, QJsonValue>>{
                 {"gameId as text", "3724412289"}, {"gameId zero", 0}, {"gameId missing", QJsonValue::Undefined}}) {
            g = full;
            if (value.isUndefined())
                g.remove("gameId");
            else
                g["gameId"] = value;
            QTest::newRow(name) << g << "" << 0 << false << qint64(0) << qint64(0) << ""
                                << "" << singedKda << 0.0 << false;
        }
        for (const auto& [name, value] :
             std::initializer_list<std::pair<const char*, QJsonValue>>{{"platform missing", QJsonValue::Undefined},
                                                                       {"platform a number", 1},
                                                                       {"platform with a path", "NA1/../x"}}) {
            g = full;
            if (value.isUndefined())
                g.remove("platformId");
            else
                g["platformId"] = value;
            QTest::newRow(name) << g << "" << 0 << false << qint64(0) << qint64(0) << ""
                                << "" << singedKda << 0.0 << false;
        }
        g = full;
        g["participants"] = QJsonObject{{"0", full["participants"].toArray()[0]}};
        QTest::newRow("participants not a list") << g << "" << 0 << false << qint64(0) << qint64(0) << ""
                                                 << "" << singedKda << 0.0 << false;
    }

    void cases() {
        QFETCH(QJsonObject, game);
        QFETCH(QString, matchId);
        const auto read = readGame(game);
        QCOMPARE(read.has_value(), !matchId.isEmpty());
        if (!read)
            return;
        QFETCH(int, rows);
        QFETCH(bool, complete);
        QFETCH(qint64, duration);
        QFETCH(qint64, team);
        QFETCH(QString, position);
        QFETCH(QString, champion);
        QFETCH(QList<qint64>, kda);
        QFETCH(double, killParticipation);
        QFETCH(bool, win);
        QCOMPARE(QString::fromStdString(read->game.match.matchId), matchId);
        QCOMPARE(int(read->game.participants.size()), rows);
        QCOMPARE(int(read->players.size()), rows);
        QCOMPARE(read->complete, complete);
        QCOMPARE(read->game.match.gameDuration, duration);
        const Participant& first = read->game.participants.front();
        QCOMPARE(first.teamId, team);
        QCOMPARE(QString::fromStdString(first.teamPosition.value_or("")), position);
        QCOMPARE(QString::fromStdString(first.championName), champion);
        QCOMPARE((QList<qint64>{first.kills, first.deaths, first.assists}), kda);
        QCOMPARE(first.win, win);
        if (killParticipation < 0) {
            QVERIFY(!first.killParticipation && !first.teamDamagePct);
        } else {
            QVERIFY(first.killParticipation && first.teamDamagePct);
            QCOMPARE(*first.killParticipation, killParticipation);
        }
    }

    // Without the millisecond time, the client's date text of the start.
    void creationDate_data() {
        QTest::addColumn<QJsonValue>("date");
        QTest::addColumn<qint64>("creation");
        QTest::newRow("UTC") << QJsonValue("2020-12-30T07:41:34.943Z") << qint64(1609314094943);
        QTest::newRow("offset") << QJsonValue("2020-12-30T08:41:34.943+01:00") << qint64(1609314094943);
        QTest::newRow("no zone, no fraction") << QJsonValue("2020-12-30T07:41:34") << qint64(1609314094000);
        QTest::newRow("longer fraction") << QJsonValue("2020-12-30T07:41:34.9431Z") << qint64(1609314094943);
        QTest::newRow("not a date") << QJsonValue("yesterday") << qint64(0);
        QTest::newRow("month 13") << QJsonValue("2020-13-30T07:41:34Z") << qint64(0);
        QTest::newRow("a number") << QJsonValue(1609314094943.0) << qint64(0);
    }

    void creationDate() {
        QFETCH(QJsonValue, date);
        QFETCH(qint64, creation);
        QJsonObject game = fixtureWithPlayers();
        game.remove("gameCreation");
        game["gameCreationDate"] = date;
        const auto read = readGame(game);
        QVERIFY(read);
        QCOMPARE(read->game.match.gameCreation, creation);
        QCOMPARE(read->players.front().lastSeen, creation);
    }

    // The list never has a number it was not given: unknown numbers are "" and no entry of the
    // list contradicts the two real lists of the fixtures.
    void shippedChampions() {
        const ChampionCatalog shipped = ChampionCatalog::shipped();
        QCOMPARE(shipped.version(), "16.11.1");
        for (const char* file : {"ddragon-champion-1.json", "ddragon-champion-2.json"}) {
            QFile f(QStringLiteral(QFS_FIXTURES_DIR "/") + file);
            QVERIFY(f.open(QIODevice::ReadOnly));
            const QByteArray text = f.readAll();
            const auto fixture = ChampionCatalog::fromJson(std::string_view(text.constData(), size_t(text.size())));
            QVERIFY(fixture);
            QVERIFY2(fixture->size() >= 150, file);
            size_t shared = 0;
            for (int64_t id = 0; id < 2000; ++id) {
                const std::string name = fixture->nameOf(id);
                if (name.empty())
                    continue;
                ++shared;
                QCOMPARE(shipped.nameOf(id), name);
            }
            QCOMPARE(shared, fixture->size());
        }
        QVERIFY(shipped.size() > 165);
        QCOMPARE(shipped.nameOf(62), "MonkeyKing");
        QCOMPARE(shipped.nameOf(0), "");
        QCOMPARE(shipped.nameOf(-1), "");
    }

    void championListShapes_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("size"); // -1: not a list
        QTest::newRow("Data Dragon's shape")
            << QByteArray(R"({"version":"1.0","data":{"Aatrox":{"key":"266","id":"Aatrox"},"Ahri":{"key":"103"}}})")
            << 2;
        QTest::newRow("keys that are not whole numbers are left out")
            << QByteArray(
                   R"({"data":{"A":{"key":"x1"},"B":{"key":"-3"},"C":{"key":12},"D":{"key":" 4"},"E":{"key":"7"}}})")
            << 1;
        QTest::newRow("no data") << QByteArray(R"({"version":"1.0"})") << -1;
        QTest::newRow("data a list") << QByteArray(R"({"data":[]})") << -1;
        QTest::newRow("not JSON") << QByteArray("<html>") << -1;
    }

    void championListShapes() {
        QFETCH(QByteArray, text);
        QFETCH(int, size);
        const auto catalog = ChampionCatalog::fromJson(std::string_view(text.constData(), size_t(text.size())));
        QCOMPARE(catalog.has_value(), size >= 0);
        if (catalog)
            QCOMPARE(int(catalog->size()), size);
    }
};

QTEST_GUILESS_MAIN(TstLcuGameReader)
#include "tst_lcu_game_reader.moc"
