#pragma once

#include "archive/lcu_game_reader.h"
#include "store/records.h"
#include "json/json_input.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What every reader of a finished game shares, whichever source it came from (the League
// client's match history or the Riot API's match-v5): the readings of members both carry in the
// same form, and the figures computed over the whole game. Two readers of one game must give
// identical rows, so none of this is written twice.

namespace qf::game_rows {

// Counts above this are not from a game; clamping keeps every sum of them far from overflow.
inline constexpr int64_t maxCount = 1'000'000'000'000;

// A non-negative count member, clamped; 0 when missing or not a number.
[[nodiscard]] int64_t count(json::Element object, std::string_view key);

[[nodiscard]] std::string upperAscii(std::string_view text);
[[nodiscard]] std::string lowerAscii(std::string_view text);

// The elements of an array member; none when it is missing or not an array.
[[nodiscard]] std::vector<json::Element> arrayOf(json::Element object, std::string_view key);

// Platform ids are short runs of letters and digits ("EUW1", "KR"); the id becomes part of the
// match id, so nothing else is let through.
[[nodiscard]] bool plainPlatform(std::string_view platform);

// The season a game version belongs to: "14.3.556.123" → 14.
[[nodiscard]] std::optional<int64_t> seasonOf(std::string_view version);

// A game length in seconds from what a source calls the duration: some answers (the client's
// older ones, match-v5 before patch 11.20) give milliseconds, told apart by being longer than
// any game can last.
[[nodiscard]] int64_t durationSeconds(int64_t raw);

// Howling Abyss and Arena games, and the modes played there, have no lanes to speak of.
[[nodiscard]] bool positionless(std::string_view upperMode, int64_t queueId, int64_t mapId);

// TOP, JUNGLE, MIDDLE, BOTTOM or UTILITY for a position as either source names it.
[[nodiscard]] std::optional<std::string> positionKeyword(std::string_view given);
// The position a lane and a role imply, when no position is named.
[[nodiscard]] std::optional<std::string> positionOfLane(std::string_view lane, std::string_view role);

// Bots carry an empty puuid, the nil UUID or the word BOT; none of them names a player.
[[nodiscard]] bool realPuuid(std::string_view puuid);

[[nodiscard]] std::optional<std::string> nonEmpty(std::optional<std::string> text);

// A team's "win": true, or the older "Win".
[[nodiscard]] bool teamWon(json::Element team);

// The seven item slots item0 … item6, when any of them is there; none otherwise.
[[nodiscard]] std::vector<int64_t> itemSlots(json::Element stats);

// The end-of-game figures both sources name alike (match-v5 on the participant, the League
// client on its "stats"): level, kills, deaths, assists, creep score (minions and monsters),
// gold, vision, damage to champions and items.
void readFigures(json::Element stats, Participant& row);

// One row as a reader made it from its source, before the figures that need the whole game.
struct GameRow {
    Participant participant;
    int64_t team = 0;             // the team the damage share and kill participation are computed over
    std::optional<Player> player; // set when the row names a real player
};

// The player a row names, as seen at the game's start; nullopt for a bot. homePlatform is where
// the account plays, lower case.
[[nodiscard]] std::optional<Player> seenPlayer(const Participant& row, std::string homePlatform, int64_t seenAt);

// Completes a game: each player's damage share and kill participation within their team (when
// the game holds more than one row), CS per minute; rows without a player and repeated players
// are left out. nullopt when no player is left.
[[nodiscard]] std::optional<ClientGame> finishGame(Match match, std::vector<GameRow> rows);

} // namespace qf::game_rows
