#include "social/social_service.h"

#include "json/json_input.h"

#include "archive/riot_timeline_summary.h"

#include "http/http_message.h"
#include "text/platforms.h"
#include "text/riot_id.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace qf {

namespace {

std::unordered_set<std::string> puuidsOf(const std::vector<RiotAccount>& accounts) {
    std::unordered_set<std::string> out;
    for (const RiotAccount& a : accounts)
        out.insert(a.puuid);
    return out;
}

// The user's own row of a game: the first of their accounts found in it.
const Participant* ownRow(const GameWithRows& game, const std::unordered_set<std::string>& mine) {
    for (const Participant& p : game.participants)
        if (mine.count(p.puuid))
            return &p;
    return nullptr;
}

std::optional<std::string> riotIdOf(const Participant& p) {
    if (!p.riotIdGameName || p.riotIdGameName->empty())
        return std::nullopt;
    if (!p.riotIdTagLine || p.riotIdTagLine->empty())
        return *p.riotIdGameName;
    return *p.riotIdGameName + "#" + *p.riotIdTagLine;
}

} // namespace

std::optional<std::string> rankLabel(const std::optional<std::string>& tier,
                                     const std::optional<std::string>& division) {
    if (!tier || tier->empty())
        return std::nullopt;
    std::string label = *tier;
    for (size_t i = 1; i < label.size(); ++i)
        if (label[i] >= 'A' && label[i] <= 'Z')
            label[i] = char(label[i] - 'A' + 'a');
    const bool apex = *tier == "MASTER" || *tier == "GRANDMASTER" || *tier == "CHALLENGER";
    if (!apex && division && !division->empty())
        label += " " + *division;
    return label;
}

std::vector<Duo> SocialService::duos(int64_t userId) {
    struct Tally {
        Duo duo;
        int64_t nameSeenAt = -1;
    };
    std::unordered_map<std::string, Tally> byPuuid;
    std::vector<std::string> order;

    m_database.read([&](Repository& repository) {
        const auto mine = puuidsOf(repository.accountsOfUser(userId));
        for (const GameWithRows& game : repository.gamesOfUser(userId)) {
            const Participant* me = ownRow(game, mine);
            if (!me)
                continue;
            for (const Participant& p : game.participants) {
                if (p.teamId != me->teamId || mine.count(p.puuid) || p.puuid.empty())
                    continue;
                auto [it, fresh] = byPuuid.try_emplace(p.puuid);
                Tally& t = it->second;
                if (fresh) {
                    t.duo.puuid = p.puuid;
                    order.push_back(p.puuid);
                }
                ++t.duo.games;
                (me->win ? t.duo.wins : t.duo.losses) += 1;
                t.duo.lastPlayed = std::max(t.duo.lastPlayed, game.match.gameCreation);
                if (game.match.gameCreation > t.nameSeenAt) {
                    t.nameSeenAt = game.match.gameCreation;
                    if (auto id = riotIdOf(p))
                        t.duo.riotId = id;
                    if (p.rankTier)
                        t.duo.rank = rankLabel(p.rankTier, p.rankDivision);
                }
            }
        }
        for (auto& [puuid, t] : byPuuid) {
            if (t.duo.games < minimumDuoGames)
                continue;
            if (std::optional<Player> seen = repository.playerByPuuid(puuid)) {
                t.duo.profileIconId = seen->profileIconId;
                if (!seen->gameName.empty())
                    t.duo.riotId = seen->gameName + "#" + seen->tagLine;
            }
        }
    });

    std::vector<Duo> out;
    for (const std::string& puuid : order) {
        Tally& t = byPuuid[puuid];
        if (t.duo.games < minimumDuoGames)
            continue;
        t.duo.winrate = double(t.duo.wins) / double(t.duo.games);
        out.push_back(std::move(t.duo));
    }
    std::stable_sort(out.begin(), out.end(), [](const Duo& a, const Duo& b) {
        return a.games != b.games ? a.games > b.games : a.lastPlayed > b.lastPlayed;
    });
    return out;
}

