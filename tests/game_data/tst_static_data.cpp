#include "backend/backend_client.h"
#include "game_data/static_data.h"
#include "support/fake_backend.h"
#include "support/task_result.h"

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

class TestStaticData : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void load_data() {
        QTest::addColumn<FakeResponse>("versionAnswer");
        QTest::addColumn<bool>("listServed");
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("versionSignals");
        QTest::addColumn<QString>("ahri"); // the name known for champion 103 afterwards
        QTest::newRow("backend down: the built-in version")
            << FakeResponse::text(503, "down") << true << "16.11.1" << 0 << "Ahri";
        QTest::newRow("backend names the version")
            << FakeResponse::json({{"version", "16.12.1"}}) << true << "16.12.1" << 1 << "Ahri";
        QTest::newRow("backend names the built-in version")
            << FakeResponse::json({{"version", "16.11.1"}}) << true << "16.11.1" << 0 << "Ahri";
        QTest::newRow("no champion list for that version")
            << FakeResponse::json({{"version", "16.12.1"}}) << false << "16.12.1" << 1 << "";
    }
    void load() {
        QFETCH(FakeResponse, versionAnswer);
        QFETCH(bool, listServed);
        QFETCH(QString, version);
        QFETCH(int, versionSignals);
        QFETCH(QString, ahri);
        FakeBackend backend;
        QNetworkAccessManager network;
        BackendClient client(network, backend.baseUrl());
        backend.on("GET", "/api/static/version", versionAnswer);
        if (listServed)
            backend.on(
                "GET", QStringLiteral("/cdn/%1/data/en_US/champion.json").arg(version),
                FakeResponse{200, R"({"data":{"Ahri":{"key":"103","id":"Ahri"},"X":{"key":"x1","id":"X"}}})", {}});
        StaticData data(client, network, DataDragon(backend.baseUrl().toString() + "/cdn/"));
        QSignalSpy versionChanged(&data, &StaticData::versionChanged);

        runTask(data.load());

        QCOMPARE(data.version(), version);
        QCOMPARE(versionChanged.count(), versionSignals);
        QCOMPARE(data.championsById().value(103), ahri);
        QCOMPARE(data.championsById().size(), ahri.isEmpty() ? 0 : 1); // the non-number key is skipped
        // The list is asked for the version the backend named, never the one it replaced.
        QCOMPARE(backend.requestsTo(QStringLiteral("/cdn/%1/data/en_US/champion.json").arg(version)).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestStaticData)
#include "tst_static_data.moc"
