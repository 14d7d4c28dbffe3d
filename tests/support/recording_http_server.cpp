#include "support/recording_http_server.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QTcpSocket>

FakeResponse FakeResponse::json(const QJsonObject& object, int status) {
    return {status, QJsonDocument(object).toJson(QJsonDocument::Compact), {{"Content-Type", "application/json"}}};
}

FakeResponse FakeResponse::text(int status, QByteArray body) {
    return {status, std::move(body), {{"Content-Type", "text/plain"}}};
}

void RecordingHttpServer::start(quint16 port) {
    m_port = listen(QHostAddress::LocalHost, port);
}

QList<RecordedRequest> RecordingHttpServer::requestsTo(const QString& path) const {
    QList<RecordedRequest> result;
    for (const RecordedRequest& request : m_requests)
        if (request.path == path)
            result.append(request);
    return result;
}

static QByteArray methodName(QHttpServerRequest::Method method) {
    switch (method) {
    case QHttpServerRequest::Method::Get:
        return "GET";
    case QHttpServerRequest::Method::Post:
        return "POST";
    case QHttpServerRequest::Method::Put:
        return "PUT";
    case QHttpServerRequest::Method::Delete:
        return "DELETE";
    case QHttpServerRequest::Method::Patch:
        return "PATCH";
    case QHttpServerRequest::Method::Head:
        return "HEAD";
    default:
        return "OTHER";
    }
}

bool RecordingHttpServer::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) {
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

    const FakeResponse response = answer(recorded);

    QHttpServerResponder responder = makeResponder(request, socket);
    responder.writeStatusLine(static_cast<QHttpServerResponder::StatusCode>(response.status));
    for (const auto& [name, value] : response.headers)
        responder.writeHeader(name, value);
    responder.writeHeader("Content-Length", QByteArray::number(response.body.size()));
    responder.writeBody(response.body);
    return true;
}

void RecordingHttpServer::missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) {
    makeResponder(request, socket).write(QHttpServerResponder::StatusCode::NotFound);
}
