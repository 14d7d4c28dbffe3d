#include "text/platforms.h"

#include <array>
#include <utility>

namespace qf {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 17> platforms{{
    {"br1", "americas"},
    {"la1", "americas"},
    {"la2", "americas"},
    {"na1", "americas"},
    {"eun1", "europe"},
    {"euw1", "europe"},
    {"me1", "europe"},
    {"ru", "europe"},
    {"tr1", "europe"},
    {"jp1", "asia"},
    {"kr", "asia"},
    {"oc1", "sea"},
    {"ph2", "sea"},
    {"sg2", "sea"},
    {"th2", "sea"},
    {"tw2", "sea"},
    {"vn2", "sea"},
}};

} // namespace

std::optional<std::string> normalPlatform(std::string_view platform) {
    if (platform.size() > 8)
        return std::nullopt;
    std::string lower(platform);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    for (const auto& [id, region] : platforms)
        if (id == lower)
            return lower;
    return std::nullopt;
}

std::optional<std::string> regionOf(std::string_view platform) {
    const auto id = normalPlatform(platform);
    if (!id)
        return std::nullopt;
    for (const auto& [known, region] : platforms)
        if (known == *id)
            return std::string(region);
    return std::nullopt;
}

} // namespace qf
