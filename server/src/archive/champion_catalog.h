#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

// Champion numbers to key names ("Aatrox", "MonkeyKing"), as Data Dragon's champion.json of one
// data version lists them. The League client's games carry only the number; the app needs the
// name. A copy for the default version ships with the server, so it works offline.

namespace qf {

class ChampionCatalog {
public:
    // Reads a champion.json text; returns nullopt when it is not one.
    static std::optional<ChampionCatalog> fromJson(std::string_view text);
    // The list shipped with the server (compiled in).
    static ChampionCatalog shipped();

    [[nodiscard]] const std::string& version() const { return m_version; }
    // The key name, or "" for a number the list does not know.
    [[nodiscard]] std::string nameOf(int64_t championId) const;
    [[nodiscard]] size_t size() const { return m_names.size(); }

private:
    std::string m_version;
    std::unordered_map<int64_t, std::string> m_names;
};

} // namespace qf
