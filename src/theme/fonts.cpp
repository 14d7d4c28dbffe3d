#include "theme/fonts.h"

#include <QDir>
#include <QFontDatabase>

namespace Fonts {

void load() {
    const QDir folder(QStringLiteral(":/qt/qml/QuillFern/Theme/fonts"));
    for (const QString& file : folder.entryList({QStringLiteral("*.otf"), QStringLiteral("*.ttf")}))
        QFontDatabase::addApplicationFont(folder.filePath(file));
}

} // namespace Fonts
