#include "screens/rank_model.h"
#include "support/screen_fixture.h"

#include <QTest>

using namespace ArchiveJson;

namespace {

// One stored snapshot; an empty capturedAt stores none.
struct Snap {
    QString capturedAt;
    QString tier;
    QString division;
    qint64 lp = 0;
    qint64 wins = 0;
    qint64 losses = 0;
    QString queue = RankModel::soloQueue;
    qint64 account = 1;
};
using Snaps = QList<Snap>;

QJsonObject snapshotJson(qint64 id, const Snap& s) {
    QJsonObject json = snapshot(id, s.account, s.queue, s.tier, s.lp);
    if (s.division.isEmpty())
        json.remove("division");
    else
        json["division"] = s.division;
    json["wins"] = s.wins;
    json["losses"] = s.losses;
    if (s.capturedAt.isEmpty())
        json.remove("captured_at");
    else
        json["captured_at"] = s.capturedAt;
    return json;
}

void store(ScreenFixture& f, const Snaps& snaps) {
    qint64 id = 0;
    for (const Snap& s : snaps)
        f.addSnapshot(snapshotJson(++id, s));
    f.save();
}

QList<qint64> lps(const std::vector<LpPoint>& series) {
    QList<qint64> result;
    for (const LpPoint& p : series)
        result << p.lp;
    return result;
}

QString day(int d) {
    return QStringLiteral("2025-03-%1T12:00:00Z").arg(d, 2, 10, QLatin1Char('0'));
}

} // namespace

Q_DECLARE_METATYPE(Snap)

class TestRankModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cardAndSeries_data() {
        QTest::addColumn<Snaps>("snaps");
        QTest::addColumn<QString>("label"); // empty: no current card
        QTest::addColumn<QString>("lpText");
        QTest::addColumn<QString>("record");
        QTest::addColumn<QString>("winRate"); // empty: no win rate, no ring
        QTest::addColumn<QList<qint64>>("series");
        QTest::addColumn<QStringList>("pointLabels");

