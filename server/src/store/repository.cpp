// The server's queries, in SQL both engines run unchanged.

#include "store/repository.h"

#include "store/participant_json.h"

#include "store/column_codecs.h"

#include <algorithm>
#include <array>
#include <map>

namespace qf {

namespace {

// Column lists and the readers that match them, so every query reads a row the same way.

#define QF_USER_COLUMNS "id, email, email_key, name, password_hash, created_at"

User readUser(const SqlResult& r, size_t row) {
    User u;
    u.id = r.integer(row, 0);
    u.email = r.text(row, 1);
    u.emailKey = r.text(row, 2);
    u.name = r.optText(row, 3);
    u.passwordHash = r.text(row, 4);
    u.createdAt = r.integer(row, 5);
    return u;
}

#define QF_ACCOUNT_COLUMNS                                                                                             \
    "id, user_id, puuid, game_name, tag_line, platform, region, is_owner, profile_icon_id, summoner_level, linked_at"

RiotAccount readAccount(const SqlResult& r, size_t row) {
    RiotAccount a;
    a.id = r.integer(row, 0);
    a.userId = r.integer(row, 1);
    a.puuid = r.text(row, 2);
    a.gameName = r.optText(row, 3);
    a.tagLine = r.optText(row, 4);
    a.platform = r.text(row, 5);
    a.region = r.text(row, 6);
    a.isOwner = r.integer(row, 7) != 0;
    a.profileIconId = r.optInteger(row, 8);
    a.summonerLevel = r.optInteger(row, 9);
    a.linkedAt = r.integer(row, 10);
    return a;
}

#define QF_PLAYER_COLUMNS "puuid, game_name, tag_line, name_key, tag_key, platform, profile_icon_id, last_seen"

Player readPlayer(const SqlResult& r, size_t row) {
    Player p;
    p.puuid = r.text(row, 0);
    p.gameName = r.text(row, 1);
    p.tagLine = r.text(row, 2);
    p.nameKey = r.text(row, 3);
    p.tagKey = r.text(row, 4);
    p.platform = r.text(row, 5);
    p.profileIconId = r.optInteger(row, 6);
    p.lastSeen = r.integer(row, 7);
    return p;
}

#define QF_MATCH_COLUMNS                                                                                               \
    "m.id, m.match_id, m.platform, m.queue_id, m.is_ranked, m.game_creation, m.game_duration, m.game_version, "        \
    "m.game_mode, m.season, m.updated_at, m.change_seq"
constexpr int kMatchColumns = 12;

Match readMatch(const SqlResult& r, size_t row, int first = 0) {
    Match m;
    m.id = r.integer(row, first + 0);
    m.matchId = r.text(row, first + 1);
    m.platform = r.text(row, first + 2);
    m.queueId = r.integer(row, first + 3);
    m.isRanked = r.integer(row, first + 4) != 0;
    m.gameCreation = r.integer(row, first + 5);
    m.gameDuration = r.integer(row, first + 6);
    m.gameVersion = r.text(row, first + 7);
    m.gameMode = r.text(row, first + 8);
    m.season = r.optInteger(row, first + 9);
    m.updatedAt = r.integer(row, first + 10);
    m.changeSeq = r.integer(row, first + 11);
    return m;
}

#define QF_PARTICIPANT_COLUMNS                                                                                         \
    "p.id, p.match_id, p.puuid, p.riot_id_game_name, p.riot_id_tag_line, p.team_id, p.win, p.champion_id, "            \
    "p.champion_name, p.team_position, p.champ_level, p.kills, p.deaths, p.assists, p.total_cs, p.gold_earned, "       \
    "p.vision_score, p.damage_to_champions, p.items, p.team_damage_pct, p.kill_participation, p.cs_per_min, "          \
    "p.rank_tier, p.rank_division, p.rank_lp, p.profile_icon_id"

Participant readParticipant(const SqlResult& r, size_t row, int first = 0) {
    Participant p;
    p.id = r.integer(row, first + 0);
    p.matchId = r.integer(row, first + 1);
    p.puuid = r.text(row, first + 2);
    p.riotIdGameName = r.optText(row, first + 3);
    p.riotIdTagLine = r.optText(row, first + 4);
    p.teamId = r.integer(row, first + 5);
    p.win = r.integer(row, first + 6) != 0;
    p.championId = r.integer(row, first + 7);
    p.championName = r.text(row, first + 8);
    p.teamPosition = r.optText(row, first + 9);
    p.champLevel = r.optInteger(row, first + 10);
    p.kills = r.integer(row, first + 11);
    p.deaths = r.integer(row, first + 12);
    p.assists = r.integer(row, first + 13);
    p.totalCs = r.integer(row, first + 14);
    p.goldEarned = r.integer(row, first + 15);
    p.visionScore = r.integer(row, first + 16);
    p.damageToChampions = r.integer(row, first + 17);
    p.items = decodeItems(r.text(row, first + 18));
    p.teamDamagePct = r.optReal(row, first + 19);
    p.killParticipation = r.optReal(row, first + 20);
    p.csPerMin = r.optReal(row, first + 21);
    p.rankTier = r.optText(row, first + 22);
    p.rankDivision = r.optText(row, first + 23);
    p.rankLp = r.optInteger(row, first + 24);
    p.profileIconId = r.optInteger(row, first + 25);
    return p;
}

#define QF_SCORE_COLUMNS                                                                                               \
    "s.id, s.riot_account_id, s.match_id, s.champion_id, s.team_position, s.score, s.components, s.baseline_kind, "    \
    "s.change_seq"

PerformanceScore readScore(const SqlResult& r, size_t row) {
    PerformanceScore s;
    s.id = r.integer(row, 0);
    s.riotAccountId = r.integer(row, 1);
    s.matchId = r.integer(row, 2);
    s.championId = r.integer(row, 3);
    s.teamPosition = r.optText(row, 4);
    s.score = r.real(row, 5);
    s.components = decodeComponents(r.text(row, 6));
    s.baselineKind = r.text(row, 7);
    s.changeSeq = r.integer(row, 8);
    return s;
}

#define QF_SNAPSHOT_COLUMNS                                                                                            \
    "r.id, r.riot_account_id, r.queue, r.tier, r.division, r.lp, r.wins, r.losses, r.captured_at, r.change_seq"

RankSnapshot readSnapshot(const SqlResult& r, size_t row) {
    RankSnapshot s;
    s.id = r.integer(row, 0);
    s.riotAccountId = r.integer(row, 1);
    s.queue = r.text(row, 2);
    s.tier = r.optText(row, 3);
    s.division = r.optText(row, 4);
    s.lp = r.integer(row, 5);
    s.wins = r.integer(row, 6);
    s.losses = r.integer(row, 7);
    s.capturedAt = r.integer(row, 8);
    s.changeSeq = r.integer(row, 9);
    return s;
}

std::vector<OwnGame> readOwnGames(const SqlResult& r) {
    std::vector<OwnGame> games;
    games.reserve(r.rows());
    for (size_t i = 0; i < r.rows(); ++i)
        games.push_back({readMatch(r, i), readParticipant(r, i, kMatchColumns)});
    return games;
}

// The match ids of a user's archive: every match one of the user's puuids played in. Kept as
// an IN list so each match counts once even when two of the user's accounts played it.
// Every (match, user, number) that makes a game part of a user's archive: a linked account
// played in it. Completed with a WHERE on p.
#define QF_OWNERS_OF_MATCHES                                                                                           \
    "SELECT DISTINCT p.match_id, a.user_id, m.change_seq FROM participants p "                                         \
    "JOIN riot_accounts a ON a.puuid = p.puuid JOIN matches m ON m.id = p.match_id"

std::string text(std::string_view s) {
    return std::string(s);
}

} // namespace

// --- Users and sessions ---------------------------------------------------------------------

void Repository::insertUser(User& user) {
    // DO NOTHING keeps a PostgreSQL transaction usable after a taken e-mail, so the caller may
    // answer and carry on.
    SqlResult r = m_db.query("INSERT INTO users (email, email_key, name, password_hash, created_at) "
                             "VALUES (?, ?, ?, ?, ?) ON CONFLICT DO NOTHING RETURNING id",
                             {user.email, user.emailKey, sqlOpt(user.name), user.passwordHash, user.createdAt});
    if (r.empty())
        throw UniqueViolation("an account with this e-mail exists already");
    user.id = r.integer(0, 0);
}

std::optional<User> Repository::userById(int64_t id) {
    SqlResult r = m_db.query("SELECT " QF_USER_COLUMNS " FROM users WHERE id = ?", {id});
    if (r.empty())
        return std::nullopt;
    return readUser(r, 0);
}

std::optional<User> Repository::userByEmailKey(std::string_view emailKey) {
    SqlResult r = m_db.query("SELECT " QF_USER_COLUMNS " FROM users WHERE email_key = ?", {text(emailKey)});
    if (r.empty())
        return std::nullopt;
    return readUser(r, 0);
}

void Repository::insertToken(std::string_view tokenHash, int64_t userId, int64_t expiresAt) {
    m_db.query("INSERT INTO tokens (token_hash, user_id, expires_at) VALUES (?, ?, ?)",
               {text(tokenHash), userId, expiresAt});
}

std::optional<int64_t> Repository::userOfToken(std::string_view tokenHash, int64_t now) {
    SqlResult r =
        m_db.query("SELECT user_id FROM tokens WHERE token_hash = ? AND expires_at > ?", {text(tokenHash), now});
    if (r.empty())
        return std::nullopt;
    return r.integer(0, 0);
}

void Repository::deleteExpiredTokens(int64_t now) {
    m_db.query("DELETE FROM tokens WHERE expires_at <= ?", {now});
}

void Repository::recordLoginFailure(std::string_view key, int64_t at) {
    m_db.query("INSERT INTO login_failures (throttle_key, failed_at) VALUES (?, ?)", {text(key), at});
}

int64_t Repository::loginFailuresSince(std::string_view key, int64_t since) {
    return m_db
        .query("SELECT COUNT(*) FROM login_failures WHERE throttle_key = ? AND failed_at >= ?", {text(key), since})
        .integer(0, 0);
}

void Repository::clearLoginFailures(std::string_view key) {
    m_db.query("DELETE FROM login_failures WHERE throttle_key = ?", {text(key)});
}

// --- Linked Riot accounts ---------------------------------------------------------------------

std::vector<RiotAccount> Repository::accountsOfUser(int64_t userId) {
    SqlResult r =
        m_db.query("SELECT " QF_ACCOUNT_COLUMNS " FROM riot_accounts WHERE user_id = ? ORDER BY id", {userId});
    std::vector<RiotAccount> accounts;
    for (size_t i = 0; i < r.rows(); ++i)
        accounts.push_back(readAccount(r, i));
    return accounts;
}

std::optional<RiotAccount> Repository::accountByPuuid(std::string_view puuid) {
    SqlResult r = m_db.query("SELECT " QF_ACCOUNT_COLUMNS " FROM riot_accounts WHERE puuid = ?", {text(puuid)});
    if (r.empty())
        return std::nullopt;
    return readAccount(r, 0);
}

void Repository::insertAccount(RiotAccount& a) {
    SqlResult r = m_db.query(
        "INSERT INTO riot_accounts (user_id, puuid, game_name, tag_line, platform, region, is_owner, profile_icon_id, "
        "summoner_level, linked_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT DO NOTHING RETURNING id",
        {a.userId, a.puuid, sqlOpt(a.gameName), sqlOpt(a.tagLine), a.platform, a.region, int64_t{a.isOwner},
         sqlOpt(a.profileIconId), sqlOpt(a.summonerLevel), a.linkedAt});
    if (r.empty())
        throw UniqueViolation("this Riot account is linked already");
    a.id = r.integer(0, 0);
    // Games stored before the link become part of the user's archive.
    m_db.query("INSERT INTO user_matches (match_id, user_id, change_seq) " QF_OWNERS_OF_MATCHES
               " WHERE p.puuid = ? ON CONFLICT (match_id, user_id) DO NOTHING",
               {a.puuid});
}

void Repository::updateAccount(const RiotAccount& a) {
    m_db.query("UPDATE riot_accounts SET game_name = ?, tag_line = ?, platform = ?, region = ?, is_owner = ?, "
               "profile_icon_id = ?, summoner_level = ?, linked_at = ? WHERE id = ?",
               {sqlOpt(a.gameName), sqlOpt(a.tagLine), a.platform, a.region, int64_t{a.isOwner},
                sqlOpt(a.profileIconId), sqlOpt(a.summonerLevel), a.linkedAt, a.id});
}

// --- Players seen in games --------------------------------------------------------------------

void Repository::upsertPlayer(const Player& player) {
    upsertPlayers(std::span<const Player>(&player, 1));
}

void Repository::upsertPlayers(std::span<const Player> given) {
    // PostgreSQL refuses to change one row twice in a statement: a puuid given twice keeps its
    // newest sighting.
    std::vector<Player> players;
    players.reserve(given.size());
    for (const Player& p : given) {
        auto same = std::find_if(players.begin(), players.end(), [&](const Player& q) { return q.puuid == p.puuid; });
        if (same == players.end())
            players.push_back(p);
        else if (p.lastSeen >= same->lastSeen)
            *same = p;
    }
    // One statement for a game's ten players rather than ten round trips; the statement text
    // depends only on the count, so a handful of prepared statements serve every game. A game
    // that carries no icon keeps the one known.
    static constexpr size_t kMostAtOnce = 16;
    for (size_t start = 0; start < players.size(); start += kMostAtOnce) {
        const std::span<const Player> chunk =
            std::span<const Player>(players).subspan(start, std::min(kMostAtOnce, players.size() - start));
        std::string sql = "INSERT INTO players (" QF_PLAYER_COLUMNS ") VALUES ";
        std::vector<SqlValue> params;
        params.reserve(chunk.size() * 8);
        for (size_t i = 0; i < chunk.size(); ++i) {
            const Player& p = chunk[i];
            sql += i ? ", (?, ?, ?, ?, ?, ?, ?, ?)" : "(?, ?, ?, ?, ?, ?, ?, ?)";
            for (SqlValue v : {SqlValue(p.puuid), SqlValue(p.gameName), SqlValue(p.tagLine), SqlValue(p.nameKey),
                               SqlValue(p.tagKey), SqlValue(p.platform), sqlOpt(p.profileIconId), SqlValue(p.lastSeen)})
                params.push_back(std::move(v));
        }
        sql += " ON CONFLICT (puuid) DO UPDATE SET game_name = excluded.game_name, tag_line = excluded.tag_line, "
               "name_key = excluded.name_key, tag_key = excluded.tag_key, platform = excluded.platform, "
               "profile_icon_id = COALESCE(excluded.profile_icon_id, players.profile_icon_id), "
               "last_seen = excluded.last_seen "
               "WHERE excluded.last_seen >= players.last_seen";
        m_db.query(sql, params);
    }
}

std::optional<Player> Repository::playerByPuuid(std::string_view puuid) {
    SqlResult r = m_db.query("SELECT " QF_PLAYER_COLUMNS " FROM players WHERE puuid = ?", {text(puuid)});
    if (r.empty())
        return std::nullopt;
    return readPlayer(r, 0);
}

std::optional<Player> Repository::playerByRiotIdKey(std::string_view nameKey, std::string_view tagKey) {
    SqlResult r = m_db.query("SELECT " QF_PLAYER_COLUMNS " FROM players WHERE name_key = ? AND tag_key = ? "
                             "ORDER BY last_seen DESC, puuid LIMIT 1",
                             {text(nameKey), text(tagKey)});
    if (r.empty())
        return std::nullopt;
    return readPlayer(r, 0);
}

// --- One player, two ids -------------------------------------------------------------------------

std::map<std::string, std::string> Repository::stablePuuids(std::span<const std::string> ids) {
    std::map<std::string, std::string> out;
    static constexpr size_t kMostAtOnce = 16;
    for (size_t start = 0; start < ids.size(); start += kMostAtOnce) {
        const size_t n = std::min(kMostAtOnce, ids.size() - start);
        std::string sql = "SELECT alias, puuid FROM player_ids WHERE alias IN (";
        std::vector<SqlValue> params;
        for (size_t i = 0; i < n; ++i) {
            sql += i ? ", ?" : "?";
            params.emplace_back(ids[start + i]);
        }
        sql += ")";
        const SqlResult r = m_db.query(sql, params);
        for (size_t i = 0; i < r.rows(); ++i)
            out.emplace(r.text(i, 0), r.text(i, 1));
    }
    return out;
}

void Repository::addPlayerId(std::string_view alias, std::string_view stableGiven) {
    std::string stable(stableGiven);
    if (const SqlResult r = m_db.query("SELECT puuid FROM player_ids WHERE alias = ?", {stable}); !r.empty())
        stable = r.text(0, 0);
    if (alias == stable || alias.empty() || stable.empty())
        return;
    if (!m_db.query("SELECT 1 FROM player_ids WHERE alias = ?", {text(alias)}).empty())
        return;
    m_db.query("INSERT INTO player_ids (alias, puuid) VALUES (?, ?)", {text(alias), stable});
    // Ids that pointed at the alias point at the stable id now: one hop always.
    m_db.query("UPDATE player_ids SET puuid = ? WHERE puuid = ?", {stable, text(alias)});

    const SqlResult touched =
        m_db.query("SELECT DISTINCT match_id FROM participants WHERE puuid = ? ORDER BY match_id", {text(alias)});
    if (touched.empty()) {
        m_db.query("DELETE FROM players WHERE puuid = ? AND EXISTS (SELECT 1 FROM players q WHERE q.puuid = ?)",
                   {text(alias), stable});
        m_db.query("UPDATE players SET puuid = ? WHERE puuid = ?", {stable, text(alias)});
        return;
    }
    m_db.query("UPDATE participants SET puuid = ? WHERE puuid = ?", {stable, text(alias)});
    m_db.query("DELETE FROM timelines WHERE puuid = ? AND EXISTS (SELECT 1 FROM timelines t WHERE t.puuid = ? "
               "AND t.match_id = timelines.match_id)",
               {text(alias), stable});
    m_db.query("UPDATE timelines SET puuid = ? WHERE puuid = ?", {stable, text(alias)});
    m_db.query("DELETE FROM players WHERE puuid = ? AND EXISTS (SELECT 1 FROM players q WHERE q.puuid = ?)",
               {text(alias), stable});
    m_db.query("UPDATE players SET puuid = ? WHERE puuid = ?", {stable, text(alias)});
    // The games' rows changed: their JSON is written again, and every mirror gets them again.
    std::vector<int64_t> ids;
    for (size_t i = 0; i < touched.rows(); ++i)
        ids.push_back(touched.integer(i, 0));
    std::map<int64_t, std::vector<Participant>> rows;
    for (Participant& p : participantsOf(ids))
        rows[p.matchId].push_back(std::move(p));
    for (const int64_t id : ids) {
        const int64_t seq = m_db.nextChangeSeq();
        m_db.query("UPDATE matches SET change_seq = ?, participants_json = ? WHERE id = ?",
                   {seq, participantListJson(rows[id]), id});
        m_db.query("DELETE FROM user_matches WHERE match_id = ?", {id});
        m_db.query("INSERT INTO user_matches (match_id, user_id, change_seq) " QF_OWNERS_OF_MATCHES
                   " WHERE p.match_id = ?",
                   {id});
    }
}

// --- Riot API backfills ---------------------------------------------------------------------------

#define QF_BACKFILL_COLUMNS                                                                                            \
    "riot_account_id, riot_puuid, platform, next_start, found, fetched, run_newest, stop_at, done, claimed_until, "    \
    "updated_at"

namespace {

Backfill readBackfill(const SqlResult& r, size_t row) {
    Backfill b;
    b.riotAccountId = r.integer(row, 0);
    b.riotPuuid = r.text(row, 1);
    b.platform = r.text(row, 2);
    b.nextStart = r.integer(row, 3);
    b.found = r.integer(row, 4);
    b.fetched = r.integer(row, 5);
    if (!r.isNull(row, 6))
        b.runNewest = r.text(row, 6);
    if (!r.isNull(row, 7))
        b.stopAt = r.text(row, 7);
    b.done = r.integer(row, 8) != 0;
    b.claimedUntil = r.integer(row, 9);
    b.updatedAt = r.integer(row, 10);
    return b;
}

} // namespace

void Repository::requestBackfill(int64_t riotAccountId, std::string_view riotPuuid, std::string_view platform,
                                 int64_t now) {
    m_db.query("INSERT INTO backfills (" QF_BACKFILL_COLUMNS ") VALUES (?, ?, ?, 0, 0, 0, NULL, NULL, 0, 0, ?) "
               "ON CONFLICT (riot_account_id) DO UPDATE SET riot_puuid = excluded.riot_puuid, "
               "platform = excluded.platform, next_start = 0, found = 0, fetched = 0, run_newest = NULL, done = 0, "
               "updated_at = excluded.updated_at WHERE backfills.done = 1",
               {riotAccountId, text(riotPuuid), text(platform), now});
}

std::optional<Backfill> Repository::claimBackfill(int64_t now, int64_t leaseMs) {
    // The row's claim is tested again in the UPDATE itself: of two servers racing for one run,
    // only one changes it.
    const SqlResult r =
        m_db.query("UPDATE backfills SET claimed_until = ? WHERE riot_account_id = (SELECT riot_account_id FROM "
                   "backfills WHERE done = 0 AND claimed_until < ? ORDER BY updated_at LIMIT 1) AND done = 0 AND "
                   "claimed_until < ? RETURNING " QF_BACKFILL_COLUMNS,
                   {now + leaseMs, now, now});
    if (r.empty())
        return std::nullopt;
    return readBackfill(r, 0);
}

void Repository::saveBackfill(const Backfill& b) {
    m_db.query("UPDATE backfills SET riot_puuid = ?, platform = ?, next_start = ?, found = ?, fetched = ?, "
               "run_newest = ?, stop_at = ?, done = ?, claimed_until = ?, updated_at = ? WHERE riot_account_id = ?",
               {b.riotPuuid, b.platform, b.nextStart, b.found, b.fetched, sqlOpt(b.runNewest), sqlOpt(b.stopAt),
                int64_t{b.done}, b.claimedUntil, b.updatedAt, b.riotAccountId});
}

std::optional<Backfill> Repository::backfillOf(int64_t riotAccountId) {
    const SqlResult r =
        m_db.query("SELECT " QF_BACKFILL_COLUMNS " FROM backfills WHERE riot_account_id = ?", {riotAccountId});
    if (r.empty())
        return std::nullopt;
    return readBackfill(r, 0);
}

bool Repository::hasMatch(std::string_view riotMatchId) {
    return !m_db.query("SELECT 1 FROM matches WHERE match_id = ?", {text(riotMatchId)}).empty();
}

// --- Matches and participants -------------------------------------------------------------------

std::optional<GameWithRows> Repository::gameByMatchId(std::string_view riotMatchId) {
    SqlResult r = m_db.query("SELECT " QF_MATCH_COLUMNS " FROM matches m WHERE m.match_id = ?", {text(riotMatchId)});
    if (r.empty())
        return std::nullopt;
    GameWithRows game{readMatch(r, 0), {}};
    SqlResult rows = m_db.query(
        "SELECT " QF_PARTICIPANT_COLUMNS " FROM participants p WHERE p.match_id = ? ORDER BY p.id", {game.match.id});
    for (size_t i = 0; i < rows.rows(); ++i)
        game.participants.push_back(readParticipant(rows, i));
    return game;
}

void Repository::insertMatch(Match& m) {
    const int64_t seq = m_db.nextChangeSeq();
    SqlResult r = m_db.query(
        "INSERT INTO matches (match_id, platform, queue_id, is_ranked, game_creation, game_duration, game_version, "
        "game_mode, season, updated_at, change_seq) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) "
        "ON CONFLICT DO NOTHING RETURNING id",
        {m.matchId, m.platform, m.queueId, int64_t{m.isRanked}, m.gameCreation, m.gameDuration, m.gameVersion,
         m.gameMode, sqlOpt(m.season), m.updatedAt, seq});
    if (r.empty())
        throw UniqueViolation("the match " + m.matchId + " is stored already");
    m.id = r.integer(0, 0);
    m.changeSeq = seq;
}

void Repository::updateMatch(Match& m) {
    const int64_t seq = m_db.nextChangeSeq();
    SqlResult r = m_db.query("UPDATE matches SET match_id = ?, platform = ?, queue_id = ?, is_ranked = ?, "
                             "game_creation = ?, game_duration = ?, game_version = ?, game_mode = ?, season = ?, "
                             "updated_at = ?, change_seq = ? WHERE id = ? RETURNING id",
                             {m.matchId, m.platform, m.queueId, int64_t{m.isRanked}, m.gameCreation, m.gameDuration,
                              m.gameVersion, m.gameMode, sqlOpt(m.season), m.updatedAt, seq, m.id});
    if (r.empty())
        throw StoreError("no stored match has the id " + std::to_string(m.id));
    m.changeSeq = seq;
    m_db.query("UPDATE user_matches SET change_seq = ? WHERE match_id = ?", {seq, m.id});
    m_db.query("UPDATE participants SET game_creation = ? WHERE match_id = ?", {m.gameCreation, m.id});
}

void Repository::replaceParticipants(const Match& match, std::vector<Participant>& participants) {
    m_db.query("DELETE FROM participants WHERE match_id = ?", {match.id});
    for (Participant& p : participants) {
        SqlResult r = m_db.query(
            "INSERT INTO participants (match_id, puuid, riot_id_game_name, riot_id_tag_line, team_id, win, "
            "champion_id, champion_name, team_position, champ_level, kills, deaths, assists, total_cs, gold_earned, "
            "vision_score, damage_to_champions, items, team_damage_pct, kill_participation, cs_per_min, rank_tier, "
            "rank_division, rank_lp, profile_icon_id, game_creation) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id",
            {match.id,
             p.puuid,
             sqlOpt(p.riotIdGameName),
             sqlOpt(p.riotIdTagLine),
             p.teamId,
             int64_t{p.win},
             p.championId,
             p.championName,
             sqlOpt(p.teamPosition),
             sqlOpt(p.champLevel),
             p.kills,
             p.deaths,
             p.assists,
             p.totalCs,
             p.goldEarned,
             p.visionScore,
             p.damageToChampions,
             encodeItems(p.items),
             sqlOpt(p.teamDamagePct),
             sqlOpt(p.killParticipation),
             sqlOpt(p.csPerMin),
             sqlOpt(p.rankTier),
             sqlOpt(p.rankDivision),
             sqlOpt(p.rankLp),
             sqlOpt(p.profileIconId),
             match.gameCreation});
        p.id = r.integer(0, 0);
        p.matchId = match.id;
    }
    m_db.query("UPDATE matches SET participants_json = ? WHERE id = ?", {participantListJson(participants), match.id});
    // Who owns the game follows its players: a row added or dropped can add or drop a user.
    m_db.query("DELETE FROM user_matches WHERE match_id = ?", {match.id});
    m_db.query("INSERT INTO user_matches (match_id, user_id, change_seq) " QF_OWNERS_OF_MATCHES " WHERE p.match_id = ?",
               {match.id});
}

void Repository::touchMatchesOf(std::string_view puuid) {
    // Each match gets a number of its own: a sync cursor is the last number a mirror received,
    // so two rows sharing one could be cut apart by a page boundary. The old order is kept.
    SqlResult r = m_db.query("SELECT m.id FROM matches m WHERE m.id IN (SELECT p.match_id FROM participants p "
                             "WHERE p.puuid = ?) ORDER BY m.change_seq",
                             {text(puuid)});
    for (size_t i = 0; i < r.rows(); ++i)
        m_db.query("UPDATE matches SET change_seq = ? WHERE id = ?", {m_db.nextChangeSeq(), r.integer(i, 0)});
    // The puuid's account was just linked (or moved): its games gain an owner, and every owner
    // sees them again under their new numbers.
    m_db.query("INSERT INTO user_matches (match_id, user_id, change_seq) " QF_OWNERS_OF_MATCHES
               " WHERE p.match_id IN (SELECT q.match_id FROM participants q WHERE q.puuid = ?) "
               "ON CONFLICT (match_id, user_id) DO UPDATE SET change_seq = excluded.change_seq",
               {text(puuid)});
}

std::vector<Participant> Repository::participantsOf(std::span<const int64_t> matchIds) {
    std::vector<int64_t> ids(matchIds.begin(), matchIds.end());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());

