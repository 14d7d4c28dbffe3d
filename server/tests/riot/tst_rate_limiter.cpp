// The shared limiter on the real clock: who goes first when several wait, and giving up.

#include "riot/rate_limiter.h"

#include <QTest>

#include <future>
#include <mutex>
#include <thread>

using namespace qf;
using namespace std::chrono_literals;

class TestRateLimiter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // One request per second: three background requests queue up, then a foreground one
    // arrives; it is let through first, the others in their order of arrival.
    void foregroundFirstThenArrivalOrder() {
        RateLimiter limiter({{1, 1}});
        QVERIFY(limiter.acquire("m", RiotPriority::Background, RateLimiter::Clock::duration::max()));
        std::mutex mutex;
        std::vector<std::string> order;
        std::vector<std::thread> waiting;
        auto wait = [&](std::string name, RiotPriority priority) {
            waiting.emplace_back([&, name, priority] {
                QVERIFY(limiter.acquire("m", priority, RateLimiter::Clock::duration::max()));
                const std::lock_guard lock(mutex);
                order.push_back(name);
            });
            std::this_thread::sleep_for(50ms);
        };
        wait("b1", RiotPriority::Background);
        wait("b2", RiotPriority::Background);
        wait("b3", RiotPriority::Background);
        wait("user", RiotPriority::Foreground);
        for (auto& thread : waiting)
            thread.join();
        QCOMPARE(order, (std::vector<std::string>{"user", "b1", "b2", "b3"}));
    }

    // A request that would have to wait longer than it may gives up at once and leaves the
    // queue: those behind it are not held up by it.
    void givingUpLeavesTheQueue() {
        RateLimiter limiter({{1, 1}});
        QVERIFY(limiter.acquire("m", RiotPriority::Foreground, 0ms));
        const auto start = RateLimiter::Clock::now();
        QVERIFY(!limiter.acquire("m", RiotPriority::Foreground, 200ms));
        QVERIFY(RateLimiter::Clock::now() - start < 200ms);
        auto later = std::async(std::launch::async, [&] {
            return limiter.acquire("m", RiotPriority::Background, RateLimiter::Clock::duration::max());
        });
        QCOMPARE(later.wait_for(3s), std::future_status::ready);
        QVERIFY(later.get());
    }

    // A method's own limit holds back that method only when it is the one asked for.
    void methodLimitsApplyToTheirMethod() {
        RateLimiter limiter({{100, 1}});
        limiter.learn("slow", {}, {}, {{1, 10}}, {});
        QVERIFY(limiter.acquire("slow", RiotPriority::Foreground, 0ms));
        QVERIFY(!limiter.acquire("slow", RiotPriority::Foreground, 100ms));
        QVERIFY(limiter.acquire("fast", RiotPriority::Foreground, 0ms));
        limiter.blockMethod("fast", RateLimiter::Clock::now() + 5s);
        QVERIFY(!limiter.acquire("fast", RiotPriority::Foreground, 100ms));
        QVERIFY(limiter.acquire("other", RiotPriority::Foreground, 0ms));
        limiter.blockApplication(RateLimiter::Clock::now() + 5s);
        QVERIFY(!limiter.acquire("other", RiotPriority::Foreground, 100ms));
    }

    // At shutdown a backfill parked behind a long window is let go, and nothing new is sent.
    void closingLetsWaitersGo() {
        const auto limiter = RateLimiter::shared("RGAPI-closing", "europe");
        limiter->learn("m", {{1, 60}}, {}, {}, {});
        QVERIFY(limiter->acquire("m", RiotPriority::Background, RateLimiter::Clock::duration::max()));
        auto parked = std::async(std::launch::async, [&] {
            return limiter->acquire("m", RiotPriority::Background, RateLimiter::Clock::duration::max());
        });
        QCOMPARE(parked.wait_for(200ms), std::future_status::timeout);
        RateLimiter::closeAll();
        QCOMPARE(parked.wait_for(2s), std::future_status::ready);
        QVERIFY(!parked.get());
        QVERIFY(limiter->closed());
        QVERIFY(!RateLimiter::shared("RGAPI-made-later", "asia")->acquire("m", RiotPriority::Foreground, 1s));
    }
};

QTEST_GUILESS_MAIN(TestRateLimiter)
#include "tst_rate_limiter.moc"
