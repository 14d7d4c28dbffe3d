#include "overlay/skill_strip.h"

#include "overlay/skill_order.h"

#include <algorithm>

namespace SkillStrip {

std::array<Cell, 4> cells(const LiveClientData::Snapshot& snapshot) {
    const std::optional<QString> next = SkillOrder::recommendedNext(snapshot.abilities, snapshot.level);
    std::array<Cell, 4> result;
    const std::array<const char*, 4> keys{"Q", "W", "E", "R"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        Cell& cell = result[i];
        cell.key = QString::fromLatin1(keys[i]);
        cell.rank = snapshot.abilities.value(cell.key, 0);
        cell.isUltimate = cell.key == QLatin1String("R");
        cell.pips = int(cell.isUltimate ? SkillOrder::maxUltimateRank : SkillOrder::maxBasicRank);
        cell.filledPips = int(std::clamp<qint64>(cell.rank, 0, cell.pips));
        cell.isNext = next == cell.key;
    }
    return result;
}

} // namespace SkillStrip
