// The property the sync cursor rests on: a reader that pages through "changed after the last
// number I saw" while several writers commit never steps over a change. Writers here are
// separate Database objects, as separate server processes would be.

#include "store/test_databases.h"

#include <QTest>

#include <atomic>
#include <chrono>
#include <random>
#include <set>
#include <thread>

using namespace qf;
using qf::test::TestDatabase;

namespace {

Match makeMatch(const std::string& matchId, int64_t creation) {
    Match m;
    m.matchId = matchId;
    m.platform = "EUW1";
    m.queueId = 420;
    m.gameCreation = creation;
    m.gameDuration = 1500;
    m.gameVersion = "14.3.1";
    m.gameMode = "CLASSIC";
    m.updatedAt = creation;
    return m;
}

Participant makeParticipant(const std::string& puuid) {
    Participant p;
    p.puuid = puuid;
    p.teamId = 100;
    p.championId = 1;
    p.championName = "Annie";
    return p;
}

} // namespace

class TestChangeOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void concurrentWritersAreNeverSkipped_data() { qf::test::addEngineRows(); }
    void concurrentWritersAreNeverSkipped();
    void poolSharesConnectionsAmongThreads_data() { qf::test::addEngineRows(); }
    void poolSharesConnectionsAmongThreads();
};

void TestChangeOrder::concurrentWritersAreNeverSkipped() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);

    auto readerDatabase = db.open(1);
    const int64_t user = readerDatabase->write([](Repository& r) {
        User u;
        u.email = u.emailKey = "reader@example.org";
        u.createdAt = 1;
        r.insertUser(u);
        RiotAccount a;
        a.userId = u.id;
        a.puuid = "me";
        a.platform = "euw1";
        a.region = "europe";
        r.insertAccount(a);
        return u.id;
    });

    constexpr int kWriters = 4;
    constexpr int kGamesEach = 60;
    std::atomic<bool> writersDone{false};
    std::vector<std::string> failures(kWriters);
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w) {
        writers.emplace_back([&, w] {
            try {
                auto own = db.open(1);
                std::mt19937 random(static_cast<unsigned>(w));
                std::uniform_int_distribution<int> pause(0, 1500);
                std::vector<Match> stored;
                for (int g = 0; g < kGamesEach; ++g) {
                    own->write([&](Repository& r) {
                        Match m = makeMatch("W" + std::to_string(w) + "_" + std::to_string(g), g);
                        r.insertMatch(m);
                        std::vector<Participant> rows = {makeParticipant("me"), makeParticipant("someone")};
                        r.replaceParticipants(m, rows);
                        // Now and then a change to an earlier game, which must reach the reader again.
                        if (g % 5 == 4) {
                            Match& earlier = stored[static_cast<size_t>(g / 2)];
                            earlier.updatedAt += 1;
                            r.updateMatch(earlier);
                        }
                        stored.push_back(m);
                        // Holding the number drawn while others run is what would let a later
                        // number commit first.
                        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
                    });
                }
            } catch (const std::exception& e) {
                failures[static_cast<size_t>(w)] = e.what();
            }
        });
    }
    std::thread joiner([&] {
        for (auto& t : writers)
            t.join();
        writersDone = true;
    });

    std::set<std::string> seen;
    int64_t cursor = 0;
    bool ordered = true;
    for (;;) {
        const bool finished = writersDone.load();
        const auto page = readerDatabase->read(
            [&](Repository& r) { return qf::test::matchesOnly(r.changedGamesOfUser(user, cursor, 7)); });
        for (const Match& m : page) {
            ordered = ordered && m.changeSeq > cursor;
            cursor = m.changeSeq;
            seen.insert(m.matchId);
        }
        if (page.empty()) {
            if (finished)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    joiner.join();

    for (const std::string& f : failures)
        QVERIFY2(f.empty(), f.c_str());
    QVERIFY(ordered);
    std::vector<std::string> missed;
    for (int w = 0; w < kWriters; ++w)
        for (int g = 0; g < kGamesEach; ++g)
            if (!seen.count("W" + std::to_string(w) + "_" + std::to_string(g)))
                missed.push_back("W" + std::to_string(w) + "_" + std::to_string(g));
    QVERIFY2(missed.empty(), qPrintable(QStringLiteral("%1 games skipped by the cursor, the first %2")
                                            .arg(missed.size())
                                            .arg(missed.empty() ? QString() : QString::fromStdString(missed[0]))));
}

void TestChangeOrder::poolSharesConnectionsAmongThreads() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);

    // More threads than connections: each waits its turn, none shares a connection.
    auto database = db.open(3);
    constexpr int kThreads = 8;
    constexpr int kRounds = 30;
    std::vector<std::string> failures(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            try {
                const std::string key = "addr:" + std::to_string(t);
                for (int i = 0; i < kRounds; ++i) {
                    database->write([&](Repository& r) { r.recordLoginFailure(key, i); });
                    const int64_t count = database->read([&](Repository& r) { return r.loginFailuresSince(key, 0); });
                    if (count != i + 1)
                        throw std::runtime_error(key + " counted " + std::to_string(count));
                }
            } catch (const std::exception& e) {
                failures[static_cast<size_t>(t)] = e.what();
            }
        });
    }
    for (auto& t : threads)
        t.join();
    for (const std::string& f : failures)
        QVERIFY2(f.empty(), f.c_str());
}

QTEST_GUILESS_MAIN(TestChangeOrder)
#include "tst_change_order.moc"
