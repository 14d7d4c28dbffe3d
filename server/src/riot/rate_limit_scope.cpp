#include "riot/rate_limit_scope.h"

#include <algorithm>

namespace qf {

using namespace std::chrono;

RateLimitScope::Clock::duration RateLimitScope::slack(int windowSeconds) {
    return std::min<Clock::duration>(milliseconds(100), duration_cast<Clock::duration>(seconds(windowSeconds)) / 20);
}

RateLimitScope::Clock::time_point RateLimitScope::earliestSend(Clock::time_point now, bool background) const {
    Clock::time_point earliest = std::max(now, m_blockedUntil);
    for (const RateLimitWindow& window : m_limits) {
        if (window.count <= 0) {
            // Riot announcing zero requests: nothing can be sent until it says otherwise.
            return Clock::time_point::max();
        }
        const int allowed = background ? std::max(1, window.count - reserved(window.count)) : window.count;
        const auto span = duration_cast<Clock::duration>(seconds(window.seconds)) + slack(window.seconds);
        const int inWindow = sentWithin(window.seconds, now);
        if (inWindow < allowed)
            continue;
        // The window has room again once the send that filled it (allowed-th from the newest)
        // has slid out.
        const Clock::time_point filling = m_sends[m_sends.size() - size_t(allowed)];
        earliest = std::max(earliest, filling + span);
    }
    return earliest;
}

int RateLimitScope::sentWithin(int windowSeconds, Clock::time_point now) const {
    const Clock::time_point from = now - duration_cast<Clock::duration>(seconds(windowSeconds)) - slack(windowSeconds);
    const auto first = std::upper_bound(m_sends.begin(), m_sends.end(), from);
    return int(m_sends.end() - first);
}

void RateLimitScope::recordSend(Clock::time_point now) {
    if (!m_sends.empty() && now < m_sends.back())
        now = m_sends.back();
    m_sends.push_back(now);
    forgetBefore(now);
}

void RateLimitScope::learn(const std::vector<RateLimitWindow>& limits, const std::vector<RateLimitWindow>& counts,
                           Clock::time_point now) {
    if (!limits.empty())
        m_limits = limits;
    if (!m_sends.empty() && now < m_sends.back())
        now = m_sends.back();
    for (const RateLimitWindow& counted : counts) {
        const int missing = counted.count - sentWithin(counted.seconds, now);
        for (int i = 0; i < missing && i < 100000; ++i)
            m_sends.push_back(now);
    }
    forgetBefore(now);
}

void RateLimitScope::blockUntil(Clock::time_point until) {
    m_blockedUntil = std::max(m_blockedUntil, until);
}

void RateLimitScope::forgetBefore(Clock::time_point now) {
    int longest = 0;
    for (const RateLimitWindow& window : m_limits)
        longest = std::max(longest, window.seconds);
    // Sends older than every window no longer count; a generous horizon keeps them while a
    // longer window may still be learnt from the next answer.
    const auto horizon = duration_cast<Clock::duration>(seconds(std::max(longest, 600))) + slack(longest);
    while (!m_sends.empty() && m_sends.front() < now - horizon)
        m_sends.pop_front();
}

} // namespace qf
