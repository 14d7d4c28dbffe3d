#include "screens/champions_model.h"
#include "support/screen_fixture.h"
#include "theme/theme.h"

#include <QAbstractItemModelTester>
#include <QTest>

using namespace ArchiveJson;

namespace {

// One game of the user on a champion.
struct Played {
    QString champion;
    bool win = true;
    int kills = 0;
    int deaths = 1;
    int assists = 0;
};
using Games = QList<Played>;

// One performance score of the user.
struct Scored {
    QString champion;
    double value = 0;
    QString kind = QStringLiteral("self");
};
using Scores = QList<Scored>;

// Champion ids derived from the name, so that scores find their champion.
qint64 championId(const QString& name) {
    return 1000 + static_cast<qint64>(qHash(name) % 100000);
}

void addGames(ScreenFixture& f, const Games& games, const QString& puuid = QStringLiteral("me")) {
    static qint64 nextId = 0;
    for (const Played& g : games) {
        const qint64 id = ++nextId;
        f.addMatch(match(id));
        QJsonObject row = participant(id * 10, id, puuid, g.champion, g.win);
        row["champion_id"] = championId(g.champion);
        row["kills"] = g.kills;
        row["deaths"] = g.deaths;
        row["assists"] = g.assists;
        f.addParticipant(row);
    }
}

void addScores(ScreenFixture& f, const Scores& scores) {
    static qint64 nextId = 0;
    for (const Scored& s : scores) {
        QJsonObject json = score(++nextId, 1, 1, s.value);
        json["champion_id"] = championId(s.champion);
        json["baseline_kind"] = s.kind;
        f.addScore(json);
    }
}

QVariant role(const QAbstractItemModel* model, int row, const char* name) {
    return model->data(model->index(row, 0), model->roleNames().key(name));
}

QStringList names(const ChampionsModel& model) {
    QStringList result;
    for (int i = 0; i < model.cards()->rowCount(); ++i)
        result << role(model.cards(), i, "name").toString();
    return result;
}

int rowOf(const ChampionsModel& model, const QString& name) {
    return static_cast<int>(names(model).indexOf(name));
}

} // namespace

Q_DECLARE_METATYPE(Played)
Q_DECLARE_METATYPE(Scored)

class TestChampionsModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void orders_data() {
        QTest::addColumn<Games>("games");
        QTest::addColumn<ChampionsModel::Sort>("sort");
        QTest::addColumn<QStringList>("order");

