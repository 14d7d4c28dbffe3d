#include "backend/json_reader.h"

#include "backend/json_keys.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonParseError>

namespace {

// Answers repeat the same few dozen keys thousands of times; converting each once is enough.
const QString& convertedKey(const QString& key) {
    thread_local QHash<QString, QString> cache;
    auto it = cache.constFind(key);
    if (it == cache.constEnd())
        it = cache.insert(key, JsonKeys::fromSnakeCase(key));
    return *it;
}

QString where(const QString& path) {
    return path.isEmpty() ? QStringLiteral("the top level") : QStringLiteral("\"%1\"").arg(path);
}

} // namespace

namespace JsonRead {

QString kindName(const QJsonValue& value) {
    switch (value.type()) {
    case QJsonValue::Null: return QStringLiteral("null");
    case QJsonValue::Bool: return QStringLiteral("a flag");
    case QJsonValue::Double: return QStringLiteral("a number");
    case QJsonValue::String: return QStringLiteral("text");
    case QJsonValue::Array: return QStringLiteral("a list");
    case QJsonValue::Object: return QStringLiteral("an object");
    case QJsonValue::Undefined: return QStringLiteral("nothing");
    }
    return QStringLiteral("an unknown value");
}

void mismatch(const QString& path, const char* expected, const QJsonValue& found) {
    throw DecodingFailure(QStringLiteral("Expected %1 at %2 but found %3.")
                              .arg(QLatin1String(expected), where(path), kindName(found)));
}

} // namespace JsonRead

JsonReader::JsonReader(const QJsonObject& object, QString path) : m_path(std::move(path)) {
    m_fields.reserve(object.size());
    for (auto it = object.constBegin(); it != object.constEnd(); ++it)
        m_fields.emplace_back(convertedKey(it.key()), it.value());
}

QJsonObject JsonReader::parseDocument(const QByteArray& body) {
    if (body.trimmed().isEmpty())
        throw DecodingFailure(QStringLiteral("The answer has no body; expected a JSON object."));
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        throw DecodingFailure(QStringLiteral("The given data was not valid JSON (%1 at offset %2).")
                                  .arg(error.errorString())
                                  .arg(error.offset));
    if (!document.isObject())
        throw DecodingFailure(QStringLiteral("Expected an object at the top level but found %1.")
                                  .arg(document.isArray() ? QStringLiteral("a list") : QStringLiteral("a value")));
    return document.object();
}

const QJsonValue* JsonReader::find(QLatin1StringView key) const {
    // The last occurrence wins, as when two spellings of one key both arrive.
    for (auto it = m_fields.rbegin(); it != m_fields.rend(); ++it)
        if (it->first == key)
            return &it->second;
    return nullptr;
}

QString JsonReader::childPath(const char* key) const {
    return m_path.isEmpty() ? QString::fromLatin1(key) : m_path + QLatin1Char('.') + QLatin1String(key);
}

QString JsonReader::elementPath(const QString& base, qsizetype index) {
    return base + QLatin1Char('[') + QString::number(index) + QLatin1Char(']');
}

QJsonValue JsonReader::required(const char* key, const char* expected) const {
    const QJsonValue* value = find(QLatin1StringView(key));
    if (!value)
        throw DecodingFailure(QStringLiteral("Missing key \"%1\" at %2.").arg(QLatin1String(key), where(m_path)));
    if (value->isNull())
        JsonRead::mismatch(childPath(key), expected, *value);
    return *value;
}

QJsonObject JsonReader::objectElement(const QJsonValue& value, const QString& path) {
    if (!value.isObject())
        JsonRead::mismatch(path, "an object", value);
    return value.toObject();
}

QJsonObject JsonReader::requiredObject(const char* key) const {
    return objectElement(required(key, "an object"), childPath(key));
}

QJsonArray JsonReader::requiredArray(const char* key) const {
    const QJsonValue value = required(key, "a list");
    if (!value.isArray())
        JsonRead::mismatch(childPath(key), "a list", value);
    return value.toArray();
}

