#include "sync/sync_cursor.h"

#include <charconv>

namespace qf {

namespace {
constexpr std::string_view prefix = "c1.";
}

std::string encodeSyncCursor(int64_t changeSeq) {
    return std::string(prefix) + std::to_string(changeSeq);
}

std::optional<int64_t> decodeSyncCursor(std::string_view cursor) {
    if (cursor.size() <= prefix.size() || cursor.substr(0, prefix.size()) != prefix || cursor.size() > 24)
        return std::nullopt;
    cursor.remove_prefix(prefix.size());
    int64_t value = 0;
    const auto [end, error] = std::from_chars(cursor.data(), cursor.data() + cursor.size(), value);
    if (error != std::errc() || end != cursor.data() + cursor.size() || value < 0)
        return std::nullopt;
    return value;
}

} // namespace qf
