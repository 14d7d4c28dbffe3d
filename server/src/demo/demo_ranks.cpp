// Ranked standings of the demo's accounts through the current season.

#include "demo/demo_ranks.h"

#include "demo/demo_schedule.h"

#include <algorithm>

namespace qf::demo {

namespace {

constexpr const char* kTiers[] = {"IRON",    "BRONZE",  "SILVER", "GOLD",        "PLATINUM",
                                  "EMERALD", "DIAMOND", "MASTER", "GRANDMASTER", "CHALLENGER"};
constexpr const char* kDivisions[] = {"IV", "III", "II", "I"};
constexpr int kFirstTierWithoutDivisions = 7;

// Where each account stood after its first game of the season.
Standing startOf(Owner owner, int64_t queueId) {
    if (owner == Owner::Main)
        return queueId == 420 ? Standing{2, 3, 40} : Standing{3, 0, 10};
    return queueId == 420 ? Standing{1, 2, 50} : Standing{2, 0, 20};
}

} // namespace

std::string Standing::tierName() const {
    return kTiers[tier];
}

std::optional<std::string> Standing::divisionName() const {
    if (tier >= kFirstTierWithoutDivisions)
        return std::nullopt;
    return kDivisions[division];
}

int64_t Standing::absolute() const {
    return 400 * tier + (tier >= kFirstTierWithoutDivisions ? 0 : 100 * division) + lp;
}

Standing afterGame(Standing s, bool win, int64_t change) {
    if (win) {
        s.lp += change;
        while (s.lp >= 100 && s.tier < kFirstTierWithoutDivisions) {
            s.lp -= 100;
            if (s.division < 3) {
                ++s.division;
            } else {
                ++s.tier;
                s.division = 0;
            }
        }
        return s;
    }
    if (s.lp > 0) {
        s.lp = std::max<int64_t>(0, s.lp - change);
        return s;
    }
    if (s.tier >= kFirstTierWithoutDivisions) {
        s = Standing{kFirstTierWithoutDivisions - 1, 3, 75};
    } else if (s.division > 0) {
        --s.division;
        s.lp = 75;
    } else if (s.tier > 0) {
        --s.tier;
        s.division = 3;
        s.lp = 75;
    }
    return s;
}

std::vector<RankSnapshot> rankSnapshots(const std::vector<Game>& games, Owner owner, int64_t now) {
    const int64_t season = seasonOf(now);
    std::vector<RankSnapshot> snapshots;
    for (const int64_t queueId : {int64_t{420}, int64_t{440}}) {
        std::optional<Standing> standing;
        int64_t wins = 0;
        int64_t losses = 0;
        for (const Game& game : games) {
            if (game.ownerAccount != owner || game.queue->id != queueId || game.season != season)
                continue;
            const bool win = game.participants[static_cast<size_t>(game.owner)].win;
            Random random(static_cast<uint64_t>(game.gameId) ^ 0x1adde5ull);
            const int64_t change = win ? random.between(17, 27) : random.between(14, 23);
            standing = standing ? afterGame(*standing, win, change) : startOf(owner, queueId);
            (win ? wins : losses) += 1;
            RankSnapshot s;
            s.queue = queueId == 420 ? "RANKED_SOLO_5x5" : "RANKED_FLEX_SR";
            s.tier = standing->tierName();
            s.division = standing->divisionName();
            s.lp = standing->lp;
            s.wins = wins;
            s.losses = losses;
            // Taken when the client shows the result.
            s.capturedAt = game.creation + game.duration * 1000 + random.between(40, 240) * 1000;
            snapshots.push_back(std::move(s));
        }
    }
    std::stable_sort(snapshots.begin(), snapshots.end(),
                     [](const RankSnapshot& a, const RankSnapshot& b) { return a.capturedAt < b.capturedAt; });
    return snapshots;
}

} // namespace qf::demo
