#include "support/client_games.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace ClientGames {

QJsonObject fixtureGame() {
    QFile file(QStringLiteral(QFS_FIXTURES_DIR "/match-v4-1.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

QStringList puuids(int prefix) {
    QStringList out;
    for (int i = 0; i < 10; ++i)
        out << QStringLiteral("%1-0000-4000-8000-%2")
                   .arg(prefix, 8, 16, QLatin1Char('0'))
                   .arg(i, 12, 16, QLatin1Char('0'));
    return out;
}

QJsonObject game(qint64 gameId, const QStringList& puuids, int winnerTeam, const QString& tag) {
    QJsonObject g = fixtureGame();
    g["gameId"] = gameId;
    QJsonArray identities = g["participantIdentities"].toArray();
    for (qsizetype i = 0; i < identities.size() && i < puuids.size(); ++i) {
        QJsonObject identity = identities[i].toObject();
        QJsonObject player = identity["player"].toObject();
        player["puuid"] = puuids[i];
        player["gameName"] = player["summonerName"].toString();
        player["tagLine"] = tag;
        identity["player"] = player;
        identities[i] = identity;
    }
    g["participantIdentities"] = identities;
    if (winnerTeam == 100 || winnerTeam == 200) {
        QJsonArray teams = g["teams"].toArray();
        for (qsizetype i = 0; i < teams.size(); ++i) {
            QJsonObject t = teams[i].toObject();
            t["win"] = t["teamId"].toInt() == winnerTeam ? "Win" : "Fail";
            teams[i] = t;
        }
        g["teams"] = teams;
        QJsonArray participants = g["participants"].toArray();
        for (qsizetype i = 0; i < participants.size(); ++i) {
            QJsonObject p = participants[i].toObject();
            QJsonObject stats = p["stats"].toObject();
            stats["win"] = p["teamId"].toInt() == winnerTeam;
            p["stats"] = stats;
            participants[i] = p;
        }
        g["participants"] = participants;
    }
    return g;
}

QJsonObject listEntry(const QJsonObject& game, int participantIndex) {
    QJsonObject entry = game;
    entry["participantIdentities"] = QJsonArray{game["participantIdentities"].toArray()[participantIndex]};
    entry["participants"] = QJsonArray{game["participants"].toArray()[participantIndex]};
    return entry;
}

} // namespace ClientGames
