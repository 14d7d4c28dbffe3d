#include "screens/match_detail_model.h"
#include "support/screen_fixture.h"

#include <QTest>

using namespace ArchiveJson;

class TestMatchDetailModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void detailTeamsAndBars() {
        ScreenFixture f;
        f.addMatch(match(1));
        const auto add = [&](qint64 id, const QString& puuid, int team, const char* position, qint64 damage) {
            QJsonObject p = participant(id, 1, puuid, "Ahri", team == 100);
            p["team_id"] = team;
            p["damage_to_champions"] = damage;
            if (position)
                p["team_position"] = position;
            else
                p.remove("team_position");
            f.addParticipant(p);
        };
        add(1, "enemy-top", 200, "TOP", 5000);
        add(2, "ally-sup", 100, "UTILITY", 0);
        add(3, "me", 100, "MIDDLE", 20000);
        add(4, "ally-none", 100, nullptr, 10000);
        add(5, "ally-bot", 100, "BOTTOM", 40000);
        f.save();
        const auto game = MatchDetailModel::gameOf(*f.store, 1, {"me"});
        QVERIFY(game);
        const auto teams = MatchDetailModel::teamsOf(*game);
        QCOMPARE(teams.size(), std::size_t(2));
        QVERIFY(teams[0].isMine);
        QStringList order;
        for (const LocalParticipant* p : teams[0].rows)
            order << p->puuid;
        QCOMPARE(order, (QStringList{"ally-none", "ally-bot", "me", "ally-sup"}));
        QCOMPARE(MatchDetailModel::maxDamage(*game), 40000);

        MatchDetailModel model;
        model.setAppState(f.state.get());
        model.setMatchServerId(1);
        QCOMPARE(model.headerLine(), QStringLiteral("Ranked Solo/Duo · 29m"));
        const QVariantList rows = model.teams().at(0).toMap().value("rows").toList();
        QCOMPARE(rows.at(1).toMap().value("damagePercent").toDouble(), 100.0);
        QCOMPARE(rows.at(3).toMap().value("damagePercent").toDouble(), 0.0);
        QCOMPARE(model.teams().at(0).toMap().value("title").toString(), QStringLiteral("Your Team"));
        QCOMPARE(model.teams().at(1).toMap().value("title").toString(), QStringLiteral("Enemy Team"));
    }

    // The friend mark follows the duo list alone: the user's other account is marked only when it
    // is a duo itself, and the user's own row never is.
    void detailFriendMarks_data() {
        QTest::addColumn<bool>("altIsADuo");
        QTest::newRow("other account not a duo") << false;
        QTest::newRow("other account a duo") << true;
    }
    void detailFriendMarks() {
        QFETCH(bool, altIsADuo);
        ScreenFixture f({riotAccount(1, "me"), riotAccount(2, "alt")});
        QJsonArray duos{
            QJsonObject{
                {"puuid", "me"}, {"riot_id", "Me#1"}, {"games", 2}, {"wins", 1}, {"losses", 1}, {"winrate", 0.5}},
            QJsonObject{
                {"puuid", "mate"}, {"riot_id", "Mate#1"}, {"games", 2}, {"wins", 1}, {"losses", 1}, {"winrate", 0.5}}};
        if (altIsADuo)
            duos.append(QJsonObject{
                {"puuid", "alt"}, {"riot_id", "Alt#1"}, {"games", 2}, {"wins", 1}, {"losses", 1}, {"winrate", 0.5}});
        f.backend.on("GET", "/api/stats/duos", FakeResponse::json({{"duos", duos}}));
        runTask(f.state->loadDuos());
        f.addMatch(match(1));
        int id = 0;
        for (const char* puuid : {"me", "alt", "mate", "stranger"})
            f.addParticipant(participant(++id, 1, puuid));
        f.save();
        MatchDetailModel model;
        model.setAppState(f.state.get());
        model.setMatchServerId(1);
        QHash<QString, bool> marked;
        for (const QVariant& row : model.teams().at(0).toMap().value("rows").toList())
            marked.insert(row.toMap().value("displayName").toString(), row.toMap().value("isFriend").toBool());
        QCOMPARE(marked.size(), 4);
        QCOMPARE(marked.value("me"), false);
        QCOMPARE(marked.value("alt"), altIsADuo);
        QCOMPARE(marked.value("mate"), true);
        QCOMPARE(marked.value("stra"), false);
    }

    void detailWithoutDamageOrOthers() {
        ScreenFixture f;
        f.addMatch(match(1));
        QJsonObject me = participant(1, 1, "me");
        me["damage_to_champions"] = 0;
        f.addParticipant(me);
        f.save();
        MatchDetailModel model;
        model.setAppState(f.state.get());
        model.setMatchServerId(1);
        QCOMPARE(model.teams().size(), 1);
        QCOMPARE(model.teams().at(0).toMap().value("rows").toList().at(0).toMap().value("damagePercent").toDouble(),
                 0.0);
    }
};

QTEST_GUILESS_MAIN(TestMatchDetailModel)
#include "tst_match_detail_model.moc"
