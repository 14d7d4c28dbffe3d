#include "screens/text_case.h"

namespace TextCase {

QString capitalised(const QString& text) {
    QString out = text.toLower();
    bool wordStart = true;
    for (qsizetype i = 0; i < out.size(); ++i) {
        const QChar c = out[i];
        if (c.isSpace()) {
            wordStart = true;
        } else if (wordStart) {
            // A letter outside the basic plane is two code units; its upper case is too.
            if (c.isHighSurrogate() && i + 1 < out.size()) {
                const QString upper = out.mid(i, 2).toUpper();
                out.replace(i, 2, upper);
                i += upper.size() - 1;
            } else {
                out[i] = c.toUpper();
            }
            wordStart = false;
        }
    }
    return out;
}

} // namespace TextCase
