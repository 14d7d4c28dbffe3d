#pragma once

#include <QAbstractHttpServer>
#include <QByteArray>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QString>
#include <utility>

// One request as a fake server received it.
struct RecordedRequest {
    QByteArray method;
    QString path;        // decoded path, e.g. "/api/sync"
    QByteArray rawPath;  // path as sent on the wire
    QByteArray rawQuery; // query as sent on the wire, without "?"
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

// An HTTP(S) server on 127.0.0.1 that records every request and lets its subclass answer it.
class RecordingHttpServer : public QAbstractHttpServer {
public:
    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] const QList<RecordedRequest>& requests() const { return m_requests; }
    [[nodiscard]] QList<RecordedRequest> requestsTo(const QString& path) const;
    void clearRequests() { m_requests.clear(); }

protected:
    // Listens on the port, or on a free one; TLS servers set up their certificate first. port()
    // is 0 when the port was taken.
    void start(quint16 port = 0);
    virtual FakeResponse answer(const RecordedRequest& request) = 0;

    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    QList<RecordedRequest> m_requests;
    quint16 m_port = 0;
};
