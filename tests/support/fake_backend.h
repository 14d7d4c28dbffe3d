#pragma once

#include "support/recording_http_server.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QUrl>
#include <functional>
#include <utility>

// A backend on 127.0.0.1 scripted per test: each route answers through a handler, and every
// request is recorded. Unscripted routes answer 404.
class FakeBackend : public RecordingHttpServer {
public:
    using Handler = std::function<FakeResponse(const RecordedRequest&)>;

    FakeBackend();

    [[nodiscard]] QUrl baseUrl() const;

    // path is the full request path, e.g. "/api/sync".
    void on(const QByteArray& method, const QString& path, Handler handler);
    void on(const QByteArray& method, const QString& path, const FakeResponse& response);

protected:
    FakeResponse answer(const RecordedRequest& request) override;

private:
    QHash<QByteArray, Handler> m_routes;
};
