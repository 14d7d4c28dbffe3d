#pragma once

#include "riot/curl_transport.h"
#include "riot/rate_limiter.h"
#include "riot/riot_api_config.h"
#include "riot/riot_result.h"

#include <memory>
#include <string>

// Sends one request to the Riot API the way Riot asks clients to: through the shared limiter of
// the key and routing value, learning the limits every answer announces; a 429 is waited out
// for its Retry-After (the whole application or one method stops sending when the answer says
// X-Rate-Limit-Type is theirs, otherwise only this request waits), a 5xx or a network failure
// is tried again after a growing pause, a bounded number of times.

namespace qf {

struct RiotCall {
    std::string routing; // "euw1", "europe"
    std::string method;  // the path pattern Riot counts method limits by
    std::string path;    // the path to send, with its query
    RiotPriority priority = RiotPriority::Foreground;
};

class RiotRequestRunner {
public:
    explicit RiotRequestRunner(RiotApiConfig config);

    // The body of a 2xx answer, or why there is none.
    [[nodiscard]] RiotResult<std::string> get(const RiotCall& call) const;
    // A GET outside the Riot API (the Data Dragon CDN): no key, no limiter; failures retried
    // the same way.
    [[nodiscard]] RiotResult<std::string> getPublic(const std::string& url) const;

    [[nodiscard]] const RiotApiConfig& config() const { return m_config; }

private:
    [[nodiscard]] std::string withoutKey(std::string text) const;

    RiotApiConfig m_config;
    std::shared_ptr<CurlTransport> m_transport;
};

} // namespace qf
