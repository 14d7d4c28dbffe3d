#include "archive/local_match.h"

#include "backend/backend_date.h"

LocalMatch::LocalMatch(const MatchDto& dto) : serverId(dto.id) {
    update(dto);
}

void LocalMatch::update(const MatchDto& dto) {
    matchId = dto.matchId;
    platform = dto.platform;
    queueId = dto.queueId;
    // The backend leaves the flag out when it has nothing new to say about it.
    if (dto.isRanked)
        isRanked = *dto.isRanked;
    gameCreation = BackendDate::fromBackend(dto.gameCreation);
    gameDuration = dto.gameDuration;
    gameVersion = dto.gameVersion;
    gameMode = dto.gameMode;
    season = dto.season;
}
