#pragma once

#include "store/database.h"

#include <string>
#include <vector>

// The Riot accounts linked to a user. Without the Riot API a Riot ID is found among the players
// this server has already seen in stored games.

namespace qf {

class RiotAccountService {
public:
    explicit RiotAccountService(Database& database) : m_database(database) {}

    [[nodiscard]] std::vector<RiotAccount> list(int64_t userId);
    // Links the player named riotId ("Name#TAG") on platform to the user; linking an account
    // the user already has answers it again. HttpError 400 (bad Riot ID or platform), 404
    // (nobody of that name seen), 409 (linked to another user).
    RiotAccount link(int64_t userId, std::string_view riotId, std::string_view platform, int64_t now);
    // Brings each account's Riot ID and icon up to what the newest stored game shows.
    std::vector<RiotAccount> refresh(int64_t userId);

private:
    Database& m_database;
};

} // namespace qf
