#include "archive/archive_store.h"
#include "archive/record_columns.h"
#include "archive/sqlite_database.h"
#include "archive/store_error.h"
#include "backend/backend_date.h"
#include "backend/json_reader.h"
#include "support/archive_json.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <limits>
#include <sqlite3.h>

using namespace ArchiveJson;

namespace {

template <class Dto> Dto dtoOf(const QJsonObject& json) {
    return Dto::decode(JsonReader(json));
}

} // namespace

class TestArchiveStore : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_path;

private Q_SLOTS:
    void init() {
        m_path = m_dir.filePath(QStringLiteral("archive-%1.sqlite").arg(QTest::currentTestFunction()));
        QFile::remove(m_path);
    }

    void displayName_data() {
        QTest::addColumn<QJsonValue>("gameName");
        QTest::addColumn<QString>("puuid");
        QTest::addColumn<QString>("shown");
        QTest::newRow("name") << QJsonValue("Ada") << "abcdefghij"
                              << "Ada";
        QTest::newRow("empty name") << QJsonValue("") << "abcdefghij"
                                    << "abcdef";
        QTest::newRow("no name") << QJsonValue(QJsonValue::Null) << "abcdefghij"
                                 << "abcdef";
    }
    void displayName() {
        QFETCH(QJsonValue, gameName);
        QFETCH(QString, puuid);
        QFETCH(QString, shown);
        QJsonObject json = participant(1, 1, puuid);
        json["riot_id_game_name"] = gameName;
        QCOMPARE(LocalParticipant(dtoOf<ParticipantDto>(json)).displayName(), shown);
    }

    // A sync reads player records straight into rows; the row and any failure must be exactly
    // what the plain record would have given.
    void decodedStraightIntoRows_data() {
        QTest::addColumn<QJsonObject>("json");
        const QJsonObject full = participant(1, 2, "p-full");
        auto with = [&full](std::initializer_list<std::pair<QString, QJsonValue>> changes) {
            QJsonObject json = full;
            for (const auto& [key, value] : changes)
                if (value.isUndefined())
                    json.remove(key);
                else
                    json[key] = value;
            return json;
        };
        const QJsonValue gone = QJsonValue(QJsonValue::Undefined);
        const QJsonValue null = QJsonValue(QJsonValue::Null);
        QTest::newRow("full") << full;
        QTest::newRow("optionals absent") << with({{"riot_id_game_name", gone},
                                                   {"riot_id_tag_line", gone},
                                                   {"team_position", gone},
                                                   {"rank_tier", gone},
                                                   {"items", gone},
                                                   {"champ_level", gone},
                                                   {"cs_per_min", gone}});
        QTest::newRow("optionals null") << with({{"riot_id_game_name", null},
                                                 {"rank_division", null},
                                                 {"items", null},
                                                 {"rank_lp", null},
                                                 {"team_damage_pct", null}});
        QTest::newRow("empty texts") << with({{"riot_id_game_name", ""}, {"puuid", ""}, {"items", QJsonArray{}}});
        QTest::newRow("not ASCII") << with({{"riot_id_game_name", QStringLiteral("Ünïcødé 名前 🐉")}});
        QTest::newRow("camelCase keys") << with({{"riot_id_game_name", gone}, {"riotIdGameName", "Camel"}});
        QTest::newRow("eight items") << with({{"items", QJsonArray{1, 2, 3, 4, 5, 6, 7, 8}}});
        QTest::newRow("item beyond 24 bits") << with({{"items", QJsonArray{3089, 1 << 24}}});
        QTest::newRow("kills beyond 16 bits") << with({{"kills", 70000}});
        QTest::newRow("champion id beyond 32 bits") << with({{"champion_id", 5'000'000'000.0}});
        QTest::newRow("puuid missing") << with({{"puuid", gone}});
        QTest::newRow("puuid a number") << with({{"puuid", 7}});
        QTest::newRow("kills not whole") << with({{"kills", 3.5}});
        QTest::newRow("item a text") << with({{"items", QJsonArray{3089, "boots"}}});
        QTest::newRow("position a number") << with({{"team_position", 3}});
        QTest::newRow("level a text") << with({{"champ_level", "16"}});
    }
    void decodedStraightIntoRows() {
        QFETCH(QJsonObject, json);
        std::optional<LocalParticipant> plain, straight;
        QString plainFailure, straightFailure;
        try {
            plain.emplace(dtoOf<ParticipantDto>(json));
        } catch (const DecodingFailure& failure) {
            plainFailure = failure.text();
        }
        try {
            straight = LocalParticipant::decode(JsonReader(json));
        } catch (const DecodingFailure& failure) {
            straightFailure = failure.text();
        }
        QCOMPARE(straightFailure, plainFailure);
        QCOMPARE(straight.has_value(), plain.has_value());
        if (!plain)
            return;
        QCOMPARE(straight->exact() != nullptr, plain->exact() != nullptr);
        QVERIFY(straight->toDto() == plain->toDto());
        QCOMPARE(straight->items, plain->items);
        QCOMPARE(straight->kills, plain->kills);
        QCOMPARE(straight->riotIdGameName.lowerCaseHash(), plain->riotIdGameName.lowerCaseHash());
    }

    void rankedFlagKeptWhenAbsent() {
        QJsonObject json = match(1, 420);
        json.remove("is_ranked");
        QVERIFY(!LocalMatch(dtoOf<MatchDto>(json)).isRanked);

        LocalMatch stored(dtoOf<MatchDto>(match(1, 420)));
        QVERIFY(stored.isRanked);
        stored.update(dtoOf<MatchDto>(json));
        QVERIFY(stored.isRanked);
        json["is_ranked"] = false;
        stored.update(dtoOf<MatchDto>(json));
        QVERIFY(!stored.isRanked);
    }

    void scoreComponents_data() {
        QTest::addColumn<QJsonObject>("components");
        QTest::newRow("none") << QJsonObject{};
        QTest::newRow("several") << QJsonObject{{"a", 1.25}, {"b_c", -3.0}};
        QTest::newRow("keys needing escapes")
            << QJsonObject{{"say \"gg\"", 1.0}, {"back\\slash", 2.0}, {"tab\there", 3.0}};
        QTest::newRow("extreme numbers") << QJsonObject{{"tiny", 1e-300}, {"huge", 1.5e300}, {"third", 1.0 / 3.0}};
    }
    void scoreComponents() {
        QFETCH(QJsonObject, components);
        QJsonObject json = score(1, 2, 3);
        json["components"] = components;
        const PerformanceScoreDto dto = dtoOf<PerformanceScoreDto>(json);
        const LocalPerformanceScore stored(dto);
        const QJsonObject written = QJsonDocument::fromJson(stored.componentsJson.utf8().toByteArray()).object();
        QCOMPARE(written.size(), dto.components.size());
        for (auto it = dto.components.constBegin(); it != dto.components.constEnd(); ++it)
            QCOMPARE(written.value(it.key()).toDouble(), it.value());
        QVERIFY(LocalPerformanceScore().componentsJson == QLatin1String("{}") &&
                LocalPerformanceScore().baselineKind == QLatin1String("self"));
    }

    void everythingSurvivesReopening() {
        qint64 matchLocalId = 0;
        {
            ArchiveStore store(m_path);
            matchLocalId = store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(11))))->localId;
            QJsonObject bare = participant(21, 11, "p-bare");
            for (const char* key :
                 {"riot_id_game_name", "riot_id_tag_line", "team_position", "champ_level", "items", "team_damage_pct",
                  "kill_participation", "cs_per_min", "rank_tier", "rank_division", "rank_lp"})
                bare.remove(key);
            store.participants().insert(
                std::make_unique<LocalParticipant>(dtoOf<ParticipantDto>(participant(20, 11, "p-full"))));
            store.participants().insert(std::make_unique<LocalParticipant>(dtoOf<ParticipantDto>(bare)));
            store.rankSnapshots().insert(std::make_unique<LocalRankSnapshot>(dtoOf<RankSnapshotDto>(snapshot(30, 1))));
            store.performanceScores().insert(
                std::make_unique<LocalPerformanceScore>(dtoOf<PerformanceScoreDto>(score(40, 1, 11))));
            store.save();
        }
        ArchiveStore store(m_path);
        QCOMPARE(store.matches().count(), 1);
        const LocalMatch* m = store.matches().all().front();
        QCOMPARE(m->localId, matchLocalId);
        QCOMPARE(m->matchId.toString(), QStringLiteral("EUW1_7000000011"));
        QVERIFY(m->isRanked);
        QCOMPARE(m->gameCreation->toMSecsSinceEpoch(),
                 BackendDate::fromBackend(QStringLiteral("2025-03-01T18:04:05Z"))->toMSecsSinceEpoch());
        QCOMPARE(m->season, std::optional<qint64>(2025));

        const auto participants = store.participants().withMatchServerId(11);
        QCOMPARE(participants.size(), std::size_t(2));
        const LocalParticipant* full = participants[0]->puuid == "p-full" ? participants[0] : participants[1];
        const LocalParticipant* bare = participants[0]->puuid == "p-full" ? participants[1] : participants[0];
        QCOMPARE(full->items.toList(), (QList<qint64>{3089, 3020, 4645, 0, 0, 0, 3340}));
        QCOMPARE(full->csPerMin.toOptional(), std::optional<double>(6.7));
        QCOMPARE(full->riotIdTagLine.toOptional(), std::optional<QString>(QStringLiteral("EUW")));
        QVERIFY(full->win);
        QVERIFY(bare->items.isEmpty());
        QVERIFY(!bare->riotIdGameName && !bare->champLevel && !bare->teamDamagePct && !bare->rankLp);

        const LocalRankSnapshot* snap = store.rankSnapshots().all().front();
        QCOMPARE(snap->tier, std::optional<QString>(QStringLiteral("GOLD")));
        QVERIFY(snap->capturedAt);
        const LocalPerformanceScore* s = store.performanceScores().all().front();
        QCOMPARE(s->score, 61.5);
        QCOMPARE(QJsonDocument::fromJson(s->componentsJson.utf8().toByteArray())
                     .object()
                     .value("killParticipation")
                     .toDouble(),
                 0.64);
    }

    // Rows hold figures in the width of a game's and seven items; a record beyond that is kept
    // exactly beside the row, written whole and read back whole, and goes with the row when it is
    // copied or moved.
    void figuresBeyondTheRowKeptExactly() {
        QJsonObject json = participant(21, 11, "p-wide");
        json["kills"] = 5'000'000'000.0;
        json["items"] = QJsonArray{1, 2, 3, 4, 5, 6, 7, 8, 9};
        const ParticipantDto sent = dtoOf<ParticipantDto>(json);
        {
            ArchiveStore store(m_path);
            LocalParticipant* row = store.participants().insert(std::make_unique<LocalParticipant>(sent));
            QCOMPARE(row->kills, std::numeric_limits<qint16>::max());
            auto moved = std::make_unique<LocalParticipant>(*row);
            LocalParticipant copy = std::move(*moved);
            moved.reset();
            QVERIFY(copy.exact() && copy.exact() != row->exact());
            QCOMPARE(copy.toDto().kills, 5'000'000'000LL);
            copy = LocalParticipant(dtoOf<ParticipantDto>(participant(22, 11, "p-narrow")));
            QVERIFY(!copy.exact());
            QCOMPARE(row->toDto().kills, 5'000'000'000LL);
            store.save();
        }
        ArchiveStore store(m_path);
        const LocalParticipant* back = store.participants().all().front();
        QVERIFY(back->exact());
        QCOMPARE(back->toDto().kills, 5'000'000'000LL);
        QCOMPARE(back->toDto().items, sent.items);
        QCOMPARE(back->toDto().deaths, sent.deaths);
    }

    void updatesAndDeletionsPersist() {
        {
            ArchiveStore store(m_path);
            for (int id = 1; id <= 3; ++id)
                store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(id))));
            store.save();
            LocalMatch* second = store.matches().withServerIds({2}).front();
            second->gameDuration = 42;
            store.matches().markChanged(second);
            store.matches().remove(store.matches().withServerIds({3}).front());
            store.save();
        }
        {
            ArchiveStore store(m_path);
            QCOMPARE(store.matches().count(), 2);
            QCOMPARE(store.matches().withServerIds({2}).front()->gameDuration, 42);
            QVERIFY(store.matches().withServerIds({3}).empty());
            store.matches().removeAll();
            store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(9))));
            store.save();
        }
        ArchiveStore store(m_path);
        QCOMPARE(store.matches().count(), 1);
        QCOMPARE(store.matches().all().front()->serverId, 9);
    }

    void changedOnlyWhenSomethingWasSaved() {
        ArchiveStore store(m_path);
        QSignalSpy spy(&store, &ArchiveStore::changed);
        store.save();
        QCOMPARE(spy.count(), 0);
        store.matches().insert(std::make_unique<LocalMatch>());
        store.save();
        QCOMPARE(spy.count(), 1);
    }

    void failedSaveKeepsChangesPending() {
        {
            ArchiveStore store(m_path);
            store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(1))));
            store.save();
            store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(2))));
            // The player row's new texts go into the file before the row does, which then fails:
            // they must leave the texts the store knows as well, or the next save names texts the
            // file lost.
            store.participants().insert(
                std::make_unique<LocalParticipant>(dtoOf<ParticipantDto>(participant(20, 2, "p-new"))));
            store.database().execute(QStringLiteral("CREATE TEMP TRIGGER refuse BEFORE INSERT ON participants "
                                                    "BEGIN SELECT RAISE(ABORT, 'refused'); END"));
            QVERIFY_THROWS_EXCEPTION(StoreError, store.save());
            QVERIFY(store.hasChanges());
            store.database().execute(QStringLiteral("DROP TRIGGER refuse"));
            store.save();
            QVERIFY(!store.hasChanges());
        }
        ArchiveStore store(m_path);
        QCOMPARE(store.matches().count(), 2);
        const LocalParticipant* row = store.participants().all().front();
        QCOMPARE(row->toDto(), dtoOf<ParticipantDto>(participant(20, 2, "p-new")));
    }

    // A save names the texts of earlier saves by their numbers, whether the store's index of texts
    // holds them yet or they were added since (a large save folds those into the index).
    void textsAreNamedAgainAcrossSaves() {
        QList<ParticipantDto> expected;
        {
            ArchiveStore store(m_path);
            for (int save = 0; save < 3; ++save) {
                // Half of each save's players played in the save before.
                for (int player = save * 2500; player < save * 2500 + 5000; ++player) {
                    const qint64 id = expected.size() + 1;
                    expected << dtoOf<ParticipantDto>(participant(id, id / 10, QStringLiteral("p-%1").arg(player)));
                    store.participants().insert(std::make_unique<LocalParticipant>(expected.back()));
                }
                store.save();
            }
        }
        ArchiveStore store(m_path);
        const auto rows = store.participants().all();
        QCOMPARE(qsizetype(rows.size()), expected.size());
        for (std::size_t i = 0; i < rows.size(); ++i)
            QCOMPARE(rows[i]->toDto(), expected[qsizetype(i)]);
    }

    // Archives written before player rows were packed (schema 1: a column per field) are moved
    // over whole when first opened, and later saves go on from there.
    void schemaOneRowsAreMovedOver() {
        QList<ParticipantDto> rows;
        rows << dtoOf<ParticipantDto>(participant(20, 11, "p-full"));
        QJsonObject bare = participant(21, 11, "p-bare");
        for (const char* key :
             {"riot_id_game_name", "riot_id_tag_line", "team_position", "champ_level", "team_damage_pct",
              "kill_participation", "cs_per_min", "rank_tier", "rank_division", "rank_lp"})
            bare[key] = QJsonValue::Null;
        rows << dtoOf<ParticipantDto>(bare);
        QJsonObject unusual = participant(22, 12, "p-full"); // the same player in another game
        unusual["riot_id_game_name"] = QStringLiteral("Zoë ☕ 名前");
        unusual["riot_id_tag_line"] = QString(QLatin1String(""));
        unusual["team_id"] = -1;
        unusual["kills"] = 5'000'000'000.0;
        unusual["items"] = QJsonArray{1, 2, 3, 4, 5, 6, 7, 8, double(1 << 24)};
        rows << dtoOf<ParticipantDto>(unusual);
        QJsonObject noItems = participant(23, 12, "p-none");
        noItems["items"] = QJsonArray{};
        rows << dtoOf<ParticipantDto>(noItems);
        {
            ArchiveStore store(m_path);
            QStringList columns{QStringLiteral("local_id")};
            const ParticipantDto probe;
            RecordColumns<LocalParticipant>::visit(probe, [&](const char* name, auto&) { columns << name; });
            store.database().execute(
                QStringLiteral("DROP TABLE participants; DROP TABLE texts; CREATE TABLE participants (%1)")
                    .arg(columns.join(QStringLiteral(", "))));
            SqliteStatement insert(store.database(), QStringLiteral("INSERT INTO participants VALUES (?%1)")
                                                         .arg(QStringLiteral(", ?").repeated(columns.size() - 1)));
            qint64 localId = 0;
            for (const ParticipantDto& row : rows) {
                insert.bind(1, ++localId);
                int index = 2;
                RecordColumns<LocalParticipant>::visit(
                    row, [&](const char*, const auto& field) { insert.bind(index++, field); });
                insert.step();
                insert.reset();
            }
            store.database().execute(QStringLiteral("PRAGMA user_version = 1"));
        }
        const auto readBack = [this] {
            ArchiveStore store(m_path);
            QList<ParticipantDto> back;
            for (const LocalParticipant* row : store.participants().all())
                back << row->toDto();
            return back;
        };
        QList<ParticipantDto> expected = rows;
        for (ParticipantDto& row : expected)
            row.items = row.items.value_or(QList<qint64>());
        QCOMPARE(readBack(), expected);
        {
            ArchiveStore store(m_path);
            const QJsonObject again = participant(24, 13, "p-bare");
            QJsonObject fresh = participant(25, 13, "p-fresh");
            fresh["champion_name"] = QStringLiteral("Aurora");
            store.participants().insert(std::make_unique<LocalParticipant>(dtoOf<ParticipantDto>(again)));
            store.participants().insert(std::make_unique<LocalParticipant>(dtoOf<ParticipantDto>(fresh)));
            store.save();
            expected << dtoOf<ParticipantDto>(again) << dtoOf<ParticipantDto>(fresh);
        }
        QCOMPARE(readBack(), expected);
    }

    // A damaged player line (cut short at any byte, or bytes no packer writes) is read as far as
    // it goes: the archive still opens, the row keeps its keys, the other rows are untouched.
    void damagedLinesReadWhatTheyCan() {
        const ParticipantDto next = dtoOf<ParticipantDto>(participant(21, 11, "p-next"));
        QByteArray line;
        {
            ArchiveStore store(m_path);
            store.participants().insert(
                std::make_unique<LocalParticipant>(dtoOf<ParticipantDto>(participant(20, 11, "p-full"))));
            store.participants().insert(std::make_unique<LocalParticipant>(next));
            store.save();
            SqliteStatement select(store.database(),
                                   QStringLiteral("SELECT line FROM participants WHERE local_id = 1"));
            QVERIFY(select.step());
            line = select.blob(0).toByteArray();
        }
        QList<QByteArray> damaged;
        for (qsizetype length = 0; length < line.size(); ++length)
            damaged << line.left(length);
        // A line damaged at its first byte, followed by bytes that would read as figures.
        const QByteArray badStart = QByteArray("\x02") + QByteArray(40, '\x04');
        damaged << line + QByteArray("\x01") << badStart << QByteArray(11, '\xff') << QByteArray("\x00\x00\x00\x02", 4);
        for (const QByteArray& bytes : damaged) {
            {
                SqliteDatabase db(m_path);
                SqliteStatement update(db, QStringLiteral("UPDATE participants SET line = ? WHERE local_id = 1"));
                update.bindBlob(1, bytes);
                update.step();
            }
            QTest::ignoreMessage(QtWarningMsg, "Player rows of the archive that could not be read whole: 1 (what "
                                               "could not be read of them shows empty).");
            ArchiveStore store(m_path);
            const auto all = store.participants().all();
            QCOMPARE(all.size(), std::size_t(2));
            QCOMPARE(all[0]->serverId, 20);
            QCOMPARE(all[0]->matchServerId, 11);
            if (bytes == badStart) {
                // Nothing after the damage is taken for a figure.
                QCOMPARE(all[0]->teamId, 0);
                QCOMPARE(all[0]->kills, 0);
                QCOMPARE(all[0]->items.size(), 0);
            }
            QCOMPARE(all[1]->toDto(), next);
        }
    }

    void unreadableFilesAreRefusedAndKept_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("text file") << QByteArray("these are not the games you are looking for\n").repeated(200);
        QTest::newRow("truncated header") << QByteArray("SQLite format 3\0\x10\0", 18);
    }
    void unreadableFilesAreRefusedAndKept() {
        QFETCH(QByteArray, content);
        {
            QFile file(m_path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        try {
            ArchiveStore store(m_path);
            QFAIL("a file that is not an archive was opened");
        } catch (const StoreError& error) {
            QVERIFY(!error.description().isEmpty());
        }
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content); // left exactly as it was
    }

    void newerSchemaIsRefused() {
        {
            ArchiveStore store(m_path);
            store.database().execute(QStringLiteral("PRAGMA user_version = 99"));
        }
        QVERIFY_THROWS_EXCEPTION(StoreError, ArchiveStore store(m_path));
    }

    void secondOpenWhileInUseIsRefused() {
        ArchiveStore first(m_path);
        first.matches().insert(std::make_unique<LocalMatch>());
        first.save();
        try {
            ArchiveStore second(m_path);
            QFAIL("a second store opened the archive in use");
        } catch (const StoreError& error) {
            QCOMPARE(error.description(), QString::fromLatin1(ArchiveStore::inUseByAnotherCopy));
        }
        QCOMPARE(first.matches().count(), 1);
    }

    void duplicateServerIdsAreFetchedOldestFirst() {
        ArchiveStore store(m_path);
        LocalMatch* a = store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(5))));
        LocalMatch* b = store.matches().insert(std::make_unique<LocalMatch>(dtoOf<MatchDto>(match(5))));
        const auto found = store.matches().withServerIds({5});
        QCOMPARE(found.size(), std::size_t(2));
        QCOMPARE(found[0], a);
        QCOMPARE(found[1], b);
    }
};

QTEST_GUILESS_MAIN(TestArchiveStore)
#include "tst_archive_store.moc"
