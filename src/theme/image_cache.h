#pragma once

#include <QQmlNetworkAccessManagerFactory>

// Gives QML's image loads a network manager with a disk cache: static images never change for
// a data version, so once fetched they are served from disk, also offline.
class ImageCacheFactory : public QQmlNetworkAccessManagerFactory {
public:
    QNetworkAccessManager* create(QObject* parent) override;
};
