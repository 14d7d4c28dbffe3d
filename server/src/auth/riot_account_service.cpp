#include "auth/riot_account_service.h"

#include "archive/ingest_service.h"
#include "http/http_message.h"
#include "text/platforms.h"
#include "text/riot_id.h"

namespace qf {

std::vector<RiotAccount> RiotAccountService::list(int64_t userId) {
    return m_database.read([&](Repository& repository) { return repository.accountsOfUser(userId); });
}

RiotAccount RiotAccountService::link(int64_t userId, std::string_view riotIdText, std::string_view platform,
                                     int64_t now) {
    const std::optional<RiotId> riotId = parseRiotId(riotIdText);
    if (!riotId)
        throw HttpError(400, "Enter a Riot ID in the form Name#TAG.");
    const std::optional<std::string> platformId = normalPlatform(platform);
    if (!platformId)
        throw HttpError(400, "Unknown platform \"" + std::string(platform.substr(0, 20)) + "\".");

    try {
        return m_database.write([&](Repository& repository) {
            const std::optional<Player> player =
                repository.playerByRiotIdKey(foldRiotIdPart(riotId->gameName), foldRiotIdPart(riotId->tagLine));
            if (!player)
                throw HttpError(404, "No player named " + riotId->text() +
                                         " has been seen on this server yet. Import a game of theirs first.");
            if (std::optional<RiotAccount> existing = repository.accountByPuuid(player->puuid)) {
                if (existing->userId != userId)
                    throw HttpError(409, "This Riot account is already linked to another user.");
                return *existing;
            }
            RiotAccount account;
            account.userId = userId;
            account.puuid = player->puuid;
            account.gameName = player->gameName;
            account.tagLine = player->tagLine;
            // The platform the player was seen on is a fact; the one picked in a menu a guess.
            account.platform = normalPlatform(player->platform).value_or(*platformId);
            account.region = regionOf(account.platform).value_or("europe");
            account.isOwner = false;
            account.profileIconId = player->profileIconId;
            account.linkedAt = now;
            repository.insertAccount(account);
            repository.touchMatchesOf(account.puuid);
            IngestService::scoreAccount(repository, account);
            return account;
        });
    } catch (const UniqueViolation&) {
        // Another request linked the same puuid between our look-up and our insert.
        throw HttpError(409, "This Riot account is already linked to another user.");
    }
}

std::vector<RiotAccount> RiotAccountService::refresh(int64_t userId) {
    return m_database.write([&](Repository& repository) {
        std::vector<RiotAccount> accounts = repository.accountsOfUser(userId);
        for (RiotAccount& account : accounts) {
            const std::optional<Player> seen = repository.playerByPuuid(account.puuid);
            if (!seen || seen->gameName.empty())
                continue;
            const bool changed = account.gameName != seen->gameName || account.tagLine != seen->tagLine ||
                                 (seen->profileIconId && account.profileIconId != seen->profileIconId);
            if (!changed)
                continue;
            account.gameName = seen->gameName;
            account.tagLine = seen->tagLine;
            if (seen->profileIconId)
                account.profileIconId = seen->profileIconId;
            repository.updateAccount(account);
        }
        return accounts;
    });
}

} // namespace qf
