#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

// A backend answer that does not fit the record it should become. The text names the key
// and where in the answer it sits, so that a player's report points at the culprit.
class DecodingFailure : public std::exception {
public:
    explicit DecodingFailure(QString text) : m_text(std::move(text)), m_utf8(m_text.toUtf8()) {}
    [[nodiscard]] const QString& text() const { return m_text; }
    const char* what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_text;
    QByteArray m_utf8;
};

// Reads one JSON object of a backend answer into a record. Keys are matched after the
// snake_case conversion; required fields must be present with the right JSON type, optional
// ones may be missing or null. Every failure throws DecodingFailure.
class JsonReader {
public:
    explicit JsonReader(const QJsonObject& object, QString path = {});

    [[nodiscard]] QString text(const char* key) const;
    [[nodiscard]] qint64 integer(const char* key) const;
    [[nodiscard]] double real(const char* key) const;
    [[nodiscard]] bool flag(const char* key) const;
    [[nodiscard]] QList<qint64> integers(const char* key) const;
    [[nodiscard]] QStringList texts(const char* key) const;
    [[nodiscard]] QMap<QString, double> realMap(const char* key) const;

    [[nodiscard]] std::optional<QString> optText(const char* key) const;
    [[nodiscard]] std::optional<qint64> optInteger(const char* key) const;
    [[nodiscard]] std::optional<double> optReal(const char* key) const;
    [[nodiscard]] std::optional<bool> optFlag(const char* key) const;
    [[nodiscard]] std::optional<QList<qint64>> optIntegers(const char* key) const;

    template <class T> [[nodiscard]] T record(const char* key) const {
        return T::decode(JsonReader(requiredObject(key), childPath(key)));
    }

    template <class T> [[nodiscard]] QList<T> records(const char* key) const {
        const QJsonArray array = requiredArray(key);
        QList<T> result;
        result.reserve(array.size());
        const QString base = childPath(key);
        for (qsizetype i = 0; i < array.size(); ++i) {
            const QString path = elementPath(base, i);
            result.append(T::decode(JsonReader(objectElement(array.at(i), path), path)));
        }
        return result;
    }

    // Parses a whole answer body whose top level must be an object.
    [[nodiscard]] static QJsonObject parseDocument(const QByteArray& body);

private:
    [[nodiscard]] const QJsonValue* find(QLatin1StringView key) const;
    [[nodiscard]] QJsonValue required(const char* key, const char* expected) const;
    [[nodiscard]] QJsonObject requiredObject(const char* key) const;
    [[nodiscard]] QJsonArray requiredArray(const char* key) const;
    [[nodiscard]] QString childPath(const char* key) const;
    [[nodiscard]] static QString elementPath(const QString& base, qsizetype index);
    [[nodiscard]] static QJsonObject objectElement(const QJsonValue& value, const QString& path);
    [[nodiscard]] QList<qint64> integerList(const QJsonValue& value, const char* key) const;
    [[nodiscard]] qint64 toInteger(const QJsonValue& value, const QString& path) const;

    std::vector<std::pair<QString, QJsonValue>> m_fields;
    QString m_path;
};

namespace JsonRead {
// Describes a JSON value's kind for error texts ("text", "a list", …).
[[nodiscard]] QString kindName(const QJsonValue& value);
// Fails with the standard mismatch text for the value at path.
[[noreturn]] void mismatch(const QString& path, const char* expected, const QJsonValue& found);
} // namespace JsonRead

template <class T> [[nodiscard]] T decodeRecord(const QByteArray& body) {
    return T::decode(JsonReader(JsonReader::parseDocument(body)));
}