        const auto played = ChampionsModel::Sort::Played;
        const auto winRate = ChampionsModel::Sort::WinRate;
        const auto kda = ChampionsModel::Sort::Kda;
        // Ahri 2 of 3 (KDA 4), Lux 1 of 1 (6), Zed 1 of 2 (2), Jinx 2 of 4 (2.5).
        const Games pool{{"Jinx", true, 3},  {"Ahri", true, 9}, {"Jinx", false},   {"Zed", true, 2},
                         {"Ahri", false, 1}, {"Lux", true, 6},  {"Jinx", true, 5}, {"Ahri", true, 2},
                         {"Zed", false, 2},  {"Jinx", false, 2}};
        QTest::newRow("most played") << pool << played << QStringList{"Jinx", "Ahri", "Zed", "Lux"};
        QTest::newRow("win rate: one of one before two of three")
            << pool << winRate << QStringList{"Lux", "Ahri", "Jinx", "Zed"};
        QTest::newRow("win rate ties keep most played")
            << Games{{"Zed", true},  {"Zed", false},  {"Zed", true}, {"Zed", false},
                     {"Ahri", true}, {"Ahri", false}, {"Lux", false}}
            << winRate << QStringList{"Zed", "Ahri", "Lux"};
        QTest::newRow("kda ties keep most played") << Games{{"Zed", true, 3},  {"Zed", true, 2},  {"Zed", true, 4},
                                                            {"Ahri", true, 3}, {"Ahri", true, 3}, {"Lux", true, 5}}
                                                   << kda << QStringList{"Lux", "Zed", "Ahri"};
    }
    void orders() {
        QFETCH(Games, games);
        QFETCH(ChampionsModel::Sort, sort);
        QFETCH(QStringList, order);
        ScreenFixture f;
        addGames(f, games);
        f.save();
        ChampionsModel model;
        QAbstractItemModelTester tester(model.cards(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        QCOMPARE(model.sort(), ChampionsModel::Sort::Played);
        model.setSort(sort);
        QCOMPARE(names(model), order);
        int selected = -1;
        for (const QVariant& choice : model.sortChoices())
            if (choice.toMap().value("selected").toBool())
                selected = choice.toMap().value("value").toInt();
        QCOMPARE(selected, int(sort));
    }

    void cardTexts_data() {
        QTest::addColumn<Games>("games");
        QTest::addColumn<QString>("gamesText");
        QTest::addColumn<double>("winPercent");
        QTest::addColumn<QColor>("ringColor");
        QTest::addColumn<QString>("kdaText");
        QTest::addColumn<QString>("csText");
        QTest::addColumn<int>("wins");
        QTest::addColumn<int>("losses");

        QTest::newRow("even record is a winning ring")
            << Games{{"Ahri", true, 7, 0, 5}, {"Ahri", false, 1, 2, 1}} << "2 games" << 50.0 << Theme::win() << "6.5"
            << "6.7" << 1 << 1;
        QTest::newRow("one of three is a losing ring")
            << Games{{"Ahri", true, 3, 1, 0}, {"Ahri", false, 1, 1, 0}, {"Ahri", false, 0, 2, 0}} << "3 games"
            << 100.0 / 3 << Theme::loss() << "1.3"
            << "6.7" << 1 << 2;
    }
    void cardTexts() {
        QFETCH(Games, games);
        QFETCH(QString, gamesText);
        QFETCH(double, winPercent);
        QFETCH(QColor, ringColor);
        QFETCH(QString, kdaText);
        QFETCH(QString, csText);
        QFETCH(int, wins);
        QFETCH(int, losses);
        ScreenFixture f;
        addGames(f, games);
        f.save();
        ChampionsModel model;
        QAbstractItemModelTester tester(model.cards(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        const QAbstractItemModel* cards = model.cards();
        QCOMPARE(cards->rowCount(), 1);
        QCOMPARE(role(cards, 0, "gamesText").toString(), gamesText);
        QCOMPARE(role(cards, 0, "gamesValue").toString(), QString::number(games.size()));
        QCOMPARE(role(cards, 0, "winPercent").toDouble(), winPercent);
        QCOMPARE(role(cards, 0, "ringColor").value<QColor>(), ringColor);
        QCOMPARE(role(cards, 0, "kdaText").toString(), kdaText);
        QCOMPARE(role(cards, 0, "csText").toString(), csText);
        QCOMPARE(role(cards, 0, "wins").toInt(), wins);
        QCOMPARE(role(cards, 0, "losses").toInt(), losses);
    }

    void scores_data() {
        QTest::addColumn<Scores>("scores");
        QTest::addColumn<QString>("score"); // empty: no Score cell

        QTest::newRow("72.5 rounds up") << Scores{{"Ahri", 72.5}} << "73";
        QTest::newRow("72.4 rounds down") << Scores{{"Ahri", 72.4}} << "72";
        QTest::newRow("mean, not the last") << Scores{{"Ahri", 90}, {"Ahri", 60}, {"Ahri", 61}} << "70";
        QTest::newRow("other kinds are left out")
            << Scores{{"Ahri", 40}, {"Ahri", 99, "role"}, {"Ahri", 10, "champion"}} << "40";
        QTest::newRow("only other kinds: no score") << Scores{{"Ahri", 80, "role"}, {"Ahri", 70, "champion"}} << "";
        QTest::newRow("another champion's score") << Scores{{"Lux", 80}} << "";
    }
    void scores() {
        QFETCH(Scores, scores);
        QFETCH(QString, score);
        ScreenFixture f;
        addGames(f, {{"Ahri", true}, {"Ahri", false}, {"Lux", true}});
        addScores(f, scores);
        f.save();
        ChampionsModel model;
        QAbstractItemModelTester tester(model.cards(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        const int ahri = rowOf(model, "Ahri");
        QVERIFY(ahri >= 0);
        QCOMPARE(role(model.cards(), ahri, "hasScore").toBool(), !score.isEmpty());
        QCOMPARE(role(model.cards(), ahri, "scoreText").toString(), score);
    }

    void poolOfTheUserOnly_data() {
        QTest::addColumn<QJsonArray>("accounts");
        QTest::addColumn<QStringList>("pool");
        QTest::addColumn<QString>("label");
        QTest::newRow("no linked account") << QJsonArray{} << QStringList{} << "Champion Pool · 0";
        QTest::newRow("two accounts") << QJsonArray{riotAccount(1, "me"), riotAccount(2, "alt")}
                                      << QStringList{"Zed", "Ahri", "Lux"} << "Champion Pool · 3";
    }
    void poolOfTheUserOnly() {
        QFETCH(QJsonArray, accounts);
        QFETCH(QStringList, pool);
        QFETCH(QString, label);
        ScreenFixture f(accounts);
        addGames(f, {{"Ahri", true}, {"Ahri", true}, {"Lux", false}});
        addGames(f, {{"Zed", true}, {"Zed", true}, {"Zed", true}}, "alt");
        addGames(f, {{"Yasuo", false}}, "stranger");
        f.save();
        ChampionsModel model;
        QAbstractItemModelTester tester(model.cards(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        QCOMPARE(names(model), pool);
        QCOMPARE(model.hasChampions(), !pool.isEmpty());
        QCOMPARE(model.poolLabel(), label);
    }

    void followsTheStore() {
        ScreenFixture f;
        addGames(f, {{"Ahri", true}});
        f.save();
        ChampionsModel model;
        QAbstractItemModelTester tester(model.cards(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        model.setSort(ChampionsModel::Sort::WinRate);
        addGames(f, {{"Lux", true}, {"Lux", true}, {"Ahri", false}});
        f.save();
        QCOMPARE(names(model), (QStringList{"Lux", "Ahri"}));
        QCOMPARE(model.poolLabel(), QStringLiteral("Champion Pool · 2"));
    }
};

QTEST_GUILESS_MAIN(TestChampionsModel)
#include "tst_champions_model.moc"
