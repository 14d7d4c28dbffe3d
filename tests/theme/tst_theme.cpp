#include "theme/fonts.h"
#include "theme/symbols.h"
#include "theme/theme.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QRawFont>
#include <QSet>
#include <QTest>
#include <cmath>
#include <limits>

class TestTheme : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kdaColor_data() {
        QTest::addColumn<double>("kda");
        QTest::addColumn<QColor>("color");
        QTest::newRow("5.0") << 5.0 << Theme::orange();
        QTest::newRow("4.99") << 4.99 << Theme::teal();
        QTest::newRow("4.0") << 4.0 << Theme::teal();
        QTest::newRow("3.0") << 3.0 << Theme::win();
        QTest::newRow("2.0") << 2.0 << Theme::white(0.72);
        QTest::newRow("1.99") << 1.99 << Theme::white(0.55);
        QTest::newRow("not a number") << std::nan("") << Theme::white(0.55);
    }
    void kdaColor() {
        QFETCH(double, kda);
        QFETCH(QColor, color);
        QCOMPARE(Theme::kda(kda), color);
    }

    void tierGradient_data() {
        QTest::addColumn<QString>("tier");
        QTest::addColumn<QColor>("light");
        QTest::newRow("GOLD") << "GOLD" << QColor(231, 196, 90);
        QTest::newRow("gold") << "gold" << QColor(231, 196, 90);
        QTest::newRow("none") << "" << QColor(90, 90, 106);
        QTest::newRow("unknown") << "WOOD" << QColor(90, 90, 106);
    }
    void tierGradient() {
        QFETCH(QString, tier);
        QFETCH(QColor, light);
        QCOMPARE(Theme::tierPair(tier)[0], light);
    }

    void champGradient_data() {
        QTest::addColumn<qint64>("seed");
        QTest::addColumn<QColor>("light");
        QTest::newRow("0") << qint64(0) << QColor(124, 58, 237);
        QTest::newRow("7") << qint64(7) << QColor(10, 200, 185);
        QTest::newRow("-7 uses its absolute value") << qint64(-7) << QColor(10, 200, 185);
        QTest::newRow("smallest 64-bit") << std::numeric_limits<qint64>::min() << QColor(224, 82, 78);
    }
    void champGradient() {
        QFETCH(qint64, seed);
        QFETCH(QColor, light);
        QCOMPARE(Theme::champPair(seed)[0], light);
    }

    // The same champion keeps its colours from one version of the app to the next.
    void nameHashIsStableAndSpreads() {
        QCOMPARE(Theme::stableHash("Ahri"), Q_INT64_C(8501284092995446809));
        QCOMPARE(Theme::stableHash("Lee Sin"), Q_INT64_C(2879614955295616958));
        QSet<int> buckets;
        for (const char* name : {"Ahri", "Lux", "Jinx", "Thresh", "Yasuo", "Lee Sin", "Miss Fortune", "Ezreal"})
            buckets.insert(int(Theme::stableHash(QString::fromLatin1(name)) % 6));
        QVERIFY2(buckets.size() >= 3, "fallback colours should differ between champions");
    }

    void winRings_data() {
        QTest::addColumn<double>("pct");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("blue");
        QTest::newRow("two thirds") << 200.0 / 3 << "67%" << true;
        QTest::newRow("half is blue") << 50.0 << "50%" << true;
        QTest::newRow("just under half: red, shown as 50") << 49.6 << "50%" << false;
        QTest::newRow("halves round up") << 72.5 << "73%" << true;
        QTest::newRow("nothing") << 0.0 << "0%" << false;
    }
    void winRings() {
        QFETCH(double, pct);
        QFETCH(QString, text);
        QFETCH(bool, blue);
        QCOMPARE(Theme::percentText(pct), text);
        QCOMPARE(Theme::ringColorFor(pct), blue ? Theme::win() : Theme::loss());
    }

    void winShares_data() {
        QTest::addColumn<qint64>("wins");
        QTest::addColumn<qint64>("losses");
        QTest::addColumn<double>("share");
        QTest::newRow("no games") << qint64(0) << qint64(0) << 0.0;
        QTest::newRow("no wins: all red") << qint64(0) << qint64(3) << 0.0;
        QTest::newRow("no losses: all blue") << qint64(3) << qint64(0) << 1.0;
        QTest::newRow("one in four") << qint64(1) << qint64(3) << 0.25;
    }
    void winShares() {
        QFETCH(qint64, wins);
        QFETCH(qint64, losses);
        QFETCH(double, share);
        QCOMPARE(Theme::winShare(wins, losses), share);
    }

    void initials_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("initials");
        QTest::newRow("two words") << "Lee Sin"
                                   << "LE";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("accent kept with its letter")
            << QString::fromUtf8("e\u0301clair") << QString::fromUtf8("E\u0301C");
        QTest::newRow("beyond the BMP") << QString::fromUtf8("🐉dragon") << QString::fromUtf8("🐉D");
    }
    void initials() {
        QFETCH(QString, name);
        QFETCH(QString, initials);
        QCOMPARE(Theme::initials(name), initials);
    }

    // Each role of the type scale is larger than the one before it, so a role added in the wrong
    // place, or given a size already taken, shows here; a number from outside reads as body text.
    void typeScaleGrows() {
        const QMetaEnum roles = QMetaEnum::fromType<Theme::TextRole>();
        for (int i = 1; i < roles.keyCount(); ++i)
            QVERIFY2(Theme::pixelSize(Theme::TextRole(roles.value(i))) >
                         Theme::pixelSize(Theme::TextRole(roles.value(i - 1))),
                     roles.key(i));
        QCOMPARE(Theme().fontSize(roles.keyCount()), Theme::pixelSize(Theme::Body));
    }

    void kdaLineShowsDeathsInRed() {
        const QString line = Theme::kdaLine(3, 1, 7);
        QVERIFY2(line.startsWith("3 ") && line.endsWith(" 7"), qPrintable(line));
        QVERIFY2(line.contains(QStringLiteral("<font color='%1'>1</font>").arg(Theme::loss().name())),
                 qPrintable(line));
        QCOMPARE(line.count(QStringLiteral(">/</font>")), 2);
    }

    void everySymbolHasAGlyphInTheBundledFont() {
        Fonts::load();
        QRawFont font(QStringLiteral(":/qt/qml/QuillFern/Theme/fonts/MaterialIcons-Regular.ttf"), 16);
        QVERIFY(font.isValid());
        const QStringList names = Symbols::names();
        QVERIFY(names.size() >= 30);
        for (const QString& name : names) {
            const QString glyph = Symbols::glyphFor(name);
            QCOMPARE(glyph.size(), 1);
            QVERIFY2(font.supportsCharacter(glyph.at(0)), qPrintable(name));
        }
        QVERIFY(Symbols::glyphFor("no.such.symbol").isEmpty());
    }

    void interIsBundled() {
        Fonts::load();
        QVERIFY(QFontDatabase::families().contains("Inter"));
        QVERIFY(QFontDatabase::families().contains(Symbols::fontFamily()));
    }
};

QTEST_MAIN(TestTheme)
#include "tst_theme.moc"
