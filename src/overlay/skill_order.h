#pragma once

#include <QMap>
#include <QString>
#include <optional>

// Which ability the next skill point should go to. One rule for every champion: the ultimate at
// its level breakpoints, otherwise the basic ability that already has the most points.
namespace SkillOrder {

inline constexpr qint64 maxBasicRank = 5;
inline constexpr qint64 maxUltimateRank = 3;

// "Q", "W", "E" or "R"; absent once every ability is at its maximum rank. A missing key counts
// as rank 0. It does not ask whether a point is free to spend: it names where the next one goes.
[[nodiscard]] std::optional<QString> recommendedNext(const QMap<QString, qint64>& abilities, qint64 level);

} // namespace SkillOrder
