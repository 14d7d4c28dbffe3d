// The SQLite schema's steps, and the runner that applies the missing ones.

#include "store/migrations.h"
#include "store/sqlite/sqlite_connection.h"

#include <string>

namespace qf {

const std::vector<Migration>& sqliteMigrations() {
    // Booleans are INTEGER 0/1 and times INTEGER milliseconds, as in the PostgreSQL schema.
    static const std::vector<Migration> steps = {
        {"accounts, games, scores and rank history",
         {
             R"(CREATE TABLE users (
                 id INTEGER PRIMARY KEY,
                 email TEXT NOT NULL,
                 email_key TEXT NOT NULL UNIQUE,
                 name TEXT,
                 password_hash TEXT NOT NULL,
                 created_at INTEGER NOT NULL))",
             R"(CREATE TABLE tokens (
                 token_hash TEXT PRIMARY KEY,
                 user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                 expires_at INTEGER NOT NULL))",
             "CREATE INDEX tokens_user ON tokens(user_id)",
             "CREATE INDEX tokens_expiry ON tokens(expires_at)",
             R"(CREATE TABLE login_failures (
                 id INTEGER PRIMARY KEY,
                 throttle_key TEXT NOT NULL,
                 failed_at INTEGER NOT NULL))",
             "CREATE INDEX login_failures_key ON login_failures(throttle_key, failed_at)",
             R"(CREATE TABLE riot_accounts (
                 id INTEGER PRIMARY KEY,
                 user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                 puuid TEXT NOT NULL UNIQUE,
                 game_name TEXT,
                 tag_line TEXT,
                 platform TEXT NOT NULL,
                 region TEXT NOT NULL,
                 is_owner INTEGER NOT NULL,
                 profile_icon_id INTEGER,
                 summoner_level INTEGER,
                 linked_at INTEGER NOT NULL))",
             "CREATE INDEX riot_accounts_user ON riot_accounts(user_id)",
             R"(CREATE TABLE players (
                 puuid TEXT PRIMARY KEY,
                 game_name TEXT NOT NULL,
                 tag_line TEXT NOT NULL,
                 name_key TEXT NOT NULL,
                 tag_key TEXT NOT NULL,
                 platform TEXT NOT NULL,
                 profile_icon_id INTEGER,
                 last_seen INTEGER NOT NULL))",
             "CREATE INDEX players_riot_id ON players(name_key, tag_key, last_seen)",
             R"(CREATE TABLE matches (
                 id INTEGER PRIMARY KEY,
                 match_id TEXT NOT NULL UNIQUE,
                 platform TEXT NOT NULL,
                 queue_id INTEGER NOT NULL,
                 is_ranked INTEGER NOT NULL,
                 game_creation INTEGER NOT NULL,
                 game_duration INTEGER NOT NULL,
                 game_version TEXT NOT NULL,
                 game_mode TEXT NOT NULL,
                 season INTEGER,
                 updated_at INTEGER NOT NULL,
                 change_seq INTEGER NOT NULL UNIQUE))",
             R"(CREATE TABLE participants (
                 id INTEGER PRIMARY KEY,
                 match_id INTEGER NOT NULL REFERENCES matches(id) ON DELETE CASCADE,
                 puuid TEXT NOT NULL,
                 riot_id_game_name TEXT,
                 riot_id_tag_line TEXT,
                 team_id INTEGER NOT NULL,
                 win INTEGER NOT NULL,
                 champion_id INTEGER NOT NULL,
                 champion_name TEXT NOT NULL,
                 team_position TEXT,
                 champ_level INTEGER,
                 kills INTEGER NOT NULL,
                 deaths INTEGER NOT NULL,
                 assists INTEGER NOT NULL,
                 total_cs INTEGER NOT NULL,
                 gold_earned INTEGER NOT NULL,
                 vision_score INTEGER NOT NULL,
                 damage_to_champions INTEGER NOT NULL,
                 items TEXT NOT NULL,
                 team_damage_pct REAL,
                 kill_participation REAL,
                 cs_per_min REAL,
                 rank_tier TEXT,
                 rank_division TEXT,
                 rank_lp INTEGER,
                 profile_icon_id INTEGER))",
             "CREATE INDEX participants_match ON participants(match_id)",
             "CREATE INDEX participants_player ON participants(puuid, match_id)",
             R"(CREATE TABLE timelines (
                 match_id INTEGER NOT NULL REFERENCES matches(id) ON DELETE CASCADE,
                 puuid TEXT NOT NULL,
                 json TEXT NOT NULL,
                 PRIMARY KEY (match_id, puuid)))",
             R"(CREATE TABLE performance_scores (
                 id INTEGER PRIMARY KEY,
                 riot_account_id INTEGER NOT NULL REFERENCES riot_accounts(id) ON DELETE CASCADE,
                 match_id INTEGER NOT NULL REFERENCES matches(id) ON DELETE CASCADE,
                 champion_id INTEGER NOT NULL,
                 team_position TEXT,
                 score REAL NOT NULL,
                 components TEXT NOT NULL,
                 baseline_kind TEXT NOT NULL,
                 change_seq INTEGER NOT NULL,
                 UNIQUE (riot_account_id, match_id)))",
             "CREATE INDEX performance_scores_changes ON performance_scores(riot_account_id, change_seq)",
             R"(CREATE TABLE rank_snapshots (
                 id INTEGER PRIMARY KEY,
                 riot_account_id INTEGER NOT NULL REFERENCES riot_accounts(id) ON DELETE CASCADE,
                 queue TEXT NOT NULL,
                 tier TEXT,
                 division TEXT,
                 lp INTEGER NOT NULL,
                 wins INTEGER NOT NULL,
                 losses INTEGER NOT NULL,
                 captured_at INTEGER NOT NULL,
                 change_seq INTEGER NOT NULL))",
             "CREATE INDEX rank_snapshots_changes ON rank_snapshots(riot_account_id, change_seq)",
             "CREATE INDEX rank_snapshots_latest ON rank_snapshots(riot_account_id, queue, captured_at)",
             // The one change order of archive rows; PostgreSQL uses a sequence.
             R"(CREATE TABLE change_counter (
                 id INTEGER PRIMARY KEY CHECK (id = 1),
                 value INTEGER NOT NULL))",
             "INSERT INTO change_counter (id, value) VALUES (1, 0)",
         }},
        {"a user's changes in one index, each game's rows as the app reads them, a player's games by start",
         {
             // The sync walks one user's games in change order without reading their whole set.
             // Kept by the store whenever a game's number, its players or a link changes.
             R"(CREATE TABLE user_matches (
                 match_id INTEGER NOT NULL REFERENCES matches(id) ON DELETE CASCADE,
                 user_id INTEGER NOT NULL REFERENCES users(id) ON DELETE CASCADE,
                 change_seq INTEGER NOT NULL,
                 PRIMARY KEY (match_id, user_id)))",
             "CREATE INDEX user_matches_changes ON user_matches(user_id, change_seq, match_id)",
             R"(INSERT INTO user_matches (match_id, user_id, change_seq)
                 SELECT DISTINCT p.match_id, a.user_id, m.change_seq
                 FROM participants p JOIN riot_accounts a ON a.puuid = p.puuid JOIN matches m ON m.id = p.match_id)",
             // A game's participant objects, written once when its rows are: a sync page is then
             // a few hundred reads rather than thousands of rows turned into JSON on every pull.
             // Empty for games stored before this step until they next change; the store writes
             // those from the rows.
             "ALTER TABLE matches ADD COLUMN participants_json TEXT",
             // A player's earlier games by start time, for the performance score's baseline,
             // without joining and sorting their whole history for every game scored.
             "ALTER TABLE participants ADD COLUMN game_creation INTEGER NOT NULL DEFAULT 0",
             "UPDATE participants SET game_creation = (SELECT m.game_creation FROM matches m WHERE m.id = "
             "participants.match_id)",
             "CREATE INDEX participants_history ON participants(puuid, game_creation, match_id)",
             "CREATE INDEX participants_position_history ON participants(puuid, team_position, game_creation, "
             "match_id)",
         }},
        {"players known by two ids, and the Riot API backfill of each linked account",
         {
             // The League client and the Riot API name one player by different puuids; the
             // server answers one of them (the first it learnt) for both.
             R"(CREATE TABLE player_ids (
                 alias TEXT PRIMARY KEY,
                 puuid TEXT NOT NULL))",
             "CREATE INDEX player_ids_puuid ON player_ids(puuid)",
             // One run at a time per account; progress kept so a restart resumes it. A run ends
             // at the newest game of the previous finished run (stop_at).
             R"(CREATE TABLE backfills (
                 riot_account_id INTEGER PRIMARY KEY REFERENCES riot_accounts(id) ON DELETE CASCADE,
                 riot_puuid TEXT NOT NULL,
                 platform TEXT NOT NULL,
                 next_start INTEGER NOT NULL,
                 found INTEGER NOT NULL,
                 fetched INTEGER NOT NULL,
                 run_newest TEXT,
                 stop_at TEXT,
                 done INTEGER NOT NULL,
                 claimed_until INTEGER NOT NULL,
                 updated_at INTEGER NOT NULL))",
             "CREATE INDEX backfills_waiting ON backfills(done, claimed_until)",
         }},
    };
    return steps;
}

void migrateSqlite(SqliteConnection& connection) {
    const auto& steps = sqliteMigrations();
    // The write lock makes a second process opening the same file wait, then find nothing to do.
    connection.beginWrite();
    try {
        const int64_t version = connection.query("PRAGMA user_version", {}).integer(0, 0);
        if (version > static_cast<int64_t>(steps.size()))
            throw StoreError("the SQLite database has schema version " + std::to_string(version) +
                             ", newer than this server knows (" + std::to_string(steps.size()) + ")");
        for (size_t i = static_cast<size_t>(version); i < steps.size(); ++i) {
            try {
                for (std::string_view statement : steps[i].statements)
                    connection.execute(std::string(statement));
            } catch (const StoreError& e) {
                throw StoreError("schema step " + std::to_string(i + 1) + " (" + std::string(steps[i].name) +
                                 ") failed: " + e.what());
            }
        }
        if (version < static_cast<int64_t>(steps.size()))
            connection.execute("PRAGMA user_version = " + std::to_string(steps.size()));
        connection.commit();
    } catch (...) {
        try {
            connection.rollback();
        } catch (...) {
        }
        throw;
    }
}

} // namespace qf
