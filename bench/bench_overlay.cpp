// What the in-game overlay costs (plain executable):
//   bench_overlay [--seconds N] [--app PATH] [--on-only] [--off-only]
// On: an overlay manager, switched on, against a stand-in game in a child process (a window of
// 1280 × 720 owned by a process started as "League of Legends", and the live game's HTTPS API,
// which levels an ability every 10 s so the strip redraws). Reported: the process's average CPU
// over the run, as a share of one core (target ≤ 0.5 %), and the main thread's CPU per pass
// (target < 2 ms), the window query, request, snapshot and strip update of that pass included.
// On an X display (DISPLAY, or run it under xvfb-run) the window list is the X server's and the
// strip a real window; without one both are the offscreen platform's and the window list a fake.
// Off: the real app, signed in against a fake backend and left alone on the overlay switched
// off, while a fake live game listens on 127.0.0.1:2999 (target 0.0 % CPU, no request), and an
// overlay manager left off in this process (no window query, no request, no timer).

#include "archive/sync_engine.h"
#include "overlay/overlay_manager.h"
#include "overlay/x11_window_list.h"
#include "support/fake_backend.h"
#include "support/fake_live_game.h"
#include "support/fake_window_list.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>
#include <QProcess>
#include <QRasterWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <sys/resource.h>
#include <unistd.h>

