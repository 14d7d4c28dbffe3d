#include "game_data/game_category.h"

namespace GameCategories {

GameCategory of(qint64 queueId, const std::optional<QString>& gameMode) {
    switch (queueId) {
    case 420: case 440: return GameCategory::Ranked;
    case 700: case 720: return GameCategory::Normal;
    case 900: case 2400: return GameCategory::Mayhem;
    case 1700: case 1710: return GameCategory::Arena;
    default: break;
    }
    const QString mode = gameMode.value_or(QString()).toUpper();
    if (mode == QLatin1String("ARAM")) return GameCategory::Aram;
    if (mode == QLatin1String("URF") || mode == QLatin1String("KIWI")) return GameCategory::Mayhem;
    if (mode == QLatin1String("CHERRY")) return GameCategory::Arena;
    if (mode == QLatin1String("CLASSIC")) return GameCategory::Normal;
    return GameCategory::Other;
}

QString rawValue(GameCategory category) {
    switch (category) {
    case GameCategory::Ranked: return QStringLiteral("Ranked");
    case GameCategory::Mayhem: return QStringLiteral("Mayhem");
    case GameCategory::Aram: return QStringLiteral("ARAM");
    case GameCategory::Arena: return QStringLiteral("Arena");
    case GameCategory::Normal: return QStringLiteral("Normal");
    case GameCategory::Other: return QStringLiteral("Other");
    }
    return {};
}

std::optional<GameCategory> fromRawValue(const QString& text) {
    for (GameCategory category : all)
        if (rawValue(category) == text)
            return category;
    return std::nullopt;
}

} // namespace GameCategories
