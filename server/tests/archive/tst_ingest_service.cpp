// Ingest on both engines: each game stored once, changes stored again with a new change number,
// a history-list entry never replacing a full game, bad elements skipped, and every linked
// account's games scored once.

#include "archive/ingest_service.h"
#include "http/http_message.h"
#include "store/test_databases.h"
#include "support/client_games.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace qf;

namespace {

constexpr int64_t now = 1'750'000'000'000;
constexpr int64_t hour = 3'600'000;
const QStringList players = ClientGames::puuids(7);

// The fixture game as game number id, started `hours` hours after the fixture's start, with
// Singed's (the first player's) kills set.
QJsonObject game(qint64 id, int hours = 0, int singedKills = 2) {
    QJsonObject g = ClientGames::game(id, players);
    g["gameCreation"] = g["gameCreation"].toDouble() + double(hours) * hour;
    QJsonArray participants = g["participants"].toArray();
    QJsonObject singed = participants[0].toObject();
    QJsonObject stats = singed["stats"].toObject();
    stats["kills"] = singedKills;
    singed["stats"] = stats;
    participants[0] = singed;
    g["participants"] = participants;
    return g;
}

std::string matchIdOf(qint64 id) {
    return "NA1_" + std::to_string(id);
}

IngestOutcome send(IngestService& ingest, const QJsonValue& games) {
    const QByteArray text = QJsonDocument(QJsonObject{{"games", games}}).toJson(QJsonDocument::Compact);
    const json::Document document(std::string_view(text.constData(), size_t(text.size())));
    json::Element list; // JSON null too, which member() would call absent
    if (document.root().at_key("games").get(list) != simdjson::SUCCESS)
        qFatal("no games member");
    return ingest.ingest(list, now);
}

std::optional<GameWithRows> stored(Database& db, qint64 id) {
    return db.read([&](Repository& r) { return r.gameByMatchId(matchIdOf(id)); });
}

// A user with one linked account for the puuid; returns the user's id.
int64_t link(Database& db, const QString& puuid, RiotAccount* linked = nullptr) {
    return db.write([&](Repository& r) {
        User user;
        user.email = puuid.toStdString() + "@example.org";
        user.emailKey = user.email;
        user.createdAt = now;
        r.insertUser(user);
        RiotAccount account;
        account.userId = user.id;
        account.puuid = puuid.toStdString();
        account.platform = "na1";
        account.region = "americas";
        account.isOwner = true;
        account.linkedAt = now;
        r.insertAccount(account);
        if (linked)
            *linked = account;
        return user.id;
    });
}

std::vector<PerformanceScore> scoresOf(Database& db, int64_t userId) {
    return db.read([&](Repository& r) { return r.changedScoresOfUser(userId, 0, 1000); });
}

} // namespace

class TstIngestService : public QObject {
    Q_OBJECT

    const ChampionCatalog m_champions = ChampionCatalog::shipped();

#define OPEN_DATABASE()                                                                                                \
    QFETCH(QString, engine);                                                                                           \
    test::TestDatabase fresh(engine);                                                                                  \
    QFS_REQUIRE_DATABASE(fresh);                                                                                       \
    const std::unique_ptr<Database> db = fresh.open();                                                                 \
    IngestService ingest(*db, m_champions)

private Q_SLOTS:
    void initTestCase() {
        if (ClientGames::fixtureGame().isEmpty())
            QSKIP("The shared fixtures folder is not there.");
    }

    void sameBatchTwice_data() {
        test::addEngineRows();
    }
    void sameBatchTwice() {
        OPEN_DATABASE();
        const QJsonArray batch{game(1), game(2, 1)};
        const IngestOutcome first = send(ingest, batch);
        QCOMPARE(first.ingested, 2);
        QCOMPARE(first.skipped, 0);
        QCOMPARE(first.matchIds, (std::vector<std::string>{matchIdOf(1), matchIdOf(2)}));
        const auto one = stored(*db, 1), two = stored(*db, 2);
        QVERIFY(one && two);
        QCOMPARE(one->participants.size(), size_t(10));
        QCOMPARE(one->participants[0].championName, "Singed");
        QCOMPARE(one->match.updatedAt, now);

        const IngestOutcome again = send(ingest, batch);
        QCOMPARE(again.ingested, 0);
        QCOMPARE(again.skipped, 2);
        QVERIFY(again.matchIds.empty());
        QCOMPARE(stored(*db, 1)->match.changeSeq, one->match.changeSeq);
        QCOMPARE(stored(*db, 2)->match.changeSeq, two->match.changeSeq);
    }

