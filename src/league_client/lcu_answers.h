#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

// Readers for the League client's answers. The client's JSON is untyped and changes between
// patches, so each reader takes only what it needs and treats anything else as absent.
namespace LcuAnswers {

// The identity the client is signed in with.
struct CurrentSummoner {
    QString puuid; // never empty
    std::optional<QString> gameName;
    std::optional<QString> tagLine;
};

// Throws LcuError::decode() when the answer has no usable "puuid".
[[nodiscard]] CurrentSummoner readCurrentSummoner(const QByteArray& body);

// The client's region codes (upper case) to the platform ids the backend knows.
[[nodiscard]] const QHash<QString, QString>& platformByRegion();

// The platform of a "/riotclient/region-locale" answer, or nothing for an unreadable answer or
// a region outside the table.
[[nodiscard]] std::optional<QString> readPlatform(const QByteArray& body);

// The entries of one match-history page ({"games": {"games": [...]}}), or nothing when the
// page does not have that shape.
[[nodiscard]] std::optional<QList<QJsonObject>> readHistoryPage(const QByteArray& body);

// The decimal text of a game object's "gameId"; a float is truncated toward zero, and a value
// that is not a number, not finite or beyond 64 bits is no id.
[[nodiscard]] std::optional<QString> gameId(const QJsonObject& game);

} // namespace LcuAnswers
