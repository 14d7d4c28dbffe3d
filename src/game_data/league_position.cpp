#include "game_data/league_position.h"

namespace LeaguePosition {

QString shortLabel(const std::optional<QString>& position) {
    const QString key = position.value_or(QString()).toUpper();
    if (key == QLatin1String("TOP"))
        return QStringLiteral("Top");
    if (key == QLatin1String("JUNGLE"))
        return QStringLiteral("Jungle");
    if (key == QLatin1String("MIDDLE"))
        return QStringLiteral("Mid");
    if (key == QLatin1String("BOTTOM"))
        return QStringLiteral("Bot");
    if (key == QLatin1String("UTILITY"))
        return QStringLiteral("Support");
    return QStringLiteral("\u2014");
}

} // namespace LeaguePosition
