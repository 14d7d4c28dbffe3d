#include "app/sidebar_model.h"
#include "archive/archive_store.h"
#include "session/app_state.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include <QNetworkAccessManager>
#include <QTest>

using namespace ArchiveJson;

class TestSidebarModel : public QObject {
    Q_OBJECT

    QNetworkAccessManager m_network;
    std::unique_ptr<FakeBackend> m_backend;
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<ArchiveStore> m_store;
    std::unique_ptr<AppState> m_state;
    QTemporaryDir m_dir;

    void waitIdle() { QTRY_VERIFY_WITH_TIMEOUT(!m_state->hasRunningTasks(), 10000); }

private Q_SLOTS:
    void init() {
        m_state.reset();
        m_store.reset();
        m_backend = std::make_unique<FakeBackend>();
        m_settings = std::make_unique<TestSettings>();
        (*m_settings)->setValue("backendBaseURL", m_backend->baseUrl().toString());
        (*m_settings)->setValue("quill.cdnBaseURL", m_backend->baseUrl().toString() + "/cdn/");
        const QString path = m_dir.filePath(QStringLiteral("%1.sqlite").arg(QTest::currentTestFunction()));
        QFile::remove(path);
        m_store = std::make_unique<ArchiveStore>(path);
        m_state = std::make_unique<AppState>(**m_settings, m_network);
        m_backend->on("POST", "/api/auth/login", FakeResponse::json(auth()));
        m_backend->on("POST", "/api/riot-accounts/refresh", FakeResponse::json(riotAccounts({riotAccount(1, "me")})));
        m_backend->on("GET", "/api/riot-accounts", FakeResponse::json(riotAccounts({riotAccount(1, "me")})));
        m_backend->on("GET", "/api/sync", FakeResponse::json(page({})));
        m_backend->on("GET", "/api/stats/duos", FakeResponse::json({{"duos", QJsonArray{}}}));
    }
    void cleanup() {
        if (m_state)
            waitIdle();
    }

    void sidebarRankLine_data() {
        QTest::addColumn<QJsonArray>("snapshots");
        QTest::addColumn<QString>("line");
        QJsonObject noTier = snapshot(3, 1, "RANKED_SOLO_5x5");
        noTier["tier"] = QJsonValue::Null;
        QJsonObject olderSolo = snapshot(4, 1, "RANKED_SOLO_5x5", "SILVER", 12);
        olderSolo["captured_at"] = "2025-01-01T00:00:00Z";
        QJsonObject newerFlex = snapshot(5, 1, "RANKED_FLEX_SR", "PLATINUM", 77);
        newerFlex["captured_at"] = "2025-06-01T00:00:00Z";
        QTest::newRow("flex only falls back")
            << QJsonArray{snapshot(1, 1, "RANKED_FLEX_SR", "GOLD", 50)} << "Gold II · 50 LP";
        QTest::newRow("solo without tier") << QJsonArray{noTier} << "Unranked";
        QTest::newRow("older solo beats newer flex") << QJsonArray{olderSolo, newerFlex} << "Silver II · 12 LP";
    }
    void sidebarRankLine() {
        QFETCH(QJsonArray, snapshots);
        QFETCH(QString, line);
        std::vector<std::unique_ptr<LocalRankSnapshot>> owned;
        std::vector<const LocalRankSnapshot*> list;
        for (const QJsonValue& json : snapshots) {
            owned.push_back(std::make_unique<LocalRankSnapshot>(RankSnapshotDto::decode(JsonReader(json.toObject()))));
            list.push_back(owned.back().get());
        }
        QCOMPARE(SidebarModel::rankLineOf(SidebarModel::soloOf(list)), line);
    }

    void sidebarWithoutAccounts() {
        m_backend->on("GET", "/api/sync",
                      FakeResponse::json(page({match(1), match(2)}, {participant(10, 1, "me", "Lux")})));
        m_state->bootstrap(m_store.get());
        SidebarModel model;
        model.setAppState(m_state.get());
        QCOMPARE(model.accountName(), QStringLiteral("Summoner"));
        QCOMPARE(model.toolbarAccount(), QStringLiteral("Account"));
        QCOMPARE(model.rankLine(), QStringLiteral("Unranked"));
        QCOMPARE(model.archivedText(), QStringLiteral("0 games archived"));

        // Signing in links the account and the sync raises the count as pages are saved; the
        // sync button says what it is doing meanwhile.
        QCOMPARE(model.syncLabel(), QStringLiteral("Sync now"));
        QStringList labels;
        connect(&model, &SidebarModel::syncingChanged, this, [&] { labels << model.syncLabel(); });
        runTask(m_state->login("a@b.c", "password1"));
        QCOMPARE(labels, (QStringList{"Syncing…", "Sync now"}));
        QCOMPARE(model.archivedText(), QStringLiteral("2 games archived"));
        QCOMPARE(model.accountName(), QStringLiteral("Ada#EUW"));
        QCOMPARE(model.toolbarAccount(), QStringLiteral("Ada#EUW"));
        QCOMPARE(model.avatarChampion(), QStringLiteral("Lux"));
        QCOMPARE(model.avatarIconId(), 4568);
    }
};

QTEST_GUILESS_MAIN(TestSidebarModel)
#include "tst_sidebar_model.moc"
