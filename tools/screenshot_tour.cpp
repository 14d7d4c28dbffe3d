// Renders every screen of the app with a prepared archive, headless, one PNG per screen:
//   screenshot_tour OUTPUT_FOLDER [GAMES] [WIDTHxHEIGHT]
// Run it under QT_QPA_PLATFORM=offscreen (scripts/tour does). The archive comes from the
// synthetic generator; a loopback fake backend answers the few calls a start-up makes.

#include "archive/archive_store.h"
#include "screens/history_model.h"
#include "screens/rank_model.h"
#include "session/app_state.h"
#include "support/fake_backend.h"
#include "synthetic_archive.h"
#include "theme/fonts.h"
#include "theme/game_images.h"

#include <QAbstractItemModel>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHash>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <QtQml/QQmlExtensionPlugin>
#include <cstdio>
#include <functional>

Q_IMPORT_QML_PLUGIN(QuillFern_AppPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ThemePlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_SessionPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ScreensPlugin)

namespace {

// The friends as the backend's duo statistics give them: the games each played on the owner's team.
QJsonArray duosJson(const SyntheticArchive& archive) {
    const QSet<QString> owners = archive.ownerPuuids();
    QHash<qint64, std::pair<qint64, bool>> ownerSide; // game -> (team, won)
    for (const ParticipantDto& p : archive.participants())
        if (owners.contains(p.puuid))
            ownerSide.insert(p.matchId, {p.teamId, p.win});
    const QStringList puuids = archive.friendPuuids();
    QHash<QString, std::pair<qint64, qint64>> together; // puuid -> (games, wins)
    for (const ParticipantDto& p : archive.participants()) {
        const auto side = ownerSide.constFind(p.matchId);
        if (side != ownerSide.cend() && side->first == p.teamId && puuids.contains(p.puuid)) {
            ++together[p.puuid].first;
            together[p.puuid].second += side->second ? 1 : 0;
        }
    }
    QJsonArray duos;
    for (qsizetype i = 0; i < puuids.size(); ++i) {
        const auto [games, wins] = together.value(puuids[i]);
        if (games == 0)
            continue;
        duos.append(QJsonObject{{"puuid", puuids[i]},
                                {"riot_id", archive.friendRiotIds().value(i)},
                                {"games", games},
                                {"wins", wins},
                                {"losses", games - wins},
                                {"winrate", double(wins) / double(games)}});
    }
    return duos;
}

QJsonObject accountJson(const RiotAccountDto& a) {
    QJsonObject json{{"id", a.id}, {"puuid", a.puuid}, {"platform", a.platform}, {"region", a.region}};
    if (a.gameName)
        json.insert("game_name", *a.gameName);
    if (a.tagLine)
        json.insert("tag_line", *a.tagLine);
    if (a.profileIconId)
        json.insert("profile_icon_id", *a.profileIconId);
    if (a.summonerLevel)
        json.insert("summoner_level", *a.summonerLevel);
    return json;
}

void settle(int ms) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        // Views a Loader replaced are deleted later; they must be gone before the next search.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

bool waitUntil(const std::function<bool()>& done, int ms = 15000) {
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

// One run of the app on its own settings and archive.
struct Scene {
    QTemporaryDir dir;
    FakeBackend backend;
    std::unique_ptr<QSettings> settings;
    QNetworkAccessManager network;
    std::unique_ptr<ArchiveStore> store;
    std::unique_ptr<AppState> state;
    std::unique_ptr<GameImages> images;
    std::unique_ptr<QQmlApplicationEngine> engine;
    QQuickWindow* window = nullptr;

    static inline QSize windowSize{1280, 800};

    Scene(const SyntheticArchive* archive, bool signedIn, const QString& backendUrl = QString()) {
        settings = std::make_unique<QSettings>(dir.filePath("settings.ini"), QSettings::IniFormat);
        settings->setValue("backendBaseURL", backendUrl.isEmpty() ? backend.baseUrl().toString() : backendUrl);
        // Images come from a CDN this machine may not reach: point it at the loopback backend so
        // the fallbacks show at once instead of after a time-out.
        settings->setValue("quill.cdnBaseURL", backend.baseUrl().toString() + "/cdn/");
        settings->setValue("quill.mirrorVersion", 5);
        if (signedIn)
            settings->setValue("authToken", "tour-token");
        QJsonArray accounts;
        if (archive)
            for (const RiotAccountDto& account : archive->ownerAccounts())
                accounts.append(accountJson(account));
        backend.on("POST", "/api/riot-accounts/refresh", FakeResponse::json({{"riot_accounts", accounts}}));
        backend.on("GET", "/api/riot-accounts", FakeResponse::json({{"riot_accounts", accounts}}));
        backend.on("GET", "/api/sync",
                   FakeResponse::json({{"matches", QJsonArray{}},
                                       {"participants", QJsonArray{}},
                                       {"rank_snapshots", QJsonArray{}},
                                       {"performance_scores", QJsonArray{}},
                                       {"has_more", false}}));
        backend.on("GET", "/api/stats/duos",
                   FakeResponse::json({{"duos", archive ? duosJson(*archive) : QJsonArray{}}}));
        backend.on("GET", "/api/static/version", FakeResponse::json({{"version", "16.11.1"}}));

        store = std::make_unique<ArchiveStore>(dir.filePath("archive.sqlite"));
        if (archive)
            archive->fill(*store);
        state = std::make_unique<AppState>(*settings, network);
        AppState::exposeToQml(state.get());
        images = std::make_unique<GameImages>(state->staticData().dataDragon());
        GameImages::exposeToQml(images.get());

        engine = std::make_unique<QQmlApplicationEngine>();
        engine->addImportPath("qrc:/qt/qml");
        engine->load(QUrl("qrc:/qt/qml/QuillFern/App/Main.qml"));
        window = qobject_cast<QQuickWindow*>(engine->rootObjects().value(0));
        if (window)
            window->resize(windowSize);
        state->bootstrap(store.get());
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(400);
    }

    ~Scene() {
        engine.reset();
        GameImages::exposeToQml(nullptr);
        images.reset();
        state.reset();
    }

    // The first object of the window's scene whose type name starts with the given name,
    // searched through both visual and object children.
    QObject* find(const char* typeName) const {
        if (!window)
            return nullptr;
        QList<QObject*> pending{window->contentItem()};
        QSet<QObject*> seen;
        while (!pending.isEmpty()) {
            QObject* object = pending.takeFirst();
            if (!object || seen.contains(object))
                continue;
            seen.insert(object);
            if (QString::fromLatin1(object->metaObject()->className()).startsWith(QLatin1String(typeName)))
                return object;
            pending.append(object->children());
            if (auto* item = qobject_cast<QQuickItem*>(object))
                for (QQuickItem* child : item->childItems())
                    pending.append(child);
        }
        return nullptr;
    }

    // Selects a section, as a click in the sidebar would.
    void select(int section) {
        if (QObject* main = find("MainView"))
            main->setProperty("selection", section);
        settle(300);
    }

    void setFilter(HistoryModel::Filter filter) {
        if (QObject* history = find("HistoryModel"))
            history->setProperty("filter", QVariant::fromValue(filter));
        settle(300);
    }

    // Opens the detail sheet of the newest game of the user, as a click on its row would.
    void openNewestGame() {
        QObject* main = find("MainView");
        QObject* history = find("HistoryModel");
        if (!main || !history)
            return;
        auto* rows = history->property("rows").value<QAbstractItemModel*>();
        if (!rows || rows->rowCount() == 0)
            return;
        const QVariant id = rows->data(rows->index(0, 0), rows->roleNames().key("matchServerId"));
        QMetaObject::invokeMethod(main, "openGame", Q_ARG(QVariant, id));
        settle(500);
    }

    // Types an e-mail and password into the sign-in form and presses its button.
    void signIn(const QString& email, const QString& password) {
        QObject* form = find("LoginForm");
        if (!form)
            return;
        form->setProperty("email", email);
        form->setProperty("password", password);
        QMetaObject::invokeMethod(form, "submit");
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(300);
    }

    // Picks a queue on the rank screen, as its picker would.
    void setRankQueue(RankModel::Queue queue) {
        // Screens left earlier are only deleted later; let them go so that the one in view is found.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (QObject* rank = find("RankModel"))
            rank->setProperty("queue", QVariant::fromValue(queue));
        settle(300);
    }

    bool shoot(const QString& path) {
        if (!window)
            return false;
        const QImage image = window->grabWindow();
        const bool ok = !image.isNull() && image.save(path);
        std::printf("%s %s\n", ok ? "wrote" : "FAILED", qPrintable(path));
        return ok;
    }
};

} // namespace

int main(int argc, char* argv[]) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: screenshot_tour OUTPUT_FOLDER [GAMES] [WIDTHxHEIGHT]\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QDir().mkpath(out.path());
    const int games = argc > 2 ? QByteArray(argv[2]).toInt() : 400;
    if (argc > 3) {
        const QList<QByteArray> size = QByteArray(argv[3]).split('x');
        if (size.size() == 2 && size[0].toInt() > 0 && size[1].toInt() > 0)
            Scene::windowSize = QSize(size[0].toInt(), size[1].toInt());
    }

