#include "overlay/skill_order.h"
#include "overlay/skill_order_view.h"
#include "overlay/skill_strip.h"

#include <QImage>
#include <QTest>
#include <cstdlib>

using Ranks = QMap<QString, qint64>;
Q_DECLARE_METATYPE(Ranks)

// The next ability to level, and the strip's cells and pips built from it.
class TestSkillOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recommendedNext_data() {
        QTest::addColumn<Ranks>("ranks");
        QTest::addColumn<qint64>("level");
        QTest::addColumn<QString>("expected"); // empty: nothing left to level

        QTest::newRow("level 1, all 0") << Ranks{{"Q", 0}, {"W", 0}, {"E", 0}, {"R", 0}} << 1ll << "Q";
        QTest::newRow("level 1, empty map") << Ranks{} << 1ll << "Q";
        QTest::newRow("most-leveled basic keeps priority") << Ranks{{"Q", 2}, {"W", 0}, {"E", 0}} << 3ll << "Q";
        QTest::newRow("W ahead of Q and E") << Ranks{{"Q", 1}, {"W", 2}, {"E", 1}} << 4ll << "W";
        QTest::newRow("level 6 without ult") << Ranks{{"R", 0}} << 6ll << "R";
        QTest::newRow("level 6 with ult") << Ranks{{"R", 1}, {"Q", 3}, {"E", 2}} << 6ll << "Q";
        QTest::newRow("level 11 with R 1") << Ranks{{"R", 1}, {"Q", 5}, {"E", 4}} << 11ll << "R";
        QTest::newRow("level 10 with R 1: a basic") << Ranks{{"R", 1}, {"Q", 5}, {"E", 3}} << 10ll << "E";
        QTest::newRow("level 16 with R 2") << Ranks{{"R", 2}, {"Q", 5}, {"E", 5}, {"W", 3}} << 16ll << "R";
        QTest::newRow("level 16 with R 3") << Ranks{{"R", 3}, {"Q", 5}, {"E", 5}, {"W", 4}} << 16ll << "W";
        QTest::newRow("Q, E maxed at level 12") << Ranks{{"Q", 5}, {"E", 5}, {"W", 3}, {"R", 2}} << 12ll << "W";
        QTest::newRow("E wins the tie with W") << Ranks{{"R", 2}, {"Q", 5}, {"E", 3}, {"W", 3}} << 13ll << "E";
        QTest::newRow("Q wins the tie with E and W") << Ranks{{"Q", 1}, {"E", 1}, {"W", 1}} << 3ll << "Q";
        QTest::newRow("everything maxed") << Ranks{{"Q", 5}, {"E", 5}, {"W", 5}, {"R", 3}} << 18ll << "";
        QTest::newRow("only the ult left") << Ranks{{"Q", 5}, {"E", 5}, {"W", 5}, {"R", 2}} << 14ll << "R";
        QTest::newRow("level unknown") << Ranks{} << 0ll << "Q";
        QTest::newRow("ranks beyond the maximum count as maxed")
            << Ranks{{"Q", 7}, {"E", 6}, {"W", 5}, {"R", 4}} << 18ll << "";
        QTest::newRow("negative ranks") << Ranks{{"Q", -3}, {"E", -1}, {"W", -2}} << 2ll << "E";
    }
    void recommendedNext() {
        QFETCH(Ranks, ranks);
        QFETCH(qint64, level);
        QFETCH(QString, expected);
        QCOMPARE(SkillOrder::recommendedNext(ranks, level).value_or(QString()), expected);
    }

    // Each cell: its key, pips filled and pips in all, and whether it is the one to level next.
    void cells_data() {
        QTest::addColumn<Ranks>("ranks");
        QTest::addColumn<qint64>("level");
        QTest::addColumn<QString>("filled"); // filled/total per cell, Q W E R
        QTest::addColumn<QString>("next");

        QTest::newRow("no abilities: all empty, Q lit") << Ranks{} << 0ll << "0/5 0/5 0/5 0/3"
                                                        << "Q";
        QTest::newRow("R at 3 fills all three wide pips")
            << Ranks{{"Q", 5}, {"W", 2}, {"E", 5}, {"R", 3}} << 16ll << "5/5 2/5 5/5 3/3"
            << "W";
        QTest::newRow("a rank of 6 fills five pips and no more")
            << Ranks{{"Q", 6}, {"W", 1}, {"E", 0}, {"R", 9}} << 5ll << "5/5 1/5 0/5 3/3"
            << "W";
        QTest::newRow("negative rank fills nothing")
            << Ranks{{"Q", -2}, {"W", 0}, {"E", 0}, {"R", 0}} << 1ll << "0/5 0/5 0/5 0/3"
            << "E";
        QTest::newRow("every ability maxed: nothing lit")
            << Ranks{{"Q", 5}, {"W", 5}, {"E", 5}, {"R", 3}} << 18ll << "5/5 5/5 5/5 3/3"
            << "";
    }
    void cells() {
        QFETCH(Ranks, ranks);
        QFETCH(qint64, level);
        QFETCH(QString, filled);
        QFETCH(QString, next);
        LiveClientData::Snapshot snapshot;
        snapshot.abilities = ranks;
        snapshot.level = level;
        QStringList shown;
        QString lit;
        const auto cells = SkillStrip::cells(snapshot);
        for (const SkillStrip::Cell& cell : cells) {
            shown << QStringLiteral("%1/%2").arg(cell.filledPips).arg(cell.pips);
            QCOMPARE(cell.isUltimate, cell.key == QLatin1String("R"));
            if (cell.isNext) {
                QVERIFY2(lit.isEmpty(), "two cells lit");
                lit = cell.key;
            }
        }
        QCOMPARE(cells[0].key + cells[1].key + cells[2].key + cells[3].key, QStringLiteral("QWER"));
        QCOMPARE(shown.join(' '), filled);
        QCOMPARE(lit, next);
    }

    // The strip is painted again only when a snapshot changes what it shows.
    void viewChangesOnlyWithWhatItShows() {
        SkillOrderView view;
        LiveClientData::Snapshot snapshot;
        snapshot.level = 2;
        snapshot.abilities = {{"Q", 1}, {"W", 0}, {"E", 0}, {"R", 0}};
        QVERIFY(view.setSnapshot(snapshot)); // Q gains a pip
        QVERIFY(!view.setSnapshot(snapshot));
        snapshot.gameTimeSeconds = 95; // the clock moves; nothing on the strip does
        snapshot.championName = QStringLiteral("Ahri");
        QVERIFY(!view.setSnapshot(snapshot));
        snapshot.level = 6; // the ultimate opens: Q goes dark, R lights up
        QVERIFY(view.setSnapshot(snapshot));
        QCOMPARE(view.cells()[3].isNext, true);
        QCOMPARE(view.cells()[0].isNext, false);
    }

    // The painted strip says what its cells say: each ability's pips filled in its colour up to
    // its rank, the lit square and the glow around it tinted, nothing painted around the plate.
    void paintedStrip_data() {
        QTest::addColumn<Ranks>("ranks");
        QTest::addColumn<qint64>("level");
        QTest::addColumn<QList<int>>("filled"); // Q W E R
        QTest::addColumn<int>("lit");           // -1: none

        QTest::newRow("start of a game: Q lit") << Ranks{} << 1ll << QList<int>{0, 0, 0, 0} << 0;
        QTest::newRow("Ahri at 9: Q lit")
            << Ranks{{"Q", 4}, {"W", 1}, {"E", 3}, {"R", 1}} << 9ll << QList<int>{4, 1, 3, 1} << 0;
        QTest::newRow("the ultimate opens at 6")
            << Ranks{{"Q", 3}, {"W", 1}, {"E", 1}, {"R", 0}} << 6ll << QList<int>{3, 1, 1, 0} << 3;
        QTest::newRow("W behind: W lit") << Ranks{{"Q", 5}, {"W", 2}, {"E", 5}, {"R", 3}} << 16ll
                                         << QList<int>{5, 2, 5, 3} << 1;
        QTest::newRow("ranks beyond the pips: capped, none lit")
            << Ranks{{"Q", 7}, {"W", 5}, {"E", 6}, {"R", 4}} << 18ll << QList<int>{5, 5, 5, 3} << -1;
    }
    void paintedStrip() {
        QFETCH(Ranks, ranks);
        QFETCH(qint64, level);
        QFETCH(QList<int>, filled);
        QFETCH(int, lit);
        LiveClientData::Snapshot snapshot;
        snapshot.abilities = ranks;
        snapshot.level = level;
        SkillOrderView view;
        view.setSnapshot(snapshot);
        const QImage image = view.image().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), QSize(208, 63));
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);      // the plate's rounded corner
        QCOMPARE(qAlpha(image.pixel(104, 59)), 140); // the plate between two cells: black at 55 %

        // A grey pixel is the plate or an unlit square; a lit one leans to the ability's colour.
        const auto tinted = [&image](QPointF at) {
            const QRgb pixel = image.pixel(at.toPoint());
            return std::abs(qRed(pixel) - qBlue(pixel)) + std::abs(qGreen(pixel) - qBlue(pixel)) > 40;
        };
        for (int i = 0; i < 4; ++i) {
            const SkillStrip::Cell& cell = view.cells()[std::size_t(i)];
            const QColor accent = i == 3 ? QColor(200, 170, 110) : QColor(10, 200, 185);
            int shown = 0;
            for (int pip = 0; pip < cell.pips; ++pip) {
                const QRectF rect = SkillOrderView::pipRect(i, cell, pip);
                const QRgb middle = image.pixel(QPoint(int(rect.center().x()), int(rect.center().y())));
                if (middle == accent.rgba())
                    ++shown;
                else
                    QVERIFY2(qAlpha(middle) < 255, qPrintable(QStringLiteral("cell %1 pip %2").arg(i).arg(pip)));
            }
            QCOMPARE(shown, filled.at(i));
            QCOMPARE(cell.pips, i == 3 ? 3 : 5);

            const QRectF square = SkillOrderView::cellRect(i);
            const QString where = QStringLiteral("cell %1").arg(i);
            QVERIFY2(tinted(square.topLeft() + QPointF(5, 5)) == (i == lit), qPrintable(where + " square"));
            QVERIFY2(tinted(QPointF(square.center().x(), square.top() - 3)) == (i == lit), qPrintable(where + " glow"));
        }
    }
};

QTEST_MAIN(TestSkillOrder)
#include "tst_skill_order.moc"
