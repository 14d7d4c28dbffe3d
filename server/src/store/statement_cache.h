#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

// Prepared statements kept by their SQL text, found by a string_view without copying the text.

namespace qf {

struct SqlTextHash {
    using is_transparent = void;
    size_t operator()(std::string_view sql) const { return std::hash<std::string_view>{}(sql); }
};

template <class Statement>
using StatementCache = std::unordered_map<std::string, Statement, SqlTextHash, std::equal_to<>>;

} // namespace qf
