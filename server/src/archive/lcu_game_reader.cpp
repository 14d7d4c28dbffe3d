// The League client's games (match-v4 shape) into the server's rows.

#include "archive/lcu_game_reader.h"

#include "text/platforms.h"
#include "text/riot_id.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace qf {

namespace {

using json::Element;

// Counts above this are not from a game; clamping keeps every sum of them far from overflow.
constexpr int64_t maxCount = 1'000'000'000'000;
// A game of more than this many "seconds" (5.5 hours) was given in milliseconds, as some of the
// client's and the web API's older answers do.
constexpr int64_t longestGameSeconds = 20'000;

int64_t count(Element object, std::string_view key) {
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

// The elements of an array member; none when it is missing or not an array.
std::vector<Element> arrayOf(Element object, std::string_view key) {
    std::vector<Element> elements;
    simdjson::dom::array array;
    if (const auto value = json::member(object, key); value && value->get(array) == simdjson::SUCCESS)
        elements.assign(array.begin(), array.end());
    return elements;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Platform ids are short runs of letters and digits ("EUW1", "KR"); the id becomes part of the
// match id, so nothing else is let through.
bool plainPlatform(std::string_view platform) {
    return !platform.empty() && platform.size() <= 16 && std::all_of(platform.begin(), platform.end(), [](char c) {
        return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
}

// "14.3.556.123" → 14.
std::optional<int64_t> seasonOf(std::string_view version) {
    int64_t major = 0;
    size_t i = 0;
    for (; i < version.size() && isDigit(version[i]) && i < 6; ++i)
        major = major * 10 + (version[i] - '0');
    if (i == 0 || (i < version.size() && version[i] != '.'))
        return std::nullopt;
    return major;
}

// Days since 1970-01-01 of a proleptic Gregorian date (Howard Hinnant's days_from_civil).
int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

// "2021-01-03T02:14:54.943Z", with a zone offset or none (read as UTC): Unix milliseconds.
std::optional<int64_t> isoMillis(std::string_view text) {
    size_t at = 0;
    auto number = [&](size_t digits) -> std::optional<int64_t> {
        if (at + digits > text.size())
            return std::nullopt;
        int64_t value = 0;
        for (size_t i = 0; i < digits; ++i) {
            if (!isDigit(text[at + i]))
                return std::nullopt;
            value = value * 10 + (text[at + i] - '0');
        }
        at += digits;
        return value;
    };
    auto expect = [&](char c) {
        if (at < text.size() && text[at] == c) {
            ++at;
            return true;
        }
        return false;
    };
    const auto year = number(4);
    if (!year || !expect('-'))
        return std::nullopt;
    const auto month = number(2);
    if (!month || !expect('-'))
        return std::nullopt;
    const auto day = number(2);
    if (!day || !(expect('T') || expect(' ')))
        return std::nullopt;
    const auto hour = number(2);
    if (!hour || !expect(':'))
        return std::nullopt;
    const auto minute = number(2);
    if (!minute || !expect(':'))
        return std::nullopt;
    const auto second = number(2);
    if (!second || *month < 1 || *month > 12 || *day < 1 || *day > 31 || *hour > 23 || *minute > 59 || *second > 60)
        return std::nullopt;
    int64_t millis = 0;
    if (expect('.')) {
        int64_t scale = 100;
        const size_t start = at;
        for (; at < text.size() && isDigit(text[at]); ++at, scale /= 10)
            millis += (text[at] - '0') * scale;
        if (at == start)
            return std::nullopt;
    }
    int64_t offsetMinutes = 0;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        const int64_t sign = text[at] == '-' ? -1 : 1;
        ++at;
        const auto hours = number(2);
        expect(':');
        const auto minutes = number(2);
        if (!hours || !minutes)
            return std::nullopt;
        offsetMinutes = sign * (*hours * 60 + *minutes);
    } else {
        expect('Z');
    }
    if (at != text.size())
        return std::nullopt;
    const int64_t seconds = daysFromCivil(*year, *month, *day) * 86400 + *hour * 3600 + *minute * 60 + *second;
    return (seconds - offsetMinutes * 60) * 1000 + millis;
}

int64_t creationMillis(Element game) {
    if (const auto ms = json::optInteger(game, "gameCreation"); ms && *ms > 0)
        return *ms;
    if (const auto date = json::optText(game, "gameCreationDate"))
        if (const auto ms = isoMillis(*date); ms && *ms > 0)
            return *ms;
    return 0;
}

int64_t durationSeconds(Element game) {
    const int64_t raw = std::clamp<int64_t>(json::integer(game, "gameDuration", 0), 0, maxCount);
    return raw > longestGameSeconds ? raw / 1000 : raw;
}

// Howling Abyss and Arena games, and the modes played there, have no lanes to speak of.
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

// The position the client names, else the one its lane and role imply.
std::optional<std::string> positionOf(Element participant) {
    for (const std::string_view key : {"teamPosition", "selectedPosition"})
        if (const auto given = json::optText(participant, key))
            if (auto position = positionKeyword(*given))
                return position;
    const std::optional<Element> timeline = json::member(participant, "timeline");
    if (!timeline)
        return std::nullopt;
    const std::string lane = upperAscii(json::text(*timeline, "lane"));
    const std::string role = upperAscii(json::text(*timeline, "role"));
    if (lane == "TOP")
        return "TOP";
    if (lane == "JUNGLE")
        return "JUNGLE";
    if (lane == "MIDDLE" || lane == "MID")
        return "MIDDLE";
    if (lane == "BOTTOM" || lane == "BOT")
        return role == "DUO_SUPPORT" ? "UTILITY" : "BOTTOM";
    return std::nullopt;
}

// Bots carry an empty puuid or the nil UUID; neither names a player.
bool realPuuid(std::string_view puuid) {
    return !puuid.empty() && puuid.size() <= 128 &&
           std::any_of(puuid.begin(), puuid.end(), [](char c) { return c != '0' && c != '-'; });
}

std::optional<std::string> nonEmpty(std::optional<std::string> text) {
    if (text && text->empty())
        return std::nullopt;
    return text;
}

bool winText(Element team) {
    const std::optional<Element> win = json::member(team, "win");
    if (!win)
        return false;
    if (const auto flag = json::optBoolean(*win))
        return *flag;
    const auto text = json::optText(*win);
    return text && upperAscii(*text) == "WIN";
}

// A participant's identity: by participantId, or by position in the list when the ids are
// missing on both sides.
class Identities {
public:
    explicit Identities(Element game) {
        for (const Element identity : arrayOf(game, "participantIdentities")) {
            const std::optional<Element> player = json::member(identity, "player");
            m_byIndex.push_back(player);
            if (const auto id = json::optInteger(identity, "participantId"); id && player)
                m_byId.emplace(*id, *player);
        }
    }

    [[nodiscard]] std::optional<Element> of(Element participant, size_t index) const {
        if (const auto id = json::optInteger(participant, "participantId")) {
            const auto it = m_byId.find(*id);
            return it == m_byId.end() ? std::nullopt : std::optional<Element>(it->second);
        }
        return m_byId.empty() && index < m_byIndex.size() ? m_byIndex[index] : std::nullopt;
    }

private:
    std::map<int64_t, Element> m_byId;
    std::vector<std::optional<Element>> m_byIndex;
};

struct Row {
    Participant participant;
    int64_t team = 0; // the team the share and participation are computed over
    std::optional<Player> player;
};

} // namespace

std::optional<ClientGame> readClientGame(json::Element game, const ChampionCatalog& champions) {
    if (!json::isObject(game))
        return std::nullopt;
    const std::optional<int64_t> gameId = json::optInteger(game, "gameId");
    const std::string platform = upperAscii(json::text(game, "platformId"));
    if (!gameId || *gameId <= 0 || !plainPlatform(platform))
        return std::nullopt;

    ClientGame out;
    Match& match = out.game.match;
    match.matchId = platform + "_" + std::to_string(*gameId);
    match.platform = platform;
    match.queueId = json::integer(game, "queueId", 0);
    match.isRanked = match.queueId == 420 || match.queueId == 440;
    match.gameCreation = creationMillis(game);
    match.gameDuration = durationSeconds(game);
    match.gameVersion = json::text(game, "gameVersion");
    match.gameMode = json::text(game, "gameMode");
    match.season = seasonOf(match.gameVersion);
    const bool lanes = !positionless(upperAscii(match.gameMode), match.queueId, json::integer(game, "mapId", 0));

    std::map<int64_t, bool> teamWon;
    for (const Element team : arrayOf(game, "teams"))
        if (const auto id = json::optInteger(team, "teamId"))
            teamWon.emplace(*id, winText(team));

    const Identities identities(game);
    std::vector<Row> rows;
    size_t index = 0;
    for (const Element element : arrayOf(game, "participants")) {
        const size_t at = index++;
        if (!json::isObject(element))
            continue;
        const Element stats = json::member(element, "stats").value_or(element);
        const std::optional<Element> player = identities.of(element, at);

        Row row;
        Participant& p = row.participant;
        p.teamId = json::integer(element, "teamId", 0);
        // Arena's real teams are its pairs; the client names them by sub-team.
        const int64_t subteam = json::integer(stats, "playerSubteamId", json::integer(element, "playerSubteamId", 0));
        row.team = subteam > 0 ? subteam : p.teamId;
        if (subteam > 0)
            p.teamId = subteam;
        p.championId = json::integer(element, "championId", 0);
        p.championName = champions.nameOf(p.championId);
        if (p.championName.empty())
            p.championName = json::text(element, "championName");
        if (lanes)
            p.teamPosition = positionOf(element);
        p.champLevel = json::optInteger(stats, "champLevel");
        p.kills = count(stats, "kills");
        p.deaths = count(stats, "deaths");
        p.assists = count(stats, "assists");
        p.totalCs = count(stats, "totalMinionsKilled") + count(stats, "neutralMinionsKilled");
        p.goldEarned = count(stats, "goldEarned");
        p.visionScore = count(stats, "visionScore");
        p.damageToChampions = count(stats, "totalDamageDealtToChampions");
        static constexpr std::array<std::string_view, 7> slots{"item0", "item1", "item2", "item3",
                                                               "item4", "item5", "item6"};
        if (std::any_of(slots.begin(), slots.end(),
                        [&](std::string_view s) { return json::member(stats, s).has_value(); }))
            for (const std::string_view slot : slots)
                p.items.push_back(count(stats, slot));
        if (const auto win = json::member(stats, "win"); win && json::optBoolean(*win))
            p.win = *json::optBoolean(*win);
        else if (const auto it = teamWon.find(json::integer(element, "teamId", 0)); it != teamWon.end())
            p.win = it->second;

        if (player) {
            p.puuid = json::text(*player, "puuid");
            p.riotIdGameName = nonEmpty(json::optText(*player, "gameName"));
            if (!p.riotIdGameName) // before Riot IDs, the summoner name was the name shown
                p.riotIdGameName = nonEmpty(json::optText(*player, "summonerName"));
            p.riotIdTagLine = nonEmpty(json::optText(*player, "tagLine"));
            p.profileIconId = json::optInteger(*player, "profileIcon");
            if (!p.profileIconId)
                p.profileIconId = json::optInteger(*player, "profileIconId");
        }
        if (realPuuid(p.puuid)) {
            Player seen;
            seen.puuid = p.puuid;
            seen.gameName = p.riotIdGameName.value_or("");
            seen.tagLine = p.riotIdTagLine.value_or("");
            seen.nameKey = foldRiotIdPart(seen.gameName);
            seen.tagKey = foldRiotIdPart(seen.tagLine);
            // Where the account plays now; accounts older than the numbered platforms say "NA".
            std::optional<std::string> home = normalPlatform(json::text(*player, "currentPlatformId"));
            if (!home)
                home = normalPlatform(json::text(*player, "platformId"));
            seen.platform = home ? *home : lowerAscii(platform);
            seen.profileIconId = p.profileIconId;
            seen.lastSeen = match.gameCreation;
            row.player = std::move(seen);
        }
        rows.push_back(std::move(row));
    }

    // A list entry holds only the player whose history it is: team figures cannot be known.
    out.complete = rows.size() > 1;
    std::map<int64_t, std::pair<int64_t, int64_t>> teamTotals; // team → (damage, kills)
    for (const Row& row : rows) {
        auto& [damage, kills] = teamTotals[row.team];
        damage += row.participant.damageToChampions;
        kills += row.participant.kills;
    }

    std::set<std::string> seen;
    for (Row& row : rows) {
        Participant& p = row.participant;
        if (!row.player || !seen.insert(p.puuid).second)
            continue;
        if (out.complete) {
            const auto [damage, kills] = teamTotals[row.team];
            if (damage > 0)
                p.teamDamagePct = double(p.damageToChampions) / double(damage);
            p.killParticipation = kills > 0 ? double(p.kills + p.assists) / double(kills) : 0.0;
        }
        if (match.gameDuration > 0)
            p.csPerMin = double(p.totalCs) / (double(match.gameDuration) / 60.0);
        out.players.push_back(std::move(*row.player));
        out.game.participants.push_back(std::move(p));
    }
    if (out.game.participants.empty())
        return std::nullopt;
    return out;
}

} // namespace qf
