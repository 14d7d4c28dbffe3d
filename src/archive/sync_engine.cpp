#include "archive/sync_engine.h"

#include "archive/archive_store.h"
#include "archive/mirror_page.h"
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

    // The next page is asked for, and decoded off the main thread, while this one is stored: a
    // first sync of a large archive then takes about the longer of the two per page, not their sum.
    std::optional<QCoro::Task<MirrorPage>> next = m_client.sync<MirrorPage>(cursor);
    int total = 0;
    for (int page = 0; next; ++page) {
        MirrorPage response = co_await std::move(*next);
        next.reset();
        if (response.hasMore && page < requestCap - 1)
            next = m_client.sync<MirrorPage>(response.nextCursor ? response.nextCursor : cursor);

        std::exception_ptr failure;
        try {
            store(response);
        } catch (...) {
            failure = std::current_exception();
        }
        if (failure) {
            // Nothing is left running behind a failed pull: the page on its way is let land.
            if (next) {
                try {
                    co_await std::move(*next);
                } catch (...) {
                }
            }
            std::rethrow_exception(failure);
        }
        total += static_cast<int>(response.matches.size());

        // Only now that the page is on disk may the cursor move past it.
        if (response.nextCursor) {
            cursor = response.nextCursor;
            m_settings.setValue(QLatin1String(cursorKey), *cursor);
        }
    }
    co_return total;
}

void SyncEngine::store(MirrorPage& page) {
    upsertMatches(page.matches);
    upsertParticipants(std::move(page.participants));
    upsertRankSnapshots(page.rankSnapshots);
    upsertScores(page.performanceScores);
    m_store.save();
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

void SyncEngine::upsertParticipants(QList<LocalParticipant>&& participants) {
    if (participants.isEmpty())
        return;
    RecordTable<LocalParticipant>& table = m_store.participants();
    // A game sent again brings all its players: its stored rows make way for them.
    std::unordered_set<qint64> games;
    for (const LocalParticipant& row : participants)
        games.insert(row.matchServerId);
    for (qint64 game : games)
        for (LocalParticipant* stored : table.withMatchServerId(game))
            table.remove(stored);
    for (LocalParticipant& row : participants)
        table.insert(std::move(row));
}