qint64 JsonReader::toInteger(const QJsonValue& value, const QString& path) const {
    if (!value.isDouble())
        JsonRead::mismatch(path, "an integer", value);
    // Whole numbers only: 3.0 is an integer, 3.5 or 1e300 is not. Integers beyond 2^53 that
    // arrived as integers keep every digit.
    const qint64 whole = value.toInteger();
    if (static_cast<double>(whole) != value.toDouble())
        JsonRead::mismatch(path, "an integer", value);
    return whole;
}

QString JsonReader::text(const char* key) const {
    const QJsonValue value = required(key, "text");
    if (!value.isString())
        JsonRead::mismatch(childPath(key), "text", value);
    return value.toString();
}

qint64 JsonReader::integer(const char* key) const {
    return toInteger(required(key, "an integer"), childPath(key));
}

double JsonReader::real(const char* key) const {
    const QJsonValue value = required(key, "a number");
    if (!value.isDouble())
        JsonRead::mismatch(childPath(key), "a number", value);
    return value.toDouble();
}

bool JsonReader::flag(const char* key) const {
    const QJsonValue value = required(key, "a flag");
    if (!value.isBool())
        JsonRead::mismatch(childPath(key), "a flag", value);
    return value.toBool();
}

QList<qint64> JsonReader::integerList(const QJsonValue& value, const char* key) const {
    const QString path = childPath(key);
    if (!value.isArray())
        JsonRead::mismatch(path, "a list", value);
    const QJsonArray array = value.toArray();
    QList<qint64> result;
    result.reserve(array.size());
    for (qsizetype i = 0; i < array.size(); ++i)
        result.append(toInteger(array.at(i), elementPath(path, i)));
    return result;
}

QList<qint64> JsonReader::integers(const char* key) const {
    return integerList(required(key, "a list"), key);
}

QStringList JsonReader::texts(const char* key) const {
    const QJsonArray array = requiredArray(key);
    const QString path = childPath(key);
    QStringList result;
    result.reserve(array.size());
    for (qsizetype i = 0; i < array.size(); ++i) {
        if (!array.at(i).isString())
            JsonRead::mismatch(elementPath(path, i), "text", array.at(i));
        result.append(array.at(i).toString());
    }
    return result;
}

QMap<QString, double> JsonReader::realMap(const char* key) const {
    const QJsonObject object = requiredObject(key);
    const QString path = childPath(key);
    QMap<QString, double> result;
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        const QString& name = convertedKey(it.key());
        if (!it.value().isDouble())
            JsonRead::mismatch(path + QLatin1Char('.') + name, "a number", it.value());
        result.insert(name, it.value().toDouble());
    }
    return result;
}

std::optional<QString> JsonReader::optText(const char* key) const {
    const QJsonValue* value = find(QLatin1StringView(key));
    if (!value || value->isNull())
        return std::nullopt;
    if (!value->isString())
        JsonRead::mismatch(childPath(key), "text", *value);
    return value->toString();
}

std::optional<qint64> JsonReader::optInteger(const char* key) const {
    const QJsonValue* value = find(QLatin1StringView(key));
    if (!value || value->isNull())
        return std::nullopt;
    return toInteger(*value, childPath(key));
}

std::optional<double> JsonReader::optReal(const char* key) const {
    const QJsonValue* value = find(QLatin1StringView(key));
    if (!value || value->isNull())
        return std::nullopt;
    if (!value->isDouble())
        JsonRead::mismatch(childPath(key), "a number", *value);
    return value->toDouble();
}

std::optional<bool> JsonReader::optFlag(const char* key) const {
    const QJsonValue* value = find(QLatin1StringView(key));
    if (!value || value->isNull())
        return std::nullopt;
    if (!value->isBool())
        JsonRead::mismatch(childPath(key), "a flag", *value);
    return value->toBool();
}

std::optional<QList<qint64>> JsonReader::optIntegers(const char* key) const {
    const QJsonValue* value = find(QLatin1StringView(key));
    if (!value || value->isNull())
        return std::nullopt;
    return integerList(*value, key);
}
