// Mirrors a synthetic archive through SyncEngine from a loopback backend into a fresh store, and
// sets the sync's rate beside what SQLite itself manages for the same rows.
//
//   bench_sync [--games N] [--page-size N] [--seed N] [--rounds N] [--sync-only | --decode-only]

#include "archive/archive_store.h"
#include "archive/mirror_page.h"
#include "archive/record_columns.h"
#include "archive/sync_engine.h"
#include "backend/backend_client.h"
#include "bench/synthetic_archive.h"
#include "support/fake_backend.h"
#include "support/task_result.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QScopeGuard>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QUrlQuery>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <sqlite3.h>
#include <variant>
#include <vector>

namespace {

// One column value, already in the form SQLite takes, so that the raw run measures SQLite alone.
using Value = std::variant<std::monostate, qint64, double, QByteArray>;

Value valueOf(qint64 v) {
    return v;
}
Value valueOf(bool v) {
    return static_cast<qint64>(v);
}
Value valueOf(double v) {
    return v;
}
Value valueOf(const QString& v) {
    return v.toUtf8();
}
Value valueOf(const QDateTime& v) {
    return v.toMSecsSinceEpoch();
}
Value valueOf(const QList<qint64>& v) {
    QByteArray text;
    for (qsizetype i = 0; i < v.size(); ++i) {
        if (i)
            text += ',';
        text += QByteArray::number(v[i]);
    }
    return text;
}
Value valueOf(qint32 v) {
    return static_cast<qint64>(v);
}
Value valueOf(qint16 v) {
    return static_cast<qint64>(v);
}
Value valueOf(const SharedText& v) {
    return v.isNull() ? Value{} : Value{v.utf8().toByteArray()};
}
template <class T> Value valueOf(OptionalInt<T> v) {
    return v ? Value{static_cast<qint64>(*v)} : Value{};
}
Value valueOf(OptionalReal v) {
    return v ? Value{*v} : Value{};
}
Value valueOf(const ItemSlots& v) {
    return valueOf(v.toList());
}
template <class T> Value valueOf(const std::optional<T>& v) {
    return v ? valueOf(*v) : Value{};
}

struct RawTable {
    QByteArray columns;
    QByteArray insertSql;
    std::vector<std::vector<Value>> rows;
};

template <class Record> RawTable rawTable(const RecordTable<Record>& table) {
    RawTable raw;
    QByteArray columns = "local_id";
    QByteArray marks = "?";
    Record probe;
    RecordColumns<Record>::visit(probe, [&](const char* name, auto&) {
        columns += QByteArray(", ") + name;
        marks += ", ?";
    });
    raw.columns = columns;
    raw.insertSql =
        QByteArray("INSERT INTO ") + RecordColumns<Record>::table + " (" + columns + ") VALUES (" + marks + ")";
    for (const Record* record : table.all()) {
        std::vector<Value> row{valueOf(record->localId)};
        RecordColumns<Record>::visit(*record, [&](const char*, const auto& field) { row.push_back(valueOf(field)); });
        raw.rows.push_back(std::move(row));
    }
    return raw;
}

void check(int code, sqlite3* db) {
    if (code != SQLITE_OK && code != SQLITE_DONE) {
        std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(db));
        std::exit(2);
    }
}

// Inserts every row with prepared statements in one transaction; returns the seconds it took.
double insertRaw(sqlite3* db, const std::vector<RawTable>& tables) {
    QElapsedTimer timer;
    timer.start();
    check(sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), db);
    for (const RawTable& table : tables) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(db, table.insertSql.constData(), -1, &statement, nullptr), db);
        for (const auto& row : table.rows) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                const int index = static_cast<int>(i) + 1;
                if (const auto* integer = std::get_if<qint64>(&row[i]))
                    sqlite3_bind_int64(statement, index, *integer);
                else if (const auto* real = std::get_if<double>(&row[i]))
                    sqlite3_bind_double(statement, index, *real);
                else if (const auto* text = std::get_if<QByteArray>(&row[i]))
                    sqlite3_bind_text(statement, index, text->constData(), static_cast<int>(text->size()),
                                      SQLITE_STATIC);
                else
                    sqlite3_bind_null(statement, index);
            }
            check(sqlite3_step(statement), db);
            sqlite3_reset(statement);
        }
        sqlite3_finalize(statement);
    }
    check(sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr), db);
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

