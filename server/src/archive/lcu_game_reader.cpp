// The League client's games (match-v4 shape) into the server's rows.

#include "archive/lcu_game_reader.h"

#include "archive/game_rows.h"

#include "text/platforms.h"

#include <algorithm>
#include <map>

namespace qf {

namespace {

using json::Element;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
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

int64_t gameSeconds(Element game) {
    return game_rows::durationSeconds(json::integer(game, "gameDuration", 0));
}

// The position the client names, else the one its lane and role imply.
std::optional<std::string> positionOf(Element participant) {
    for (const std::string_view key : {"teamPosition", "selectedPosition"})
        if (const auto given = json::optText(participant, key))
            if (auto position = game_rows::positionKeyword(*given))
                return position;
    const std::optional<Element> timeline = json::member(participant, "timeline");
    if (!timeline)
        return std::nullopt;
    return game_rows::positionOfLane(json::text(*timeline, "lane"), json::text(*timeline, "role"));
}

// A participant's identity: by participantId, or by position in the list when the ids are
// missing on both sides.
class Identities {
public:
    explicit Identities(Element game) {
        for (const Element identity : game_rows::arrayOf(game, "participantIdentities")) {
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

} // namespace

std::optional<ClientGame> readClientGame(json::Element game, const ChampionCatalog& champions) {
    using namespace game_rows;
    if (!json::isObject(game))
        return std::nullopt;
    const std::optional<int64_t> gameId = json::optInteger(game, "gameId");
    const std::string platform = upperAscii(json::text(game, "platformId"));
    if (!gameId || *gameId <= 0 || !plainPlatform(platform))
        return std::nullopt;

    Match match;
    match.matchId = platform + "_" + std::to_string(*gameId);
    match.platform = platform;
    match.queueId = json::integer(game, "queueId", 0);
    match.isRanked = match.queueId == 420 || match.queueId == 440;
    match.gameCreation = creationMillis(game);
    match.gameDuration = gameSeconds(game);
    match.gameVersion = json::text(game, "gameVersion");
    match.gameMode = json::text(game, "gameMode");
    match.season = seasonOf(match.gameVersion);
    const bool lanes = !positionless(upperAscii(match.gameMode), match.queueId, json::integer(game, "mapId", 0));

    std::map<int64_t, bool> wonBy;
    for (const Element team : arrayOf(game, "teams"))
        if (const auto id = json::optInteger(team, "teamId"))
            wonBy.emplace(*id, teamWon(team));

    const Identities identities(game);
    std::vector<GameRow> rows;
    size_t index = 0;
    for (const Element element : arrayOf(game, "participants")) {
        const size_t at = index++;
        if (!json::isObject(element))
            continue;
        const Element stats = json::member(element, "stats").value_or(element);
        const std::optional<Element> player = identities.of(element, at);

        GameRow row;
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
        game_rows::readFigures(stats, p);
        if (const auto win = json::member(stats, "win"); win && json::optBoolean(*win))
            p.win = *json::optBoolean(*win);
        else if (const auto it = wonBy.find(json::integer(element, "teamId", 0)); it != wonBy.end())
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
            // Where the account plays now; accounts older than the numbered platforms say "NA".
            std::optional<std::string> home = normalPlatform(json::text(*player, "currentPlatformId"));
            if (!home)
                home = normalPlatform(json::text(*player, "platformId"));
            row.player = seenPlayer(p, home ? *home : lowerAscii(platform), match.gameCreation);
        }
        rows.push_back(std::move(row));
    }
    return finishGame(std::move(match), std::move(rows));
}

} // namespace qf
