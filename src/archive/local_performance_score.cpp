#include "archive/local_performance_score.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

namespace {

QString componentsText(const QMap<QString, double>& components) {
    QJsonObject object;
    for (auto it = components.constBegin(); it != components.constEnd(); ++it) {
        // JSON has no spelling for infinities or NaN: such a map cannot be written.
        if (!std::isfinite(it.value()))
            return QStringLiteral("{}");
        object.insert(it.key(), it.value());
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

LocalPerformanceScore::LocalPerformanceScore(const PerformanceScoreDTO& dto) : serverId(dto.id) {
    update(dto);
}

void LocalPerformanceScore::update(const PerformanceScoreDTO& dto) {
    riotAccountId = dto.riotAccountId;
    matchServerId = dto.matchId;
    championId = dto.championId;
    teamPosition = dto.teamPosition;
    score = dto.score;
    baselineKind = dto.baselineKind;
    componentsJSON = componentsText(dto.components);
}
