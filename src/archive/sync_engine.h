#pragma once

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

    SyncEngine(ArchiveStore& context, BackendClient& client, QSettings& settings);

    // Pulls every page the backend has after the stored cursor and returns how many match
    // records arrived. Throws BackendError or StoreError; pages saved before stay saved.
    QCoro::Task<int> pull();

private:
    void migrateMirrorIfNeeded();
    void upsertMatches(const QList<MatchDTO>& matches);
    void upsertParticipants(const QList<ParticipantDTO>& participants);
    void upsertRankSnapshots(const QList<RankSnapshotDTO>& snapshots);
    void upsertScores(const QList<PerformanceScoreDTO>& scores);
    template <class Record, class Dto> void upsertByServerId(const QList<Dto>& records);

    ArchiveStore& m_context;
    BackendClient& m_client;
    QSettings& m_settings;
};
