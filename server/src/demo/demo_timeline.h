#pragma once

#include "demo/demo_games.h"

#include <optional>
#include <string>
#include <string_view>

// The timeline summary of a demo game from its owner's side, as the Timeline screen reads it:
// gold per minute, the owner's own progress, the game's kills, monsters and buildings, and the
// highlights drawn from them. It agrees with the game: the last minute holds the owner's final
// gold and creep score, each side's kills add up to its score.

namespace qf::demo {

// nullopt for Arena: eight pairs do not fit a summary of two sides.
[[nodiscard]] std::optional<std::string> timelineSummaryJson(const Game& game, std::string_view ownerChampion);

} // namespace qf::demo
