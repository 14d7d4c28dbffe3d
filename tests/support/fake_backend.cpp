#include "support/fake_backend.h"

FakeBackend::FakeBackend() {
    start();
}

QUrl FakeBackend::baseUrl() const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port()));
}

void FakeBackend::on(const QByteArray& method, const QString& path, Handler handler) {
    m_routes.insert(method + ' ' + path.toUtf8(), std::move(handler));
}

void FakeBackend::on(const QByteArray& method, const QString& path, const FakeResponse& response) {
    on(method, path, [response](const RecordedRequest&) { return response; });
}

FakeResponse FakeBackend::answer(const RecordedRequest& request) {
    const auto route = m_routes.constFind(request.method + ' ' + request.path.toUtf8());
    return route == m_routes.constEnd() ? FakeResponse::text(404, "no such route") : (*route)(request);
}
