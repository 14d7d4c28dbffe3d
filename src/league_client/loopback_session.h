#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QNetworkReply>
#include <QString>
#include <exception>
#include <memory>
#include <optional>

class QNetworkAccessManager;
class QNetworkRequest;

// The transfer itself failed (refused, timed out, TLS refused). It carries Qt's own text but
// no text meant for the player.
class LoopbackTransportError : public std::exception {
public:
    LoopbackTransportError(QNetworkReply::NetworkError error, QString detail)
        : m_error(error), m_detail(std::move(detail)), m_utf8(m_detail.toUtf8()) {}

    [[nodiscard]] QNetworkReply::NetworkError networkError() const { return m_error; }
    [[nodiscard]] const QString& detail() const { return m_detail; }
    const char* what() const noexcept override { return m_utf8.constData(); }

private:
    QNetworkReply::NetworkError m_error;
    QString m_detail;
    QByteArray m_utf8;
};

// An HTTP session for servers on this machine that present a self-signed certificate (the
// League client, and the game's live data while a game runs). It has its own network manager,
// made on first use, with no proxy and no shared cookies, so nothing sent here mixes with the
// backend's traffic. A certificate that fails verification is accepted only when the host is
// exactly "127.0.0.1"; every other host is verified normally.
class LoopbackSession {
public:
    struct Answer {
        std::optional<int> status; // absent when the answer was not HTTP
        QByteArray body;
    };

    LoopbackSession();
    ~LoopbackSession();
    LoopbackSession(const LoopbackSession&) = delete;
    LoopbackSession& operator=(const LoopbackSession&) = delete;

    // Throws LoopbackTransportError when no answer arrived.
    QCoro::Task<Answer> get(QNetworkRequest request);
    // Ends every request in flight at once; each one's get() throws OperationCanceledError
    // before this returns.
    void abortAll();

private:
    QNetworkAccessManager& network();

    std::unique_ptr<QNetworkAccessManager> m_network;
};
