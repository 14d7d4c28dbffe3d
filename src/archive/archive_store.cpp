#include "archive/archive_store.h"

#include "archive/store_error.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>
#include <sqlite3.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// One entry per schema version: the statements that lead from the version before to it.
// A released entry is never edited; a change of the schema is a new entry.
const char* const migrations[] = {
    // 1: the four record types.
    R"sql(
    CREATE TABLE matches (
        local_id INTEGER PRIMARY KEY,
        server_id INTEGER NOT NULL,
        match_id TEXT NOT NULL,
        platform TEXT NOT NULL,
        queue_id INTEGER NOT NULL,
        is_ranked INTEGER NOT NULL,
        game_creation INTEGER,
        game_duration INTEGER NOT NULL,
        game_version TEXT,
        game_mode TEXT,
        season INTEGER);
    CREATE TABLE participants (
        local_id INTEGER PRIMARY KEY,
        server_id INTEGER NOT NULL,
        match_server_id INTEGER NOT NULL,
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
        rank_lp INTEGER);
    CREATE TABLE rank_snapshots (
        local_id INTEGER PRIMARY KEY,
        server_id INTEGER NOT NULL,
        riot_account_id INTEGER NOT NULL,
        queue TEXT NOT NULL,
        tier TEXT,
        division TEXT,
        lp INTEGER NOT NULL,
        wins INTEGER NOT NULL,
        losses INTEGER NOT NULL,
        captured_at INTEGER);
    CREATE TABLE performance_scores (
        local_id INTEGER PRIMARY KEY,
        server_id INTEGER NOT NULL,
        riot_account_id INTEGER NOT NULL,
        match_server_id INTEGER NOT NULL,
        champion_id INTEGER NOT NULL,
        team_position TEXT,
        score REAL NOT NULL,
        components_json TEXT NOT NULL,
        baseline_kind TEXT NOT NULL);
    )sql",
};
static_assert(std::size(migrations) == ArchiveStore::schemaVersion);

template <class Record> QStringList columnNames() {
    QStringList names{QStringLiteral("local_id")};
    const Record probe;
    RecordColumns<Record>::visit(probe, [&](const char* name, auto&) { names << QLatin1String(name); });
    return names;
}

// SQLite creates the file but not the folders above it.
QString prepareFolder(const QString& path) {
    const QDir folder = QFileInfo(path).absoluteDir();
    if (!folder.exists() && !QDir().mkpath(folder.path()))
        throw StoreError(QStringLiteral("Cannot create the folder %1").arg(folder.path()));
    return path;
}

} // namespace

ArchiveStore::ArchiveStore(const QString& path, QObject* parent) : QObject(parent), m_db(prepareFolder(path)) {
    // One running copy of the app owns the archive: a second would hold a stale in-memory
    // copy and overwrite the first one's rows.
    try {
        m_db.execute(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
        m_db.execute(QStringLiteral("PRAGMA journal_mode = WAL"));
        m_db.execute(QStringLiteral("PRAGMA synchronous = NORMAL"));
        migrate();
        // The whole file is read once at start: mapped, SQLite reads it in place instead of
        // copying every page through read(2). The mapping goes again once the reading is done,
        // so that the file's pages do not stay counted as the app's memory.
        m_db.execute(QStringLiteral("PRAGMA mmap_size = 1073741824"));
        load(m_matches);
        load(m_participants);
        load(m_rankSnapshots);
        load(m_scores);
        m_db.execute(QStringLiteral("PRAGMA mmap_size = 0"));
        releaseLoadingMemory();
    } catch (const StoreError& error) {
        // SQLite's "database is locked" would leave the player guessing which program holds it.
        const int primary = error.sqliteCode() & 0xff;
        if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED)
            throw StoreError(QString::fromLatin1(inUseByAnotherCopy), error.sqliteCode());
        throw;
    }
}

ArchiveStore::~ArchiveStore() = default;

QString ArchiveStore::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/archive.sqlite");
}

void ArchiveStore::migrate() {
    const qint64 version = m_db.queryInteger(QStringLiteral("PRAGMA user_version"));
    if (version > schemaVersion)
        throw StoreError(
            QStringLiteral("The archive was written by a newer version of Quill Fern (schema %1).").arg(version));
    for (qint64 next = version + 1; next <= schemaVersion; ++next) {
        m_db.execute(QStringLiteral("BEGIN IMMEDIATE"));
        try {
            m_db.execute(QString::fromUtf8(migrations[next - 1]));
            m_db.execute(QStringLiteral("PRAGMA user_version = %1").arg(next));
            m_db.execute(QStringLiteral("COMMIT"));
        } catch (const StoreError&) {
            try {
                m_db.execute(QStringLiteral("ROLLBACK"));
            } catch (const StoreError&) {
            }
            throw;
        }
    }
}

