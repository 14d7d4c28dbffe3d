// The HTTP server over real sockets, spoken to by hand: answers and their headers, refusals of
// broken or hostile requests, keep-alive, time-outs and the graceful stop.

#include "http/http_server.h"
#include "raw_client.h"

#include <QTest>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

using namespace qf;
using qf::test::RawClient;
using qf::test::RawResponse;

namespace {

// A server on a free loopback port, run on a thread of its own for the test's lifetime.
class TestServer {
public:
    explicit TestServer(HttpServerOptions options = {}, bool handleSignals = false) {
        options.port = 0;
        options.threads = 2;
        addRoutes();
        m_server = std::make_unique<HttpServer>(options, m_router);
        m_server->start();
        m_thread = std::thread([this, handleSignals] {
            m_server->run(handleSignals);
            m_returned = true;
        });
    }
    ~TestServer() {
        m_server->stop();
        m_thread.join();
    }

    [[nodiscard]] uint16_t port() const { return m_server->port(); }
    void stop() { m_server->stop(); }
    // Waits for run() to return; false when it has not within the time.
    bool waitReturned(int milliseconds) {
        QElapsedTimer timer;
        timer.start();
        while (!m_returned && timer.elapsed() < milliseconds)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return m_returned;
    }

    std::atomic<bool> slowEntered{false};

private:
    void addRoutes() {
        m_router.add("GET", "/echo/{}", [](HttpRequest& request) {
            const std::string* q = request.queryValue("q");
            return HttpResponse::text(200, request.pathParams[0] + "|" + (q ? *q : "<none>"));
        });
        m_router.add("POST", "/echo", [](HttpRequest& request) {
            auto response = HttpResponse::json(request.body);
            response.headers.emplace_back("X-Seen", request.contentType + "|" + request.authorization + "|" +
                                                        request.remoteAddress);
            return response;
        });
        m_router.add("GET", "/headers", [](HttpRequest&) {
            auto response = HttpResponse::json("{}", 429);
            response.headers.emplace_back("Retry-After", "7");
            response.headers.emplace_back("X-Evil", "a\r\nSet-Cookie: x=1");
            return response;
        });
        m_router.add("DELETE", "/empty", [](HttpRequest&) { return HttpResponse::text(204, "ignored"); });
        m_router.add("GET", "/slow", [this](HttpRequest&) {
            slowEntered = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            return HttpResponse::text(200, "done");
        });
        m_router.add("GET", "/bad-status", [](HttpRequest&) { return HttpResponse::text(1000, "?"); });
    }

    Router m_router;
    std::unique_ptr<HttpServer> m_server;
    std::thread m_thread;
    std::atomic<bool> m_returned{false};
};

QByteArray get(const QByteArray& target, const QByteArray& extraHeaders = {}) {
    return "GET " + target + " HTTP/1.1\r\nHost: test\r\n" + extraHeaders + "\r\n";
}

bool waitFor(const std::atomic<bool>& flag, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (!flag && timer.elapsed() < milliseconds)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return flag;
}

} // namespace

class TestHttpServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersCarryTheirHeaders();
    void requestFieldsReachTheHandler();
    void refusals_data();
    void refusals();
    void keepAlive();
    void connectionClose_data();
    void connectionClose();
    void expectContinue();
    void headAnswersWithoutBody();
    void slowRequestIsCut();
    void idleConnectionIsClosed();
    void stopFinishesRequestsInFlight();
    void signalStopsTheServer();
    void listenAddresses();
};

void TestHttpServer::answersCarryTheirHeaders() {
    TestServer server;
    RawClient client(server.port());
    QVERIFY(client.connected());

    QVERIFY(client.send(get("/echo/Name%23TAG?q=a+b%26c&q=second")));
    RawResponse response = client.readResponse();
    QVERIFY(response.complete);
    QCOMPARE(response.status, 200);
    QCOMPARE(response.body, QByteArray("Name#TAG|a b&c"));
    QCOMPARE(response.header("Server"), QByteArray("quillfern-server"));
    QCOMPARE(response.header("Content-Type"), QByteArray("text/plain; charset=utf-8"));
    QCOMPARE(response.header("Content-Length"), QByteArray("14"));

    // Extra headers pass, except one that would split the header block.
    QVERIFY(client.send(get("/headers")));
    response = client.readResponse();
    QCOMPARE(response.status, 429);
    QCOMPARE(response.header("Retry-After"), QByteArray("7"));
    QCOMPARE(response.header("Content-Type"), QByteArray("application/json"));
    QVERIFY(!response.headers.contains("x-evil"));
    QVERIFY(!response.headers.contains("set-cookie"));

    // 204 carries no body whatever the handler put in it.
    QVERIFY(client.send("DELETE /empty HTTP/1.1\r\nHost: test\r\n\r\n"));
    response = client.readResponse(true);
    QCOMPARE(response.status, 204);
    QVERIFY(client.send(get("/echo/next")));
    response = client.readResponse();
    QCOMPARE(response.body, QByteArray("next|<none>"));

    // A status HTTP cannot carry becomes the outage answer.
    QVERIFY(client.send(get("/bad-status")));
    QCOMPARE(client.readResponse().status, 503);
}

