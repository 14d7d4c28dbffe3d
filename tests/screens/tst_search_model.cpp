#include "screens/search_model.h"
#include "screens/social_texts.h"
#include "stalling_backend.h"
#include "support/screen_fixture.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

namespace {

QJsonObject profile(const QJsonObject& account, const QJsonArray& ranks, const QJsonArray& mastery) {
    return {{"account", account}, {"platform", "euw1"}, {"ranks", ranks}, {"mastery", mastery}};
}

QJsonObject rank(const QString& queue, const QJsonValue& tier, const QJsonValue& division, const QJsonValue& lp) {
    return {{"queue_type", queue}, {"tier", tier}, {"rank", division},
            {"league_points", lp}, {"wins", 10},   {"losses", 8}};
}

QJsonObject mastery(qint64 championId, qint64 level) {
    return {{"champion_id", championId}, {"champion_level", level}, {"champion_points", 100000}};
}

QList<RecordedRequest> profileRequests(const FakeBackend& backend) {
    QList<RecordedRequest> found;
    for (const RecordedRequest& request : backend.requests())
        if (request.path.startsWith("/api/players/"))
            found.append(request);
    return found;
}

} // namespace

class TestSearchModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void queueNames_data() {
        QTest::addColumn<QString>("queueType");
        QTest::addColumn<QString>("name");
        QTest::newRow("solo") << "RANKED_SOLO_5x5"
                              << "Solo/Duo";
        QTest::newRow("flex") << "RANKED_FLEX_SR"
                              << "Flex";
        QTest::newRow("another queue, capitalised") << "RANKED_TFT"
                                                    << "Ranked_tft";
        QTest::newRow("words") << "cherry ARENA"
                               << "Cherry Arena";
        QTest::newRow("solo in another case") << "ranked_solo_5x5"
                                              << "Ranked_solo_5x5";
    }
    void queueNames() {
        QFETCH(QString, queueType);
        QFETCH(QString, name);
        QCOMPARE(SocialTexts::queueName(queueType), name);
    }

    void playerName_data() {
        QTest::addColumn<QJsonObject>("account");
        QTest::addColumn<QString>("name");
        QTest::newRow("name and tag") << QJsonObject{{"puuid", "p"}, {"game_name", "Ada"}, {"tag_line", "EUW"}}
                                      << "Ada#EUW";
        QTest::newRow("name only") << QJsonObject{{"puuid", "p"}, {"game_name", "Ada"}} << "Ada";
        QTest::newRow("neither") << QJsonObject{{"puuid", "p"}, {"game_name", QJsonValue::Null}} << "Player";
    }
    void playerName() {
        QFETCH(QJsonObject, account);
        QFETCH(QString, name);
        QCOMPARE(SearchModel::nameOf(PlayerProfileDto::AccountInfo::decode(JsonReader(account))), name);
    }

    // A search of a typed Riot ID, trimmed, shows the profile as the backend sends it.
    void searchShowsTheProfile() {
        ScreenFixture f;
        f.backend.on(
            "GET", "/api/players/Ada#EUW/profile",
            FakeResponse::json(profile({{"puuid", "p"}, {"game_name", "Ada"}, {"tag_line", "EUW"}},
                                       {rank("RANKED_FLEX_SR", "GOLD", "II", 75),
                                        rank("RANKED_SOLO_5x5", "MASTER", "I", {}), rank("CHERRY", {}, {}, {})},
                                       {mastery(103, 7), mastery(99999, 5)})));
        SearchModel model;
        QAbstractItemModelTester ranksTester(model.ranks(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester masteryTester(model.mastery(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());
        QVERIFY(model.isIdle());

        model.setRiotId(QStringLiteral("   "));
        QVERIFY(model.canSearch());
        model.search();
        QVERIFY(model.isIdle() && profileRequests(f.backend).isEmpty());

        model.setRiotId(QStringLiteral("  Ada#EUW "));
        model.search();
        QVERIFY(model.busy() && !model.isIdle() && !model.canSearch());
        QTRY_VERIFY(!model.busy());
        QVERIFY2(!model.hasError(), qPrintable(model.errorText()));
        QCOMPARE(profileRequests(f.backend).size(), 1);
        QCOMPARE(profileRequests(f.backend).first().rawPath, QByteArray("/api/players/Ada%23EUW/profile"));
        QCOMPARE(profileRequests(f.backend).first().rawQuery, QByteArray("platform=euw1"));

        QCOMPARE(model.playerName(), QStringLiteral("Ada#EUW"));
        QCOMPARE(model.platformText(), QStringLiteral("EUW1"));
        QCOMPARE(model.ranks()->rowCount(), 3);
        const auto rankRole = [&](int row, int role) { return model.ranks()->index(row, 0).data(role).toString(); };
        QCOMPARE(rankRole(0, RankEntryListModel::QueueNameRole), QStringLiteral("Flex"));
        QCOMPARE(rankRole(0, RankEntryListModel::RankLabelRole), QStringLiteral("Gold II"));
        QCOMPARE(rankRole(0, RankEntryListModel::LpTextRole), QStringLiteral("75 LP"));
        QCOMPARE(rankRole(1, RankEntryListModel::QueueNameRole), QStringLiteral("Solo/Duo"));
        QCOMPARE(rankRole(1, RankEntryListModel::RankLabelRole), QStringLiteral("Master"));
        // Without league points the row ends at its rank.
        QCOMPARE(rankRole(1, RankEntryListModel::LpTextRole), QString());
        QCOMPARE(rankRole(2, RankEntryListModel::QueueNameRole), QStringLiteral("Cherry"));
        QCOMPARE(rankRole(2, RankEntryListModel::RankLabelRole), QStringLiteral("Unranked"));

        QCOMPARE(model.mastery()->rowCount(), 2);
        const auto masteryRole = [&](int row, int role) { return model.mastery()->index(row, 0).data(role); };
        QCOMPARE(masteryRole(0, MasteryListModel::LevelTextRole).toString(), QStringLiteral("M7"));
        QCOMPARE(masteryRole(1, MasteryListModel::ChampionIdRole).toDouble(), 99999.0);
        // The fixture has no champion list: every champion is unknown and shows the neutral tile.
        QCOMPARE(masteryRole(0, MasteryListModel::ChampionNameRole).toString(), QString());
    }

    // Champions are named from the champion list, also when it arrives after the profile.
    void masteryFollowsTheChampionList() {
        MasteryListModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setEntries({MasteryDto{103, 7, 1}, MasteryDto{62, 5, 1}});
        QSignalSpy renamed(&model, &QAbstractItemModel::dataChanged);
        model.setChampionNames({{103, QStringLiteral("Ahri")}, {62, QStringLiteral("MonkeyKing")}});
        QCOMPARE(renamed.count(), 1);
        QCOMPARE(model.index(1, 0).data(MasteryListModel::ChampionNameRole).toString(), QStringLiteral("MonkeyKing"));
        model.setChampionNames({});
        QCOMPARE(model.index(0, 0).data(MasteryListModel::ChampionNameRole).toString(), QString());
    }

    void unknownPlayerShowsTheServersText() {
        ScreenFixture f;
        f.backend.on("GET", "/api/players/Ghost#0/profile",
                     FakeResponse::text(404, "No player named Ghost#0 has been seen on this server."));
        f.backend.on("GET", "/api/players/Ada#EUW/profile", FakeResponse::json(profile({{"puuid", "p"}}, {}, {})));
        SearchModel model;
        model.setAppState(f.state.get());
        model.setRiotId(QStringLiteral("Ada#EUW"));
        model.search();
        QTRY_VERIFY(model.hasProfile());
        QCOMPARE(model.playerName(), QStringLiteral("Player"));
        QVERIFY(!model.hasRanks() && !model.hasMastery());

        // The profile shown goes as soon as the next search starts.
        model.setRiotId(QStringLiteral("Ghost#0"));
        model.search();
        QVERIFY(!model.hasProfile());
        QTRY_VERIFY(!model.busy());
        QVERIFY(!model.hasProfile() && !model.isIdle());
        QCOMPARE(model.errorText(),
                 QStringLiteral("Server error 404. No player named Ghost#0 has been seen on this server."));
    }

    void leavingEndsTheSearch() {
        StalledSession session("/players/");
        auto model = std::make_unique<SearchModel>();
        model->setAppState(session.state.get());
        model->setRiotId(QStringLiteral("Ada#EUW"));
        model->search();
        QTRY_COMPARE(session.backend.stalled(), 1);
        QVERIFY(session.state->hasRunningTasks());
        model.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!session.state->hasRunningTasks(), 5000);
    }
};

QTEST_MAIN(TestSearchModel)
#include "tst_search_model.moc"