namespace {

double seconds(const timeval& t) {
    return double(t.tv_sec) + double(t.tv_usec) / 1e6;
}

double processCpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double threadCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// utime + stime of another process, in seconds.
double cpuSecondsOf(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = stat.readAll();
    // The fields after the command name, which may hold spaces, start after its ')'.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    return double(fields[11].toLongLong() + fields[12].toLongLong()) / double(sysconf(_SC_CLK_TCK));
}

// The stand-in game: a window and the live API, in a process of its own so that its work is not
// counted as the overlay's.
int serveStandIn() {
    FakeLiveGame live;
    qint64 level = 6;
    QMap<QString, qint64> ranks{{"Q", 3}, {"W", 1}, {"E", 1}, {"R", 1}};
    // A real answer's size: the ranked game of the shared fixtures (54 KB, ten players, 88
    // events) with the active player's level and ranks moving.
    QJsonObject game;
    QFile fixture(QStringLiteral(QF_FIXTURES_DIR "/live-allgamedata-2.json"));
    if (fixture.open(QIODevice::ReadOnly))
        game = QJsonDocument::fromJson(fixture.readAll()).object();
    if (game.isEmpty())
        std::fprintf(stderr, "No fixture: the stand-in answers a small made-up game\n");
    const auto answer = [&] {
        if (game.isEmpty()) {
            live.setAnswer(FakeResponse::json(FakeLiveGame::game("Ahri", level, ranks)));
            return;
        }
        QJsonObject active = game.value("activePlayer").toObject();
        QJsonObject abilities = active.value("abilities").toObject();
        for (auto it = ranks.cbegin(); it != ranks.cend(); ++it) {
            QJsonObject ability = abilities.value(it.key()).toObject();
            ability.insert("abilityLevel", it.value());
            abilities.insert(it.key(), ability);
        }
        active.insert("abilities", abilities);
        active.insert("level", level);
        game.insert("activePlayer", active);
        live.setAnswer(FakeResponse::json(game));
    };
    answer();
    QTimer levelUp;
    QObject::connect(&levelUp, &QTimer::timeout, [&] {
        level = std::min<qint64>(level + 1, 18);
        ++ranks[level % 2 ? "E" : "Q"];
        answer();
    });
    levelUp.start(10'000);
    std::unique_ptr<QRasterWindow> window;
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        window = std::make_unique<QRasterWindow>();
        window->setGeometry(100, 80, 1280, 720);
        window->show();
    }
    std::printf("%d\n", live.port());
    std::fflush(stdout);
    return QGuiApplication::exec();
}

// Counts the passes and the main thread's CPU between the starts of consecutive passes.
class TimedWindowList : public WindowListSource {
public:
    explicit TimedWindowList(std::shared_ptr<WindowListSource> inner) : m_inner(std::move(inner)) {}
    std::optional<QList<Window>> windows() override {
        const double now = threadCpuSeconds();
        if (m_last >= 0)
            passes.push_back(now - m_last);
        m_last = now;
        return m_inner->windows();
    }
    std::vector<double> passes; // main-thread seconds per pass, the last one still open
private:
    std::shared_ptr<WindowListSource> m_inner;
    double m_last = -1;
};

// Runs the event loop for a while, sleeping whenever nothing is due.
void wait(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

bool measureOn(const QString& self, int runSeconds) {
    const bool onX11 = QGuiApplication::platformName() == QLatin1String("xcb");
    QProcess standIn;
    standIn.setProgram(QStringLiteral("/bin/bash"));
    standIn.setArguments({QStringLiteral("-c"), QStringLiteral("exec -a \"League of Legends\" \"$0\" \"$@\""), self,
                          QStringLiteral("--serve-stand-in")});
    standIn.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    standIn.start();
    if (!standIn.waitForReadyRead(20'000)) {
        std::fprintf(stderr, "The stand-in game did not start\n");
        return false;
    }
    const quint16 port = quint16(standIn.readLine().trimmed().toUInt());

    std::shared_ptr<WindowListSource> source;
    if (onX11) {
        source = std::make_shared<X11WindowList>();
    } else {
        auto fake = std::make_shared<FakeWindowList>();
        fake->list =
            QList{WindowListSource::Window{QStringLiteral("League of Legends"), 0, QRectF(100, 80, 1280, 720)}};
        source = fake;
    }
    auto timed = std::make_shared<TimedWindowList>(source);
    OverlayManager overlay({timed, &WindowLocator::systemScreens, port});
    overlay.setEnabled(true);
    // The first passes connect to the game and make the strip's window; they are not the steady state.
    QElapsedTimer clock;
    clock.start();
    while (!overlay.status().startsWith(QLatin1String("In game")) && clock.elapsed() < 20'000)
        wait(100);
    wait(3'000);
    if (!overlay.status().startsWith(QLatin1String("In game"))) {
        std::fprintf(stderr, "The overlay never saw the game: %s\n", qPrintable(overlay.status()));
        return false;
    }
    timed->passes.clear();
    const double cpuBefore = processCpuSeconds();
    clock.restart();
    wait(runSeconds * 1000);
    const double wall = double(clock.elapsed()) / 1000.0;
    const double cpu = processCpuSeconds() - cpuBefore;
    std::vector<double> passes = timed->passes;
    if (!passes.empty())
        passes.erase(passes.begin()); // it straddles the start of the measurement
    overlay.setEnabled(false);
    standIn.kill();
    standIn.waitForFinished();

    const std::vector<double> inOrder = passes;
    std::sort(passes.begin(), passes.end());
    const double mean = passes.empty() ? 0 : std::accumulate(passes.begin(), passes.end(), 0.0) / double(passes.size());
    const auto ms = [](double s) { return s * 1000; };
    std::printf("Overlay on (%s), %.0f s: %zu passes, process CPU %.3f s = %.2f %% of one core (target <= 0.5 %%)\n",
                onX11 ? "X11 window list, real strip window" : "offscreen, fake window list", wall, passes.size(), cpu,
                100 * cpu / wall);
    if (!passes.empty())
        std::printf("  main thread per pass: mean %.2f ms, median %.2f ms, 90th percentile %.2f ms, max %.2f ms "
                    "(target < 2 ms)\n",
                    ms(mean), ms(passes[passes.size() / 2]), ms(passes[passes.size() * 9 / 10]), ms(passes.back()));
    std::printf("  passes in order (ms):");
    for (const double pass : inOrder)
        std::printf(" %.2f", ms(pass));
    std::printf("\n");
    std::printf("  status at the end: %s\n", qPrintable(overlay.status()));
    return true;
}

// The overlay left off in this process: nothing is asked of the window list or the game.
bool measureOffInProcess(int runSeconds) {
    auto windows = std::make_shared<FakeWindowList>();
    FakeLiveGame live;
    OverlayManager overlay({windows, &WindowLocator::systemScreens, live.port()});
    const double cpuBefore = processCpuSeconds();
    QElapsedTimer clock;
    clock.start();
    wait(runSeconds * 1000);
    const double wall = double(clock.elapsed()) / 1000.0;
    std::printf("Overlay off, in process, %.0f s: %d window queries, %d requests, polling %s, CPU %.2f %%\n", wall,
                windows->queries, live.requestCount(), overlay.isPolling() ? "yes" : "no",
                100 * (processCpuSeconds() - cpuBefore) / wall);
    return windows->queries == 0 && live.requestCount() == 0;
}

void scriptBackend(FakeBackend& backend) {
    backend.on("POST", QStringLiteral("/api/riot-accounts/refresh"),
               FakeResponse::json({{"riot_accounts", QJsonArray{}}}));
    backend.on("GET", QStringLiteral("/api/riot-accounts"), FakeResponse::json({{"riot_accounts", QJsonArray{}}}));
    backend.on("GET", QStringLiteral("/api/sync"),
               FakeResponse::json({{"matches", QJsonArray{}},
                                   {"participants", QJsonArray{}},
                                   {"rank_snapshots", QJsonArray{}},
                                   {"performance_scores", QJsonArray{}},
                                   {"has_more", false}}));
    backend.on("GET", QStringLiteral("/api/stats/duos"), FakeResponse::json({{"duos", QJsonArray{}}}));
    backend.on("GET", QStringLiteral("/api/static/version"), FakeResponse::json({{"version", "16.11.1"}}));
}

// The real app, signed in and left alone with the overlay off, while something answers where the
// game would.
bool measureOffApp(const QString& app, int runSeconds) {
    QTemporaryDir home;
    const QString data = home.filePath(QStringLiteral("data"));
    const QString config = home.filePath(QStringLiteral("config"));
    QDir().mkpath(data + QStringLiteral("/QuillFern/QuillFern"));
    QDir().mkpath(config + QStringLiteral("/QuillFern"));
    FakeBackend backend;
    scriptBackend(backend);
    {
        QSettings settings(config + QStringLiteral("/QuillFern/QuillFern.conf"), QSettings::IniFormat);
        settings.setValue("backendBaseURL", backend.baseUrl().toString());
        settings.setValue("quill.cdnBaseURL", backend.baseUrl().toString() + QStringLiteral("/cdn/"));
        settings.setValue(SyncEngine::mirrorVersionKey, SyncEngine::mirrorVersion);
        settings.setValue("authToken", "bench-token");
    }
    // The app always asks port 2999; a fake game there counts whatever it is asked.
    FakeLiveGame gamePort(LiveClientData::gamePort);
    const bool listening = gamePort.port() == LiveClientData::gamePort;

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), data);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config);
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.filePath(QStringLiteral("cache")));
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(app, {});
    if (!process.waitForStarted(10'000)) {
        std::fprintf(stderr, "Could not start %s\n", qPrintable(app));
        return false;
    }
    // Its start is over once it has pulled and a few quiet seconds have passed.
    QElapsedTimer clock;
    clock.start();
    while (backend.requestsTo(QStringLiteral("/api/sync")).isEmpty() && clock.elapsed() < 60'000)
        wait(100);
    wait(8'000);
    const double before = cpuSecondsOf(process.processId());
    clock.restart();
    wait(runSeconds * 1000);
    const double wall = double(clock.elapsed()) / 1000.0;
    const double cpu = cpuSecondsOf(process.processId()) - before;
    process.terminate();
    if (!process.waitForFinished(5'000))
        process.kill();
    std::printf("The app, signed in, overlay off, %.0f s: CPU %.3f s = %.2f %% of one core (target 0.0 %%); "
                "requests to 127.0.0.1:2999: %s\n",
                wall, cpu, 100 * cpu / wall,
                listening ? qPrintable(QString::number(gamePort.requestCount())) : "(port taken, not counted)");
    return cpu >= 0 && (!listening || gamePort.requestCount() == 0);
}

} // namespace

int main(int argc, char** argv) {
    const QStringList arguments = [&] {
        QStringList list;
        for (int i = 0; i < argc; ++i)
            list << QString::fromLocal8Bit(argv[i]);
        return list;
    }();
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    if (arguments.contains(QStringLiteral("--serve-stand-in")))
        return serveStandIn();

    int runSeconds = 60;
    QString app = QStringLiteral(QF_APP_PATH);
    for (qsizetype i = 1; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("--seconds"))
            runSeconds = std::max(1, arguments[i + 1].toInt());
        else if (arguments[i] == QLatin1String("--app"))
            app = arguments[i + 1];
    }
    bool ok = true;
    if (!arguments.contains(QStringLiteral("--off-only")))
        ok &= measureOn(QCoreApplication::applicationFilePath(), runSeconds);
    if (!arguments.contains(QStringLiteral("--on-only"))) {
        ok &= measureOffInProcess(runSeconds);
        ok &= measureOffApp(app, runSeconds);
    }
    return ok ? 0 : 1;
}
