#include "overlay/overlay_manager.h"
#include "overlay/overlay_view_model.h"
#include "overlay/strip_window.h"
#include "support/fake_live_game.h"
#include "support/fake_window_list.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

namespace {

using namespace std::chrono_literals;

const QRectF screen(0, 0, 1920, 1080);
const QRectF gameFrame(320, 180, 1280, 720);

WindowListSource::Window leagueWindow(QRectF bounds) {
    return {QStringLiteral("League of Legends"), 0, bounds};
}

} // namespace

// The overlay's states as a player meets them, through a fake window list and a fake game.
class TestOverlayManager : public QObject {
    Q_OBJECT

    std::shared_ptr<FakeWindowList> m_windows;
    std::unique_ptr<FakeLiveGame> m_game;
    std::unique_ptr<OverlayManager> m_overlay;

    void showGameWindow(QRectF bounds = gameFrame) { m_windows->list = QList{leagueWindow(bounds)}; }
    void answer(const QString& champion, qint64 level, const QMap<QString, qint64>& ranks) {
        m_game->setAnswer(FakeResponse::json(FakeLiveGame::game(champion, level, ranks)));
    }
    // Waits for a few more passes than have been made so far.
    void passes(int count) {
        const int target = m_windows->queries + count;
        QTRY_VERIFY_WITH_TIMEOUT(m_windows->queries >= target, 5000);
    }
    [[nodiscard]] bool stripShown() const { return m_overlay->controller().isShowing(); }

private Q_SLOTS:
    void init() {
        m_windows = std::make_shared<FakeWindowList>();
        m_game = std::make_unique<FakeLiveGame>();
        m_overlay = std::make_unique<OverlayManager>(
            OverlayManager::Sources{m_windows,
                                    [] {
                                        return WindowLocator::Screens{{screen}, screen};
                                    },
                                    m_game->port()});
        m_overlay->setCadence({20ms, 15ms});
    }
    void cleanup() { m_overlay.reset(); }

    // Off at start, and while off nothing is asked of anyone.
    void offPollsNothing() {
        QCOMPARE(m_overlay->enabled(), false);
        QCOMPARE(m_overlay->status(), QStringLiteral("Overlay is off."));
        showGameWindow();
        answer("Ahri", 3, {{"Q", 1}});
        QTest::qWait(200);
        QCOMPARE(m_windows->queries, 0);
        QCOMPARE(m_game->requestCount(), 0);
        QVERIFY(!m_overlay->isPolling());
        QVERIFY(!m_overlay->controller().panel());

        m_overlay->setEnabled(true);
        QTRY_VERIFY(stripShown());
        m_overlay->setEnabled(false);
        const int queries = m_windows->queries;
        // A request already sent when the switch went off may still reach the game; none may follow.
        QTest::qWait(30);
        const int requests = m_game->requestCount();
        QTest::qWait(200); // ten times the cadence
        QCOMPARE(m_windows->queries, queries);
        QCOMPARE(m_game->requestCount(), requests);
        QVERIFY(!m_overlay->isPolling());
        QVERIFY(!stripShown());
        QVERIFY(m_overlay->controller().panel()); // hidden, not destroyed
    }