// Processor time of the whole process (every thread), to tell work from waiting on a busy
// machine.
double processSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

QString thousands(double value) {
    return QLocale(QLocale::English).toString(static_cast<qint64>(std::llround(value)));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Sync throughput against raw SQLite inserts"));
    parser.addHelpOption();
    const QCommandLineOption gamesOption(QStringLiteral("games"), QStringLiteral("Games in the archive."),
                                         QStringLiteral("n"), QStringLiteral("20000"));
    const QCommandLineOption pageOption(QStringLiteral("page-size"), QStringLiteral("Games per sync page."),
                                        QStringLiteral("n"), QStringLiteral("300"));
    const QCommandLineOption seedOption(QStringLiteral("seed"), QStringLiteral("Generator seed."), QStringLiteral("n"),
                                        QStringLiteral("20240110"));
    const QCommandLineOption syncOnlyOption(QStringLiteral("sync-only"),
                                            QStringLiteral("Run only the sync (for a profiler)."));
    const QCommandLineOption roundsOption(QStringLiteral("rounds"), QStringLiteral("Rounds to run; the best counts."),
                                          QStringLiteral("n"), QStringLiteral("3"));
    const QCommandLineOption decodeOnlyOption(QStringLiteral("decode-only"),
                                              QStringLiteral("Only decode the pages, each round, for a profiler."));
    parser.addOptions({gamesOption, pageOption, seedOption, roundsOption, syncOnlyOption, decodeOnlyOption});
    parser.process(app);

    SyntheticArchiveOptions options;
    options.games = parser.value(gamesOption).toInt();
    options.gamesPerPage = parser.value(pageOption).toInt();
    options.seed = parser.value(seedOption).toULongLong();

    QElapsedTimer timer;
    timer.start();
    const SyntheticArchive archive(options);
    QHash<QString, QByteArray> pages;
    qint64 bytes = 0;
    for (int page = 0; page <= archive.pageCount(); ++page) {
        pages.insert(SyntheticArchive::cursorBefore(page), archive.pageBody(page));
        bytes += pages.value(SyntheticArchive::cursorBefore(page)).size();
    }
    const qint64 rows = archive.recordCount();
    std::printf("Synthetic archive: %lld games, %lld participants, %lld scores, %lld rank snapshots = %s rows\n",
                static_cast<long long>(archive.matches().size()), static_cast<long long>(archive.participants().size()),
                static_cast<long long>(archive.performanceScores().size()),
                static_cast<long long>(archive.rankSnapshots().size()), qPrintable(thousands(rows)));
    std::printf("  served as %d pages of up to %d games, %.1f MB of JSON (prepared in %.2f s)\n\n",
                archive.pageCount() + 1, options.gamesPerPage, bytes / 1e6, timer.elapsed() / 1000.0);

    // Decoding alone, to show how the sync's time divides; best of the rounds, as the sync.
    const bool syncOnly = parser.isSet(syncOnlyOption);
    const int rounds = syncOnly ? 1 : std::max(1, parser.value(roundsOption).toInt());
    qint64 decoded = 0;
    double decodeSeconds = 0;
    for (int round = 0; round < rounds && !syncOnly; ++round) {
        timer.restart();
        decoded = 0;
        for (const QByteArray& body : std::as_const(pages))
            decoded += decodeRecord<MirrorPage>(body).participants.size();
        const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        decodeSeconds = round == 0 ? seconds : std::min(decodeSeconds, seconds);
    }
    if (parser.isSet(decodeOnlyOption)) {
        std::printf("Decoding alone, best of %d rounds: %.3f s (%lld participants)\n", rounds, decodeSeconds,
                    static_cast<long long>(decoded));
        return 0;
    }

    // The backend serves from a thread of its own, as a real one serves from a process of its
    // own: the app fetches the next page while it stores one, which a backend on the app's own
    // thread could not answer until the store was done.
    QThread serving;
    auto* backendOnItsThread = new FakeBackend;
    FakeBackend& backend = *backendOnItsThread;
    backend.on("GET", QStringLiteral("/api/sync"), [&pages](const RecordedRequest& request) {
        const QString cursor =
            QUrlQuery(QString::fromUtf8(request.rawQuery)).queryItemValue(QStringLiteral("cursor"), QUrl::FullyDecoded);
        const auto found = pages.constFind(cursor);
        if (found == pages.constEnd())
            return FakeResponse::text(404, "unknown cursor");
        return FakeResponse{200, *found, {{"Content-Type", "application/json"}}};
    });
    backend.moveToThread(&serving);
    QObject::connect(&serving, &QThread::finished, backendOnItsThread, &QObject::deleteLater);
    serving.start();
    const auto stopServing = qScopeGuard([&serving] {
        serving.quit();
        serving.wait();
    });
    QNetworkAccessManager network;
    BackendClient client(network, backend.baseUrl());
    client.setAuthToken(QStringLiteral("bench"));

    // Each round mirrors into a fresh store and then writes the same rows raw into a fresh file,
    // so that both see the same machine; the best round of each is reported, as the machine is
    // shared.
    std::vector<double> syncTimes, rawTimes, syncCpu;
    for (int round = 0; round < rounds; ++round) {
        QTemporaryDir dir;
        QSettings settings(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
        ArchiveStore store(dir.filePath(QStringLiteral("archive.sqlite")));
        timer.restart();
        const double cpuBefore = processSeconds();
        int pulled = 0;
        try {
            SyncEngine engine(store, client, settings);
            pulled = runTask(engine.pull());
        } catch (const std::exception& error) {
            std::fprintf(stderr, "The sync failed: %s\n", error.what());
            return 1;
        }
        syncTimes.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e9);
        syncCpu.push_back(processSeconds() - cpuBefore);

        const qint64 stored = store.matches().count() + store.participants().count() + store.rankSnapshots().count() +
                              store.performanceScores().count();
        if (pulled != archive.matches().size() || stored != rows) {
            std::fprintf(stderr, "The mirror is incomplete: %d matches pulled, %lld of %lld rows stored\n", pulled,
                         static_cast<long long>(stored), static_cast<long long>(rows));
            return 1;
        }
        if (syncOnly)
            break;

        // The same rows, straight into a fresh file of the same settings, a column per field (the
        // store packs a player row's fields into one).
        const std::vector<RawTable> tables{rawTable(store.matches()), rawTable(store.participants()),
                                           rawTable(store.rankSnapshots()), rawTable(store.performanceScores())};
        ArchiveStore rawStore(dir.filePath(QStringLiteral("raw.sqlite")));
        rawStore.database().execute(
            QStringLiteral("DROP TABLE participants; CREATE TABLE participants (local_id INTEGER PRIMARY KEY%1)")
                .arg(QString::fromLatin1(tables[1].columns.mid(int(qstrlen("local_id"))))));
        rawTimes.push_back(insertRaw(rawStore.database().handle(), tables));
        std::printf("  round %d: sync %.2f s (processor %.2f s), raw inserts %.2f s\n", round + 1, syncTimes.back(),
                    syncCpu.back(), rawTimes.back());
    }

    const double syncSeconds = *std::min_element(syncTimes.begin(), syncTimes.end());
    if (syncOnly) {
        std::printf("Sync: %s rows in %.2f s\n", qPrintable(thousands(rows)), syncSeconds);
        return 0;
    }
    const double rawSeconds = *std::min_element(rawTimes.begin(), rawTimes.end());
    const double syncRate = rows / syncSeconds;
    const double rawRate = rows / rawSeconds;
    const double ratio = syncRate / rawRate;
    std::printf("\nBest of %d rounds:\n", rounds);
    std::printf("Sync (SyncEngine::pull, loopback HTTP, %d requests): %s rows in %.2f s = %s rows/s\n",
                archive.pageCount() + 1, qPrintable(thousands(rows)), syncSeconds, qPrintable(thousands(syncRate)));
    std::printf("  JSON decoding alone, done on the fetch thread meanwhile: %.2f s (%lld participants)\n",
                decodeSeconds, static_cast<long long>(decoded));
    std::printf("Raw SQLite prepared inserts, one transaction: %s rows in %.2f s = %s rows/s\n\n",
                qPrintable(thousands(rows)), rawSeconds, qPrintable(thousands(rawRate)));
    std::printf("Sync / raw insert rate: %.2f   (target >= 0.5: %s)\n", ratio, ratio >= 0.5 ? "met" : "MISSED");
    std::printf("Whole mirror:           %.2f s (target < 10 s: %s)\n", syncSeconds,
                syncSeconds < 10.0 ? "met" : "MISSED");
    return 0;
}
