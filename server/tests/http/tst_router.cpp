// Routing without the network: matching and path parameters, 404/405, failures turned into
// answers, and the decoding of path pieces and queries.

#include "http/router.h"

#include <QTest>

#include <stdexcept>

using namespace qf;

namespace {

// A handler that answers with its name and the parameters it was given.
Router::Handler echo(std::string name) {
    return [name](HttpRequest& request) {
        std::string body = name + "|";
        for (size_t i = 0; i < request.pathParams.size(); ++i)
            body += (i ? "," : "") + request.pathParams[i];
        return HttpResponse::text(200, body);
    };
}

Router sampleRouter() {
    Router router;
    router.add("GET", "/", echo("root"));
    router.add("GET", "/api/sync", echo("sync"));
    router.add("POST", "/api/matches/ingest-local", echo("ingest"));
    router.add("GET", "/api/players/{}/profile", echo("profile"));
    router.add("GET", "/api/players/{}/{}", echo("two"));
    router.add("GET", "/api/matches/{}/timeline", echo("timeline"));
    router.add("PUT", "/api/matches/{}/timeline", echo("put timeline"));
    router.add("DELETE", "/api/matches/{}/timeline", echo("delete timeline"));
    return router;
}

} // namespace

class TestRouter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dispatch_data();
    void dispatch();
    void failuresBecomeAnswers_data();
    void failuresBecomeAnswers();
    void badPatterns();
    void percentDecode_data();
    void percentDecode();
    void parseQuery_data();
    void parseQuery();
};

void TestRouter::dispatch_data() {
    QTest::addColumn<QString>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("allow");

    QTest::newRow("literal") << "GET" << QByteArray("/api/sync") << 200 << "sync|"
                             << "";
    QTest::newRow("root") << "GET" << QByteArray("/") << 200 << "root|"
                          << "";
    QTest::newRow("trailing slash ignored") << "GET" << QByteArray("/api/sync/") << 200 << "sync|"
                                            << "";
    QTest::newRow("two trailing slashes") << "GET" << QByteArray("/api/sync//") << 404 << "No such endpoint."
                                          << "";
    QTest::newRow("empty segment inside") << "GET" << QByteArray("/api//sync") << 404 << "No such endpoint."
                                          << "";
    QTest::newRow("encoded literal") << "GET" << QByteArray("/api/%73ync") << 200 << "sync|"
                                     << "";
    QTest::newRow("literal is case-sensitive") << "GET" << QByteArray("/api/Sync") << 404 << "No such endpoint."
                                               << "";
    QTest::newRow("Riot ID") << "GET" << QByteArray("/api/players/Name%23TAG/profile") << 200 << "profile|Name#TAG"
                             << "";
    QTest::newRow("UTF-8 piece") << "GET" << QByteArray("/api/players/J%C3%B6rg%20%E2%9C%93%23EUW/profile") << 200
                                 << QString::fromUtf8("profile|Jörg ✓#EUW") << "";
    QTest::newRow("raw UTF-8 piece") << "GET" << QByteArray("/api/players/J\xc3\xb6rg/profile") << 200
                                     << QString::fromUtf8("profile|Jörg") << "";
    QTest::newRow("encoded slash stays in its piece")
        << "GET" << QByteArray("/api/players/a%2Fb/profile") << 200 << "profile|a/b"
        << "";
    QTest::newRow("plus is a plus in a path") << "GET" << QByteArray("/api/players/a+b/profile") << 200 << "profile|a+b"
                                              << "";
    QTest::newRow("two parameters") << "GET" << QByteArray("/api/players/x/y") << 200 << "two|x,y"
                                    << "";
    QTest::newRow("literal wins by order") << "GET" << QByteArray("/api/players/x/profile") << 200 << "profile|x"
                                           << "";
    QTest::newRow("empty parameter") << "GET" << QByteArray("/api/players//profile") << 404 << "No such endpoint."
                                     << "";
    QTest::newRow("too many pieces") << "GET" << QByteArray("/api/players/x/profile/more") << 404 << "No such endpoint."
                                     << "";
    QTest::newRow("unknown") << "GET" << QByteArray("/nope") << 404 << "No such endpoint."
                             << "";
    QTest::newRow("bad escape") << "GET" << QByteArray("/api/players/%ZZ/profile") << 400 << "Bad path."
                                << "";
    QTest::newRow("short escape") << "GET" << QByteArray("/api/players/x%4") << 400 << "Bad path."
                                  << "";
    QTest::newRow("bad escape on an unknown path") << "GET" << QByteArray("/nope/%") << 400 << "Bad path."
                                                   << "";
    QTest::newRow("not UTF-8") << "GET" << QByteArray("/api/players/%FF/profile") << 400 << "Bad path."
                               << "";
    QTest::newRow("relative") << "GET" << QByteArray("api/sync") << 400 << "Bad path."
                              << "";
    QTest::newRow("absolute URL") << "GET" << QByteArray("http://host/api/sync") << 400 << "Bad path."
                                  << "";
    QTest::newRow("empty") << "GET" << QByteArray("") << 400 << "Bad path."
                           << "";
    QTest::newRow("wrong method") << "POST" << QByteArray("/api/sync") << 405 << "This endpoint does not accept POST."
                                  << "GET, HEAD";
    QTest::newRow("GET on a POST route") << "GET" << QByteArray("/api/matches/ingest-local") << 405
                                         << "This endpoint does not accept GET."
                                         << "POST";
    QTest::newRow("several methods") << "PATCH" << QByteArray("/api/matches/7/timeline") << 405
                                     << "This endpoint does not accept PATCH."
                                     << "GET, HEAD, PUT, DELETE";
    QTest::newRow("method picks the route") << "PUT" << QByteArray("/api/matches/7/timeline") << 200 << "put timeline|7"
                                            << "";
    QTest::newRow("methods are case-sensitive")
        << "get" << QByteArray("/api/sync") << 405 << "This endpoint does not accept get."
        << "GET, HEAD";
    QTest::newRow("HEAD runs GET") << "HEAD" << QByteArray("/api/players/x/profile") << 200 << "profile|x"
                                   << "";
    QTest::newRow("HEAD on a POST route")
        << "HEAD" << QByteArray("/api/matches/ingest-local") << 405 << "This endpoint does not accept HEAD."
        << "POST";
}

