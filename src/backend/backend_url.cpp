#include "backend/backend_url.h"

#include "backend/backend_error.h"

namespace BackendUrl {

QString encodePathSegment(const QString& text) {
    static constexpr char hex[] = "0123456789ABCDEF";
    QString out;
    for (const char byte : text.toUtf8()) {
        const auto c = static_cast<unsigned char>(byte);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) {
            out += QLatin1Char(char(c));
        } else {
            out += QLatin1Char('%');
            out += QLatin1Char(hex[c >> 4]);
            out += QLatin1Char(hex[c & 15]);
        }
    }
    return out;
}

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
