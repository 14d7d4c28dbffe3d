// The JSON edge of the server: lenient getters over odd inputs, refusal of text that is not
// JSON, and the writer's escaping, repair and splicing.

#include "http/http_message.h"
#include "json/json_input.h"
#include "json/json_writer.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace qf;

namespace {

QString show(std::optional<int64_t> v) {
    return v ? QString::number(*v) : QStringLiteral("-");
}
QString show(std::optional<double> v) {
    if (!v)
        return QStringLiteral("-");
    return *v == 0 && std::signbit(*v) ? QStringLiteral("-0") : QString::number(*v, 'g', 17);
}
QString show(std::optional<bool> v) {
    return v ? QString(*v ? "true" : "false") : QStringLiteral("-");
}
QString show(std::optional<std::string> v) {
    return v ? QString::fromStdString(*v) : QStringLiteral("-");
}

} // namespace

class TestJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void getters_data();
    void getters();
    void membersOfNonObjects();
    void refusedDocuments_data();
    void refusedDocuments();
    void hugeIntegersKeepTheirNeighbours();
    void writerStrings_data();
    void writerStrings();
    void writerNumbersAndSplicing();
};

// Each row is one member "v" read through every getter; "-" is absent (the fallback).
void TestJson::getters_data() {
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("integer");
    QTest::addColumn<QString>("real");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("boolean");

    QTest::newRow("int") << QByteArray("42") << "42"
                         << "42"
                         << "-"
                         << "-";
    QTest::newRow("negative") << QByteArray("-7") << "-7"
                              << "-7"
                              << "-"
                              << "-";
    QTest::newRow("int64 max") << QByteArray("9223372036854775807") << "9223372036854775807"
                               << "9.2233720368547758e+18"
                               << "-"
                               << "-";
    QTest::newRow("int64 min") << QByteArray("-9223372036854775808") << "-9223372036854775808"
                               << "-9.2233720368547758e+18"
                               << "-"
                               << "-";
    QTest::newRow("2^63 unsigned") << QByteArray("9223372036854775808") << "-"
                                   << "9.2233720368547758e+18"
                                   << "-"
                                   << "-";
    QTest::newRow("uint64 max") << QByteArray("18446744073709551615") << "-"
                                << "1.8446744073709552e+19"
                                << "-"
                                << "-";
    QTest::newRow("beyond uint64") << QByteArray("123456789012345678901234567890") << "-"
                                   << "1.2345678901234568e+29"
                                   << "-"
                                   << "-";
    QTest::newRow("below int64") << QByteArray("-99999999999999999999") << "-"
                                 << "-1e+20"
                                 << "-"
                                 << "-";
    QTest::newRow("1e300") << QByteArray("1e300") << "-"
                           << "1.0000000000000001e+300"
                           << "-"
                           << "-";
    QTest::newRow("-0.0") << QByteArray("-0.0") << "0"
                          << "-0"
                          << "-"
                          << "-";
    QTest::newRow("real truncated") << QByteArray("2.9") << "2"
                                    << "2.8999999999999999"
                                    << "-"
                                    << "-";
    QTest::newRow("negative real truncated") << QByteArray("-2.9") << "-2"
                                             << "-2.8999999999999999"
                                             << "-"
                                             << "-";
    QTest::newRow("real 2^63") << QByteArray("9.2233720368547758e18") << "-"
                               << "9.2233720368547758e+18"
                               << "-"
                               << "-";
    QTest::newRow("real -2^63") << QByteArray("-9.2233720368547758e18") << "-9223372036854775808"
                                << "-9.2233720368547758e+18"
                                << "-"
                                << "-";
    QTest::newRow("tiny real") << QByteArray("1e-400") << "0"
                               << "0"
                               << "-"
                               << "-";
    QTest::newRow("string of digits") << QByteArray("\"12\"") << "-"
                                      << "-"
                                      << "12"
                                      << "-";
    QTest::newRow("empty string") << QByteArray("\"\"") << "-"
                                  << "-"
                                  << ""
                                  << "-";
    QTest::newRow("escaped non-ASCII") << QByteArray("\"caf\\u00e9 \\ud83d\\ude00\"") << "-"
                                       << "-" << QString::fromUtf8("café 😀") << "-";
    QTest::newRow("true") << QByteArray("true") << "-"
                          << "-"
                          << "-"
                          << "true";
    QTest::newRow("false") << QByteArray("false") << "-"
                           << "-"
                           << "-"
                           << "false";
    QTest::newRow("null") << QByteArray("null") << "-"
                          << "-"
                          << "-"
                          << "-";
    QTest::newRow("array") << QByteArray("[1]") << "-"
                           << "-"
                           << "-"
                           << "-";
    QTest::newRow("object") << QByteArray("{\"v\":1}") << "-"
                            << "-"
                            << "-"
                            << "-";
}

