#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace RankMath {

// Lowest first; a tier's index is its rank order. Master and above have no divisions.
inline const QStringList tiers = {
    QStringLiteral("IRON"),        QStringLiteral("BRONZE"),    QStringLiteral("SILVER"),  QStringLiteral("GOLD"),
    QStringLiteral("PLATINUM"),    QStringLiteral("EMERALD"),   QStringLiteral("DIAMOND"), QStringLiteral("MASTER"),
    QStringLiteral("GRANDMASTER"), QStringLiteral("CHALLENGER")};
inline const QStringList divisions = {QStringLiteral("IV"), QStringLiteral("III"), QStringLiteral("II"),
                                      QStringLiteral("I")};
inline constexpr int firstTierWithoutDivisions = 7;

// A standing on one continuous scale (400 per tier, 100 per division); none for an unknown tier.
[[nodiscard]] std::optional<qint64> absoluteLp(const std::optional<QString>& tier,
                                               const std::optional<QString>& division, qint64 lp);
// "Gold II", "Master", "Unranked".
[[nodiscard]] QString label(const std::optional<QString>& tier, const std::optional<QString>& division);

} // namespace RankMath
