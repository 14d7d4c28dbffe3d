// The part of reading a game that does not depend on where it came from.

#include "archive/game_rows.h"

#include "text/riot_id.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace qf::game_rows {

namespace {

// A game of more than this many "seconds" (5.5 hours) was given in milliseconds.
constexpr int64_t longestGameSeconds = 20'000;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

int64_t count(json::Element object, std::string_view key) {
    return std::clamp<int64_t>(json::integer(object, key, 0), 0, maxCount);
}

std::string upperAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'a' && c <= 'z')
            c = char(c - 'a' + 'A');
    return out;
}

std::string lowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return out;
}

std::vector<json::Element> arrayOf(json::Element object, std::string_view key) {
    std::vector<json::Element> elements;
    simdjson::dom::array array;
    if (const auto value = json::member(object, key); value && value->get(array) == simdjson::SUCCESS)
        elements.assign(array.begin(), array.end());
    return elements;
}

bool plainPlatform(std::string_view platform) {
    return !platform.empty() && platform.size() <= 16 && std::all_of(platform.begin(), platform.end(), [](char c) {
        return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
}

std::optional<int64_t> seasonOf(std::string_view version) {
    int64_t major = 0;
    size_t i = 0;
    for (; i < version.size() && isDigit(version[i]) && i < 6; ++i)
        major = major * 10 + (version[i] - '0');
    if (i == 0 || (i < version.size() && version[i] != '.'))
        return std::nullopt;
    return major;
}

int64_t durationSeconds(int64_t raw) {
    raw = std::clamp<int64_t>(raw, 0, maxCount);
    return raw > longestGameSeconds ? raw / 1000 : raw;
}

bool positionless(std::string_view upperMode, int64_t queueId, int64_t mapId) {
    return upperMode == "ARAM" || upperMode == "CHERRY" || upperMode == "KIWI" || queueId == 1700 || queueId == 1710 ||
           mapId == 12 || mapId == 30;
}

std::optional<std::string> positionKeyword(std::string_view given) {
    const std::string upper = upperAscii(given);
    if (upper == "TOP" || upper == "JUNGLE" || upper == "MIDDLE" || upper == "BOTTOM" || upper == "UTILITY")
        return upper;
    if (upper == "MID")
        return "MIDDLE";
    if (upper == "BOT")
        return "BOTTOM";
    if (upper == "SUPPORT")
        return "UTILITY";
    return std::nullopt;
}

std::optional<std::string> positionOfLane(std::string_view lane, std::string_view role) {
    const std::string upperLane = upperAscii(lane);
    const std::string upperRole = upperAscii(role);
    if (upperLane == "TOP")
        return "TOP";
    if (upperLane == "JUNGLE")
        return "JUNGLE";
    if (upperLane == "MIDDLE" || upperLane == "MID")
        return "MIDDLE";
    // The client says DUO_SUPPORT, match-v5 says SUPPORT.
    if (upperLane == "BOTTOM" || upperLane == "BOT")
        return upperRole == "DUO_SUPPORT" || upperRole == "SUPPORT" ? "UTILITY" : "BOTTOM";
    return std::nullopt;
}

bool realPuuid(std::string_view puuid) {
    return !puuid.empty() && puuid.size() <= 128 && puuid != "BOT" &&
           std::any_of(puuid.begin(), puuid.end(), [](char c) { return c != '0' && c != '-'; });
}

std::optional<std::string> nonEmpty(std::optional<std::string> text) {
    if (text && text->empty())
        return std::nullopt;
    return text;
}

bool teamWon(json::Element team) {
    const std::optional<json::Element> win = json::member(team, "win");
    if (!win)
        return false;
    if (const auto flag = json::optBoolean(*win))
        return *flag;
    const auto text = json::optText(*win);
    return text && upperAscii(*text) == "WIN";
}

std::vector<int64_t> itemSlots(json::Element stats) {
    static constexpr std::array<std::string_view, 7> slots{"item0", "item1", "item2", "item3",
                                                           "item4", "item5", "item6"};
    std::vector<int64_t> items;
    if (std::any_of(slots.begin(), slots.end(), [&](std::string_view s) { return json::member(stats, s).has_value(); }))
        for (const std::string_view slot : slots)
            items.push_back(count(stats, slot));
    return items;
}

std::optional<Player> seenPlayer(const Participant& row, std::string homePlatform, int64_t seenAt) {
    if (!realPuuid(row.puuid))
        return std::nullopt;
    Player seen;
    seen.puuid = row.puuid;
    seen.gameName = row.riotIdGameName.value_or("");
    seen.tagLine = row.riotIdTagLine.value_or("");
    seen.nameKey = foldRiotIdPart(seen.gameName);
    seen.tagKey = foldRiotIdPart(seen.tagLine);
    seen.platform = std::move(homePlatform);
    seen.profileIconId = row.profileIconId;
    seen.lastSeen = seenAt;
    return seen;
}

std::optional<ClientGame> finishGame(Match match, std::vector<GameRow> rows) {
    ClientGame out;
    out.game.match = std::move(match);
    const int64_t duration = out.game.match.gameDuration;
    // A list entry holds only the player whose history it is: team figures cannot be known.
    out.complete = rows.size() > 1;
    std::map<int64_t, std::pair<int64_t, int64_t>> teamTotals; // team → (damage, kills)
    for (const GameRow& row : rows) {
        auto& [damage, kills] = teamTotals[row.team];
        damage += row.participant.damageToChampions;
        kills += row.participant.kills;
    }

    std::set<std::string> seen;
    for (GameRow& row : rows) {
        Participant& p = row.participant;
        if (!row.player || !seen.insert(p.puuid).second)
            continue;
        if (out.complete) {
            const auto [damage, kills] = teamTotals[row.team];
            if (damage > 0)
                p.teamDamagePct = double(p.damageToChampions) / double(damage);
            p.killParticipation = kills > 0 ? double(p.kills + p.assists) / double(kills) : 0.0;
        }
        if (duration > 0)
            p.csPerMin = double(p.totalCs) / (double(duration) / 60.0);
        out.players.push_back(std::move(*row.player));
        out.game.participants.push_back(std::move(p));
    }
    if (out.game.participants.empty())
        return std::nullopt;
    return out;
}

void readFigures(json::Element stats, Participant& p) {
    p.champLevel = json::optInteger(stats, "champLevel");
    p.kills = count(stats, "kills");
    p.deaths = count(stats, "deaths");
    p.assists = count(stats, "assists");
    p.totalCs = count(stats, "totalMinionsKilled") + count(stats, "neutralMinionsKilled");
    p.goldEarned = count(stats, "goldEarned");
    p.visionScore = count(stats, "visionScore");
    p.damageToChampions = count(stats, "totalDamageDealtToChampions");
    p.items = itemSlots(stats);
}

} // namespace qf::game_rows
