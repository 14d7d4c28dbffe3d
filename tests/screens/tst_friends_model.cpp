#include "screens/friend_record_view.h"
#include "screens/friends_model.h"
#include "screens/social_texts.h"
#include "stalling_backend.h"
#include "support/screen_fixture.h"
#include "theme/theme.h"

#include <QAbstractItemModelTester>
#include <QTest>

namespace {

QJsonObject duo(const QString& puuid, const QJsonValue& riotId, double winrate = 0.5) {
    return {{"puuid", puuid}, {"riot_id", riotId}, {"games", 10}, {"wins", 5}, {"losses", 5}, {"winrate", winrate}};
}

QJsonObject game(qint64 matchId, const QJsonValue& season, qint64 queueId = 420, bool win = true,
                 const QString& mode = QStringLiteral("CLASSIC")) {
    return {{"match_id", matchId},
            {"season", season},
            {"queue_id", queueId},
            {"game_mode", mode},
            {"played_at", "2025-03-12T12:00:00Z"},
            {"win", win},
            {"owner_champion", "Ahri"},
            {"friend_champion", "Bard"}};
}

QJsonObject record(const QJsonArray& games, const QString& puuid = QStringLiteral("f-1")) {
    int wins = 0;
    for (const QJsonValue& g : games)
        wins += g.toObject().value("win").toBool() ? 1 : 0;
    const auto count = static_cast<int>(games.size());
    return {{"friend_puuid", puuid},
            {"friend_name", "Bard Main"},
            {"friend_tag", "EUW"},
            {"total", QJsonObject{{"games", count},
                                  {"wins", wins},
                                  {"losses", count - wins},
                                  {"winrate", count ? double(wins) / count : 0}}},
            {"games", games}};
}

FriendStatsDto decodeRecord(const QJsonObject& json) {
    return FriendStatsDto::decode(JsonReader(json));
}

QJsonArray gamesOfSeasons(const QList<QJsonValue>& seasons) {
    QJsonArray games;
    qint64 id = 1;
    for (const QJsonValue& season : seasons)
        games.append(game(id++, season));
    return games;
}

QStringList choiceTexts(const FriendsModel& model) {
    QStringList texts;
    for (const QVariant& choice : model.seasonChoices())
        texts << choice.toMap().value("text").toString();
    return texts;
}

// The requests of a look-up: profiles and friend records.
QList<RecordedRequest> lookups(const FakeBackend& backend) {
    QList<RecordedRequest> found;
    for (const RecordedRequest& request : backend.requests())
        if (request.path.startsWith("/api/players/") || request.path.startsWith("/api/stats/friend/"))
            found.append(request);
    return found;
}

QVariant duoRole(const FriendsModel& model, int row, int role) {
    return model.duos()->index(row, 0).data(role);
}

} // namespace

class TestFriendsModel : public QObject {
    Q_OBJECT

    // A friends screen over the fixture's backend, its duo list loaded.
    static void loadDuos(FriendsModel& model, ScreenFixture& f, const FakeResponse& answer) {
        f.backend.on("GET", "/api/stats/duos", answer);
        model.setAppState(f.state.get());
        model.loadDuos();
        QCOMPARE(model.duoListState(), FriendsModel::DuoListState::Loading);
        QTRY_VERIFY(model.duoListState() != FriendsModel::DuoListState::Loading);
    }

private Q_SLOTS:
    void duoErrorMessage_data() {
        QTest::addColumn<QString>("description");
        QTest::addColumn<bool>("shownAsItIs");
        QTest::newRow("short") << "Network error. Connection refused" << true;
        QTest::newRow("160 characters") << QString(160, 'x') << true;
        QTest::newRow("161 characters") << QString(161, 'x') << false;
        // Letters written with a combining accent are two code units but one character.
        QTest::newRow("160 accented letters") << QString(160, 'e').replace("e", QStringLiteral("e\u0301")) << true;
        QTest::newRow("a web page") << "Server error 502. <html><head></head></html>" << false;
        QTest::newRow("a page body") << "Server error 502. <body>Bad gateway</body>" << false;
    }
    void duoErrorMessage() {
        QFETCH(QString, description);
        QFETCH(bool, shownAsItIs);
        QCOMPARE(SocialTexts::duosError(description), shownAsItIs ? description : SocialTexts::backendDownText);
    }

