#include "screens/history_model.h"
#include "screens/match_texts.h"
#include "screens/relative_time.h"
#include "support/screen_fixture.h"

#include <QAbstractItemModelTester>
#include <QTest>
#include <QTimeZone>

using namespace ArchiveJson;

namespace {

QStringList chipLabels(const HistoryModel& model) {
    QStringList labels;
    for (const QVariant& chip : model.chips())
        labels << chip.toMap().value("label").toString();
    return labels;
}

QVariant role(const QAbstractItemModel* model, int row, const char* name) {
    return model->data(model->index(row, 0), model->roleNames().key(name));
}

LocalParticipant row(const QJsonObject& json) {
    return LocalParticipant(ParticipantDto::decode(JsonReader(json)));
}

} // namespace

class TestHistoryModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chipsComeFromTheUnfilteredList() {
        ScreenFixture f;
        f.addOwnGame(1, true, 420);
        f.addOwnGame(2, false, 450, "Lux", "ARAM");
        f.addOwnGame(3, true, 1700, "Jinx", "CHERRY");
        f.addOwnGame(4, false, 420);
        f.save();
        HistoryModel model;
        QAbstractItemModelTester tester(model.rows(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        QCOMPARE(chipLabels(model), (QStringList{"All", "Ranked", "ARAM", "Arena"}));
        QCOMPARE(model.gamesText(), QStringLiteral("4 games"));
        QCOMPARE(model.recordText(), QStringLiteral("2W 2L"));

        model.setFilter(HistoryModel::Filter::Ranked);
        QCOMPARE(chipLabels(model), (QStringList{"All", "Ranked", "ARAM", "Arena"}));
        QCOMPARE(model.rows()->rowCount(), 2);
        QCOMPARE(model.gamesText(), QStringLiteral("2 games"));
        QCOMPARE(model.recordText(), QStringLiteral("1W 1L"));
        QCOMPARE(model.winPercent(), 50.0);
        QVERIFY(model.chips().at(1).toMap().value("selected").toBool());

        model.setFilter(HistoryModel::Filter::Mayhem); // nothing of that kind: the list empties, the chips stay
        QVERIFY(!model.hasGames());
        QCOMPARE(chipLabels(model).size(), 4);
    }

    void newestFirstAndOnlyTheUsersGames() {
        ScreenFixture f;
        f.addOwnGame(1, true);
        f.addOwnGame(5, false);
        f.addMatch(match(9)); // a game of other players only
        f.addParticipant(participant(900, 9, "someone-else"));
        f.addMatch(match(10)); // a game without any stored row
        f.save();
        HistoryModel model;
        model.setAppState(f.state.get());
        QCOMPARE(model.rows()->rowCount(), 2);
        QCOMPARE(role(model.rows(), 0, "matchServerId").toLongLong(), 5);
        QCOMPARE(role(model.rows(), 1, "matchServerId").toLongLong(), 1);
    }

    void noLinkedAccountMeansNoMatches() {
        ScreenFixture f(QJsonArray{});
        f.addOwnGame(1, true);
        f.save();
        HistoryModel model;
        model.setAppState(f.state.get());
        QVERIFY(!model.hasGames());
        QCOMPARE(chipLabels(model), QStringList{"All"});
    }

    void rowTexts() {
        QJsonObject json = participant(1, 1, "me");
        json["kills"] = 7;
        json["deaths"] = 0; // a deathless game counts one death
        json["assists"] = 5;
        QCOMPARE(MatchTexts::kdaRatio(row(json)), QStringLiteral("12.00 KDA"));
        json["total_cs"] = 187;
        json["cs_per_min"] = 6.44;
        json["damage_to_champions"] = 23999;
        QCOMPARE(MatchTexts::creepScore(row(json)), QStringLiteral("CS 187 (6.4)"));
        json.remove("cs_per_min");
        QCOMPARE(MatchTexts::creepScore(row(json)), QStringLiteral("CS 187 (0.0)"));
        QCOMPARE(MatchTexts::damage(23999), QStringLiteral("23k dmg"));
        QCOMPARE(MatchTexts::thousands(12345), QStringLiteral("12k"));
        QCOMPARE(MatchTexts::thousands(999), QStringLiteral("0k"));

        LocalMatch m(MatchDto::decode(JsonReader(match(1))));
        m.gameDuration = 59;
        m.gameCreation.reset();
        QCOMPARE(MatchTexts::timeText(m, QDateTime::currentDateTimeUtc()), QStringLiteral("0m"));
        m.gameDuration = 1799;
        const QDateTime now(QDate(2026, 6, 15), QTime(12, 0), QTimeZone::utc());
        m.gameCreation = now.addSecs(-2 * 3600 - 30);
        QCOMPARE(MatchTexts::timeText(m, now, "en_US"), QStringLiteral("29m · 2 hours ago"));
    }

    void relativePhrases_data() {
        QTest::addColumn<qint64>("secondsAgo");
        QTest::addColumn<QString>("phrase");
        QTest::newRow("one day") << qint64(26 * 3600) << "yesterday";
        QTest::newRow("minutes") << qint64(5 * 60) << "5 minutes ago";
    }
    void relativePhrases() {
        QFETCH(qint64, secondsAgo);
        QFETCH(QString, phrase);
        const QDateTime now(QDate(2026, 6, 15), QTime(12, 0), QTimeZone::utc());
        QCOMPARE(RelativeTime::phrase(now.addSecs(-secondsAgo), now, "en_US"), phrase);
    }

    void friendTagsShowThreeOfFour() {
        ScreenFixture f;
        f.backend.on("GET", "/api/stats/duos",
                     FakeResponse::json({{"duos", QJsonArray{QJsonObject{{"puuid", "f1"},
                                                                         {"riot_id", "Ann#1"},
                                                                         {"games", 3},
                                                                         {"wins", 1},
                                                                         {"losses", 2},
                                                                         {"winrate", 0.3}},
                                                             QJsonObject{{"puuid", "f2"},
                                                                         {"riot_id", "Bob#1"},
                                                                         {"games", 3},
                                                                         {"wins", 1},
                                                                         {"losses", 2},
                                                                         {"winrate", 0.3}},
                                                             QJsonObject{{"puuid", "f3"},
                                                                         {"riot_id", "Cid#1"},
                                                                         {"games", 3},
                                                                         {"wins", 1},
                                                                         {"losses", 2},
                                                                         {"winrate", 0.3}},
                                                             QJsonObject{{"puuid", "f4"},
                                                                         {"riot_id", "Dee#1"},
                                                                         {"games", 3},
                                                                         {"wins", 1},
                                                                         {"losses", 2},
                                                                         {"winrate", 0.3}}}}}));
        runTask(f.state->loadDuos());
        f.addOwnGame(1, true);
        for (auto [id, name] :
             std::initializer_list<std::pair<int, const char*>>{{2, "ANN"}, {3, "Bob"}, {4, "cid"}, {5, "Dee"}}) {
            QJsonObject mate = participant(100 + id, 1, QStringLiteral("f%1").arg(id));
            mate["riot_id_game_name"] = name;
            f.addParticipant(mate);
        }
        QJsonObject enemy = participant(200, 1, "x");
        enemy["riot_id_game_name"] = "Ann";
        enemy["team_id"] = 200;
        f.addParticipant(enemy);
        f.save();
        HistoryModel model;
        model.setAppState(f.state.get());
        QCOMPARE(role(model.rows(), 0, "friendNames").toStringList(), (QStringList{"ANN", "Bob", "cid"}));
        QCOMPARE(role(model.rows(), 0, "friendText").toString(), QStringLiteral("ANN, Bob, cid"));
    }
};

QTEST_GUILESS_MAIN(TestHistoryModel)
#include "tst_history_model.moc"
