#include "league_client/loopback_session.h"

#include <QCoro/QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkRequest>

namespace {

struct DeleteLater {
    void operator()(QObject* object) const { object->deleteLater(); }
};

// Errors of the transfer itself, as opposed to the ones Qt derives from an HTTP status.
bool isTransferFailure(QNetworkReply::NetworkError error) {
    const int code = static_cast<int>(error);
    return (code > 0 && code < 200) || error == QNetworkReply::ProtocolUnknownError ||
           error == QNetworkReply::ProtocolFailure;
}

// The League client's certificate is self-signed; it is only worth anything on the loopback
// address itself, never on a name that something else could answer for.
bool acceptsSelfSignedCertificate(const QString& host) {
    return host == QLatin1String("127.0.0.1");
}

} // namespace

LoopbackSession::LoopbackSession() = default;
LoopbackSession::~LoopbackSession() = default;

QNetworkAccessManager& LoopbackSession::network() {
    if (!m_network) {
        m_network = std::make_unique<QNetworkAccessManager>();
        // A proxy would carry the client's password off this machine.
        m_network->setProxy(QNetworkProxy::NoProxy);
    }
    return *m_network;
}

void LoopbackSession::abortAll() {
    if (!m_network)
        return;
    for (QNetworkReply* reply : m_network->findChildren<QNetworkReply*>(Qt::FindDirectChildrenOnly))
        reply->abort();
}

QCoro::Task<LoopbackSession::Answer> LoopbackSession::get(QNetworkRequest request) {
    // Redirects stay on the same scheme, host and port, so the credentials never travel on.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    std::unique_ptr<QNetworkReply, DeleteLater> reply(network().get(request));
    QNetworkReply* raw = reply.get();
    QObject::connect(raw, &QNetworkReply::sslErrors, raw, [raw] {
        if (acceptsSelfSignedCertificate(raw->url().host()))
            raw->ignoreSslErrors();
    });
    co_await raw;

    if (isTransferFailure(raw->error()))
        throw LoopbackTransportError(raw->error(), raw->errorString());
    const QVariant status = raw->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    Answer answer;
    if (status.isValid())
        answer.status = status.toInt();
    answer.body = raw->readAll();
    co_return answer;
}
