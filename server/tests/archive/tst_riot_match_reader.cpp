// Reading the Riot API's match-v5 games: the real answers of the fixtures (2021 to 2026) checked
// by hand, the same game written as the League client gives it read into identical rows, and
// the shapes and oddities an answer can have.

#include "archive/champion_catalog.h"
#include "archive/lcu_game_reader.h"
#include "archive/riot_match_reader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <cmath>
#include <functional>
#include <map>
#include <set>

using namespace qf;

namespace {

const ChampionCatalog& champions() {
    static const ChampionCatalog catalog = ChampionCatalog::shipped();
    return catalog;
}

QJsonObject fixture(const QString& name) {
    QFile file(QStringLiteral(QFS_FIXTURES_DIR "/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

std::optional<ClientGame> readText(const QByteArray& text) {
    const json::Document document(std::string_view(text.constData(), size_t(text.size())));
    return readRiotMatch(document.root(), champions());
}

std::optional<ClientGame> readRiot(const QJsonObject& match) {
    return readText(QJsonDocument(match).toJson(QJsonDocument::Compact));
}

std::optional<ClientGame> readClient(const QJsonObject& game) {
    const QByteArray text = QJsonDocument(game).toJson(QJsonDocument::Compact);
    const json::Document document(std::string_view(text.constData(), size_t(text.size())));
    return readClientGame(document.root(), champions());
}

// The match with its info changed by edit.
QJsonObject editInfo(QJsonObject match, const std::function<void(QJsonObject&)>& edit) {
    QJsonObject info = match["info"].toObject();
    edit(info);
    match["info"] = info;
    return match;
}

// The match with every participant changed by edit (given the participant and its index).
QJsonObject editPlayers(const QJsonObject& match, const std::function<void(QJsonObject&, int)>& edit) {
    return editInfo(match, [&](QJsonObject& info) {
        QJsonArray participants = info["participants"].toArray();
        for (int i = 0; i < participants.size(); ++i) {
            QJsonObject p = participants[i].toObject();
            edit(p, i);
            participants[i] = p;
        }
        info["participants"] = participants;
    });
}

QJsonObject editPlayer(const QJsonObject& match, int index, const QString& key, const QJsonValue& value) {
    return editPlayers(match, [&](QJsonObject& p, int i) {
        if (i != index)
            return;
        if (value.isUndefined())
            p.remove(key);
        else
            p[key] = value;
    });
}

// The same game as the League client's match history gives it (the match-v4 shape with the
// identities newer clients add), written from the match-v5 answer member by member: stats
// under "stats", names under "participantIdentities", lane and role in the v4 words, the
// duration in seconds (Riot's rule: milliseconds while gameEndTimestamp was missing), "Win" and
// "Fail" for the teams, and the client's own puuids.
QJsonObject clientShape(const QJsonObject& match) {
    const QJsonObject info = match["info"].toObject();
    QJsonObject game;
    for (const char* key : {"gameId", "platformId", "gameCreation", "queueId", "mapId", "gameMode", "gameVersion"})
        game[key] = info[key];
    const qint64 duration = info["gameDuration"].toInteger();
    game["gameDuration"] = info.contains("gameEndTimestamp") ? duration : duration / 1000;
    QJsonArray teams;
    for (const QJsonValue t : info["teams"].toArray())
        teams.append(QJsonObject{{"teamId", t["teamId"]}, {"win", t["win"].toBool() ? "Win" : "Fail"}});
    game["teams"] = teams;

    static const std::map<QString, std::pair<QString, QString>> laneRole{{"TOP", {"TOP", "SOLO"}},
                                                                         {"JUNGLE", {"JUNGLE", "NONE"}},
                                                                         {"MIDDLE", {"MIDDLE", "SOLO"}},
                                                                         {"BOTTOM", {"BOTTOM", "DUO_CARRY"}},
                                                                         {"UTILITY", {"BOTTOM", "DUO_SUPPORT"}}};
    QJsonArray participants, identities;
    int index = 0;
    for (const QJsonValue value : info["participants"].toArray()) {
        const QJsonObject p = value.toObject();
        QJsonObject stats;
        for (const char* key : {"kills", "deaths", "assists", "champLevel", "totalMinionsKilled",
                                "neutralMinionsKilled", "goldEarned", "visionScore", "totalDamageDealtToChampions",
                                "win", "item0", "item1", "item2", "item3", "item4", "item5", "item6"})
            stats[key] = p[key];
        const auto [lane, role] = laneRole.at(p["teamPosition"].toString());
        participants.append(QJsonObject{{"participantId", p["participantId"]},
                                        {"teamId", p["teamId"]},
                                        {"championId", p["championId"]},
                                        {"stats", stats},
                                        {"timeline", QJsonObject{{"lane", lane}, {"role", role}}}});
        const QString riotName = p["riotIdGameName"].toString(p["riotIdName"].toString());
        identities.append(QJsonObject{
            {"participantId", p["participantId"]},
            {"player", QJsonObject{{"puuid", QStringLiteral("0000%1-0000-4000-8000-00000000000%2").arg(7).arg(index)},
                                   {"gameName", riotName},
                                   {"tagLine", p["riotIdTagline"]},
                                   {"summonerName", p["summonerName"]},
                                   {"profileIcon", p["profileIcon"]},
                                   {"platformId", info["platformId"]},
                                   {"currentPlatformId", info["platformId"]}}}});
        ++index;
    }
    game["participants"] = participants;
    game["participantIdentities"] = identities;
    return game;
}

const QStringList fixtureFiles{"match-v5-1.json", "match-v5-2.json", "match-v5-3.json",
                               "match-v5-4.json", "match-v5-5.json", "match-v5-6.json"};

} // namespace

class TstRiotMatchReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (fixture("match-v5-2.json").isEmpty())
            QSKIP("The shared fixtures folder is not there.");
    }

    // Each real answer, with the figures of three of its players read off the file by hand.
    void fixtures_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("matchId");
        QTest::addColumn<qint64>("queue");
        QTest::addColumn<qint64>("creation");
        QTest::addColumn<qint64>("duration"); // seconds
        QTest::addColumn<QString>("version");
        QTest::addColumn<qint64>("season");
        QTest::addColumn<int>("row"); // the participant checked
        QTest::addColumn<QString>("champion");
        QTest::addColumn<QString>("position");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("tag");           // empty: none
        QTest::addColumn<QList<qint64>>("figures"); // kills deaths assists cs gold vision damage level icon
        QTest::addColumn<QList<qint64>>("items");
        QTest::addColumn<bool>("win");
        QTest::addColumn<QList<qint64>>("teamTotals"); // the row's team: kills, damage

        // 2022: riotIdName and riotIdTagline are empty strings, so the summoner name is the name.
        QTest::newRow("NA1 2022, flex") << "match-v5-1.json"
                                        << "NA1_4223689858" << qint64(440) << qint64(1645332382000) << qint64(1257)
                                        << "12.4.423.2790" << qint64(12) << 0 << "Trundle"
                                        << "TOP"
                                        << "Among Us Jimin"
                                        << "" << QList<qint64>{6, 0, 6, 154 + 7, 9899, 6, 16366, 13, 5037}
                                        << QList<qint64>{1055, 3009, 2055, 6632, 1028, 3181, 3340} << true
                                        << QList<qint64>{29, 62472};
        QTest::newRow("KR 2023, Riot IDs")
            << "match-v5-2.json"
            << "KR_6823337832" << qint64(420) << qint64(1701280115483) << qint64(963) << "13.23.544.5515" << qint64(13)
            << 7 << "Akali"
            << "MIDDLE"
            << "Hide on bush"
            << "KR1" << QList<qint64>{10, 3, 1, 118 + 0, 8019, 14, 11728, 12, 6}
            << QList<qint64>{3152, 3145, 2055, 1082, 1054, 3020, 3364} << true << QList<qint64>{21, 38871};
        // 2021, before patch 11.20: gameDuration is 1965640 milliseconds.
        QTest::newRow("JP1 2021, milliseconds")
            << "match-v5-3.json"
            << "JP1_323466834" << qint64(420) << qint64(1629085114000) << qint64(1965) << "11.16.390.1945" << qint64(11)
            << 4 << "Pyke"
            << "UTILITY"
            << "私の頭がかたい"
            << "" << QList<qint64>{5, 15, 9, 32, 10415, 64, 9960, 13, 1626}
            << QList<qint64>{2421, 3857, 1038, 3179, 6691, 3111, 3364} << false << QList<qint64>{41, 110797};
        QTest::newRow("NA1 2021, milliseconds")
            << "match-v5-4.json"
            << "NA1_3923487226" << qint64(420) << qint64(1622204411000) << qint64(1993) << "11.11.377.6311"
            << qint64(11) << 8 << "Vayne"
            << "BOTTOM"
            << "Tripłe Ł"
            << "" << QList<qint64>{4, 5, 2, 257 + 13, 12069, 20, 12930, 14, 76}
            << QList<qint64>{3143, 6672, 3006, 3035, 3046, 0, 3363} << false << QList<qint64>{11, 70258};
        // 2026: summonerName is "" for everyone.
        QTest::newRow("EUW1 2026") << "match-v5-5.json"
                                   << "EUW1_7684569678" << qint64(420) << qint64(1768362537718) << qint64(1763)
                                   << "16.1.737.4870" << qint64(16) << 4 << "Elise"
                                   << "UTILITY"
                                   << "ææææææææææææææææ"
                                   << "Satto" << QList<qint64>{1, 4, 9, 28 + 2, 8173, 120, 9382, 12, 641}
                                   << QList<qint64>{3877, 4646, 3020, 3145, 1058, 0, 3364} << false
                                   << QList<qint64>{19, 66500};
        // The game writes "FiddleSticks"; the champion list's name is "Fiddlesticks".
        QTest::newRow("NA1 2025, champion name")
            << "match-v5-6.json"
            << "NA1_5344757176" << qint64(420) << qint64(1754931237464) << qint64(1706) << "15.15.701.6241"
            << qint64(15) << 1 << "Fiddlesticks"
            << "JUNGLE"
            << "Ivan"
            << "Vlad" << QList<qint64>{5, 6, 6, 18 + 128, 10162, 30, 13352, 13, 4025}
            << QList<qint64>{3157, 1058, 3152, 3020, 1033, 1052, 3330} << false << QList<qint64>{27, 89184};
    }

