// match-v5 games into the server's rows, through the same finishing steps as the client's.

#include "archive/riot_match_reader.h"

#include "archive/game_rows.h"

#include "text/platforms.h"

#include <map>

namespace qf {

namespace {

using json::Element;

struct MatchKey {
    std::string platform; // upper case
    int64_t gameId = 0;
};

// "EUW1_7684569678" → EUW1 and 7684569678.
std::optional<MatchKey> parseMatchId(std::string_view matchId) {
    const size_t cut = matchId.rfind('_');
    if (cut == std::string_view::npos || cut + 1 >= matchId.size() || matchId.size() - cut - 1 > 18)
        return std::nullopt;
    int64_t gameId = 0;
    for (const char c : matchId.substr(cut + 1)) {
        if (c < '0' || c > '9')
            return std::nullopt;
        gameId = gameId * 10 + (c - '0');
    }
    MatchKey key{game_rows::upperAscii(matchId.substr(0, cut)), gameId};
    if (gameId <= 0 || !game_rows::plainPlatform(key.platform))
        return std::nullopt;
    return key;
}

// The game's own numbers first, as the client's copy names the game by them; the match id of
// the metadata when they are missing.
std::optional<MatchKey> matchKey(Element match, Element info) {
    const std::optional<int64_t> gameId = json::optInteger(info, "gameId");
    const std::string platform = game_rows::upperAscii(json::text(info, "platformId"));
    if (gameId && *gameId > 0 && game_rows::plainPlatform(platform))
        return MatchKey{platform, *gameId};
    if (const auto metadata = json::member(match, "metadata"))
        if (const auto id = json::optText(*metadata, "matchId"))
            return parseMatchId(*id);
    return std::nullopt;
}

int64_t gameSeconds(Element info) {
    if (json::member(info, "gameDuration"))
        return game_rows::durationSeconds(json::integer(info, "gameDuration", 0));
    const int64_t start = json::integer(info, "gameStartTimestamp", 0);
    const int64_t end = json::integer(info, "gameEndTimestamp", 0);
    return start > 0 && end > start ? game_rows::durationSeconds(end - start) : 0;
}

// The position Riot settled on, else its guess from the player's movements, else lane and role.
std::optional<std::string> positionOf(Element participant) {
    for (const std::string_view key : {"teamPosition", "individualPosition"})
        if (const auto given = json::optText(participant, key))
            if (auto position = game_rows::positionKeyword(*given))
                return position;
    return game_rows::positionOfLane(json::text(participant, "lane"), json::text(participant, "role"));
}

} // namespace

std::optional<std::string> riotParticipantName(json::Element participant) {
    // riotIdName was the game name's member in 2022, before it became riotIdGameName.
    for (const std::string_view key : {"riotIdGameName", "riotIdName", "summonerName"})
        if (auto name = game_rows::nonEmpty(json::optText(participant, key)))
            return name;
    return std::nullopt;
}

std::optional<ClientGame> readRiotMatch(json::Element match, const ChampionCatalog& champions) {
    using namespace game_rows;
    const std::optional<Element> info = json::member(match, "info");
    if (!info || !json::isObject(*info))
        return std::nullopt;
    const std::optional<MatchKey> key = matchKey(match, *info);
    if (!key)
        return std::nullopt;

    Match game;
    game.matchId = key->platform + "_" + std::to_string(key->gameId);
    game.platform = key->platform;
    game.queueId = json::integer(*info, "queueId", 0);
    game.isRanked = game.queueId == 420 || game.queueId == 440;
    game.gameCreation = std::max<int64_t>(0, json::integer(*info, "gameCreation", 0));
    game.gameDuration = gameSeconds(*info);
    game.gameVersion = json::text(*info, "gameVersion");
    game.gameMode = json::text(*info, "gameMode");
    game.season = seasonOf(game.gameVersion);
    const bool lanes = !positionless(upperAscii(game.gameMode), game.queueId, json::integer(*info, "mapId", 0));
    const std::string home = normalPlatform(key->platform).value_or(lowerAscii(key->platform));

    std::map<int64_t, bool> wonBy;
    for (const Element team : arrayOf(*info, "teams"))
        if (const auto id = json::optInteger(team, "teamId"))
            wonBy.emplace(*id, teamWon(team));

    std::vector<GameRow> rows;
    for (const Element element : arrayOf(*info, "participants")) {
        if (!json::isObject(element))
            continue;
        GameRow row;
        Participant& p = row.participant;
        p.teamId = json::integer(element, "teamId", 0);
        // Arena's real teams are its pairs, named by sub-team; other games say 0.
        const int64_t subteam = json::integer(element, "playerSubteamId", 0);
        row.team = subteam > 0 ? subteam : p.teamId;
        if (subteam > 0)
            p.teamId = subteam;
        p.championId = json::integer(element, "championId", 0);
        // The champion list's name, not the game's: it writes "FiddleSticks" for "Fiddlesticks".
        p.championName = champions.nameOf(p.championId);
        if (p.championName.empty())
            p.championName = json::text(element, "championName");
        if (lanes)
            p.teamPosition = positionOf(element);
        game_rows::readFigures(element, p);
        if (const auto win = json::member(element, "win"); win && json::optBoolean(*win))
            p.win = *json::optBoolean(*win);
        else if (const auto it = wonBy.find(json::integer(element, "teamId", 0)); it != wonBy.end())
            p.win = it->second;

        p.puuid = json::text(element, "puuid");
        p.riotIdGameName = riotParticipantName(element);
        p.riotIdTagLine = nonEmpty(json::optText(element, "riotIdTagline"));
        if (!p.riotIdTagLine)
            p.riotIdTagLine = nonEmpty(json::optText(element, "riotIdTagLine"));
        p.profileIconId = json::optInteger(element, "profileIcon");
        // The answer does not say where each account lives; the game's platform is the best
        // guess, and the one the client's copy gives for a player who has not moved.
        row.player = seenPlayer(p, home, game.gameCreation);
        rows.push_back(std::move(row));
    }
    return finishGame(std::move(game), std::move(rows));
}

} // namespace qf
