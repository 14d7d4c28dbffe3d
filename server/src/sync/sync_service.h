#pragma once

#include "store/database.h"

#include <optional>
#include <string>
#include <vector>

// One page of a user's archive: the rows changed after the cursor, in change order, whole
// games only.

namespace qf {

struct SyncPage {
    std::vector<SyncedGame> games; // each with its participant objects, ready to send
    std::vector<RankSnapshot> rankSnapshots;
    std::vector<PerformanceScore> performanceScores;
    std::string nextCursor;
    bool hasMore = false;
};

class SyncService {
public:
    explicit SyncService(Database& database, int pageGames = 300) : m_database(database), m_pageGames(pageGames) {}

    // cursor: absent for the very first pull. HttpError 400 for a cursor this server never wrote.
    SyncPage page(int64_t userId, const std::string* cursor);

private:
    Database& m_database;
    int m_pageGames;
};

} // namespace qf
