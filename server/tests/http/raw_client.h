#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QMap>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

// A blocking TCP client that speaks HTTP by hand, so tests can send what no HTTP library would:
// broken request lines, partial requests, pipelined requests, hostile headers.

namespace qf::test {

struct RawResponse {
    bool complete = false; // a status line, headers and a body of Content-Length bytes arrived
    int status = 0;
    QMap<QByteArray, QByteArray> headers; // names in lower case
    QByteArray body;

    [[nodiscard]] QByteArray header(const QByteArray& name) const { return headers.value(name.toLower()); }
};

class RawClient {
public:
    explicit RawClient(uint16_t port, const char* address = "127.0.0.1") {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in peer{};
        peer.sin_family = AF_INET;
        peer.sin_port = htons(port);
        ::inet_pton(AF_INET, address, &peer.sin_addr);
        m_connected = ::connect(m_fd, reinterpret_cast<sockaddr*>(&peer), sizeof peer) == 0;
        setReadTimeout(5000);
    }
    ~RawClient() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    [[nodiscard]] bool connected() const { return m_connected; }

    bool send(const QByteArray& bytes) {
        qsizetype sent = 0;
        while (sent < bytes.size()) {
            const ssize_t n = ::send(m_fd, bytes.constData() + sent, size_t(bytes.size() - sent), MSG_NOSIGNAL);
            if (n <= 0)
                return false;
            sent += n;
        }
        return true;
    }

    // Reads one response; for a HEAD request pass bodyless so Content-Length is not waited for.
    RawResponse readResponse(bool bodyless = false) {
        RawResponse response;
        qsizetype end = -1;
        while ((end = m_pending.indexOf("\r\n\r\n")) < 0) {
            if (!fill())
                return response;
        }
        const QList<QByteArray> lines = m_pending.left(end).split('\n');
        m_pending.remove(0, end + 4);
        const QList<QByteArray> statusLine = lines.value(0).trimmed().split(' ');
        response.status = statusLine.value(1).toInt();
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const qsizetype colon = lines[i].indexOf(':');
            if (colon > 0)
                response.headers.insert(lines[i].left(colon).trimmed().toLower(), lines[i].mid(colon + 1).trimmed());
        }
        const qsizetype length = bodyless ? 0 : response.header("content-length").toLongLong();
        while (m_pending.size() < length) {
            if (!fill())
                return response;
        }
        response.body = m_pending.left(length);
        m_pending.remove(0, length);
        response.complete = response.status > 0;
        return response;
    }

    // True when the server closes the connection (or resets it) within the read time-out, with
    // no further bytes sent; anything received first is kept in extra.
    bool waitClosed(QByteArray* extra = nullptr) {
        while (true) {
            char chunk[4096];
            const ssize_t n = ::recv(m_fd, chunk, sizeof chunk, 0);
            if (n == 0 || (n < 0 && errno == ECONNRESET))
                return m_pending.isEmpty();
            if (n < 0)
                return false; // time-out: still open
            m_pending.append(chunk, n);
            if (extra)
                *extra = m_pending;
        }
    }

    void setReadTimeout(int milliseconds) {
        timeval tv{milliseconds / 1000, (milliseconds % 1000) * 1000};
        ::setsockopt(m_fd, SOL_SOCKET, SO_RCVTIMEO, &tv, sizeof tv);
    }

    // Bytes received but not yet consumed by readResponse().
    [[nodiscard]] QByteArray pending() const { return m_pending; }

private:
    bool fill() {
        char chunk[4096];
        const ssize_t n = ::recv(m_fd, chunk, sizeof chunk, 0);
        if (n <= 0)
            return false;
        m_pending.append(chunk, n);
        return true;
    }

    int m_fd = -1;
    bool m_connected = false;
    QByteArray m_pending;
};

} // namespace qf::test
