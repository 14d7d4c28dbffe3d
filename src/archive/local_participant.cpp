#include "archive/local_participant.h"

LocalParticipant::LocalParticipant(const ParticipantDto& dto) : serverId(dto.id) {
    update(dto);
}

void LocalParticipant::update(const ParticipantDto& dto) {
    matchServerId = dto.matchId;
    puuid = dto.puuid;
    riotIdGameName = dto.riotIdGameName;
    riotIdTagLine = dto.riotIdTagLine;
    teamId = dto.teamId;
    win = dto.win;
    championId = dto.championId;
    championName = dto.championName;
    teamPosition = dto.teamPosition;
    champLevel = dto.champLevel;
    kills = dto.kills;
    deaths = dto.deaths;
    assists = dto.assists;
    totalCs = dto.totalCs;
    goldEarned = dto.goldEarned;
    visionScore = dto.visionScore;
    damageToChampions = dto.damageToChampions;
    items = dto.items.value_or(QList<qint64>());
    teamDamagePct = dto.teamDamagePct;
    killParticipation = dto.killParticipation;
    csPerMin = dto.csPerMin;
    rankTier = dto.rankTier;
    rankDivision = dto.rankDivision;
    rankLp = dto.rankLp;
}

QString LocalParticipant::displayName() const {
    if (riotIdGameName && !riotIdGameName->isEmpty())
        return *riotIdGameName;
    return puuid.left(6);
}