    // The rule on the screen's own fetch: "Server error 500. " and a body, 160 and 161 long.
    void duoFetchFailureShowsTheRule_data() {
        QTest::addColumn<int>("length");
        QTest::newRow("160") << 160;
        QTest::newRow("161") << 161;
    }
    void duoFetchFailureShowsTheRule() {
        QFETCH(int, length);
        ScreenFixture f;
        FriendsModel model;
        const QString prefix = QStringLiteral("Server error 500. ");
        const QByteArray body(length - prefix.size(), 'b');
        loadDuos(model, f, FakeResponse::text(500, body));
        QCOMPARE(model.duoListState(), FriendsModel::DuoListState::Failed);
        QCOMPARE(model.duosErrorText(), length == 160 ? prefix + body : SocialTexts::backendDownText);
    }

    // A failed retry hides the list it had without forgetting it; a good one shows it again.
    void duoListStates() {
        ScreenFixture f;
        FriendsModel model;
        QAbstractItemModelTester tester(model.duos(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        loadDuos(model, f, FakeResponse::json({{"duos", QJsonArray{}}}));
        QCOMPARE(model.duoListState(), FriendsModel::DuoListState::Empty);

        loadDuos(model, f, FakeResponse::json({{"duos", QJsonArray{duo("p1", "Bard Main#EUW"), duo("p2", {})}}}));
        QCOMPARE(model.duoListState(), FriendsModel::DuoListState::Listed);
        QCOMPARE(model.duos()->rowCount(), 2);
        QCOMPARE(duoRole(model, 1, DuoListModel::NameRole).toString(), QStringLiteral("Unknown"));

        loadDuos(model, f, FakeResponse::text(503, "down"));
        QCOMPARE(model.duoListState(), FriendsModel::DuoListState::Failed);
        QCOMPARE(model.duos()->rowCount(), 2);
    }

    void duoRows() {
        ScreenFixture f;
        FriendsModel model;
        QJsonObject ranked = duo("p1", "Ahri#EUW", 0.5);
        ranked["rank"] = "GOLD II";
        ranked["profile_icon_id"] = 4568;
        ranked["last_played"] = QDateTime::currentDateTimeUtc().addDays(-3).toString(Qt::ISODate);
        QJsonObject zeroIcon = duo("p2", "x", 0.499);
        zeroIcon["profile_icon_id"] = 0;
        loadDuos(model, f, FakeResponse::json({{"duos", QJsonArray{ranked, zeroIcon, duo("p3", {})}}}));

        QCOMPARE(duoRole(model, 0, DuoListModel::WinRateTextRole).toString(), QStringLiteral("50% WR"));
        QCOMPARE(duoRole(model, 0, DuoListModel::WinRateColorRole).value<QColor>(), Theme::win());
        QCOMPARE(duoRole(model, 1, DuoListModel::WinRateTextRole).toString(), QStringLiteral("50% WR"));
        QCOMPARE(duoRole(model, 1, DuoListModel::WinRateColorRole).value<QColor>(), Theme::loss());

        QCOMPARE(duoRole(model, 0, DuoListModel::IconIdRole).toInt(), 4568);
        QCOMPARE(duoRole(model, 1, DuoListModel::IconIdRole).toInt(), -1);
        QCOMPARE(duoRole(model, 2, DuoListModel::IconIdRole).toInt(), -1);
        QCOMPARE(duoRole(model, 0, DuoListModel::InitialsRole).toString(), QStringLiteral("AH"));
        QCOMPARE(duoRole(model, 1, DuoListModel::InitialsRole).toString(), QStringLiteral("X"));
        QCOMPARE(duoRole(model, 2, DuoListModel::InitialsRole).toString(), QStringLiteral("UN"));
        // The same player keeps the same colours; the tile is seeded by the puuid, not the name.
        QCOMPARE(duoRole(model, 0, DuoListModel::AvatarColorsRole), QVariant(SocialTexts::avatarColors("p1")));

        QVERIFY(duoRole(model, 0, DuoListModel::HasRankRole).toBool());
        QCOMPARE(duoRole(model, 0, DuoListModel::RankColorsRole).toList().first().value<QColor>(),
                 Theme::tierPair("GOLD")[0]);
        QVERIFY(!duoRole(model, 1, DuoListModel::HasRankRole).toBool());
        QCOMPARE(duoRole(model, 0, DuoListModel::GamesTextRole).toString(), QStringLiteral("10 games"));
        QCOMPARE(duoRole(model, 0, DuoListModel::WinsTextRole).toString(), QStringLiteral("5W"));
        QVERIFY(duoRole(model, 0, DuoListModel::LastPlayedTextRole).toString().startsWith("last "));
        QCOMPARE(duoRole(model, 1, DuoListModel::LastPlayedTextRole).toString(), QString());
    }

    void initials_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("initials");
        QTest::newRow("one letter") << "x"
                                    << "X";
        QTest::newRow("Riot ID") << "Ahri#EUW"
                                 << "AH";
        QTest::newRow("tag only") << "#euw"
                                  << "EU";
        QTest::newRow("accented first letter") << QStringLiteral("e\u0301lan#1") << QStringLiteral("E\u0301L");
        QTest::newRow("nothing") << ""
                                 << "";
        QTest::newRow("only a hash") << "#"
                                     << "#";
    }
    void initials() {
        QFETCH(QString, name);
        QFETCH(QString, initials);
        QCOMPARE(SocialTexts::initials(name), initials);
    }

    void lastPlayedAndPlayedOn() {
        const QDateTime now(QDate(2025, 3, 15), QTime(12, 0), Qt::UTC);
        QCOMPARE(SocialTexts::lastPlayed(QStringLiteral("2025-03-12T12:00:00Z"), now, "en_US"),
                 QStringLiteral("last 3 days ago"));
        QCOMPARE(SocialTexts::lastPlayed(QStringLiteral("2025-03-14T12:00:00Z"), now, "en_US"),
                 QStringLiteral("last yesterday"));
        QCOMPARE(SocialTexts::lastPlayed(QStringLiteral("last week"), now, "en_US"), QString());
        QCOMPARE(SocialTexts::lastPlayed(std::nullopt, now, "en_US"), QString());
        QCOMPARE(SocialTexts::playedOn(QStringLiteral("2025-03-12T12:00:00Z"), "en_US"),
                 QStringLiteral("Mar 12, 2025"));
        QCOMPARE(SocialTexts::playedOn(QStringLiteral("2025-03-12T12:00:00Z"), "de_DE"),
                 QStringLiteral("12. März 2025"));
        QCOMPARE(SocialTexts::playedOn(QStringLiteral("yesterday"), "en_US"), QString());
    }

    // Seasons 14, 15, 15: the newest season shows, the menu lists 15 then 14.
    void newestSeasonFirst() {
        const FriendStatsDto detail = decodeRecord(record(gamesOfSeasons({14, 15, 15})));
        const FriendRecordView view = FriendRecordView::of(detail, "Bard#1", std::nullopt, false, false);
        QCOMPARE(view.seasonLabel(), QStringLiteral("Season 15"));
        QCOMPARE(view.seasons, (std::vector<qint64>{15, 14}));
        QVERIFY(view.hasSeasonMenu());
        QCOMPARE(view.shown.size(), std::size_t(2));
        QCOMPARE(view.shown[0]->matchId, 2);
        QCOMPARE(view.shown[1]->matchId, 3);

        const FriendRecordView older = FriendRecordView::of(detail, "Bard#1", 14, false, false);
        QCOMPARE(older.seasonLabel(), QStringLiteral("Season 14"));
        QCOMPARE(older.shown.size(), std::size_t(1));
        const FriendRecordView all = FriendRecordView::of(detail, "Bard#1", 14, true, false);
        QCOMPARE(all.seasonLabel(), QStringLiteral("All seasons"));
        QCOMPARE(all.shown.size(), std::size_t(3));
    }

    void gamesWithoutSeasons() {
        const FriendStatsDto detail = decodeRecord(record(gamesOfSeasons({QJsonValue(), QJsonValue()})));
        const FriendRecordView view = FriendRecordView::of(detail, QString(), std::nullopt, false, false);
        QCOMPARE(view.seasonLabel(), QStringLiteral("All seasons"));
        QVERIFY(!view.hasSeasonMenu());
        QCOMPARE(view.shown.size(), std::size_t(2));
        // Without a name given, the record's own Name#TAG.
        QCOMPARE(view.title, QStringLiteral("Bard Main#EUW"));
    }

    void aPageOfTenGames_data() {
        QTest::addColumn<int>("games");
        QTest::addColumn<bool>("canExpand");
        QTest::addColumn<int>("listed");
        QTest::addColumn<int>("hidden");
        QTest::newRow("10") << 10 << false << 10 << 0;
        QTest::newRow("11") << 11 << true << 10 << 1;
        QTest::newRow("25") << 25 << true << 10 << 15;
    }
    void aPageOfTenGames() {
        QFETCH(int, games);
        QFETCH(bool, canExpand);
        QFETCH(int, listed);
        QFETCH(int, hidden);
        const FriendStatsDto detail = decodeRecord(record(gamesOfSeasons(QList<QJsonValue>(games, 15))));
        const FriendRecordView folded = FriendRecordView::of(detail, "x", std::nullopt, false, false);
        QCOMPARE(folded.canExpand(), canExpand);
        QCOMPARE(int(folded.rows.size()), listed);
        QCOMPARE(folded.hiddenGames, hidden);
        const FriendRecordView unfolded = FriendRecordView::of(detail, "x", std::nullopt, false, true);
        QCOMPARE(int(unfolded.rows.size()), games);
        QCOMPARE(unfolded.hiddenGames, 0);
    }

    // Groups by category, most games first; their win percentages rounded.
    void categoryGroups() {
        QJsonArray games{game(1, 15, 450, true, "ARAM"),    game(2, 15, 420, true),
                         game(3, 15, 450, false, "ARAM"),   game(4, 15, 450, false, "ARAM"),
                         game(5, 15, 1700, true, "CHERRY"), game(6, 15, 420, false)};
        const FriendStatsDto detail = decodeRecord(record(games));
        const FriendRecordView view = FriendRecordView::of(detail, "x", std::nullopt, false, false);
        QCOMPARE(view.groups.size(), std::size_t(3));
        QCOMPARE(view.groups[0].category, GameCategory::Aram);
        QCOMPARE(view.groups[0].games, 3);
        QCOMPARE(view.groups[0].winPercentRounded(), 33);
        QCOMPARE(view.groups[1].category, GameCategory::Ranked);
        QCOMPARE(view.groups[1].winPercentRounded(), 50);
        QCOMPARE(view.groups[2].category, GameCategory::Arena);
        QCOMPARE(view.groups[2].winPercentRounded(), 100);
        QCOMPARE(view.wins, 3);
        QCOMPARE(view.losses(), 3);
        QCOMPARE(view.winPercent, 50.0);
        QCOMPARE(FriendRecordView::Group{}.winPercentRounded(), 0);
    }

    // A typed Riot ID, trimmed: the profile first, then the record with the puuid it names.
    void lookupOfATypedRiotId() {
        ScreenFixture f;
        f.backend.on("GET", "/api/players/Bard Main#EUW/profile",
                     FakeResponse::json(
                         {{"account", QJsonObject{{"puuid", "f-1"}, {"game_name", "Bard Main"}, {"tag_line", "EUW"}}},
                          {"platform", "euw1"},
                          {"ranks", QJsonArray{}},
                          {"mastery", QJsonArray{}}}));
        f.backend.on("GET", "/api/stats/friend/f-1", FakeResponse::json(record(gamesOfSeasons({14, 15, 15}))));
        FriendsModel model;
        QAbstractItemModelTester tester(model.games(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setAppState(f.state.get());

        model.setRiotId(QStringLiteral(" \t "));
        QVERIFY(model.canFind());
        model.lookup();
        QVERIFY(!model.busy());
        QVERIFY(lookups(f.backend).isEmpty());

        model.setRiotId(QStringLiteral("  Bard Main#EUW\t"));
        model.lookup();
        QVERIFY(model.busy() && !model.canFind());
        QTRY_VERIFY(!model.busy());
        QVERIFY2(!model.hasError(), qPrintable(model.errorText()));
        QCOMPARE(lookups(f.backend).size(), 2);
        const RecordedRequest profile = lookups(f.backend).at(0);
        QCOMPARE(profile.rawPath, QByteArray("/api/players/Bard%20Main%23EUW/profile"));
        QCOMPARE(profile.rawQuery, QByteArray("platform=euw1"));
        QCOMPARE(lookups(f.backend).at(1).path, QStringLiteral("/api/stats/friend/f-1"));

        QVERIFY(model.hasDetail() && model.hasGamesTogether());
        QCOMPARE(model.friendTitle(), QStringLiteral("Bard Main#EUW"));
        QCOMPARE(model.friendInitials(), QStringLiteral("BA"));
        QCOMPARE(model.togetherText(), QStringLiteral("3 games together · all time"));
        QCOMPARE(model.seasonLabel(), QStringLiteral("Season 15"));
        QCOMPARE(choiceTexts(model), (QStringList{"Season 15", "Season 14"}));
        QCOMPARE(model.shownGamesText(), QStringLiteral("2 games"));
        QCOMPARE(model.games()->rowCount(), 2);
        const QModelIndex first = model.games()->index(0, 0);
        QCOMPARE(first.data(FriendGameListModel::QueueLabelRole).toString(), QStringLiteral("Ranked Solo/Duo"));
        QCOMPARE(first.data(FriendGameListModel::MatchIdRole).toDouble(), 2.0);
        QVERIFY(!first.data(FriendGameListModel::DateTextRole).toString().isEmpty());

        model.pickSeason(14);
        QCOMPARE(model.seasonLabel(), QStringLiteral("Season 14"));
        QCOMPARE(model.games()->rowCount(), 1);
        model.pickAllSeasons();
        QCOMPARE(model.seasonLabel(), QStringLiteral("All seasons"));
        QCOMPARE(model.games()->rowCount(), 3);

        // Back to the duo list, which is not fetched again.
        model.back();
        QVERIFY(!model.hasDetail());
        QCOMPARE(model.games()->rowCount(), 0);
        QCOMPARE(model.duoListState(), FriendsModel::DuoListState::Empty);
        QVERIFY(f.backend.requestsTo("/api/stats/duos").isEmpty());
    }

    // A duo row opens the record directly, titled with the name the row shows.
    void lookupOfADuo() {
        ScreenFixture f;
        QJsonArray games = gamesOfSeasons(QList<QJsonValue>(11, 15));
        f.backend.on("GET", "/api/stats/friend/p-9", FakeResponse::json(record(games, "p-9")));
        FriendsModel model;
        model.setAppState(f.state.get());
        model.lookupPuuid(QStringLiteral("p-9"), QStringLiteral("Unknown"));
        QTRY_VERIFY(!model.busy());
        QCOMPARE(lookups(f.backend).size(), 1);
        QCOMPARE(lookups(f.backend).first().path, QStringLiteral("/api/stats/friend/p-9"));
        QCOMPARE(model.friendTitle(), QStringLiteral("Unknown"));
        QVERIFY(!model.hasSeasonMenu());
        QVERIFY(model.canExpand());
        QCOMPARE(model.expandText(), QStringLiteral("Show 1 more"));
        model.toggleAllGames();
        QCOMPARE(model.expandText(), QStringLiteral("Show less"));
        QCOMPARE(model.games()->rowCount(), 11);
        // A season chosen folds the list again.
        model.pickAllSeasons();
        QCOMPARE(model.expandText(), QStringLiteral("Show 1 more"));
        model.toggleAllGames();

        // A new record starts over: newest season, folded.
        model.lookupPuuid(QStringLiteral("p-9"), QStringLiteral("Bard#1"));
        QVERIFY(!model.hasDetail());
        QTRY_VERIFY(!model.busy());
        QCOMPARE(model.seasonLabel(), QStringLiteral("Season 15"));
        QCOMPARE(model.games()->rowCount(), 10);
        QCOMPARE(model.friendTitle(), QStringLiteral("Bard#1"));
    }

    void noGamesTogether() {
        ScreenFixture f;
        f.backend.on("GET", "/api/stats/friend/p-2", FakeResponse::json(record({}, "p-2")));
        FriendsModel model;
        model.setAppState(f.state.get());
        model.lookupPuuid(QStringLiteral("p-2"), QStringLiteral("Zed#KR1"));
        QTRY_VERIFY(!model.busy());
        QVERIFY(model.hasDetail() && !model.hasGamesTogether());
        QCOMPARE(model.noGamesMessage(), QStringLiteral("Zed#KR1 hasn't appeared on your team in your archive."));
        QCOMPARE(model.seasonLabel(), QStringLiteral("All seasons"));
    }

    void failedLookupShowsTheServersText() {
        ScreenFixture f;
        f.backend.on("GET", "/api/players/Nobody#0/profile",
                     FakeResponse::text(404, "No player named Nobody#0 has been seen on this server."));
        FriendsModel model;
        model.setAppState(f.state.get());
        model.setRiotId(QStringLiteral("Nobody#0"));
        model.lookup();
        QTRY_VERIFY(!model.busy());
        QVERIFY(!model.hasDetail());
        QCOMPARE(model.errorText(),
                 QStringLiteral("Server error 404. No player named Nobody#0 has been seen on this server."));
        // The next look-up clears it as it starts.
        model.lookup();
        QVERIFY(!model.hasError());
        QTRY_VERIFY(!model.busy());
    }

    // Leaving the screen takes a look-up that is still waiting with it.
    void leavingEndsTheLookup() {
        StalledSession session("/stats/friend/");
        auto model = std::make_unique<FriendsModel>();
        model->setAppState(session.state.get());
        model->lookupPuuid(QStringLiteral("p-1"), QStringLiteral("Bard#1"));
        QTRY_COMPARE(session.backend.stalled(), 1);
        QVERIFY(session.state->hasRunningTasks());
        model.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!session.state->hasRunningTasks(), 5000);
    }
};

QTEST_MAIN(TestFriendsModel)
#include "tst_friends_model.moc"
