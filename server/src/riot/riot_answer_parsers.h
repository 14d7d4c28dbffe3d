#pragma once

#include "riot/riot_dtos.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Readers of the Riot API's answers and the Data Dragon versions list. Each returns nullopt when
// the text is not JSON or not the expected shape at the top (an object, an array); a member
// missing or of another type inside reads as its default, as real answers drift over the years.

namespace qf {

[[nodiscard]] std::optional<RiotAccountDto> parseRiotAccount(std::string_view json);
[[nodiscard]] std::optional<SummonerDto> parseSummoner(std::string_view json);
[[nodiscard]] std::optional<std::vector<LeagueEntryDto>> parseLeagueEntries(std::string_view json);
// Sorted by points, highest first (Riot's order for the "top" call, kept whatever it sends).
[[nodiscard]] std::optional<std::vector<ChampionMasteryDto>> parseChampionMasteries(std::string_view json);
// match-v5 ids ("EUW1_7684569678"); entries that are not texts are skipped.
[[nodiscard]] std::optional<std::vector<std::string>> parseMatchIds(std::string_view json);

// The highest release in Data Dragon's versions list ("16.11.1"): entries that are not dotted
// numbers ("lolpatch_4.11") are skipped, the rest compared number by number (so "0.151.2", a
// relic at the list's tail, never wins over "11.2.1"). nullopt when there is none.
[[nodiscard]] std::optional<std::string> newestDataVersion(std::string_view json);

// Riot's error body {"status": {"message": …, "status_code": …}}: the message, or empty.
[[nodiscard]] std::string riotErrorMessage(std::string_view json);

} // namespace qf
