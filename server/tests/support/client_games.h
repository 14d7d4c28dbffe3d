#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

// League client games for tests, made from the real game in the shared fixtures (the shape the
// client's match history answers in) with the identities newer clients add to each player.
namespace ClientGames {

// The fixture game; absent (empty object) when the fixtures folder is missing.
QJsonObject fixtureGame();

// The fixture game as game number gameId, its ten players given these puuids (in participant
// order), Riot IDs "<summoner name>#<tag>" and, when winnerTeam is 100 or 200, that team winning.
QJsonObject game(qint64 gameId, const QStringList& puuids, int winnerTeam = 0, const QString& tag = "NA1");

// Ten raw puuids, the League client's form (36-character UUIDs), distinct for each prefix.
QStringList puuids(int prefix);

// The history-list entry of a game: only the given player's participant and identity.
QJsonObject listEntry(const QJsonObject& game, int participantIndex);

} // namespace ClientGames
