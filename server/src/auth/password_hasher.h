#pragma once

#include <string>
#include <string_view>

// Passwords are kept only as libsodium argon2id strings, at or above OWASP's minimum
// (19 MiB of memory, 2 passes). Verification takes the parameters from the stored string, so
// raising them later leaves old accounts able to sign in.

namespace qf {

// Throws std::runtime_error when libsodium cannot allocate the memory it needs.
[[nodiscard]] std::string hashPassword(std::string_view password);
[[nodiscard]] bool verifyPassword(std::string_view storedHash, std::string_view password);

} // namespace qf
