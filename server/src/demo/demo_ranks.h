#pragma once

#include "demo/demo_games.h"
#include "store/records.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The ranked ladder the demo's accounts climb: one snapshot after every ranked game of the
// season now is in, league points won and lost, divisions and tiers crossed at 100 points.

namespace qf::demo {

// Tier 0 (IRON) to 9 (CHALLENGER); division 0 (IV) to 3 (I), unused from MASTER up.
struct Standing {
    int tier = 0;
    int division = 0;
    int64_t lp = 0;

    [[nodiscard]] std::string tierName() const;
    [[nodiscard]] std::optional<std::string> divisionName() const;
    // On the one scale of the rank chart: 400 a tier, 100 a division.
    [[nodiscard]] int64_t absolute() const;
};

// After a win worth change points, or a loss costing change points. 100 points lift a division
// (from Diamond I into Master); a loss at 0 drops one, to 75.
[[nodiscard]] Standing afterGame(Standing standing, bool win, int64_t change);

// The account's snapshots (riotAccountId unset), oldest first, for the ranked games it played
// in the season of now.
[[nodiscard]] std::vector<RankSnapshot> rankSnapshots(const std::vector<Game>& games, Owner owner, int64_t now);

} // namespace qf::demo