    void fixtures() {
        QFETCH(QString, file);
        QFETCH(int, row);
        const auto game = readRiot(fixture(file));
        QVERIFY(game);
        const Match& m = game->game.match;
        QTEST(QString::fromStdString(m.matchId), "matchId");
        QCOMPARE(QString::fromStdString(m.platform), QString::fromStdString(m.matchId).section('_', 0, 0));
        QTEST(qint64(m.queueId), "queue");
        QVERIFY(m.isRanked); // solo and flex both
        QTEST(qint64(m.gameCreation), "creation");
        QTEST(qint64(m.gameDuration), "duration");
        QTEST(QString::fromStdString(m.gameVersion), "version");
        QCOMPARE(m.gameMode, "CLASSIC");
        QFETCH(qint64, season);
        QCOMPARE(m.season, std::optional<int64_t>(season));
        QVERIFY(game->complete);
        QCOMPARE(game->game.participants.size(), size_t(10));
        QCOMPARE(game->players.size(), size_t(10));

        const Participant& p = game->game.participants[size_t(row)];
        QTEST(QString::fromStdString(p.championName), "champion");
        QTEST(QString::fromStdString(p.teamPosition.value_or("")), "position");
        QTEST(QString::fromStdString(p.riotIdGameName.value_or("")), "name");
        QTEST(QString::fromStdString(p.riotIdTagLine.value_or("")), "tag");
        QCOMPARE(p.puuid.size(), size_t(78)); // the Riot API's form
        const QList<qint64> figures{p.kills,
                                    p.deaths,
                                    p.assists,
                                    p.totalCs,
                                    p.goldEarned,
                                    p.visionScore,
                                    p.damageToChampions,
                                    p.champLevel.value_or(-1),
                                    p.profileIconId.value_or(-1)};
        QTEST(figures, "figures");
        QTEST(QList<qint64>(p.items.begin(), p.items.end()), "items");
        QTEST(p.win, "win");
        QFETCH(QList<qint64>, teamTotals);
        QCOMPARE(*p.killParticipation, double(p.kills + p.assists) / double(teamTotals[0]));
        QCOMPARE(*p.teamDamagePct, double(p.damageToChampions) / double(teamTotals[1]));
        QCOMPARE(*p.csPerMin, double(p.totalCs) / (double(m.gameDuration) / 60.0));

        // Every team's damage shares add up to one, and a team wins or loses as one.
        std::map<int64_t, double> shares;
        std::map<int64_t, std::set<bool>> results;
        for (const Participant& each : game->game.participants) {
            shares[each.teamId] += each.teamDamagePct.value_or(-10);
            results[each.teamId].insert(each.win);
        }
        QCOMPARE(shares.size(), size_t(2));
        for (const auto& [team, share] : shares)
            QVERIFY2(std::fabs(share - 1.0) < 1e-9, qPrintable(QString::number(team)));
        QCOMPARE(results[100].size(), size_t(1));
        QVERIFY(*results[100].begin() != *results[200].begin());

        const Player& seen = game->players[size_t(row)];
        QCOMPARE(seen.puuid, p.puuid);
        QCOMPARE(seen.gameName, p.riotIdGameName.value_or(""));
        QCOMPARE(QString::fromStdString(seen.platform), QString::fromStdString(m.platform).toLower());
        QCOMPARE(seen.lastSeen, m.gameCreation);
    }

