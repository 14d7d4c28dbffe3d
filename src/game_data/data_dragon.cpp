#include "game_data/data_dragon.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

DataDragon::DataDragon(QString cdnBase) : m_base(std::move(cdnBase)) {}

DataDragon DataDragon::fromSettings(const QSettings& settings) {
    const QString stored = settings.value(QLatin1String(cdnBaseKey)).toString().trimmed();
    if (stored.isEmpty())
        return DataDragon();
    // The paths are appended as they are, so the base must end with its separator.
    return DataDragon(stored.endsWith(QLatin1Char('/')) ? stored : stored + QLatin1Char('/'));
}

QUrl DataDragon::make(const QString& tail) const {
    const QUrl url(m_base + tail, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty())
        return {};
    return url;
}

QUrl DataDragon::itemIcon(qint64 id, const QString& version) const {
    return make(version + QStringLiteral("/img/item/") + QString::number(id) + QStringLiteral(".png"));
}

QUrl DataDragon::profileIcon(qint64 id, const QString& version) const {
    return make(version + QStringLiteral("/img/profileicon/") + QString::number(id) + QStringLiteral(".png"));
}

QUrl DataDragon::championIcon(const QString& championName, const QString& version) const {
    QString name = championName;
    name.remove(QLatin1Char(' '));
    return make(version + QStringLiteral("/img/champion/") + name + QStringLiteral(".png"));
}

QUrl DataDragon::championList(const QString& version) const {
    return make(version + QStringLiteral("/data/en_US/champion.json"));
}

std::optional<qint64> DataDragon::parseChampionKey(const QString& key) {
    qsizetype start = 0;
    if (!key.isEmpty() && (key[0] == QLatin1Char('+') || key[0] == QLatin1Char('-')))
        start = 1;
    if (start == key.size())
        return std::nullopt;
    for (qsizetype i = start; i < key.size(); ++i)
        if (key[i] < QLatin1Char('0') || key[i] > QLatin1Char('9'))
            return std::nullopt;
    bool ok = false;
    const qint64 value = key.toLongLong(&ok);
    return ok ? std::optional<qint64>(value) : std::nullopt;
}

std::optional<QHash<qint64, QString>> DataDragon::parseChampionList(const QByteArray& json) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonValue data = document.object().value(QLatin1String("data"));
    if (!data.isObject())
        return std::nullopt;
    QHash<qint64, QString> result;
    const QJsonObject entries = data.toObject();
    for (auto it = entries.constBegin(); it != entries.constEnd(); ++it) {
        // An entry without its texts means a list of another shape: keep the map already known
        // rather than a partial one. Only a key that is not a number is passed over.
        const QJsonObject entry = it.value().toObject();
        const QJsonValue key = entry.value(QLatin1String("key"));
        const QJsonValue id = entry.value(QLatin1String("id"));
        if (!it.value().isObject() || !key.isString() || !id.isString())
            return std::nullopt;
        if (const auto number = parseChampionKey(key.toString()))
            result.insert(*number, id.toString());
    }
    return result;
}