    // Chunks of a few fixed sizes, the last one padded by repeating an id, so a handful of
    // prepared statements serve any number of ids. Ascending chunks keep the overall order.
    static constexpr size_t kSizes[] = {8, 64, 512};
    static const std::array<std::string, 3> kQueries = [] {
        std::array<std::string, 3> q;
        for (size_t s = 0; s < q.size(); ++s) {
            q[s] = "SELECT " QF_PARTICIPANT_COLUMNS " FROM participants p WHERE p.match_id IN (";
            for (size_t i = 0; i < kSizes[s]; ++i)
                q[s] += i ? ", ?" : "?";
            q[s] += ") ORDER BY p.match_id, p.id";
        }
        return q;
    }();

    std::vector<Participant> out;
    for (size_t start = 0; start < ids.size();) {
        const size_t left = ids.size() - start;
        size_t s = 0;
        while (s + 1 < kQueries.size() && kSizes[s] < left)
            ++s;
        const size_t take = std::min(left, kSizes[s]);
        std::vector<SqlValue> params;
        params.reserve(kSizes[s]);
        for (size_t i = 0; i < kSizes[s]; ++i)
            params.emplace_back(ids[start + std::min(i, take - 1)]);
        SqlResult r = m_db.query(kQueries[s], params);
        for (size_t i = 0; i < r.rows(); ++i)
            out.push_back(readParticipant(r, i));
        start += take;
    }
    return out;
}

