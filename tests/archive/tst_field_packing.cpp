#include "archive/field_packing.h"

#include <QTest>
#include <cmath>
#include <limits>

// The packed line is the archive's own file format: a figure that comes back different, or a
// reader that runs past its bytes, loses a player's data for good.
class TestFieldPacking : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wholeNumbersComeBackExactly_data() {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<int>("bytes");
        QTest::newRow("zero") << qint64(0) << 1;
        QTest::newRow("minus one") << qint64(-1) << 1;
        QTest::newRow("largest in one byte") << qint64(63) << 1;
        QTest::newRow("smallest in two bytes") << qint64(64) << 2;
        QTest::newRow("most negative in one byte") << qint64(-64) << 1;
        QTest::newRow("gold") << qint64(18'450) << 3;
        QTest::newRow("a match id") << qint64(7'412'345'678) << 5;
        QTest::newRow("largest") << std::numeric_limits<qint64>::max() << 10;
        QTest::newRow("smallest") << std::numeric_limits<qint64>::min() << 10;
    }
    void wholeNumbersComeBackExactly() {
        QFETCH(qint64, value);
        QFETCH(int, bytes);
        FieldPacker packer;
        packer.put(value);
        QCOMPARE(packer.bytes().size(), bytes);
        FieldUnpacker in(packer.bytes());
        qint64 read = 0;
        in.get(read);
        QCOMPARE(read, value);
        QVERIFY(in.atEnd());
        QVERIFY(!in.narrowed());
    }

    void figuresBeyondTheirWidthAreNoticed_data() {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<qint16>("kept");
        QTest::addColumn<bool>("narrowed");
        QTest::addColumn<bool>("optionalNarrowed");
        QTest::newRow("fits") << qint64(-32767) << qint16(-32767) << false << false;
        // The narrow optional spends its lowest value on "absent": that figure must not vanish.
        QTest::newRow("the optional's absent") << qint64(-32768) << qint16(-32768) << false << true;
        QTest::newRow("one over") << qint64(32768) << qint16(32767) << true << true;
        QTest::newRow("far under") << qint64(-5'000'000'000) << qint16(-32768) << true << true;
    }
    void figuresBeyondTheirWidthAreNoticed() {
        QFETCH(qint64, value);
        QFETCH(qint16, kept);
        QFETCH(bool, narrowed);
        QFETCH(bool, optionalNarrowed);
        FieldPacker packer;
        packer.put(value);
        packer.put(std::optional<qint64>(value));
        FieldUnpacker plain(packer.bytes());
        qint16 small = 0;
        plain.get(small);
        QCOMPARE(small, kept);
        QCOMPARE(plain.narrowed(), narrowed);

        FieldUnpacker optional(packer.bytes());
        qint64 skipped = 0;
        OptionalInt<qint16> read;
        optional.get(skipped);
        optional.get(read);
        QVERIFY(optional.atEnd());
        QCOMPARE(optional.narrowed(), optionalNarrowed);
        if (!optionalNarrowed)
            QCOMPARE(*read, kept);
    }

    void optionalsListsAndRealsKeepTheirShape() {
        FieldPacker packer;
        packer.put(std::optional<qint64>());
        packer.put(std::optional<qint64>(-7));
        packer.put(std::optional<double>(0.125));
        packer.put(std::optional<double>(std::numeric_limits<double>::quiet_NaN()));
        packer.put(OptionalReal());
        packer.put(QList<qint64>{3089, 0, -1, qint64(1) << 40});
        packer.put(std::optional<QList<qint64>>());
        packer.putText(std::optional<qint64>(212'000));

        FieldUnpacker in(packer.bytes());
        std::optional<qint64> none, minusSeven;
        std::optional<double> eighth, nan;
        OptionalReal absent;
        QList<qint64> items;
        std::optional<QList<qint64>> noItems;
        in.get(none);
        in.get(minusSeven);
        in.get(eighth);
        in.get(nan);
        in.get(absent);
        in.get(items);
        in.get(noItems);
        const std::optional<qint64> text = in.getText();
        QVERIFY(in.atEnd());
        QVERIFY(!none);
        QCOMPARE(minusSeven, std::optional<qint64>(-7));
        QCOMPARE(eighth, std::optional<double>(0.125));
        QVERIFY(nan && std::isnan(*nan));
        QVERIFY(!absent);
        QCOMPARE(items, (QList<qint64>{3089, 0, -1, qint64(1) << 40}));
        QCOMPARE(noItems, std::optional<QList<qint64>>(QList<qint64>())); // absent and empty are one
        QCOMPARE(text, std::optional<qint64>(212'000));
    }

    void itemSlotsTakeWhatFits() {
        FieldPacker packer;
        packer.put(QList<qint64>{1, 2, 3, 4, 5, 6, 7, 8, 9});
        packer.put(QList<qint64>{3089, 6653});
        FieldUnpacker in(packer.bytes());
        ItemSlots nine, two;
        in.get(nine);
        QVERIFY(in.narrowed());
        in.get(two);
        QVERIFY(in.atEnd());
        QCOMPARE(two.size(), 2);
        QCOMPARE(two[1], 6653);
    }

    // A damaged line: every field after the damage holds its default, and nothing past the bytes
    // is read (the sanitizers of the debug build watch the last).
    void damageStopsTheReading_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("number cut after its presence byte") << QByteArray("\x01\x80", 2);
        QTest::newRow("presence byte of 2") << QByteArray("\x02\x04\x04\x04", 4);
        // The first field absent and the second 0, then damage in the second or a later field.
        QTest::newRow("varint without its end") << QByteArray("\x00\x80\x80", 3);
        QTest::newRow("varint of eleven bytes") << QByteArray("\x00", 1) + QByteArray(11, '\xff');
        QTest::newRow("real cut short") << QByteArray("\x00\x00\x01\x00\x00", 5);
        QTest::newRow("list longer than the bytes") << QByteArray("\x00\x00\x00\x7e\x02", 5);
        QTest::newRow("negative list count") << QByteArray("\x00\x00\x00\x03\x02", 5);
    }
    void damageStopsTheReading() {
        QFETCH(QByteArray, bytes);
        FieldUnpacker in(bytes);
        std::optional<qint64> first;
        qint64 second = 99;
        std::optional<double> third;
        QList<qint64> fourth{1};
        in.get(first);
        in.get(second);
        in.get(third);
        in.get(fourth);
        QVERIFY(in.damaged());
        QVERIFY(!first);
        QCOMPARE(second, 0);
        QVERIFY(!third);
        QVERIFY(fourth.isEmpty());
    }
};

QTEST_APPLESS_MAIN(TestFieldPacking)
#include "tst_field_packing.moc"
