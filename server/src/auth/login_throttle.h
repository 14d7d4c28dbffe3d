#pragma once

#include "store/repository.h"

#include <string>

// Slows password guessing: after too many failed sign-ins for one e-mail, or from one address,
// within a window, further attempts are refused for a while. Counted in the database, so
// every server process behind a load balancer sees the same count.

namespace qf {

struct LoginThrottle {
    static constexpr int64_t windowMs = 15 * 60 * 1000;
    static constexpr int64_t perEmail = 5;
    static constexpr int64_t perAddress = 30;

    static std::string emailKey(std::string_view emailKey) { return "email:" + std::string(emailKey); }
    static std::string addressKey(std::string_view address) { return "addr:" + std::string(address); }

    // Throws HttpError 429 when either key has reached its limit within the window.
    static void check(Repository& repository, std::string_view emailKey, std::string_view address, int64_t now);
    static void recordFailure(Repository& repository, std::string_view emailKey, std::string_view address, int64_t now);
    // A successful sign-in forgets the e-mail's failures (not the address's).
    static void recordSuccess(Repository& repository, std::string_view emailKey);
};

} // namespace qf