void Repository::storeTimeline(int64_t matchId, std::string_view puuid, std::string_view json) {
    m_db.query("INSERT INTO timelines (match_id, puuid, json) VALUES (?, ?, ?) "
               "ON CONFLICT (match_id, puuid) DO UPDATE SET json = excluded.json",
               {matchId, text(puuid), text(json)});
}

std::optional<std::string> Repository::timelineOf(int64_t matchId, std::string_view puuid) {
    SqlResult r = m_db.query("SELECT json FROM timelines WHERE match_id = ? AND puuid = ?", {matchId, text(puuid)});
    if (r.empty())
        return std::nullopt;
    return r.text(0, 0);
}

// --- Performance scores ---------------------------------------------------------------------------

std::vector<OwnGame> Repository::earlierGames(std::string_view puuid, const std::optional<std::string>& position,
                                              int64_t before, int limit) {
    // Two statements rather than "? IS NULL OR …": PostgreSQL cannot type a parameter that is
    // only compared with NULL, and each keeps a plan of its own.
    if (position) {
        return readOwnGames(m_db.query("SELECT " QF_MATCH_COLUMNS ", " QF_PARTICIPANT_COLUMNS
                                       " FROM participants p JOIN matches m ON m.id = p.match_id "
                                       "WHERE p.puuid = ? AND p.team_position = ? AND p.game_creation < ? "
                                       "ORDER BY p.game_creation DESC, p.match_id DESC LIMIT ?",
                                       {text(puuid), *position, before, int64_t{limit}}));
    }
    return readOwnGames(m_db.query("SELECT " QF_MATCH_COLUMNS ", " QF_PARTICIPANT_COLUMNS
                                   " FROM participants p JOIN matches m ON m.id = p.match_id "
                                   "WHERE p.puuid = ? AND p.game_creation < ? "
                                   "ORDER BY p.game_creation DESC, p.match_id DESC LIMIT ?",
                                   {text(puuid), before, int64_t{limit}}));
}

