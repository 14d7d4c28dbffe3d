#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The two list-valued columns, kept as text so both engines store them alike: a player's items
// ("3031,3006,0") and a score's components (a JSON object whose members keep their order).
// Decoding is lenient: text it cannot read gives what it could read, never an error.

namespace qf {

[[nodiscard]] std::string encodeItems(const std::vector<int64_t>& items);
[[nodiscard]] std::vector<int64_t> decodeItems(std::string_view text);

// Non-finite values are written as null and read back as NaN.
[[nodiscard]] std::string encodeComponents(const std::vector<std::pair<std::string, double>>& components);
[[nodiscard]] std::vector<std::pair<std::string, double>> decodeComponents(std::string_view json);

} // namespace qf