    void changedGameStoredAgain_data() {
        test::addEngineRows();
    }
    void changedGameStoredAgain() {
        OPEN_DATABASE();
        send(ingest, QJsonArray{game(1)});
        const auto before = stored(*db, 1);
        QVERIFY(before);
        // Another source stored ranks in the row; the client never sends any.
        db->write([&](Repository& r) {
            std::vector<Participant> rows = before->participants;
            rows[0].rankTier = "GOLD";
            rows[0].rankDivision = "II";
            rows[0].rankLp = 40;
            r.replaceParticipants(before->match, rows);
        });

        const IngestOutcome outcome = send(ingest, QJsonArray{game(1, 0, 9)});
        QCOMPARE(outcome.ingested, 1);
        QCOMPARE(outcome.matchIds, std::vector<std::string>{matchIdOf(1)});
        const auto after = stored(*db, 1);
        QCOMPARE(after->match.id, before->match.id);
        QVERIFY(after->match.changeSeq > before->match.changeSeq);
        QCOMPARE(after->participants.size(), size_t(10));
        QCOMPARE(after->participants[0].kills, 9);
        QCOMPARE(after->participants[0].rankTier, "GOLD");
        QCOMPARE(after->participants[0].rankLp, 40);
        // Singed's kills are part of his team's: his teammates' kill participation changed too.
        QVERIFY(after->participants[1].killParticipation != before->participants[1].killParticipation);

        QCOMPARE(send(ingest, QJsonArray{game(1, 0, 9)}).ingested, 0);
    }

    void listEntryAndFullGame_data() {
        test::addEngineRows();
    }
    void listEntryAndFullGame() {
        OPEN_DATABASE();
        send(ingest, QJsonArray{game(1)});
        const int64_t seq = stored(*db, 1)->match.changeSeq;
        const IngestOutcome late = send(ingest, QJsonArray{ClientGames::listEntry(game(1), 0)});
        QCOMPARE(late.ingested, 0);
        QCOMPARE(late.skipped, 1);
        QCOMPARE(stored(*db, 1)->participants.size(), size_t(10));
        QCOMPARE(stored(*db, 1)->match.changeSeq, seq);

        QCOMPARE(send(ingest, QJsonArray{ClientGames::listEntry(game(2), 4)}).ingested, 1);
        const auto entry = stored(*db, 2);
        QCOMPARE(entry->participants.size(), size_t(1));
        QVERIFY(!entry->participants[0].killParticipation);
        QCOMPARE(send(ingest, QJsonArray{game(2)}).ingested, 1);
        const auto full = stored(*db, 2);
        QCOMPARE(full->match.id, entry->match.id);
        QVERIFY(full->match.changeSeq > entry->match.changeSeq);
        QCOMPARE(full->participants.size(), size_t(10));
        QVERIFY(full->participants[4].killParticipation);
    }

    void badElementsSkipped_data() {
        test::addEngineRows();
    }
    void badElementsSkipped() {
        OPEN_DATABASE();
        QJsonObject noId = game(5);
        noId["gameId"] = "5";
        const QJsonArray batch{42,
                               "text",
                               QJsonValue::Null,
                               QJsonArray{},
                               QJsonObject{},
                               noId,
                               ClientGames::fixtureGame(),
                               ClientGames::listEntry(game(1), 2),
                               game(1),
                               game(1)};
        const IngestOutcome outcome = send(ingest, batch);
        QCOMPARE(outcome.ingested, 1);
        QCOMPARE(outcome.skipped, 9);
        QCOMPARE(outcome.matchIds, std::vector<std::string>{matchIdOf(1)});
        // Of the three copies of game 1, the fullest was stored.
        QCOMPARE(stored(*db, 1)->participants.size(), size_t(10));
    }

