#pragma once

#include "archive/mirror_page.h"
#include "backend/archive_records.h"

#include <QCoro/QCoroTask>
#include <QList>

class ArchiveStore;
class BackendClient;
class QSettings;

// Mirrors the backend's cloud archive into the local store, one page at a time, with a cursor
// that survives restarts. Made for one pull and dropped afterwards.
class SyncEngine {
public:
    static constexpr int mirrorVersion = 5;
    static constexpr int requestCap = 1000;
    static constexpr const char* cursorKey = "quill.syncCursor";
    static constexpr const char* mirrorVersionKey = "quill.mirrorVersion";

    SyncEngine(ArchiveStore& store, BackendClient& client, QSettings& settings);

    // Pulls every page the backend has after the stored cursor and returns how many match
    // records arrived. Throws BackendError or StoreError; pages saved before stay saved.
    QCoro::Task<int> pull();

private:
    void migrateMirrorIfNeeded();
    // Puts a page's records in the store and saves them.
    void store(MirrorPage& page);
    void upsertMatches(const QList<MatchDto>& matches);
    void upsertParticipants(QList<LocalParticipant>&& participants);
    void upsertRankSnapshots(const QList<RankSnapshotDto>& snapshots);
    void upsertScores(const QList<PerformanceScoreDto>& scores);
    template <class Record, class Dto> void upsertByServerId(const QList<Dto>& records);

    ArchiveStore& m_store;
    BackendClient& m_client;
    QSettings& m_settings;
};