std::vector<OwnGame> Repository::gamesWithoutScore(int64_t riotAccountId, std::string_view puuid) {
    return readOwnGames(m_db.query("SELECT " QF_MATCH_COLUMNS ", " QF_PARTICIPANT_COLUMNS
                                   " FROM participants p JOIN matches m ON m.id = p.match_id "
                                   "WHERE p.puuid = ? AND NOT EXISTS (SELECT 1 FROM performance_scores s "
                                   "WHERE s.riot_account_id = ? AND s.match_id = m.id) "
                                   "ORDER BY m.game_creation, m.id",
                                   {text(puuid), riotAccountId}));
}

bool Repository::hasScore(int64_t riotAccountId, int64_t matchId) {
    return !m_db.query("SELECT 1 FROM performance_scores WHERE riot_account_id = ? AND match_id = ?",
                       {riotAccountId, matchId})
                .empty();
}

void Repository::insertScore(PerformanceScore& s) {
    const int64_t seq = m_db.nextChangeSeq();
    SqlResult r = m_db.query("INSERT INTO performance_scores (riot_account_id, match_id, champion_id, team_position, "
                             "score, components, baseline_kind, change_seq) VALUES (?, ?, ?, ?, ?, ?, ?, ?) "
                             "ON CONFLICT DO NOTHING RETURNING id",
                             {s.riotAccountId, s.matchId, s.championId, sqlOpt(s.teamPosition), s.score,
                              encodeComponents(s.components), s.baselineKind, seq});
    if (r.empty())
        throw UniqueViolation("this game has a score for this account already");
    s.id = r.integer(0, 0);
    s.changeSeq = seq;
}

