#pragma once

#include "backend/archive_records.h"

#include <QDateTime>
#include <QString>
#include <optional>

// One observation of a linked account's rank in one queue.
struct LocalRankSnapshot {
    qint64 localId = 0;
    qint64 serverId = 0;
    qint64 riotAccountId = 0;
    QString queue;
    std::optional<QString> tier;
    std::optional<QString> division;
    qint64 lp = 0;
    qint64 wins = 0;
    qint64 losses = 0;
    std::optional<QDateTime> capturedAt;

    LocalRankSnapshot() = default;
    explicit LocalRankSnapshot(const RankSnapshotDto& dto);
    void update(const RankSnapshotDto& dto);
};
