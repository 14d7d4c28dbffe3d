// The overlay on a real X server: a window of a process started as "League of Legends" is found
// with its geometry, a small one is ignored, the strip shows centred 12 pixels below the game
// window's top edge, and clicks on the strip reach the game. The test starts an Xvfb of its
// own (1440 × 900) so that it never draws on a desktop; without Xvfb it uses $DISPLAY, and
// without either it skips.

#include "overlay/overlay_manager.h"
#include "overlay/strip_window.h"
#include "overlay/window_locator.h"
#include "overlay/x11_window_list.h"
#include "support/fake_live_game.h"

#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QTest>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// An Xvfb for this test alone; it picks a free display number and tells it through a pipe.
class PrivateXServer {
public:
    PrivateXServer() {
        const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        int pipeEnds[2];
        if (xvfb.isEmpty() || pipe(pipeEnds) != 0)
            return;
        const QByteArray program = xvfb.toLocal8Bit();
        const QByteArray fd = QByteArray::number(pipeEnds[1]);
        m_pid = fork();
        if (m_pid == 0) {
            close(pipeEnds[0]);
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, STDERR_FILENO);
            execl(program.constData(), "Xvfb", "-displayfd", fd.constData(), "-screen", "0", "1440x900x24", "-nolisten",
                  "tcp", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(pipeEnds[1]);
        QByteArray number;
        char c = 0;
        while (m_pid > 0 && read(pipeEnds[0], &c, 1) == 1 && c != '\n')
            number.append(c);
        close(pipeEnds[0]);
        if (!number.isEmpty())
            m_display = ':' + number;
    }
    ~PrivateXServer() {
        if (m_pid > 0) {
            kill(m_pid, SIGTERM);
            waitpid(m_pid, nullptr, 0);
        }
    }
    [[nodiscard]] const QByteArray& display() const { return m_display; }

private:
    pid_t m_pid = -1;
    QByteArray m_display;
};

// The stand-in game window, started under the game's name.
class StandIn {
public:
    StandIn(int x, int y, int width, int height) {
        m_process.setProgram(QStringLiteral("/bin/bash"));
        m_process.setArguments({QStringLiteral("-c"), QStringLiteral("exec -a \"League of Legends\" \"$0\" \"$@\""),
                                QStringLiteral(QF_STAND_IN_GAME), QString::number(x), QString::number(y),
                                QString::number(width), QString::number(height)});
        m_process.start();
    }
    ~StandIn() {
        m_process.kill();
        m_process.waitForFinished();
    }
    // Waits for the window to be on screen.
    bool mapped() { return waitFor("mapped"); }
    // The clicks it has received, as "click X Y" lines.
    bool clickedAt(int x, int y) { return waitFor(QStringLiteral("click %1 %2").arg(x).arg(y).toLatin1()); }

private:
    bool waitFor(const QByteArray& line) {
        for (int i = 0; i < 50 && !m_output.contains(line + '\n'); ++i) {
            m_process.waitForReadyRead(100);
            m_output += m_process.readAllStandardOutput();
        }
        return m_output.contains(line + '\n');
    }

    QProcess m_process;
    QByteArray m_output;
};

bool hasDisplay() {
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

} // namespace

class TestOverlayX11 : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (!hasDisplay())
            QSKIP("no X display (and no Xvfb to start one)");
    }

    // 200 × 1000 is a helper window; 1280 × 720 is the game, wherever it sits.
    void findsTheGameWindow() {
        X11WindowList list;
        WindowLocator locator(std::shared_ptr<WindowListSource>(&list, [](WindowListSource*) {}),
                              &WindowLocator::systemScreens);
        StandIn helper(20, 30, 200, 1000);
        QVERIFY(helper.mapped());
        const auto windows = list.windows();
        QVERIFY(windows);
        bool seen = false;
        for (const WindowListSource::Window& window : *windows)
            seen |= window.ownerName == QLatin1String("League of Legends") &&
                    window.bounds == QRectF(20, 30, 200, 1000) && window.layer == 0;
        QVERIFY2(seen, "the helper window is listed under the game's name");
        QVERIFY(!locator.locate());

        StandIn game(100, 80, 1280, 720);
        QVERIFY(game.mapped());
        const std::optional<WindowLocator::Game> found = locator.locate();
        QVERIFY(found);
        QCOMPARE(found->frame, QRectF(100, 80, 1280, 720));
        QCOMPARE(found->isFullscreen, false);

        StandIn fullscreen(0, 0, 1440, 900);
        QVERIFY(fullscreen.mapped());
        QCOMPARE(locator.locate(), std::make_optional(WindowLocator::Game{QRectF(0, 0, 1440, 900), true}));
    }

    void stripOverTheGame() {
        FakeLiveGame live;
        live.setAnswer(FakeResponse::json(FakeLiveGame::game("Ahri", 3, {{"Q", 2}, {"W", 1}})));
        StandIn game(100, 80, 1280, 720);
        QVERIFY(game.mapped());
        auto windows = std::make_shared<X11WindowList>();
        OverlayManager overlay({windows, &WindowLocator::systemScreens, live.port()});
        overlay.setEnabled(true);
        QTRY_COMPARE(overlay.status(), QStringLiteral("In game · Ahri (level 3)"));
        StripWindow* panel = overlay.controller().panel();
        QVERIFY(QTest::qWaitForWindowExposed(panel));
        const QSize size = panel->size();

        // Where the X server has the strip: centred across the game window, 12 px below its top.
        const QRectF expected(100 + 640 - size.width() / 2, 80 + 12, size.width(), size.height());
        QRectF placed;
        QTRY_VERIFY([&] {
            for (const WindowListSource::Window& window :
                 windows->windows().value_or(QList<WindowListSource::Window>{}))
                if (window.ownerName != QLatin1String("League of Legends") && window.bounds &&
                    window.bounds->size() == QSizeF(size))
                    placed = *window.bounds;
            return placed == expected;
        }());
        qInfo("strip of %dx%d at %g,%g over the game window at 100,80 (1280x720)", size.width(), size.height(),
              placed.x(), placed.y());

        // It is drawn there: the pixel under the strip's centre is not the stand-in's blue.
        const QPoint centre = placed.center().toPoint();
        const QImage shot = QGuiApplication::primaryScreen()->grabWindow(0, centre.x() - 2, centre.y(), 5, 1).toImage();
        QVERIFY(!shot.isNull());
        QVERIFY2(shot.pixel(2, 0) != qRgb(0x20, 0x30, 0x50), "the strip is not on screen");

        // A click on the strip goes through to the game.
        const QString xdotool = QStandardPaths::findExecutable(QStringLiteral("xdotool"));
        if (xdotool.isEmpty())
            QSKIP("xdotool is not installed");
        QCOMPARE(
            QProcess::execute(xdotool, {QStringLiteral("mousemove"), QString::number(centre.x()),
                                        QString::number(centre.y()), QStringLiteral("click"), QStringLiteral("1")}),
            0);
        QVERIFY2(game.clickedAt(centre.x(), centre.y()), "the click did not reach the game window");

        overlay.setEnabled(false);
        QVERIFY(!panel->isVisible());
    }
};

int main(int argc, char* argv[]) {
    PrivateXServer xvfb;
    if (!xvfb.display().isEmpty())
        qputenv("DISPLAY", xvfb.display());
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication app(argc, argv);
    TestOverlayX11 test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_overlay_x11.moc"
