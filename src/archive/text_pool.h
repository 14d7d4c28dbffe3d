#pragma once

#include "archive/keyed_text.h"

#include <QSet>
#include <QString>
#include <optional>

// One copy of each distinct text of a table's records. Most plain texts of an archive repeat:
// champion names, positions, tiers, tag lines, platforms, game modes. Sharing them saves memory,
// and a pass over many records finds them in cache.
class TextPool {
public:
    void share(QString& text);
    // Keyed texts are player ids and names: nearly every one is different, so pooling them would
    // cost a look-up and an entry each for little sharing, and scans compare their keys anyway.
    template <class KeyOf> void share(KeyedText<KeyOf>&) {}
    template <class T> void share(std::optional<T>& value) {
        if (value)
            share(*value);
    }
    template <class T> void share(T&) {} // numbers, dates and lists hold no text to share

    // Drops the texts no record holds any more.
    void prune();
    void clear() { m_texts.clear(); }
    [[nodiscard]] qsizetype size() const { return m_texts.size(); }

    static constexpr qsizetype longestShared = 32;

private:
    const QString& pooled(const QString& text);

    QSet<QString> m_texts;
};
