#pragma once

#include "archive/champion_catalog.h"
#include "json/json_input.h"

#include <optional>
#include <string>
#include <string_view>

// Condenses a game's match-v5 timeline into the timeline summary the app's Timeline screen
// reads, from one player's side: both teams' gold per minute and the difference, the player's
// own gold, creep score, experience and level per minute; the kills, epic monsters and
// buildings with who earned them; and the highlights drawn from those (creep score and gold
// difference at 10 and 14 minutes, the largest lead and deficit, first blood, objectives per
// side). The same shape as the demo's summaries.

namespace qf {

// match is the game's match-v5 answer (it names the players and their teams), timeline its
// timeline answer, ownerPuuid the player whose side it is told from, as the Riot API names them.
// nullopt when the timeline is unreadable (no frames list), belongs to another game, the owner
// did not play in the game, or the game has more than two sides (Arena).
[[nodiscard]] std::optional<std::string> riotTimelineSummaryJson(json::Element match, json::Element timeline,
                                                                 std::string_view ownerPuuid,
                                                                 const ChampionCatalog& champions);

} // namespace qf
