#include "league_client/lcu_answers.h"

#include "league_client/lcu_error.h"

#include <QCborValue>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <cmath>

namespace LcuAnswers {

namespace {

std::optional<QJsonObject> parseObject(const QByteArray& body) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

std::optional<QString> nonEmptyText(const QJsonObject& object, QLatin1StringView key) {
    const QJsonValue value = object.value(key);
    if (!value.isString() || value.toString().isEmpty())
        return std::nullopt;
    return value.toString();
}

} // namespace

CurrentSummoner readCurrentSummoner(const QByteArray& body) {
    const std::optional<QJsonObject> object = parseObject(body);
    if (!object)
        throw LcuError::decode();
    std::optional<QString> puuid = nonEmptyText(*object, QLatin1StringView("puuid"));
    if (!puuid)
        throw LcuError::decode();
    return CurrentSummoner{*puuid, nonEmptyText(*object, QLatin1StringView("gameName")),
                           nonEmptyText(*object, QLatin1StringView("tagLine"))};
}

const QHash<QString, QString>& platformByRegion() {
    static const QHash<QString, QString> table{
        {QStringLiteral("EUW"), QStringLiteral("euw1")}, {QStringLiteral("EUNE"), QStringLiteral("eun1")},
        {QStringLiteral("NA"), QStringLiteral("na1")},   {QStringLiteral("KR"), QStringLiteral("kr")},
        {QStringLiteral("BR"), QStringLiteral("br1")},   {QStringLiteral("LAN"), QStringLiteral("la1")},
        {QStringLiteral("LAS"), QStringLiteral("la2")},  {QStringLiteral("OCE"), QStringLiteral("oc1")},
        {QStringLiteral("TR"), QStringLiteral("tr1")},   {QStringLiteral("RU"), QStringLiteral("ru")},
        {QStringLiteral("JP"), QStringLiteral("jp1")},   {QStringLiteral("PH"), QStringLiteral("ph2")},
        {QStringLiteral("SG"), QStringLiteral("sg2")},   {QStringLiteral("TH"), QStringLiteral("th2")},
        {QStringLiteral("TW"), QStringLiteral("tw2")},   {QStringLiteral("VN"), QStringLiteral("vn2")},
    };
    return table;
}

std::optional<QString> readPlatform(const QByteArray& body) {
    const std::optional<QJsonObject> object = parseObject(body);
    if (!object)
        return std::nullopt;
    const QJsonValue region = object->value(QLatin1StringView("region"));
    if (!region.isString())
        return std::nullopt;
    const auto found = platformByRegion().constFind(region.toString().toUpper());
    if (found == platformByRegion().constEnd())
        return std::nullopt;
    return *found;
}

std::optional<QList<QJsonObject>> readHistoryPage(const QByteArray& body) {
    const std::optional<QJsonObject> top = parseObject(body);
    if (!top)
        return std::nullopt;
    // The client nests the list twice under the same key.
    const QJsonValue outer = top->value(QLatin1StringView("games"));
    if (!outer.isObject())
        return std::nullopt;
    const QJsonValue inner = outer.toObject().value(QLatin1StringView("games"));
    if (!inner.isArray())
        return std::nullopt;
    const QJsonArray array = inner.toArray();
    QList<QJsonObject> entries;
    entries.reserve(array.size());
    for (const QJsonValue& element : array) {
        if (!element.isObject())
            return std::nullopt;
        entries.append(element.toObject());
    }
    return entries;
}

std::optional<QString> gameId(const QJsonObject& game) {
    const QJsonValue value = game.value(QLatin1StringView("gameId"));
    if (!value.isDouble())
        return std::nullopt;
    // QJsonValue reports every number as a double; its CBOR form still tells integers apart,
    // which keeps ids above 2^53 exact.
    const QCborValue number = QCborValue::fromJsonValue(value);
    if (number.isInteger())
        return QString::number(number.toInteger());
    const double real = value.toDouble();
    constexpr double bound = 9223372036854775808.0; // 2^63
    if (!std::isfinite(real) || real >= bound || real < -bound)
        return std::nullopt;
    return QString::number(static_cast<qint64>(std::trunc(real)));
}

} // namespace LcuAnswers