    QQuickStyle::setStyle("Basic");
    Fonts::load();

    SyntheticArchiveOptions options;
    options.games = games;
    const SyntheticArchive archive(options);

    bool ok = true;
    {
        Scene signIn(nullptr, false);
        ok &= signIn.shoot(out.filePath("signin.png"));
    }
    {
        // A fresh machine with no backend running: the first sign-in meets a refused connection.
        Scene noBackend(nullptr, false, QStringLiteral("http://127.0.0.1:1"));
        noBackend.signIn(QStringLiteral("ada@example.org"), QStringLiteral("correct-horse"));
        ok &= noBackend.shoot(out.filePath("signin-error.png"));
    }
    {
        // What a player sees when the archive cannot be opened.
        QQmlApplicationEngine engine;
        engine.addImportPath("qrc:/qt/qml");
        engine.setInitialProperties(
            {{"message", QStringLiteral("Failed to create the local store: file is not a database")}});
        engine.load(QUrl("qrc:/qt/qml/QuillFern/App/StoreFailure.qml"));
        if (auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0))) {
            settle(300);
            const QString path = out.filePath("store-failure.png");
            const bool saved = window->grabWindow().save(path);
            std::printf("%s %s\n", saved ? "wrote" : "FAILED", qPrintable(path));
            ok &= saved;
        } else {
            ok = false;
        }
    }
    {
        Scene empty(nullptr, true);
        ok &= empty.shoot(out.filePath("overview-empty.png"));
        empty.select(1);
        ok &= empty.shoot(out.filePath("history-empty.png"));
        empty.select(2);
        ok &= empty.shoot(out.filePath("champions-empty.png"));
        empty.select(3);
        ok &= empty.shoot(out.filePath("rank-empty.png"));
    }
    {
        Scene full(&archive, true);
        const char* names[] = {"overview", "history", "champions", "rank", "friends", "search", "overlay"};
        for (int section = 0; section < 7; ++section) {
            full.select(section);
            ok &= full.shoot(out.filePath(QString::fromLatin1(names[section]) + ".png"));
        }
        full.select(3);
        full.setRankQueue(RankModel::Queue::Flex);
        ok &= full.shoot(out.filePath("rank-flex.png"));
        full.select(1);
        full.setFilter(HistoryModel::Filter::Ranked);
        ok &= full.shoot(out.filePath("history-filtered.png"));
        full.setFilter(HistoryModel::Filter::All);
        full.openNewestGame();
        ok &= full.shoot(out.filePath("detail.png"));
    }
    return ok ? 0 : 1;
}