void TestJson::getters() {
    QFETCH(QByteArray, value);
    QFETCH(QString, integer);
    QFETCH(QString, real);
    QFETCH(QString, text);
    QFETCH(QString, boolean);

    const QByteArray body = "{\"other\":1,\"v\":" + value + "}";
    json::Document document(std::string_view(body.constData(), size_t(body.size())));
    const auto root = document.root();

    QCOMPARE(show(json::optInteger(root, "v")), integer);
    QCOMPARE(qint64(json::integer(root, "v", -99)), integer == "-" ? qint64(-99) : integer.toLongLong());
    const auto member = json::member(root, "v");
    QCOMPARE(show(member ? json::optReal(*member) : std::nullopt), real);
    if (real != "-")
        QCOMPARE(std::signbit(json::real(root, "v", 5)), real.startsWith('-'));
    else
        QCOMPARE(json::real(root, "v", 5.5), 5.5);
    QCOMPARE(show(json::optText(root, "v")), text);
    QCOMPARE(QString::fromStdString(json::text(root, "v", "fallback")), text == "-" ? "fallback" : text);
    QCOMPARE(show(member ? json::optBoolean(*member) : std::nullopt), boolean);
    QCOMPARE(json::boolean(root, "v", true), boolean == "-" ? true : boolean == "true");
    // A missing key reads like a null one.
    QCOMPARE(show(json::optInteger(root, "missing")), QStringLiteral("-"));
}

void TestJson::membersOfNonObjects() {
    for (const char* text : {"[{\"v\":1}]", "\"v\"", "7", "null"}) {
        json::Document document{std::string_view(text)};
        QVERIFY2(!json::member(document.root(), "v"), text);
        QCOMPARE(qint64(json::integer(document.root(), "v", 3)), qint64(3));
        QCOMPARE(json::text(document.root(), "v", "x"), std::string("x"));
    }
    json::Document document{std::string_view("{\"a\":[1,2],\"o\":{}}")};
    QVERIFY(json::isArray(*json::member(document.root(), "a")));
    QVERIFY(json::isObject(*json::member(document.root(), "o")));
    QVERIFY(!json::isObject(*json::member(document.root(), "a")));
}

void TestJson::refusedDocuments_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("truncated object") << QByteArray("{\"a\":");
    QTest::newRow("truncated string") << QByteArray("{\"a\":\"abc");
    QTest::newRow("trailing garbage") << QByteArray("{} x");
    QTest::newRow("invalid UTF-8 in a string") << QByteArray("{\"a\":\"\xff\xfe\"}");
    QTest::newRow("NaN") << QByteArray("[NaN]");
    QTest::newRow("real overflowing to infinity") << QByteArray("[1e309]");
    QTest::newRow("huge integer beside an infinity") << QByteArray("[123456789012345678901234567890, 1e999]");
    QTest::newRow("single quotes") << QByteArray("{'a':1}");
    QTest::newRow("deep nesting") << QByteArray(100000, '[') + QByteArray(100000, ']');
    QTest::newRow("NUL byte") << QByteArray("{\"a\":1}\0", 8);
}

void TestJson::refusedDocuments() {
    QFETCH(QByteArray, text);
    try {
        json::Document document(std::string_view(text.constData(), size_t(text.size())));
        QFAIL("parsed");
    } catch (const HttpError& e) {
        QCOMPARE(e.status(), 400);
        QCOMPARE(QString(e.what()), QStringLiteral("The request body is not valid JSON."));
    }
}

