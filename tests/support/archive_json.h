#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <optional>

// Backend archive records as the backend sends them (snake_case keys), for scripted answers.
namespace ArchiveJson {

QJsonObject match(qint64 id, qint64 queueId = 420,
                  const QString& gameCreation = QStringLiteral("2025-03-01T18:04:05Z"));
QJsonObject participant(qint64 id, qint64 matchId, const QString& puuid,
                        const QString& champion = QStringLiteral("Ahri"), bool win = true);
QJsonObject snapshot(qint64 id, qint64 accountId, const QString& queue = QStringLiteral("RANKED_SOLO_5x5"),
                     const QString& tier = QStringLiteral("GOLD"), qint64 lp = 50);
QJsonObject score(qint64 id, qint64 accountId, qint64 matchId, double value = 61.5);
QJsonObject page(const QJsonArray& matches, const QJsonArray& participants = {}, const QJsonArray& snapshots = {},
                 const QJsonArray& scores = {}, const std::optional<QString>& nextCursor = std::nullopt,
                 bool hasMore = false);

QJsonObject user(qint64 id = 7, const QString& email = QStringLiteral("ada@example.com"));
QJsonObject auth(const QString& token = QStringLiteral("tok-123"));
QJsonObject riotAccount(qint64 id, const QString& puuid, const QString& name = QStringLiteral("Ada"),
                        const QString& tag = QStringLiteral("EUW"));
QJsonObject riotAccounts(const QJsonArray& accounts);

} // namespace ArchiveJson
