#pragma once

#include "archive/champion_catalog.h"
#include "store/records.h"
#include "json/json_input.h"

#include <optional>
#include <vector>

// Reads one game as the League client's match history gives it (the shape of the retired
// match-v4 web API, with puuid, gameName and tagLine added to each player) into the rows the
// server stores. Every member is read with a default and no type is trusted.

namespace qf {

struct ClientGame {
    GameRecord game;             // derived figures (damage share, kill participation, CS per minute) filled in
    std::vector<Player> players; // everyone in it with a puuid, as seen at the game's start
    // False for a history-list entry that carries only some players: it never replaces a
    // stored game that has more of them.
    bool complete = false;
};

// nullopt when the object is not a readable game: no numeric gameId, no platformId, no player
// with a puuid.
std::optional<ClientGame> readClientGame(json::Element game, const ChampionCatalog& champions);

} // namespace qf
