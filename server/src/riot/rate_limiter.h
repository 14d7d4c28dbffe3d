#pragma once

#include "riot/rate_limit_scope.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

// The limits of one API key on one routing value ("euw1", "europe"): the application's limits,
// shared by every method, and each method's own (keyed by its path pattern). Every request of
// the process to that host goes through the same limiter (shared()), so parallel work never
// overruns what Riot allows; requests that would exceed a known limit wait instead of being
// sent.
//
// Requests a user waits on (a link, a look-up, a timeline) go ahead of background work
// (backfill) waiting on the same limiter, and background work leaves them a small share of
// every window (RateLimitScope); within a priority, first come first served. Only the
// first waiter in that order is let through, so a method whose own limit is exhausted holds
// the others back for a moment; Riot's method limits are far above the application's, so this
// is rare and short.

namespace qf {

enum class RiotPriority { Foreground, Background };

class RateLimiter {
public:
    using Clock = RateLimitScope::Clock;

    // A personal development key's limits, in force until the first answer announces the real
    // ones: 20 requests per second and 100 per two minutes.
    static std::vector<RateLimitWindow> personalKeyLimits() { return {{20, 1}, {100, 120}}; }

    explicit RateLimiter(std::vector<RateLimitWindow> appLimits = personalKeyLimits());

    // The process's limiter of this key and routing value, made on first use.
    static std::shared_ptr<RateLimiter> shared(std::string_view apiKey, std::string_view routing);

    // Waits until one request of `method` may be sent and counts it as sent. Returns false,
    // counting nothing, when the wait would end later than maxWait from now (the caller tells
    // the user to try again); a background request passes Clock::duration::max() and waits.
    [[nodiscard]] bool acquire(const std::string& method, RiotPriority priority, Clock::duration maxWait);

    // What an answer's headers announced: the application's and the method's limits and counts
    // (empty lists when a header was absent).
    void learn(const std::string& method, const std::vector<RateLimitWindow>& appLimits,
               const std::vector<RateLimitWindow>& appCounts, const std::vector<RateLimitWindow>& methodLimits,
               const std::vector<RateLimitWindow>& methodCounts);
    // At shutdown: every limiter of the process lets its waiters go (acquire returns false)
    // and refuses new requests from then on, so no thread stays parked behind a long window.
    static void closeAll();
    [[nodiscard]] bool closed() const;

    // A 429 naming the application's or the method's limit: nothing of that scope goes out
    // before `until`.
    void blockApplication(Clock::time_point until);
    void blockMethod(const std::string& method, Clock::time_point until);

    [[nodiscard]] std::vector<RateLimitWindow> applicationLimits() const;

private:
    RateLimitScope& methodScope(const std::string& method);
    [[nodiscard]] bool isNext(uint64_t ticket) const;
    void leaveQueue(uint64_t ticket, RiotPriority priority);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    RateLimitScope m_application;
    std::map<std::string, RateLimitScope, std::less<>> m_methods;
    std::deque<uint64_t> m_foreground;
    std::deque<uint64_t> m_background;
    uint64_t m_nextTicket = 0;
    bool m_closed = false;
};

} // namespace qf
