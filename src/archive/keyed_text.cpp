#include "archive/keyed_text.h"

#include <algorithm>
#include <cstring>

quint64 PrefixKey::of(QStringView text) {
    char16_t first[4] = {};
    if (!text.isEmpty()) // an empty text may have no data at all
        std::memcpy(first, text.utf16(),
                    static_cast<std::size_t>(std::min<qsizetype>(text.size(), 4)) * sizeof(char16_t));
    quint64 key = 0;
    std::memcpy(&key, first, sizeof key);
    // The length goes into the top bits: texts that only differ in what follows the prefix and in
    // length still get different keys.
    return key ^ (static_cast<quint64>(text.size()) << 48);
}

quint64 LowerCaseKey::of(QStringView text) {
    quint64 hash = 14695981039346656037ULL;
    for (const QChar c : text) {
        const std::optional<char16_t> lower = lowerUnit(c.unicode());
        if (!lower) {
            hash = 14695981039346656037ULL;
            for (const QChar lowered : text.toString().toLower())
                hash = (hash ^ lowered.unicode()) * 1099511628211ULL;
            return hash;
        }
        hash = (hash ^ *lower) * 1099511628211ULL;
    }
    return hash;
}
