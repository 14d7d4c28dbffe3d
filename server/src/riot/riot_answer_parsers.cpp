#include "riot/riot_answer_parsers.h"

#include "json/json_input.h"

#include <algorithm>
#include <charconv>
#include <exception>

namespace qf {

namespace {

// The items of an array element (checked to be one), held by value: the array must outlive the
// simdjson_result it comes in.
simdjson::dom::array arrayOf(json::Element element) {
    simdjson::dom::array items;
    if (element.get_array().get(items) != simdjson::SUCCESS)
        return {};
    return items;
}

// Parses and hands the root to read(); nullopt when the text does not parse.
template <class Read> auto withRoot(std::string_view json, Read read) -> decltype(read(json::Element())) {
    try {
        const json::Document document(json);
        return read(document.root());
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

template <class T, class ReadOne> std::optional<std::vector<T>> readArray(std::string_view json, ReadOne readOne) {
    return withRoot(json, [&](json::Element root) -> std::optional<std::vector<T>> {
        if (!json::isArray(root))
            return std::nullopt;
        std::vector<T> out;
        for (const json::Element item : arrayOf(root))
            if (json::isObject(item))
                out.push_back(readOne(item));
        return out;
    });
}

// "16.11.1" → {16, 11, 1}; nullopt unless every piece is a number.
std::optional<std::vector<uint64_t>> versionNumbers(std::string_view text) {
    std::vector<uint64_t> numbers;
    while (true) {
        const size_t dot = text.find('.');
        const std::string_view piece = text.substr(0, dot);
        uint64_t value = 0;
        const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
        if (piece.empty() || error != std::errc() || end != piece.data() + piece.size())
            return std::nullopt;
        numbers.push_back(value);
        if (dot == std::string_view::npos)
            return numbers;
        text.remove_prefix(dot + 1);
    }
}

} // namespace

std::optional<RiotAccountDto> parseRiotAccount(std::string_view text) {
    return withRoot(text, [](json::Element root) -> std::optional<RiotAccountDto> {
        if (!json::isObject(root))
            return std::nullopt;
        RiotAccountDto account{json::text(root, "puuid"), json::text(root, "gameName"), json::text(root, "tagLine")};
        if (account.puuid.empty())
            return std::nullopt;
        return account;
    });
}

std::optional<SummonerDto> parseSummoner(std::string_view text) {
    return withRoot(text, [](json::Element root) -> std::optional<SummonerDto> {
        if (!json::isObject(root))
            return std::nullopt;
        return SummonerDto{json::text(root, "puuid"), json::integer(root, "profileIconId"),
                           json::integer(root, "summonerLevel"), json::integer(root, "revisionDate")};
    });
}

std::optional<std::vector<LeagueEntryDto>> parseLeagueEntries(std::string_view text) {
    return readArray<LeagueEntryDto>(text, [](json::Element entry) {
        LeagueEntryDto out;
        out.queueType = json::text(entry, "queueType");
        out.tier = json::optText(entry, "tier");
        out.division = json::optText(entry, "rank");
        out.leaguePoints = json::integer(entry, "leaguePoints");
        out.wins = json::integer(entry, "wins");
        out.losses = json::integer(entry, "losses");
        out.hotStreak = json::boolean(entry, "hotStreak");
        out.veteran = json::boolean(entry, "veteran");
        out.freshBlood = json::boolean(entry, "freshBlood");
        out.inactive = json::boolean(entry, "inactive");
        return out;
    });
}

std::optional<std::vector<ChampionMasteryDto>> parseChampionMasteries(std::string_view text) {
    auto masteries = readArray<ChampionMasteryDto>(text, [](json::Element entry) {
        return ChampionMasteryDto{json::integer(entry, "championId"), json::integer(entry, "championLevel"),
                                  json::integer(entry, "championPoints"), json::integer(entry, "lastPlayTime")};
    });
    if (masteries)
        std::stable_sort(masteries->begin(), masteries->end(),
                         [](const auto& a, const auto& b) { return a.championPoints > b.championPoints; });
    return masteries;
}

std::optional<std::vector<std::string>> parseMatchIds(std::string_view text) {
    return withRoot(text, [](json::Element root) -> std::optional<std::vector<std::string>> {
        if (!json::isArray(root))
            return std::nullopt;
        std::vector<std::string> ids;
        for (const json::Element item : arrayOf(root))
            if (const auto id = json::optText(item); id && !id->empty())
                ids.emplace_back(*id);
        return ids;
    });
}

std::optional<std::string> newestDataVersion(std::string_view text) {
    return withRoot(text, [](json::Element root) -> std::optional<std::string> {
        if (!json::isArray(root))
            return std::nullopt;
        std::optional<std::string> newest;
        std::vector<uint64_t> newestNumbers;
        for (const json::Element item : arrayOf(root)) {
            const auto version = json::optText(item);
            if (!version)
                continue;
            const auto numbers = versionNumbers(*version);
            if (numbers && (!newest || *numbers > newestNumbers)) {
                newest = std::string(*version);
                newestNumbers = *numbers;
            }
        }
        return newest;
    });
}

std::string riotErrorMessage(std::string_view text) {
    const auto message = withRoot(text, [](json::Element root) -> std::optional<std::string> {
        const auto status = json::member(root, "status");
        if (!status)
            return std::nullopt;
        return json::optText(*status, "message");
    });
    return message.value_or(std::string());
}

} // namespace qf
