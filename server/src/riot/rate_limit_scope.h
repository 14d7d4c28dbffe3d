#pragma once

#include "riot/rate_limit_headers.h"

#include <chrono>
#include <deque>
#include <vector>

// One set of limits the Riot API counts together (the application's, or one method's) and the
// requests sent under it. Time is passed in, so the arithmetic is checked without waiting.
//
// Riot counts each window from the first request it receives, the client counts from the
// moment it sends: a request is only let through when every window, slid back from the send
// time, still has room, which keeps it under any fixed window the server may have started. A
// little slack (a twentieth of the window, at most 100 ms) covers the time a request travels.
//
// Background work leaves a fiftieth of every window unused (at least one request): a backfill
// would otherwise fill a personal key's two-minute window in seconds, and a user's look-up
// arriving then would wait out the rest of it. A look-up, a link or a timeline needs at most
// two requests of one host, which that share covers at a personal key's limits.

namespace qf {

class RateLimitScope {
public:
    using Clock = std::chrono::steady_clock;

    explicit RateLimitScope(std::vector<RateLimitWindow> limits = {}) : m_limits(std::move(limits)) {}

    // The earliest moment one more request fits every window and is past any block (now when it
    // fits already). Background requests do not count on the reserved share.
    [[nodiscard]] Clock::time_point earliestSend(Clock::time_point now, bool background = false) const;
    void recordSend(Clock::time_point now);

    // What an answer announced. New limits replace the old ones (the log of sends stays). When
    // the server counted more in a window than this process sent within that span, someone else
    // uses the key: the difference is recorded as sent now, which errs on the safe side.
    void learn(const std::vector<RateLimitWindow>& limits, const std::vector<RateLimitWindow>& counts,
               Clock::time_point now);
    // After a 429 aimed at this scope: nothing is sent before `until`.
    void blockUntil(Clock::time_point until);

    [[nodiscard]] const std::vector<RateLimitWindow>& limits() const { return m_limits; }
    // Sends recorded within the last `seconds` before now.
    [[nodiscard]] int sentWithin(int seconds, Clock::time_point now) const;

    [[nodiscard]] static Clock::duration slack(int windowSeconds);
    // Requests of a window of `count` that background work leaves to requests a user waits on.
    [[nodiscard]] static int reserved(int count) { return (count + 49) / 50; }

private:
    void forgetBefore(Clock::time_point now);

    std::vector<RateLimitWindow> m_limits;
    std::deque<Clock::time_point> m_sends; // oldest first; times never decrease
    Clock::time_point m_blockedUntil{};
};

} // namespace qf
