#include "backend/backend_url.h"

#include "backend/backend_error.h"

namespace BackendUrl {

QByteArray encodeQueryComponent(const QString& text) {
    // Unreserved characters and the sub-delimiters a query may carry stay; "&", "=", "+", "#",
    // space and everything outside ASCII are percent-encoded.
    return QUrl::toPercentEncoding(text, "!$'()*,/:;?@");
}

QUrl build(const QUrl& base, const QString& path, const QueryItems& query) {
    if (!base.isValid() || base.scheme().isEmpty() || base.host().isEmpty())
        throw BackendError::transport(QStringLiteral("Bad base URL"));

    QUrl url = base;
    url.setPath(QStringLiteral("/api/") + path, QUrl::TolerantMode);
    if (!query.isEmpty()) {
        QByteArray encoded;
        for (const auto& [name, value] : query) {
            if (!encoded.isEmpty())
                encoded += '&';
            encoded += encodeQueryComponent(name) + '=' + encodeQueryComponent(value);
        }
        encoded.replace("+", "%2B");
        url.setQuery(QString::fromLatin1(encoded), QUrl::TolerantMode);
    }
    if (!url.isValid())
        throw BackendError::transport(QStringLiteral("Bad URL"));
    return url;
}

} // namespace BackendUrl
