#include "archive/local_participant.h"

#include <algorithm>
#include <array>
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

SharedText sharedText(const std::optional<QByteArrayView>& utf8) {
    return utf8 ? SharedText::fromUtf8(*utf8) : SharedText();
}

} // namespace

LocalParticipant::LocalParticipant(const ParticipantDto& dto) : serverId(dto.id) {
    update(dto);
}

bool LocalParticipant::setFigures(const Figures& figures) {
    bool fits = narrow(teamId, figures.teamId);
    fits &= narrow(championId, figures.championId);
    fits &= narrow(kills, figures.kills);
    fits &= narrow(deaths, figures.deaths);
    fits &= narrow(assists, figures.assists);
    fits &= narrow(totalCs, figures.totalCs);
    fits &= narrow(goldEarned, figures.goldEarned);
    fits &= narrow(visionScore, figures.visionScore);
    fits &= narrow(damageToChampions, figures.damageToChampions);
    fits &= narrow(champLevel, figures.champLevel);
    fits &= narrow(rankLp, figures.rankLp);
    return fits;
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

    bool fits = setFigures({dto.teamId, dto.championId, dto.kills, dto.deaths, dto.assists, dto.totalCs, dto.goldEarned,
                            dto.visionScore, dto.damageToChampions, dto.champLevel, dto.rankLp});
    fits &= items.assign(dto.items.value_or(QList<qint64>()));
    if (fits) {
        m_exact.set(nullptr);
    } else {
        ParticipantDto exact = dto;
        exact.id = serverId;
        m_exact.set(&exact);
    }
}

LocalParticipant LocalParticipant::decode(const JsonReader& in) {
    // The keys in the order ParticipantDto::decode reads them, so that a record failing both
    // ways names the same key.
    LocalParticipant row;
    row.serverId = in.integer("id");
    row.matchServerId = in.integer("matchId");
    row.puuid = SharedText::fromUtf8(in.utf8("puuid"));
    row.riotIdGameName = sharedText(in.optUtf8("riotIdGameName"));
    row.riotIdTagLine = sharedText(in.optUtf8("riotIdTagLine"));
    Figures figures{};
    figures.teamId = in.integer("teamId");
    row.win = in.flag("win");
    figures.championId = in.integer("championId");
    row.championName = SharedText::fromUtf8(in.utf8("championName"));
    row.teamPosition = sharedText(in.optUtf8("teamPosition"));
    figures.champLevel = in.optInteger("champLevel");
    figures.kills = in.integer("kills");
    figures.deaths = in.integer("deaths");
    figures.assists = in.integer("assists");
    figures.totalCs = in.integer("totalCs");
    figures.goldEarned = in.integer("goldEarned");
    figures.visionScore = in.integer("visionScore");
    figures.damageToChampions = in.integer("damageToChampions");
    std::array<qint64, ItemSlots::capacity + 1> items{};
    const qsizetype itemCount = in.optIntegers("items", items).value_or(0);
    row.teamDamagePct = in.optReal("teamDamagePct");
    row.killParticipation = in.optReal("killParticipation");
    row.csPerMin = in.optReal("csPerMin");
    row.rankTier = sharedText(in.optUtf8("rankTier"));
    row.rankDivision = sharedText(in.optUtf8("rankDivision"));
    figures.rankLp = in.optInteger("rankLp");

    const bool fits = row.setFigures(figures) && itemCount <= static_cast<qsizetype>(ItemSlots::capacity) &&
                      row.items.assign(std::span<const qint64>(items.data(), static_cast<std::size_t>(itemCount)));
    if (!fits)
        // Rare enough to read the record a second time the plain way, which also keeps what
        // fits of it exactly as a row read back from disk would.
        return LocalParticipant(ParticipantDto::decode(in));
    return row;
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