template <class Record> void ArchiveStore::load(RecordTable<Record>& table) {
    // The span of the ids bounds the count and is read from the two ends of the table, where
    // count(*) would walk all of it. The span, not the largest id: ids keep growing after a
    // re-mirror, and a bound from the largest would reserve for every row ever stored. Two rows
    // bring about one text not seen before (a stranger's id and name are met again and again).
    const qint64 rows =
        m_db.queryInteger(QStringLiteral("SELECT coalesce(max(local_id) - min(local_id) + 1, 0) FROM %1")
                              .arg(QLatin1String(RecordColumns<Record>::table)));
    table.reserve(static_cast<std::size_t>(rows));
    SharedText::reserve(rows / 2);
    SqliteStatement select(
        m_db, QStringLiteral("SELECT %1 FROM %2 ORDER BY local_id")
                  .arg(columnNames<Record>().join(QStringLiteral(", ")), QLatin1String(RecordColumns<Record>::table)));
    while (select.step()) {
        Record record;
        select.read(0, record.localId);
        select.clearNarrowed();
        int column = 1;
        RecordColumns<Record>::visit(record, [&](const char*, auto& field) { select.read(column++, field); });
        if constexpr (std::is_same_v<Record, LocalParticipant>) {
            // A figure the compact row cannot hold: read the row again as the backend's record.
            if (select.narrowed()) {
                ParticipantDto exact;
                column = 1;
                RecordColumns<Record>::visit(exact, [&](const char*, auto& field) { select.read(column++, field); });
                const qint64 localId = record.localId;
                record = LocalParticipant(exact);
                record.localId = localId;
            }
        }
        table.adopt(std::move(record));
    }
    table.releaseSpare();
}

template <class Record> void ArchiveStore::write(RecordTable<Record>& table) {
    const QString name = QLatin1String(RecordColumns<Record>::table);
    if (table.wipes())
        m_db.execute(QStringLiteral("DELETE FROM %1").arg(name));
    if (!table.toDelete().empty()) {
        SqliteStatement remove(m_db, QStringLiteral("DELETE FROM %1 WHERE local_id = ?").arg(name));
        for (qint64 id : table.toDelete()) {
            remove.bind(1, id);
            remove.step();
            remove.reset();
        }
    }
    const auto pending = table.toWrite();
    if (pending.empty())
        return;
    const QStringList columns = columnNames<Record>();
    QStringList marks;
    for (qsizetype i = 0; i < columns.size(); ++i)
        marks << QStringLiteral("?");
    SqliteStatement insert(m_db, QStringLiteral("INSERT OR REPLACE INTO %1 (%2) VALUES (%3)")
                                     .arg(name, columns.join(QStringLiteral(", ")), marks.join(QStringLiteral(", "))));
    for (const Record* record : pending) {
        insert.bind(1, record->localId);
        int index = 2;
        const auto bind = [&](const char*, const auto& field) { insert.bind(index++, field); };
        if constexpr (std::is_same_v<Record, LocalParticipant>) {
            if (const ParticipantDto* exact = record->exact()) {
                RecordColumns<Record>::visit(*exact, bind);
                insert.step();
                insert.reset();
                continue;
            }
        }
        RecordColumns<Record>::visit(*record, bind);
        insert.step();
        insert.reset();
    }
}

void ArchiveStore::releaseLoadingMemory() {
    // Reading the whole file filled SQLite's page cache, which later work reads little of, and
    // left the freed buffers of the reading with the allocator: both go back to the system, so
    // that what stays resident is the archive itself.
    sqlite3_db_release_memory(m_db.handle());
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

bool ArchiveStore::hasChanges() const {
    return m_matches.hasChanges() || m_participants.hasChanges() || m_rankSnapshots.hasChanges() ||
           m_scores.hasChanges();
}

void ArchiveStore::save() {
    if (!hasChanges())
        return;
    m_db.execute(QStringLiteral("BEGIN IMMEDIATE"));
    try {
        write(m_matches);
        write(m_participants);
        write(m_rankSnapshots);
        write(m_scores);
        m_db.execute(QStringLiteral("COMMIT"));
    } catch (const StoreError&) {
        try {
            m_db.execute(QStringLiteral("ROLLBACK"));
        } catch (const StoreError&) {
            // The transaction is already gone; the first error is the one worth showing.
        }
        throw;
    }
    m_matches.saved();
    m_participants.saved();
    m_rankSnapshots.saved();
    m_scores.saved();
    Q_EMIT changed();
}
