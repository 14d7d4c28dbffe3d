#include "theme/game_images.h"

#include <QJSEngine>

GameImages* GameImages::create(QQmlEngine*, QJSEngine*) {
    // The application normally hands QML its own instance; a bare QML test gets a default one.
    if (!s_instance)
        s_instance = new GameImages(DataDragon());
    QJSEngine::setObjectOwnership(s_instance, QJSEngine::CppOwnership);
    return s_instance;
}

void GameImages::setVersion(const QString& version) {
    if (version == m_version)
        return;
    m_version = version;
    Q_EMIT versionChanged();
}
