#include "game_data/stats.h"

#include <QTest>
#include <memory>

namespace {

// Matches and rows built in place, in the order a test lists them; the archive keeps them alive.
struct Archive {
    std::vector<std::unique_ptr<LocalMatch>> matchStore;
    std::vector<std::unique_ptr<LocalParticipant>> rowStore;
    std::vector<const LocalMatch*> matches;
    std::vector<const LocalParticipant*> rows;

    void match(qint64 id) {
        matchStore.push_back(std::make_unique<LocalMatch>());
        matchStore.back()->serverId = id;
        matches.push_back(matchStore.back().get());
    }
    LocalParticipant& row(qint64 match, const QString& puuid, qint64 team = 100,
                          std::optional<QString> name = std::nullopt) {
        rowStore.push_back(std::make_unique<LocalParticipant>());
        LocalParticipant& p = *rowStore.back();
        p.matchServerId = match;
        p.puuid = puuid;
        p.teamId = team;
        p.riotIdGameName = std::move(name);
        rows.push_back(&p);
        return p;
    }
};

template <class Rows> std::vector<QString> puuidsOf(const Rows& rows) {
    std::vector<QString> ids;
    for (const LocalParticipant* row : rows)
        ids.push_back(row->puuid);
    return ids;
}

// A realistic id: every puuid has the same length, so only the content tells them apart.
QString id(const char* tag) {
    return QString::fromLatin1(tag).leftJustified(78, QLatin1Char('-'));
}

} // namespace

class TestStats : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void gamesAndFriends() {
        Archive a;
        a.match(1);
        a.match(2);                       // only strangers
        a.match(3);                       // no rows at all
        a.match(4);                       // two linked accounts
        a.row(1, "stranger", 200, "Ann"); // an enemy with a friend's name
        a.row(1, "me");
        a.row(1, "mate", 100, "ANN"); // a friend, in other letter case
        a.row(1, "nameless", 100);    // no game name: never a friend
        a.row(2, "stranger");
        a.row(4, "alt", 100, "ann"); // the user's other account comes first
        a.row(4, "me", 100, "Me");
        a.row(99, "me"); // a row of a match not given
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
        add(2, 3, 1, 0, true, 6.0);          // ratio 3
        add(2, 1, 1, 0, false, 8.0);         // ratio 1
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
    void friendNamesAnyCase_data() {
        QTest::addColumn<QString>("entry"); // a friend name as the app keeps it: lower case
        QTest::addColumn<QString>("shown"); // the team-mate's game name in the row
        QTest::addColumn<bool>("isFriend");
        QTest::newRow("upper case") << "ann"
                                    << "ANN" << true;
        QTest::newRow("with a space") << "kettle drum"
                                      << "Kettle Drum" << true;
        QTest::newRow("longer name") << "ann"
                                     << "Anne" << false;
        QTest::newRow("accented upper case") << QString::fromUtf8("zélie") << QString::fromUtf8("ZÉLIE") << true;
        QTest::newRow("accent differs") << QString::fromUtf8("zélie") << "ZELIE" << false;
        QTest::newRow("dotted capital I grows when lowered")
            << QString::fromUtf8("i\xCC\x87pek") << QString::fromUtf8("\xC4\xB0pek") << true;
        QTest::newRow("beyond the BMP") << QString::fromUtf8("\xF0\x90\x90\xA8")
                                        << QString::fromUtf8("\xF0\x90\x90\x80") << true;
        QTest::newRow("long name") << QString(70, QLatin1Char('x')) << QString(70, QLatin1Char('X')) << true;
        QTest::newRow("empty name") << "ann"
                                    << "" << false;
    }
    void friendNamesAnyCase() {
        QFETCH(QString, entry);
        QFETCH(QString, shown);
        QFETCH(bool, isFriend);
        Archive a;
        a.match(1);
        a.row(1, id("me"));
        a.row(1, id("mate"), 100, shown);
        const auto games = Stats::games(a.matches, a.rows, {id("me")}, {entry, QStringLiteral("someone else")});
        QCOMPARE(games.size(), std::size_t(1));
        QCOMPARE(games[0].friends.size(), std::size_t(isFriend ? 1 : 0));
    }

