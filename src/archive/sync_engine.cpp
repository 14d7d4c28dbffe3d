#include "archive/sync_engine.h"

#include "archive/archive_store.h"
#include "archive/mirror_page.h"
#include "archive/mirror_page_fetcher.h"
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

    // The next page travels and is decoded on the fetcher's thread while this one is stored.
    MirrorPageFetcher fetcher(m_client);
    fetcher.request(cursor);
    bool asked = true;
    int total = 0;
    for (int page = 0; asked; ++page) {
        MirrorPage response = co_await fetcher.take();
        asked = response.hasMore && page < requestCap - 1;
        if (asked)
            fetcher.request(response.nextCursor ? response.nextCursor : cursor);

        // A failure here ends the pull; the fetcher aborts the page on its way as it goes.
        store(response);
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
