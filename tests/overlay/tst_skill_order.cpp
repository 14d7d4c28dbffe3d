#include "overlay/skill_order.h"
#include "overlay/skill_strip.h"
#include "overlay/skill_strip_model.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

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

    // The model tells QML only of the cells that changed, with the strip's colours.
    void modelChangesOnlyWhatMoved() {
        SkillStripModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        LiveClientData::Snapshot snapshot;
        snapshot.level = 2;
        snapshot.abilities = {{"Q", 1}, {"W", 0}, {"E", 0}, {"R", 0}};
        model.setSnapshot(snapshot);
        QCOMPARE(changed.size(), 1); // Q gains a pip; it was already the one lit
        QCOMPARE(changed.at(0).at(0).value<QModelIndex>().row(), 0);

        changed.clear();
        model.setSnapshot(snapshot);
        QCOMPARE(changed.size(), 0);

        snapshot.level = 6; // the ultimate opens: Q goes dark, R lights up
        model.setSnapshot(snapshot);
        QCOMPARE(changed.size(), 2);
        const QModelIndex r = model.index(3);
        QCOMPARE(r.data(SkillStripModel::IsNextRole).toBool(), true);
        QCOMPARE(r.data(SkillStripModel::AccentRole).value<QColor>(), QColor(200, 170, 110));
        QCOMPARE(r.data(SkillStripModel::PipCountRole).toInt(), 3);
        QCOMPARE(model.index(0).data(SkillStripModel::AccentRole).value<QColor>(), QColor(10, 200, 185));
        QCOMPARE(model.index(0).data(SkillStripModel::FilledPipsRole).toInt(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSkillOrder)
#include "tst_skill_order.moc"