// --- Rank snapshots -------------------------------------------------------------------------------

void Repository::insertRankSnapshot(RankSnapshot& s) {
    const int64_t seq = m_db.nextChangeSeq();
    SqlResult r = m_db.query(
        "INSERT INTO rank_snapshots (riot_account_id, queue, tier, division, lp, wins, losses, "
        "captured_at, change_seq) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id",
        {s.riotAccountId, s.queue, sqlOpt(s.tier), sqlOpt(s.division), s.lp, s.wins, s.losses, s.capturedAt, seq});
    s.id = r.integer(0, 0);
    s.changeSeq = seq;
}

std::optional<RankSnapshot> Repository::latestSnapshot(int64_t riotAccountId, std::string_view queue) {
    SqlResult r = m_db.query("SELECT " QF_SNAPSHOT_COLUMNS " FROM rank_snapshots r "
                             "WHERE r.riot_account_id = ? AND r.queue = ? "
                             "ORDER BY r.captured_at DESC, r.id DESC LIMIT 1",
                             {riotAccountId, text(queue)});
    if (r.empty())
        return std::nullopt;
    return readSnapshot(r, 0);
}

// --- The archive sync ---------------------------------------------------------------------------
//
// Matches are global, so a user's changed matches are found from the user's side: their match
// ids through participants(puuid, match_id), then those after the cursor sorted by number. The
// cost follows the size of the user's archive, never the size of the whole table. The unary
// plus rules out the other plan, walking the change_seq index through every user's matches,
// whatever statistics the engine keeps.

