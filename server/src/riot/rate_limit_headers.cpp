#include "riot/rate_limit_headers.h"

#include <charconv>

namespace qf {

namespace {

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

// A whole, non-negative decimal number that fits an int.
std::optional<int> wholeNumber(std::string_view s) {
    s = trimmed(s);
    int value = 0;
    const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (s.empty() || error != std::errc() || end != s.data() + s.size() || value < 0)
        return std::nullopt;
    return value;
}

} // namespace

std::optional<std::vector<RateLimitWindow>> parseRateLimitHeader(std::string_view text) {
    std::vector<RateLimitWindow> windows;
    text = trimmed(text);
    while (!text.empty()) {
        const size_t comma = text.find(',');
        const std::string_view piece = text.substr(0, comma);
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
        const size_t colon = piece.find(':');
        if (colon == std::string_view::npos)
            return std::nullopt;
        const auto count = wholeNumber(piece.substr(0, colon));
        const auto seconds = wholeNumber(piece.substr(colon + 1));
        // A window of no time limits nothing and would divide the clock by zero.
        if (!count || !seconds || *seconds == 0)
            return std::nullopt;
        windows.push_back({*count, *seconds});
    }
    return windows;
}

std::optional<std::chrono::seconds> parseRetryAfter(std::string_view text) {
    const auto seconds = wholeNumber(text);
    if (!seconds)
        return std::nullopt;
    return std::chrono::seconds(*seconds);
}

} // namespace qf
