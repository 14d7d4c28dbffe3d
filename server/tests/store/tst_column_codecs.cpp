// The text forms of the item list and of a score's components: exact round trips, and text
// that is not what the store wrote read without failing.

#include "store/column_codecs.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace qf;

using Components = std::vector<std::pair<std::string, double>>;
Q_DECLARE_METATYPE(Components)
Q_DECLARE_METATYPE(std::vector<int64_t>)

class TestColumnCodecs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itemsRoundTrip();
    void itemsFromOtherText_data();
    void itemsFromOtherText();
    void componentsRoundTrip();
    void componentsFromOtherText_data();
    void componentsFromOtherText();
};

void TestColumnCodecs::itemsRoundTrip() {
    for (const std::vector<int64_t>& items :
         {std::vector<int64_t>{}, std::vector<int64_t>{0}, std::vector<int64_t>{3071, 3047, 0, 0, 6333, 0, 3364},
          std::vector<int64_t>{-1, std::numeric_limits<int64_t>::max()}})
        QCOMPARE(decodeItems(encodeItems(items)), items);
}

void TestColumnCodecs::itemsFromOtherText_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::vector<int64_t>>("items");
    QTest::newRow("empty parts") << "1,,2," << std::vector<int64_t>{1, 2};
    QTest::newRow("not numbers") << "x,3031,3.5, 7" << std::vector<int64_t>{3031};
    QTest::newRow("beyond 64 bits") << "99999999999999999999,5" << std::vector<int64_t>{5};
    QTest::newRow("JSON array") << "[3031,3006]" << std::vector<int64_t>{};
}

void TestColumnCodecs::itemsFromOtherText() {
    QFETCH(QString, text);
    QFETCH(std::vector<int64_t>, items);
    QCOMPARE(decodeItems(text.toStdString()), items);
}

void TestColumnCodecs::componentsRoundTrip() {
    const Components components = {{"kda", 1.5},
                                   {"cs_per_min", -0.1},
                                   {"third", 1.0 / 3.0},
                                   {"tiny", 5e-324},
                                   {"huge", -1.7976931348623157e308},
                                   {"quote \" backslash \\ slash /", 0},
                                   {"control \n\t\x01", 2},
                                   {"日本 ë 🎮", 3},
                                   {"", 4},
                                   {"kda", 5}}; // order and repeats are kept
    QCOMPARE(decodeComponents(encodeComponents(components)), components);
    QCOMPARE(decodeComponents(encodeComponents({})), Components{});

    // Non-finite values have no JSON form: written as null, read back as NaN.
    const Components odd = decodeComponents(
        encodeComponents({{"nan", std::nan("")}, {"inf", std::numeric_limits<double>::infinity()}, {"after", 1}}));
    QCOMPARE(odd.size(), size_t{3});
    QVERIFY(std::isnan(odd[0].second) && std::isnan(odd[1].second));
    QCOMPARE(odd[2], (std::pair<std::string, double>{"after", 1}));
}

void TestColumnCodecs::componentsFromOtherText_data() {
    QTest::addColumn<QString>("json");
    QTest::addColumn<Components>("components");
    QTest::newRow("empty") << "" << Components{};
    QTest::newRow("not JSON") << "kda=1.5" << Components{};
    QTest::newRow("array") << "[1,2]" << Components{};
    QTest::newRow("spaces") << " { \"a\" : 1 , \"b\" :2 } " << Components{{"a", 1}, {"b", 2}};
    QTest::newRow("cut short after a value") << "{\"a\":1,\"b\":" << Components{{"a", 1}};
    QTest::newRow("cut short in a key") << "{\"a\":1,\"b" << Components{{"a", 1}};
    QTest::newRow("cut short in an escape") << "{\"a\\u00" << Components{};
    QTest::newRow("text value stops") << "{\"a\":1,\"b\":\"x\",\"c\":3}" << Components{{"a", 1}};
    QTest::newRow("value beyond double stops") << "{\"a\":1e999}" << Components{};
    QTest::newRow("escapes") << "{\"\\u00e9\\ud83c\\udfae\\n\":1}" << Components{{"é🎮\n", 1}};
    QTest::newRow("lone surrogate stops") << "{\"\\ud800\":1}" << Components{};
}

void TestColumnCodecs::componentsFromOtherText() {
    QFETCH(QString, json);
    QFETCH(Components, components);
    QCOMPARE(decodeComponents(json.toStdString()), components);
}

QTEST_GUILESS_MAIN(TestColumnCodecs)
#include "tst_column_codecs.moc"
