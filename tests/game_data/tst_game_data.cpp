#include "archive/local_participant.h"
#include "game_data/game_category.h"
#include "game_data/league_position.h"
#include "game_data/league_queue.h"
#include "game_data/rank_math.h"
#include "game_data/stats.h"

#include <QTest>
#include <memory>

Q_DECLARE_METATYPE(std::optional<QString>)

namespace {

const std::optional<QString> none;
std::optional<QString> text(const char* value) {
    return QString::fromUtf8(value);
}

// Rows and matches built in place; the test keeps them alive.
struct Archive {
    std::vector<std::unique_ptr<LocalMatch>> matchStore;
    std::vector<std::unique_ptr<LocalParticipant>> rowStore;
    std::vector<const LocalMatch*> matches;
    std::vector<const LocalParticipant*> rows;

    void match(qint64 id, qint64 queue = 420) {
        auto m = std::make_unique<LocalMatch>();
        m->serverId = id;
        m->queueId = queue;
        matches.push_back(m.get());
        matchStore.push_back(std::move(m));
    }
    LocalParticipant& row(qint64 match, const QString& puuid, qint64 team = 100, const char* name = nullptr) {
        auto p = std::make_unique<LocalParticipant>();
        p->matchServerId = match;
        p->puuid = puuid;
        p->teamId = team;
        if (name)
            p->riotIdGameName = QString::fromUtf8(name);
        rows.push_back(p.get());
        rowStore.push_back(std::move(p));
        return *rowStore.back();
    }
};

} // namespace

