#pragma once

#include "backend/json_reader.h"

#include <QList>
#include <QString>
#include <optional>

// Answers of the social endpoints. Decode-only.

struct DuoDto {
    QString puuid;
    std::optional<QString> riotId;
    qint64 games = 0;
    qint64 wins = 0;
    qint64 losses = 0;
    double winrate = 0;
    std::optional<QString> lastPlayed;
    std::optional<QString> rank;
    std::optional<qint64> profileIconId;

    static DuoDto decode(const JsonReader& in);
};

struct DuosResponse {
    QList<DuoDto> duos;

    static DuosResponse decode(const JsonReader& in);
};

// The games the user played on the same team as one player.
struct FriendStatsDto {
    struct Tally {
        qint64 games = 0;
        qint64 wins = 0;
        qint64 losses = 0;
        double winrate = 0;

        static Tally decode(const JsonReader& in);
    };
    struct Game {
        qint64 matchId = 0;
        std::optional<qint64> season;
        qint64 queueId = 0;
        std::optional<QString> gameMode;
        std::optional<QString> playedAt;
        bool win = false;
        QString ownerChampion;
        std::optional<QString> ownerPosition;
        QString friendChampion;

        static Game decode(const JsonReader& in);
    };

    QString friendPuuid;
    std::optional<QString> friendName;
    std::optional<QString> friendTag;
    std::optional<qint64> friendIcon;
    Tally total;
    QList<Game> games;

    static FriendStatsDto decode(const JsonReader& in);
};

struct RankEntryDto {
    QString queueType;
    std::optional<QString> tier;
    std::optional<QString> rank;
    std::optional<qint64> leaguePoints;
    std::optional<qint64> wins;
    std::optional<qint64> losses;

    static RankEntryDto decode(const JsonReader& in);
};

struct MasteryDto {
    qint64 championId = 0;
    qint64 championLevel = 0;
    qint64 championPoints = 0;

    static MasteryDto decode(const JsonReader& in);
};

// Any player's public profile, looked up by Riot ID.
struct PlayerProfileDto {
    struct AccountInfo {
        QString puuid;
        std::optional<QString> gameName;
        std::optional<QString> tagLine;

        // As RiotAccountDto::riotId: the present parts joined with "#".
        [[nodiscard]] QString riotId() const;
        static AccountInfo decode(const JsonReader& in);
    };

    AccountInfo account;
    QString platform;
    QList<RankEntryDto> ranks;
    QList<MasteryDto> mastery;

    static PlayerProfileDto decode(const JsonReader& in);
};
