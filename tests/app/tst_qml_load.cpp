#include "support/screen_fixture.h"
#include "synthetic_archive.h"
#include "theme/fonts.h"
#include "theme/game_images.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillFern_AppPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ThemePlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_SessionPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ScreensPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_OverlayPlugin)

namespace {

QStringList g_warnings;

bool isImageLoadNoise(const QString& message) {
    // Image loads fail on purpose here (the loopback CDN has no images). A view torn down while
    // its failed loads are still being reported makes Qt's network layer complain twice.
    return message.contains(QLatin1String("QML Image")) || message.contains(QLatin1String("QQuickImage")) ||
           message.contains(QLatin1String("QNetworkReplyImplPrivate::error"));
}

void collect(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && !isImageLoadNoise(message))
        g_warnings << message;
}

} // namespace

// Every screen and shared component is built with real data, and any QML warning fails.
class TestQmlLoad : public QObject {
    Q_OBJECT

    std::unique_ptr<ScreenFixture> m_fixture;
    std::unique_ptr<GameImages> m_images;

    // Duos, a friend record, a profile and a timeline, so that the social screens and the timeline
    // are built with every part they can show.
    void serveSocialAnswers(const SyntheticArchive& archive) {
        FakeBackend& backend = m_fixture->backend;
        const QJsonObject pair{{"mine", 2}, {"enemy", 1}};
        QJsonArray frames;
        for (int t = 0; t < 25; ++t)
            frames.append(QJsonObject{{"t", t},
                                      {"ownerTeamGold", 0},
                                      {"enemyTeamGold", 0},
                                      {"goldDiff", (t - 8) * 150},
                                      {"ownerGold", 0},
                                      {"ownerCs", 0},
                                      {"ownerXp", 0},
                                      {"ownerLevel", 1}});
        QJsonArray events;
        for (const char* kind : {"kill", "monster", "building", "ward"})
            events.append(
                QJsonObject{{"kind", kind}, {"t", 300}, {"team", 100}, {"mine", true}, {"monster", "DRAGON"}});
        const QJsonObject timeline{
            {"ownerChampion", "Ahri"},
            {"ownerTeam", 100},
            {"frames", frames},
            {"events", events},
            {"stats",
             QJsonObject{{"ownerCsAt10", 80},
                         {"goldDiffAt10", -300},
                         {"firstBlood", QJsonObject{{"t", 200}, {"mine", false}}},
                         {"objectives",
                          QJsonObject{{"dragons", pair}, {"barons", pair}, {"heralds", pair}, {"towers", pair}}}}}};
        for (const MatchDto& match : archive.matches())
            backend.on("GET", "/api/matches/" + match.matchId + "/timeline", FakeResponse::json(timeline));

        QJsonArray duos;
        QJsonArray games;
        for (int i = 0; i < 14; ++i)
            games.append(QJsonObject{{"match_id", i + 1},
                                     {"season", 14 + i % 2},
                                     {"queue_id", i % 3 ? 420 : 450},
                                     {"played_at", "2025-03-12T18:00:00Z"},
                                     {"win", i % 2 == 0},
                                     {"owner_champion", "Ahri"},
                                     {"friend_champion", "Bard"}});
        for (const QString& puuid : archive.friendPuuids()) {
            duos.append(QJsonObject{{"puuid", puuid},
                                    {"riot_id", "Bard Main#EUW"},
                                    {"games", 14},
                                    {"wins", 7},
                                    {"losses", 7},
                                    {"winrate", 0.5},
                                    {"rank", "GOLD II"},
                                    {"last_played", "2025-03-12T18:00:00Z"}});
            backend.on(
                "GET", "/api/stats/friend/" + puuid,
                FakeResponse::json({{"friend_puuid", puuid},
                                    {"total", QJsonObject{{"games", 14}, {"wins", 7}, {"losses", 7}, {"winrate", 0.5}}},
                                    {"games", games}}));
        }
        backend.on("GET", "/api/stats/duos", FakeResponse::json({{"duos", duos}}));
        backend.on(
            "GET", "/api/players/Ada#EUW/profile",
            FakeResponse::json(
                {{"account", QJsonObject{{"puuid", "p"}, {"game_name", "Ada"}}},
                 {"platform", "euw1"},
                 {"ranks",
                  QJsonArray{QJsonObject{
                      {"queue_type", "RANKED_SOLO_5x5"}, {"tier", "GOLD"}, {"rank", "II"}, {"league_points", 40}}}},
                 {"mastery",
                  QJsonArray{QJsonObject{{"champion_id", 103}, {"champion_level", 7}, {"champion_points", 90000}}}}}));
        m_friendPuuid = archive.friendPuuids().value(0);
    }

