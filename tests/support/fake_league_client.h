#pragma once

#include "support/fake_backend.h"

#include <QAbstractHttpServer>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

// A League client's local API for tests: HTTPS on 127.0.0.1 with a self-signed certificate
// made at build time, and a password of its own. Routes answer only requests that carry the
// client's Basic credentials for user "riot"; anything else gets 401, as from the real client.
class FakeLeagueClient : public QAbstractHttpServer {
public:
    using Handler = std::function<FakeResponse(const RecordedRequest&)>;

    static constexpr const char* historyPath = "/lol-match-history/v1/products/lol/current-summoner/matches";
    static constexpr const char* gamePathPrefix = "/lol-match-history/v1/games/";

    FakeLeagueClient();

    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] const QString& password() const { return m_password; }
    // "LeagueClient:<pid>:<port>:<password>:https", as the client writes it.
    [[nodiscard]] QByteArray lockfileText() const;

    // GET routes by path, without the query.
    void serve(const QString& path, Handler handler);
    void serve(const QString& path, const FakeResponse& response);

    // A match history served as the client pages it (begIndex/endIndex, both inclusive), each
    // entry's full game under the game path: the entry plus "fullRecord": true. Entries whose
    // "gameId" is not a number have no full game.
    void serveHistory(const QList<QJsonObject>& entries);

    [[nodiscard]] const QList<RecordedRequest>& requests() const { return m_requests; }
    [[nodiscard]] QList<RecordedRequest> requestsTo(const QString& path) const;
    void clearRequests() { m_requests.clear(); }

    // The queries ("begIndex=…&endIndex=…") of the history requests received so far.
    [[nodiscard]] QStringList historyQueries() const;

    // Writes bytes to path (creating nothing else) and returns path.
    static QString writeFile(const QString& path, const QByteArray& bytes);

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    QString m_password;
    quint16 m_port = 0;
    QHash<QString, Handler> m_routes;
    QList<RecordedRequest> m_requests;
};

// A history entry as the client lists it.
QJsonObject historyEntry(const QJsonValue& gameId, int queueId = 420);
// count entries with ids first, first + 1, …
QList<QJsonObject> historyEntries(qint64 first, int count);