FriendRecord SocialService::friendRecord(int64_t userId, std::string_view puuid) {
    if (puuid.empty() || puuid.size() > 100)
        throw HttpError(400, "That is not a player id.");
    FriendRecord record;
    record.friendPuuid = std::string(puuid);
    m_database.read([&](Repository& repository) {
        const std::optional<Player> seen = repository.playerByPuuid(puuid);
        if (!seen)
            throw HttpError(404, "No player with this id has been seen on this server.");
        if (!seen->gameName.empty()) {
            record.friendName = seen->gameName;
            record.friendTag = seen->tagLine;
        }
        record.friendIcon = seen->profileIconId;
        const auto mine = puuidsOf(repository.accountsOfUser(userId));
        for (const GameWithRows& game : repository.gamesOfUser(userId)) {
            const Participant* me = ownRow(game, mine);
            if (!me)
                continue;
            const auto other =
                std::find_if(game.participants.begin(), game.participants.end(), [&](const Participant& p) {
                    return p.puuid == puuid && p.teamId == me->teamId && &p != me;
                });
            if (other == game.participants.end())
                continue;
            FriendGame g;
            g.matchId = game.match.id;
            g.season = game.match.season;
            g.queueId = game.match.queueId;
            g.gameMode = game.match.gameMode;
            g.playedAt = game.match.gameCreation;
            g.win = me->win;
            g.ownerChampion = me->championName;
            g.ownerPosition = me->teamPosition;
            g.friendChampion = other->championName;
            record.gamesTogether.push_back(std::move(g));
        }
    });
    for (const FriendGame& g : record.gamesTogether)
        (g.win ? record.wins : record.losses) += 1;
    record.games = int64_t(record.gamesTogether.size());
    record.winrate = record.games ? double(record.wins) / double(record.games) : 0.0;
    return record;
}

PlayerProfile SocialService::profile(std::string_view riotIdText, const std::string* platform) {
    const std::optional<RiotId> riotId = parseRiotId(riotIdText);
    if (!riotId)
        throw HttpError(400, "Enter a Riot ID in the form Name#TAG.");
    std::optional<std::string> platformId;
    if (platform) {
        platformId = normalPlatform(*platform);
        if (!platformId)
            throw HttpError(400, "Unknown platform \"" + platform->substr(0, 20) + "\".");
    }
    if (!m_riot)
        return profileFromArchive(*riotId, platformId);

    // Without a platform the player's own is the one they were last seen on, if any.
    std::string where = platformId.value_or("");
    if (where.empty()) {
        const std::optional<Player> seen = m_database.read([&](Repository& repository) {
            return repository.playerByRiotIdKey(foldRiotIdPart(riotId->gameName), foldRiotIdPart(riotId->tagLine));
        });
        where = seen ? normalPlatform(seen->platform).value_or("euw1") : "euw1";
    }
    const RiotResult<RiotAccountDto> account = m_riot->accountByRiotId(riotId->text(), where);
    if (account.outcome == RiotOutcome::NotFound)
        throw HttpError(404, account.text);
    if (!account.ok()) {
        // The players this server has seen still answer while Riot cannot.
        try {
            return profileFromArchive(*riotId, platformId);
        } catch (const HttpError&) {
            throw HttpError(503, account.text);
        }
    }
    PlayerProfile profile;
    profile.puuid = account.value.puuid;
    profile.gameName = account.value.gameName;
    profile.tagLine = account.value.tagLine;
    profile.platform = where;
    const auto entries = m_riot->leagueEntriesByPuuid(profile.puuid, where);
    if (entries.ok()) {
        for (const LeagueEntryDto& e : entries.value)
            profile.ranks.push_back(RankEntry{e.queueType, e.tier, e.division, e.leaguePoints, e.wins, e.losses});
    }
    const auto masteries = m_riot->topMasteriesByPuuid(profile.puuid, where, profileMasteries);
    if (masteries.ok()) {
        for (const ChampionMasteryDto& m : masteries.value)
            profile.masteries.push_back(Mastery{m.championId, m.championLevel, m.championPoints});
    }
    if (!entries.ok() && !masteries.ok())
        throw HttpError(503, entries.text);
    return profile;
}

