#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>
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
    [[nodiscard]] qsizetype size() const { return m_text.size(); }
    [[nodiscard]] const QChar* constData() const { return m_text.constData(); }
    [[nodiscard]] QString left(qsizetype n) const { return m_text.left(n); }
    [[nodiscard]] QString toLower() const { return m_text.toLower(); }

    friend bool operator==(const KeyedText& a, const KeyedText& b) { return a.m_key == b.m_key && a.m_text == b.m_text; }
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
};

using PlayerId = KeyedText<PrefixKey>;
using PlayerName = KeyedText<LowerCaseKey>;