    // The League client's copy of each game and the Riot API's give the same rows, puuids apart.
    void sameGameFromBothSources_data() {
        QTest::addColumn<QString>("file");
        for (const QString& file : fixtureFiles)
            QTest::newRow(qPrintable(file)) << file;
    }

    void sameGameFromBothSources() {
        QFETCH(QString, file);
        const QJsonObject match = fixture(file);
        const auto riot = readRiot(match);
        const auto client = readClient(clientShape(match));
        QVERIFY(riot);
        QVERIFY(client);

        const Match& a = riot->game.match;
        const Match& b = client->game.match;
        QCOMPARE(a.matchId, b.matchId);
        QCOMPARE(a.platform, b.platform);
        QCOMPARE(a.queueId, b.queueId);
        QCOMPARE(a.isRanked, b.isRanked);
        QCOMPARE(a.gameCreation, b.gameCreation);
        QCOMPARE(a.gameDuration, b.gameDuration);
        QCOMPARE(a.gameVersion, b.gameVersion);
        QCOMPARE(a.gameMode, b.gameMode);
        QCOMPARE(a.season, b.season);
        QCOMPARE(riot->complete, client->complete);

        QCOMPARE(riot->game.participants.size(), client->game.participants.size());
        for (size_t i = 0; i < riot->game.participants.size(); ++i) {
            const Participant& x = riot->game.participants[i];
            const Participant& y = client->game.participants[i];
            QVERIFY(x.puuid != y.puuid);
            QCOMPARE(x.riotIdGameName, y.riotIdGameName);
            QCOMPARE(x.riotIdTagLine, y.riotIdTagLine);
            QCOMPARE(x.teamId, y.teamId);
            QCOMPARE(x.win, y.win);
            QCOMPARE(x.championId, y.championId);
            QCOMPARE(x.championName, y.championName);
            QCOMPARE(x.teamPosition, y.teamPosition);
            QCOMPARE(x.champLevel, y.champLevel);
            QCOMPARE(x.kills, y.kills);
            QCOMPARE(x.deaths, y.deaths);
            QCOMPARE(x.assists, y.assists);
            QCOMPARE(x.totalCs, y.totalCs);
            QCOMPARE(x.goldEarned, y.goldEarned);
            QCOMPARE(x.visionScore, y.visionScore);
            QCOMPARE(x.damageToChampions, y.damageToChampions);
            QCOMPARE(x.items, y.items);
            QCOMPARE(x.teamDamagePct, y.teamDamagePct);
            QCOMPARE(x.killParticipation, y.killParticipation);
            QCOMPARE(x.csPerMin, y.csPerMin);
            QCOMPARE(x.profileIconId, y.profileIconId);
        }
        QCOMPARE(riot->players.size(), client->players.size());
        for (size_t i = 0; i < riot->players.size(); ++i) {
            const Player& x = riot->players[i];
            const Player& y = client->players[i];
            QCOMPARE(x.gameName, y.gameName);
            QCOMPARE(x.tagLine, y.tagLine);
            QCOMPARE(x.nameKey, y.nameKey);
            QCOMPARE(x.tagKey, y.tagKey);
            QCOMPARE(x.platform, y.platform);
            QCOMPARE(x.profileIconId, y.profileIconId);
            QCOMPARE(x.lastSeen, y.lastSeen);
        }
    }

