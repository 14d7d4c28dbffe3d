#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The sync cursor the app keeps between pulls: the last change number it has been sent, as
// opaque text. Every change to a row the user can see takes a new, higher number, and numbers
// become visible in the order they are drawn, so "everything above N" never misses a change.

namespace qf {

[[nodiscard]] std::string encodeSyncCursor(int64_t changeSeq);
// nullopt when the text is not a cursor this server wrote.
[[nodiscard]] std::optional<int64_t> decodeSyncCursor(std::string_view cursor);

} // namespace qf
