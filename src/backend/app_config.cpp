#include "backend/app_config.h"

#include <QSettings>

namespace AppConfig {

QUrl backendBaseUrl(const QSettings& settings) {
    const QVariant stored = settings.value(QLatin1String(backendBaseUrlKey));
    if (stored.isValid()) {
        const QUrl url(stored.toString().trimmed(), QUrl::StrictMode);
        if (url.isValid() && !url.scheme().isEmpty() && !url.host().isEmpty())
            return url;
    }
    const QUrl fallback(QLatin1String(defaultBackendBaseUrl), QUrl::StrictMode);
    Q_ASSERT(fallback.isValid());
    return fallback;
}

} // namespace AppConfig
