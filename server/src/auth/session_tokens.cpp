#include "auth/session_tokens.h"

#include <sodium.h>
#include <stdexcept>

namespace qf {

std::string newSessionToken() {
    if (sodium_init() < 0)
        throw std::runtime_error("libsodium could not start");
    unsigned char bytes[32];
    randombytes_buf(bytes, sizeof bytes);
    char text[sodium_base64_ENCODED_LEN(32, sodium_base64_VARIANT_URLSAFE_NO_PADDING)];
    sodium_bin2base64(text, sizeof text, bytes, sizeof bytes, sodium_base64_VARIANT_URLSAFE_NO_PADDING);
    return text;
}

std::string sessionTokenHash(std::string_view token) {
    unsigned char digest[32];
    crypto_generichash(digest, sizeof digest, reinterpret_cast<const unsigned char*>(token.data()), token.size(),
                       nullptr, 0);
    char hex[sizeof digest * 2 + 1];
    sodium_bin2hex(hex, sizeof hex, digest, sizeof digest);
    return hex;
}

} // namespace qf
