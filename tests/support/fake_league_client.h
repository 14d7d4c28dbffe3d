#pragma once

#include "support/fake_backend.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

// A League client's local API for tests: HTTPS on 127.0.0.1 with a self-signed certificate
// made at build time, and a password of its own. Routes answer only requests that carry the
// client's Basic credentials for user "riot"; anything else gets 401, as from the real client.
class FakeLeagueClient : public RecordingHttpServer {
public:
    using Handler = std::function<FakeResponse(const RecordedRequest&)>;

    static constexpr const char* historyPath = "/lol-match-history/v1/products/lol/current-summoner/matches";
    static constexpr const char* gamePathPrefix = "/lol-match-history/v1/games/";

    FakeLeagueClient();

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

    // The queries ("begIndex=…&endIndex=…") of the history requests received so far.
    [[nodiscard]] QStringList historyQueries() const;

    // Writes bytes to path (creating nothing else) and returns path.
    static QString writeFile(const QString& path, const QByteArray& bytes);

protected:
    FakeResponse answer(const RecordedRequest& request) override;

private:
    QString m_password;
    QHash<QString, Handler> m_routes;
};

// A history entry as the client lists it.
QJsonObject historyEntry(const QJsonValue& gameId, int queueId = 420);
// count entries with ids first, first + 1, …
QList<QJsonObject> historyEntries(qint64 first, int count);
