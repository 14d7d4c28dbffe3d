#pragma once

#include "support/recording_http_server.h"

#include <QJsonObject>
#include <QMap>

// The game's Live Client Data API for tests: HTTPS on 127.0.0.1 with a self-signed certificate
// made at build time. It answers "/liveclientdata/allgamedata" with what it is given, or, while
// stalling, takes requests and never answers them.
class FakeLiveGame : public RecordingHttpServer {
public:
    static constexpr const char* allGameDataPath = "/liveclientdata/allgamedata";

    // On a free port unless told one (the real game's port, for a check of the app itself).
    explicit FakeLiveGame(quint16 port = 0);

    void setAnswer(const FakeResponse& response) { m_answer = response; }
    void setStalling(bool stalling) { m_stalling = stalling; }
    // Answered and stalled requests alike.
    [[nodiscard]] int requestCount() const { return int(requests().size()) + m_stalled; }

    // An answer as a game gives it: the active player by name, with its champion in the player
    // list.
    static QJsonObject game(const QString& champion, qint64 level, const QMap<QString, qint64>& abilities,
                            double gameTime = 300);

protected:
    FakeResponse answer(const RecordedRequest& request) override;
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    FakeResponse m_answer = FakeResponse::text(404, "no game");
    bool m_stalling = false;
    int m_stalled = 0;
};
