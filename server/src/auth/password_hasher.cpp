#include "auth/password_hasher.h"

#include <sodium.h>
#include <stdexcept>

namespace qf {

namespace {

// OWASP's minimum for argon2id: 19 MiB, two passes, one lane (libsodium always uses one).
constexpr unsigned long long opsLimit = 2;
constexpr size_t memLimit = 19u * 1024u * 1024u;

void ensureSodium() {
    static const bool ready = sodium_init() >= 0;
    if (!ready)
        throw std::runtime_error("libsodium could not start");
}

} // namespace

std::string hashPassword(std::string_view password) {
    ensureSodium();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str_alg(out, password.data(), password.size(), opsLimit, memLimit,
                              crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::runtime_error("Not enough memory to hash a password");
    return out;
}

bool verifyPassword(std::string_view storedHash, std::string_view password) {
    ensureSodium();
    if (storedHash.empty() || storedHash.size() >= crypto_pwhash_STRBYTES)
        return false;
    const std::string hash(storedHash); // libsodium wants it NUL-terminated
    return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

} // namespace qf
