// Reading Data Dragon's champion list, and the copy of it compiled into the server.

#include "archive/champion_catalog.h"

#include "archive/shipped_champions.h"
#include "http/http_message.h"
#include "json/json_input.h"

#include <charconv>

namespace qf {

namespace {

// Data Dragon writes the number as decimal text; anything else (a sign, spaces, a fraction)
// means the entry is not one we can trust.
std::optional<int64_t> championKey(std::string_view key) {
    if (key.empty() || key.size() > 18)
        return std::nullopt;
    int64_t value = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), value);
    if (error != std::errc() || end != key.data() + key.size() || key.front() == '-')
        return std::nullopt;
    return value;
}

} // namespace

std::optional<ChampionCatalog> ChampionCatalog::fromJson(std::string_view text) {
    std::optional<json::Document> document;
    try {
        document.emplace(text);
    } catch (const HttpError&) {
        return std::nullopt;
    }
    const json::Element root = document->root();
    const std::optional<json::Element> data = json::member(root, "data");
    simdjson::dom::object champions;
    if (!data || data->get(champions) != simdjson::SUCCESS)
        return std::nullopt;

    ChampionCatalog catalog;
    catalog.m_version = json::text(root, "version");
    for (const auto field : champions) {
        const json::Element champion = field.value;
        const std::optional<std::string> key = json::optText(champion, "key");
        const std::optional<int64_t> number = key ? championKey(*key) : std::nullopt;
        // The entry's own id is the key name; older lists only have it as the member name.
        std::string name = json::text(champion, "id", std::string_view(field.key));
        if (number && !name.empty())
            catalog.m_names.insert_or_assign(*number, std::move(name));
    }
    return catalog;
}

ChampionCatalog ChampionCatalog::shipped() {
    // Parsed once: every caller gets a copy of the same list.
    static const ChampionCatalog catalog = fromJson(shippedChampionJson()).value_or(ChampionCatalog());
    return catalog;
}

std::string ChampionCatalog::nameOf(int64_t championId) const {
    const auto it = m_names.find(championId);
    return it == m_names.end() ? std::string() : it->second;
}

} // namespace qf
