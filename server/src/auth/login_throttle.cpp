#include "auth/login_throttle.h"

#include "http/http_message.h"

namespace qf {

void LoginThrottle::check(Repository& repository, std::string_view email, std::string_view address, int64_t now) {
    const int64_t since = now - windowMs;
    if (repository.loginFailuresSince(LoginThrottle::emailKey(email), since) >= perEmail ||
        (!address.empty() && repository.loginFailuresSince(addressKey(address), since) >= perAddress))
        throw HttpError(429, "Too many failed sign-ins. Wait a few minutes and try again.");
}

void LoginThrottle::recordFailure(Repository& repository, std::string_view email, std::string_view address,
                                  int64_t now) {
    repository.recordLoginFailure(LoginThrottle::emailKey(email), now);
    if (!address.empty())
        repository.recordLoginFailure(addressKey(address), now);
}

void LoginThrottle::recordSuccess(Repository& repository, std::string_view email) {
    repository.clearLoginFailures(LoginThrottle::emailKey(email));
}

} // namespace qf