void TestRouter::dispatch() {
    QFETCH(QString, method);
    QFETCH(QByteArray, path);
    QFETCH(int, status);
    QFETCH(QString, body);
    QFETCH(QString, allow);

    const Router router = sampleRouter();
    HttpRequest request;
    request.method = method.toStdString();
    request.path = path.toStdString();
    request.pathParams = {"stale"};
    const HttpResponse response = router.dispatch(request);
    QCOMPARE(response.status, status);
    QCOMPARE(QString::fromStdString(response.body), body);
    if (status != 200)
        QCOMPARE(response.contentType, std::string("text/plain; charset=utf-8"));
    QString allowHeader;
    for (const auto& [name, value] : response.headers) {
        if (name == "Allow")
            allowHeader = QString::fromStdString(value);
    }
    QCOMPARE(allowHeader, allow);
}

void TestRouter::failuresBecomeAnswers_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("body");

    const QString unavailable = "The server could not complete the request. Try again in a moment.";
    QTest::newRow("refusal") << 0 << 409 << "That name is taken.";
    QTest::newRow("refusal 401") << 1 << 401 << "Sign in again.";
    QTest::newRow("store failure") << 2 << 503 << unavailable;
    QTest::newRow("not an std::exception") << 3 << 503 << unavailable;
    QTest::newRow("refusal with a success status") << 4 << 503 << unavailable;
    QTest::newRow("out of memory") << 5 << 503 << unavailable;
}

void TestRouter::failuresBecomeAnswers() {
    QFETCH(int, kind);
    QFETCH(int, status);
    QFETCH(QString, body);

    Router router;
    router.add("POST", "/x", [kind](HttpRequest&) -> HttpResponse {
        switch (kind) {
        case 0:
            throw HttpError(409, "That name is taken.");
        case 1:
            throw HttpError(401, "Sign in again.");
        case 2:
            throw std::runtime_error("connection to server at \"db\" failed: password authentication failed");
        case 3:
            throw 42;
        case 4:
            throw HttpError(200, "fine");
        default:
            throw std::bad_alloc();
        }
    });
    HttpRequest request;
    request.method = "POST";
    request.path = "/x";
    const HttpResponse response = router.dispatch(request);
    QCOMPARE(response.status, status);
    QCOMPARE(QString::fromStdString(response.body), body);
    QCOMPARE(response.contentType, std::string("text/plain; charset=utf-8"));
}

