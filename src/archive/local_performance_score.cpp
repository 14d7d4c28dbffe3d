#include "archive/local_performance_score.h"

#include <QLocale>
#include <cmath>

namespace {

// Written by hand rather than through QJsonDocument: a sync stores one of these per game, and
// the document round trip was most of the cost of storing a score.
QString componentsText(const QMap<QString, double>& components) {
    QString text;
    text.reserve(16 + components.size() * 32);
    text += QLatin1Char('{');
    for (auto it = components.constBegin(); it != components.constEnd(); ++it) {
        // JSON has no spelling for infinities or NaN: such a map cannot be written.
        if (!std::isfinite(it.value()))
            return QStringLiteral("{}");
        if (it != components.constBegin())
            text += QLatin1Char(',');
        text += QLatin1Char('"');
        for (QChar c : it.key()) {
            if (c == u'"' || c == u'\\') {
                text += QLatin1Char('\\');
                text += c;
            } else if (c.unicode() < 0x20) {
                text += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            } else {
                text += c;
            }
        }
        text += QLatin1String("\":");
        text += QString::number(it.value(), 'g', QLocale::FloatingPointShortest);
    }
    text += QLatin1Char('}');
    return text;
}

} // namespace

LocalPerformanceScore::LocalPerformanceScore(const PerformanceScoreDto& dto) : serverId(dto.id) {
    update(dto);
}

void LocalPerformanceScore::update(const PerformanceScoreDto& dto) {
    riotAccountId = dto.riotAccountId;
    matchServerId = dto.matchId;
    championId = dto.championId;
    teamPosition = dto.teamPosition;
    score = dto.score;
    baselineKind = dto.baselineKind;
    componentsJson = componentsText(dto.components);
}
