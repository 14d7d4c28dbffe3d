#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <utility>

using QueryItems = QList<std::pair<QString, QString>>;

namespace BackendUrl {

// The address of one endpoint: the base URL's scheme, user, host and port with the path
// "/api/" + path (already encoded by the caller) and the query items encoded in order, a "+"
// always as "%2B". An empty query list leaves the query alone. Throws BackendError::transport
// ("Bad base URL" or "Bad URL").
[[nodiscard]] QUrl build(const QUrl& base, const QString& path, const QueryItems& query);

// A text made into one path segment: every byte of its UTF-8 form other than an ASCII letter or
// digit as "%" and two upper-case hex digits ("Name#TAG" → "Name%23TAG").
[[nodiscard]] QString encodePathSegment(const QString& text);

// One query name or value in its encoded form.
[[nodiscard]] QByteArray encodeQueryComponent(const QString& text);

} // namespace BackendUrl
