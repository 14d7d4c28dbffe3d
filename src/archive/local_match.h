#pragma once

#include "archive/shared_text.h"
#include "backend/archive_records.h"

#include <QDateTime>
#include <QString>
#include <optional>

// One stored game, a copy of the backend's match record.
struct LocalMatch {
    qint64 localId = 0; // the store's own identity, kept for the record's life
    qint64 serverId = 0;
    SharedText matchId = SharedText::empty();
    SharedText platform = SharedText::empty();
    qint64 queueId = 0;
    bool isRanked = false;
    std::optional<QDateTime> gameCreation;
    qint64 gameDuration = 0;
    SharedText gameVersion; // absent when unknown
    SharedText gameMode;    // absent when unknown
    std::optional<qint64> season;

    LocalMatch() = default;
    explicit LocalMatch(const MatchDto& dto);
    void update(const MatchDto& dto);
};
