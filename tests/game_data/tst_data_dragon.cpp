#include "game_data/data_dragon.h"

#include <QTest>

class TestDataDragon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addresses() {
        const DataDragon cdn;
        QCOMPARE(cdn.itemIcon(3031, "16.11.1").toString(),
                 QStringLiteral("https://ddragon.leagueoflegends.com/cdn/16.11.1/img/item/3031.png"));
        QCOMPARE(cdn.profileIcon(4568, "16.11.1").toString(),
                 QStringLiteral("https://ddragon.leagueoflegends.com/cdn/16.11.1/img/profileicon/4568.png"));
        QCOMPARE(cdn.championIcon("Lee Sin", "16.11.1").toString(),
                 QStringLiteral("https://ddragon.leagueoflegends.com/cdn/16.11.1/img/champion/LeeSin.png"));
        QCOMPARE(cdn.championList("16.11.1").toString(),
                 QStringLiteral("https://ddragon.leagueoflegends.com/cdn/16.11.1/data/en_US/champion.json"));
        QVERIFY(!DataDragon(QStringLiteral("::not a base")).itemIcon(1, "v").isValid());
    }

    void championKey_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<qint64>("id");
        QTest::newRow("plain") << "266" << true << qint64(266);
        QTest::newRow("plus sign") << "+103" << true << qint64(103);
        QTest::newRow("minus sign") << "-7" << true << qint64(-7);
        QTest::newRow("empty") << "" << false << qint64(0);
        QTest::newRow("sign only") << "+" << false << qint64(0);
        QTest::newRow("leading space") << " 12" << false << qint64(0);
        QTest::newRow("decimal") << "1.5" << false << qint64(0);
    }
    void championKey() {
        QFETCH(QString, key);
        QFETCH(bool, accepted);
        QFETCH(qint64, id);
        const auto parsed = DataDragon::parseChampionKey(key);
        QCOMPARE(parsed.has_value(), accepted);
        if (accepted)
            QCOMPARE(*parsed, id);
    }

    void championList() {
        const QByteArray json = R"({"type":"champion","data":{
            "Ahri":{"key":"103","id":"Ahri","name":"Ahri"},
            "MonkeyKing":{"key":"62","id":"MonkeyKing","name":"Wukong"},
            "Broken":{"key":"abc","id":"Broken"}}})";
        const auto map = DataDragon::parseChampionList(json);
        QVERIFY(map);
        QCOMPARE(map->size(), 2);
        QCOMPARE(map->value(62), QStringLiteral("MonkeyKing"));
        QVERIFY(!DataDragon::parseChampionList("not json"));
        QVERIFY(!DataDragon::parseChampionList(R"({"data":[]})"));
        // A list of another shape is refused whole, so the map already known stays.
        QVERIFY(
            !DataDragon::parseChampionList(R"({"data":{"Ahri":{"key":"103","id":"Ahri"},"NoKey":{"id":"NoKey"}}})"));
        QVERIFY(!DataDragon::parseChampionList(R"({"data":{"Ahri":{"key":103,"id":"Ahri"}}})"));
    }
};

QTEST_GUILESS_MAIN(TestDataDragon)
#include "tst_data_dragon.moc"
