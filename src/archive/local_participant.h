#pragma once

#include "archive/exact_participant.h"
#include "archive/item_slots.h"
#include "archive/optional_int.h"
#include "archive/optional_real.h"
#include "archive/player_name.h"
#include "archive/shared_text.h"
#include "backend/archive_records.h"

#include <QString>
#include <optional>

// One player's line in one stored game.
//
// An archive holds ten of these per game, so the row is kept small (136 bytes): texts are shared
// (a player's id is a 4-byte number equal in all their games), each figure has the width a game's
// figures need, items lie in the row. A figure the backend sends beyond its width (or more than
// seven items) does not fit: the row then shows what fits and keeps the backend's exact record
// beside it, which is what is written to disk, so nothing the backend sent is lost.
struct LocalParticipant {
    // What the statistics read of every row comes first, in the row's first 24 bytes, so that a
    // pass over all rows fetches little more than that of each.
    qint64 matchServerId = 0;
    SharedText puuid = SharedText::empty();
    qint16 teamId = 0;
    bool win = false;
    OptionalInt<qint8> champLevel;
    PlayerName riotIdGameName; // absent when the backend had none
    qint64 localId = 0;
    qint64 serverId = 0;
    OptionalReal csPerMin;
    OptionalReal teamDamagePct;
    OptionalReal killParticipation;
    SharedText riotIdTagLine;
    SharedText championName = SharedText::empty();
    SharedText teamPosition;
    SharedText rankTier;
    SharedText rankDivision;
    // Figures in the width a game's take; gold and damage run past 32,767.
    qint32 championId = 0;
    qint16 kills = 0;
    qint16 deaths = 0;
    qint16 assists = 0;
    qint16 totalCs = 0;
    qint16 visionScore = 0;
    OptionalInt<qint16> rankLp;
    ItemSlots items;
    qint32 goldEarned = 0;
    qint32 damageToChampions = 0;

    LocalParticipant() = default;
    explicit LocalParticipant(const ParticipantDto& dto);
    // Reads the backend's participant record straight into a row, with the keys, rules and
    // failures of ParticipantDto::decode: a sync brings rows by the hundred thousand, and a
    // record of QStrings for each, only to intern its texts again, cost more than storing them.
    [[nodiscard]] static LocalParticipant decode(const JsonReader& in);

    void update(const ParticipantDto& dto);
    // The record as the backend sent it: the exact copy when a figure did not fit.
    [[nodiscard]] ParticipantDto toDto() const;
    // The backend's record when the row could not hold all of it exactly; null nearly always.
    [[nodiscard]] const ParticipantDto* exact() const { return m_exact.get(); }

    // The Riot ID name when known, else the start of the player's id.
    [[nodiscard]] QString displayName() const;

private:
    // The figures as the backend sent them, before they are narrowed to the row's widths.
    struct Figures {
        qint64 teamId, championId, kills, deaths, assists, totalCs, goldEarned, visionScore, damageToChampions;
        std::optional<qint64> champLevel, rankLp;
    };
    // Narrows the figures into the row; false when one did not fit.
    bool setFigures(const Figures& figures);

    ExactParticipant m_exact;
};
