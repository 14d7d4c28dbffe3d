#pragma once

#include <cstdint>
#include <string>

// Timestamps in answers: text the app reads fast and exactly, "2025-03-01T18:04:05.123000Z"
// (six fraction digits, UTC), never the epoch milliseconds the League client uses.

namespace qf {

[[nodiscard]] std::string isoTimestamp(int64_t unixMs);

} // namespace qf
