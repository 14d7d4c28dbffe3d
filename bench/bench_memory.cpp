// Starts the real app twice, over an empty archive and over the synthetic one, signed in against
// a loopback backend, and prints what each holds resident once it has settled, and the
// difference: what the archive costs in memory. With --visit (on a virtual X display of its own,
// Xvfb and xdotool needed, as the offscreen platform takes no clicks) it then opens every archive
// screen from the sidebar and measures again once the app has settled after each, and also
// starts both on the offscreen platform; without, the app runs on the offscreen platform and
// shows the overview.
//
//   bench_memory [--games N] [--app PATH] [--settle-ms N] [--visit]
//
// Run it on a Release build: a Debug app is larger and slower to settle.

#include "archive/archive_store.h"
#include "archive/sync_engine.h"
#include "bench/synthetic_archive.h"
#include "support/fake_backend.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <optional>
#include <vector>

namespace {

// The figures of /proc/<pid>/status, in kB.
struct Resident {
    qint64 now = 0;  // VmRSS
    qint64 peak = 0; // VmHWM
};

std::optional<Resident> residentOf(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return std::nullopt;
    Resident resident;
    for (const QByteArray& line : status.readAll().split('\n')) {
        const auto kilobytes = [&line] { return line.mid(6).trimmed().split(' ').value(0).toLongLong(); };
        if (line.startsWith("VmRSS:"))
            resident.now = kilobytes();
        else if (line.startsWith("VmHWM:"))
            resident.peak = kilobytes();
    }
    return resident;
}

QJsonObject accountJson(const RiotAccountDto& account) {
    QJsonObject json{
        {"id", account.id}, {"puuid", account.puuid}, {"platform", account.platform}, {"region", account.region}};
    if (account.gameName)
        json.insert("game_name", *account.gameName);
    if (account.tagLine)
        json.insert("tag_line", *account.tagLine);
    return json;
}

// What the app asks of the backend at a signed-in start: the owner's accounts, an archive that
// has nothing new, no duos and the data version.
void script(FakeBackend& backend, const QList<RiotAccountDto>& accounts) {
    QJsonArray list;
    for (const RiotAccountDto& account : accounts)
        list.append(accountJson(account));
    backend.on("POST", QStringLiteral("/api/riot-accounts/refresh"), FakeResponse::json({{"riot_accounts", list}}));
    backend.on("GET", QStringLiteral("/api/riot-accounts"), FakeResponse::json({{"riot_accounts", list}}));
    backend.on("GET", QStringLiteral("/api/sync"),
               FakeResponse::json({{"matches", QJsonArray{}},
                                   {"participants", QJsonArray{}},
                                   {"rank_snapshots", QJsonArray{}},
                                   {"performance_scores", QJsonArray{}},
                                   {"has_more", false}}));
    backend.on("GET", QStringLiteral("/api/stats/duos"), FakeResponse::json({{"duos", QJsonArray{}}}));
    backend.on("GET", QStringLiteral("/api/static/version"), FakeResponse::json({{"version", "16.11.1"}}));
}

struct Run {
    bool ok = false;
    Resident settled;
    Resident visited;              // after every archive screen was opened, with --visit
    std::vector<Resident> screens; // after each of them, in sidebar order
    double seconds = 0;            // from the launch until the figure settled
};

// Where the sidebar's entries lie in the window at its first size, top-left at the screen's
// origin (no window manager), in the order they are opened.
constexpr int sidebarX = 73;
constexpr int sidebarEntries[] = {190, 230, 270, 310, 350, 150};
constexpr const char* sidebarNames[] = {"Match History", "Champions", "Rank", "Friends", "Search", "Overview"};

// Waits until the resident size has stayed within 1 MB for settleMs; the last size, or none when
// the process went away or two minutes passed.
std::optional<Resident> settle(QProcess& process, int settleMs, const std::function<bool()>& ready) {
    QElapsedTimer clock;
    clock.start();
    QElapsedTimer steady;
    qint64 mark = 0;
    while (clock.elapsed() < 120'000 && process.state() == QProcess::Running) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        const auto sample = residentOf(process.processId());
        if (!sample)
            return std::nullopt;
        if (!ready())
            continue;
        if (!steady.isValid() || std::abs(sample->now - mark) > 1024) {
            steady.start();
            mark = sample->now;
        }
        if (steady.elapsed() >= settleMs)
            return sample;
    }
    return std::nullopt;
}

// One start of the app in a home of its own. The figure counts once the app has pulled (its
// start is over) and its resident size has moved by less than 1 MB for settleMs. display is the
// X display to run on for --visit, or empty for the offscreen platform.
Run measure(const QString& app, const SyntheticArchive* archive, int settleMs, const QString& display) {
    Run run;
    QTemporaryDir home;
    const QString data = home.filePath(QStringLiteral("data"));
    const QString config = home.filePath(QStringLiteral("config"));
    // Where the app's default store and settings lie under these XDG folders.
    const QString appFolder = QStringLiteral("/QuillFern/QuillFern");
    QDir().mkpath(data + appFolder);
    QDir().mkpath(config + QStringLiteral("/QuillFern"));

    FakeBackend backend;
    script(backend, archive ? archive->ownerAccounts() : QList<RiotAccountDto>{});
    {
        QSettings settings(config + QStringLiteral("/QuillFern/QuillFern.conf"), QSettings::IniFormat);
        settings.setValue("backendBaseURL", backend.baseUrl().toString());
        // Images are looked for on the loopback backend, which has none: no waiting on a CDN.
        settings.setValue("quill.cdnBaseURL", backend.baseUrl().toString() + QStringLiteral("/cdn/"));
        settings.setValue(SyncEngine::mirrorVersionKey, SyncEngine::mirrorVersion);
        settings.setValue("authToken", "bench-token");
    }
    if (archive) {
        ArchiveStore store(data + appFolder + QStringLiteral("/archive.sqlite"));
        archive->fill(store);
    }

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (display.isEmpty()) {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    } else {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("DISPLAY"), display);
        // Drawn as on the offscreen platform, by Qt Quick's software renderer: the archive's share
        // then comes out as offscreen (64.7 against 64.8 MB when measured side by side), where
        // Mesa's OpenGL on Xvfb would add some 100 MB of its own to both runs.
        environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
    }
    environment.insert(QStringLiteral("XDG_DATA_HOME"), data);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config);
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.filePath(QStringLiteral("cache")));
    process.setProcessEnvironment(environment);
    // The app says on stderr what it cannot load (every image: the loopback backend has none);
    // that is kept aside and shown only when the run fails.
    const QString log = home.filePath(QStringLiteral("app.log"));
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(log);
    QElapsedTimer clock;
    clock.start();
    process.start(app, {});
    if (!process.waitForStarted(10'000)) {
        std::fprintf(stderr, "Could not start %s\n", qPrintable(app));
        return run;
    }

    const auto synced = [&backend] { return !backend.requestsTo(QStringLiteral("/api/sync")).isEmpty(); };
    if (const auto started = settle(process, settleMs, synced)) {
        run.settled = *started;
        run.visited = *started;
        run.seconds = static_cast<double>(clock.elapsed()) / 1000.0;
        run.ok = true;
        for (int y : display.isEmpty() ? std::vector<int>{}
                                       : std::vector<int>(std::begin(sidebarEntries), std::end(sidebarEntries))) {
            QProcess click;
            click.setProcessEnvironment(environment);
            click.start(QStringLiteral("xdotool"), {QStringLiteral("mousemove"), QString::number(sidebarX),
                                                    QString::number(y), QStringLiteral("click"), QStringLiteral("1")});
            click.waitForFinished(5'000);
            const auto after = settle(process, settleMs, [] { return true; });
            if (!after) {
                run.ok = false;
                break;
            }
            run.visited = *after;
            run.screens.push_back(*after);
        }
    }
    if (!run.ok) {
        std::fprintf(stderr, "The app %s before it settled. The end of what it said:\n",
                     process.state() == QProcess::Running ? "took too long" : "ended");
        QFile said(log);
        if (said.open(QIODevice::ReadOnly))
            std::fprintf(stderr, "%s\n", said.readAll().right(2000).constData());
    }
    process.terminate();
    if (!process.waitForFinished(5'000)) {
        process.kill();
        process.waitForFinished(5'000);
    }
    return run;
}

double megabytes(qint64 kilobytes) {
    return static_cast<double>(kilobytes) / 1024.0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Resident memory of the app with and without a large archive"));
    parser.addHelpOption();
    const QCommandLineOption gamesOption(QStringLiteral("games"), QStringLiteral("Games in the archive."),
                                         QStringLiteral("n"), QStringLiteral("20000"));
    const QCommandLineOption appOption(QStringLiteral("app"), QStringLiteral("The app to start."),
                                       QStringLiteral("path"), QStringLiteral(QF_APP_PATH));
    const QCommandLineOption settleOption(QStringLiteral("settle-ms"),
                                          QStringLiteral("How long the resident size must hold still."),
                                          QStringLiteral("ms"), QStringLiteral("3000"));
    const QCommandLineOption visitOption(QStringLiteral("visit"),
                                         QStringLiteral("Open every archive screen (Xvfb and xdotool)."));
    parser.addOptions({gamesOption, appOption, settleOption, visitOption});
    parser.process(application);

    const QString app = parser.value(appOption);
    if (!QFileInfo(app).isExecutable()) {
        std::fprintf(stderr, "No app at %s (--app PATH)\n", qPrintable(app));
        return 1;
    }
    SyntheticArchiveOptions options;
    options.games = parser.value(gamesOption).toInt();
    const SyntheticArchive archive(options);
    const int settleMs = parser.value(settleOption).toInt();

    // A display of its own for --visit, so that the clicks reach no one else's windows.
    QProcess xvfb;
    QString display;
    if (parser.isSet(visitOption)) {
        display = QStringLiteral(":87");
        xvfb.start(QStringLiteral("Xvfb"),
                   {display, QStringLiteral("-screen"), QStringLiteral("0"), QStringLiteral("1440x900x24")});
        if (!xvfb.waitForStarted(5'000)) {
            std::fprintf(stderr, "--visit needs Xvfb\n");
            return 1;
        }
        QThread::sleep(1);
    }
    std::printf("App: %s (%s, signed in)\n", qPrintable(app),
                display.isEmpty() ? "offscreen, overview shown" : "Xvfb, every archive screen opened in turn");
    std::printf("Archive: %lld games, %s rows\n\n", static_cast<long long>(archive.matches().size()),
                qPrintable(QLocale(QLocale::English).toString(static_cast<qint64>(archive.recordCount()))));

    const Run empty = measure(app, nullptr, settleMs, display);
    const Run full = measure(app, &archive, settleMs, display);
    // The offscreen starts as well, so that the figure after every screen can be set on them.
    const Run emptyOffscreen = display.isEmpty() ? empty : measure(app, nullptr, settleMs, QString());
    const Run fullOffscreen = display.isEmpty() ? full : measure(app, &archive, settleMs, QString());
    if (xvfb.state() == QProcess::Running) {
        xvfb.terminate();
        xvfb.waitForFinished(5'000);
    }
    if (!empty.ok || !full.ok || !emptyOffscreen.ok || !fullOffscreen.ok)
        return 1;

    std::printf("%-24s %12s %12s %10s\n", "Start", "resident MB", "peak MB", "settled");
    std::printf("%-24s %12.1f %12.1f %9.1fs\n", "empty archive", megabytes(empty.settled.now),
                megabytes(empty.settled.peak), empty.seconds);
    std::printf("%-24s %12.1f %12.1f %9.1fs\n", qPrintable(QStringLiteral("%1-game archive").arg(options.games)),
                megabytes(full.settled.now), megabytes(full.settled.peak), full.seconds);
    if (!display.isEmpty()) {
        std::printf("\nOn Xvfb, each screen opened in turn   empty MB    full MB   share MB\n");
        for (std::size_t i = 0; i < full.screens.size() && i < empty.screens.size(); ++i)
            std::printf("  %-34s %10.1f %10.1f %10.1f\n", sidebarNames[i], megabytes(empty.screens[i].now),
                        megabytes(full.screens[i].now), megabytes(full.screens[i].now - empty.screens[i].now));
        std::printf("  %-34s %10.1f %10.1f\n", "peak", megabytes(empty.visited.peak), megabytes(full.visited.peak));
        std::printf("\nOffscreen start                %12.1f MB empty, %.1f MB full\n",
                    megabytes(emptyOffscreen.settled.now), megabytes(fullOffscreen.settled.now));
    }
    const qint64 difference = full.settled.now - empty.settled.now;
    std::printf("\nThe archive's share: %.1f MB resident at start (%.0f bytes per row)\n", megabytes(difference),
                static_cast<double>(difference) * 1024.0 / static_cast<double>(archive.recordCount()));
    if (!display.isEmpty()) {
        const qint64 visitedShare = full.visited.now - empty.visited.now;
        std::printf("The archive's share after every screen: %.1f MB\n", megabytes(visitedShare));
        std::printf("The offscreen app after every screen (its empty start + that share): %.1f MB\n",
                    megabytes(emptyOffscreen.settled.now + visitedShare));
    }
    return 0;
}
