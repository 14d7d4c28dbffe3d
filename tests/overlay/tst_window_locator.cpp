#include "overlay/overlay_controller.h"
#include "overlay/window_locator.h"
#include "overlay/x11_window_list.h"

#include <QTest>

using Window = WindowListSource::Window;
using Windows = QList<Window>;
Q_DECLARE_METATYPE(Windows)

namespace {

const QString league = QStringLiteral("League of Legends");

Window window(const QString& owner, QRectF bounds, std::optional<qint64> layer = 0) {
    return Window{owner, layer, bounds};
}

// One 1920 × 1080 screen, and a second one to its right.
WindowLocator::Screens twoScreens() {
    return {{QRectF(0, 0, 1920, 1080), QRectF(1920, 0, 2560, 1440)}, QRectF(0, 0, 1920, 1080)};
}

QString describe(const std::optional<WindowLocator::Game>& game) {
    if (!game)
        return QStringLiteral("none");
    const QRectF& f = game->frame;
    return QStringLiteral("%1,%2 %3x%4%5")
        .arg(f.x())
        .arg(f.y())
        .arg(f.width())
        .arg(f.height())
        .arg(game->isFullscreen ? QStringLiteral(" fullscreen") : QString());
}

} // namespace

// Which window is the game's, whether it covers its screen, where the strip goes over it, and
// whose a window is on X11.
class TestWindowLocator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choose_data() {
        QTest::addColumn<Windows>("windows");
        QTest::addColumn<QString>("game");

        QTest::newRow("no windows") << Windows{} << "none";
        QTest::newRow("a borderless game window")
            << Windows{window("firefox", {0, 0, 1920, 1080}), window(league, {320, 180, 1280, 720})}
            << "320,180 1280x720";
        QTest::newRow("200 × 1000 is ignored") << Windows{window(league, {10, 10, 200, 1000})} << "none";
        QTest::newRow("1000 × 200 is ignored") << Windows{window(league, {10, 10, 1000, 200})} << "none";
        QTest::newRow("201 × 201 counts") << Windows{window(league, {10, 10, 201, 201})} << "10,10 201x201";
        QTest::newRow("the larger of two League windows")
            << Windows{window(league, {0, 0, 300, 300}), window(league, {40, 30, 1600, 900})} << "40,30 1600x900";
        QTest::newRow("the largest is a small helper: nothing")
            << Windows{window(league, {0, 0, 150, 150}), window(league, {0, 0, 120, 100})} << "none";
        QTest::newRow("equal areas: the front one")
            << Windows{window(league, {5, 5, 800, 600}), window(league, {50, 50, 600, 800})} << "5,5 800x600";
        QTest::newRow("owner name with more after it")
            << Windows{window(league + ".exe", {100, 100, 1024, 768})} << "100,100 1024x768";
        QTest::newRow("owner name containing it elsewhere")
            << Windows{window("Not League of Legends", {100, 100, 1024, 768})} << "none";
        QTest::newRow("owner name in another case")
            << Windows{window("league of legends", {0, 0, 1024, 768})} << "none";
        QTest::newRow("not on layer 0") << Windows{window(league, {0, 0, 1024, 768}, 20)} << "none";
        QTest::newRow("no layer") << Windows{window(league, {0, 0, 1024, 768}, std::nullopt)} << "none";
        QTest::newRow("no bounds") << Windows{Window{league, 0, std::nullopt}} << "none";
        QTest::newRow("exactly its screen")
            << Windows{window(league, {0, 0, 1920, 1080})} << "0,0 1920x1080 fullscreen";
        QTest::newRow("1.5 narrower still fullscreen")
            << Windows{window(league, {0, 0, 1918.5, 1080})} << "0,0 1918.5x1080 fullscreen";
        QTest::newRow("2 narrower is not") << Windows{window(league, {0, 0, 1918, 1080})} << "0,0 1918x1080";
        QTest::newRow("1.5 shorter still fullscreen")
            << Windows{window(league, {0, 0, 1920, 1078.5})} << "0,0 1920x1078.5 fullscreen";
        QTest::newRow("fullscreen on the second screen")
            << Windows{window(league, {1920, 0, 2560, 1440})} << "1920,0 2560x1440 fullscreen";
        QTest::newRow("the first screen it touches decides")
            << Windows{window(league, {1800, 0, 2560, 1440})} << "1800,0 2560x1440";
        QTest::newRow("off every screen: the main screen decides")
            << Windows{window(league, {-5000, -5000, 1920, 1080})} << "-5000,-5000 1920x1080 fullscreen";
    }
    void choose() {
        QFETCH(Windows, windows);
        QFETCH(QString, game);
        QCOMPARE(describe(WindowLocator::choose(windows, twoScreens())), game);
    }

    void noScreensIsNeverFullscreen() {
        const Windows windows{window(league, {0, 0, 1920, 1080})};
        QCOMPARE(describe(WindowLocator::choose(windows, {})), QStringLiteral("0,0 1920x1080"));
    }

    // The strip sits centred across the game window, its top edge 12 points below the window's.
    void stripOrigin_data() {
        QTest::addColumn<QRectF>("game");
        QTest::addColumn<QSizeF>("strip");
        QTest::addColumn<QPointF>("origin");
        QTest::newRow("1280 × 720 at 100, 80") << QRectF(100, 80, 1280, 720) << QSizeF(208, 63) << QPointF(636, 92);
        QTest::newRow("on a screen left of the primary")
            << QRectF(-1920, 200, 1920, 1080) << QSizeF(240, 80) << QPointF(-1080, 212);
    }
    void stripOrigin() {
        QFETCH(QRectF, game);
        QFETCH(QSizeF, strip);
        QFETCH(QPointF, origin);
        QCOMPARE(OverlayController::stripOrigin(game, strip), origin);
    }

    // A process's name as /proc tells it: argv[0]'s last part, comm only without a command line.
    void processName_data() {
        QTest::addColumn<QByteArray>("commandLine");
        QTest::addColumn<QByteArray>("comm");
        QTest::addColumn<QString>("name");
        QTest::newRow("started under the name")
            << QByteArray("League of Legends\0--windowed\0", 29) << QByteArray("stand_in_game\n") << league;
        QTest::newRow("Wine's Windows path")
            << QByteArray("C:\\Riot Games\\League of Legends\\Game\\League of Legends.exe\0", 59)
            << QByteArray("League of Legen\n") << league + ".exe";
        QTest::newRow("a POSIX path") << QByteArray("/usr/bin/firefox\0-P\0", 20) << QByteArray("firefox\n")
                                      << "firefox";
        QTest::newRow("no command line (a zombie)")
            << QByteArray() << QByteArray("League of Legen\n") << "League of Legen";
        QTest::newRow("nothing at all") << QByteArray() << QByteArray() << "";
    }
    void processName() {
        QFETCH(QByteArray, commandLine);
        QFETCH(QByteArray, comm);
        QFETCH(QString, name);
        QCOMPARE(X11WindowList::processName(commandLine, comm), name);
    }
};

QTEST_GUILESS_MAIN(TestWindowLocator)
#include "tst_window_locator.moc"
