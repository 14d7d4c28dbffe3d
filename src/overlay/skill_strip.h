#pragma once

#include "overlay/live_client_data.h"

#include <QString>
#include <array>

// What the strip shows of a snapshot: one cell per ability, Q, W, E, R in that order.
namespace SkillStrip {

struct Cell {
    QString key;
    qint64 rank = 0;
    bool isUltimate = false;
    int pips = 0;       // 3 for the ultimate, 5 for the others
    int filledPips = 0; // the rank, within 0 and the number of pips
    bool isNext = false;

    bool operator==(const Cell&) const = default;
};

[[nodiscard]] std::array<Cell, 4> cells(const LiveClientData::Snapshot& snapshot);

} // namespace SkillStrip