void TestRouter::badPatterns() {
    Router router;
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument, router.add("GET", "api/sync", echo("x")));
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument, router.add("GET", "/api//sync", echo("x")));
}

void TestRouter::percentDecode_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<bool>("plusIsSpace");
    QTest::addColumn<QByteArray>("decoded"); // "<null>" when refused

    const QByteArray refused("<null>");
    QTest::newRow("plain") << QByteArray("abc") << false << QByteArray("abc");
    QTest::newRow("empty") << QByteArray("") << false << QByteArray("");
    QTest::newRow("hex either case") << QByteArray("%2f%2F%7e") << false << QByteArray("//~");
    QTest::newRow("plus kept") << QByteArray("a+b") << false << QByteArray("a+b");
    QTest::newRow("plus as space") << QByteArray("a+b") << true << QByteArray("a b");
    QTest::newRow("encoded plus") << QByteArray("a%2Bb") << true << QByteArray("a+b");
    QTest::newRow("percent of percent") << QByteArray("%2541") << false << QByteArray("%41");
    QTest::newRow("four-byte UTF-8") << QByteArray("%F0%9F%98%80") << false << QByteArray("\xf0\x9f\x98\x80");
    QTest::newRow("lone percent") << QByteArray("%") << false << refused;
    QTest::newRow("one digit at the end") << QByteArray("ab%4") << false << refused;
    QTest::newRow("not hex") << QByteArray("%G1") << false << refused;
    QTest::newRow("sign is not hex") << QByteArray("%+1") << false << refused;
    QTest::newRow("NUL") << QByteArray("%00") << false << refused;
    QTest::newRow("raw NUL") << QByteArray("a\0b", 3) << false << refused;
    QTest::newRow("stray continuation byte") << QByteArray("%80") << false << refused;
    QTest::newRow("truncated sequence") << QByteArray("%E2%9C") << false << refused;
    QTest::newRow("surrogate") << QByteArray("%ED%A0%80") << false << refused;
}

void TestRouter::percentDecode() {
    QFETCH(QByteArray, input);
    QFETCH(bool, plusIsSpace);
    QFETCH(QByteArray, decoded);
    const auto result = qf::percentDecode(std::string_view(input.constData(), size_t(input.size())), plusIsSpace);
    QCOMPARE(result ? QByteArray::fromStdString(*result) : QByteArray("<null>"), decoded);
}

void TestRouter::parseQuery_data() {
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QString>("parsed"); // name=value pairs joined by ";", or "<refused>"

    QTest::newRow("two") << QByteArray("a=b&c=d") << "a=b;c=d";
    QTest::newRow("plus and escapes") << QByteArray("name=Jo+Doe%23EUW&x=%26%3D") << "name=Jo Doe#EUW;x=&=";
    QTest::newRow("first value wins") << QByteArray("a=1&a=2&b=3") << "a=1;b=3";
    QTest::newRow("no value") << QByteArray("flag&a=") << "a=;flag=";
    QTest::newRow("equals in the value") << QByteArray("a=b=c") << "a=b=c";
    QTest::newRow("empty pieces") << QByteArray("&&a=1&") << "a=1";
    QTest::newRow("empty name") << QByteArray("=x&a=1") << "a=1";
    QTest::newRow("empty") << QByteArray("") << "";
    QTest::newRow("encoded name") << QByteArray("%61=1") << "a=1";
    QTest::newRow("bad escape in a value") << QByteArray("a=%ZZ") << "<refused>";
    QTest::newRow("bad escape in a name") << QByteArray("a%=1") << "<refused>";
    QTest::newRow("not UTF-8") << QByteArray("a=%FF") << "<refused>";
    QTest::newRow("NUL") << QByteArray("a=%00") << "<refused>";
}

void TestRouter::parseQuery() {
    QFETCH(QByteArray, query);
    QFETCH(QString, parsed);
    std::map<std::string, std::string> out;
    QString result;
    if (!qf::parseQuery(std::string_view(query.constData(), size_t(query.size())), out)) {
        result = "<refused>";
    } else {
        QStringList pairs;
        for (const auto& [name, value] : out)
            pairs << QString::fromStdString(name + "=" + value);
        result = pairs.join(';');
    }
    QCOMPARE(result, parsed);
}

QTEST_APPLESS_MAIN(TestRouter)
#include "tst_router.moc"
