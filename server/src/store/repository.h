#pragma once

#include "store/records.h"
#include "store/sql_connection.h"

#include <map>
#include <span>
#include <string_view>

// Every question the server asks of its database, in SQL that both engines run. A Repository
// lives for one transaction (see Database::read and Database::write) on one borrowed
// connection; methods that change archive rows draw change numbers and so need a write
// transaction.

namespace qf {

// One of a player's games, with their own row of it.
struct OwnGame {
    Match match;
    Participant me;
};

// One of a user's games as a sync page sends it: the match, and its participant objects as
// JSON text (see participantListJson).
struct SyncedGame {
    Match match;
    std::string participantsJson;
};

class Repository {
public:
    explicit Repository(SqlConnection& connection) : m_db(connection) {}

    // --- Users and sessions -------------------------------------------------------------
    // Sets user.id. Throws UniqueViolation when the e-mail key is taken.
    void insertUser(User& user);
    [[nodiscard]] std::optional<User> userById(int64_t id);
    [[nodiscard]] std::optional<User> userByEmailKey(std::string_view emailKey);

    // Tokens are kept only as a hash of the token.
    void insertToken(std::string_view tokenHash, int64_t userId, int64_t expiresAt);
    // The user of an unexpired token.
    [[nodiscard]] std::optional<int64_t> userOfToken(std::string_view tokenHash, int64_t now);
    void deleteExpiredTokens(int64_t now);

    // Failed sign-ins by throttle key ("email:…", "addr:…"), for every server process at once.
    void recordLoginFailure(std::string_view key, int64_t at);
    [[nodiscard]] int64_t loginFailuresSince(std::string_view key, int64_t since);
    void clearLoginFailures(std::string_view key);

    // --- Linked Riot accounts -------------------------------------------------------------
    // In link order (by id).
    [[nodiscard]] std::vector<RiotAccount> accountsOfUser(int64_t userId);
    [[nodiscard]] std::optional<RiotAccount> accountByPuuid(std::string_view puuid);
    // Sets account.id; games already stored with the puuid become part of the user's archive
    // (touchMatchesOf(puuid) then sends them to mirrors that are past them). Throws
    // UniqueViolation when the puuid is linked already.
    void insertAccount(RiotAccount& account);
    // Everything but the user and the puuid, which an account keeps for life.
    void updateAccount(const RiotAccount& account);

    // --- Players seen in games ------------------------------------------------------------
    // Inserts, or updates the Riot ID, platform and icon when player.lastSeen is not older
    // than what is stored.
    void upsertPlayer(const Player& player);
    // The same for many at once (a puuid given twice counts with its newest sighting).
    void upsertPlayers(std::span<const Player> players);
    [[nodiscard]] std::optional<Player> playerByPuuid(std::string_view puuid);
    // The most recently seen player with this folded name and tag.
    [[nodiscard]] std::optional<Player> playerByRiotIdKey(std::string_view nameKey, std::string_view tagKey);

    // --- One player, two ids -------------------------------------------------------------------
    // The stable puuid of each given id that is another id of a known player (absent: the id is
    // stable itself, or unknown).
    [[nodiscard]] std::map<std::string, std::string> stablePuuids(std::span<const std::string> ids);
    // Records that alias names the same player as stable (which may itself be an alias: its own
    // stable id is used). Rows stored under alias move to the stable id, and their games get new
    // change numbers so every mirror receives them again. Nothing when alias is known already.
    void addPlayerId(std::string_view alias, std::string_view stable);

    // --- Riot API backfills ----------------------------------------------------------------------
    // Starts a run for the account unless one is under way (finished runs keep their stop_at).
    void requestBackfill(int64_t riotAccountId, std::string_view riotPuuid, std::string_view platform, int64_t now);
    // Claims the oldest unfinished run nobody holds, until now + leaseMs.
    [[nodiscard]] std::optional<Backfill> claimBackfill(int64_t now, int64_t leaseMs);
    // Stores the run's progress (all fields but the account).
    void saveBackfill(const Backfill& backfill);
    [[nodiscard]] std::optional<Backfill> backfillOf(int64_t riotAccountId);
    [[nodiscard]] bool hasMatch(std::string_view riotMatchId);

    // --- Matches and participants -----------------------------------------------------------
    [[nodiscard]] std::optional<GameWithRows> gameByMatchId(std::string_view riotMatchId);
    // Set match.id, match.changeSeq (a new change number).
    void insertMatch(Match& match);
    // Stores every field and gives the match a new change number (match.changeSeq).
    void updateMatch(Match& match);
    // The match's rows become exactly these (match: as stored, with id and changeSeq); sets each
    // participant's id and matchId, and makes the game part of the archive of every user with a
    // linked account among them.
    void replaceParticipants(const Match& match, std::vector<Participant>& participants);
    // Gives every match in which puuid played a new change number, so it reaches every mirror
    // again (after an account is linked, its games become part of a user's archive).
    void touchMatchesOf(std::string_view puuid);
    // Rows of these matches, by match then row id.
    [[nodiscard]] std::vector<Participant> participantsOf(std::span<const int64_t> matchIds);

    // Timeline summaries (JSON text) by match and the player whose view they take.
    void storeTimeline(int64_t matchId, std::string_view puuid, std::string_view json);
    [[nodiscard]] std::optional<std::string> timelineOf(int64_t matchId, std::string_view puuid);

    // --- Performance scores -------------------------------------------------------------------
    // The player's games in that position (any position when absent) created before the
    // given time, newest first, at most limit.
    [[nodiscard]] std::vector<OwnGame> earlierGames(std::string_view puuid, const std::optional<std::string>& position,
                                                    int64_t before, int limit);
    // The puuid's games that have no score for the account yet, oldest first.
    [[nodiscard]] std::vector<OwnGame> gamesWithoutScore(int64_t riotAccountId, std::string_view puuid);
    [[nodiscard]] bool hasScore(int64_t riotAccountId, int64_t matchId);
    // Sets score.id and score.changeSeq.
    void insertScore(PerformanceScore& score);

    // --- Rank snapshots -------------------------------------------------------------------------
    // Sets snapshot.id and snapshot.changeSeq.
    void insertRankSnapshot(RankSnapshot& snapshot);
    [[nodiscard]] std::optional<RankSnapshot> latestSnapshot(int64_t riotAccountId, std::string_view queue);

    // --- The archive sync: a user's rows changed after a change number, in change order ---------
    [[nodiscard]] std::vector<SyncedGame> changedGamesOfUser(int64_t userId, int64_t afterSeq, int limit);
    [[nodiscard]] std::vector<RankSnapshot> changedSnapshotsOfUser(int64_t userId, int64_t afterSeq, int limit);
    [[nodiscard]] std::vector<PerformanceScore> changedScoresOfUser(int64_t userId, int64_t afterSeq, int limit);

    // --- Social -----------------------------------------------------------------------------------
    // Every game in which one of the user's accounts played, newest first, with all its rows.
    [[nodiscard]] std::vector<GameWithRows> gamesOfUser(int64_t userId);

private:
    SqlConnection& m_db;
};

} // namespace qf