std::vector<SyncedGame> Repository::changedGamesOfUser(int64_t userId, int64_t afterSeq, int limit) {
    SqlResult r = m_db.query("SELECT " QF_MATCH_COLUMNS ", m.participants_json FROM user_matches u "
                             "JOIN matches m ON m.id = u.match_id WHERE u.user_id = ? AND u.change_seq > ? "
                             "ORDER BY u.change_seq LIMIT ?",
                             {userId, afterSeq, int64_t{limit}});
    std::vector<SyncedGame> games;
    games.reserve(r.rows());
    std::vector<int64_t> unwritten;
    for (size_t i = 0; i < r.rows(); ++i) {
        games.push_back({readMatch(r, i), r.isNull(i, kMatchColumns) ? std::string() : r.text(i, kMatchColumns)});
        if (r.isNull(i, kMatchColumns))
            unwritten.push_back(games.back().match.id);
    }
    // Games stored before their rows were kept as text: written from the rows here.
    if (!unwritten.empty()) {
        std::map<int64_t, std::vector<Participant>> rows;
        for (Participant& p : participantsOf(unwritten))
            rows[p.matchId].push_back(std::move(p));
        for (SyncedGame& game : games) {
            if (auto it = rows.find(game.match.id); it != rows.end())
                game.participantsJson = participantListJson(it->second);
        }
    }
    return games;
}

