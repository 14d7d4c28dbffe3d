#include "screens/gold_chart.h"
#include "screens/timeline_model.h"
#include "screens/timeline_texts.h"
#include "screens/timeline_view_state.h"
#include "stalling_backend.h"
#include "support/screen_fixture.h"
#include "theme/theme.h"

#include <QAbstractItemModelTester>
#include <QTest>
#include <cmath>
#include <limits>

using namespace ArchiveJson;

namespace {

using Event = TimelineSummaryDto::Event;

Event makeEvent(const QString& kind, bool mine, std::optional<QString> monster = std::nullopt,
                std::optional<QString> subtype = std::nullopt, std::optional<QString> building = std::nullopt,
                std::optional<QString> lane = std::nullopt) {
    Event e;
    e.kind = kind;
    e.mine = mine;
    e.monster = std::move(monster);
    e.subtype = std::move(subtype);
    e.building = std::move(building);
    e.lane = std::move(lane);
    return e;
}

TimelineSummaryDto::Frame frame(qint64 minute, qint64 goldDiff) {
    TimelineSummaryDto::Frame f;
    f.t = minute;
    f.goldDiff = goldDiff;
    return f;
}

QJsonObject pair(int mine, int enemy) {
    return {{"mine", mine}, {"enemy", enemy}};
}

// A timeline answer as the backend writes it (camelCase members).
QJsonObject summaryJson(int frames, const QJsonArray& events) {
    QJsonArray list;
    for (int t = 0; t < frames; ++t)
        list.append(QJsonObject{{"t", t},
                                {"ownerTeamGold", 2500 + 1000 * t},
                                {"enemyTeamGold", 2500 + 950 * t},
                                {"goldDiff", 50 * t},
                                {"ownerGold", 500 + 400 * t},
                                {"ownerCs", 8 * t},
                                {"ownerXp", 300 * t},
                                {"ownerLevel", 1 + t / 2}});
    return {{"ownerChampion", "Ahri"},
            {"ownerTeam", 100},
            {"frames", list},
            {"events", events},
            {"stats", QJsonObject{{"ownerCsAt10", 81},
                                  {"goldDiffAt10", 0},
                                  {"goldDiffAt14", -1},
                                  {"maxGoldLead", 1260},
                                  {"maxGoldDeficit", -800},
                                  {"objectives", QJsonObject{{"dragons", pair(3, 1)},
                                                             {"barons", pair(1, 0)},
                                                             {"heralds", pair(0, 1)},
                                                             {"towers", pair(8, 4)}}}}}};
}

QString figureValue(const TimelineModel& model, int index) {
    return model.figures().at(index).toMap().value("value").toString();
}

QColor figureColor(const TimelineModel& model, int index) {
    return model.figures().at(index).toMap().value("color").value<QColor>();
}

} // namespace

Q_DECLARE_METATYPE(TimelineSummaryDto::Event)

class TestTimelineModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void goldFigures_data() {
        QTest::addColumn<qint64>("gold");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ahead"); // drawn in the win colour
        QTest::newRow("level") << qint64(0) << "+0.0k" << true;
        QTest::newRow("one coin behind") << qint64(-1) << "-0.0k" << false;
        QTest::newRow("rounds up") << qint64(1260) << "+1.3k" << true;
        QTest::newRow("behind") << qint64(-800) << "-0.8k" << false;
        QTest::newRow("large") << qint64(12049) << "+12.0k" << true;
    }
    void goldFigures() {
        QFETCH(qint64, gold);
        QFETCH(QString, text);
        QFETCH(bool, ahead);
        QCOMPARE(TimelineTexts::goldThousands(gold), text);
        const auto figure = TimelineViewState::goldDifference(QStringLiteral("Gold @10"), gold);
        QCOMPARE(figure.value, text);
        QCOMPARE(figure.color, ahead ? Theme::win() : Theme::loss());
    }

    void absentFiguresReadADash() {
        for (const auto& figure : {TimelineViewState::creepScore("CS @14", std::nullopt),
                                   TimelineViewState::goldDifference("Gold @14", std::nullopt),
                                   TimelineViewState::goldInColor("Peak lead", std::nullopt, Theme::win())}) {
            QCOMPARE(figure.value, QStringLiteral("–"));
            QCOMPARE(figure.color, Theme::textSecondary());
        }
        QCOMPARE(TimelineViewState::creepScore("CS @10", 81).color, Theme::gold());
    }

    void clock_data() {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("start") << qint64(0) << "0:00";
        QTest::newRow("65 s") << qint64(65) << "1:05";
        QTest::newRow("599 s") << qint64(599) << "9:59";
        QTest::newRow("600 s") << qint64(600) << "10:00";
        QTest::newRow("an hour") << qint64(3725) << "62:05";
        QTest::newRow("before the start") << qint64(-5) << "-1:55";
    }
    void clock() {
        QFETCH(qint64, seconds);
        QFETCH(QString, text);
        QCOMPARE(TimelineTexts::clock(seconds), text);
    }

    void eventLabelsAndSymbols_data() {
        QTest::addColumn<Event>("event");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("symbol");
        Event kill = makeEvent("kill", true);
        QTest::newRow("kill without names") << kill << "? killed ?"
                                            << "scope";
        kill.killer = QStringLiteral("Ahri");
        kill.victim = QStringLiteral("Zed");
        QTest::newRow("kill") << kill << "Ahri killed Zed"
                              << "scope";
        QTest::newRow("hextech dragon, ours")
            << makeEvent("monster", true, "DRAGON", "HEXTECH_DRAGON") << "Hextech Dragon — your team"
            << "flame.fill";
        QTest::newRow("dragon without type, theirs") << makeEvent("monster", false, "DRAGON") << "Dragon — enemy"
                                                     << "flame.fill";
        QTest::newRow("two-word dragon type")
            << makeEvent("monster", false, "DRAGON", "CHEMTECH_BLIGHT_DRAGON") << "Chemtech Blight Dragon — enemy"
            << "flame.fill";
        QTest::newRow("baron") << makeEvent("monster", true, "BARON_NASHOR") << "Baron Nashor — your team"
                               << "ant.fill";
        QTest::newRow("herald") << makeEvent("monster", false, "RIFTHERALD") << "Rift Herald — enemy"
                                << "eye.fill";
        QTest::newRow("another monster") << makeEvent("monster", true, "HORDE") << "Objective — your team"
                                         << "shield.fill";
        QTest::newRow("no monster named") << makeEvent("monster", false) << "Objective — enemy"
                                          << "shield.fill";
        QTest::newRow("bot inhibitor, ours")
            << makeEvent("building", true, std::nullopt, std::nullopt, "INHIBITOR_BUILDING", "BOT_LANE")
            << "Inhibitor (Bot) — your team"
            << "building.2.fill";
        QTest::newRow("tower of an unknown lane")
            << makeEvent("building", false, std::nullopt, std::nullopt, "TOWER_BUILDING", "JUNGLE") << "Tower — enemy"
            << "building.2.fill";
        QTest::newRow("mid tower") << makeEvent("building", false, std::nullopt, std::nullopt, "TOWER_BUILDING",
                                                "MID_LANE")
                                   << "Tower (Mid) — enemy"
                                   << "building.2.fill";
        QTest::newRow("building without type")
            << makeEvent("building", true, std::nullopt, std::nullopt, std::nullopt, "TOP_LANE")
            << "Tower (Top) — your team"
            << "building.2.fill";
        QTest::newRow("unknown kind") << makeEvent("ward", true) << ""
                                      << "circle.fill";
    }
    void eventLabelsAndSymbols() {
        QFETCH(Event, event);
        QFETCH(QString, label);
        QFETCH(QString, symbol);
        QCOMPARE(TimelineTexts::eventLabel(event), label);
        QCOMPARE(TimelineTexts::eventSymbol(event), symbol);
    }

    void firstBloodLine() {
        TimelineSummaryDto::FirstBlood ours{185, true, QStringLiteral("Ahri"), QStringLiteral("Zed")};
        QCOMPARE(TimelineTexts::firstBlood(ours), QStringLiteral("First blood for your team at 3:05 — Ahri → Zed"));
        TimelineSummaryDto::FirstBlood theirs{60, false, std::nullopt, std::nullopt};
        QCOMPARE(TimelineTexts::firstBlood(theirs), QStringLiteral("First blood against you at 1:00 — ? → ?"));

        TimelineSummaryDto summary;
        QVERIFY(!TimelineViewState::of(summary).firstBlood);
        summary.stats.firstBlood = theirs;
        const TimelineViewState state = TimelineViewState::of(summary);
        QVERIFY(state.firstBlood && !state.firstBloodMine);
    }

    void eventsKeepTheirOrder() {
        TimelineSummaryDto summary;
        summary.events = {makeEvent("building", false), makeEvent("kill", true), makeEvent("ward", false)};
        summary.events[0].t = 900;
        summary.events[1].t = 65;
        const TimelineViewState state = TimelineViewState::of(summary);
        QCOMPARE(state.events.size(), std::size_t(3));
        QCOMPARE(state.events[0].time, QStringLiteral("15:00"));
        QCOMPARE(state.events[1].time, QStringLiteral("1:05"));
        QCOMPARE(state.events[2].label, QString());
        QCOMPARE(state.objectives.size(), std::size_t(2));
        QCOMPARE(state.objectives[0].label, QStringLiteral("Dragons"));
        QCOMPARE(state.objectives[1].label, QStringLiteral("Towers"));
    }

    // The chart's geometry: minutes across, the zero rule inside, marks in "15m" and "+1.3k".
    void goldChartLayout() {
        QVERIFY(GoldChart::of({}).isEmpty());
        QVERIFY(GoldChart::of({frame(0, 0)}).isEmpty());

        QList<TimelineSummaryDto::Frame> frames;
        for (qint64 minute = 0; minute <= 30; ++minute)
            frames.append(frame(minute, minute < 10 ? -200 * minute : 300 * (minute - 10) - 2000));
        const GoldChart chart = GoldChart::of(frames);
        QCOMPARE(chart.line.size(), std::size_t(31));
        QCOMPARE(chart.line.front().x(), 0.0);
        QCOMPARE(chart.line.back().x(), 1.0);
        QCOMPARE(chart.line[15].x(), 0.5);
        QVERIFY(chart.zeroY > 0 && chart.zeroY < 1);
        // The highest lead sits highest: y grows downwards.
        QVERIFY(chart.line.back().y() < chart.zeroY);
        QVERIFY(chart.line[9].y() > chart.zeroY);

        QStringList minutes;
        for (const GoldChart::Tick& tick : chart.xTicks)
            minutes << tick.text;
        QCOMPARE(minutes, (QStringList{"0m", "5m", "10m", "15m", "20m", "25m", "30m"}));
        QCOMPARE(chart.xTicks[3].at, 0.5);

        QStringList amounts;
        for (const GoldChart::Tick& tick : chart.yTicks)
            amounts << tick.text;
        QVERIFY2(amounts.contains("+0.0k") && amounts.first().startsWith('-') && amounts.last().startsWith('+'),
                 qPrintable(amounts.join(' ')));
        QCOMPARE(chart.yTicks.front().at, 1.0);
        QCOMPARE(chart.yTicks.back().at, 0.0);
    }

    void levelGameStillHasARange() {
        const GoldChart chart = GoldChart::of({frame(0, 0), frame(1, 0), frame(2, 0)});
        QCOMPARE(chart.line[1].y(), chart.zeroY);
        QVERIFY(chart.yTicks.size() >= 3);
        QVERIFY(chart.zeroY > 0.2 && chart.zeroY < 0.8);
    }

    void brokenFramesDoNotBreakTheChart() {
        const qint64 huge = std::numeric_limits<qint64>::max();
        const GoldChart chart =
            GoldChart::of({frame(-huge, std::numeric_limits<qint64>::min()), frame(huge, huge), frame(5, 0)});
        QCOMPARE(chart.line.size(), std::size_t(3));
        QVERIFY(chart.xTicks.empty());
        for (const QPointF& point : chart.line)
            QVERIFY(std::isfinite(point.y()) && point.y() >= 0 && point.y() <= 1);
    }

    // The whole screen over the fake backend: the header from the archive, the summary fetched
    // for the stored Riot match id.
    void loadsTheStoredGamesTimeline() {
        ScreenFixture f;
        f.addOwnGame(5, true, 420, "Lux");
        f.save();
        QJsonArray events{QJsonObject{{"kind", "kill"}, {"t", 65}, {"team", 100}, {"mine", true}},
                          QJsonObject{{"kind", "ward"}, {"t", 70}, {"team", 200}, {"mine", false}}};
        f.backend.on("GET", "/api/matches/EUW1_7000000005/timeline", FakeResponse::json(summaryJson(31, events)));

        TimelineModel model;
        QAbstractItemModelTester tester(model.events(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        model.setMatchServerId(5);
        QCOMPARE(model.championName(), QStringLiteral("Lux"));
        QCOMPARE(model.subtitle(), QStringLiteral("Ranked Solo/Duo · 29m"));
        QVERIFY(!model.busy() && !model.hasSummary());

        model.load();
        QVERIFY(model.busy());
        QTRY_VERIFY(!model.busy());
        QVERIFY2(!model.hasError(), qPrintable(model.errorText()));
        QVERIFY(model.hasSummary() && model.hasChart());
        QCOMPARE(figureValue(model, 0), QStringLiteral("81"));
        QCOMPARE(figureValue(model, 1), QStringLiteral("–"));
        QCOMPARE(figureValue(model, 2), QStringLiteral("+0.0k"));
        QCOMPARE(figureColor(model, 2), Theme::win());
        QCOMPARE(figureValue(model, 3), QStringLiteral("-0.0k"));
        QCOMPARE(figureColor(model, 3), Theme::loss());
        QCOMPARE(figureValue(model, 4), QStringLiteral("+1.3k"));
        QCOMPARE(figureValue(model, 5), QStringLiteral("-0.8k"));
        QCOMPARE(figureColor(model, 5), Theme::loss());
        QCOMPARE(model.objectives().at(1).toMap().value("mine").toString(), QStringLiteral("8"));
        QVERIFY(!model.hasFirstBlood());
        QCOMPARE(model.events()->rowCount(), 2);
        const QModelIndex ward = model.events()->index(1, 0);
        QCOMPARE(ward.data(TimelineEventListModel::SymbolRole).toString(), QStringLiteral("circle.fill"));
        QCOMPARE(ward.data(TimelineEventListModel::TimeTextRole).toString(), QStringLiteral("1:10"));
        QCOMPARE(ward.data(TimelineEventListModel::LabelRole).toString(), QString());
    }

    void failuresShowTheirText_data() {
        QTest::addColumn<FakeResponse>("answer");
        QTest::addColumn<QString>("text");
        QTest::newRow("no timeline") << FakeResponse::text(404, "This game has no timeline on this server.")
                                     << "Server error 404. This game has no timeline on this server.";
        QTest::newRow("not a timeline") << FakeResponse::json({{"frames", QJsonArray{}}})
                                        << "Couldn't read the server response. ";
    }
    void failuresShowTheirText() {
        QFETCH(FakeResponse, answer);
        QFETCH(QString, text);
        ScreenFixture f;
        f.addOwnGame(5, true);
        f.save();
        f.backend.on("GET", "/api/matches/EUW1_7000000005/timeline", answer);
        TimelineModel model;
        model.setAppState(f.state.get());
        model.setMatchServerId(5);
        model.load();
        QTRY_VERIFY(!model.busy());
        QVERIFY(model.hasError() && !model.hasSummary());
        QVERIFY2(model.errorText().startsWith(text), qPrintable(model.errorText()));
        QCOMPARE(model.events()->rowCount(), 0);
    }

    void oneFrameAndNoEventsShowTheirTexts() {
        ScreenFixture f;
        f.addOwnGame(5, true);
        f.save();
        f.backend.on("GET", "/api/matches/EUW1_7000000005/timeline", FakeResponse::json(summaryJson(1, {})));
        TimelineModel model;
        model.setAppState(f.state.get());
        model.setMatchServerId(5);
        model.load();
        QTRY_VERIFY(!model.busy());
        QVERIFY(model.hasSummary() && !model.hasChart() && !model.hasEvents());
        QVERIFY(model.chartLine().isEmpty());
    }

    void gameMissingFromTheArchive() {
        ScreenFixture f;
        TimelineModel model;
        model.setAppState(f.state.get());
        model.setMatchServerId(404);
        model.load();
        QVERIFY(!model.busy());
        QCOMPARE(model.errorText(), TimelineModel::unavailableText);
        for (const RecordedRequest& request : f.backend.requests())
            QVERIFY2(!request.path.contains("timeline"), qPrintable(request.path));
    }

    // Closing the sheet drops its model: the request still waiting is aborted and its task ends.
    void closingEndsTheFetch() {
        StalledSession session("/timeline");
        auto model = std::make_unique<TimelineModel>();
        model->setAppState(session.state.get());
        model->setMatchServerId(5);
        model->load();
        QTRY_COMPARE(session.backend.stalled(), 1);
        QVERIFY(session.state->hasRunningTasks());
        model.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!session.state->hasRunningTasks(), 5000);
    }
};

QTEST_MAIN(TestTimelineModel)
#include "tst_timeline_model.moc"
