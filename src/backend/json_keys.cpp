#include "backend/json_keys.h"

#include <QStringList>

namespace JsonKeys {

QString fromSnakeCase(const QString& key) {
    if (!key.contains(QLatin1Char('_')))
        return key;

    qsizetype first = 0;
    while (first < key.size() && key[first] == QLatin1Char('_'))
        ++first;
    if (first == key.size())
        return key;
    qsizetype last = key.size() - 1;
    while (last > first && key[last] == QLatin1Char('_'))
        --last;

    const QStringView core = QStringView(key).mid(first, last - first + 1);
    if (!core.contains(QLatin1Char('_')))
        return key;

    QString result = key.left(first);
    bool firstPiece = true;
    for (QStringView piece : core.split(QLatin1Char('_'), Qt::SkipEmptyParts)) {
        if (firstPiece) {
            result += piece.toString().toLower();
            firstPiece = false;
        } else {
            result += piece.left(1).toString().toUpper() + piece.mid(1).toString().toLower();
        }
    }
    result += key.mid(last + 1);
    return result;
}

} // namespace JsonKeys
