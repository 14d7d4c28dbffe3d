#pragma once

#include <QAbstractHttpServer>
#include <QByteArray>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QUrl>
#include <functional>
#include <utility>

// One request as the fake backend received it.
struct RecordedRequest {
    QByteArray method;
    QString path;          // decoded path, e.g. "/api/sync"
    QByteArray rawPath;    // path as sent on the wire
    QByteArray rawQuery;   // query as sent on the wire, without "?"
    bool hasQuery = false;
    QHash<QByteArray, QByteArray> headers; // keys in lower case
    QByteArray body;

    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    [[nodiscard]] bool hasHeader(const char* name) const { return headers.contains(QByteArray(name).toLower()); }
    [[nodiscard]] QByteArray header(const char* name) const { return headers.value(QByteArray(name).toLower()); }
};

struct FakeResponse {
    int status = 200;
    QByteArray body;
    QList<std::pair<QByteArray, QByteArray>> headers;

    static FakeResponse json(const QJsonObject& object, int status = 200);
    static FakeResponse text(int status, QByteArray body);
};
Q_DECLARE_METATYPE(FakeResponse)

// A backend on 127.0.0.1 scripted per test: each route answers through a handler, and every
// request is recorded. Unscripted routes answer 404.
class FakeBackend : public QAbstractHttpServer {
public:
    using Handler = std::function<FakeResponse(const RecordedRequest&)>;

    FakeBackend();

    [[nodiscard]] QUrl baseUrl() const;
    [[nodiscard]] quint16 port() const { return m_port; }

    // path is the full request path, e.g. "/api/sync".
    void on(const QByteArray& method, const QString& path, Handler handler);
    void on(const QByteArray& method, const QString& path, const FakeResponse& response);

    [[nodiscard]] const QList<RecordedRequest>& requests() const { return m_requests; }
    [[nodiscard]] QList<RecordedRequest> requestsTo(const QString& path) const;
    void clearRequests() { m_requests.clear(); }

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    QHash<QByteArray, Handler> m_routes;
    QList<RecordedRequest> m_requests;
    quint16 m_port = 0;
};
