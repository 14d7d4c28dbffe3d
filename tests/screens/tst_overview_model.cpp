#include "screens/overview_model.h"
#include "support/screen_fixture.h"

#include <QAbstractItemModelTester>
#include <QTest>

using namespace ArchiveJson;

namespace {

QString pillTexts(const OverviewModel& model) {
    QStringList texts;
    for (const QVariant& pill : model.pills())
        texts << pill.toMap().value("text").toString();
    return texts.join(" | ");
}

} // namespace

class TestOverviewModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emptyArchiveMessages_data() {
        QTest::addColumn<bool>("withAccount");
        QTest::addColumn<QString>("message");
        QTest::newRow("linked, nothing synced") << true << "Syncing your history… hit Sync if nothing appears.";
        QTest::newRow("no account") << false << "Link a Riot account above to get started.";
    }
    void emptyArchiveMessages() {
        QFETCH(bool, withAccount);
        QFETCH(QString, message);
        ScreenFixture f(withAccount ? QJsonArray{riotAccount(1, "me")} : QJsonArray{});
        OverviewModel model;
        model.setAppState(f.state.get());
        QVERIFY(model.isEmpty());
        QCOMPARE(model.emptyMessage(), message);
    }

    // Results are given newest first; game ids grow with age reversed so that the first is newest.
    void streaks_data() {
        QTest::addColumn<QList<bool>>("results");
        QTest::addColumn<QString>("pills");
        QTest::addColumn<QString>("streakCard");
        QTest::newRow("W W L") << QList<bool>{true, true, false} << "▲ 2W streak | Mid Main | 3 games tracked"
                               << "Win Streak 2";
        QTest::newRow("L W") << QList<bool>{false, true} << "Mid Main | 2 games tracked"
                             << "Streak 1";
        QTest::newRow("L L L") << QList<bool>{false, false, false} << "▼ 3L streak | Mid Main | 3 games tracked"
                               << "Streak 3";
    }
    void streaks() {
        QFETCH(QList<bool>, results);
        QFETCH(QString, pills);
        QFETCH(QString, streakCard);
        ScreenFixture f;
        for (int i = 0; i < results.size(); ++i)
            f.addOwnGame(20 - i, results[i]);
        f.save();
        OverviewModel model;
        model.setAppState(f.state.get());
        QCOMPARE(pillTexts(model), pills);
        const QVariantMap card = model.statCards().at(3).toMap();
        QCOMPARE(card.value("title").toString() + " " + card.value("value").toString(), streakCard);
        QCOMPARE(model.formLabel(), QStringLiteral("Recent Form · Last %1").arg(results.size()));
        QVariantList shown;
        for (bool won : results)
            shown << won;
        QCOMPARE(model.formResults(), shown);
    }

    void fourteenGames() {
        ScreenFixture f;
        for (int i = 1; i <= 14; ++i)
            f.addOwnGame(i, i % 3 != 0);
        f.save();
        OverviewModel model;
        QAbstractItemModelTester tester(model.recentMatches(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        QCOMPARE(model.formResults().size(), 10);
        QCOMPARE(model.formLabel(), QStringLiteral("Recent Form · Last 10"));
        QCOMPARE(model.recentMatches()->rowCount(), 5);
        QCOMPARE(model.recentMatches()
                     ->data(model.recentMatches()->index(0, 0), model.recentMatches()->roleNames().key("matchServerId"))
                     .toLongLong(),
                 14);
    }

    void rankedRingFallsBackToTrackedGames() {
        ScreenFixture f;
        f.addOwnGame(1, true);
        f.addOwnGame(2, true);
        f.addOwnGame(3, false);
        f.addOwnGame(4, true);
        f.save();
        OverviewModel model;
        model.setAppState(f.state.get());
        QVERIFY(!model.hasRank());
        QCOMPARE(model.rankedRingPercent(), 75.0);

        QJsonObject solo = snapshot(1, 1, "RANKED_SOLO_5x5", "GOLD", 41);
        solo["wins"] = 30;
        solo["losses"] = 10;
        f.addSnapshot(solo);
        f.save();
        QVERIFY(model.hasRank());
        QCOMPARE(model.rankedRingPercent(), 75.0);
        QCOMPARE(model.rankLabel(), QStringLiteral("Gold II"));
        QCOMPARE(model.rankLpText(), QStringLiteral("41 LP"));
        QCOMPARE(model.rankGamesText(), QStringLiteral("40 ranked games"));
    }

    void bonusRingCountsOnlyFunModes() {
        ScreenFixture f;
        f.addOwnGame(1, true, 420); // ranked: not bonus
        f.addOwnGame(2, true, 400); // normal: not bonus
        f.addOwnGame(3, true, 450, "Lux", "ARAM");
        f.addOwnGame(4, false, 1700, "Jinx", "CHERRY");
        f.addOwnGame(5, false, 900, "Zed", "URF");
        f.addOwnGame(6, true, 2000, "Teemo", "TUTORIAL");
        f.save();
        OverviewModel model;
        model.setAppState(f.state.get());
        QCOMPARE(model.bonusRingPercent(), 50.0);

        ScreenFixture normals;
        normals.addOwnGame(1, true, 400);
        normals.save();
        OverviewModel onlyNormals;
        onlyNormals.setAppState(normals.state.get());
        QCOMPARE(onlyNormals.bonusRingPercent(), 0.0);
    }

    void formFigures() {
        ScreenFixture f;
        f.addOwnGame(1, true);
        f.addOwnGame(2, false);
        f.save();
        OverviewModel model;
        model.setAppState(f.state.get());
        // Each game of the fixture: 7/3/9 and 23456 damage.
        QCOMPARE(model.formAvgKda(), QStringLiteral("5.3"));
        QCOMPARE(model.formAvgDamage(), QStringLiteral("23k"));
        QCOMPARE(model.formWins(), QStringLiteral("1/2"));
        QCOMPARE(model.formRecord(), QStringLiteral("1W 1L"));
        QCOMPARE(model.topChampions().at(0).toMap().value("line").toString(), QStringLiteral("2 games · 5.3 KDA"));
        QCOMPARE(model.topChampions().at(0).toMap().value("winRateText").toString(), QStringLiteral("50%"));
        QCOMPARE(model.heroName(), QStringLiteral("Ada"));
        QCOMPARE(model.heroTag(), QStringLiteral("#EUW"));
    }
};

QTEST_GUILESS_MAIN(TestOverviewModel)
#include "tst_overview_model.moc"
