#pragma once

#include "archive/keyed_text.h"

#include <QSet>
#include <QString>
#include <optional>

// One copy of each distinct text of a table's records. Most texts of an archive repeat: the
// user's own id and name in every game, champion names, positions, tiers, the friends. Sharing
// them saves memory, and a pass over many records finds the repeated ones in cache.
class TextPool {
public:
    void share(QString& text);
    template <class KeyOf> void share(KeyedText<KeyOf>& text) { text.shareEqual(pooled(text.text())); }
    template <class T> void share(std::optional<T>& value) {
        if (value)
            share(*value);
    }
    template <class T> void share(T&) {} // numbers, dates and lists hold no text to share

    // Drops the texts no record holds any more.
    void prune();
    void clear() { m_texts.clear(); }
    [[nodiscard]] qsizetype size() const { return m_texts.size(); }

private:
    const QString& pooled(const QString& text);

    QSet<QString> m_texts;
};