void TestHttpServer::requestFieldsReachTheHandler() {
    TestServer server;
    RawClient client(server.port());
    const QByteArray body = "{\"a\":\"Jörg\"}";
    QVERIFY(client.send("POST /echo HTTP/1.1\r\nHost: test\r\nAuthorization: Bearer abc\r\n"
                        "Content-Type: application/json\r\nContent-Length: " +
                        QByteArray::number(body.size()) + "\r\n\r\n" + body));
    RawResponse response = client.readResponse();
    QCOMPARE(response.status, 200);
    QCOMPARE(response.body, body);
    QCOMPARE(response.header("X-Seen"), QByteArray("application/json|Bearer abc|127.0.0.1"));

    // A chunked body arrives whole.
    QVERIFY(client.send("POST /echo HTTP/1.1\r\nHost: test\r\nTransfer-Encoding: chunked\r\n\r\n"
                        "3\r\n[1,\r\n2\r\n2]\r\n0\r\n\r\n"));
    response = client.readResponse();
    QCOMPARE(response.body, QByteArray("[1,2]"));
}

void TestHttpServer::refusals_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("closes");

    const QByteArray big(2000, 'x');
    QTest::newRow("unknown path") << get("/nope") << 404 << QByteArray("No such endpoint.") << false;
    QTest::newRow("wrong method") << QByteArray("PUT /echo/x HTTP/1.1\r\nContent-Length: 0\r\n\r\n") << 405
                                  << QByteArray("This endpoint does not accept PUT.") << false;
    QTest::newRow("bad path") << get("/echo/%ZZ") << 400 << QByteArray("Bad path.") << false;
    QTest::newRow("absolute URL") << get("http://test/echo/x") << 400 << QByteArray("Bad path.") << false;
    QTest::newRow("bad query") << get("/echo/x?q=%E2%9C") << 400 << QByteArray("Bad query.") << false;
    QTest::newRow("body over the limit") << "POST /echo HTTP/1.1\r\nContent-Length: 2000\r\n\r\n" + big << 413
                                         << QByteArray("The request body is too large.") << true;
    QTest::newRow("announced body over the limit, not sent")
        << QByteArray("POST /echo HTTP/1.1\r\nContent-Length: 999999999999\r\n\r\n") << 413
        << QByteArray("The request body is too large.") << true;
    QTest::newRow("chunked body over the limit")
        << "POST /echo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n7d0\r\n" + big + "\r\n0\r\n\r\n"
        << 413 << QByteArray("The request body is too large.") << true;
    QTest::newRow("headers over the limit") << get("/echo/x", "X-Pad: " + QByteArray(40000, 'p') + "\r\n") << 431
                                            << QByteArray("The request headers are too large.") << true;
    QTest::newRow("garbage") << QByteArray("HELLO\r\n\r\n") << 400 << QByteArray("Bad request.") << true;
    QTest::newRow("bad version") << QByteArray("GET /echo/x HTTP/x.y\r\n\r\n") << 400 << QByteArray("Bad request.")
                                 << true;
    QTest::newRow("bad content length") << QByteArray("POST /echo HTTP/1.1\r\nContent-Length: abc\r\n\r\n") << 400
                                        << QByteArray("Bad request.") << true;
    QTest::newRow("two content lengths")
        << QByteArray("POST /echo HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nab") << 400
        << QByteArray("Bad request.") << true;
    QTest::newRow("bad chunk size") << QByteArray("POST /echo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n")
                                    << 400 << QByteArray("Bad request.") << true;
    QTest::newRow("NUL in a header") << get("/echo/x", QByteArray("X-A: a\0b\r\n", 10)) << 400
                                     << QByteArray("Bad request.") << true;
    QTest::newRow("space in the target") << QByteArray("GET /echo/a b HTTP/1.1\r\n\r\n") << 400
                                         << QByteArray("Bad request.") << true;
}

