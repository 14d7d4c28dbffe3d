#pragma once

#include "archive/shared_text.h"
#include "backend/archive_records.h"

#include <QString>
#include <optional>

// The backend's score of one linked account's play in one stored game.
struct LocalPerformanceScore {
    qint64 localId = 0;
    qint64 serverId = 0;
    qint64 riotAccountId = 0;
    qint64 matchServerId = 0;
    qint64 championId = 0;
    SharedText teamPosition; // absent when unknown
    double score = 0;
    SharedText componentsJson = QStringLiteral("{}");
    SharedText baselineKind = QStringLiteral("self");

    LocalPerformanceScore() = default;
    explicit LocalPerformanceScore(const PerformanceScoreDto& dto);
    void update(const PerformanceScoreDto& dto);
};
