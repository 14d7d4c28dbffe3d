// The arithmetic of one set of rate limits, on a clock the test moves by hand.

#include "riot/rate_limit_scope.h"

#include <QTest>

using namespace qf;
using namespace std::chrono_literals;
using Clock = RateLimitScope::Clock;

namespace {

const Clock::time_point t0 = Clock::time_point(1000h);

void sendMany(RateLimitScope& scope, int count, Clock::time_point at) {
    for (int i = 0; i < count; ++i)
        scope.recordSend(at);
}

} // namespace

class TestRateLimitScope : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fullWindowWaitsUntilItsFirstSendSlidesOut() {
        RateLimitScope scope({{20, 1}, {100, 120}});
        QCOMPARE(scope.earliestSend(t0), t0);
        sendMany(scope, 10, t0);
        sendMany(scope, 9, t0 + 400ms);
        QCOMPARE(scope.earliestSend(t0 + 400ms), t0 + 400ms); // the 20th still fits
        scope.recordSend(t0 + 500ms);
        // Full: room again once the sends at t0 are a second (and the slack) old.
        QCOMPARE(scope.earliestSend(t0 + 500ms), t0 + 1s + RateLimitScope::slack(1));
        QCOMPARE(scope.sentWithin(1, t0 + 1s + RateLimitScope::slack(1)), 10);
    }

    // 100 per 2 minutes binds although every second has room.
    void longWindowBindsAfterTheShortOnes() {
        RateLimitScope scope({{20, 1}, {100, 120}});
        for (int second = 0; second < 5; ++second)
            sendMany(scope, 20, t0 + std::chrono::seconds(second));
        const Clock::time_point now = t0 + 6s;
        QCOMPARE(scope.sentWithin(1, now), 0);
        QCOMPARE(scope.earliestSend(now), t0 + 120s + RateLimitScope::slack(120));
        QCOMPARE(scope.earliestSend(t0 + 60s), t0 + 120s + RateLimitScope::slack(120));
        // The 101st may go once the first second's twenty have slid out.
        const Clock::time_point later = t0 + 120s + 100ms;
        QCOMPARE(scope.earliestSend(later), later);
        QCOMPARE(scope.sentWithin(120, later), 80);
    }

    void slackIsSmallAgainstTheWindow() {
        QCOMPARE(RateLimitScope::slack(1), Clock::duration(50ms));
        QCOMPARE(RateLimitScope::slack(120), Clock::duration(100ms));
    }

    // Another process using the same key shows in the server's counts.
    void learnsWhatOthersSent() {
        RateLimitScope scope({{20, 1}});
        sendMany(scope, 5, t0);
        scope.learn({}, {{19, 1}}, t0 + 10ms);
        QCOMPARE(scope.sentWithin(1, t0 + 10ms), 19);
        QCOMPARE(scope.earliestSend(t0 + 10ms), t0 + 10ms);
        scope.recordSend(t0 + 10ms);
        QVERIFY(scope.earliestSend(t0 + 10ms) > t0 + 10ms);
        QCOMPARE(scope.earliestSend(t0 + 20ms), t0 + 1s + RateLimitScope::slack(1));
        // The others' sends are taken as made when they were learnt, so they outlast our own.
        QCOMPARE(scope.sentWithin(1, t0 + 1s + RateLimitScope::slack(1)), 15);
    }

    // A server that counted fewer (its window started later, or requests are in flight)
    // changes nothing: our own log is the stricter.
    void fewerCountedChangesNothing() {
        RateLimitScope scope({{3, 1}});
        sendMany(scope, 3, t0);
        scope.learn({}, {{1, 1}}, t0 + 5ms);
        QCOMPARE(scope.sentWithin(1, t0 + 5ms), 3);
        QVERIFY(scope.earliestSend(t0 + 5ms) > t0 + 1s);
    }

    void newLimitsReplaceTheOldAndKeepTheLog() {
        RateLimitScope scope({{20, 1}, {100, 120}});
        sendMany(scope, 6, t0);
        QCOMPARE(scope.earliestSend(t0), t0);
        scope.learn({{5, 2}}, {}, t0);
        QCOMPARE(scope.limits(), (std::vector<RateLimitWindow>{{5, 2}}));
        QCOMPARE(scope.earliestSend(t0), t0 + 2s + RateLimitScope::slack(2));
        // An answer without limit headers keeps what was learnt.
        scope.learn({}, {}, t0);
        QCOMPARE(scope.limits().size(), size_t(1));
    }

    void blockHoldsEverythingUntilItEnds() {
        RateLimitScope scope({{20, 1}});
        scope.blockUntil(t0 + 3s);
        QCOMPARE(scope.earliestSend(t0), t0 + 3s);
        scope.blockUntil(t0 + 1s); // a shorter block never cuts a longer one
        QCOMPARE(scope.earliestSend(t0 + 2s), t0 + 3s);
        QCOMPARE(scope.earliestSend(t0 + 4s), t0 + 4s);
    }

    void backgroundLeavesAShareToTheUser() {
        RateLimitScope scope({{20, 1}, {100, 120}});
        for (int second = 0; second < 7; ++second)
            sendMany(scope, 14, t0 + std::chrono::seconds(second));
        const Clock::time_point now = t0 + 8s;
        QCOMPARE(scope.sentWithin(120, now), 98);
        QCOMPARE(scope.earliestSend(now, true), t0 + 120s + RateLimitScope::slack(120));
        QCOMPARE(scope.earliestSend(now, false), now);
        sendMany(scope, 2, now);
        QVERIFY(scope.earliestSend(now, false) > now);
        // A window of one request is not closed to background work.
        RateLimitScope single({{1, 1}});
        QCOMPARE(single.earliestSend(t0, true), t0);
    }

    void noLimitsKnownLetsEverythingThrough() {
        RateLimitScope scope;
        sendMany(scope, 1000, t0);
        QCOMPARE(scope.earliestSend(t0), t0);
    }
};

QTEST_GUILESS_MAIN(TestRateLimitScope)
#include "tst_rate_limit_scope.moc"
