#pragma once

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <exception>
#include <memory>
#include <optional>
#include <span>
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

struct JsonTree;

// Reads one JSON object of a backend answer into a record. Keys are matched after the
// snake_case conversion; required fields must be present with the right JSON type, optional
// ones may be missing or null. Every failure throws DecodingFailure.
//
// Answers are parsed by simdjson, which checks them whole before any field is read, and
// indexed into a compact tree (a sync page carries hundreds of thousands of values); where a key
// occurs twice after conversion, the later one counts.
class JsonReader {
public:
    explicit JsonReader(const QJsonObject& object, QString path = {});
    ~JsonReader();
    JsonReader(const JsonReader&) = delete;
    JsonReader& operator=(const JsonReader&) = delete;
    JsonReader(JsonReader&&) noexcept;

    // Parses a whole answer body whose top level must be an object.
    [[nodiscard]] static JsonReader fromAnswer(const QByteArray& body);

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

    // Texts as the answer's UTF-8, for records that keep their texts in UTF-8 and would only
    // convert a QString back. The bytes live as long as the reader of the whole answer.
    [[nodiscard]] QByteArrayView utf8(const char* key) const;
    [[nodiscard]] std::optional<QByteArrayView> optUtf8(const char* key) const;
    // An optional list of integers read into out without allocating: how many the list holds,
    // which may be more than out has room for (those past its end are checked, not stored).
    [[nodiscard]] std::optional<qsizetype> optIntegers(const char* key, std::span<qint64> out) const;

    template <class T> [[nodiscard]] T record(const char* key) const { return T::decode(child(key)); }
    // A nested record that may be missing or null.
    template <class T> [[nodiscard]] std::optional<T> optRecord(const char* key) const {
        if (!present(key))
            return std::nullopt;
        return T::decode(child(key));
    }
    // Whether the key is there with a value other than null.
    [[nodiscard]] bool present(const char* key) const;

    template <class T> [[nodiscard]] QList<T> records(const char* key) const {
        const quint32 list = requiredList(key);
        const qsizetype count = listSize(list);
        QList<T> result;
        result.reserve(count);
        for (qsizetype i = 0; i < count; ++i)
            result.append(T::decode(element(key, list, i)));
        return result;
    }

private:
    JsonReader(std::shared_ptr<const JsonTree> owner, quint32 node);
    JsonReader(const JsonTree* tree, quint32 node, const JsonReader* parent, const char* key, qsizetype index);

    [[nodiscard]] const quint32* find(const char* key) const;
    [[nodiscard]] quint32 required(const char* key, const char* expected) const;
    [[nodiscard]] quint32 requiredList(const char* key) const;
    [[nodiscard]] qsizetype listSize(quint32 list) const;
    [[nodiscard]] JsonReader child(const char* key) const;
    [[nodiscard]] JsonReader element(const char* key, quint32 list, qsizetype index) const;
    [[nodiscard]] QList<qint64> integerList(quint32 node, const char* key) const;
    // Reads list's integers into out as far as it has room; returns the list's size.
    qsizetype readIntegers(quint32 node, const char* key, std::span<qint64> out) const;
    [[nodiscard]] QByteArrayView stringBytes(quint32 node, const char* key) const;
    [[nodiscard]] qint64 toInteger(quint32 node, const QString& path) const;
    [[nodiscard]] QString path() const;
    [[nodiscard]] QString childPath(const char* key) const;
    [[noreturn]] void mismatch(const QString& path, const char* expected, quint32 node) const;

    std::shared_ptr<const JsonTree> m_owner; // set on the reader that owns the parsed answer
    const JsonTree* m_tree = nullptr;
    quint32 m_node = 0;
    // Where this object sits, spelled out only when a failure needs it.
    QString m_path;
    const JsonReader* m_parent = nullptr;
    const char* m_key = nullptr;
    qsizetype m_index = -1;
    // Records ask for their fields in about the order the backend writes them: the next look-up
    // starts after the last hit.
    mutable quint32 m_hint = 0;
};

template <class T> [[nodiscard]] T decodeRecord(const QByteArray& body) {
    return T::decode(JsonReader::fromAnswer(body));
}
