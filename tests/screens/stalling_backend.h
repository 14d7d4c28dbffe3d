#pragma once

#include "archive/archive_store.h"
#include "session/app_state.h"
#include "support/archive_json.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include <QByteArray>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

// A backend that takes a request for a path containing `stallOn` and never answers it; every
// other request gets `answer` (a whole HTTP response). For checking that a screen which goes
// away takes its pending request with it.
class StallingBackend : public QTcpServer {
public:
    StallingBackend(QByteArray stallOn, QByteArray answer)
        : m_stallOn(std::move(stallOn)), m_answer(std::move(answer)) {
        listen(QHostAddress::LocalHost, 0);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    const QByteArray head = socket->readAll();
                    const QByteArray requestLine = head.left(head.indexOf('\n'));
                    if (requestLine.contains(m_stallOn)) {
                        ++m_stalled;
                        return;
                    }
                    socket->write(m_answer);
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

    [[nodiscard]] QUrl baseUrl() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(serverPort())); }
    // Requests taken and left waiting.
    [[nodiscard]] int stalled() const { return m_stalled; }

    // A JSON answer that keeps the connection open for the next request.
    static QByteArray json(const QByteArray& body) {
        return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
               QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }

private:
    QByteArray m_stallOn;
    QByteArray m_answer;
    int m_stalled = 0;
};

// An application state whose backend knows one linked account ("me") and stalls on one path.
// The store holds the user's game 5.
struct StalledSession {
    StallingBackend backend;
    TestSettings settings;
    QTemporaryDir dir;
    ArchiveStore store{dir.filePath(QStringLiteral("archive.sqlite"))};
    QNetworkAccessManager network;
    std::unique_ptr<AppState> state;

    explicit StalledSession(const QByteArray& stallOn)
        : backend(stallOn, StallingBackend::json(R"({"riot_accounts":[{"id":1,"puuid":"me","platform":"euw1",)"
                                                 R"("region":"europe"}]})")) {
        settings->setValue("backendBaseURL", backend.baseUrl().toString());
        store.matches().insert(std::make_unique<LocalMatch>(MatchDto::decode(JsonReader(ArchiveJson::match(5)))));
        store.participants().insert(std::make_unique<LocalParticipant>(
            ParticipantDto::decode(JsonReader(ArchiveJson::participant(50, 5, "me")))));
        store.save();
        state = std::make_unique<AppState>(*settings, network);
        state->bootstrap(&store);
        QTRY_VERIFY(!state->hasRunningTasks());
        state->client().setAuthToken(QStringLiteral("t"));
        runTask(state->refreshAccounts());
    }
};
