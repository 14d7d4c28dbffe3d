#pragma once

#include "riot/riot_dtos.h"
#include "riot/riot_request_runner.h"
#include "riot/riot_result.h"

#include <string>
#include <string_view>
#include <vector>

// The Riot API calls the server makes, each answering a RiotResult: the parsed answer, Riot's
// "not found", the API unreachable or failing, or another refusal, each with a sentence to show.
// Calls block (rate limits can make them wait); they are safe from any thread.
//
// Calls on a player take the platform of their account ("euw1"): summoner, league and mastery
// go to the platform's host, account and match calls to its region's ("europe"). Match and
// timeline calls route by the platform their id starts with ("EUW1_7684569678").

namespace qf {

class RiotClient {
public:
    explicit RiotClient(RiotApiConfig config);

    // account-v1 by Riot ID, "Name#TAG" split at the last '#'. A text that is no Riot ID is
    // Refused (400) without asking Riot; an unknown one is NotFound with a text naming it.
    [[nodiscard]] RiotResult<RiotAccountDto> accountByRiotId(std::string_view riotId, std::string_view platform,
                                                             RiotPriority priority = RiotPriority::Foreground) const;
    [[nodiscard]] RiotResult<RiotAccountDto> accountByPuuid(std::string_view puuid, std::string_view platform,
                                                            RiotPriority priority = RiotPriority::Foreground) const;
    [[nodiscard]] RiotResult<SummonerDto> summonerByPuuid(std::string_view puuid, std::string_view platform,
                                                          RiotPriority priority = RiotPriority::Foreground) const;
    [[nodiscard]] RiotResult<std::vector<LeagueEntryDto>>
    leagueEntriesByPuuid(std::string_view puuid, std::string_view platform,
                         RiotPriority priority = RiotPriority::Foreground) const;
    // The `count` champions with the most points, highest first.
    [[nodiscard]] RiotResult<std::vector<ChampionMasteryDto>>
    topMasteriesByPuuid(std::string_view puuid, std::string_view platform, int count,
                        RiotPriority priority = RiotPriority::Foreground) const;
    // Newest first; `count` is at most 100 (Riot's page), `start` counts from the newest game.
    [[nodiscard]] RiotResult<std::vector<std::string>>
    matchIdsByPuuid(std::string_view puuid, std::string_view platform, int start, int count,
                    RiotPriority priority = RiotPriority::Background) const;
    // The match-v5 game and its timeline as Riot's JSON text, unread.
    [[nodiscard]] RiotResult<std::string> matchJson(std::string_view matchId,
                                                    RiotPriority priority = RiotPriority::Background) const;
    [[nodiscard]] RiotResult<std::string> timelineJson(std::string_view matchId,
                                                       RiotPriority priority = RiotPriority::Foreground) const;

    // The newest version in Data Dragon's versions list ("16.11.1").
    [[nodiscard]] RiotResult<std::string> newestDataVersion() const;

    // The regional routing value of a match id's platform ("EUW1_1" → "europe"), or nullopt.
    [[nodiscard]] static std::optional<std::string> regionOfMatch(std::string_view matchId);

private:
    [[nodiscard]] RiotResult<std::string> fetch(std::string routing, std::string method, std::string path,
                                                RiotPriority priority) const;

    RiotRequestRunner m_runner;
};

} // namespace qf
