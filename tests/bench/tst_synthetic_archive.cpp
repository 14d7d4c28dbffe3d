#include "archive/archive_store.h"
#include "backend/json_reader.h"
#include "bench/synthetic_archive.h"

#include <QSet>
#include <QTemporaryDir>
#include <QTest>

// The generated archive feeds benchmarks, tests and the screenshot tour: it must be the same for
// a seed, consistent with itself, and served as pages that chain to exactly the whole archive.
class TestSyntheticArchive : public QObject {
    Q_OBJECT

    static SyntheticArchive make(int games, int perPage = 300, quint64 seed = 7, int snapshots = -1) {
        SyntheticArchiveOptions options;
        options.games = games;
        options.gamesPerPage = perPage;
        options.seed = seed;
        options.rankSnapshots = snapshots;
        return SyntheticArchive(options);
    }

private Q_SLOTS:
    void sameSeedSameArchive() {
        const SyntheticArchive a = make(120, 50, 11);
        const SyntheticArchive b = make(120, 50, 11);
        const SyntheticArchive c = make(120, 50, 12);
        for (int page = 0; page <= a.pageCount(); ++page)
            QCOMPARE(a.pageBody(page), b.pageBody(page));
        QVERIFY(a.pageBody(0) != c.pageBody(0));
        QCOMPARE(a.ownerPuuids(), c.ownerPuuids()); // the owner is the same person whatever the seed
    }

    void pagesChainToTheWholeArchive_data() {
        QTest::addColumn<int>("games");
        QTest::addColumn<int>("perPage");
        QTest::addColumn<int>("snapshots");
        QTest::newRow("empty") << 0 << 300 << -1;
        QTest::newRow("exact pages") << 600 << 300 << -1;
        QTest::newRow("last page short") << 701 << 300 << 150;
        QTest::newRow("page of one") << 9 << 1 << 5;
    }
    void pagesChainToTheWholeArchive() {
        QFETCH(int, games);
        QFETCH(int, perPage);
        QFETCH(int, snapshots);
        const SyntheticArchive archive = make(games, perPage, 3, snapshots);
        QCOMPARE(archive.matches().size(), games);
        QCOMPARE(archive.participants().size(), games * 10);
        QCOMPARE(archive.performanceScores().size(), games);
        if (snapshots >= 0)
            QVERIFY(archive.rankSnapshots().size() <= snapshots);

        QString cursor;
        QSet<qint64> matches, participants, scores, snapshotIds;
        int requests = 0;
        for (;;) {
            const int page = archive.pageForCursor(cursor);
            QVERIFY2(page >= 0, qPrintable(cursor));
            const SyncResponse response = decodeRecord<SyncResponse>(archive.pageBody(page));
            for (const MatchDto& m : response.matches)
                matches.insert(m.id);
            for (const ParticipantDto& p : response.participants) {
                QVERIFY2(matches.contains(p.matchId), "a participant arrived before its game");
                participants.insert(p.id);
            }
            for (const PerformanceScoreDto& s : response.performanceScores)
                scores.insert(s.id);
            for (const RankSnapshotDto& r : response.rankSnapshots)
                snapshotIds.insert(r.id);
            QVERIFY(response.nextCursor);
            cursor = *response.nextCursor;
            QVERIFY(++requests <= archive.pageCount() + 1);
            if (!response.hasMore)
                break;
        }
        QCOMPARE(matches.size(), games);
        QCOMPARE(participants.size(), games * 10);
        QCOMPARE(scores.size(), games);
        QCOMPARE(snapshotIds.size(), archive.rankSnapshots().size());

        // A later pull resumes from the last cursor and finds nothing new.
        const SyncResponse later = decodeRecord<SyncResponse>(archive.pageBody(archive.pageForCursor(cursor)));
        QVERIFY(later.matches.isEmpty() && !later.hasMore);
        QCOMPARE(later.nextCursor, std::optional<QString>(cursor));
    }

    void fillsAStore() {
        const SyntheticArchive archive = make(40);
        QTemporaryDir dir;
        ArchiveStore store(dir.filePath(QStringLiteral("archive.sqlite")));
        archive.fill(store);
        QCOMPARE(store.matches().count(), 40);
        QCOMPARE(store.participants().count(), 400);
        QCOMPARE(store.performanceScores().count(), 40);
        QCOMPARE(store.rankSnapshots().count(), archive.rankSnapshots().size());
        QVERIFY(!store.hasChanges());
        QVERIFY(store.matches().all().front()->gameCreation);
    }
};

QTEST_GUILESS_MAIN(TestSyntheticArchive)
#include "tst_synthetic_archive.moc"
