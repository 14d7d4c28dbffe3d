#include "archive/sync_engine.h"

#include "archive/archive_store.h"
#include "backend/backend_client.h"

#include <QSettings>
#include <unordered_map>
#include <unordered_set>

SyncEngine::SyncEngine(ArchiveStore& store, BackendClient& client, QSettings& settings)
    : m_store(store), m_client(client), m_settings(settings) {}

QCoro::Task<int> SyncEngine::pull() {
    migrateMirrorIfNeeded();

    const QVariant stored = m_settings.value(QLatin1String(cursorKey));
    std::optional<QString> cursor;
    if (stored.isValid())
        cursor = stored.toString();

    int total = 0;
    for (int page = 0;; ++page) {
        const SyncResponse response = co_await m_client.sync(cursor);

        upsertMatches(response.matches);
        upsertParticipants(response.participants);
        upsertRankSnapshots(response.rankSnapshots);
        upsertScores(response.performanceScores);
        m_store.save();
        total += static_cast<int>(response.matches.size());

        // Only now that the page is on disk may the cursor move past it.
        if (response.nextCursor) {
            cursor = response.nextCursor;
            m_settings.setValue(QLatin1String(cursorKey), *cursor);
        }
        if (!response.hasMore || page >= requestCap - 1)
            break;
    }
    co_return total;
}

void SyncEngine::migrateMirrorIfNeeded() {
    if (m_settings.value(QLatin1String(mirrorVersionKey), 0).toInt() >= mirrorVersion)
        return;
    m_store.matches().removeAll();
    m_store.participants().removeAll();
    m_store.rankSnapshots().removeAll();
    m_store.performanceScores().removeAll();
    try {
        m_store.save();
    } catch (const std::exception&) {
        // The old mirror is rebuilt from the first page either way; a stale row that could not
        // be deleted now is overwritten or deleted by a later save.
    }
    m_settings.remove(QLatin1String(cursorKey));
    m_settings.setValue(QLatin1String(mirrorVersionKey), mirrorVersion);
}

template <class Record, class Dto> void SyncEngine::upsertByServerId(const QList<Dto>& records) {
    if (records.isEmpty())
        return;
    RecordTable<Record>& table = m_store.table<Record>();
    std::unordered_set<qint64> ids;
    ids.reserve(records.size());
    for (const Dto& dto : records)
        ids.insert(dto.id);

    std::unordered_map<qint64, Record*> byId;
    byId.reserve(ids.size());
    for (Record* stored : table.withServerIds(ids))
        byId.try_emplace(stored->serverId, stored); // the first fetched wins; duplicates stay untouched

    for (const Dto& dto : records) {
        auto found = byId.find(dto.id);
        if (found != byId.end()) {
            found->second->update(dto);
            table.markChanged(found->second);
        } else {
            byId.emplace(dto.id, table.insert(std::make_unique<Record>(dto)));
        }
    }
}

void SyncEngine::upsertMatches(const QList<MatchDto>& matches) {
    upsertByServerId<LocalMatch>(matches);
}

void SyncEngine::upsertRankSnapshots(const QList<RankSnapshotDto>& snapshots) {
    upsertByServerId<LocalRankSnapshot>(snapshots);
}

void SyncEngine::upsertScores(const QList<PerformanceScoreDto>& scores) {
    upsertByServerId<LocalPerformanceScore>(scores);
}

void SyncEngine::upsertParticipants(const QList<ParticipantDto>& participants) {
    if (participants.isEmpty())
        return;
    RecordTable<LocalParticipant>& table = m_store.participants();
    std::unordered_set<qint64> games;
    for (const ParticipantDto& dto : participants)
        games.insert(dto.matchId);
    for (qint64 game : games)
        for (LocalParticipant* stored : table.withMatchServerId(game))
            table.remove(stored);
    for (const ParticipantDto& dto : participants)
        table.insert(std::make_unique<LocalParticipant>(dto));
}
