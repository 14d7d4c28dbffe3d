#include "archive/archive_opener.h"
#include "archive/archive_store.h"
#include "session/app_state.h"
#include "theme/fonts.h"
#include "theme/game_images.h"
#include "theme/image_cache.h"

#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSettings>
#include <QtQml/QQmlExtensionPlugin>
#include <cstdio>
#include <memory>
#include <optional>

Q_IMPORT_QML_PLUGIN(QuillFern_AppPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ThemePlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_SessionPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ScreensPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_OverlayPlugin)

namespace {

// Nothing else starts without the archive. The player sees why in a window of its own (a
// message on the terminal alone would go unseen), and the app ends when it is closed.
int reportStoreFailure(const QString& message) {
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    std::fflush(stderr);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("message"), message}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/QuillFern/App/StoreFailure.qml")));
    if (!engine.rootObjects().isEmpty())
        QGuiApplication::exec();
    return 1;
}

} // namespace

int main(int argc, char* argv[]) {
    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("QuillFern"));
    QGuiApplication::setApplicationName(QStringLiteral("QuillFern"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Quill Fern"));
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    Fonts::load();

    // The archive is read on a thread of its own while the window comes up: a large one takes a
    // moment, and the window must not look frozen meanwhile. The session starts once the window
    // has first shown its content and the archive is there, whichever comes last.
    std::unique_ptr<ArchiveStore> store;
    ArchiveOpener opener(ArchiveStore::defaultPath());
    opener.start();

    QSettings settings;
    auto network = std::make_unique<QNetworkAccessManager>();
    AppState state(settings, *network);
    AppState::exposeToQml(&state);

    StaticData& staticData = state.staticData();
    GameImages images(staticData.dataDragon());
    images.setVersion(staticData.version());
    QObject::connect(&staticData, &StaticData::versionChanged, &images,
                     [&images, &staticData] { images.setVersion(staticData.version()); });
    GameImages::exposeToQml(&images);

    ImageCacheFactory imageCache;
    auto engine = std::make_unique<QQmlApplicationEngine>();
    engine->setNetworkAccessManagerFactory(&imageCache);
    engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine->load(QUrl(QStringLiteral("qrc:/qt/qml/QuillFern/App/Main.qml")));
    if (engine->rootObjects().isEmpty())
        return 1;

    bool drawn = false;
    const auto startWhenReady = [&] {
        if (drawn && store)
            state.bootstrap(store.get());
    };
    auto* window = qobject_cast<QQuickWindow*>(engine->rootObjects().constFirst());
    if (window) {
        QObject::connect(
            window, &QQuickWindow::frameSwapped, &state,
            [&] {
                drawn = true;
                startWhenReady();
            },
            Qt::SingleShotConnection);
    } else {
        drawn = true;
    }
    QObject::connect(&opener, &ArchiveOpener::opened, &state, [&] {
        store = opener.takeStore();
        startWhenReady();
    });
    std::optional<QString> failure;
    QObject::connect(&opener, &ArchiveOpener::failed, &state, [&](const QString& description) {
        failure = description;
        QGuiApplication::exit(1);
    });

    const int code = QGuiApplication::exec();
    if (failure) {
        engine.reset();
        return reportStoreFailure(QStringLiteral("Failed to create the local store: ") + *failure);
    }
    // Requests still in flight end with the network manager, before the state they report to.
    network.reset();
    return code;
}