    // Answers that are odd, old, broken or hostile: read as far as they make sense, never a crash.
    void oddAnswers_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("matchId"); // empty: not a readable game
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("complete");
        QTest::addColumn<qint64>("duration");
        QTest::addColumn<qint64>("team");           // of the first row
        QTest::addColumn<QString>("position");      // of the first row; empty: none
        QTest::addColumn<QList<qint64>>("kdaGold"); // of the first row
        QTest::addColumn<bool>("win");              // of the first row
        QTest::addColumn<QString>("name");          // of the first row; empty: none

        const QJsonObject kr = fixture("match-v5-2.json");
        const QString id = "KR_6823337832";
        const QList<qint64> jayce{0, 4, 0, 5141};
        auto text = [](const QJsonObject& o) { return QJsonDocument(o).toJson(QJsonDocument::Compact); };
        auto unreadable = [&](const char* name, const QByteArray& body) {
            QTest::newRow(name) << body << "" << 0 << false << qint64(0) << qint64(0) << "" << QList<qint64>{} << false
                                << "";
        };

        QTest::newRow("as answered") << text(kr) << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce
                                     << false << "dydwns7667";
        unreadable("an array", "[1, 2, 3]");
        unreadable("a number", "42");
        unreadable("no info", R"({"metadata": {"matchId": "KR_6823337832"}})");
        unreadable("info is a string", R"({"metadata": {"matchId": "KR_6823337832"}, "info": "KR"})");
        unreadable("info is null", R"({"metadata": {"matchId": "KR_6823337832"}, "info": null})");
        unreadable("participants not a list", text(editInfo(kr, [](QJsonObject& i) { i["participants"] = 10; })));
        unreadable("no participants", text(editInfo(kr, [](QJsonObject& i) { i["participants"] = QJsonArray(); })));
        unreadable("everyone a bot", text(editPlayers(kr, [](QJsonObject& p, int) { p["puuid"] = "BOT"; })));
        unreadable("puuids of the wrong type", text(editPlayers(kr, [](QJsonObject& p, int) { p["puuid"] = 7; })));
        unreadable("no game id anywhere",
                   text(editInfo(QJsonObject{{"info", kr["info"]}}, [](QJsonObject& i) { i.remove("gameId"); })));
        unreadable("a platform that is not one", text(editInfo(QJsonObject{{"info", kr["info"]}},
                                                               [](QJsonObject& i) { i["platformId"] = "KR/../x"; })));
        unreadable("a match id that is not one",
                   text(editInfo(QJsonObject{{"metadata", QJsonObject{{"matchId", "KR_12x"}}}, {"info", kr["info"]}},
                                 [](QJsonObject& i) { i["gameId"] = "6823337832"; })));
        unreadable("a negative game id",
                   text(editInfo(QJsonObject{{"info", kr["info"]}}, [](QJsonObject& i) { i["gameId"] = -5; })));

