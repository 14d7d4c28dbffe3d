#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>
#include <optional>
#include <utility>

// A text that carries a small key, recomputed whenever the text is set. The key lies in the
// record itself, so a scan over many records can rule out nearly all of them by key and read the
// text, which lies elsewhere in memory, only where the keys agree. Equal texts always have equal
// keys; equal keys say nothing until the texts are compared.
template <class KeyOf> class KeyedText {
public:
    KeyedText() : m_key(KeyOf::of(QStringView())) {}
    // Implicit on purpose: a record's field is set from plain text everywhere.
    KeyedText(const QString& text) : m_key(KeyOf::of(text)), m_text(text) {}
    KeyedText(QString&& text) : m_key(KeyOf::of(text)), m_text(std::move(text)) {}
    KeyedText& operator=(const QString& text) {
        m_text = text;
        m_key = KeyOf::of(m_text);
        return *this;
    }
    KeyedText& operator=(QString&& text) {
        m_text = std::move(text);
        m_key = KeyOf::of(m_text);
        return *this;
    }

    operator const QString&() const { return m_text; }
    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] quint64 key() const { return m_key; }

    [[nodiscard]] bool isEmpty() const { return m_text.isEmpty(); }
    [[nodiscard]] const QChar* constData() const { return m_text.constData(); }
    [[nodiscard]] QString left(qsizetype n) const { return m_text.left(n); }

    friend bool operator==(const KeyedText& a, const KeyedText& b) {
        return a.m_key == b.m_key && a.m_text == b.m_text;
    }
    friend bool operator==(const KeyedText& a, const QString& b) { return a.m_text == b; }

private:
    quint64 m_key; // first, so that it shares a cache line with the fields laid out before it
    QString m_text;
};

// The first four UTF-16 units and the length. Player ids are random from their first character,
// so two different ids share this key about once in sixteen million.
struct PrefixKey {
    [[nodiscard]] static quint64 of(QStringView text);
};

// A hash of the text's lower-case form (as QString::toLower gives it), for case-insensitive
// look-ups of names.
struct LowerCaseKey {
    [[nodiscard]] static quint64 of(QStringView text);

    // The lower case of one UTF-16 unit as QString::toLower gives it; none for the units whose
    // lower case depends on more than the unit: U+0130, whose lower case is two units, and the
    // halves of characters beyond the BMP. Texts with those are lowered whole.
    [[nodiscard]] static std::optional<char16_t> lowerUnit(char16_t unit) {
        if (unit < 0x80)
            return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 32) : unit;
        if (unit == 0x0130 || QChar::isSurrogate(unit))
            return std::nullopt;
        return char16_t(QChar::toLower(char32_t(unit)));
    }
};

using PlayerId = KeyedText<PrefixKey>;
using PlayerName = KeyedText<LowerCaseKey>;