    void gamesNotAList_data() {
        test::addEngineRows();
    }
    void gamesNotAList() {
        OPEN_DATABASE();
        for (const QJsonValue& games : {QJsonValue(QJsonObject{{"0", game(1)}}), QJsonValue(game(1)), QJsonValue()}) {
            try {
                send(ingest, games);
                QFAIL("accepted games that are not a list");
            } catch (const HttpError& e) {
                QCOMPARE(e.status(), 400);
                QCOMPARE(e.what(), "Expected a JSON object with a \"games\" list.");
            }
        }
        QVERIFY(!stored(*db, 1));
    }

    void scoresOncePerLinkedAccount_data() {
        test::addEngineRows();
    }
    void scoresOncePerLinkedAccount() {
        OPEN_DATABASE();
        const int64_t singed = link(*db, players[0]);
        const int64_t elise = link(*db, players[5]);
        // Singed's kills rise game by game: the fourth game is better than his first three.
        send(ingest, QJsonArray{game(4, 4, 8), game(2, 2, 4), game(1, 1, 2), game(3, 3, 6)});
        const std::vector<PerformanceScore> first = scoresOf(*db, singed);
        QCOMPARE(first.size(), size_t(4));
        QCOMPARE(scoresOf(*db, elise).size(), size_t(4));
        std::map<int64_t, double> byMatch;
        for (const PerformanceScore& s : first) {
            QCOMPARE(s.teamPosition, "TOP");
            QCOMPARE(s.championId, 27);
            QCOMPARE(s.components.size(), size_t(5));
            byMatch[s.matchId] = s.score;
        }
        const int64_t fourth = stored(*db, 4)->match.id;
        for (const qint64 early : {1, 2, 3})
            QCOMPARE(byMatch[stored(*db, early)->match.id], 50.0);
        QVERIFY(byMatch[fourth] > 50.0);

        // The same games again, changed ones and an earlier game: old scores stay as they are.
        send(ingest, QJsonArray{game(4, 4, 8), game(3, 3, 7), game(9, 0, 0)});
        const std::vector<PerformanceScore> later = scoresOf(*db, singed);
        QCOMPARE(later.size(), size_t(5));
        for (size_t i = 0; i < first.size(); ++i) {
            QCOMPARE(later[i].id, first[i].id);
            QCOMPARE(later[i].score, first[i].score);
            QCOMPARE(later[i].changeSeq, first[i].changeSeq);
        }
        QCOMPARE(later[4].matchId, stored(*db, 9)->match.id);
        QCOMPARE(scoresOf(*db, elise).size(), size_t(5));
    }

    void scoreAccountAfterLink_data() {
        test::addEngineRows();
    }
    void scoreAccountAfterLink() {
        OPEN_DATABASE();
        send(ingest, QJsonArray{game(1, 1, 2), game(2, 2, 2), game(3, 3, 2), game(4, 4, 12)});
        RiotAccount account;
        const int64_t user = link(*db, players[0], &account);
        QVERIFY(scoresOf(*db, user).empty());

        db->write([&](Repository& r) { IngestService::scoreAccount(r, account); });
        const std::vector<PerformanceScore> scores = scoresOf(*db, user);
        QCOMPARE(scores.size(), size_t(4));
        // Oldest first: by the time game 4 is scored, games 1 to 3 are its history.
        QCOMPARE(scores[3].matchId, stored(*db, 4)->match.id);
        QVERIFY(scores[3].score > 50.0);
        QCOMPARE(scores[0].score, 50.0);

        db->write([&](Repository& r) { IngestService::scoreAccount(r, account); });
        QCOMPARE(scoresOf(*db, user).size(), size_t(4));
    }
};

QTEST_GUILESS_MAIN(TstIngestService)
#include "tst_ingest_service.moc"