// Scores and snapshots belong to an account: (riot_account_id, change_seq) walks one account's
// rows after the cursor in order, so each account is asked on its own, at most limit rows each,
// and the lists are merged. One query over "riot_account_id IN (…)" would fetch every row after
// the cursor and sort them all before the limit: most of the archive on a first pull.
namespace {

template <class Row, class Read>
std::vector<Row> changedRowsOfAccounts(SqlConnection& db, int64_t userId, const char* sql, int64_t afterSeq, int limit,
                                       Read read) {
    const SqlResult accounts = db.query("SELECT id FROM riot_accounts WHERE user_id = ? ORDER BY id", {userId});
    std::vector<Row> rows;
    for (size_t a = 0; a < accounts.rows(); ++a) {
        const SqlResult r = db.query(sql, {accounts.integer(a, 0), afterSeq, int64_t{limit}});
        for (size_t i = 0; i < r.rows(); ++i)
            rows.push_back(read(r, i));
    }
    if (accounts.rows() > 1) {
        std::sort(rows.begin(), rows.end(), [](const Row& x, const Row& y) { return x.changeSeq < y.changeSeq; });
        if (rows.size() > size_t(std::max(limit, 0)))
            rows.resize(size_t(std::max(limit, 0)));
    }
    return rows;
}

} // namespace

