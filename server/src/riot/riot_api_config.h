#pragma once

#include <chrono>
#include <string>

// How the server reaches the Riot API. The key is a secret: it travels only in the X-Riot-Token
// header of requests to the Riot API (never to the Data Dragon CDN, never in a URL), and no
// text this library produces contains it.

namespace qf {

struct RiotApiConfig {
    std::string apiKey;
    // Empty: https://{routing}.api.riotgames.com. Otherwise every request goes to
    // baseOverride + "/" + routing + path, and the Data Dragon versions list to
    // baseOverride + "/ddragon/api/versions.json" (a fake for tests, a caching proxy).
    std::string baseOverride;

    std::chrono::milliseconds connectTimeout{5000};
    std::chrono::milliseconds totalTimeout{30000}; // a timeline is up to a few megabytes

    // A 5xx answer or a network failure is tried again this many times, waiting
    // retryBackoff, then twice that, and so on.
    int serverErrorRetries = 3;
    std::chrono::milliseconds retryBackoff{500};
    // A 429 is waited out (Retry-After) and tried again at most this many times.
    int rateLimitRetries = 5;
    // A request a user waits on gives up instead of queueing longer than this behind the limits.
    std::chrono::milliseconds foregroundMaxWait{20000};
};

} // namespace qf