    // Each situation's status and strip, pass after pass, as the game comes and goes.
    void statusSequence() {
        QSignalSpy status(m_overlay.get(), &OverlayManager::statusChanged);
        m_overlay->setEnabled(true);
        QCOMPARE(m_overlay->status(), QStringLiteral("Waiting for a game…"));
        passes(3);
        QCOMPARE(status.size(), 1); // the same fixed text again does not notify
        QVERIFY(!m_overlay->controller().panel());

        m_windows->list = QList{leagueWindow(screen)};
        QTRY_COMPARE(m_overlay->status(),
                     QStringLiteral("Set League to Borderless — the overlay can't draw over true fullscreen."));
        passes(2);
        QCOMPARE(m_game->requestCount(), 0); // fullscreen: the game is not asked
        QVERIFY(!stripShown());

        showGameWindow(); // borderless, but the game is still loading
        QTRY_COMPARE(m_overlay->status(), QStringLiteral("Game window found — waiting for live data…"));
        QVERIFY(m_game->requestCount() > 0);
        QVERIFY(!stripShown());

        answer("Ahri", 7, {{"Q", 3}, {"W", 1}, {"E", 2}, {"R", 0}});
        QTRY_COMPARE(m_overlay->status(), QStringLiteral("In game · Ahri (level 7)"));
        QVERIFY(stripShown());
        StripWindow* panel = m_overlay->controller().panel();
        QCOMPARE(panel->size(), QSize(208, 63));
        QCOMPARE(panel->x(), qRound(gameFrame.center().x() - panel->width() / 2.0));
        QCOMPARE(panel->y(), 180 + 12);
        QVERIFY(panel->flags().testFlag(Qt::WindowTransparentForInput));
        QVERIFY(panel->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
        // The ultimate opens at 6: R is lit.
        QCOMPARE(panel->view().cells()[3].isNext, true);

        // The live text notifies on every pass, even unchanged.
        const qsizetype before = status.size();
        passes(3);
        QVERIFY(status.size() >= before + 2);

        answer("", 9, {{"Q", 4}, {"W", 1}, {"E", 3}, {"R", 1}});
        QTRY_COMPARE(m_overlay->status(), QStringLiteral("In game · live game (level 9)"));

        m_windows->list = QList<WindowListSource::Window>{}; // the game ended
        QTRY_COMPARE(m_overlay->status(), QStringLiteral("Waiting for a game…"));
        QVERIFY(!stripShown());

        m_windows->list = std::nullopt; // the window server cannot be asked
        passes(2);
        QCOMPARE(m_overlay->status(), QStringLiteral("Waiting for a game…"));
    }

    // Switched off while the game has the request: off at once, and the answer is never used.
    void offWhileARequestIsInFlight() {
        answer("Ahri", 3, {{"Q", 2}, {"W", 1}});
        showGameWindow();
        m_overlay->setEnabled(true);
        QTRY_VERIFY(stripShown());
        m_game->setStalling(true);
        const int answered = m_game->requestCount();
        QTRY_COMPARE(m_game->requestCount(), answered + 1);

        m_overlay->setEnabled(false);
        QCOMPARE(m_overlay->status(), QStringLiteral("Overlay is off."));
        QVERIFY(!stripShown());
        QVERIFY(!m_overlay->isPolling());
        const int queries = m_windows->queries;
        QTest::qWait(200);
        QCOMPARE(m_windows->queries, queries);
        QCOMPARE(m_game->requestCount(), answered + 1);
        QCOMPARE(m_overlay->status(), QStringLiteral("Overlay is off."));
    }

    void destroyedWhileARequestIsInFlight() {
        m_game->setStalling(true);
        showGameWindow();
        m_overlay->setEnabled(true);
        QTRY_COMPARE(m_game->requestCount(), 1);
        m_overlay.reset(); // must neither crash nor leave the loop behind
        QTest::qWait(50);
    }

    void enablingTwiceKeepsTheLoop() {
        QSignalSpy enabled(m_overlay.get(), &OverlayManager::enabledChanged);
        QSignalSpy status(m_overlay.get(), &OverlayManager::statusChanged);
        m_overlay->setEnabled(true);
        QCOMPARE(m_windows->queries, 1); // the first pass runs at once
        m_overlay->setEnabled(true);
        QCOMPARE(m_windows->queries, 1); // a restart would have run a pass
        QCOMPARE(enabled.size(), 1);
        QCOMPARE(status.size(), 1);
        QVERIFY(m_overlay->isPolling());
        // Off and on again: a new loop, and still one at a time.
        m_overlay->setEnabled(false);
        m_overlay->setEnabled(true);
        QTest::qWait(200);
        QVERIFY2(m_windows->queries <= 2 + 200 / 20 + 2, qPrintable(QString::number(m_windows->queries)));
    }

    // The passes are 2 s apart without a game window and 1.5 s apart with one.
    void cadence() {
        m_overlay->setCadence({});
        QElapsedTimer clock;
        m_overlay->setEnabled(true);
        clock.start();
        QTRY_VERIFY_WITH_TIMEOUT(m_windows->queries == 2, 4000);
        const qint64 withoutWindow = clock.restart();
        showGameWindow();
        answer("Ahri", 3, {{"Q", 3}});
        QTRY_VERIFY_WITH_TIMEOUT(m_windows->queries == 3, 4000); // this pass finds the window
        clock.restart();
        QTRY_VERIFY_WITH_TIMEOUT(m_windows->queries == 4, 4000);
        const qint64 withWindow = clock.elapsed();
        // Qt's coarse timers may end up to 5 % early, and this machine is shared.
        QVERIFY2(withoutWindow >= 1900 && withoutWindow < 2600, qPrintable(QString::number(withoutWindow)));
        QVERIFY2(withWindow >= 1425 && withWindow < 2100, qPrintable(QString::number(withWindow)));
    }

    // The settings screen: the dot is lit only by the live text; the first bullet's reason.
    void settingsScreen() {
        OverlayViewModel view;
        QSignalSpy live(&view, &OverlayViewModel::statusIsLiveChanged);
        view.setOverlay(m_overlay.get());
        QCOMPARE(view.statusIsLive(), false);
        showGameWindow();
        m_overlay->setEnabled(true);
        QTRY_COMPARE(m_overlay->status(), QStringLiteral("Game window found — waiting for live data…"));
        QCOMPARE(view.statusIsLive(), false);
        answer("Lux", 4, {});
        QTRY_COMPARE(view.statusIsLive(), true);
        m_overlay->setEnabled(false);
        QCOMPARE(view.statusIsLive(), false);
        QCOMPARE(live.size(), 2);

        const QString run = QStringLiteral("Run League in **Borderless** mode (Settings → Video). The overlay can't "
                                           "draw over true fullscreen — ");
        QCOMPARE(OverlayViewModel::howItWorks(false).value(0), run + "the game then owns the whole screen.");
        QCOMPARE(OverlayViewModel::howItWorks(true).value(0), run + "macOS gives it a separate Space.");
        QCOMPARE(view.howItWorks(), OverlayViewModel::howItWorks(false));
        QCOMPARE(view.howItWorks().mid(1), OverlayViewModel::howItWorks(true).mid(1));
        QCOMPARE(view.howItWorks().size(), 4);
    }
};

QTEST_MAIN(TestOverlayManager)
#include "tst_overlay_manager.moc"
