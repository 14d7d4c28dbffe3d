#pragma once

#include <cstdint>
#include <optional>
#include <string>

// What the server reads of the Riot API's account, summoner, league and mastery answers. Only
// the members the server uses; the rest of each answer is ignored, so added or dropped members
// (summoner-v4 lost id, accountId and name in 2025) change nothing.

namespace qf {

struct RiotAccountDto {
    std::string puuid; // encrypted for the server's key: 78 characters
    std::string gameName;
    std::string tagLine;
};

struct SummonerDto {
    std::string puuid;
    int64_t profileIconId = 0;
    int64_t summonerLevel = 0;
    int64_t revisionDate = 0; // ms since the epoch
};

struct LeagueEntryDto {
    std::string queueType; // "RANKED_SOLO_5x5", "RANKED_FLEX_SR", "CHERRY", …
    // Absent for queues ranked without tiers (Arena's "CHERRY" entries have neither).
    std::optional<std::string> tier;     // "GOLD"
    std::optional<std::string> division; // Riot's "rank": "II"
    int64_t leaguePoints = 0;
    int64_t wins = 0;
    int64_t losses = 0;
    bool hotStreak = false;
    bool veteran = false;
    bool freshBlood = false;
    bool inactive = false;
};

struct ChampionMasteryDto {
    int64_t championId = 0;
    int64_t championLevel = 0; // no longer capped at 7: 182 is seen
    int64_t championPoints = 0;
    int64_t lastPlayTime = 0; // ms since the epoch
};

} // namespace qf