std::vector<RankSnapshot> Repository::changedSnapshotsOfUser(int64_t userId, int64_t afterSeq, int limit) {
    return changedRowsOfAccounts<RankSnapshot>(m_db, userId,
                                               "SELECT " QF_SNAPSHOT_COLUMNS " FROM rank_snapshots r "
                                               "WHERE r.riot_account_id = ? AND r.change_seq > ? "
                                               "ORDER BY r.change_seq LIMIT ?",
                                               afterSeq, limit, readSnapshot);
}

std::vector<PerformanceScore> Repository::changedScoresOfUser(int64_t userId, int64_t afterSeq, int limit) {
    return changedRowsOfAccounts<PerformanceScore>(m_db, userId,
                                                   "SELECT " QF_SCORE_COLUMNS " FROM performance_scores s "
                                                   "WHERE s.riot_account_id = ? AND s.change_seq > ? "
                                                   "ORDER BY s.change_seq LIMIT ?",
                                                   afterSeq, limit, readScore);
}

// --- Social -------------------------------------------------------------------------------------

std::vector<GameWithRows> Repository::gamesOfUser(int64_t userId) {
    SqlResult r = m_db.query("SELECT " QF_MATCH_COLUMNS " FROM user_matches u JOIN matches m ON m.id = u.match_id "
                             "WHERE u.user_id = ? ORDER BY m.game_creation DESC, m.id DESC",
                             {userId});
    std::vector<GameWithRows> games;
    games.reserve(r.rows());
    std::vector<int64_t> ids;
    ids.reserve(r.rows());
    std::map<int64_t, size_t> position;
    for (size_t i = 0; i < r.rows(); ++i) {
        games.push_back({readMatch(r, i), {}});
        ids.push_back(games.back().match.id);
        position.emplace(games.back().match.id, i);
    }
    for (Participant& p : participantsOf(ids))
        games[position.at(p.matchId)].participants.push_back(std::move(p));
    return games;
}

} // namespace qf
