#pragma once

#include "store/repository.h"

#include <vector>

// How well a player played one game compared with their own usual games in the same position.

namespace qf {

// The score of me in game, measured against history (the player's earlier games in the same
// position, newest first). Pure: the same inputs always give the same score.
PerformanceScore scoreGame(const OwnGame& game, const std::vector<OwnGame>& history, int64_t riotAccountId);

} // namespace qf