    // The store keeps a game's rows together, but nothing promises it: the user's row may come
    // after other rows of the game, with rows of other games in between.
    void gameRowsApart() {
        Archive a;
        a.match(1);
        a.match(2);
        a.row(1, id("ann"), 100, QStringLiteral("Ann")); // a friend, before the user's row is known
        a.row(1, id("foe"), 200, QStringLiteral("Bob")); // a friend's name on the other team
        a.row(2, id("me"));
        a.row(2, id("x"));
        a.row(1, id("alt"), 100, QStringLiteral("Bob")); // the user's second account, a friend's name
        a.row(1, id("me"));                              // the user's first row in game 1
        a.row(1, id("bob"), 100, QStringLiteral("BOB"));
        const QSet<QString> owners{id("me"), id("alt")};
        const auto games = Stats::games(a.matches, a.rows, owners, {"ann", "bob"});
        QCOMPARE(games.size(), std::size_t(2));
        QCOMPARE(games[0].me->puuid, id("alt")); // the first own row in input order
        QCOMPARE(puuidsOf(games[0].roster),
                 (std::vector<QString>{id("ann"), id("foe"), id("alt"), id("me"), id("bob")}));
        QCOMPARE(puuidsOf(games[0].friends), (std::vector<QString>{id("ann"), id("bob")}));
        QCOMPARE(puuidsOf(games[1].roster), (std::vector<QString>{id("me"), id("x")}));

        const auto timeline = Stats::timeline(a.matches, a.rows, owners);
        QCOMPARE(timeline.size(), std::size_t(2));
        QCOMPARE(timeline[0].me, games[0].me);
        QCOMPARE(timeline[1].me, games[1].me);

        // Asking for the own rows on the way changes nothing else.
        std::vector<const LocalParticipant*> own;
        const auto again = Stats::games(a.matches, a.rows, owners, {"ann", "bob"}, &own);
        QCOMPARE(own, Stats::ownRows(a.rows, owners));
        QCOMPARE(again.size(), games.size());
        for (std::size_t g = 0; g < games.size(); ++g) {
            QCOMPARE(again[g].me, games[g].me);
            QCOMPARE(puuidsOf(again[g].friends), puuidsOf(games[g].friends));
        }
    }

    // Ids that agree in their first characters and their length are told apart by the rest, by
    // every function that asks whose a row is.
    void idsWithTheSameStart() {
        Archive a;
        a.match(1);
        a.row(1, id("acct-2"), 100, QStringLiteral("Ann"));
        a.row(1, id("acct-1"));
        const QSet<QString> owners{id("acct-1")};
        const auto games = Stats::games(a.matches, a.rows, owners, {"ann"});
        QCOMPARE(games.size(), std::size_t(1));
        QCOMPARE(games[0].me->puuid, id("acct-1"));
        QCOMPARE(puuidsOf(games[0].friends), std::vector<QString>{id("acct-2")});
        QCOMPARE(Stats::timeline(a.matches, a.rows, owners)[0].me, games[0].me);
        QCOMPARE(Stats::ownRows(a.rows, owners), std::vector<const LocalParticipant*>{games[0].me});
    }

    void sameGameListedTwice() {
        Archive a;
        a.match(1);
        a.match(1);
        a.row(1, id("me"));
        a.row(1, id("x"));
        const auto games = Stats::games(a.matches, a.rows, {id("me")}, {});
        QCOMPARE(games.size(), std::size_t(2));
        QCOMPARE(games[0].roster, games[1].roster);
        QCOMPARE(Stats::timeline(a.matches, a.rows, {id("me")}).size(), std::size_t(2));
    }

    void manyAccountsAndManyFriends() {
        Archive a;
        QSet<QString> owners;
        QSet<QString> friends;
        for (int i = 0; i < 12; ++i)
            owners.insert(id(qPrintable(QStringLiteral("acct%1").arg(i))));
        for (int i = 0; i < 300; ++i)
            friends.insert(QStringLiteral("friend%1").arg(i));
        for (int game = 1; game <= 40; ++game) {
            a.match(game);
            a.row(game, id("stranger"), 100, QStringLiteral("Friend%1").arg(game * 7 + 1000)); // not a friend
            a.row(game, id(qPrintable(QStringLiteral("acct%1").arg(game % 12))));
            a.row(game, id("mate"), 100, QStringLiteral("FRIEND%1").arg(game * 7));
        }
        const auto games = Stats::games(a.matches, a.rows, owners, friends);
        QCOMPARE(games.size(), std::size_t(40));
        for (const Stats::Game& game : games) {
            QCOMPARE(game.me->puuid, id(qPrintable(QStringLiteral("acct%1").arg(game.match->serverId % 12))));
            QCOMPARE(puuidsOf(game.friends), std::vector<QString>{id("mate")});
        }
    }

    void championsCountRowsOfUnlistedGames() {
        Archive a;
        a.match(1);
        LocalParticipant& listed = a.row(1, id("me"));
        LocalParticipant& unlisted = a.row(2, id("me"));
        listed.championId = unlisted.championId = 103;
        listed.kills = 4;
        unlisted.deaths = 2;
        unlisted.assists = 2;
        QCOMPARE(Stats::games(a.matches, a.rows, {id("me")}, {}).size(), std::size_t(1));
        QCOMPARE(Stats::timeline(a.matches, a.rows, {id("me")}).size(), std::size_t(1));
        std::vector<const LocalParticipant*> own;
        (void)Stats::games(a.matches, a.rows, {id("me")}, {}, &own);
        QCOMPARE(own, (std::vector<const LocalParticipant*>{&listed, &unlisted}));
        const auto champions = Stats::champions(a.rows);
        QCOMPARE(champions.size(), std::size_t(1));
        QCOMPARE(champions[0].games, 2);
        QCOMPARE(champions[0].kda, (4.0 + 1.0) / 2);
    }
};

QTEST_GUILESS_MAIN(TestStats)
#include "tst_stats.moc"