// Rewriting huge integers so that the body still parses must leave strings and ordinary
// numbers as they were.
void TestJson::hugeIntegersKeepTheirNeighbours() {
    const std::string_view body =
        R"({"id":1234567890123456789,"s":"99999999999999999999","n":-5,"big":99999999999999999999})";
    json::Document document(body);
    const auto root = document.root();
    QCOMPARE(show(json::optInteger(root, "id")), QStringLiteral("1234567890123456789"));
    QCOMPARE(json::text(root, "s"), std::string("99999999999999999999"));
    QCOMPARE(show(json::optInteger(root, "n")), QStringLiteral("-5"));
    QCOMPARE(show(json::optInteger(root, "big")), QStringLiteral("-"));
    QCOMPARE(json::real(root, "big"), 1e20);
}

void TestJson::writerStrings_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("written");

    QTest::newRow("quote and backslash") << QByteArray("a\"b\\c") << QByteArray(R"("a\"b\\c")");
    QTest::newRow("control characters") << QByteArray("\n\t\r\b\f\x01\x1f")
                                        << QByteArray(R"("\n\t\r\b\f\u0001\u001F")");
    QTest::newRow("NUL") << QByteArray("a\0b", 3) << QByteArray(R"("a\u0000b")");
    QTest::newRow("DEL and slash stay") << QByteArray("\x7f/") << QByteArray("\"\x7f/\"");
    QTest::newRow("non-ASCII stays UTF-8") << QByteArray("Jörg ✓ 😀") << QByteArray("\"Jörg ✓ 😀\"");
    QTest::newRow("stray byte") << QByteArray("a\xff"
                                              "b")
                                << QByteArray("\"a\xef\xbf\xbd"
                                              "b\"");
    QTest::newRow("truncated sequence at the end")
        << QByteArray("ab\xe2\x82") << QByteArray("\"ab\xef\xbf\xbd\xef\xbf\xbd\"");
    QTest::newRow("overlong") << QByteArray("\xc0\xaf") << QByteArray("\"\xef\xbf\xbd\xef\xbf\xbd\"");
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80") << QByteArray("\"\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\"");
    QTest::newRow("beyond U+10FFFF") << QByteArray("\xf4\x90\x80\x80x")
                                     << QByteArray("\"\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbdx\"");
}

// Strings as values and as keys; what is written must read back through our own parser.
void TestJson::writerStrings() {
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, written);
    const std::string_view in(input.constData(), size_t(input.size()));

    json::Writer writer;
    writer.beginObject().field(in, in).endObject();
    const std::string out = writer.take();
    QCOMPARE(QByteArray::fromStdString(out), "{" + written + ":" + written + "}");

    // Escaped text reads back as the input; repaired text as what was written.
    const QByteArray expected = written.contains('\\') ? input : written.mid(1, written.size() - 2);
    json::Document document(out);
    simdjson::dom::object object;
    QVERIFY(!document.root().get_object().get(object));
    QCOMPARE(object.size(), size_t(1));
    for (auto [key, value] : object) {
        QCOMPARE(QByteArray(key.data(), qsizetype(key.size())), expected);
        QCOMPARE(QByteArray::fromStdString(std::string(json::optText(value).value_or("?"))), expected);
    }
}

void TestJson::writerNumbersAndSplicing() {
    json::Writer writer;
    writer.beginArray()
        .value(std::numeric_limits<int64_t>::min())
        .value(std::numeric_limits<size_t>::max())
        .value(7)
        .value(uint16_t(65535))
        .value(1.5)
        .value(-0.0)
        .value(std::numeric_limits<double>::quiet_NaN())
        .value(std::numeric_limits<double>::infinity())
        .value(true)
        .value(std::optional<int64_t>())
        .value(std::optional<std::string>("x"))
        .raw(R"({"kills":[1,2],"s":"a,b"})")
        .raw("")
        .raw("3")
        .beginObject()
        .field("t", "v")
        .key("r")
        .raw("[]")
        .field("after", 1)
        .key("list")
        .beginArray()
        .rawList("")
        .rawList(R"({"a":1},{"b":2})")
        .rawList("")
        .rawList("3")
        .endArray()
        .endObject()
        .endArray();
    QCOMPARE(QByteArray::fromStdString(writer.take()),
             QByteArray(R"([-9223372036854775808,18446744073709551615,7,65535,1.5,-0.0,null,null,true,null,"x",)"
                        R"({"kills":[1,2],"s":"a,b"},null,3,{"t":"v","r":[],"after":1,"list":[{"a":1},{"b":2},3]}])"));
}

QTEST_APPLESS_MAIN(TestJson)
#include "tst_json.moc"
