#pragma once

#include <string_view>

// The text of server/data/champion.json, compiled in at build time.

namespace qf {

[[nodiscard]] std::string_view shippedChampionJson();

} // namespace qf
