#pragma once

#include "backend/account_records.h"
#include "backend/archive_records.h"
#include "backend/backend_error.h"
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
class QObject;

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
    // One page of the archive after cursor, decoded as Page: the plain records, or a page type
    // of the caller's own that reads the same answer. Aborted once requester is destroyed.
    template <class Page = SyncResponse>
    QCoro::Task<Page> sync(std::optional<QString> cursor, const QObject* requester = nullptr) {
        return request<Page>(syncCall(std::move(cursor), requester));
    }
    QCoro::Task<IngestLocalResponse> ingestLocal(QJsonArray games);
    QCoro::Task<StaticVersionResponse> staticVersion();

    // Social. Screens fetch these for themselves: a request made for a requester is aborted once
    // the requester is destroyed, so a screen that closes leaves nothing running (the task then
    // ends with a transport error that nobody is left to show).
    QCoro::Task<DuosResponse> duos(const QObject* requester = nullptr);
    // puuid sent as one encoded path segment.
    QCoro::Task<FriendStatsDto> friendStats(QString puuid, const QObject* requester = nullptr);
    // riotId as the user typed it, sent whole as one encoded path segment.
    QCoro::Task<PlayerProfileDto> playerProfile(QString riotId, QString platform, const QObject* requester = nullptr);
    // matchId: the game's Riot match id as stored ("EUW1_7123456789"), inserted as it is.
    QCoro::Task<TimelineSummaryDto> matchTimeline(QString matchId, const QObject* requester = nullptr);

private:
    struct Call {
        QByteArray method;
        QString path;
        QueryItems query;
        std::optional<QJsonObject> body;
        bool authorized = false;
        const QObject* requester = nullptr;
    };

    template <class Record> QCoro::Task<Record> request(Call call) {
        const QByteArray body = co_await send(std::move(call));
        try {
            co_return decodeRecord<Record>(body);
        } catch (const DecodingFailure& failure) {
            throw BackendError::decoding(failure.text());
        }
    }
    static Call syncCall(std::optional<QString> cursor, const QObject* requester);
    // Sends the call and yields the body of a 2xx answer; throws for everything else.
    QCoro::Task<QByteArray> send(Call call);

    QNetworkAccessManager& m_network;
    QUrl m_baseUrl;
    std::optional<QString> m_authToken;
};
