#pragma once

#include <QByteArray>
#include <QTcpServer>

// Answers every connection with fixed bytes and hangs up: for answers that are not proper HTTP.
class RawTcpServer : public QTcpServer {
public:
    explicit RawTcpServer(QByteArray reply);
    [[nodiscard]] quint16 port() const { return serverPort(); }

private:
    QByteArray m_reply;
};
