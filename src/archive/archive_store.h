#pragma once

#include "archive/archive_texts.h"
#include "archive/local_match.h"
#include "archive/local_participant.h"
#include "archive/local_performance_score.h"
#include "archive/local_rank_snapshot.h"
#include "archive/record_table.h"
#include "archive/sqlite_database.h"

#include <QObject>
#include <QString>
#include <memory>

// The player's permanent archive: an SQLite file, read whole into memory at start, with one
// in-memory context on the main thread. Changes are made in memory and written by save() in
// one transaction; changed() then tells every view that reads the archive to redraw.
class ArchiveStore : public QObject {
    Q_OBJECT

public:
    // The schema this build reads and writes; older files are migrated step by step.
    static constexpr int schemaVersion = 2;
    // Why the archive cannot be opened while another running copy of the app holds it.
    static constexpr const char* inUseByAnotherCopy = "The archive is open in another copy of Quill Fern.";

    // Opens (creating when absent) the archive at path. Throws StoreError.
    explicit ArchiveStore(const QString& path, QObject* parent = nullptr);
    ~ArchiveStore() override;

    // The archive's place on this machine: the application data folder.
    [[nodiscard]] static QString defaultPath();

    [[nodiscard]] RecordTable<LocalMatch>& matches() { return m_matches; }
    [[nodiscard]] RecordTable<LocalParticipant>& participants() { return m_participants; }
    [[nodiscard]] RecordTable<LocalRankSnapshot>& rankSnapshots() { return m_rankSnapshots; }
    [[nodiscard]] RecordTable<LocalPerformanceScore>& performanceScores() { return m_scores; }
    [[nodiscard]] const RecordTable<LocalMatch>& matches() const { return m_matches; }
    [[nodiscard]] const RecordTable<LocalParticipant>& participants() const { return m_participants; }
    [[nodiscard]] const RecordTable<LocalRankSnapshot>& rankSnapshots() const { return m_rankSnapshots; }
    [[nodiscard]] const RecordTable<LocalPerformanceScore>& performanceScores() const { return m_scores; }

    template <class Record> [[nodiscard]] RecordTable<Record>& table();

    [[nodiscard]] bool hasChanges() const;
    // Writes every pending change in one transaction. Throws StoreError; on failure nothing is
    // written and the changes stay pending.
    void save();

    [[nodiscard]] SqliteDatabase& database() { return m_db; }

Q_SIGNALS:
    void changed();

private:
    void migrate();
    // Reads the whole archive into memory, the file open at path.
    void load(const QString& path);
    void rollBack();
    // Schema 2's step: the player rows of schema 1 into packed lines.
    void packParticipants();
    void releaseLoadingMemory();
    template <class Record> void write(RecordTable<Record>& table);

    SqliteDatabase m_db;
    ArchiveTexts m_texts;
    RecordTable<LocalMatch> m_matches;
    RecordTable<LocalParticipant> m_participants;
    RecordTable<LocalRankSnapshot> m_rankSnapshots;
    RecordTable<LocalPerformanceScore> m_scores;
};

template <> inline RecordTable<LocalMatch>& ArchiveStore::table<LocalMatch>() {
    return m_matches;
}
template <> inline RecordTable<LocalParticipant>& ArchiveStore::table<LocalParticipant>() {
    return m_participants;
}
template <> inline RecordTable<LocalRankSnapshot>& ArchiveStore::table<LocalRankSnapshot>() {
    return m_rankSnapshots;
}
template <> inline RecordTable<LocalPerformanceScore>& ArchiveStore::table<LocalPerformanceScore>() {
    return m_scores;
}
