#include "sync/sync_service.h"

#include "http/http_message.h"
#include "sync/sync_cursor.h"

#include <algorithm>

namespace qf {

namespace {

int64_t changeSeqOf(const SyncedGame& game) {
    return game.match.changeSeq;
}
template <class Row> int64_t changeSeqOf(const Row& row) {
    return row.changeSeq;
}

} // namespace

SyncPage SyncService::page(int64_t userId, const std::string* cursor) {
    int64_t after = 0;
    if (cursor) {
        const std::optional<int64_t> decoded = decodeSyncCursor(*cursor);
        if (!decoded)
            throw HttpError(400, "The sync cursor is not one this server made.");
        after = *decoded;
    }

    SyncPage page;
    // One snapshot of the database for the three lists, so they agree with each other.
    m_database.read([&](Repository& repository) {
        page.games = repository.changedGamesOfUser(userId, after, m_pageGames);
        page.rankSnapshots = repository.changedSnapshotsOfUser(userId, after, m_pageGames);
        page.performanceScores = repository.changedScoresOfUser(userId, after, m_pageGames);

        // A list that came back full may have more rows just past its last one, so the page
        // ends there: every list is cut at the lowest such bound, and nothing above it is sent
        // yet. Numbers are unique across the three lists, so the bound is exact.
        int64_t bound = INT64_MAX;
        auto limitBy = [&](const auto& rows) {
            if (rows.size() >= size_t(m_pageGames))
                bound = std::min(bound, changeSeqOf(rows.back()));
        };
        limitBy(page.games);
        limitBy(page.rankSnapshots);
        limitBy(page.performanceScores);
        page.hasMore = bound != INT64_MAX;
        auto cut = [bound](auto& rows) {
            rows.erase(
                std::find_if(rows.begin(), rows.end(), [bound](const auto& r) { return changeSeqOf(r) > bound; }),
                rows.end());
        };
        cut(page.games);
        cut(page.rankSnapshots);
        cut(page.performanceScores);

        int64_t last = after;
        for (const SyncedGame& g : page.games)
            last = std::max(last, g.match.changeSeq);
        for (const RankSnapshot& s : page.rankSnapshots)
            last = std::max(last, s.changeSeq);
        for (const PerformanceScore& s : page.performanceScores)
            last = std::max(last, s.changeSeq);
        page.nextCursor = encodeSyncCursor(last);
    });
    return page;
}

} // namespace qf
