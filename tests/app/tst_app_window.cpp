#include "app/nav_section.h"
#include "archive/archive_store.h"
#include "session/app_state.h"
#include "support/fake_backend.h"
#include "support/test_settings.h"

#include <QFile>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillFern_AppPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ThemePlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_SessionPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ScreensPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_OverlayPlugin)

namespace {

QStringList g_warnings;

void collectWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        g_warnings << message;
}

// The first item below root whose QML type is the given one.
QObject* findByType(QQuickItem* root, const char* typeName) {
    for (QQuickItem* child : root->childItems()) {
        if (QString::fromLatin1(child->metaObject()->className()).startsWith(QLatin1String(typeName)))
            return child;
        if (QObject* below = findByType(child, typeName))
            return below;
    }
    return nullptr;
}

// A port where nothing listens: the app must cope with an absent backend.
quint16 closedPort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

} // namespace

class TestAppWindow : public QObject {
    Q_OBJECT

    QProcessEnvironment isolatedEnvironment(const QTemporaryDir& home) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", home.path());
        env.insert("XDG_CONFIG_HOME", home.filePath(".config"));
        env.insert("XDG_DATA_HOME", home.filePath(".local/share"));
        env.insert("XDG_RUNTIME_DIR", home.path());
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("QT_QUICK_BACKEND", "software");
        return env;
    }

    void writeBackendPreference(const QTemporaryDir& home, const QString& url) {
        QSettings settings(home.filePath(".config/QuillFern/QuillFern.conf"), QSettings::IniFormat);
        settings.setValue("backendBaseURL", url);
        settings.setValue("quill.cdnBaseURL", "http://127.0.0.1:9/cdn/");
    }

private Q_SLOTS:
    void everyPhaseLoadsWithoutWarnings_data() {
        QTest::addColumn<bool>("withToken");
        QTest::newRow("signed out") << false;
        QTest::newRow("signed in") << true;
    }
    void everyPhaseLoadsWithoutWarnings() {
        QFETCH(bool, withToken);
        FakeBackend backend;
        TestSettings settings;
        settings->setValue("backendBaseURL", backend.baseUrl().toString());
        if (withToken)
            settings->setValue("authToken", "tok");
        QNetworkAccessManager network;
        AppState state(*settings, network);
        AppState::exposeToQml(&state);
        QTemporaryDir dir;
        ArchiveStore store(dir.filePath("archive.sqlite"));

        g_warnings.clear();
        const QtMessageHandler previous = qInstallMessageHandler(collectWarnings);
        {
            QQmlApplicationEngine engine;
            engine.addImportPath("qrc:/qt/qml");
            engine.load(QUrl("qrc:/qt/qml/QuillFern/App/Main.qml"));
            QCOMPARE(engine.rootObjects().size(), 1);
            auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().first());
            QVERIFY(window);
            QVERIFY(window->minimumWidth() == 1040 && window->minimumHeight() == 740);
            state.bootstrap(&store);
            QTRY_VERIFY(!state.hasRunningTasks());
            QVERIFY(!window->grabWindow().isNull());
            // Every section of the sidebar, the ones still to come included, shows without a word.
            if (QObject* main = findByType(window->contentItem(), "MainView")) {
                for (int section = 0; section < NavSection::count(); ++section) {
                    main->setProperty("selection", section);
                    QVERIFY(!window->grabWindow().isNull());
                }
                main->setProperty("selection", 0);
            } else {
                QVERIFY(!withToken);
            }
        }
        qInstallMessageHandler(previous);
        QVERIFY2(g_warnings.isEmpty(), qPrintable(g_warnings.join('\n')));
    }

    void staysUpWithoutABackend() {
        QTemporaryDir home;
        writeBackendPreference(home, QStringLiteral("http://127.0.0.1:%1").arg(closedPort()));
        QProcess app;
        app.setProcessEnvironment(isolatedEnvironment(home));
        app.start(QStringLiteral(QUILLFERN_BINARY));
        QVERIFY(app.waitForStarted());
        QVERIFY2(!app.waitForFinished(4000), app.readAllStandardError().constData());
        QCOMPARE(app.state(), QProcess::Running);
        app.terminate();
        QVERIFY(app.waitForFinished(10000));
        QVERIFY(QFile::exists(home.filePath(".local/share/QuillFern/QuillFern/archive.sqlite")));
    }

    void corruptArchiveIsReportedNotCrashed() {
        QTemporaryDir home;
        const QString folder = home.filePath(".local/share/QuillFern/QuillFern");
        QVERIFY(QDir().mkpath(folder));
        const QByteArray garbage = QByteArray("not an archive at all\n").repeated(100);
        {
            QFile file(folder + "/archive.sqlite");
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(garbage);
        }
        QProcess app;
        app.setProcessEnvironment(isolatedEnvironment(home));
        app.start(QStringLiteral(QUILLFERN_BINARY));
        QVERIFY(app.waitForStarted());
        // The reason is written out and a window waits for the player to close it.
        QString err;
        QTRY_VERIFY_WITH_TIMEOUT((err += QString::fromLocal8Bit(app.readAllStandardError()),
                                  err.contains("Failed to create the local store: ")),
                                 15000);
        QVERIFY2(!app.waitForFinished(1500), qPrintable(err));
        app.terminate();
        QVERIFY(app.waitForFinished(10000));
        QFile file(folder + "/archive.sqlite");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), garbage);
    }
};

QTEST_MAIN(TestAppWindow)
#include "tst_app_window.moc"