        const QString solo = RankModel::soloQueue;
        QTest::newRow("no snapshots") << Snaps{} << ""
                                      << ""
                                      << ""
                                      << "" << QList<qint64>{} << QStringList{};
        QTest::newRow("one snapshot: card, no line") << Snaps{{day(1), "GOLD", "II", 45, 7, 3}} << "Gold II"
                                                     << "45 LP"
                                                     << "7W 3L"
                                                     << "70% WR" << QList<qint64>{1445} << QStringList{"Gold II"};
        QTest::newRow("two thirds round up") << Snaps{{day(1), "SILVER", "IV", 0, 2, 1}} << "Silver IV"
                                             << "0 LP"
                                             << "2W 1L"
                                             << "67% WR" << QList<qint64>{800} << QStringList{"Silver IV"};
        QTest::newRow("23 of 40 is just under a half") << Snaps{{day(1), "GOLD", "I", 0, 23, 17}} << "Gold I"
                                                       << "0 LP"
                                                       << "23W 17L"
                                                       << "57% WR" << QList<qint64>{1500} << QStringList{"Gold I"};
        QTest::newRow("no games: no win rate") << Snaps{{day(1), "IRON", "IV", 0, 0, 0}} << "Iron IV"
                                               << "0 LP"
                                               << "0W 0L"
                                               << "" << QList<qint64>{0} << QStringList{"Iron IV"};
        QTest::newRow("newest of unknown tier is carded but not charted")
            << Snaps{{day(1), "GOLD", "V", 10, 1, 0},
                     {day(2), "SILVER", "I", 50, 1, 1},
                     {day(3), "UNRANKED", "", 0, 1, 2}}
            << "Unranked"
            << "0 LP"
            << "1W 2L"
            << "33% WR" << QList<qint64>{1210, 1150} << QStringList{"Gold V", "Silver I"};
        QTest::newRow("undated snapshot: oldest, not a point")
            << Snaps{{day(5), "GOLD", "I", 10, 5, 5}, {"", "DIAMOND", "I", 99, 9, 9}} << "Gold I"
            << "10 LP"
            << "5W 5L"
            << "50% WR" << QList<qint64>{1510} << QStringList{"Gold I"};
        QTest::newRow("two accounts in one line")
            << Snaps{{day(1), "GOLD", "IV", 0, 1, 1, solo, 1},
                     {day(2), "EMERALD", "IV", 0, 1, 1, solo, 2},
                     {day(3), "GOLD", "III", 0, 1, 1, solo, 1}}
            << "Gold III"
            << "0 LP"
            << "1W 1L"
            << "50% WR" << QList<qint64>{1200, 2000, 1300} << QStringList{"Gold IV", "Emerald IV", "Gold III"};
    }
    void cardAndSeries() {
        QFETCH(Snaps, snaps);
        QFETCH(QString, label);
        QFETCH(QString, lpText);
        QFETCH(QString, record);
        QFETCH(QString, winRate);
        QFETCH(QList<qint64>, series);
        QFETCH(QStringList, pointLabels);

        ScreenFixture f({riotAccount(1, "me"), riotAccount(2, "alt")});
        store(f, snaps);
        RankModel model;
        model.setAppState(f.state.get());

        QCOMPARE(model.hasCurrent(), !label.isEmpty());
        QCOMPARE(model.currentLabel(), label);
        QCOMPARE(model.lpText(), lpText);
        QCOMPARE(model.recordText(), record);
        QCOMPARE(model.hasWinRate(), !winRate.isEmpty());
        QCOMPARE(model.winRateText(), winRate);
        QCOMPARE(lps(model.series()), series);
        QStringList labels;
        for (const LpPoint& p : model.series())
            labels << p.label;
        QCOMPARE(labels, pointLabels);
        QCOMPARE(model.hasChart(), series.size() > 1);
        QCOMPARE(model.chartPoints().size(), series.size() > 1 ? series.size() : 0);
    }

    void queueStartsAtSoloAndFollowsThePicker() {
        ScreenFixture f;
        store(f, {{day(1), "GOLD", "IV", 5, 1, 0}, {day(2), "BRONZE", "I", 6, 2, 0, RankModel::flexQueue}});
        RankModel model;
        model.setAppState(f.state.get());
        QCOMPARE(model.queue(), RankModel::Queue::Solo);
        QCOMPARE(model.currentLabel(), QStringLiteral("Gold IV"));
        const auto selected = [&] {
            QStringList shown;
            for (const QVariant& choice : model.queueChoices())
                if (choice.toMap().value("selected").toBool())
                    shown << choice.toMap().value("label").toString();
            return shown;
        };
        QCOMPARE(selected(), QStringList{"Solo/Duo"});
        model.setQueue(static_cast<RankModel::Queue>(model.queueChoices().at(1).toMap().value("value").toInt()));
        QCOMPARE(model.queue(), RankModel::Queue::Flex);
        QCOMPARE(selected(), QStringList{"Flex"});
        QCOMPARE(model.currentLabel(), QStringLiteral("Bronze I"));
    }

    // Points sit at their dates, not at even steps, and higher standings are drawn higher.
    void pointsArePlacedByDateAndStanding() {
        ScreenFixture f;
        store(f, {{day(1), "GOLD", "IV", 0, 0, 0}, {day(2), "GOLD", "III", 0, 0, 0}, {day(5), "SILVER", "I", 0, 0, 0}});
        RankModel model;
        model.setAppState(f.state.get());
        const QVariantList points = model.chartPoints();
        QCOMPARE(points.size(), 3);
        const auto at = [&](int i) { return points.at(i).toPointF(); };
        QCOMPARE(at(0).x(), 0.0);
        QCOMPARE(at(1).x(), 0.25);
        QCOMPARE(at(2).x(), 1.0);
        QVERIFY(at(1).y() < at(0).y());
        QVERIFY(at(2).y() > at(0).y());
        for (int i = 0; i < 3; ++i)
            QVERIFY(at(i).y() >= 0 && at(i).y() <= 1);
        QVERIFY(model.pointCaption(1).startsWith(QStringLiteral("Gold III · ")));
        QVERIFY(model.pointCaption(3).isEmpty());
        // The line runs through every point.
        const QVariantList line = model.chartLine();
        for (int i = 0; i < 3; ++i) {
            const QPointF point = at(i);
            QVERIFY(std::any_of(line.begin(), line.end(),
                                [&](const QVariant& v) { return (v.toPointF() - point).manhattanLength() < 1e-9; }));
        }
    }

    void dateMarksFitTheSpan_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("three days") << "2025-03-01T12:00:00Z"
                                    << "2025-03-04T12:00:00Z";
        QTest::newRow("six weeks") << "2025-03-01T12:00:00Z"
                                   << "2025-04-12T12:00:00Z";
        QTest::newRow("three years") << "2022-05-01T12:00:00Z"
                                     << "2025-04-01T12:00:00Z";
    }
    void dateMarksFitTheSpan() {
        QFETCH(QString, from);
        QFETCH(QString, to);
        ScreenFixture f;
        store(f, {{from, "GOLD", "IV", 0, 0, 0}, {to, "GOLD", "I", 0, 0, 0}});
        RankModel model;
        model.setAppState(f.state.get());
        const QVariantList marks = model.xTicks();
        QVERIFY2(marks.size() >= 1 && marks.size() <= 6, qPrintable(QString::number(marks.size())));
        double previous = -1;
        for (const QVariant& mark : marks) {
            const double x = mark.toMap().value("x").toDouble();
            QVERIFY(x >= 0 && x <= 1);
            QVERIFY(x > previous);
            previous = x;
            QVERIFY(!mark.toMap().value("text").toString().isEmpty());
        }
    }

    void smoothLineStaysBetweenItsPoints_data() {
        QTest::addColumn<QList<QPointF>>("points");
        QTest::newRow("sharp peak") << QList<QPointF>{{0, 1}, {0.1, 0}, {0.2, 1}, {1, 1}};
        QTest::newRow("climb with a plateau")
            << QList<QPointF>{{0, 0.9}, {0.3, 0.5}, {0.35, 0.5}, {0.6, 0.1}, {1, 0.2}};
    }
    void smoothLineStaysBetweenItsPoints() {
        QFETCH(QList<QPointF>, points);
        const std::vector<QPointF> input(points.begin(), points.end());
        const std::vector<QPointF> line = RankModel::smoothLine(input, 10);
        QCOMPARE(line.front(), input.front());
        QCOMPARE(line.back(), input.back());
        for (const QPointF& p : line) {
            // The segment the sample belongs to.
            std::size_t k = 0;
            while (k + 2 < input.size() && p.x() > input[k + 1].x())
                ++k;
            const double low = std::min(input[k].y(), input[k + 1].y());
            const double high = std::max(input[k].y(), input[k + 1].y());
            QVERIFY2(p.y() >= low - 1e-9 && p.y() <= high + 1e-9,
                     qPrintable(QStringLiteral("(%1, %2) leaves [%3, %4]").arg(p.x()).arg(p.y()).arg(low).arg(high)));
        }
        for (std::size_t i = 1; i < line.size(); ++i)
            QVERIFY(line[i].x() >= line[i - 1].x());
    }

    // A plot of 1000 × 200 px; the points' hover squares reach 7 px each way.
    void pointUnderThePointer_data() {
        QTest::addColumn<QPointF>("pointer");
        QTest::addColumn<int>("expected");
        QTest::newRow("on a point") << QPointF(100, 100) << 1;
        QTest::newRow("at the reach's corner") << QPointF(107, 93) << 1;
        QTest::newRow("just beyond it") << QPointF(107.5, 100) << -1;
        QTest::newRow("right x, wrong height") << QPointF(100, 120) << -1;
        QTest::newRow("between far points") << QPointF(50, 100) << -1;
        QTest::newRow("two within reach: the later, drawn on top") << QPointF(503, 40) << 3;
        QTest::newRow("the first point, on the left edge") << QPointF(-5, 200) << 0;
        QTest::newRow("the last point, on the right edge") << QPointF(1006, 0) << 4;
    }
    void pointUnderThePointer() {
        QFETCH(QPointF, pointer);
        QFETCH(int, expected);
        const std::vector<QPointF> points{{0, 1}, {0.1, 0.5}, {0.5, 0.2}, {0.504, 0.2}, {1, 0}};
        QCOMPARE(RankModel::pointAt(points, pointer, QSizeF(1000, 200), 7), expected);
        QCOMPARE(RankModel::pointAt({}, pointer, QSizeF(1000, 200), 7), -1);
        QCOMPARE(RankModel::pointAt(points, pointer, QSizeF(0, 0), 7), -1);
    }

    void lpTicksCoverTheRangeEvenly_data() {
        QTest::addColumn<qint64>("low");
        QTest::addColumn<qint64>("high");
        QTest::newRow("one value") << qint64(1445) << qint64(1445);
        QTest::newRow("odd bounds") << qint64(1193) << qint64(1287);
    }
    void lpTicksCoverTheRangeEvenly() {
        QFETCH(qint64, low);
        QFETCH(qint64, high);
        const std::vector<qint64> ticks = RankModel::lpTicks(low, high, 4);
        QVERIFY(ticks.size() >= 2 && ticks.size() <= 7);
        QVERIFY(ticks.front() <= low);
        QVERIFY(ticks.back() >= high);
        const qint64 step = ticks[1] - ticks[0];
        QVERIFY(step > 0);
        for (std::size_t i = 1; i < ticks.size(); ++i)
            QCOMPARE(ticks[i] - ticks[i - 1], step);
    }
};

QTEST_GUILESS_MAIN(TestRankModel)
#include "tst_rank_model.moc"
