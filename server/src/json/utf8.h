#pragma once

#include <string>
#include <string_view>

// UTF-8 checks for text that crosses the server's edge: request paths and queries coming in,
// JSON strings going out.

namespace qf {

[[nodiscard]] bool isValidUtf8(std::string_view text);

// The text with each byte that does not belong to a well-formed UTF-8 sequence replaced by
// U+FFFD; well-formed sequences are kept as they are.
[[nodiscard]] std::string repairUtf8(std::string_view text);

} // namespace qf