        QTest::newRow("game id a string: the metadata's match id")
            << text(editInfo(kr, [](QJsonObject& i) { i["gameId"] = "6823337832"; })) << id << 10 << true << qint64(963)
            << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("platform in lower case")
            << text(editInfo(kr, [](QJsonObject& i) { i["platformId"] = "kr"; })) << id << 10 << true << qint64(963)
            << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("no duration: the timestamps'")
            << text(editInfo(kr, [](QJsonObject& i) { i.remove("gameDuration"); })) << id << 10 << true
            << qint64((1701281090789 - 1701280127840) / 1000) << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("no duration, no timestamps")
            << text(editInfo(kr,
                             [](QJsonObject& i) {
                                 i.remove("gameDuration");
                                 i.remove("gameEndTimestamp");
                             }))
            << id << 10 << true << qint64(0) << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("duration of the wrong type")
            << text(editInfo(kr, [](QJsonObject& i) { i["gameDuration"] = "963"; })) << id << 10 << true << qint64(0)
            << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("a history entry: one player")
            << text(
                   editInfo(kr, [](QJsonObject& i) { i["participants"] = QJsonArray{i["participants"].toArray()[0]}; }))
            << id << 1 << false << qint64(963) << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("a bot among players")
            << text(editPlayer(kr, 0, "puuid", "BOT")) << id << 9 << true << qint64(963) << qint64(100) << "JUNGLE"
            << QList<qint64>{3, 3, 3, 5391} << false << "AND4";
        QTest::newRow("the same player twice")
            << text(editPlayer(kr, 1, "puuid", kr["info"]["participants"][0]["puuid"])) << id << 9 << true
            << qint64(963) << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("participants that are not objects")
            << text(editInfo(kr,
                             [](QJsonObject& i) {
                                 QJsonArray list = i["participants"].toArray();
                                 list.insert(0, "nobody");
                                 list.insert(3, QJsonValue());
                                 list.append(QJsonArray{1, 2});
                                 i["participants"] = list;
                             }))
            << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce << false << "dydwns7667";
        QTest::newRow("counts of the wrong type, negative or beyond reason")
            << text(editPlayers(kr,
                                [](QJsonObject& p, int i) {
                                    if (i != 0)
                                        return;
                                    p["kills"] = "7";
                                    p["deaths"] = -3;
                                    p["assists"] = 1e300;
                                    p["goldEarned"] = 4e15;
                                    p["item2"] = "Long Sword";
                                }))
            << id << 10 << true << qint64(963) << qint64(100) << "TOP" << QList<qint64>{0, 0, 0, 1'000'000'000'000}
            << false << "dydwns7667";
        // Team 100 lost; with the players' own results gone, the teams' (turned around) decide.
        QTest::newRow("no win of its own: the team's")
            << text(editInfo(editPlayers(kr, [](QJsonObject& p, int) { p.remove("win"); }),
                             [](QJsonObject& i) {
                                 i["teams"] = QJsonArray{QJsonObject{{"teamId", 100}, {"win", true}},
                                                         QJsonObject{{"teamId", 200}, {"win", "Fail"}}};
                             }))
            << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce << true << "dydwns7667";
        QTest::newRow("no win anywhere") << text(
                                                editInfo(editPlayers(kr, [](QJsonObject& p, int) { p["win"] = "yes"; }),
                                                         [](QJsonObject& i) { i["teams"] = "both"; }))
                                         << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce << false
                                         << "dydwns7667";
        QTest::newRow("no position: Riot's guess")
            << text(editPlayers(kr,
                                [](QJsonObject& p, int i) {
                                    if (i == 0)
                                        p["teamPosition"] = "";
                                    if (i == 0)
                                        p["individualPosition"] = "Middle";
                                }))
            << id << 10 << true << qint64(963) << qint64(100) << "MIDDLE" << jayce << false << "dydwns7667";
        QTest::newRow("no position, no guess: lane and role")
            << text(editPlayers(kr,
                                [](QJsonObject& p, int i) {
                                    if (i != 0)
                                        return;
                                    p["teamPosition"] = "";
                                    p["individualPosition"] = "Invalid";
                                    p["lane"] = "BOTTOM";
                                    p["role"] = "SUPPORT";
                                }))
            << id << 10 << true << qint64(963) << qint64(100) << "UTILITY" << jayce << false << "dydwns7667";
        QTest::newRow("ARAM has no positions")
            << text(editInfo(kr,
                             [](QJsonObject& i) {
                                 i["gameMode"] = "ARAM";
                                 i["queueId"] = 450;
                                 i["mapId"] = 12;
                             }))
            << id << 10 << true << qint64(963) << qint64(100) << "" << jayce << false << "dydwns7667";
        QTest::newRow("Arena: pairs by sub-team")
            << text(editInfo(editPlayers(kr, [](QJsonObject& p, int i) { p["playerSubteamId"] = i / 2 + 1; }),
                             [](QJsonObject& i) {
                                 i["gameMode"] = "CHERRY";
                                 i["queueId"] = 1700;
                                 i["mapId"] = 30;
                             }))
            << id << 10 << true << qint64(963) << qint64(1) << "" << jayce << false << "dydwns7667";
        QTest::newRow("no Riot ID: the summoner name")
            << text(editPlayers(kr,
                                [](QJsonObject& p, int) {
                                    p["riotIdGameName"] = "";
                                    p.remove("riotIdTagline");
                                }))
            << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce << false << "정따잇형";
        // In 2022 the game name was riotIdName.
        QTest::newRow("the game name under its older member")
            << text(editPlayers(kr,
                                [](QJsonObject& p, int) {
                                    p.remove("riotIdGameName");
                                    p["riotIdName"] = "Jimin";
                                }))
            << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce << false << "Jimin";
        QTest::newRow("no name at all") << text(editPlayers(kr,
                                                            [](QJsonObject& p, int) {
                                                                p.remove("riotIdGameName");
                                                                p["summonerName"] = QJsonValue();
                                                            }))
                                        << id << 10 << true << qint64(963) << qint64(100) << "TOP" << jayce << false
                                        << "";
    }

    void oddAnswers() {
        QFETCH(QByteArray, text);
        QFETCH(QString, matchId);
        const auto game = readText(text);
        if (matchId.isEmpty()) {
            QVERIFY(!game);
            return;
        }
        QVERIFY(game);
        QCOMPARE(QString::fromStdString(game->game.match.matchId), matchId);
        QTEST(int(game->game.participants.size()), "rows");
        QCOMPARE(game->players.size(), game->game.participants.size());
        QTEST(game->complete, "complete");
        QTEST(qint64(game->game.match.gameDuration), "duration");
        const Participant& first = game->game.participants.front();
        QTEST(qint64(first.teamId), "team");
        QTEST(QString::fromStdString(first.teamPosition.value_or("")), "position");
        QFETCH(QList<qint64>, kdaGold);
        QCOMPARE((QList<qint64>{first.kills, first.deaths, first.assists, first.goldEarned}), kdaGold);
        QTEST(first.win, "win");
        QTEST(QString::fromStdString(first.riotIdGameName.value_or("")), "name");
        QCOMPARE(first.items.size(), size_t(7));
        // Figures over the whole game only when there is a whole game; none from no duration.
        QCOMPARE(first.killParticipation.has_value(), game->complete);
        QCOMPARE(first.csPerMin.has_value(), game->game.match.gameDuration > 0);
    }
};

QTEST_GUILESS_MAIN(TstRiotMatchReader)
#include "tst_riot_match_reader.moc"
