#include "archive/archive_store.h"

#include "archive/participant_line.h"
#include "archive/store_error.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>
#include <atomic>
#include <exception>
#include <latch>
#include <optional>
#include <sqlite3.h>
#include <thread>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// One entry per schema version: the statements that lead from the version before to it.
// A released entry is never edited; a change of the schema is a new entry.
const char* const migrationSql[] = {
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
    // 2: player rows packed (ParticipantLine), their texts kept once in a table of their own;
    // the rows are moved over by packParticipants().
    R"sql(
    CREATE TABLE texts (
        id INTEGER PRIMARY KEY,
        text TEXT NOT NULL);
    CREATE TABLE packed_participants (
        local_id INTEGER PRIMARY KEY,
        server_id INTEGER NOT NULL,
        match_server_id INTEGER NOT NULL,
        line BLOB NOT NULL);
    )sql",
};
static_assert(std::size(migrationSql) == ArchiveStore::schemaVersion);

template <class Record> QStringList columnNames() {
    QStringList names{QStringLiteral("local_id")};
    const Record probe;
    if constexpr (std::is_same_v<Record, LocalParticipant>) {
        RecordColumns<Record>::visitKeys(probe, [&](const char* name, auto&) { names << QLatin1String(name); });
        names << QStringLiteral("line");
    } else {
        RecordColumns<Record>::visit(probe, [&](const char* name, auto&) { names << QLatin1String(name); });
    }
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

ArchiveStore::ArchiveStore(const QString& path, QObject* parent)
    : QObject(parent), m_db(prepareFolder(path)), m_texts(m_db) {
    try {
        m_db.execute(QStringLiteral("PRAGMA journal_mode = WAL"));
        m_db.execute(QStringLiteral("PRAGMA synchronous = NORMAL"));
        migrate();
        // While the archive is read, this connection holds the write lock: helpers read the file
        // through connections of their own and see it as it stands, and a second copy of the app
        // stops here.
        m_db.execute(QStringLiteral("BEGIN IMMEDIATE"));
        try {
            load(path);
            // One running copy of the app owns the archive: a second would hold a stale in-memory
            // copy and overwrite the first one's rows. In exclusive mode the next transaction
            // takes the file's lock and never lets it go.
            m_db.execute(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
            m_db.execute(QStringLiteral("COMMIT"));
        } catch (const StoreError&) {
            rollBack();
            throw;
        }
        m_db.execute(QStringLiteral("BEGIN IMMEDIATE"));
        m_db.execute(QStringLiteral("COMMIT"));
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
            m_db.execute(QString::fromUtf8(migrationSql[next - 1]));
            if (next == 2)
                packParticipants();
            m_db.execute(QStringLiteral("PRAGMA user_version = %1").arg(next));
            m_db.execute(QStringLiteral("COMMIT"));
            m_texts.committed();
        } catch (const StoreError&) {
            rollBack();
            m_texts.rolledBack();
            throw;
        }
    }
}

namespace {

// The ids of a table's rows run from first to last (none when last < first).
struct IdSpan {
    qint64 first = 0;
    qint64 last = -1;
    [[nodiscard]] qint64 size() const { return std::max<qint64>(0, last - first + 1); }
};

// Read from the two ends of the table, where count(*) would walk all of it. It bounds the count
// of rows: ids keep growing after a re-mirror, so the largest id alone would reserve for every
// row ever stored.
IdSpan idSpan(SqliteDatabase& db, const char* table) {
    // Each end by a query of its own: asked for both at once, SQLite walks the whole table.
    SqliteStatement select(db, QStringLiteral("SELECT (SELECT min(local_id) FROM %1), (SELECT max(local_id) FROM %1)")
                                   .arg(QLatin1String(table)));
    IdSpan span;
    if (select.step() && !select.isNull(0)) {
        select.read(0, span.first);
        select.read(1, span.last);
    }
    return span;
}

// At most count consecutive spans that together cover span, each a whole number of blocks of
// records long: a table read in parts fills every block but its last (when no ids are missing).
std::vector<IdSpan> split(IdSpan span, qint64 count, qint64 blockSize) {
    std::vector<IdSpan> parts;
    const qint64 blocks = (span.size() + blockSize - 1) / blockSize;
    const qint64 step = std::max<qint64>(1, (blocks + count - 1) / count) * blockSize;
    for (qint64 first = span.first; first <= span.last; first += step)
        parts.push_back({first, std::min(span.last, first + step - 1)});
    return parts;
}

// Reads every row of Record's table, in the order of their ids, into table.
template <class Record> void readRows(SqliteDatabase& db, RecordTable<Record>& table) {
    const char* const name = RecordColumns<Record>::table;
    const qint64 rows = idSpan(db, name).size();
    table.reserve(static_cast<std::size_t>(rows));
    // Two rows bring about one text not seen before.
    SharedText::reserve(rows / 2);
    SqliteStatement select(db, QStringLiteral("SELECT %1 FROM %2 ORDER BY local_id")
                                   .arg(columnNames<Record>().join(QStringLiteral(", ")), QLatin1String(name)));
    while (select.step()) {
        Record record;
        select.read(0, record.localId);
        int column = 1;
        RecordColumns<Record>::visit(record, [&](const char*, auto& field) { select.read(column++, field); });
        table.adopt(std::move(record));
    }
    table.releaseSpare();
}

// Reads the player rows whose ids lie in span, in the order of their ids, into table; returns how
// many had a damaged line.
qint64 readPlayerRows(SqliteDatabase& db, const ParticipantLine& lines, RecordTable<LocalParticipant>& table,
                      IdSpan span) {
    table.reserve(static_cast<std::size_t>(span.size()));
    SqliteStatement select(db, QStringLiteral("SELECT local_id, server_id, match_server_id, line FROM participants "
                                              "WHERE local_id BETWEEN ? AND ? ORDER BY local_id"));
    select.bind(1, span.first);
    select.bind(2, span.last);
    qint64 damagedRows = 0;
    while (select.step()) {
        qint64 localId = 0;
        qint64 serverId = 0;
        qint64 matchServerId = 0;
        select.read(0, localId);
        select.read(1, serverId);
        select.read(2, matchServerId);
        bool damaged = false;
        LocalParticipant row = lines.unpack(serverId, matchServerId, select.blob(3), &damaged);
        row.localId = localId;
        damagedRows += damaged;
        table.adopt(std::move(row));
    }
    table.releaseSpare();
    return damagedRows;
}

const QString mapWholeFile = QStringLiteral("PRAGMA mmap_size = 1073741824");

} // namespace

void ArchiveStore::load(const QString& path) {
    // The whole file is read once at start: mapped, SQLite reads it in place instead of copying
    // every page through read(2). The mapping goes again once the reading is done, so that the
    // file's pages do not stay counted as the app's memory.
    m_db.execute(mapWholeFile);
    // First the texts the player rows name. Then this thread and a helper, each through a
    // connection of its own (a connection steps one statement at a time), share the rest: the
    // helper reads the other tables, and both take in turn ranges of the player rows, nine in
    // ten of the archive's. The texts are not read beside the other tables: both add texts to
    // the shared ones, and two threads taking its lock in turn took longer than one after the
    // other.
    const std::vector<IdSpan> ranges =
        split(idSpan(m_db, RecordColumns<LocalParticipant>::table), 8, RecordTable<LocalParticipant>::blockSize);
    std::vector<RecordTable<LocalParticipant>> parts(ranges.size());
    const ParticipantLine lines(m_texts);
    std::atomic<std::size_t> nextRange{0};
    std::atomic<qint64> damagedRows{0};
    const auto readRanges = [&](SqliteDatabase& db) {
        for (std::size_t r = nextRange++; r < ranges.size(); r = nextRange++)
            damagedRows += readPlayerRows(db, lines, parts[r], ranges[r]);
    };
    std::latch textsRead(1);
    std::exception_ptr helperFailure;
    bool helperOpened = false;
    std::thread helper([&] {
        try {
            SqliteDatabase db(path, SqliteDatabase::Access::ReadOnly);
            helperOpened = true;
            db.execute(mapWholeFile);
            textsRead.wait();
            readRows(db, m_matches);
            readRows(db, m_rankSnapshots);
            readRows(db, m_scores);
            readRanges(db);
        } catch (...) {
            helperFailure = std::current_exception();
        }
    });
    try {
        m_texts.load();
        textsRead.count_down();
        readRanges(m_db);
    } catch (...) {
        // The helper must not wait for texts that will not come, nor start another range.
        nextRange = ranges.size();
        if (!textsRead.try_wait())
            textsRead.count_down();
        helper.join();
        throw;
    }
    helper.join();
    // A helper that could not open the file (a database in memory has no second connection)
    // leaves its tables to this thread; one that failed while reading says why.
    if (helperFailure && helperOpened)
        std::rethrow_exception(helperFailure);
    if (!helperOpened) {
        readRows(m_db, m_matches);
        readRows(m_db, m_rankSnapshots);
        readRows(m_db, m_scores);
    }
    std::size_t players = 0;
    for (const RecordTable<LocalParticipant>& part : parts)
        players += static_cast<std::size_t>(part.count());
    m_participants.reserve(players);
    for (RecordTable<LocalParticipant>& part : parts)
        m_participants.adoptAll(std::move(part));
    m_db.execute(QStringLiteral("PRAGMA mmap_size = 0"));
    m_texts.loaded();
    if (damagedRows > 0)
        qWarning("Player rows of the archive that could not be read whole: %lld (what could not be read of "
                 "them shows empty).",
                 static_cast<long long>(damagedRows.load()));
}

void ArchiveStore::packParticipants() {
    // The rows of schema 1: a column per field, texts in place.
    QStringList columns{QStringLiteral("local_id")};
    const ParticipantDto probe;
    RecordColumns<LocalParticipant>::visit(probe, [&](const char* name, auto&) { columns << QLatin1String(name); });
    SqliteStatement select(
        m_db, QStringLiteral("SELECT %1 FROM participants ORDER BY local_id").arg(columns.join(QStringLiteral(", "))));
    SqliteStatement insert(m_db, QStringLiteral("INSERT INTO packed_participants (local_id, server_id, "
                                                "match_server_id, line) VALUES (?, ?, ?, ?)"));
    ParticipantLine lines(m_texts);
    while (select.step()) {
        qint64 localId = 0;
        select.read(0, localId);
        ParticipantDto row;
        int column = 1;
        RecordColumns<LocalParticipant>::visit(row, [&](const char*, auto& field) { select.read(column++, field); });
        insert.bind(1, localId);
        insert.bind(2, row.id);
        insert.bind(3, row.matchId);
        insert.bindBlob(4, lines.pack(row));
        insert.step();
        insert.reset();
    }
    m_db.execute(QStringLiteral("DROP TABLE participants"));
    m_db.execute(QStringLiteral("ALTER TABLE packed_participants RENAME TO participants"));
}

void ArchiveStore::rollBack() {
    try {
        m_db.execute(QStringLiteral("ROLLBACK"));
    } catch (const StoreError&) {
        // The transaction is already gone; the first error is the one worth showing.
    }
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
    [[maybe_unused]] ParticipantLine lines(m_texts);
    for (const Record* record : pending) {
        insert.bind(1, record->localId);
        if constexpr (std::is_same_v<Record, LocalParticipant>) {
            insert.bind(2, record->serverId);
            insert.bind(3, record->matchServerId);
            insert.bindBlob(4, lines.pack(*record));
        } else {
            int index = 2;
            RecordColumns<Record>::visit(*record, [&](const char*, const auto& field) { insert.bind(index++, field); });
        }
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
        rollBack();
        m_texts.rolledBack();
        throw;
    }
    m_texts.committed();
    m_matches.saved();
    m_participants.saved();
    m_rankSnapshots.saved();
    m_scores.saved();
    Q_EMIT changed();
}
