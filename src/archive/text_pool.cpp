#include "archive/text_pool.h"

void TextPool::share(QString& text) {
    text = pooled(text);
}

const QString& TextPool::pooled(const QString& text) {
    // Long texts are ids and documents, each different from every other: not worth an entry.
    if (text.isEmpty() || text.size() > longestShared)
        return text;
    auto found = m_texts.constFind(text);
    if (found == m_texts.constEnd())
        found = m_texts.insert(text);
    return *found;
}

void TextPool::prune() {
    // A text whose data nobody else shares is the pool's own copy only.
    for (auto it = m_texts.begin(); it != m_texts.end();) {
        if (it->isDetached())
            it = m_texts.erase(it);
        else
            ++it;
    }
}
