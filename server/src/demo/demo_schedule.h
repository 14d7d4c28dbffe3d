#pragma once

#include "demo/demo_roster.h"

#include <cstdint>
#include <string>
#include <vector>

// When the demo's accounts played, in what queue, with which friends, and whether they won:
// evening sessions of a few games over the fourteen months before now.

namespace qf::demo {

struct Plan {
    Owner owner = Owner::Main;
    int64_t queueId = 0;
    std::vector<const Friend*> party; // friends on the owner's side
    bool win = false;
    int64_t creation = 0; // ms
    int64_t duration = 0; // seconds
    bool earlier = false; // among the oldest quarter of the account's games
};

inline constexpr int kMainGames = 330;
inline constexpr int kAltGames = 42;

// Oldest first. Only the times depend on now.
[[nodiscard]] std::vector<Plan> scheduleGames(int64_t now);

// A value around mean, at most spread away, most often near it.
[[nodiscard]] double around(Random& random, double mean, double spread);

// Calendar facts of a time (ms since 1970, UTC).
[[nodiscard]] int64_t yearOf(int64_t ms);
[[nodiscard]] int64_t dayOfYear(int64_t ms);   // 0 for 1 January
[[nodiscard]] std::string isoTime(int64_t ms); // "2026-03-14T19:02:11.000Z"

// The game's season and version as the client reports them: 2026 is season 16, versions
// 16.1 to 16.24 through the year, one every two weeks.
[[nodiscard]] int64_t seasonOf(int64_t ms);
[[nodiscard]] std::string versionOf(int64_t ms);

} // namespace qf::demo