    QString m_friendPuuid;

    // The first item below root whose image source is set.
    static QString firstImageSource(QQuickItem* root) {
        for (QQuickItem* child : root->childItems()) {
            const QVariant source = child->property("source");
            if (source.isValid() && !source.toUrl().isEmpty())
                return source.toUrl().toString();
            const QString below = firstImageSource(child);
            if (!below.isEmpty())
                return below;
        }
        return QString();
    }

private Q_SLOTS:
    void initTestCase() {
        Fonts::load();
        SyntheticArchiveOptions options;
        options.games = 60;
        const SyntheticArchive archive(options);
        QJsonArray accounts;
        for (const RiotAccountDto& a : archive.ownerAccounts())
            accounts.append(QJsonObject{{"id", a.id},
                                        {"puuid", a.puuid},
                                        {"platform", a.platform},
                                        {"region", a.region},
                                        {"game_name", a.gameName.value_or(QString())},
                                        {"tag_line", a.tagLine.value_or(QString())}});
        m_fixture = std::make_unique<ScreenFixture>(accounts);
        archive.fill(*m_fixture->store);
        AppState::exposeToQml(m_fixture->state.get());
        m_images = std::make_unique<GameImages>(m_fixture->state->staticData().dataDragon());
        GameImages::exposeToQml(m_images.get());
        serveSocialAnswers(archive);
    }

