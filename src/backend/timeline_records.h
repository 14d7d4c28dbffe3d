#pragma once

#include "backend/json_reader.h"

#include <QList>
#include <QString>
#include <optional>

// The backend's summary of one game's minute-by-minute timeline, seen from the player whose
// archive it is. Decode-only.
//
// Unlike every other answer, its members are named on the wire exactly as the fields below
// ("ownerTeamGold", "goldDiffAt10"): no snake_case at all. It still goes through the one decoder
// and its key rule, and that is safe: the rule leaves a key without an inner underscore as it
// is, so every camelCase member reaches its field unchanged. A record whose names did carry
// underscores would be turned into these same names, so no special decoder is needed.

struct TimelineSummaryDto {
    struct Frame {
        qint64 t = 0; // minute
        qint64 ownerTeamGold = 0;
        qint64 enemyTeamGold = 0;
        qint64 goldDiff = 0;
        qint64 ownerGold = 0;
        qint64 ownerCs = 0;
        qint64 ownerXp = 0;
        qint64 ownerLevel = 0;

        static Frame decode(const JsonReader& in);
    };
    struct Event {
        QString kind; // "kill", "monster", "building"
        qint64 t = 0; // seconds
        qint64 team = 0;
        bool mine = false;
        std::optional<QString> killer;
        std::optional<QString> victim;
        std::optional<QString> monster;
        std::optional<QString> subtype;
        std::optional<QString> building;
        std::optional<QString> lane;

        static Event decode(const JsonReader& in);
    };
    struct FirstBlood {
        qint64 t = 0;
        bool mine = false;
        std::optional<QString> killer;
        std::optional<QString> victim;

        static FirstBlood decode(const JsonReader& in);
    };
    struct Pair {
        qint64 mine = 0;
        qint64 enemy = 0;

        static Pair decode(const JsonReader& in);
    };
    struct Objectives {
        Pair dragons, barons, heralds, towers;

        static Objectives decode(const JsonReader& in);
    };
    struct Stats {
        std::optional<qint64> ownerCsAt10, ownerCsAt14, goldDiffAt10, goldDiffAt14;
        std::optional<qint64> maxGoldLead, maxGoldLeadAt, maxGoldDeficit, maxGoldDeficitAt;
        std::optional<FirstBlood> firstBlood;
        Objectives objectives;

        static Stats decode(const JsonReader& in);
    };

    QString ownerChampion;
    qint64 ownerTeam = 0;
    QList<Frame> frames;
    QList<Event> events;
    Stats stats;

    static TimelineSummaryDto decode(const JsonReader& in);
};
