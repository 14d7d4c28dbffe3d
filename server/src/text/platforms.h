#pragma once

#include <optional>
#include <string>
#include <string_view>

// Riot's platforms (the servers players play on: "euw1", "kr") and the regional routing value
// each belongs to ("europe", "asia"), which the Riot API's account and match services use.

namespace qf {

// The platform id in lower case, or nullopt when it is not a Riot platform ("EUW1" → "euw1").
[[nodiscard]] std::optional<std::string> normalPlatform(std::string_view platform);
// The region of a known platform ("euw1" → "europe"); nullopt for an unknown one.
[[nodiscard]] std::optional<std::string> regionOf(std::string_view platform);

} // namespace qf
