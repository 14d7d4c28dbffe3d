// The champion list of the configured version: from the cache, the shipped copy, or a download
// from a fake Data Dragon on loopback, and what is left in place when the download fails.

#include "archive/champion_directory.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <thread>

using namespace qf;

namespace {

// Answers every request with one canned response, and remembers the paths asked for.
class FakeCdn {
public:
    FakeCdn(int status, std::string body) : m_status(status), m_body(std::move(body)) {
        m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(m_socket, reinterpret_cast<sockaddr*>(&address), length) != 0 || ::listen(m_socket, 4) != 0 ||
            ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length) != 0)
            qFatal("FakeCdn: no loopback port");
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { serve(); });
    }
    ~FakeCdn() {
        m_stop = true;
        m_thread.join();
        ::close(m_socket);
    }

    [[nodiscard]] std::string base() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/cdn"; }
    [[nodiscard]] std::vector<std::string> paths() const {
        std::lock_guard lock(m_mutex);
        return m_paths;
    }

private:
    void serve() {
        while (!m_stop) {
            pollfd ready{m_socket, POLLIN, 0};
            if (::poll(&ready, 1, 50) <= 0)
                continue;
            const int client = ::accept(m_socket, nullptr, nullptr);
            if (client < 0)
                continue;
            std::string request;
            char buffer[4096];
            while (request.find("\r\n\r\n") == std::string::npos) {
                const ssize_t n = ::recv(client, buffer, sizeof buffer, 0);
                if (n <= 0)
                    break;
                request.append(buffer, size_t(n));
            }
            const size_t start = request.find(' ') + 1;
            {
                std::lock_guard lock(m_mutex);
                m_paths.push_back(request.substr(start, request.find(' ', start) - start));
            }
            const std::string answer = "HTTP/1.1 " + std::to_string(m_status) +
                                       " X\r\nContent-Length: " + std::to_string(m_body.size()) +
                                       "\r\nConnection: close\r\n\r\n" + m_body;
            for (size_t sent = 0; sent < answer.size();) {
                const ssize_t n = ::send(client, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
                if (n <= 0)
                    break;
                sent += size_t(n);
            }
            ::close(client);
        }
    }

    int m_status;
    std::string m_body;
    int m_socket = -1;
    uint16_t m_port = 0;
    std::atomic<bool> m_stop{false};
    mutable std::mutex m_mutex;
    std::vector<std::string> m_paths;
    std::thread m_thread;
};

const std::string otherList =
    R"({"type":"champion","version":"99.1.1","data":{"Newcomer":{"id":"Newcomer","key":"1234","name":"Newcomer"},)"
    R"("Ahri":{"id":"Ahri","key":"103","name":"Ahri"}}})";

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TstChampionDirectory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedVersionNeedsNoDownload() {
        FakeCdn cdn(200, otherList);
        QTemporaryDir cache;
        ChampionDirectory directory({"16.11.1", cache.path().toStdString(), cdn.base(), true});
        QVERIFY(directory.waitForFetch());
        QCOMPARE(directory.current()->version(), "16.11.1");
        QVERIFY(cdn.paths().empty());
    }

    void downloadsAndCachesAnotherVersion() {
        FakeCdn cdn(200, otherList);
        QTemporaryDir cache;
        {
            ChampionDirectory directory({"99.1.1", cache.path().toStdString(), cdn.base() + "/", true});
            QVERIFY(directory.waitForFetch());
            QCOMPARE(directory.current()->nameOf(1234), "Newcomer");
            QCOMPARE(cdn.paths(), std::vector<std::string>{"/cdn/99.1.1/data/en_US/champion.json"});
        }
        QCOMPARE(readAll(cache.filePath("champion-99.1.1.json")).toStdString(), otherList);

        // The next start finds it in the cache and asks nobody.
        ChampionDirectory again({"99.1.1", cache.path().toStdString(), cdn.base(), true});
        QVERIFY(again.upToDate());
        QCOMPARE(again.current()->nameOf(1234), "Newcomer");
        again.waitForFetch();
        QCOMPARE(cdn.paths().size(), size_t(1));
    }

    void failedDownloadKeepsTheShippedList_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("not found") << 404 << QByteArray("Not Found");
        QTest::newRow("not JSON") << 200 << QByteArray("<html></html>");
        QTest::newRow("another version's list") << 200 << QByteArray(otherList.c_str()).replace("99.1.1", "98.1.1");
        QTest::newRow("an empty list") << 200 << QByteArray(R"({"version":"99.1.1","data":{}})");
    }

    void failedDownloadKeepsTheShippedList() {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        FakeCdn cdn(status, body.toStdString());
        QTemporaryDir cache;
        ChampionDirectory directory({"99.1.1", cache.path().toStdString(), cdn.base(), true});
        QVERIFY(!directory.waitForFetch());
        QCOMPARE(cdn.paths().size(), size_t(1));
        QCOMPARE(directory.current()->version(), "16.11.1");
        QCOMPARE(directory.current()->nameOf(62), "MonkeyKing");
        QVERIFY(!QFile::exists(cache.filePath("champion-99.1.1.json")));
    }

    void unusableCacheOrVersion_data() {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QByteArray>("cached"); // written as champion-<version>.json first
        QTest::newRow("cached file damaged") << "99.1.1" << QByteArray("{\"version\":\"99.1.1\",\"da");
        QTest::newRow("cached file of another version")
            << "99.1.1" << QByteArray(otherList.c_str()).replace("99.1.1", "1.0");
        QTest::newRow("a version that is a path") << "../../etc" << QByteArray();
    }

    // The shipped list serves; a bad version is neither read from disk nor asked for.
    void unusableCacheOrVersion() {
        QFETCH(QString, version);
        QFETCH(QByteArray, cached);
        FakeCdn cdn(404, "");
        QTemporaryDir cache;
        if (!cached.isEmpty()) {
            QFile file(cache.filePath("champion-" + version + ".json"));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(cached);
        }
        ChampionDirectory directory({version.toStdString(), cache.path().toStdString(), cdn.base(), true});
        QVERIFY(!directory.waitForFetch());
        QCOMPARE(directory.current()->version(), "16.11.1");
        QCOMPARE(cdn.paths().size(), size_t(cached.isEmpty() ? 0 : 1));
    }

    void fetchOff() {
        FakeCdn cdn(200, otherList);
        ChampionDirectory directory({"99.1.1", {}, cdn.base(), false});
        QVERIFY(!directory.waitForFetch());
        QVERIFY(cdn.paths().empty());
        QCOMPARE(directory.current()->version(), "16.11.1");
    }
};

QTEST_GUILESS_MAIN(TstChampionDirectory)
#include "tst_champion_directory.moc"
