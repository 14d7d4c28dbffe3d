#include "theme/image_cache.h"

#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkRequest>
#include <QStandardPaths>

namespace {

class CachingNetworkAccessManager : public QNetworkAccessManager {
public:
    using QNetworkAccessManager::QNetworkAccessManager;

protected:
    QNetworkReply* createRequest(Operation op, const QNetworkRequest& original, QIODevice* data) override {
        QNetworkRequest request(original);
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
        request.setTransferTimeout(60000);
        return QNetworkAccessManager::createRequest(op, request, data);
    }
};

} // namespace

QNetworkAccessManager* ImageCacheFactory::create(QObject* parent) {
    auto* manager = new CachingNetworkAccessManager(parent);
    auto* cache = new QNetworkDiskCache(manager);
    cache->setCacheDirectory(QStandardPaths::writableLocation(QStandardPaths::CacheLocation) +
                             QStringLiteral("/images"));
    cache->setMaximumCacheSize(256LL * 1024 * 1024);
    manager->setCache(cache);
    return manager;
}
