#include "auth/riot_account_service.h"

#include "archive/ingest_service.h"
#include "http/http_message.h"
#include "text/platforms.h"
#include "text/riot_id.h"

namespace qf {

std::vector<RiotAccount> RiotAccountService::list(int64_t userId) {
    return m_database.read([&](Repository& repository) { return repository.accountsOfUser(userId); });
}

namespace {

// The League client names players by a plain UUID; the Riot API by a longer id encrypted for
// the server's key, which is the one its calls accept.
bool isClientPuuid(std::string_view puuid) {
    return puuid.size() == 36 && puuid[8] == '-' && puuid[13] == '-' && puuid[18] == '-' && puuid[23] == '-';
}

[[noreturn]] void throwRiotFailure(RiotOutcome outcome, int status, const std::string& text) {
    if (outcome == RiotOutcome::NotFound)
        throw HttpError(404, text);
    if (outcome == RiotOutcome::Refused && status == 400)
        throw HttpError(400, text);
    throw HttpError(503, text);
}

bool sameRank(const RankSnapshot& stored, const LeagueEntryDto& entry) {
    return stored.tier == entry.tier && stored.division == entry.division && stored.lp == entry.leaguePoints &&
           stored.wins == entry.wins && stored.losses == entry.losses;
}

} // namespace

RiotAccount RiotAccountService::link(int64_t userId, std::string_view riotIdText, std::string_view platform,
                                     int64_t now) {
    const std::optional<RiotId> riotId = parseRiotId(riotIdText);
    if (!riotId)
        throw HttpError(400, "Enter a Riot ID in the form Name#TAG.");
    const std::optional<std::string> platformId = normalPlatform(platform);
    if (!platformId)
        throw HttpError(400, "Unknown platform \"" + std::string(platform.substr(0, 20)) + "\".");

    std::optional<RiotResult<RiotAccountDto>> fromRiot;
    if (m_riot) {
        fromRiot = m_riot->accountByRiotId(riotId->text(), *platformId);
        if (fromRiot->ok()) {
            RiotAccount wanted;
            wanted.puuid = fromRiot->value.puuid;
            wanted.gameName = fromRiot->value.gameName;
            wanted.tagLine = fromRiot->value.tagLine;
            wanted.platform = *platformId;
            const RiotResult<SummonerDto> summoner = m_riot->summonerByPuuid(wanted.puuid, *platformId);
            if (summoner.ok()) {
                wanted.profileIconId = summoner.value.profileIconId;
                wanted.summonerLevel = summoner.value.summonerLevel;
            }
            return linkSeen(userId, wanted, now, wanted.puuid);
        }
        // Riot's own word that nobody has this name stands; an API that cannot be reached
        // leaves the players this server has seen.
        if (fromRiot->outcome != RiotOutcome::Unavailable)
            throwRiotFailure(fromRiot->outcome, fromRiot->status, fromRiot->text);
    }

    const std::optional<Player> player = m_database.read([&](Repository& repository) {
        return repository.playerByRiotIdKey(foldRiotIdPart(riotId->gameName), foldRiotIdPart(riotId->tagLine));
    });
    if (!player) {
        if (fromRiot)
            throw HttpError(503, fromRiot->text);
        throw HttpError(404, "No player named " + riotId->text() +
                                 " has been seen on this server yet. Import a game of theirs first.");
    }
    RiotAccount wanted;
    wanted.puuid = player->puuid;
    wanted.gameName = player->gameName;
    wanted.tagLine = player->tagLine;
    // The platform the player was seen on is a fact; the one picked in a menu a guess.
    wanted.platform = normalPlatform(player->platform).value_or(*platformId);
    wanted.profileIconId = player->profileIconId;
    return linkSeen(userId, wanted, now, std::nullopt);
}

RiotAccount RiotAccountService::linkSeen(int64_t userId, RiotAccount wanted, int64_t now,
                                         const std::optional<std::string>& riotPuuid) {
    try {
        return m_database.write([&](Repository& repository) {
            if (riotPuuid) {
                // The player may be known already under the League client's id: the account
                // takes the id the server answers for them, and learns Riot's as its second.
                const std::vector<std::string> ids{*riotPuuid};
                if (const auto stable = repository.stablePuuids(ids); !stable.empty()) {
                    wanted.puuid = stable.begin()->second;
                } else if (const std::optional<Player> seen =
                               repository.playerByRiotIdKey(foldRiotIdPart(wanted.gameName.value_or("")),
                                                            foldRiotIdPart(wanted.tagLine.value_or("")));
                           seen && isClientPuuid(seen->puuid)) {
                    repository.addPlayerId(*riotPuuid, seen->puuid);
                    wanted.puuid = seen->puuid;
                }
            }
            if (std::optional<RiotAccount> existing = repository.accountByPuuid(wanted.puuid)) {
                if (existing->userId != userId)
                    throw HttpError(409, "This Riot account is already linked to another user.");
                return *existing;
            }
            RiotAccount account = wanted;
            account.userId = userId;
            account.region = regionOf(account.platform).value_or("europe");
            account.isOwner = false;
            account.linkedAt = now;
            repository.insertAccount(account);
            repository.touchMatchesOf(account.puuid);
            IngestService::scoreAccount(repository, account);
            if (riotPuuid)
                repository.requestBackfill(account.id, *riotPuuid, account.platform, now);
            return account;
        });
    } catch (const UniqueViolation&) {
        // Another request linked the same puuid between our look-up and our insert.
        throw HttpError(409, "This Riot account is already linked to another user.");
    }
}

void RiotAccountService::refreshFromRiot(int64_t userId, int64_t now) {
    struct Fresh {
        RiotAccount account;
        std::optional<std::vector<LeagueEntryDto>> entries;
        std::string riotPuuid;
    };
    std::vector<Fresh> fresh;
    // Riot is asked outside any transaction: its answers can take seconds under the limits.
    for (const RiotAccount& account : list(userId)) {
        Fresh f{account, std::nullopt, account.puuid};
        std::string puuid = account.puuid;
        if (isClientPuuid(puuid)) {
            // An account linked from the League client: Riot knows it by its Riot ID.
            if (!account.gameName || !account.tagLine)
                continue;
            const RiotResult<RiotAccountDto> byName =
                m_riot->accountByRiotId(*account.gameName + "#" + *account.tagLine, account.platform);
            if (!byName.ok())
                continue;
            puuid = byName.value.puuid;
            f.riotPuuid = puuid;
        } else if (const RiotResult<RiotAccountDto> named = m_riot->accountByPuuid(puuid, account.platform);
                   named.ok()) {
            f.account.gameName = named.value.gameName;
            f.account.tagLine = named.value.tagLine;
        }
        if (const RiotResult<SummonerDto> summoner = m_riot->summonerByPuuid(puuid, account.platform); summoner.ok()) {
            f.account.profileIconId = summoner.value.profileIconId;
            f.account.summonerLevel = summoner.value.summonerLevel;
        }
        if (RiotResult<std::vector<LeagueEntryDto>> entries = m_riot->leagueEntriesByPuuid(puuid, account.platform);
            entries.ok())
            f.entries = std::move(entries.value);
        fresh.push_back(std::move(f));
    }

    m_database.write([&](Repository& repository) {
        for (const Fresh& f : fresh) {
            const std::optional<RiotAccount> stored = repository.accountByPuuid(f.account.puuid);
            if (!stored || stored->userId != userId)
                continue; // unlinked meanwhile
            RiotAccount updated = *stored;
            updated.gameName = f.account.gameName;
            updated.tagLine = f.account.tagLine;
            updated.profileIconId = f.account.profileIconId;
            updated.summonerLevel = f.account.summonerLevel;
            // Riot's id of the player, and the rest of their history, read in the background.
            repository.addPlayerId(f.riotPuuid, stored->puuid);
            repository.requestBackfill(stored->id, f.riotPuuid, stored->platform, now);
            if (updated.gameName != stored->gameName || updated.tagLine != stored->tagLine ||
                updated.profileIconId != stored->profileIconId || updated.summonerLevel != stored->summonerLevel)
                repository.updateAccount(updated);
            if (!f.entries)
                continue;
            for (const LeagueEntryDto& entry : *f.entries) {
                // Queues ranked without tiers (Arena) have no ladder to draw.
                if (!entry.tier)
                    continue;
                const std::optional<RankSnapshot> last = repository.latestSnapshot(stored->id, entry.queueType);
                if (last && sameRank(*last, entry))
                    continue;
                RankSnapshot snapshot;
                snapshot.riotAccountId = stored->id;
                snapshot.queue = entry.queueType;
                snapshot.tier = entry.tier;
                snapshot.division = entry.division;
                snapshot.lp = entry.leaguePoints;
                snapshot.wins = entry.wins;
                snapshot.losses = entry.losses;
                snapshot.capturedAt = now;
                repository.insertRankSnapshot(snapshot);
            }
        }
    });
}

std::vector<RiotAccount> RiotAccountService::refresh(int64_t userId, int64_t now) {
    if (m_riot)
        refreshFromRiot(userId, now);
    return m_database.write([&](Repository& repository) {
        std::vector<RiotAccount> accounts = repository.accountsOfUser(userId);
        for (RiotAccount& account : accounts) {
            const std::optional<Player> seen = repository.playerByPuuid(account.puuid);
            if (!seen || seen->gameName.empty())
                continue;
            // Riot's answer, when there was one, is newer than any stored game.
            if (m_riot && account.summonerLevel)
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
