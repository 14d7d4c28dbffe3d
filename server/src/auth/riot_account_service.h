#pragma once

#include "riot/riot_client.h"
#include "store/database.h"

#include <string>
#include <vector>

// The Riot accounts linked to a user. With the Riot API (a key configured) a Riot ID is resolved
// by Riot and a refresh reads icons, levels, Riot IDs and ranks from it; without it, or while it
// cannot be reached, a Riot ID is found among the players this server has seen in stored games.

namespace qf {

class RiotAccountService {
public:
    // riot: null without a key.
    explicit RiotAccountService(Database& database, const RiotClient* riot = nullptr)
        : m_database(database), m_riot(riot) {}

    [[nodiscard]] std::vector<RiotAccount> list(int64_t userId);
    // Links the player named riotId ("Name#TAG") on platform to the user; linking an account
    // the user already has answers it again. HttpError 400 (bad Riot ID or platform), 404
    // (nobody of that name seen), 409 (linked to another user).
    RiotAccount link(int64_t userId, std::string_view riotId, std::string_view platform, int64_t now);
    // Brings each account's Riot ID, icon and level up to date (from Riot, else from the newest
    // stored game) and, with Riot, records a rank snapshot of each ranked queue whose tier,
    // division, LP, wins or losses changed since the last one.
    std::vector<RiotAccount> refresh(int64_t userId, int64_t now);

private:
    // riotPuuid: the player's id at the Riot API, when Riot named them.
    RiotAccount linkSeen(int64_t userId, RiotAccount wanted, int64_t now, const std::optional<std::string>& riotPuuid);
    void refreshFromRiot(int64_t userId, int64_t now);

    Database& m_database;
    const RiotClient* m_riot;
};

} // namespace qf
