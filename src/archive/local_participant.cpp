#include "archive/local_participant.h"

#include <algorithm>
#include <limits>

namespace {

// Sets a figure of the row's width; false when value did not fit (the figure then holds the
// nearest it can).
template <class T> bool narrow(T& figure, qint64 value) {
    constexpr qint64 low = std::numeric_limits<T>::min();
    constexpr qint64 high = std::numeric_limits<T>::max();
    figure = static_cast<T>(std::clamp(value, low, high));
    return value >= low && value <= high;
}

template <class T> bool narrow(OptionalInt<T>& figure, const std::optional<qint64>& value) {
    if (!value) {
        figure.reset();
        return true;
    }
    T narrowed = 0;
    narrow(narrowed, *value);
    if (narrowed == OptionalInt<T>::absent)
        ++narrowed;
    figure = narrowed;
    return OptionalInt<T>::fits(*value);
}

} // namespace

LocalParticipant::LocalParticipant(const ParticipantDto& dto) : serverId(dto.id) {
    update(dto);
}

void LocalParticipant::update(const ParticipantDto& dto) {
    matchServerId = dto.matchId;
    puuid = dto.puuid;
    riotIdGameName = dto.riotIdGameName;
    riotIdTagLine = dto.riotIdTagLine;
    win = dto.win;
    championName = dto.championName;
    teamPosition = dto.teamPosition;
    csPerMin = dto.csPerMin;
    teamDamagePct = dto.teamDamagePct;
    killParticipation = dto.killParticipation;
    rankTier = dto.rankTier;
    rankDivision = dto.rankDivision;

    bool fits = narrow(teamId, dto.teamId);
    fits &= narrow(championId, dto.championId);
    fits &= narrow(kills, dto.kills);
    fits &= narrow(deaths, dto.deaths);
    fits &= narrow(assists, dto.assists);
    fits &= narrow(totalCs, dto.totalCs);
    fits &= narrow(goldEarned, dto.goldEarned);
    fits &= narrow(visionScore, dto.visionScore);
    fits &= narrow(damageToChampions, dto.damageToChampions);
    fits &= narrow(champLevel, dto.champLevel);
    fits &= narrow(rankLp, dto.rankLp);
    fits &= items.assign(dto.items.value_or(QList<qint64>()));
    if (fits) {
        m_exact.set(nullptr);
    } else {
        ParticipantDto exact = dto;
        exact.id = serverId;
        m_exact.set(&exact);
    }
}

ParticipantDto LocalParticipant::toDto() const {
    if (const ParticipantDto* whole = m_exact.get())
        return *whole;
    ParticipantDto dto;
    dto.id = serverId;
    dto.matchId = matchServerId;
    dto.puuid = puuid;
    dto.riotIdGameName = riotIdGameName.toOptional();
    dto.riotIdTagLine = riotIdTagLine.toOptional();
    dto.teamId = teamId;
    dto.win = win;
    dto.championId = championId;
    dto.championName = championName;
    dto.teamPosition = teamPosition.toOptional();
    dto.champLevel = champLevel.toOptional();
    dto.kills = kills;
    dto.deaths = deaths;
    dto.assists = assists;
    dto.totalCs = totalCs;
    dto.goldEarned = goldEarned;
    dto.visionScore = visionScore;
    dto.damageToChampions = damageToChampions;
    dto.items = items.toList();
    dto.teamDamagePct = teamDamagePct.toOptional();
    dto.killParticipation = killParticipation.toOptional();
    dto.csPerMin = csPerMin.toOptional();
    dto.rankTier = rankTier.toOptional();
    dto.rankDivision = rankDivision.toOptional();
    dto.rankLp = rankLp.toOptional();
    return dto;
}

QString LocalParticipant::displayName() const {
    if (!riotIdGameName.isNull() && !riotIdGameName.isEmpty())
        return riotIdGameName;
    return puuid.toString().left(6);
}

// The archive's memory is mostly these rows: a field added or widened shows here first.
static_assert(sizeof(LocalParticipant) <= 136);
