#include "overlay/skill_order.h"

#include <array>
#include <utility>

namespace SkillOrder {

std::optional<QString> recommendedNext(const QMap<QString, qint64>& abilities, qint64 level) {
    const qint64 ultimate = abilities.value(QStringLiteral("R"), 0);
    // Champion level at which each rank of the ultimate opens.
    constexpr std::array<std::pair<qint64, qint64>, 3> breakpoints{{{6, 1}, {11, 2}, {16, 3}}};
    for (const auto& [atLevel, rank] : breakpoints)
        if (level >= atLevel && ultimate < rank)
            return QStringLiteral("R");

    // The order only breaks ties between equally ranked basics.
    const std::array<QString, 3> basics{QStringLiteral("Q"), QStringLiteral("E"), QStringLiteral("W")};
    std::optional<QString> best;
    qint64 bestRank = 0;
    for (const QString& key : basics) {
        const qint64 rank = abilities.value(key, 0);
        if (rank >= maxBasicRank)
            continue;
        if (!best || rank > bestRank) {
            best = key;
            bestRank = rank;
        }
    }
    if (best)
        return best;
    if (ultimate < maxUltimateRank)
        return QStringLiteral("R");
    return std::nullopt;
}

} // namespace SkillOrder
