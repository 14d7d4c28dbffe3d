#include "backend/backend_client.h"

#include "backend/backend_error.h"

#include <QCoro/QCoroNetworkReply>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStringDecoder>
#include <memory>

namespace {

constexpr int requestTimeoutMs = 60'000;

struct DeleteLater {
    void operator()(QObject* object) const { object->deleteLater(); }
};

// Errors of the transfer itself, as opposed to the ones Qt derives from an HTTP status.
bool isTransferFailure(QNetworkReply::NetworkError error) {
    const int code = static_cast<int>(error);
    return (code > 0 && code < 200) || error == QNetworkReply::ProtocolUnknownError ||
           error == QNetworkReply::ProtocolFailure;
}

std::optional<QString> utf8Text(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

} // namespace

BackendClient::BackendClient(QNetworkAccessManager& network, QUrl baseUrl)
    : m_network(network), m_baseUrl(std::move(baseUrl)) {}

QCoro::Task<QByteArray> BackendClient::send(Call call) {
    QNetworkRequest request(BackendUrl::build(m_baseUrl, call.path, call.query));
    request.setTransferTimeout(requestTimeoutMs);
    request.setRawHeader("Accept", "application/json");
    QByteArray payload;
    if (call.body) {
        request.setRawHeader("Content-Type", "application/json");
        payload = QJsonDocument(*call.body).toJson(QJsonDocument::Compact);
    }
    if (call.authorized && m_authToken)
        request.setRawHeader("Authorization", "Bearer " + m_authToken->toUtf8());

    std::unique_ptr<QNetworkReply, DeleteLater> reply(call.body || call.method != "GET"
                                                          ? m_network.sendCustomRequest(request, call.method, payload)
                                                          : m_network.get(request));
    if (call.requester)
        // Queued: the reply finishes, and its waiting task resumes, outside the requester's
        // destructor. A reply that finished first is gone, and the queued abort with it.
        QObject::connect(call.requester, &QObject::destroyed, reply.get(), &QNetworkReply::abort, Qt::QueuedConnection);
    co_await reply.get();

    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (isTransferFailure(reply->error()))
        throw BackendError::transport(reply->errorString());
    if (!status.isValid())
        throw BackendError::transport(QStringLiteral("No HTTP response"));

    const int code = status.toInt();
    QByteArray answer = reply->readAll();
    if (code >= 200 && code <= 299)
        co_return answer;
    if (code == 401)
        throw BackendError::unauthorized();
    throw BackendError::http(code, utf8Text(answer));
}

QCoro::Task<AuthResponse> BackendClient::registerAccount(QString email, QString password, std::optional<QString> name) {
    QJsonObject body{{QStringLiteral("email"), email},
                     {QStringLiteral("password"), password},
                     {QStringLiteral("name"), name.value_or(QString())}};
    return request<AuthResponse>(Call{"POST", QStringLiteral("auth/register"), {}, body, false});
}

QCoro::Task<AuthResponse> BackendClient::login(QString email, QString password) {
    QJsonObject body{{QStringLiteral("email"), email}, {QStringLiteral("password"), password}};
    return request<AuthResponse>(Call{"POST", QStringLiteral("auth/login"), {}, body, false});
}

QCoro::Task<AuthResponse> BackendClient::leagueLogin(QString puuid, QString platform, std::optional<QString> gameName,
                                                     std::optional<QString> tagLine) {
    QJsonObject body{{QStringLiteral("puuid"), puuid}, {QStringLiteral("platform"), platform}};
    if (gameName)
        body.insert(QStringLiteral("game_name"), *gameName);
    if (tagLine)
        body.insert(QStringLiteral("tag_line"), *tagLine);
    return request<AuthResponse>(Call{"POST", QStringLiteral("auth/league"), {}, body, false});
}

QCoro::Task<RiotAccountsResponse> BackendClient::riotAccounts() {
    return request<RiotAccountsResponse>(Call{"GET", QStringLiteral("riot-accounts"), {}, {}, true});
}

QCoro::Task<RiotAccountDto> BackendClient::addRiotAccount(QString riotId, QString platform) {
    QJsonObject body{{QStringLiteral("riot_id"), riotId}, {QStringLiteral("platform"), platform}};
    // GCC 12 destroys a braced temporary inside a co_await twice: build the call first.
    Call call{"POST", QStringLiteral("riot-accounts"), {}, body, true};
    const RiotAccountResponse answer = co_await request<RiotAccountResponse>(std::move(call));
    co_return answer.riotAccount;
}

QCoro::Task<RiotAccountsResponse> BackendClient::refreshRiotAccounts() {
    return request<RiotAccountsResponse>(Call{"POST", QStringLiteral("riot-accounts/refresh"), {}, {}, true});
}

BackendClient::Call BackendClient::syncCall(std::optional<QString> cursor, const QObject* requester) {
    QueryItems query;
    if (cursor)
        query.append({QStringLiteral("cursor"), *cursor});
    return Call{"GET", QStringLiteral("sync"), query, {}, true, requester};
}

QCoro::Task<IngestLocalResponse> BackendClient::ingestLocal(QJsonArray games) {
    QJsonObject body{{QStringLiteral("games"), games}};
    return request<IngestLocalResponse>(Call{"POST", QStringLiteral("matches/ingest-local"), {}, body, true});
}

QCoro::Task<StaticVersionResponse> BackendClient::staticVersion() {
    return request<StaticVersionResponse>(Call{"GET", QStringLiteral("static/version"), {}, {}, false});
}

QCoro::Task<DuosResponse> BackendClient::duos(const QObject* requester) {
    return request<DuosResponse>(Call{"GET", QStringLiteral("stats/duos"), {}, {}, true, requester});
}

QCoro::Task<FriendStatsDto> BackendClient::friendStats(QString puuid, const QObject* requester) {
    return request<FriendStatsDto>(
        Call{"GET", QStringLiteral("stats/friend/") + BackendUrl::encodePathSegment(puuid), {}, {}, true, requester});
}

QCoro::Task<PlayerProfileDto> BackendClient::playerProfile(QString riotId, QString platform, const QObject* requester) {
    return request<PlayerProfileDto>(
        Call{"GET",
             QStringLiteral("players/") + BackendUrl::encodePathSegment(riotId) + QStringLiteral("/profile"),
             {{QStringLiteral("platform"), platform}},
             {},
             true,
             requester});
}

QCoro::Task<TimelineSummaryDto> BackendClient::matchTimeline(QString matchId, const QObject* requester) {
    // The match id is the caller's own stored text and goes into the path as it is, unencoded.
    return request<TimelineSummaryDto>(
        Call{"GET", QStringLiteral("matches/") + matchId + QStringLiteral("/timeline"), {}, {}, true, requester});
}
