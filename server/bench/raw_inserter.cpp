// Plain prepared INSERTs through sqlite3 and libpq.

#include "raw_inserter.h"

#include "store/column_codecs.h"

#include <libpq-fe.h>
#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>

namespace qf::bench {

namespace {

#define QFS_MATCH_INSERT                                                                                               \
    "INSERT INTO matches (match_id, platform, queue_id, is_ranked, game_creation, game_duration, game_version, "       \
    "game_mode, season, updated_at, change_seq) VALUES "
#define QFS_PARTICIPANT_INSERT                                                                                         \
    "INSERT INTO participants (match_id, puuid, riot_id_game_name, riot_id_tag_line, team_id, win, champion_id, "      \
    "champion_name, team_position, champ_level, kills, deaths, assists, total_cs, gold_earned, vision_score, "         \
    "damage_to_champions, items, team_damage_pct, kill_participation, cs_per_min, rank_tier, rank_division, "          \
    "rank_lp, profile_icon_id) VALUES "

class SqliteRawInserter final : public RawInserter {
public:
    explicit SqliteRawInserter(const std::string& path) {
        if (sqlite3_open_v2(path.c_str(), &m_db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
            fail("open");
        // The settings the server's own connections use.
        exec("PRAGMA journal_mode = WAL");
        exec("PRAGMA synchronous = NORMAL");
        exec("PRAGMA foreign_keys = ON");
        prepare(QFS_MATCH_INSERT "(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", &m_match);
        prepare(QFS_PARTICIPANT_INSERT "(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                &m_participant);
    }
    ~SqliteRawInserter() override {
        sqlite3_finalize(m_match);
        sqlite3_finalize(m_participant);
        sqlite3_close(m_db);
    }

    void insertBatch(const std::vector<GameRecord>& games) override {
        exec("BEGIN IMMEDIATE");
        for (const GameRecord& game : games) {
            const Match& m = game.match;
            int i = 0;
            text(m_match, ++i, m.matchId);
            text(m_match, ++i, m.platform);
            sqlite3_bind_int64(m_match, ++i, m.queueId);
            sqlite3_bind_int64(m_match, ++i, m.isRanked);
            sqlite3_bind_int64(m_match, ++i, m.gameCreation);
            sqlite3_bind_int64(m_match, ++i, m.gameDuration);
            text(m_match, ++i, m.gameVersion);
            text(m_match, ++i, m.gameMode);
            integer(m_match, ++i, m.season);
            sqlite3_bind_int64(m_match, ++i, m.updatedAt);
            sqlite3_bind_int64(m_match, ++i, ++m_seq);
            step(m_match);
            const int64_t matchId = sqlite3_last_insert_rowid(m_db);

            for (const Participant& p : game.participants) {
                sqlite3_stmt* s = m_participant;
                i = 0;
                sqlite3_bind_int64(s, ++i, matchId);
                text(s, ++i, p.puuid);
                text(s, ++i, p.riotIdGameName);
                text(s, ++i, p.riotIdTagLine);
                sqlite3_bind_int64(s, ++i, p.teamId);
                sqlite3_bind_int64(s, ++i, p.win);
                sqlite3_bind_int64(s, ++i, p.championId);
                text(s, ++i, p.championName);
                text(s, ++i, p.teamPosition);
                integer(s, ++i, p.champLevel);
                sqlite3_bind_int64(s, ++i, p.kills);
                sqlite3_bind_int64(s, ++i, p.deaths);
                sqlite3_bind_int64(s, ++i, p.assists);
                sqlite3_bind_int64(s, ++i, p.totalCs);
                sqlite3_bind_int64(s, ++i, p.goldEarned);
                sqlite3_bind_int64(s, ++i, p.visionScore);
                sqlite3_bind_int64(s, ++i, p.damageToChampions);
                text(s, ++i, encodeItems(p.items));
                real(s, ++i, p.teamDamagePct);
                real(s, ++i, p.killParticipation);
                real(s, ++i, p.csPerMin);
                text(s, ++i, p.rankTier);
                text(s, ++i, p.rankDivision);
                integer(s, ++i, p.rankLp);
                integer(s, ++i, p.profileIconId);
                step(s);
            }
        }
        exec("COMMIT");
    }

private:
    [[noreturn]] void fail(const char* what) {
        throw std::runtime_error(std::string("sqlite3 ") + what + ": " + sqlite3_errmsg(m_db));
    }
    void exec(const char* sql) {
        if (sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            fail(sql);
    }
    void prepare(const char* sql, sqlite3_stmt** statement) {
        if (sqlite3_prepare_v3(m_db, sql, -1, SQLITE_PREPARE_PERSISTENT, statement, nullptr) != SQLITE_OK)
            fail("prepare");
    }
    void step(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE)
            fail("insert");
        sqlite3_reset(statement);
    }
    static void text(sqlite3_stmt* s, int i, const std::string& v) {
        sqlite3_bind_text(s, i, v.data(), int(v.size()), SQLITE_TRANSIENT);
    }
    static void text(sqlite3_stmt* s, int i, const std::optional<std::string>& v) {
        v ? text(s, i, *v) : void(sqlite3_bind_null(s, i));
    }
    static void integer(sqlite3_stmt* s, int i, const std::optional<int64_t>& v) {
        v ? void(sqlite3_bind_int64(s, i, *v)) : void(sqlite3_bind_null(s, i));
    }
    static void real(sqlite3_stmt* s, int i, const std::optional<double>& v) {
        v ? void(sqlite3_bind_double(s, i, *v)) : void(sqlite3_bind_null(s, i));
    }

    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_match = nullptr;
    sqlite3_stmt* m_participant = nullptr;
    int64_t m_seq = 0;
};

// Parameters as text, the way libpq is most often used; the server's own connection does the
// same.
class Params {
public:
    void add(const std::string& v) { m_values.push_back(v), m_null.push_back(false); }
    void add(int64_t v) { add(std::to_string(v)); }
    void add(bool v) { add(std::string(v ? "1" : "0")); }
    void add(double v) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.17g", v);
        add(std::string(buffer));
    }
    template <class T> void add(const std::optional<T>& v) {
        if (v)
            add(*v);
        else
            m_values.emplace_back(), m_null.push_back(true);
    }
    void clear() { m_values.clear(), m_null.clear(); }
    const std::vector<const char*>& pointers() {
        m_pointers.clear();
        for (size_t i = 0; i < m_values.size(); ++i)
            m_pointers.push_back(m_null[i] ? nullptr : m_values[i].c_str());
        return m_pointers;
    }

private:
    std::vector<std::string> m_values;
    std::vector<bool> m_null;
    std::vector<const char*> m_pointers;
};

class PostgresRawInserter final : public RawInserter {
public:
    explicit PostgresRawInserter(const std::string& uri) : m_db(PQconnectdb(uri.c_str())) {
        if (PQstatus(m_db) != CONNECTION_OK)
            fail("connect");
        prepare("match", QFS_MATCH_INSERT "($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11) RETURNING id", 11);
        prepare("participant",
                QFS_PARTICIPANT_INSERT "($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, $13, $14, $15, $16, $17, "
                                       "$18, $19, $20, $21, $22, $23, $24, $25)",
                25);
    }
    ~PostgresRawInserter() override { PQfinish(m_db); }

    void insertBatch(const std::vector<GameRecord>& games) override {
        exec("BEGIN");
        for (const GameRecord& game : games) {
            const Match& m = game.match;
            m_params.clear();
            m_params.add(m.matchId);
            m_params.add(m.platform);
            m_params.add(m.queueId);
            m_params.add(m.isRanked);
            m_params.add(m.gameCreation);
            m_params.add(m.gameDuration);
            m_params.add(m.gameVersion);
            m_params.add(m.gameMode);
            m_params.add(m.season);
            m_params.add(m.updatedAt);
            m_params.add(++m_seq);
            const std::string matchId = run("match", PGRES_TUPLES_OK);

            for (const Participant& p : game.participants) {
                m_params.clear();
                m_params.add(matchId);
                m_params.add(p.puuid);
                m_params.add(p.riotIdGameName);
                m_params.add(p.riotIdTagLine);
                m_params.add(p.teamId);
                m_params.add(p.win);
                m_params.add(p.championId);
                m_params.add(p.championName);
                m_params.add(p.teamPosition);
                m_params.add(p.champLevel);
                m_params.add(p.kills);
                m_params.add(p.deaths);
                m_params.add(p.assists);
                m_params.add(p.totalCs);
                m_params.add(p.goldEarned);
                m_params.add(p.visionScore);
                m_params.add(p.damageToChampions);
                m_params.add(encodeItems(p.items));
                m_params.add(p.teamDamagePct);
                m_params.add(p.killParticipation);
                m_params.add(p.csPerMin);
                m_params.add(p.rankTier);
                m_params.add(p.rankDivision);
                m_params.add(p.rankLp);
                m_params.add(p.profileIconId);
                run("participant", PGRES_COMMAND_OK);
            }
        }
        exec("COMMIT");
    }

private:
    [[noreturn]] void fail(const char* what) {
        throw std::runtime_error(std::string("libpq ") + what + ": " + PQerrorMessage(m_db));
    }
    void exec(const char* sql) {
        PGresult* r = PQexec(m_db, sql);
        const bool ok = PQresultStatus(r) == PGRES_COMMAND_OK;
        PQclear(r);
        if (!ok)
            fail(sql);
    }
    void prepare(const char* name, const char* sql, int params) {
        PGresult* r = PQprepare(m_db, name, sql, params, nullptr);
        const bool ok = PQresultStatus(r) == PGRES_COMMAND_OK;
        PQclear(r);
        if (!ok)
            fail("prepare");
    }
    // The first cell of the answer ("" when it has none).
    std::string run(const char* name, ExecStatusType expected) {
        const std::vector<const char*>& values = m_params.pointers();
        PGresult* r = PQexecPrepared(m_db, name, int(values.size()), values.data(), nullptr, nullptr, 0);
        if (PQresultStatus(r) != expected) {
            PQclear(r);
            fail("insert");
        }
        std::string first = PQntuples(r) > 0 ? PQgetvalue(r, 0, 0) : "";
        PQclear(r);
        return first;
    }

    PGconn* m_db;
    Params m_params;
    int64_t m_seq = 0;
};

} // namespace

std::unique_ptr<RawInserter> RawInserter::open(const std::string& address) {
    if (address.rfind("postgresql://", 0) == 0 || address.rfind("postgres://", 0) == 0)
        return std::make_unique<PostgresRawInserter>(address);
    return std::make_unique<SqliteRawInserter>(address);
}

} // namespace qf::bench
