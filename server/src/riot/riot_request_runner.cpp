#include "riot/riot_request_runner.h"

#include "riot/rate_limit_headers.h"
#include "riot/riot_answer_parsers.h"
#include "riot/riot_urls.h"

#include <thread>

namespace qf {

namespace {

using Clock = RateLimiter::Clock;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;

std::vector<RateLimitWindow> windowsOf(const TransportAnswer& answer, std::string_view header) {
    return parseRateLimitHeader(answer.header(header)).value_or(std::vector<RateLimitWindow>());
}

std::string statusText(int status, const std::string& body) {
    const std::string message = riotErrorMessage(body);
    return "status " + std::to_string(status) + (message.empty() ? std::string() : ": " + message);
}

RiotResult<std::string> failure(RiotOutcome outcome, int status, std::string text) {
    return {outcome, {}, status, std::move(text)};
}

// Whole seconds, rounded up, for a sentence.
long long secondsUp(Clock::duration wait) {
    return (duration_cast<milliseconds>(wait).count() + 999) / 1000;
}

} // namespace

RiotRequestRunner::RiotRequestRunner(RiotApiConfig config)
    : m_config(std::move(config)), m_transport(std::make_shared<CurlTransport>(
                                       CurlTransportOptions{m_config.connectTimeout, m_config.totalTimeout})) {}

std::string RiotRequestRunner::withoutKey(std::string text) const {
    if (m_config.apiKey.empty())
        return text;
    for (size_t at = text.find(m_config.apiKey); at != std::string::npos; at = text.find(m_config.apiKey, at))
        text.replace(at, m_config.apiKey.size(), "[API key]");
    return text;
}

RiotResult<std::string> RiotRequestRunner::get(const RiotCall& call) const {
    const std::shared_ptr<RateLimiter> limiter = RateLimiter::shared(m_config.apiKey, call.routing);
    const std::string url = riotApiUrl(m_config, call.routing, call.path);
    const std::vector<std::string> headers{"X-Riot-Token: " + m_config.apiKey, "Accept: application/json"};
    const Clock::duration maxWait = call.priority == RiotPriority::Foreground
                                        ? Clock::duration(m_config.foregroundMaxWait)
                                        : Clock::duration::max();

    int failures = 0;
    int rateLimited = 0;
    while (true) {
        if (!limiter->acquire(call.method, call.priority, maxWait)) {
            if (limiter->closed())
                return failure(RiotOutcome::Unavailable, 0, "The server is stopping.");
            return failure(RiotOutcome::Unavailable, 0,
                           "The Riot API's rate limit for this server is used up for now; try again in a minute.");
        }
        const TransportAnswer answer = m_transport->get(url, headers);
        if (!answer.reached) {
            if (++failures > m_config.serverErrorRetries)
                return failure(RiotOutcome::Unavailable, 0,
                               withoutKey("The Riot API could not be reached: " + answer.error + "."));
            std::this_thread::sleep_for(m_config.retryBackoff * (1 << std::min(failures - 1, 16)));
            continue;
        }
        limiter->learn(call.method, windowsOf(answer, "x-app-rate-limit"), windowsOf(answer, "x-app-rate-limit-count"),
                       windowsOf(answer, "x-method-rate-limit"), windowsOf(answer, "x-method-rate-limit-count"));
        const int status = answer.status;
        if (status >= 200 && status < 300)
            return {RiotOutcome::Ok, answer.body, status, {}};

        if (status == 429) {
            const auto retryAfter = parseRetryAfter(answer.header("retry-after"));
            const Clock::duration wait =
                retryAfter ? Clock::duration(*retryAfter)
                           : Clock::duration(m_config.retryBackoff * (1 << std::min(rateLimited, 16)));
            const Clock::time_point until = Clock::now() + wait;
            const std::string_view type = answer.header("x-rate-limit-type");
            // A limit of the key (application, method) stops every request under it, whether or
            // not this one goes on waiting; a 429 of the service behind the API (no type, or
            // "service") concerns only this request.
            if (type == "application")
                limiter->blockApplication(until);
            else if (type == "method")
                limiter->blockMethod(call.method, until);
            if (++rateLimited > m_config.rateLimitRetries || wait > maxWait)
                return failure(RiotOutcome::Unavailable, status,
                               "The Riot API asks this server to slow down; try again in " +
                                   std::to_string(secondsUp(wait)) + " s.");
            if (type != "application" && type != "method")
                std::this_thread::sleep_until(until);
            continue;
        }
        if (status >= 500) {
            if (++failures > m_config.serverErrorRetries)
                return failure(RiotOutcome::Unavailable, status,
                               withoutKey("The Riot API is failing (" + statusText(status, answer.body) + ") after " +
                                          std::to_string(failures) + " tries; try again later."));
            std::this_thread::sleep_for(m_config.retryBackoff * (1 << std::min(failures - 1, 16)));
            continue;
        }
        if (status == 404)
            return failure(RiotOutcome::NotFound, status,
                           withoutKey("The Riot API found nothing (" + statusText(status, answer.body) + ")."));
        if (status == 401 || status == 403)
            return failure(RiotOutcome::Refused, status,
                           "The Riot API refused this server's API key (status " + std::to_string(status) +
                               "); it may have expired or been revoked.");
        return failure(RiotOutcome::Refused, status,
                       withoutKey("The Riot API refused the request (" + statusText(status, answer.body) + ")."));
    }
}

RiotResult<std::string> RiotRequestRunner::getPublic(const std::string& url) const {
    int failures = 0;
    while (true) {
        const TransportAnswer answer = m_transport->get(url, {"Accept: application/json"});
        if (answer.reached && answer.status >= 200 && answer.status < 300)
            return {RiotOutcome::Ok, answer.body, answer.status, {}};
        const bool retry = !answer.reached || answer.status >= 500 || answer.status == 429;
        if (retry && ++failures <= m_config.serverErrorRetries) {
            std::this_thread::sleep_for(m_config.retryBackoff * (1 << std::min(failures - 1, 16)));
            continue;
        }
        if (!answer.reached)
            return failure(RiotOutcome::Unavailable, 0,
                           "The Data Dragon CDN could not be reached: " + answer.error + ".");
        const std::string text = "The Data Dragon CDN answered status " + std::to_string(answer.status) + ".";
        if (retry)
            return failure(RiotOutcome::Unavailable, answer.status, text);
        return {answer.status == 404 ? RiotOutcome::NotFound : RiotOutcome::Refused, {}, answer.status, text};
    }
}

} // namespace qf
