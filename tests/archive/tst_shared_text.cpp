#include "archive/shared_text.h"

#include <QTest>
#include <QThread>
#include <memory>
#include <vector>

// Texts held once per process: the same text built apart is the same shared text, what goes in
// comes out unchanged, and absent stays apart from empty.
class TestSharedText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roundTrip_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("ascii id") << QStringLiteral("Xk3_-9aQ");
        QTest::newRow("accented") << QStringLiteral("Pøllux Ærø");
        QTest::newRow("beyond the BMP") << QStringLiteral("Fern \U0001F33F");
        QTest::newRow("empty") << QString(QLatin1String(""));
    }
    void roundTrip() {
        QFETCH(QString, text);
        const SharedText shared(text);
        QVERIFY(!shared.isNull());
        QCOMPARE(shared.toString(), text);
        QVERIFY(shared == text);
        QCOMPARE(SharedText::fromUtf8(text.toUtf8()), shared);
        QCOMPARE(SharedText(QString(text.constData(), text.size())).id(), shared.id()); // built apart
    }

    void absentIsNotEmpty() {
        const SharedText absent;
        const SharedText empty(QString(QLatin1String("")));
        QVERIFY(absent.isNull() && !absent.has_value());
        QVERIFY(!empty.isNull() && empty.isEmpty());
        QVERIFY(absent != empty);
        QVERIFY(absent.toString().isNull());
        QVERIFY(!empty.toString().isNull());
        QCOMPARE(SharedText(std::optional<QString>()), absent);
        QVERIFY(!(absent == QString()));
    }

    void existingAddsNothing() {
        const qsizetype before = SharedText::distinctCount();
        QVERIFY(SharedText::existing(QStringLiteral("never stored 8f2c")).isNull());
        QCOMPARE(SharedText::distinctCount(), before);
        const SharedText stored(QStringLiteral("stored 8f2c"));
        QCOMPARE(SharedText::existing(QStringLiteral("stored 8f2c")), stored);
    }

    // A sync interns on its fetch thread while the main thread interns too, each through a table
    // of its own recent texts: the same text must still be the same shared text on both, and no
    // recent entry may answer for another text of the same slot.
    void sameTextOnEveryThread() {
        constexpr int count = 20'000; // several times the recent table, so slots are reused
        auto textOf = [](int i) { return QStringLiteral("thread text %1").arg(i % 5'000 * 7 + i / 5'000); };
        std::vector<SharedText> onMain(count), onOther(count);
        std::unique_ptr<QThread> other(QThread::create([&] {
            for (int i = count - 1; i >= 0; --i)
                onOther[i] = SharedText::fromUtf8(textOf(i).toUtf8());
        }));
        other->start();
        for (int i = 0; i < count; ++i)
            onMain[i] = SharedText(textOf(i));
        QVERIFY(other->wait(30'000));
        for (int i = 0; i < count; ++i) {
            QCOMPARE(onMain[i], onOther[i]);
            QCOMPARE(onMain[i].toString(), textOf(i));
        }
    }

    // Case-insensitive look-ups rule names out by this hash: it must agree for every text whose
    // lower case agrees, including those lowered whole.
    void lowerCaseHash_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("ascii") << QStringLiteral("ANNa");
        QTest::newRow("latin") << QStringLiteral("ÆRØ");
        QTest::newRow("dotted capital I") << QStringLiteral("\u0130stanbul");
        QTest::newRow("beyond the BMP") << QStringLiteral("\U00010400bc");
        // Read eight bytes at a time from UTF-8, a unit at a time from UTF-16: every length
        // around the word boundaries, and every byte that lowering must or must not touch.
        const QString ascii = QStringLiteral("@AZ[`az{Quill-Fern#EUW_0123456789");
        for (int length : {0, 1, 3, 4, 5, 7, 8, 9, 12, 15, 16, 17, 33})
            QTest::addRow("ascii, %d characters", length) << ascii.left(length);
        QTest::newRow("ascii, then not") << QStringLiteral("ABCDEFGHIJ\u00C9");
    }
    void lowerCaseHash() {
        QFETCH(QString, text);
        // The pool keeps the hash of the way a text first came: here from UTF-8.
        QCOMPARE(SharedText::fromUtf8(text.toUtf8()).lowerCaseHash(), SharedText::lowerCaseHashOf(text));
        QCOMPARE(SharedText::lowerCaseHashOf(text), SharedText::lowerCaseHashOf(text.toLower()));
        // A hash that ignored a word's last unit, or a text's length, would rule out nothing.
        QVERIFY(SharedText::fromUtf8((text + QLatin1Char('x')).toUtf8()).lowerCaseHash() !=
                SharedText::lowerCaseHashOf(text));
        QVERIFY(SharedText::lowerCaseHashOf(text + QChar(0)) != SharedText::lowerCaseHashOf(text));
    }
};

QTEST_GUILESS_MAIN(TestSharedText)
#include "tst_shared_text.moc"