// Each refusal is a plain-text sentence; a request that was not read whole also closes the
// connection, since what follows it cannot be trusted to start a request.
void TestHttpServer::refusals() {
    QFETCH(QByteArray, request);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(bool, closes);

    HttpServerOptions options;
    options.bodyLimit = 1024;
    TestServer server(options);
    RawClient client(server.port());
    QVERIFY(client.send(request));
    const RawResponse response = client.readResponse();
    QVERIFY(response.complete);
    QCOMPARE(response.status, status);
    QCOMPARE(response.body, body);
    QCOMPARE(response.header("Content-Type"), QByteArray("text/plain; charset=utf-8"));
    if (closes) {
        QCOMPARE(response.header("Connection"), QByteArray("close"));
        QVERIFY(client.waitClosed());
    } else {
        QVERIFY(client.send(get("/echo/again")));
        QCOMPARE(client.readResponse().body, QByteArray("again|<none>"));
    }
}

void TestHttpServer::keepAlive() {
    TestServer server;
    RawClient client(server.port());
    QVERIFY(client.send(get("/echo/one")));
    QCOMPARE(client.readResponse().body, QByteArray("one|<none>"));
    QVERIFY(client.send(get("/echo/two")));
    QCOMPARE(client.readResponse().body, QByteArray("two|<none>"));

    // Pipelined requests in one write are answered in order.
    QVERIFY(client.send(get("/echo/three") + "POST /echo HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}" + get("/echo/four")));
    QCOMPARE(client.readResponse().body, QByteArray("three|<none>"));
    QCOMPARE(client.readResponse().body, QByteArray("{}"));
    const RawResponse last = client.readResponse();
    QCOMPARE(last.body, QByteArray("four|<none>"));
    QVERIFY(!last.headers.contains("connection"));
}

void TestHttpServer::connectionClose_data() {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("connection"); // the answer's Connection header
    QTest::addColumn<bool>("closes");

    QTest::newRow("HTTP/1.1 close") << get("/echo/x", "Connection: close\r\n") << QByteArray("close") << true;
    QTest::newRow("HTTP/1.1 close among tokens")
        << get("/echo/x", "Connection: foo, Close\r\n") << QByteArray("close") << true;
    QTest::newRow("HTTP/1.0") << QByteArray("GET /echo/x HTTP/1.0\r\n\r\n") << QByteArray() << true;
    QTest::newRow("HTTP/1.0 keep-alive") << QByteArray("GET /echo/x HTTP/1.0\r\nConnection: keep-alive\r\n\r\n")
                                         << QByteArray("keep-alive") << false;
}

void TestHttpServer::connectionClose() {
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, connection);
    QFETCH(bool, closes);

    TestServer server;
    RawClient client(server.port());
    QVERIFY(client.send(request));
    const RawResponse response = client.readResponse();
    QCOMPARE(response.body, QByteArray("x|<none>"));
    QCOMPARE(response.header("Connection"), connection);
    if (closes) {
        QVERIFY(client.waitClosed());
    } else {
        QVERIFY(client.send("GET /echo/y HTTP/1.0\r\nConnection: keep-alive\r\n\r\n"));
        QCOMPARE(client.readResponse().body, QByteArray("y|<none>"));
    }
}

void TestHttpServer::expectContinue() {
    TestServer server;
    RawClient client(server.port());
    QVERIFY(client.send("POST /echo HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 4\r\n\r\n"));
    const RawResponse interim = client.readResponse(true);
    QCOMPARE(interim.status, 100);
    QVERIFY(client.send("[42]"));
    const RawResponse response = client.readResponse();
    QCOMPARE(response.status, 200);
    QCOMPARE(response.body, QByteArray("[42]"));
}

void TestHttpServer::headAnswersWithoutBody() {
    TestServer server;
    RawClient client(server.port());
    QVERIFY(client.send("HEAD /echo/abc HTTP/1.1\r\nHost: test\r\n\r\n"));
    const RawResponse head = client.readResponse(true);
    QCOMPARE(head.status, 200);
    QCOMPARE(head.header("Content-Length"), QByteArray("10")); // what GET sends: "abc|<none>"
    // Had a body followed, it would stand where the next answer's status line must be.
    QVERIFY(client.send(get("/echo/next")));
    const RawResponse next = client.readResponse();
    QCOMPARE(next.status, 200);
    QCOMPARE(next.body, QByteArray("next|<none>"));
}

