#pragma once

#include "archive/local_match.h"
#include "archive/local_participant.h"
#include "game_data/game_category.h"
#include "game_data/row_list.h"

#include <QSet>
#include <QString>
#include <memory>
#include <vector>

// The three shapes every archive screen is built from, computed from the store's records in
// single passes. The user is a set of puuids (every linked account); a row is the user's when
// its puuid is in that set.
namespace Stats {

// One game of the user.
struct Game {
    const LocalMatch* match = nullptr;
    const LocalParticipant* me = nullptr;
    RowList roster;                            // every stored row of the game, input order
    RowList friends;                           // known friends on the user's team, roster order
    std::shared_ptr<const RowList::Rows> rows; // what roster and friends lie in

    [[nodiscard]] qint64 id() const { return match->serverId; }
    [[nodiscard]] GameCategory category() const {
        // The mode is text only read for games of other queues; most never need it decoded.
        const std::optional<GameCategory> known = GameCategories::ofQueue(match->queueId);
        return known ? *known : GameCategories::of(match->queueId, match->gameMode.toOptional());
    }
};

// The user's record on one champion.
struct ChampAgg {
    qint64 championId = 0;
    QString name;
    int games = 0;
    int wins = 0;
    double kda = 0;      // mean of per-game ratios
    double csPerMin = 0; // mean over the games that have a value

    [[nodiscard]] double winRate() const { return games > 0 ? double(wins) / games : 0.0; }
};

struct TimelineEntry {
    const LocalMatch* match = nullptr;
    const LocalParticipant* me = nullptr;
};

// (kills + assists) / deaths, a deathless game counting as one death.
[[nodiscard]] double kdaRatio(const LocalParticipant& row);

// The user's games in the order of matches; matches without a row of the user are left out.
// friendNames are lower-case game names. When ownRowsOut is given it receives what ownRows()
// would return, found in the same pass over the rows.
[[nodiscard]] std::vector<Game> games(const std::vector<const LocalMatch*>& matches,
                                      const std::vector<const LocalParticipant*>& participants,
                                      const QSet<QString>& owners, const QSet<QString>& friendNames,
                                      std::vector<const LocalParticipant*>* ownRowsOut = nullptr);
// The rows of participants whose puuid is in owners, in input order.
[[nodiscard]] std::vector<const LocalParticipant*> ownRows(const std::vector<const LocalParticipant*>& participants,
                                                           const QSet<QString>& owners);
// One aggregate per champion of the given rows, most games first (stable).
[[nodiscard]] std::vector<ChampAgg> champions(const std::vector<const LocalParticipant*>& participants);
// (match, own row) pairs in the order of matches.
[[nodiscard]] std::vector<TimelineEntry> timeline(const std::vector<const LocalMatch*>& matches,
                                                  const std::vector<const LocalParticipant*>& participants,
                                                  const QSet<QString>& owners);

} // namespace Stats
