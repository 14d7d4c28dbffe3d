#include "archive/local_rank_snapshot.h"

#include "backend/backend_date.h"

LocalRankSnapshot::LocalRankSnapshot(const RankSnapshotDto& dto) : serverId(dto.id) {
    update(dto);
}

void LocalRankSnapshot::update(const RankSnapshotDto& dto) {
    riotAccountId = dto.riotAccountId;
    queue = dto.queue;
    tier = dto.tier;
    division = dto.division;
    lp = dto.lp;
    wins = dto.wins;
    losses = dto.losses;
    capturedAt = BackendDate::fromBackend(dto.capturedAt);
}
