#include "game_data/game_category.h"

#include <algorithm>

namespace GameCategories {

std::optional<GameCategory> ofQueue(qint64 queueId) {
    switch (queueId) {
    case 420:
    case 440:
        return GameCategory::Ranked;
    case 700:
    case 720:
        return GameCategory::Normal;
    case 900:
    case 2400:
        return GameCategory::Mayhem;
    case 1700:
    case 1710:
        return GameCategory::Arena;
    default:
        return std::nullopt;
    }
}

GameCategory of(qint64 queueId, const std::optional<QString>& gameMode) {
    if (const std::optional<GameCategory> known = ofQueue(queueId))
        return *known;
    if (!gameMode)
        return GameCategory::Other;
    // Every game without a known queue passes here. An ASCII mode is compared letter by letter
    // against the upper-case keyword, which is what upper-casing it would give; any other mode
    // is upper-cased first (a dotless i, say, upper-cases to I).
    const QString& raw = *gameMode;
    const bool ascii = std::all_of(raw.begin(), raw.end(), [](QChar c) { return c.unicode() < 0x80; });
    const QString upper = ascii ? QString() : raw.toUpper();
    const auto is = [&](QLatin1String keyword) {
        if (!ascii)
            return upper == keyword;
        if (raw.size() != keyword.size())
            return false;
        for (qsizetype i = 0; i < raw.size(); ++i) {
            char16_t c = raw[i].unicode();
            if (c >= u'a' && c <= u'z')
                c = char16_t(c - (u'a' - u'A'));
            if (c != char16_t(keyword[i].unicode()))
                return false;
        }
        return true;
    };
    if (is(QLatin1String("ARAM")))
        return GameCategory::Aram;
    if (is(QLatin1String("URF")) || is(QLatin1String("KIWI")))
        return GameCategory::Mayhem;
    if (is(QLatin1String("CHERRY")))
        return GameCategory::Arena;
    if (is(QLatin1String("CLASSIC")))
        return GameCategory::Normal;
    return GameCategory::Other;
}

QString rawValue(GameCategory category) {
    switch (category) {
    case GameCategory::Ranked:
        return QStringLiteral("Ranked");
    case GameCategory::Mayhem:
        return QStringLiteral("Mayhem");
    case GameCategory::Aram:
        return QStringLiteral("ARAM");
    case GameCategory::Arena:
        return QStringLiteral("Arena");
    case GameCategory::Normal:
        return QStringLiteral("Normal");
    case GameCategory::Other:
        return QStringLiteral("Other");
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
