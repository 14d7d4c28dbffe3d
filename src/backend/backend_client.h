#pragma once

#include "backend/account_records.h"
#include "backend/archive_records.h"
#include "backend/backend_url.h"
#include "backend/social_records.h"
#include "backend/timeline_records.h"

#include <QCoro/QCoroTask>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QUrl>
#include <optional>

class QNetworkAccessManager;

// The one way to the backend service. Every endpoint is a thin call of request(); every
// failure arrives as a BackendError. Requests suspend on the calling (main) thread's loop.
class BackendClient {
public:
    BackendClient(QNetworkAccessManager& network, QUrl baseUrl);

    [[nodiscard]] const std::optional<QString>& authToken() const { return m_authToken; }
    void setAuthToken(std::optional<QString> token) { m_authToken = std::move(token); }
    [[nodiscard]] const QUrl& baseUrl() const { return m_baseUrl; }

    // Accounts and sign-in.
    QCoro::Task<AuthResponse> registerAccount(QString email, QString password, std::optional<QString> name);
    QCoro::Task<AuthResponse> login(QString email, QString password);
    QCoro::Task<AuthResponse> leagueLogin(QString puuid, QString platform, std::optional<QString> gameName,
                                          std::optional<QString> tagLine);
    QCoro::Task<RiotAccountsResponse> riotAccounts();
    QCoro::Task<RiotAccountDto> addRiotAccount(QString riotId, QString platform);
    QCoro::Task<RiotAccountsResponse> refreshRiotAccounts();

    // Archive.
    QCoro::Task<SyncResponse> sync(std::optional<QString> cursor);
    QCoro::Task<IngestLocalResponse> ingestLocal(QJsonArray games);
    QCoro::Task<StaticVersionResponse> staticVersion();

    // Social.
    QCoro::Task<DuosResponse> duos();
    QCoro::Task<FriendStatsDto> friendStats(QString puuid);
    // riotId as the user typed it, sent whole as one path segment.
    QCoro::Task<PlayerProfileDto> playerProfile(QString riotId, QString platform);
    // matchId: the game's Riot match id as stored ("EUW1_7123456789"), inserted as it is.
    QCoro::Task<TimelineSummaryDto> matchTimeline(QString matchId);

private:
    struct Call {
        QByteArray method;
        QString path;
        QueryItems query;
        std::optional<QJsonObject> body;
        bool authorized = false;
    };

    template <class Record> QCoro::Task<Record> request(Call call);
    // Sends the call and yields the body of a 2xx answer; throws for everything else.
    QCoro::Task<QByteArray> send(Call call);

    QNetworkAccessManager& m_network;
    QUrl m_baseUrl;
    std::optional<QString> m_authToken;
};