class TestGameData : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void classification_data() {
        QTest::addColumn<qint64>("queue");
        QTest::addColumn<std::optional<QString>>("mode");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("label");
        QTest::newRow("queue beats mode") << qint64(420) << text("ARAM") << "Ranked" << "Ranked Solo/Duo";
        QTest::newRow("flex") << qint64(440) << none << "Ranked" << "Ranked Flex";
        QTest::newRow("ARAM by mode") << qint64(450) << text("ARAM") << "ARAM" << "ARAM";
        QTest::newRow("mode in lower case") << qint64(450) << text("aram") << "ARAM" << "ARAM";
        QTest::newRow("mayhem queue") << qint64(900) << text("CLASSIC") << "Mayhem" << "ARAM: Mayhem";
        QTest::newRow("URF mode") << qint64(1900) << text("URF") << "Mayhem" << "ARAM: Mayhem";
        QTest::newRow("KIWI mode") << qint64(3000) << text("Kiwi") << "Mayhem" << "ARAM: Mayhem";
        QTest::newRow("dotless i upper-cases to KIWI") << qint64(3000) << text("k\xc4\xb1w\xc4\xb1") << "Mayhem" << "ARAM: Mayhem";
        QTest::newRow("clash is normal") << qint64(700) << text("CLASSIC") << "Normal" << "Clash";
        QTest::newRow("arena queue") << qint64(1710) << none << "Arena" << "Arena";
        QTest::newRow("cherry mode") << qint64(2200) << text("CHERRY") << "Arena" << "Arena";
        QTest::newRow("queue 0 no mode") << qint64(0) << none << "Other" << "Queue 0";
        QTest::newRow("queue 0 classic") << qint64(0) << text("CLASSIC") << "Normal" << "Summoner's Rift";
        QTest::newRow("normal blind") << qint64(430) << text("CLASSIC") << "Normal" << "Normal Blind";
        QTest::newRow("430 with ARAM") << qint64(430) << text("ARAM") << "ARAM" << "ARAM";
        QTest::newRow("quickplay") << qint64(490) << text("classic") << "Normal" << "Quickplay";
        QTest::newRow("unknown mode capitalised") << qint64(2000) << text("TUTORIAL") << "Other" << "Tutorial";
        QTest::newRow("one for all") << qint64(1020) << text("ONEFORALL") << "Other" << "One for All";
        QTest::newRow("empty mode") << qint64(1234) << text("") << "Other" << "Queue 1234";
        QTest::newRow("normal draft") << qint64(400) << text("CLASSIC") << "Normal" << "Normal Draft";
        QTest::newRow("ARAM clash") << qint64(720) << text("ARAM") << "Normal" << "Clash";
        QTest::newRow("nexus blitz") << qint64(1300) << text("NEXUSBLITZ") << "Other" << "Nexus Blitz";
        QTest::newRow("spellbook") << qint64(1400) << text("ultbook") << "Other" << "Ultimate Spellbook";
        QTest::newRow("brawl") << qint64(2300) << text("BRAWL") << "Other" << "Brawl";
        QTest::newRow("unknown mode of two words") << qint64(2000) << text("DOOM bots") << "Other" << "Doom Bots";
        QTest::newRow("missing mode on an unknown queue") << qint64(2000) << none << "Other" << "Queue 2000";
    }
    void classification() {
        QFETCH(qint64, queue);
        QFETCH(std::optional<QString>, mode);
        QFETCH(QString, category);
        QFETCH(QString, label);
        QCOMPARE(GameCategories::rawValue(GameCategories::of(queue, mode)), category);
        QCOMPARE(LeagueQueue::label(queue, mode), label);
    }

    void categoryFromText() {
        QCOMPARE(GameCategories::fromRawValue("Ranked"), std::optional(GameCategory::Ranked));
        QVERIFY(!GameCategories::fromRawValue("ranked"));
        QCOMPARE(GameCategories::fromRawValue("ARAM"), std::optional(GameCategory::Aram));
    }

    void positions_data() {
        QTest::addColumn<std::optional<QString>>("position");
        QTest::addColumn<QString>("label");
        QTest::newRow("utility lower case") << text("utility") << "Support";
        QTest::newRow("middle") << text("MIDDLE") << "Mid";
        QTest::newRow("bottom") << text("BOTTOM") << "Bot";
        QTest::newRow("empty") << text("") << "\u2014";
        QTest::newRow("missing") << none << "\u2014";
        QTest::newRow("unknown") << text("CARRY") << "\u2014";
        QTest::newRow("top") << text("TOP") << "Top";
        QTest::newRow("jungle mixed case") << text("Jungle") << "Jungle";
    }
    void positions() {
        QFETCH(std::optional<QString>, position);
        QFETCH(QString, label);
        QCOMPARE(LeaguePosition::shortLabel(position), label);
    }

    void rankMath_data() {
        QTest::addColumn<std::optional<QString>>("tier");
        QTest::addColumn<std::optional<QString>>("division");
        QTest::addColumn<qint64>("lp");
        QTest::addColumn<qint64>("absolute"); // -1: none
        QTest::addColumn<QString>("label");
        QTest::newRow("iron IV") << text("IRON") << text("IV") << qint64(0) << qint64(0) << "Iron IV";
        QTest::newRow("gold II") << text("GOLD") << text("II") << qint64(45) << qint64(1445) << "Gold II";
        QTest::newRow("lower case") << text("gold") << text("ii") << qint64(45) << qint64(1445) << "Gold ii";
        QTest::newRow("diamond I") << text("DIAMOND") << text("I") << qint64(99) << qint64(2799) << "Diamond I";
        QTest::newRow("no division") << text("EMERALD") << none << qint64(10) << qint64(2010) << "Emerald";
        QTest::newRow("master with division") << text("MASTER") << text("I") << qint64(50) << qint64(2850) << "Master";
        QTest::newRow("master alone") << text("MASTER") << none << qint64(50) << qint64(2850) << "Master";
        QTest::newRow("master beyond cap") << text("MASTER") << none << qint64(450) << qint64(3250) << "Master";
        QTest::newRow("unknown division") << text("GOLD") << text("V") << qint64(10) << qint64(1210) << "Gold V";
        QTest::newRow("unknown tier") << text("UNRANKED") << text("II") << qint64(0) << qint64(-1) << "Unranked II";
        QTest::newRow("no tier") << none << text("II") << qint64(10) << qint64(-1) << "Unranked";
        QTest::newRow("grandmaster") << text("GRANDMASTER") << text("I") << qint64(0) << qint64(3200) << "Grandmaster";
        QTest::newRow("challenger lower case") << text("challenger") << none << qint64(1200) << qint64(4800)
                                               << "Challenger";
        QTest::newRow("no division below master") << text("SILVER") << none << qint64(30) << qint64(830) << "Silver";
    }
    void rankMath() {
        QFETCH(std::optional<QString>, tier);
        QFETCH(std::optional<QString>, division);
        QFETCH(qint64, lp);
        QFETCH(qint64, absolute);
        QFETCH(QString, label);
        const auto value = RankMath::absoluteLP(tier, division, lp);
        QCOMPARE(value.value_or(-1), absolute);
        QCOMPARE(RankMath::label(tier, division), label);
    }

    void gamesAndFriends() {
        Archive a;
        a.match(1);
        a.match(2); // only strangers
        a.match(3); // no rows at all
        a.match(4); // two linked accounts
        a.row(1, "stranger", 200, "Ann");            // an enemy with a friend's name
        a.row(1, "me");
        a.row(1, "mate", 100, "ANN");                  // a friend, in other letter case
        a.row(1, "nameless", 100);                     // no game name: never a friend
        a.row(2, "stranger");
        a.row(4, "alt", 100, "ann");                   // the user's other account comes first
        a.row(4, "me", 100, "Me");
        a.row(99, "me");                               // a row of a match not given
        const auto games = Stats::games(a.matches, a.rows, {"me", "alt"}, {"ann"});
        QCOMPARE(games.size(), std::size_t(2));
        QCOMPARE(games[0].id(), 1);
        QCOMPARE(games[0].me->puuid, QStringLiteral("me"));
        QCOMPARE(games[0].roster.size(), std::size_t(4));
        QCOMPARE(games[0].friends.size(), std::size_t(1));
        QCOMPARE(games[0].friends[0]->puuid, QStringLiteral("mate"));
        QCOMPARE(games[1].me->puuid, QStringLiteral("alt"));
        QVERIFY(games[1].friends.empty());

        const auto timeline = Stats::timeline(a.matches, a.rows, {"me", "alt"});
        QCOMPARE(timeline.size(), std::size_t(2));
        QCOMPARE(timeline[1].me, games[1].me);
    }

    void champions() {
        QVERIFY(Stats::champions({}).empty());
        Archive a;
        const auto add = [&](qint64 champion, int k, int d, int as, bool win, std::optional<double> cs) {
            LocalParticipant& row = a.row(1, "me");
            row.championId = champion;
            row.championName = QStringLiteral("C%1").arg(champion);
            row.kills = k;
            row.deaths = d;
            row.assists = as;
            row.win = win;
            row.csPerMin = cs;
        };
        add(1, 0, 0, 0, false, std::nullopt);
        add(2, 3, 1, 0, true, 6.0);  // ratio 3
        add(2, 1, 1, 0, false, 8.0); // ratio 1
        add(2, 7, 0, 5, true, std::nullopt); // deathless: 12
        const auto champs = Stats::champions(a.rows);
        QCOMPARE(champs.size(), std::size_t(2));
        QCOMPARE(champs[0].championId, 2);
        QCOMPARE(champs[0].games, 3);
        QCOMPARE(champs[0].wins, 2);
        QCOMPARE(champs[0].kda, (3.0 + 1.0 + 12.0) / 3);
        QCOMPARE(champs[0].csPerMin, 7.0);
        QCOMPARE(champs[1].kda, 0.0);
        QCOMPARE(champs[1].csPerMin, 0.0);
        QCOMPARE(Stats::ChampAgg{}.winRate(), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestGameData)
#include "tst_game_data.moc"
