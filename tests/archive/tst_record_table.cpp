#include "archive/record_table.h"

#include <QTest>

namespace {

std::unique_ptr<LocalParticipant> row(qint64 serverId, qint64 game) {
    auto p = std::make_unique<LocalParticipant>();
    p->serverId = serverId;
    p->matchServerId = game;
    return p;
}

std::vector<qint64> serverIds(const std::vector<const LocalParticipant*>& records) {
    std::vector<qint64> ids;
    for (const LocalParticipant* r : records)
        ids.push_back(r->serverId);
    return ids;
}

std::vector<qint64> serverIds(const std::vector<LocalParticipant*>& records) {
    return serverIds(std::vector<const LocalParticipant*>(records.begin(), records.end()));
}

} // namespace

Q_DECLARE_METATYPE(std::vector<qint64>)

// The in-memory table's bookkeeping between saves: what the next save writes and deletes, and
// the indexes after records come, change and go.
class TestRecordTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pendingWrites_data() {
        // Steps on a table that holds the saved records 1 and 2 (game 10): "+n" inserts n,
        // "-n" removes n, "~n" marks n changed, "save" saves.
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<std::vector<qint64>>("written");
        QTest::addColumn<std::vector<qint64>>("deleted"); // server ids of the deleted saved records
        QTest::addColumn<bool>("changes");
        QTest::newRow("inserted then removed")
            << QStringList{"+3", "-3"} << std::vector<qint64>{} << std::vector<qint64>{} << false;
        QTest::newRow("changed twice, written once")
            << QStringList{"~1", "~1"} << std::vector<qint64>{1} << std::vector<qint64>{} << true;
        QTest::newRow("changed then removed")
            << QStringList{"~2", "-2"} << std::vector<qint64>{} << std::vector<qint64>{2} << true;
        QTest::newRow("oldest first") << QStringList{"+4", "~2", "+3", "~1"} << std::vector<qint64>{1, 2, 4, 3}
                                      << std::vector<qint64>{} << true;
        QTest::newRow("removed after a save that removed")
            << QStringList{"-1", "+3", "save", "-3", "~2"} << std::vector<qint64>{2} << std::vector<qint64>{3} << true;
    }
    void pendingWrites() {
        QFETCH(QStringList, steps);
        QFETCH(std::vector<qint64>, written);
        QFETCH(std::vector<qint64>, deleted);
        QFETCH(bool, changes);

        RecordTable<LocalParticipant> table;
        std::map<qint64, LocalParticipant*> byServerId;
        std::map<qint64, qint64> localIdOf;
        for (qint64 id : {1, 2}) {
            auto r = row(id, 10);
            r->localId = id;
            localIdOf[id] = id;
            byServerId[id] = table.adopt(std::move(r));
        }
        for (const QString& step : steps) {
            if (step == QLatin1String("save")) {
                table.saved();
                continue;
            }
            const qint64 id = step.mid(1).toLongLong();
            if (step.startsWith('+')) {
                byServerId[id] = table.insert(row(id, 10));
                localIdOf[id] = byServerId[id]->localId;
            } else if (step.startsWith('-')) {
                table.remove(byServerId[id]);
            } else {
                table.markChanged(byServerId[id]);
            }
        }
        QCOMPARE(serverIds(table.toWrite()), written);
        std::vector<qint64> expectedDeletes;
        for (qint64 id : deleted)
            expectedDeletes.push_back(localIdOf[id]);
        QCOMPARE(table.toDelete(), expectedDeletes);
        QCOMPARE(table.hasChanges(), changes);
    }

    void movedToAnotherGame() {
        RecordTable<LocalParticipant> table;
        LocalParticipant* a = table.insert(row(1, 10));
        table.insert(row(2, 10));
        table.saved();
        a->matchServerId = 11;
        table.markChanged(a);
        QCOMPARE(serverIds(table.withMatchServerId(10)), std::vector<qint64>{2});
        QCOMPARE(serverIds(table.withMatchServerId(11)), std::vector<qint64>{1});
        table.remove(a);
        QVERIFY(table.withMatchServerId(11).empty());
        QCOMPARE(table.count(), 1);
    }

    void recordsFoundAfterRemovalsAreSaved() {
        RecordTable<LocalParticipant> table;
        std::vector<LocalParticipant*> rows;
        for (qint64 id = 1; id <= 50; ++id)
            rows.push_back(table.insert(row(id, id % 5)));
        table.saved();
        for (qint64 id = 1; id <= 50; id += 3)
            table.remove(rows[id - 1]);
        table.saved();
        // The survivors are still known to the table: they can change and go.
        table.markChanged(rows[1]);
        table.remove(rows[49]);
        QCOMPARE(serverIds(table.toWrite()), std::vector<qint64>{2});
        QCOMPARE(table.toDelete(), std::vector<qint64>{rows[49]->localId});
        QCOMPARE(table.count(), 50 - 17 - 1);
        QCOMPARE(serverIds(table.withServerIds({1, 2, 3})), (std::vector<qint64>{2, 3}));
    }

    // A removed record stays readable where it was until the save; only then is its place given
    // to a new record, which the indexes and the order of identity then find as the new one.
    void placeReusedOnlyAfterSave() {
        RecordTable<LocalParticipant> table;
        LocalParticipant* a = table.insert(row(1, 10));
        table.saved();
        table.remove(a);
        LocalParticipant* b = table.insert(row(2, 10));
        QVERIFY(b != a);
        QCOMPARE(a->serverId, 1);
        table.saved();
        LocalParticipant* c = table.insert(row(3, 11));
        QCOMPARE(c, a);
        QCOMPARE(serverIds(table.all()), (std::vector<qint64>{2, 3}));
        QCOMPARE(serverIds(table.withMatchServerId(10)), std::vector<qint64>{2});
        QCOMPARE(serverIds(table.withMatchServerId(11)), std::vector<qint64>{3});
        QCOMPARE(serverIds(table.toWrite()), (std::vector<qint64>{3}));
    }

    void everythingRemovedThenRefilled() {
        RecordTable<LocalParticipant> table;
        table.insert(row(1, 10));
        table.saved();
        table.removeAll();
        LocalParticipant* fresh = table.insert(row(2, 10));
        QVERIFY(table.wipes());
        QCOMPARE(serverIds(table.toWrite()), std::vector<qint64>{2});
        table.saved();
        table.remove(fresh);
        QCOMPARE(table.toDelete(), std::vector<qint64>{fresh->localId});
        QVERIFY(table.withMatchServerId(10).empty());
    }
};

QTEST_GUILESS_MAIN(TestRecordTable)
#include "tst_record_table.moc"
