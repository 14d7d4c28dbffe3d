#pragma once

#include "backend/archive_records.h"

#include <QList>
#include <QString>
#include <optional>

// One player's line in one stored game.
struct LocalParticipant {
    qint64 localId = 0;
    qint64 serverId = 0;
    qint64 matchServerId = 0;
    QString puuid;
    std::optional<QString> riotIdGameName;
    std::optional<QString> riotIdTagLine;
    qint64 teamId = 0;
    bool win = false;
    qint64 championId = 0;
    QString championName;
    std::optional<QString> teamPosition;
    std::optional<qint64> champLevel;
    qint64 kills = 0;
    qint64 deaths = 0;
    qint64 assists = 0;
    qint64 totalCs = 0;
    qint64 goldEarned = 0;
    qint64 visionScore = 0;
    qint64 damageToChampions = 0;
    QList<qint64> items;
    std::optional<double> teamDamagePct;
    std::optional<double> killParticipation;
    std::optional<double> csPerMin;
    std::optional<QString> rankTier;
    std::optional<QString> rankDivision;
    std::optional<qint64> rankLp;

    LocalParticipant() = default;
    explicit LocalParticipant(const ParticipantDTO& dto);
    void update(const ParticipantDTO& dto);

    // The Riot ID name when known, else the start of the player's id.
    [[nodiscard]] QString displayName() const;
};
