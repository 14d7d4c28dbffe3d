// Performance scores: 50 is the player's usual, measured only against their own earlier games
// in the same position.

#include "archive/performance_score.h"

#include <QTest>

using namespace qf;

namespace {

constexpr int64_t halfHour = 1800;

struct Line {
    int64_t kills, deaths, assists;
    double killParticipation;
    double csPerMin;
    int64_t visionScore; // over half an hour
    double damageShare;
};

OwnGame ownGame(int64_t id, int64_t creation, const Line& line, std::optional<std::string> position = "MIDDLE") {
    OwnGame g;
    g.match.id = id;
    g.match.gameCreation = creation;
    g.match.gameDuration = halfHour;
    g.me.championId = 103;
    g.me.teamPosition = std::move(position);
    g.me.kills = line.kills;
    g.me.deaths = line.deaths;
    g.me.assists = line.assists;
    g.me.killParticipation = line.killParticipation;
    g.me.csPerMin = line.csPerMin;
    g.me.totalCs = int64_t(line.csPerMin * 30);
    g.me.visionScore = line.visionScore;
    g.me.teamDamagePct = line.damageShare;
    return g;
}

// Three earlier games a standard deviation apart on every component: KDA 2, 4, 6; kill
// participation 0.4 to 0.6; CS per minute 6 to 8; vision 0.5 to 1.5 a minute; damage share
// 0.2 to 0.3. One deviation above the mean is worth 15 · √1.5 ≈ 18.4 points.
const Line low{2, 2, 2, 0.4, 6, 15, 0.2};
const Line usual{4, 2, 4, 0.5, 7, 30, 0.25};
const Line high{6, 2, 6, 0.6, 8, 45, 0.3};

std::vector<OwnGame> spread() {
    return {ownGame(3, 3000, high), ownGame(2, 2000, usual), ownGame(1, 1000, low)};
}

} // namespace

Q_DECLARE_METATYPE(std::vector<OwnGame>)
Q_DECLARE_METATYPE(OwnGame)

class TstPerformanceScore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void scores_data() {
        QTest::addColumn<OwnGame>("game");
        QTest::addColumn<std::vector<OwnGame>>("history");
        QTest::addColumn<QList<double>>("components"); // kda, kp, cs, vision, damage
        QTest::addColumn<double>("score");

        const QList<double> allUsual{50, 50, 50, 50, 50};
        QTest::newRow("no earlier games") << ownGame(9, 9000, high) << std::vector<OwnGame>{} << allUsual << 50.0;
        QTest::newRow("two earlier games are too few")
            << ownGame(9, 9000, high) << std::vector<OwnGame>{ownGame(2, 2000, usual), ownGame(1, 1000, low)}
            << allUsual << 50.0;
        QTest::newRow("the usual game") << ownGame(9, 9000, usual) << spread() << allUsual << 50.0;
        QTest::newRow("one deviation better everywhere")
            << ownGame(9, 9000, high) << spread() << QList<double>{68.4, 68.4, 68.4, 68.4, 68.4} << 68.4;
        QTest::newRow("one deviation worse everywhere")
            << ownGame(9, 9000, low) << spread() << QList<double>{31.6, 31.6, 31.6, 31.6, 31.6} << 31.6;
        QTest::newRow("clamped at both ends")
            << ownGame(9, 9000, {20, 1, 0, 0.1, 7, 30, 0.25}) << spread() << QList<double>{100, 0, 50, 50, 50} << 50.0;
        QTest::newRow("a deathless game's KDA is its takedowns")
            << ownGame(9, 9000, {4, 0, 2, 0.5, 7, 30, 0.25}) << spread()
            << QList<double>{oneDecimal(50 + 15 * 2 / std::sqrt(8.0 / 3)), 50, 50, 50, 50}
            << oneDecimal((oneDecimal(50 + 15 * 2 / std::sqrt(8.0 / 3)) + 200) / 5);