void TestHttpServer::slowRequestIsCut() {
    HttpServerOptions options;
    options.headerTimeoutSeconds = 1;
    options.idleTimeoutSeconds = 30;
    TestServer server(options);

    // A request line and never the end of the headers.
    RawClient stalled(server.port());
    QVERIFY(stalled.send("GET /echo/x HTTP/1.1\r\nHost: test\r\n"));

    // A request trickled a byte at a time: each byte arrives well within the time-out, the
    // whole request never does.
    RawClient trickle(server.port());
    const QByteArray request = get("/echo/x", "X-Pad: " + QByteArray(100, 'p') + "\r\n");
    bool cut = false;
    for (qsizetype i = 0; i < request.size() && !cut; ++i) {
        cut = !trickle.send(request.mid(i, 1));
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
    QVERIFY2(cut || trickle.waitClosed(), "a request trickled for 5 s was never cut");
    QByteArray extra;
    QVERIFY(stalled.waitClosed(&extra));
    QVERIFY(extra.isEmpty());

    // A connection that sends nothing at all is cut too.
    RawClient silent(server.port());
    QVERIFY(silent.waitClosed());
}

void TestHttpServer::idleConnectionIsClosed() {
    HttpServerOptions options;
    options.idleTimeoutSeconds = 1;
    TestServer server(options);
    RawClient client(server.port());
    QVERIFY(client.send(get("/echo/x")));
    QCOMPARE(client.readResponse().status, 200);
    QVERIFY(client.waitClosed());
}

void TestHttpServer::stopFinishesRequestsInFlight() {
    TestServer server;
    // An idle keep-alive connection, which the stop closes at once.
    RawClient idle(server.port());
    QVERIFY(idle.send(get("/echo/x")));
    QCOMPARE(idle.readResponse().status, 200);

    RawClient busy(server.port());
    QVERIFY(busy.send(get("/slow")));
    QVERIFY(waitFor(server.slowEntered, 5000));
    server.stop();

    const RawResponse response = busy.readResponse();
    QVERIFY(response.complete);
    QCOMPARE(response.status, 200);
    QCOMPARE(response.body, QByteArray("done"));
    QCOMPARE(response.header("Connection"), QByteArray("close"));
    QVERIFY(busy.waitClosed());
    QVERIFY(idle.waitClosed());
    QVERIFY(server.waitReturned(5000));

    RawClient late(server.port());
    QVERIFY(!late.connected());
}

void TestHttpServer::signalStopsTheServer() {
    TestServer server({}, true);
    RawClient client(server.port());
    // Once the server answers, run() has installed its signal handling.
    QVERIFY(client.send(get("/echo/x")));
    QCOMPARE(client.readResponse().status, 200);
    QVERIFY(client.send(get("/slow")));
    QVERIFY(waitFor(server.slowEntered, 5000));
    ::raise(SIGTERM);
    const RawResponse response = client.readResponse();
    QCOMPARE(response.body, QByteArray("done"));
    QVERIFY(server.waitReturned(5000));
}

void TestHttpServer::listenAddresses() {
    Router router;
    router.add("GET", "/", [](HttpRequest& request) { return HttpResponse::text(200, request.remoteAddress); });

    // Port 0 asks for any free port; "localhost" resolves.
    HttpServerOptions options;
    options.host = "localhost";
    options.port = 0;
    HttpServer localhost(options, router);
    localhost.start();
    QVERIFY(localhost.port() != 0);

    // A taken port, an address not on this machine and a name that does not resolve are
    // refused with a readable text.
    HttpServerOptions first;
    first.port = 0;
    HttpServer holder(first, router);
    holder.start();
    for (const std::string host : {"127.0.0.1", "192.0.2.1", "no-such-host.invalid"}) {
        HttpServerOptions taken;
        taken.host = host;
        taken.port = holder.port();
        HttpServer second(taken, router);
        try {
            second.start();
            QFAIL(host.c_str());
        } catch (const std::runtime_error& e) {
            QVERIFY2(QByteArray(e.what()).startsWith("Cannot listen on " + QByteArray::fromStdString(host) + ":"),
                     e.what());
        }
    }

    // An IPv6 literal, bracketed or not, when this machine has IPv6 loopback.
    for (const char* host : {"::1", "[::1]"}) {
        HttpServerOptions v6;
        v6.host = host;
        v6.port = 0;
        HttpServer server(v6, router);
        try {
            server.start();
        } catch (const std::runtime_error& e) {
            QSKIP(e.what());
        }
        QVERIFY(server.port() != 0);
    }
}

QTEST_APPLESS_MAIN(TestHttpServer)
#include "tst_http_server.moc"
