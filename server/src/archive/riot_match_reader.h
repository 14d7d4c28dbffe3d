#pragma once

#include "archive/champion_catalog.h"
#include "archive/lcu_game_reader.h"
#include "json/json_input.h"

#include <optional>
#include <string>

// Reads one game as the Riot API's match-v5 answers it ({"metadata": …, "info": …}) into the
// same rows the League client's copy of that game gives: same match id, figures and names; only
// the puuids differ, as the Riot API encrypts them for each key. Every member is read with a
// default and no type is trusted: answers from 2021 lack members later ones have.

namespace qf {

// nullopt when the object is not a readable game: no info object, no numeric game id with a
// platform (from info, else from the metadata's match id), no player with a puuid.
[[nodiscard]] std::optional<ClientGame> readRiotMatch(json::Element match, const ChampionCatalog& champions);

// The name a match-v5 participant shows: the Riot ID's game name, else (before Riot IDs) the
// summoner name; nullopt when it has none.
[[nodiscard]] std::optional<std::string> riotParticipantName(json::Element participant);

} // namespace qf
