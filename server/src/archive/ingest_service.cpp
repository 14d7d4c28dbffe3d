// One upload of client games: read, compared with what is stored, written, scored.

#include "archive/ingest_service.h"

#include "archive/lcu_game_reader.h"
#include "archive/performance_score.h"
#include "archive/riot_match_reader.h"
#include "http/http_message.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>

namespace qf {

namespace {

// A positionless game is compared only with positionless games, but the store hands out every
// position when none is asked for: fetch more and let the score keep the ones that count.
constexpr int positionedHistory = 20;
constexpr int positionlessHistory = 200;

bool sameReal(const std::optional<double>& a, const std::optional<double>& b) {
    if (!a || !b)
        return a.has_value() == b.has_value();
    return std::fabs(*a - *b) <= 1e-9 * std::max({1.0, std::fabs(*a), std::fabs(*b)});
}

bool sameMatch(const Match& a, const Match& b) {
    return a.matchId == b.matchId && a.platform == b.platform && a.queueId == b.queueId && a.isRanked == b.isRanked &&
           a.gameCreation == b.gameCreation && a.gameDuration == b.gameDuration && a.gameVersion == b.gameVersion &&
           a.gameMode == b.gameMode && a.season == b.season;
}

bool sameRow(const Participant& a, const Participant& b) {
    return a.puuid == b.puuid && a.riotIdGameName == b.riotIdGameName && a.riotIdTagLine == b.riotIdTagLine &&
           a.teamId == b.teamId && a.win == b.win && a.championId == b.championId && a.championName == b.championName &&
           a.teamPosition == b.teamPosition && a.champLevel == b.champLevel && a.kills == b.kills &&
           a.deaths == b.deaths && a.assists == b.assists && a.totalCs == b.totalCs && a.goldEarned == b.goldEarned &&
           a.visionScore == b.visionScore && a.damageToChampions == b.damageToChampions && a.items == b.items &&
           sameReal(a.teamDamagePct, b.teamDamagePct) && sameReal(a.killParticipation, b.killParticipation) &&
           sameReal(a.csPerMin, b.csPerMin) && a.rankTier == b.rankTier && a.rankDivision == b.rankDivision &&
           a.rankLp == b.rankLp && a.profileIconId == b.profileIconId;
}

bool sameGame(const GameWithRows& stored, const GameRecord& game) {
    return sameMatch(stored.match, game.match) &&
           std::equal(stored.participants.begin(), stored.participants.end(), game.participants.begin(),
                      game.participants.end(), sameRow);
}

// The client knows nothing of ranks; what another source stored of them stays.
void keepRanks(const GameWithRows& stored, GameRecord& game) {
    for (Participant& row : game.participants) {
        const auto before = std::find_if(stored.participants.begin(), stored.participants.end(),
                                         [&](const Participant& p) { return p.puuid == row.puuid; });
        if (before == stored.participants.end() || row.rankTier || row.rankDivision || row.rankLp)
            continue;
        row.rankTier = before->rankTier;
        row.rankDivision = before->rankDivision;
        row.rankLp = before->rankLp;
    }
}

void scoreIfNone(Repository& repository, const OwnGame& game, const RiotAccount& account) {
    if (repository.hasScore(account.id, game.match.id))
        return;
    const int limit = game.me.teamPosition ? positionedHistory : positionlessHistory;
    const std::vector<OwnGame> history =
        repository.earlierGames(account.puuid, game.me.teamPosition, game.match.gameCreation, limit);
    PerformanceScore score = scoreGame(game, history, account.id);
    repository.insertScore(score);
}

// The League client and the Riot API name every player of a game by different puuids. A game
// stored from one source and arriving from the other pairs its seats (same side, same champion),
// which teaches the server each player's second id; then every id is replaced by the one the
// server answers for that player.
// Seats are paired only for a trusted copy (the Riot API's, or an upload by a player of the
// stored game): a made-up copy must not bind a stranger's id to someone else.
void useStableIds(Repository& repository, ClientGame& client, const std::optional<GameWithRows>& before, bool trusted) {
    std::vector<Participant>& rows = client.game.participants;
    if (before && trusted) {
        for (const Participant& row : rows) {
            const auto known = [&](const Participant& q) { return q.puuid == row.puuid; };
            if (std::any_of(before->participants.begin(), before->participants.end(), known))
                continue;
            const Participant* seat = nullptr;
            int seats = 0;
            for (const Participant& q : before->participants) {
                if (q.teamId == row.teamId && q.championId == row.championId) {
                    seat = &q;
                    ++seats;
                }
            }
            // Modes where one champion is picked twice on a side leave the seat unknown.
            if (seats == 1 && std::none_of(rows.begin(), rows.end(),
                                           [&](const Participant& other) { return other.puuid == seat->puuid; }))
                repository.addPlayerId(row.puuid, seat->puuid);
        }
    }
    std::vector<std::string> ids;
    for (const Participant& row : rows)
        ids.push_back(row.puuid);
    const std::map<std::string, std::string> stable = repository.stablePuuids(ids);
    if (stable.empty())
        return;
    for (Participant& row : rows)
        if (auto it = stable.find(row.puuid); it != stable.end())
            row.puuid = it->second;
    for (Player& player : client.players)
        if (auto it = stable.find(player.puuid); it != stable.end())
            player.puuid = it->second;
}

} // namespace

IngestService::IngestService(Database& database, const ChampionCatalog& champions)
    : m_database(database), m_fixed(&champions) {}

IngestService::IngestService(Database& database, const ChampionDirectory& champions)
    : m_database(database), m_directory(&champions) {}

IngestOutcome IngestService::ingest(json::Element games, int64_t now, const std::vector<std::string>* uploader) {
    simdjson::dom::array elements;
    if (games.get(elements) != simdjson::SUCCESS)
        throw HttpError(400, "Expected a JSON object with a \"games\" list.");

    const std::shared_ptr<const ChampionCatalog> snapshot = m_directory ? m_directory->current() : nullptr;
    const ChampionCatalog& champions = snapshot ? *snapshot : *m_fixed;

    IngestOutcome outcome;
    // Read outside the transaction: it needs no database. A game sent twice counts once, in its
    // fullest form.
    std::vector<ClientGame> batch;
    std::unordered_map<std::string, size_t> byMatchId;
    for (const json::Element element : elements) {
        std::optional<ClientGame> game = readClientGame(element, champions);
        if (!game) {
            ++outcome.skipped;
            continue;
        }
        const auto [it, fresh] = byMatchId.emplace(game->game.match.matchId, batch.size());
        if (fresh) {
            batch.push_back(std::move(*game));
            continue;
        }
        ++outcome.skipped;
        if (game->game.participants.size() > batch[it->second].game.participants.size())
            batch[it->second] = std::move(*game);
    }

    return store(batch, outcome, now, uploader);
}

IngestOutcome IngestService::ingestRiotMatch(json::Element match, int64_t now) {
    const std::shared_ptr<const ChampionCatalog> snapshot = m_directory ? m_directory->current() : nullptr;
    std::optional<ClientGame> game = readRiotMatch(match, snapshot ? *snapshot : *m_fixed);
    if (!game)
        return IngestOutcome{0, 1, {}};
    std::vector<ClientGame> games;
    games.push_back(std::move(*game));
    return ingestGames(std::move(games), now);
}

IngestOutcome IngestService::ingestGames(std::vector<ClientGame> games, int64_t now) {
    return store(games, IngestOutcome{}, now, nullptr);
}

IngestOutcome IngestService::store(std::vector<ClientGame>& batch, const IngestOutcome& outcome, int64_t now,
                                   const std::vector<std::string>* uploader) {
    return m_database.write([&](Repository& repository) {
        IngestOutcome result = outcome;
        std::vector<ClientGame*> stored;
        for (ClientGame& client : batch) {
            GameRecord& game = client.game;
            const std::optional<GameWithRows> before = repository.gameByMatchId(game.match.matchId);
            useStableIds(repository, client, before,
                         !uploader || (before && std::any_of(before->participants.begin(), before->participants.end(),
                                                             [&](const Participant& p) {
                                                                 return std::find(uploader->begin(), uploader->end(),
                                                                                  p.puuid) != uploader->end();
                                                             })));
            if (before) {
                keepRanks(*before, game);
                const bool lessComplete = !client.complete && before->participants.size() > game.participants.size();
                const bool othersGame =
                    uploader &&
                    std::none_of(before->participants.begin(), before->participants.end(), [&](const Participant& p) {
                        return std::find(uploader->begin(), uploader->end(), p.puuid) != uploader->end();
                    });
                if (lessComplete || othersGame || sameGame(*before, game)) {
                    ++result.skipped;
                    continue;
                }
                game.match.id = before->match.id;
                game.match.updatedAt = now;
                repository.updateMatch(game.match);
            } else {
                game.match.updatedAt = now;
                repository.insertMatch(game.match);
            }
            repository.replaceParticipants(game.match, game.participants);
            repository.upsertPlayers(client.players);
            ++result.ingested;
            result.matchIds.push_back(game.match.matchId);
            stored.push_back(&client);
        }

        // Oldest first, so a game of this batch is already there when a later one of it looks
        // back for its player's earlier games.
        std::stable_sort(stored.begin(), stored.end(), [](const ClientGame* a, const ClientGame* b) {
            return a->game.match.gameCreation < b->game.match.gameCreation;
        });
        std::unordered_map<std::string, std::optional<RiotAccount>> accounts;
        for (const ClientGame* client : stored)
            for (const Participant& row : client->game.participants) {
                auto it = accounts.find(row.puuid);
                if (it == accounts.end())
                    it = accounts.emplace(row.puuid, repository.accountByPuuid(row.puuid)).first;
                if (it->second)
                    scoreIfNone(repository, OwnGame{client->game.match, row}, *it->second);
            }
        return result;
    });
}

void IngestService::scoreAccount(Repository& repository, const RiotAccount& account) {
    for (const OwnGame& game : repository.gamesWithoutScore(account.id, account.puuid))
        scoreIfNone(repository, game, account);
}

} // namespace qf
