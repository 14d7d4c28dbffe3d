#include "riot/riot_client.h"

#include "riot/riot_answer_parsers.h"
#include "riot/riot_urls.h"
#include "text/platforms.h"
#include "text/riot_id.h"

#include <algorithm>
#include <initializer_list>

namespace qf {

namespace {

// Pieces joined by appending (GCC 12 warns falsely about "literal" + std::string).
std::string sentence(std::initializer_list<std::string_view> pieces) {
    std::string out;
    for (const std::string_view piece : pieces)
        out.append(piece);
    return out;
}

template <class T> RiotResult<T> refused(std::string text) {
    return RiotResult<T>{RiotOutcome::Refused, T{}, 400, std::move(text)};
}

// A 2xx answer the reader could not make sense of is the API failing, not the player missing.
template <class T> RiotResult<T> unreadable(const RiotResult<std::string>& answer, std::string_view what) {
    return RiotResult<T>{RiotOutcome::Unavailable, T{}, answer.status,
                         sentence({"The Riot API sent ", what, " this server cannot read."})};
}

template <class T, class Parse>
RiotResult<T> parsed(const RiotResult<std::string>& answer, Parse parse, std::string_view what) {
    if (!answer.ok())
        return answer.failure<T>();
    auto value = parse(answer.value);
    if (!value)
        return unreadable<T>(answer, what);
    return RiotResult<T>{RiotOutcome::Ok, std::move(*value), answer.status, {}};
}

// account-v1 is served from americas, asia and europe only; the sea platforms' accounts are
// found through asia.
std::optional<std::string> accountRegionOf(std::string_view platform) {
    auto region = regionOf(platform);
    if (region && *region == "sea")
        region = "asia";
    return region;
}

std::string unknownPlatform(std::string_view platform) {
    return sentence({"\"", platform.substr(0, 16), "\" is not a Riot platform."});
}

} // namespace

RiotClient::RiotClient(RiotApiConfig config) : m_runner(std::move(config)) {}

std::optional<std::string> RiotClient::regionOfMatch(std::string_view matchId) {
    const size_t underscore = matchId.find('_');
    if (underscore == std::string_view::npos || underscore + 1 == matchId.size())
        return std::nullopt;
    return regionOf(matchId.substr(0, underscore));
}

RiotResult<std::string> RiotClient::fetch(std::string routing, std::string method, std::string path,
                                          RiotPriority priority) const {
    return m_runner.get(RiotCall{std::move(routing), std::move(method), std::move(path), priority});
}

RiotResult<RiotAccountDto> RiotClient::accountByRiotId(std::string_view riotId, std::string_view platform,
                                                       RiotPriority priority) const {
    const auto id = parseRiotId(riotId);
    if (!id)
        return refused<RiotAccountDto>("A Riot ID is a name and a tag: Name#TAG.");
    const auto region = accountRegionOf(platform);
    if (!region)
        return refused<RiotAccountDto>(unknownPlatform(platform));
    auto result = parsed<RiotAccountDto>(
        fetch(*region, "/riot/account/v1/accounts/by-riot-id/{gameName}/{tagLine}", accountByRiotIdPath(*id), priority),
        parseRiotAccount, "an account");
    if (result.outcome == RiotOutcome::NotFound)
        result.text = "The Riot API knows no player named " + id->text() + ".";
    return result;
}

RiotResult<RiotAccountDto> RiotClient::accountByPuuid(std::string_view puuid, std::string_view platform,
                                                      RiotPriority priority) const {
    const auto region = accountRegionOf(platform);
    if (!region)
        return refused<RiotAccountDto>(unknownPlatform(platform));
    return parsed<RiotAccountDto>(fetch(*region, "/riot/account/v1/accounts/by-puuid/{puuid}",
                                        "/riot/account/v1/accounts/by-puuid/" + percentEncodeSegment(puuid), priority),
                                  parseRiotAccount, "an account");
}

RiotResult<SummonerDto> RiotClient::summonerByPuuid(std::string_view puuid, std::string_view platform,
                                                    RiotPriority priority) const {
    const auto host = normalPlatform(platform);
    if (!host)
        return refused<SummonerDto>(unknownPlatform(platform));
    return parsed<SummonerDto>(fetch(*host, "/lol/summoner/v4/summoners/by-puuid/{encryptedPUUID}",
                                     "/lol/summoner/v4/summoners/by-puuid/" + percentEncodeSegment(puuid), priority),
                               parseSummoner, "a summoner");
}

RiotResult<std::vector<LeagueEntryDto>>
RiotClient::leagueEntriesByPuuid(std::string_view puuid, std::string_view platform, RiotPriority priority) const {
    const auto host = normalPlatform(platform);
    if (!host)
        return refused<std::vector<LeagueEntryDto>>(unknownPlatform(platform));
    return parsed<std::vector<LeagueEntryDto>>(fetch(*host, "/lol/league/v4/entries/by-puuid/{encryptedPUUID}",
                                                     "/lol/league/v4/entries/by-puuid/" + percentEncodeSegment(puuid),
                                                     priority),
                                               parseLeagueEntries, "league entries");
}

RiotResult<std::vector<ChampionMasteryDto>> RiotClient::topMasteriesByPuuid(std::string_view puuid,
                                                                            std::string_view platform, int count,
                                                                            RiotPriority priority) const {
    const auto host = normalPlatform(platform);
    if (!host)
        return refused<std::vector<ChampionMasteryDto>>(unknownPlatform(platform));
    count = std::max(count, 1);
    auto result = parsed<std::vector<ChampionMasteryDto>>(
        fetch(*host, "/lol/champion-mastery/v4/champion-masteries/by-puuid/{encryptedPUUID}/top",
              "/lol/champion-mastery/v4/champion-masteries/by-puuid/" + percentEncodeSegment(puuid) +
                  "/top?count=" + std::to_string(count),
              priority),
        parseChampionMasteries, "champion masteries");
    if (result.value.size() > size_t(count))
        result.value.resize(size_t(count));
    return result;
}

RiotResult<std::vector<std::string>> RiotClient::matchIdsByPuuid(std::string_view puuid, std::string_view platform,
                                                                 int start, int count, RiotPriority priority) const {
    const auto region = regionOf(platform);
    if (!region)
        return refused<std::vector<std::string>>(unknownPlatform(platform));
    start = std::max(start, 0);
    count = std::clamp(count, 0, 100);
    return parsed<std::vector<std::string>>(fetch(*region, "/lol/match/v5/matches/by-puuid/{puuid}/ids",
                                                  "/lol/match/v5/matches/by-puuid/" + percentEncodeSegment(puuid) +
                                                      "/ids?start=" + std::to_string(start) +
                                                      "&count=" + std::to_string(count),
                                                  priority),
                                            parseMatchIds, "a list of match ids");
}

RiotResult<std::string> RiotClient::matchJson(std::string_view matchId, RiotPriority priority) const {
    const auto region = regionOfMatch(matchId);
    if (!region)
        return refused<std::string>(sentence({"\"", matchId.substr(0, 40), "\" is not a Riot match id."}));
    return fetch(*region, "/lol/match/v5/matches/{matchId}", "/lol/match/v5/matches/" + percentEncodeSegment(matchId),
                 priority);
}

RiotResult<std::string> RiotClient::timelineJson(std::string_view matchId, RiotPriority priority) const {
    const auto region = regionOfMatch(matchId);
    if (!region)
        return refused<std::string>(sentence({"\"", matchId.substr(0, 40), "\" is not a Riot match id."}));
    auto result = fetch(*region, "/lol/match/v5/matches/{matchId}/timeline",
                        "/lol/match/v5/matches/" + percentEncodeSegment(matchId) + "/timeline", priority);
    if (result.outcome == RiotOutcome::NotFound)
        result.text = sentence({"The Riot API has no timeline for ", matchId, "."});
    return result;
}

RiotResult<std::string> RiotClient::newestDataVersion() const {
    return parsed<std::string>(
        m_runner.getPublic(dataDragonVersionsUrl(m_runner.config())),
        [](const std::string& body) { return qf::newestDataVersion(body); }, "a versions list");
}

} // namespace qf
