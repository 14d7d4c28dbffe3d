#pragma once

#include <string>
#include <string_view>

// Session tokens: 256 random bits handed to the app once, kept by the server only as a hash,
// so a copy of the database signs nobody in.

namespace qf {

// 43 characters of URL-safe Base64 (no padding) over 32 random bytes.
[[nodiscard]] std::string newSessionToken();
// The hex BLAKE2b-256 of the token: what the database keys sessions by.
[[nodiscard]] std::string sessionTokenHash(std::string_view token);

} // namespace qf
