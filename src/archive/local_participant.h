#pragma once

#include "archive/keyed_text.h"
#include "backend/archive_records.h"

#include <QList>
#include <QString>
#include <optional>

// One player's line in one stored game.
//
// The order of the fields follows how screens read them. The first cache line (rows start on
// one) holds what the statistics read for every row: the game, the team, and the keys of the
// game name and of the player's id, so that a pass over a large archive reads that line and the
// texts only where a key agrees. The next two hold what the screens read of the user's own rows:
// the score line, the result, creep score, vision, damage and position.
struct alignas(64) LocalParticipant {
    std::optional<PlayerName> riotIdGameName;
    qint64 matchServerId = 0;
    qint64 teamId = 0;
    PlayerId puuid;
    qint64 championId = 0;
    qint64 kills = 0;
    qint64 deaths = 0;
    qint64 assists = 0;
    bool win = false;
    std::optional<double> csPerMin;
    qint64 visionScore = 0;
    qint64 damageToChampions = 0;
    std::optional<QString> teamPosition;
    QString championName;
    qint64 localId = 0;
    qint64 serverId = 0;
    std::optional<QString> riotIdTagLine;
    std::optional<qint64> champLevel;
    qint64 totalCs = 0;
    qint64 goldEarned = 0;
    QList<qint64> items;
    std::optional<double> teamDamagePct;
    std::optional<double> killParticipation;
    std::optional<QString> rankTier;
    std::optional<QString> rankDivision;
    std::optional<qint64> rankLp;

    LocalParticipant() = default;
    explicit LocalParticipant(const ParticipantDto& dto);
    void update(const ParticipantDto& dto);

    // The Riot ID name when known, else the start of the player's id.
    [[nodiscard]] QString displayName() const;
};
