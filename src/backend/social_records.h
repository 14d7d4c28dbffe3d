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
