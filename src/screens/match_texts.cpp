#include "screens/match_texts.h"

#include "game_data/stats.h"
#include "screens/relative_time.h"
#include "theme/theme.h"

namespace MatchTexts {

QString result(bool win) {
    return win ? QStringLiteral("Victory") : QStringLiteral("Defeat");
}

QString kdaRatio(const LocalParticipant& row) {
    return QString::asprintf("%.2f KDA", Stats::kdaRatio(row));
}

QString kdaShort(const LocalParticipant& row) {
    return QString::asprintf("%.1f", Stats::kdaRatio(row));
}

QString creepScore(const LocalParticipant& row) {
    return QString::asprintf("CS %lld (%.1f)", static_cast<long long>(row.totalCs), row.csPerMin.value_or(0.0));
}

QString damage(qint64 damageToChampions) {
    return QString::asprintf("%lldk dmg", static_cast<long long>(damageToChampions / 1000));
}

QString thousands(qint64 value) {
    return QString::asprintf("%lldk", static_cast<long long>(value / 1000));
}

QString minutes(qint64 gameDurationSeconds) {
    return QString::asprintf("%lldm", static_cast<long long>(gameDurationSeconds / 60));
}

QString timeText(const LocalMatch& match, const QDateTime& now, const char* locale) {
    QString text = minutes(match.gameDuration);
    if (match.gameCreation)
        text += QStringLiteral(" · ") + RelativeTime::phrase(*match.gameCreation, now, locale);
    return text;
}

QString categoryChip(GameCategory category) {
    return GameCategories::rawValue(category).toUpper();
}

QColor categoryColor(GameCategory category) {
    switch (category) {
    case GameCategory::Ranked:
        return Theme::gold();
    case GameCategory::Mayhem:
        return Theme::purple();
    case GameCategory::Aram:
        return Theme::teal();
    case GameCategory::Arena:
        return Theme::orange();
    case GameCategory::Normal:
        return Theme::win();
    case GameCategory::Other:
        return Theme::textDim();
    }
    return Theme::textDim();
}

} // namespace MatchTexts
