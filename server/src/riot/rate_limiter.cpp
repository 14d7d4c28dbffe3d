#include "riot/rate_limiter.h"

#include <algorithm>

namespace qf {

RateLimiter::RateLimiter(std::vector<RateLimitWindow> appLimits) : m_application(std::move(appLimits)) {}

namespace {

struct Registry {
    std::mutex mutex;
    std::map<std::pair<std::string, std::string>, std::shared_ptr<RateLimiter>> limiters;
    bool closed = false;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

} // namespace

std::shared_ptr<RateLimiter> RateLimiter::shared(std::string_view apiKey, std::string_view routing) {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    auto& limiter = all.limiters[{std::string(apiKey), std::string(routing)}];
    if (!limiter) {
        limiter = std::make_shared<RateLimiter>();
        limiter->m_closed = all.closed;
    }
    return limiter;
}

void RateLimiter::closeAll() {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    all.closed = true;
    for (auto& [key, limiter] : all.limiters) {
        const std::lock_guard own(limiter->m_mutex);
        limiter->m_closed = true;
        limiter->m_changed.notify_all();
    }
}

bool RateLimiter::closed() const {
    const std::lock_guard lock(m_mutex);
    return m_closed;
}

RateLimitScope& RateLimiter::methodScope(const std::string& method) {
    auto it = m_methods.find(method);
    if (it == m_methods.end())
        it = m_methods.emplace(method, RateLimitScope()).first;
    return it->second;
}

bool RateLimiter::isNext(uint64_t ticket) const {
    if (!m_foreground.empty())
        return m_foreground.front() == ticket;
    return !m_background.empty() && m_background.front() == ticket;
}

void RateLimiter::leaveQueue(uint64_t ticket, RiotPriority priority) {
    auto& queue = priority == RiotPriority::Foreground ? m_foreground : m_background;
    queue.erase(std::find(queue.begin(), queue.end(), ticket));
    // Whoever is next now has to look at the limits itself.
    m_changed.notify_all();
}

bool RateLimiter::acquire(const std::string& method, RiotPriority priority, Clock::duration maxWait) {
    std::unique_lock lock(m_mutex);
    const uint64_t ticket = m_nextTicket++;
    (priority == RiotPriority::Foreground ? m_foreground : m_background).push_back(ticket);
    // A newcomer in front of the queue takes over from the one that was waiting there.
    m_changed.notify_all();

    const Clock::time_point start = Clock::now();
    const Clock::time_point deadline =
        maxWait >= Clock::time_point::max() - start ? Clock::time_point::max() : start + maxWait;
    RateLimitScope& own = methodScope(method);
    while (true) {
        if (m_closed) {
            leaveQueue(ticket, priority);
            return false;
        }
        const Clock::time_point now = Clock::now();
        if (isNext(ticket)) {
            const bool background = priority == RiotPriority::Background;
            const Clock::time_point sendAt =
                std::max(m_application.earliestSend(now, background), own.earliestSend(now, background));
            if (sendAt <= now) {
                m_application.recordSend(now);
                own.recordSend(now);
                leaveQueue(ticket, priority);
                return true;
            }
            if (sendAt > deadline) {
                leaveQueue(ticket, priority);
                return false;
            }
            if (sendAt == Clock::time_point::max())
                m_changed.wait(lock);
            else
                m_changed.wait_until(lock, sendAt);
        } else if (deadline == Clock::time_point::max()) {
            m_changed.wait(lock);
        } else {
            // Behind others: give up only once the deadline itself has passed.
            if (now >= deadline) {
                leaveQueue(ticket, priority);
                return false;
            }
            m_changed.wait_until(lock, deadline);
        }
    }
}

void RateLimiter::learn(const std::string& method, const std::vector<RateLimitWindow>& appLimits,
                        const std::vector<RateLimitWindow>& appCounts, const std::vector<RateLimitWindow>& methodLimits,
                        const std::vector<RateLimitWindow>& methodCounts) {
    const std::lock_guard lock(m_mutex);
    const Clock::time_point now = Clock::now();
    m_application.learn(appLimits, appCounts, now);
    methodScope(method).learn(methodLimits, methodCounts, now);
    m_changed.notify_all();
}

void RateLimiter::blockApplication(Clock::time_point until) {
    const std::lock_guard lock(m_mutex);
    m_application.blockUntil(until);
    m_changed.notify_all();
}

void RateLimiter::blockMethod(const std::string& method, Clock::time_point until) {
    const std::lock_guard lock(m_mutex);
    methodScope(method).blockUntil(until);
    m_changed.notify_all();
}

std::vector<RateLimitWindow> RateLimiter::applicationLimits() const {
    const std::lock_guard lock(m_mutex);
    return m_application.limits();
}

} // namespace qf
