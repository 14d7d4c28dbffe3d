#include "archive/local_participant.h"

#include <algorithm>
#include <limits>

namespace {

// Sets a 32-bit figure; false when value did not fit (the figure then holds the nearest it can).
bool narrow(qint32& figure, qint64 value) {
    constexpr qint64 low = std::numeric_limits<qint32>::min();
    constexpr qint64 high = std::numeric_limits<qint32>::max();
    figure = static_cast<qint32>(std::clamp(value, low, high));
    return value >= low && value <= high;
}

bool narrow(OptionalInt& figure, const std::optional<qint64>& value) {
    if (!value) {
        figure.reset();
        return true;
    }
    qint32 narrowed = 0;
    narrow(narrowed, *value);
    if (narrowed == OptionalInt::absent)
        ++narrowed;
    figure = narrowed;
    return OptionalInt::fits(*value);
}

} // namespace

LocalParticipant::LocalParticipant(const ParticipantDto& dto) : serverId(dto.id) {
    update(dto);
}

LocalParticipant::LocalParticipant(const LocalParticipant& other) {
    *this = other;
}

LocalParticipant& LocalParticipant::operator=(const LocalParticipant& other) {
    if (this == &other)
        return *this;
    matchServerId = other.matchServerId;
    puuid = other.puuid;
    teamId = other.teamId;
    riotIdGameName = other.riotIdGameName;
    localId = other.localId;
    serverId = other.serverId;
    csPerMin = other.csPerMin;
    teamDamagePct = other.teamDamagePct;
    killParticipation = other.killParticipation;
    riotIdTagLine = other.riotIdTagLine;
    championName = other.championName;
    teamPosition = other.teamPosition;
    rankTier = other.rankTier;
    rankDivision = other.rankDivision;
    championId = other.championId;
    kills = other.kills;
    deaths = other.deaths;
    assists = other.assists;
    totalCs = other.totalCs;
    goldEarned = other.goldEarned;
    visionScore = other.visionScore;
    damageToChampions = other.damageToChampions;
    champLevel = other.champLevel;
    rankLp = other.rankLp;
    items = other.items;
    win = other.win;
    m_exact = other.m_exact ? std::make_unique<ParticipantDto>(*other.m_exact) : nullptr;
    return *this;
}

LocalParticipant::~LocalParticipant() = default;

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
    m_exact = fits ? nullptr : std::make_unique<ParticipantDto>(dto);
    if (m_exact)
        m_exact->id = serverId;
}

ParticipantDto LocalParticipant::toDto() const {
    if (m_exact)
        return *m_exact;
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
