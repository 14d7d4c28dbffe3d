#include "support/fake_backend.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QTcpSocket>

FakeResponse FakeResponse::json(const QJsonObject& object, int status) {
    return {status, QJsonDocument(object).toJson(QJsonDocument::Compact), {{"Content-Type", "application/json"}}};
}

FakeResponse FakeResponse::text(int status, QByteArray body) {
    return {status, std::move(body), {{"Content-Type", "text/plain"}}};
}

FakeBackend::FakeBackend() {
    m_port = listen(QHostAddress::LocalHost, 0);
}

QUrl FakeBackend::baseUrl() const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port));
}

void FakeBackend::on(const QByteArray& method, const QString& path, Handler handler) {
    m_routes.insert(method + ' ' + path.toUtf8(), std::move(handler));
}

void FakeBackend::on(const QByteArray& method, const QString& path, const FakeResponse& response) {
    on(method, path, [response](const RecordedRequest&) { return response; });
}

QList<RecordedRequest> FakeBackend::requestsTo(const QString& path) const {
    QList<RecordedRequest> result;
    for (const RecordedRequest& request : m_requests)
        if (request.path == path)
            result.append(request);
    return result;
}

static QByteArray methodName(QHttpServerRequest::Method method) {
    switch (method) {
    case QHttpServerRequest::Method::Get: return "GET";
    case QHttpServerRequest::Method::Post: return "POST";
    case QHttpServerRequest::Method::Put: return "PUT";
    case QHttpServerRequest::Method::Delete: return "DELETE";
    case QHttpServerRequest::Method::Patch: return "PATCH";
    case QHttpServerRequest::Method::Head: return "HEAD";
    default: return "OTHER";
    }
}

bool FakeBackend::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) {
    RecordedRequest recorded;
    recorded.method = methodName(request.method());
    const QUrl url = request.url();
    recorded.path = url.path();
    recorded.rawPath = url.path(QUrl::FullyEncoded).toUtf8();
    recorded.hasQuery = url.hasQuery();
    recorded.rawQuery = url.query(QUrl::FullyEncoded).toUtf8();
    for (const auto& [name, value] : request.headers())
        recorded.headers.insert(name.toLower(), value);
    recorded.body = request.body();
    m_requests.append(recorded);

    const auto route = m_routes.constFind(recorded.method + ' ' + recorded.path.toUtf8());
    const FakeResponse response =
        route == m_routes.constEnd() ? FakeResponse::text(404, "no such route") : (*route)(recorded);

    QHttpServerResponder responder = makeResponder(request, socket);
    responder.writeStatusLine(static_cast<QHttpServerResponder::StatusCode>(response.status));
    for (const auto& [name, value] : response.headers)
        responder.writeHeader(name, value);
    responder.writeHeader("Content-Length", QByteArray::number(response.body.size()));
    responder.writeBody(response.body);
    return true;
}

void FakeBackend::missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) {
    makeResponder(request, socket).write(QHttpServerResponder::StatusCode::NotFound);
}
