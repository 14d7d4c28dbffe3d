#include "game_data/rank_math.h"

namespace {

QString capitalised(const QString& text) {
    return text.left(1).toUpper() + text.mid(1).toLower();
}

} // namespace

namespace RankMath {

std::optional<qint64> absoluteLp(const std::optional<QString>& tier, const std::optional<QString>& division,
                                 qint64 lp) {
    if (!tier)
        return std::nullopt;
    const qsizetype tierIndex = tiers.indexOf(tier->toUpper());
    if (tierIndex < 0)
        return std::nullopt;
    if (tierIndex >= firstTierWithoutDivisions)
        return 400 * tierIndex + lp;
    const qsizetype divisionIndex = divisions.indexOf(division.value_or(QStringLiteral("IV")).toUpper());
    return 400 * tierIndex + (divisionIndex < 0 ? 0 : 100 * divisionIndex) + lp;
}

QString label(const std::optional<QString>& tier, const std::optional<QString>& division) {
    if (!tier)
        return QStringLiteral("Unranked");
    if (tiers.indexOf(tier->toUpper()) >= firstTierWithoutDivisions)
        return capitalised(*tier);
    return (capitalised(*tier) + QLatin1Char(' ') + division.value_or(QString())).trimmed();
}

} // namespace RankMath