        // Identical earlier games: the floors (KDA 0.5, kill participation 0.05, CS 0.5 a
        // minute, vision 0.1 a minute, damage share 0.03) stand in for the missing spread.
        const std::vector<OwnGame> steady{ownGame(3, 3000, usual), ownGame(2, 2000, usual), ownGame(1, 1000, usual)};
        QTest::newRow("a steady player is not punished for a small dip")
            << ownGame(9, 9000, {4, 2, 3, 0.45, 6.5, 27, 0.22}) << steady << QList<double>{35, 35, 35, 35, 35} << 35.0;

        QTest::newRow("later and same games do not count")
            << ownGame(9, 9000, high)
            << std::vector<OwnGame>{ownGame(10, 9500, low), ownGame(9, 9000, low), ownGame(2, 2000, usual),
                                    ownGame(1, 1000, low)}
            << allUsual << 50.0;
        QTest::newRow("other positions do not count")
            << ownGame(9, 9000, high)
            << std::vector<OwnGame>{ownGame(3, 3000, high, "TOP"), ownGame(2, 2000, usual), ownGame(1, 1000, low)}
            << allUsual << 50.0;
        std::vector<OwnGame> positionless;
        for (const OwnGame& g : spread())
            positionless.push_back(
                ownGame(g.match.id, g.match.gameCreation, g.me.kills == 6 ? high : usual, std::nullopt));
        positionless.push_back(ownGame(4, 4000, low, "TOP")); // newest, but of a position
        // KDA and vision spread wider than their floors; the rest use the floors.
        QTest::newRow("positionless games compare with positionless games")
            << ownGame(9, 9000, usual, std::nullopt) << positionless << QList<double>{39.4, 40, 40, 39.4, 41.7} << 40.1;

        // Twenty recent games at the usual line, ten older ones far above it: only the recent
        // twenty count, so the usual line is exactly usual.
        std::vector<OwnGame> long_;
        for (int64_t i = 30; i >= 1; --i)
            long_.push_back(ownGame(i, i * 100, i > 10 ? usual : Line{20, 1, 20, 0.9, 12, 90, 0.5}));
        QTest::newRow("only the last twenty games count") << ownGame(99, 9000, usual) << long_ << allUsual << 50.0;

        // A history-list entry has no team figures: those components stay at 50.
        OwnGame listEntry = ownGame(9, 9000, high);
        listEntry.me.killParticipation.reset();
        listEntry.me.teamDamagePct.reset();
        QTest::newRow("components the game lacks")
            << listEntry << spread() << QList<double>{68.4, 50, 68.4, 68.4, 50} << 61.0;
        std::vector<OwnGame> someLack = spread();
        someLack[0].me.killParticipation.reset();
        QTest::newRow("components earlier games lack")
            << ownGame(9, 9000, high) << someLack << QList<double>{68.4, 50, 68.4, 68.4, 68.4} << 64.7;
    }

    void scores() {
        QFETCH(OwnGame, game);
        QFETCH(std::vector<OwnGame>, history);
        QFETCH(QList<double>, components);
        QFETCH(double, score);

        const PerformanceScore s = scoreGame(game, history, 7);
        QCOMPARE(s.riotAccountId, 7);
        QCOMPARE(s.matchId, game.match.id);
        QCOMPARE(s.championId, 103);
        QCOMPARE(s.teamPosition, game.me.teamPosition);
        QCOMPARE(s.baselineKind, "self");
        QCOMPARE(s.components.size(), size_t(5));
        const char* keys[] = {"kda", "kill_participation", "cs_per_min", "vision_per_min", "damage_share"};
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(s.components[i].first, keys[i]);
            QCOMPARE(s.components[i].second, components[i]);
        }
        QCOMPARE(s.score, score);
    }

private:
    static double oneDecimal(double v) { return std::round(v * 10) / 10; }
};

QTEST_GUILESS_MAIN(TstPerformanceScore)
#include "tst_performance_score.moc"
