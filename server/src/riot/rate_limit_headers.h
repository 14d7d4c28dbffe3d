#pragma once

#include <chrono>
#include <optional>
#include <string_view>
#include <vector>

// The Riot API's rate-limit headers. X-App-Rate-Limit and X-Method-Rate-Limit list the limits
// ("20:1,100:120": 20 requests per 1 s, 100 per 120 s); their -Count twins list how many of each
// window the server has counted ("3:1,57:120"), same shape.

namespace qf {

struct RateLimitWindow {
    int count = 0;   // requests allowed (or, in a -Count header, counted) ...
    int seconds = 0; // ... per this many seconds

    friend bool operator==(const RateLimitWindow&, const RateLimitWindow&) = default;
};

// The windows of one header, in its order. A malformed header yields nullopt (the caller keeps
// what it knew) rather than a half-read list; an empty or absent header yields an empty list.
[[nodiscard]] std::optional<std::vector<RateLimitWindow>> parseRateLimitHeader(std::string_view text);

// Retry-After as delta-seconds ("3"); nullopt when absent or not a plain number (Riot never
// sends the HTTP-date form).
[[nodiscard]] std::optional<std::chrono::seconds> parseRetryAfter(std::string_view text);

} // namespace qf