PlayerProfile SocialService::profileFromArchive(const RiotId& riotId, const std::optional<std::string>& platformId) {
    return m_database.read([&](Repository& repository) {
        const std::optional<Player> player =
            repository.playerByRiotIdKey(foldRiotIdPart(riotId.gameName), foldRiotIdPart(riotId.tagLine));
        if (!player)
            throw HttpError(404, "No player named " + riotId.text() + " has been seen on this server.");
        PlayerProfile profile;
        profile.puuid = player->puuid;
        profile.gameName = player->gameName;
        profile.tagLine = player->tagLine;
        profile.platform = normalPlatform(player->platform).value_or(platformId.value_or(player->platform));
        // A player linked to an account here has a rank history: its newest entries are the ranks.
        if (std::optional<RiotAccount> account = repository.accountByPuuid(player->puuid)) {
            for (const char* queue : {"RANKED_SOLO_5x5", "RANKED_FLEX_SR"}) {
                if (std::optional<RankSnapshot> s = repository.latestSnapshot(account->id, queue)) {
                    if (!s->tier)
                        continue;
                    profile.ranks.push_back(RankEntry{s->queue, s->tier, s->division, s->lp, s->wins, s->losses});
                }
            }
        }
        return profile;
    });
}

std::string SocialService::timeline(int64_t userId, std::string_view riotMatchId) {
    static const std::string noTimeline = "This game has no timeline on this server.";
    if (riotMatchId.empty() || riotMatchId.size() > 64)
        throw HttpError(404, noTimeline);
    struct Mine {
        int64_t matchRowId = 0;
        std::string puuid;
        std::optional<std::string> json;
    };
    const Mine mine = m_database.read([&](Repository& repository) {
        const std::optional<GameWithRows> game = repository.gameByMatchId(riotMatchId);
        if (!game)
            throw HttpError(404, noTimeline);
        const auto puuids = puuidsOf(repository.accountsOfUser(userId));
        // Another user's game answers exactly as a game the server does not have.
        std::optional<Mine> first;
        for (const Participant& p : game->participants) {
            if (!puuids.count(p.puuid))
                continue;
            if (std::optional<std::string> json = repository.timelineOf(game->match.id, p.puuid))
                return Mine{game->match.id, p.puuid, std::move(json)};
            if (!first)
                first = Mine{game->match.id, p.puuid, std::nullopt};
        }
        if (!first)
            throw HttpError(404, noTimeline);
        return *first;
    });
    if (mine.json)
        return *mine.json;
    if (!m_riot || !m_champions)
        throw HttpError(404, noTimeline);
    return timelineFromRiot(mine.matchRowId, mine.puuid, riotMatchId);
}

std::string SocialService::timelineFromRiot(int64_t matchRowId, const std::string& ownerPuuid,
                                            std::string_view riotMatchId) {
    const RiotResult<std::string> match = m_riot->matchJson(riotMatchId, RiotPriority::Foreground);
    const RiotResult<std::string> timeline =
        match.ok() ? m_riot->timelineJson(riotMatchId, RiotPriority::Foreground) : match;
    if (!timeline.ok()) {
        if (timeline.outcome == RiotOutcome::NotFound)
            throw HttpError(404, "Riot keeps no timeline of this game.");
        throw HttpError(503, timeline.text);
    }
    try {
        const json::Document matchDocument(match.value);
        const json::Document timelineDocument(timeline.value);
        // The owner as Riot names them: the game's player whose id is, or stands for, theirs.
        std::vector<std::string> ids;
        simdjson::dom::array players;
        if (matchDocument.root()["metadata"]["participants"].get(players) == simdjson::SUCCESS)
            for (const json::Element id : players)
                if (std::string_view text; id.get(text) == simdjson::SUCCESS)
                    ids.emplace_back(text);
        const std::map<std::string, std::string> stable =
            m_database.read([&](Repository& repository) { return repository.stablePuuids(ids); });
        std::string ownerAtRiot;
        for (const std::string& id : ids) {
            const auto it = stable.find(id);
            if (id == ownerPuuid || (it != stable.end() && it->second == ownerPuuid))
                ownerAtRiot = id;
        }
        const std::optional<std::string> summary =
            ownerAtRiot.empty() ? std::nullopt
                                : riotTimelineSummaryJson(matchDocument.root(), timelineDocument.root(), ownerAtRiot,
                                                          *m_champions->current());
        if (!summary)
            throw HttpError(404, "This game's timeline cannot be read.");
        // Computed once: the next look answers from the archive without asking Riot.
        m_database.write([&](Repository& repository) { repository.storeTimeline(matchRowId, ownerPuuid, *summary); });
        return *summary;
    } catch (const HttpError& e) {
        if (e.status() == 400) // Riot's answer was not JSON
            throw HttpError(503, "The Riot API sent an unreadable timeline.");
        throw;
    }
}

} // namespace qf
