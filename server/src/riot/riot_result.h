#pragma once

#include <string>
#include <utility>

// The answer of one call to the Riot API, told apart the way the server answers its own users.

namespace qf {

enum class RiotOutcome {
    Ok,          // value holds the answer
    NotFound,    // Riot's 404: no such player, match or timeline
    Unavailable, // unreachable, timed out, failing (5xx) or rate-limited beyond waiting
    Refused,     // any other refusal: a bad or expired key (401, 403), a bad request (400)
};

template <class T> struct RiotResult {
    RiotOutcome outcome = RiotOutcome::Unavailable;
    T value{};
    int status = 0;   // the HTTP status of the last answer; 0 when none arrived
    std::string text; // a readable sentence for every outcome but Ok; never holds the key

    [[nodiscard]] bool ok() const { return outcome == RiotOutcome::Ok; }

    // The same outcome and text carrying another type of value (the value itself is dropped).
    template <class U> [[nodiscard]] RiotResult<U> failure() const { return RiotResult<U>{outcome, U{}, status, text}; }
};

} // namespace qf
