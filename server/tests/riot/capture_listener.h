#pragma once

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A loopback listener that keeps the raw head of every request it gets, to check what goes
// over the wire (which headers, which request line). It answers each with 200 and "[]", or,
// when silent, accepts and never answers (a Riot API that hangs).

namespace qf::test {

class CaptureListener {
public:
    explicit CaptureListener(bool silent = false) : m_silent(silent) {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(m_fd, 8);
        socklen_t length = sizeof address;
        ::getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { run(); });
    }
    ~CaptureListener() {
        m_stop = true;
        m_thread.join();
        for (int fd : m_open)
            ::close(fd);
        ::close(m_fd);
    }
    CaptureListener(const CaptureListener&) = delete;
    CaptureListener& operator=(const CaptureListener&) = delete;

    [[nodiscard]] uint16_t port() const { return m_port; }
    [[nodiscard]] std::string baseUrl() const { return "http://127.0.0.1:" + std::to_string(m_port); }
    [[nodiscard]] std::vector<std::string> heads() const {
        const std::lock_guard lock(m_mutex);
        return m_heads;
    }

    // A port nothing listens on: bound, read and closed again.
    static uint16_t closedPort() {
        const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
        socklen_t length = sizeof address;
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
        ::close(fd);
        return ntohs(address.sin_port);
    }

private:
    void run() {
        while (!m_stop) {
            pollfd waiting{m_fd, POLLIN, 0};
            if (::poll(&waiting, 1, 50) <= 0)
                continue;
            const int client = ::accept(m_fd, nullptr, nullptr);
            if (client < 0)
                continue;
            if (m_silent) {
                m_open.push_back(client);
                continue;
            }
            std::string head;
            char chunk[4096];
            while (head.find("\r\n\r\n") == std::string::npos) {
                pollfd readable{client, POLLIN, 0};
                if (::poll(&readable, 1, 2000) <= 0)
                    break;
                const ssize_t n = ::recv(client, chunk, sizeof chunk, 0);
                if (n <= 0)
                    break;
                head.append(chunk, size_t(n));
            }
            {
                const std::lock_guard lock(m_mutex);
                m_heads.push_back(head);
            }
            const std::string answer =
                "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\nConnection: close\r\n\r\n[]";
            ::send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
            ::close(client);
        }
    }

    bool m_silent;
    int m_fd = -1;
    uint16_t m_port = 0;
    std::atomic<bool> m_stop{false};
    std::vector<int> m_open;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_heads;
    std::thread m_thread;
};

} // namespace qf::test
