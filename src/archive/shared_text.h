#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <QtGlobal>
#include <optional>

// A text of the archive's records, held once per process in UTF-8 and named by a 4-byte number.
//
// A 20,000-game archive holds some 200,000 player rows, and most of their texts repeat: champion
// names, positions, tiers, tag lines, and each player's id and name in every game they played.
// As separate QStrings they cost a UTF-16 copy and an allocation each, which was most of the
// archive's memory. Interned, a row holds numbers, equal texts are equal numbers (a player's rows
// are found by comparing ids, not strings), and the bytes are written to SQLite without a copy.
//
// The texts live until the process ends: an archive only grows, and a record that is replaced
// (a game sent again) brings back the same texts. Texts are added under a lock and never move,
// so a record built on one thread can be read on another once it has been handed over.
//
// A default-constructed SharedText is absent, which is how the records spell an optional text
// that has no value; an empty text is present. The optional-like members let a field that was
// an std::optional<QString> keep being read the same way.
class SharedText {
public:
    constexpr SharedText() = default;
    // Implicit on purpose: a record's fields are set from plain text everywhere.
    SharedText(QStringView text);
    SharedText(const QString& text) : SharedText(QStringView(text)) {}
    SharedText(const std::optional<QString>& text) : SharedText(text ? SharedText(*text) : SharedText()) {}
    [[nodiscard]] static SharedText fromUtf8(QByteArrayView utf8);
    // The empty text (present, of no characters), what a required text of a new record holds.
    [[nodiscard]] static SharedText empty();
    // The text when some record has held it, else absent; adds nothing. For look-ups: a text no
    // record ever held matches no record.
    [[nodiscard]] static SharedText existing(QStringView text);

    [[nodiscard]] bool isNull() const { return m_id == 0; }
    [[nodiscard]] bool isEmpty() const { return utf8().isEmpty(); }
    [[nodiscard]] QByteArrayView utf8() const;
    [[nodiscard]] QString toString() const;
    operator QString() const { return toString(); }
    // A hash of the text's lower-case form (as QString::toLower gives it), made when the text was
    // first added, so that case-insensitive look-ups over many rows compare numbers first.
    [[nodiscard]] quint32 lowerCaseHash() const;
    [[nodiscard]] static quint32 lowerCaseHashOf(QStringView text);
    [[nodiscard]] quint32 id() const { return m_id; }

    [[nodiscard]] bool has_value() const { return m_id != 0; }
    explicit operator bool() const { return m_id != 0; }
    [[nodiscard]] QString operator*() const { return toString(); }
    [[nodiscard]] QString value_or(const QString& fallback) const { return m_id ? toString() : fallback; }
    [[nodiscard]] std::optional<QString> toOptional() const {
        return m_id ? std::optional<QString>(toString()) : std::nullopt;
    }

    friend bool operator==(SharedText a, SharedText b) { return a.m_id == b.m_id; }
    friend bool operator==(SharedText a, const QString& b) { return !a.isNull() && a.equals(b); }
    friend bool operator==(SharedText a, QLatin1String b) { return !a.isNull() && a.equals(b); }

    // Makes room for about `more` new texts at once, so that a start that adds them by the
    // hundred thousand does not rebuild the look-up table on the way.
    static void reserve(qsizetype more);

    // How many distinct texts the process holds, and their bytes with bookkeeping, for reports.
    [[nodiscard]] static qsizetype distinctCount();
    [[nodiscard]] static qsizetype heldBytes();

private:
    explicit SharedText(quint32 id) : m_id(id) {}
    [[nodiscard]] bool equals(QStringView text) const;
    [[nodiscard]] bool equals(QLatin1String text) const;

    quint32 m_id = 0;
};