    void screens_data() {
        QTest::addColumn<QString>("source");
        const char* themeParts =
            "import QtQuick\nimport QuillFern.Theme\n"
            "Column { width: 600\n"
            " Wallpaper { width: 200; height: 100 }\n"
            " GlassCard { width: 200; SectionLabel { text: \"Menu\" } }\n"
            " GroupCard { width: 300; title: \"Group\"; icon: \"person.3\"; Text { text: \"body\" } }\n"
            " DisplayTitle { text: \"Title\" }\n Pill { text: \"pill\" }\n"
            " StatCard { width: 200; title: \"KDA Ratio\"; value: \"4.89\"; unit: \"/ min\"; meter: 40 }\n"
            " KdaLine { kills: 3; deaths: 1; assists: 7 }\n"
            " WinRing { pct: 0 }\n WinRing { pct: 150; sub: \"RANKED\" }\n"
            " WlBar { width: 100; wins: 0; losses: 3 }\n WlBar { width: 100; wins: 0; losses: 0 }\n"
            " MeterBar { width: 100; pct: 250 }\n HexGem { width: 30; height: 34 }\n"
            " RankGem { tier: \"gold\" }\n RankGem { tier: \"\" }\n Chevron {}\n"
            " ChampionIcon { name: \"Lee Sin\"; ring: true }\n ChampionIcon { name: \"\" }\n"
            " SummonerAvatar { iconId: 4568; fallbackChampion: \"Ahri\" }\n SummonerAvatar { fallbackChampion: \"\" }\n"
            " ItemIcon { itemId: 0 }\n ItemRow { items: [3031, 0, 6672] }\n"
            " EmptyState { icon: \"person.3\"; title: \"No champion data\"; message: \"Sync\" }\n"
            " Symbol { name: \"lock.fill\" }\n ThemeText { role: Theme.Caption; text: \"caption\" }\n}\n";
        QTest::newRow("theme components") << QString::fromLatin1(themeParts);
        const QString imports = QStringLiteral(
            "import QtQuick\nimport QuillFern.App\nimport QuillFern.Screens\nimport QuillFern.Session\n");
        for (const char* screen : {"HistoryView", "ChampionsView", "RankView"})
            QTest::newRow(screen) << imports + QStringLiteral("%1 { width: 1000; height: 700; appState: AppState }\n")
                                                   .arg(QLatin1String(screen));
        QTest::newRow("OverviewView") << imports + "OverviewView { width: 1000; height: 700; appState: AppState; "
                                                   "linkCard: Component { AddAccountCard {} } }\n";
        QTest::newRow("match detail") << imports + "MatchDetailView { width: 940; height: 720; appState: AppState; "
                                                   "matchServerId: 5 }\n";
        QTest::newRow("friends") << imports + "FriendsView { width: 1000; height: 700; appState: AppState }\n";
        QTest::newRow("friend record")
            << imports + QStringLiteral("FriendsView { id: v; width: 1000; height: 700; appState: AppState; "
                                        "Component.onCompleted: v.model.lookupPuuid(\"%1\", \"Bard Main#EUW\") }\n")
                             .arg(m_friendPuuid);
        QTest::newRow("search") << imports + "SearchView { width: 1000; height: 700; appState: AppState }\n";
        QTest::newRow("search result")
            << imports + "SearchView { id: v; width: 1000; height: 700; appState: AppState; "
                         "Component.onCompleted: { v.model.riotId = \"Ada#EUW\"; v.model.search() } }\n";
        QTest::newRow("timeline") << imports + "TimelineView { width: 860; height: 720; appState: AppState; "
                                               "matchServerId: 5 }\n";
        QTest::newRow("timeline of a game not stored")
            << imports + "TimelineView { width: 860; height: 720; appState: AppState; matchServerId: 999999 }\n";
        QTest::newRow("overlay settings")
            << QStringLiteral("import QtQuick\nimport QuillFern.Overlay\nimport QuillFern.Session\n"
                              "OverlayView { width: 1000; height: 700; overlay: AppState.overlay }\n");
        QTest::newRow("overview of an empty archive") << imports +
                                                             "OverviewView { width: 1000; height: 700; appState: null; "
                                                             "linkCard: Component { AddAccountCard {} } }\n";
    }
    void screens() {
        QFETCH(QString, source);
        g_warnings.clear();
        const QtMessageHandler previous = qInstallMessageHandler(collect);
        {
            QQmlEngine engine;
            engine.addImportPath("qrc:/qt/qml");
            QQmlComponent component(&engine);
            component.setData(source.toUtf8(), QUrl("qrc:/test.qml"));
            std::unique_ptr<QObject> object(component.create());
            QVERIFY2(object, qPrintable(component.errorString()));
            QQuickWindow window;
            window.resize(1100, 800);
            qobject_cast<QQuickItem*>(object.get())->setParentItem(window.contentItem());
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            // Screens that fetch for themselves draw their answers too.
            QTest::qWait(50);
            QTRY_VERIFY(!m_fixture->state->hasRunningTasks());
            QTest::qWait(50);
            QVERIFY(!window.grabWindow().isNull());
        }
        qInstallMessageHandler(previous);
        QVERIFY2(g_warnings.isEmpty(), qPrintable(g_warnings.join('\n')));
    }

    // Pictures already on screen move to a newer data version when it arrives.
    void imagesFollowTheDataVersion() {
        QQmlEngine engine;
        engine.addImportPath("qrc:/qt/qml");
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport QuillFern.Theme\n"
                          "Row { ChampionIcon { name: \"Lee Sin\" } ItemIcon { itemId: 3031 } "
                          "SummonerAvatar { iconId: 7 } }\n",
                          QUrl("qrc:/version.qml"));
        std::unique_ptr<QObject> object(component.create());
        QVERIFY2(object, qPrintable(component.errorString()));
        const QList<QQuickItem*> icons = qobject_cast<QQuickItem*>(object.get())->childItems();
        QCOMPARE(icons.size(), 3);
        m_images->setVersion(QStringLiteral("16.12.1"));
        for (QQuickItem* icon : icons)
            QVERIFY2(firstImageSource(icon).contains(QLatin1String("/16.12.1/")), qPrintable(firstImageSource(icon)));
        m_images->setVersion(QStringLiteral("16.11.1"));
    }

    void cleanupTestCase() {
        GameImages::exposeToQml(nullptr);
        m_images.reset();
        m_fixture.reset();
    }
};

QTEST_MAIN(TestQmlLoad)
#include "tst_qml_load.moc"
