#pragma once

#include "backend/json_reader.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

// Records of the archive pull, the client-game upload and the static-data version.
// Decode-only; timestamps stay text and are read by whoever uses them.

struct MatchDto {
    qint64 id = 0;
    QString matchId;
    QString platform;
    qint64 queueId = 0;
    std::optional<bool> isRanked;
    std::optional<QString> gameCreation;
    qint64 gameDuration = 0;
    std::optional<QString> gameVersion;
    std::optional<QString> gameMode;
    std::optional<qint64> season;
    std::optional<QString> updatedAt;

    static MatchDto decode(const JsonReader& in);
};

struct ParticipantDto {
    qint64 id = 0;
    qint64 matchId = 0;
    QString puuid;
    std::optional<QString> riotIdGameName;
    std::optional<QString> riotIdTagLine;
    qint64 teamId = 0;
    bool win = false;
    qint64 championId = 0;
    QString championName;
    std::optional<QString> teamPosition;
    std::optional<qint64> champLevel;
    qint64 kills = 0;
    qint64 deaths = 0;
    qint64 assists = 0;
    qint64 totalCs = 0;
    qint64 goldEarned = 0;
    qint64 visionScore = 0;
    qint64 damageToChampions = 0;
    std::optional<QList<qint64>> items;
    std::optional<double> teamDamagePct;
    std::optional<double> killParticipation;
    std::optional<double> csPerMin;
    std::optional<QString> rankTier;
    std::optional<QString> rankDivision;
    std::optional<qint64> rankLp;

    static ParticipantDto decode(const JsonReader& in);
    friend bool operator==(const ParticipantDto&, const ParticipantDto&) = default;
};

struct RankSnapshotDto {
    qint64 id = 0;
    qint64 riotAccountId = 0;
    QString queue;
    std::optional<QString> tier;
    std::optional<QString> division;
    qint64 lp = 0;
    qint64 wins = 0;
    qint64 losses = 0;
    std::optional<QString> capturedAt;

    static RankSnapshotDto decode(const JsonReader& in);
};

struct PerformanceScoreDto {
    qint64 id = 0;
    qint64 riotAccountId = 0;
    qint64 matchId = 0;
    qint64 championId = 0;
    std::optional<QString> teamPosition;
    double score = 0;
    QMap<QString, double> components;
    QString baselineKind;

    static PerformanceScoreDto decode(const JsonReader& in);
};

// One page of the archive pull. The player records, ten per game and nearly all of a page, are
// read as Participant: the plain record here, or a row type of a reader that stores them (it
// decodes them with the keys and rules of ParticipantDto::decode).
template <class Participant> struct ArchivePage {
    QList<MatchDto> matches;
    QList<Participant> participants;
    QList<RankSnapshotDto> rankSnapshots;
    QList<PerformanceScoreDto> performanceScores;
    std::optional<QString> nextCursor;
    bool hasMore = false;

    static ArchivePage decode(const JsonReader& in) {
        ArchivePage page;
        page.matches = in.records<MatchDto>("matches");
        page.participants = in.records<Participant>("participants");
        page.rankSnapshots = in.records<RankSnapshotDto>("rankSnapshots");
        page.performanceScores = in.records<PerformanceScoreDto>("performanceScores");
        page.nextCursor = in.optText("nextCursor");
        page.hasMore = in.flag("hasMore");
        return page;
    }
};

using SyncResponse = ArchivePage<ParticipantDto>;

struct IngestLocalResponse {
    qint64 ingested = 0;
    qint64 skipped = 0;
    QStringList matchIds;

    static IngestLocalResponse decode(const JsonReader& in);
};

struct StaticVersionResponse {
    QString version;
    std::optional<QString> ddragonBaseUrl;

    static StaticVersionResponse decode(const JsonReader& in);
};
