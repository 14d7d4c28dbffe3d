#include "game_data/stats.h"

#include <algorithm>
#include <unordered_map>

namespace Stats {

double kdaRatio(const LocalParticipant& row) {
    return double(row.kills + row.assists) / double(std::max<qint64>(row.deaths, 1));
}

std::vector<Game> games(const std::vector<const LocalMatch*>& matches,
                        const std::vector<const LocalParticipant*>& participants, const QSet<QString>& owners,
                        const QSet<QString>& friendNames) {
    std::unordered_map<qint64, std::vector<const LocalParticipant*>> byMatch;
    byMatch.reserve(matches.size() + 1);
    for (const LocalParticipant* row : participants)
        byMatch[row->matchServerId].push_back(row);

    std::vector<Game> result;
    result.reserve(matches.size());
    for (const LocalMatch* match : matches) {
        auto found = byMatch.find(match->serverId);
        if (found == byMatch.end())
            continue;
        const std::vector<const LocalParticipant*>& rows = found->second;
        const auto me = std::find_if(rows.begin(), rows.end(), [&](const LocalParticipant* r) { return owners.contains(r->puuid); });
        if (me == rows.end())
            continue;
        Game game{match, *me, rows, {}};
        if (!friendNames.isEmpty()) {
            for (const LocalParticipant* row : rows) {
                if (row->teamId == (*me)->teamId && !owners.contains(row->puuid) && row->riotIdGameName &&
                    friendNames.contains(row->riotIdGameName->toLower()))
                    game.friends.push_back(row);
            }
        }
        result.push_back(std::move(game));
    }
    return result;
}

std::vector<ChampAgg> champions(const std::vector<const LocalParticipant*>& participants) {
    struct Running {
        ChampAgg agg;
        double kdaSum = 0;
        double csSum = 0;
        int csCount = 0;
    };
    std::vector<Running> groups;
    std::unordered_map<qint64, std::size_t> indexOf;
    for (const LocalParticipant* row : participants) {
        auto [it, added] = indexOf.try_emplace(row->championId, groups.size());
        if (added) {
            groups.push_back({});
            groups.back().agg.championId = row->championId;
            groups.back().agg.name = row->championName;
        }
        Running& group = groups[it->second];
        ++group.agg.games;
        group.agg.wins += row->win ? 1 : 0;
        group.kdaSum += kdaRatio(*row);
        if (row->csPerMin) {
            group.csSum += *row->csPerMin;
            ++group.csCount;
        }
    }
    std::vector<ChampAgg> result;
    result.reserve(groups.size());
    for (Running& group : groups) {
        group.agg.kda = group.kdaSum / group.agg.games;
        group.agg.csPerMin = group.csCount > 0 ? group.csSum / group.csCount : 0.0;
        result.push_back(std::move(group.agg));
    }
    std::stable_sort(result.begin(), result.end(), [](const ChampAgg& a, const ChampAgg& b) { return a.games > b.games; });
    return result;
}

std::vector<TimelineEntry> timeline(const std::vector<const LocalMatch*>& matches,
                                    const std::vector<const LocalParticipant*>& participants,
                                    const QSet<QString>& owners) {
    std::unordered_map<qint64, const LocalParticipant*> firstOwnRow;
    for (const LocalParticipant* row : participants)
        if (owners.contains(row->puuid))
            firstOwnRow.try_emplace(row->matchServerId, row);
    std::vector<TimelineEntry> result;
    result.reserve(std::min(matches.size(), firstOwnRow.size()));
    for (const LocalMatch* match : matches) {
        auto found = firstOwnRow.find(match->serverId);
        if (found != firstOwnRow.end())
            result.push_back({match, found->second});
    }
    return result;
}

} // namespace Stats
