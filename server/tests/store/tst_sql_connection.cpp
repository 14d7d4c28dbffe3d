// The two engines behind SqlConnection: values, errors, transactions, reconnection, and the
// schema migrations Database::open runs.

#include "store/migrations.h"
#include "store/postgres/postgres_connection.h"
#include "store/sqlite/sqlite_connection.h"
#include "store/test_databases.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <limits>
#include <thread>

using namespace qf;
using qf::test::TestDatabase;

Q_DECLARE_METATYPE(qf::SqlValue)

namespace {

std::unique_ptr<SqlConnection> openConnection(const QString& engine, const std::string& address) {
    if (engine == QLatin1String("sqlite"))
        return std::make_unique<SqliteConnection>(address);
    return std::make_unique<PostgresConnection>(address);
}

int64_t schemaVersion(const QString& engine, const std::string& address) {
    if (engine == QLatin1String("sqlite"))
        return SqliteConnection(address).query("PRAGMA user_version", {}).integer(0, 0);
    PostgresConnection c(address);
    SqlResult r = c.query("SELECT COUNT(*), MAX(version) FROM schema_migrations", {});
    // One row per step, or a step ran twice.
    return r.integer(0, 0) == r.integer(0, 1) ? r.integer(0, 1) : -1;
}

int64_t expectedVersion(const QString& engine) {
    return static_cast<int64_t>(engine == QLatin1String("sqlite") ? sqliteMigrations().size()
                                                                  : postgresMigrations().size());
}

User someUser(const std::string& email) {
    User u;
    u.email = email;
    u.emailKey = email;
    u.passwordHash = "$argon2id$v=19$m=65536,t=2,p=1$c2FsdA$aGFzaA";
    u.createdAt = 1'700'000'000'000;
    return u;
}

} // namespace

class TestSqlConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void conversions_data();
    void conversions();
    void placeholders_data();
    void placeholders();
    void valuesRoundTrip_data() { qf::test::addEngineRows(); }
    void valuesRoundTrip();
    void errors_data() { qf::test::addEngineRows(); }
    void errors();
    void transactions_data() { qf::test::addEngineRows(); }
    void transactions();
    void postgresReconnects();
    void migrationsRunOnceAndKeepData_data() { qf::test::addEngineRows(); }
    void migrationsRunOnceAndKeepData();
    void processesStartingTogetherMigrateOnce_data() { qf::test::addEngineRows(); }
    void processesStartingTogetherMigrateOnce();
    void firstSchemaGainsSyncIndexAndStartTimes_data() { qf::test::addEngineRows(); }
    void firstSchemaGainsSyncIndexAndStartTimes();
    void newerSchemaIsRefused_data() { qf::test::addEngineRows(); }
    void newerSchemaIsRefused();
    void sqliteFolderIsCreated();
    void unreachableDatabaseIsAStoreError_data();
    void unreachableDatabaseIsAStoreError();
};

void TestSqlConnection::conversions_data() {
    QTest::addColumn<SqlValue>("cell");
    QTest::addColumn<qint64>("integer");
    QTest::addColumn<double>("real");
    QTest::addColumn<QString>("text");

    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("integer") << SqlValue(int64_t{42}) << qint64(42) << 42.0 << "42";
    QTest::newRow("largest integer") << SqlValue(std::numeric_limits<int64_t>::max())
                                     << qint64(std::numeric_limits<int64_t>::max()) << 9223372036854775807.0
                                     << "9223372036854775807";
    QTest::newRow("real truncates") << SqlValue(2.75) << qint64(2) << 2.75 << "2.75";
    QTest::newRow("negative real truncates toward zero") << SqlValue(-2.75) << qint64(-2) << -2.75 << "-2.75";
    QTest::newRow("real beyond integers clamps")
        << SqlValue(1e300) << qint64(std::numeric_limits<int64_t>::max()) << 1e300 << "1e+300";
    QTest::newRow("NaN reads as integer 0") << SqlValue(nan) << qint64(0) << nan << "nan";
    QTest::newRow("integer text") << SqlValue(std::string("17")) << qint64(17) << 17.0 << "17";
    QTest::newRow("real text") << SqlValue(std::string("3.9")) << qint64(3) << 3.9 << "3.9";
    QTest::newRow("other text") << SqlValue(std::string("abc")) << qint64(0) << 0.0 << "abc";
    QTest::newRow("empty text") << SqlValue(std::string()) << qint64(0) << 0.0 << "";
    QTest::newRow("NULL") << sqlNull() << qint64(0) << 0.0 << "";
}

void TestSqlConnection::conversions() {
    QFETCH(SqlValue, cell);
    QFETCH(qint64, integer);
    QFETCH(double, real);
    QFETCH(QString, text);

    const SqlResult r(1, {cell});
    QCOMPARE(r.integer(0, 0), integer);
    if (std::isnan(real))
        QVERIFY(std::isnan(r.real(0, 0)));
    else
        QCOMPARE(r.real(0, 0), real);
    QCOMPARE(QString::fromStdString(r.text(0, 0)), text);

    const bool null = std::holds_alternative<std::monostate>(cell);
    QCOMPARE(r.isNull(0, 0), null);
    QCOMPARE(r.optInteger(0, 0).has_value(), !null);
    QCOMPARE(r.optReal(0, 0).has_value(), !null);
    QCOMPARE(r.optText(0, 0).has_value(), !null);
}

void TestSqlConnection::placeholders_data() {
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("numbered");
    QTest::addColumn<int>("count");

    QTest::newRow("in order") << "SELECT ? + ? FROM t WHERE a = ?"
                              << "SELECT $1 + $2 FROM t WHERE a = $3" << 3;
    QTest::newRow("none") << "SELECT 1"
                          << "SELECT 1" << 0;
    QTest::newRow("string literal") << "SELECT '?', ?"
                                    << "SELECT '?', $1" << 1;
    QTest::newRow("doubled quote in literal") << "SELECT 'it''s ?', ?"
                                              << "SELECT 'it''s ?', $1" << 1;
    QTest::newRow("quoted identifier") << "SELECT \"odd?\" FROM t WHERE a = ?"
                                       << "SELECT \"odd?\" FROM t WHERE a = $1" << 1;
    QTest::newRow("line comment") << "SELECT ? -- why?\n, ?"
                                  << "SELECT $1 -- why?\n, $2" << 2;
    QTest::newRow("block comment") << "SELECT /* ? */ ?"
                                   << "SELECT /* ? */ $1" << 1;
    QTest::newRow("unterminated literal") << "SELECT ?, 'open ?"
                                          << "SELECT $1, 'open ?" << 1;
    QTest::newRow("ten or more") << "VALUES (?,?,?,?,?,?,?,?,?,?,?)"
                                 << "VALUES ($1,$2,$3,$4,$5,$6,$7,$8,$9,$10,$11)" << 11;
}

void TestSqlConnection::placeholders() {
    QFETCH(QString, sql);
    QFETCH(QString, numbered);
    QFETCH(int, count);

    int found = -1;
    QCOMPARE(QString::fromStdString(numberedPlaceholders(sql.toStdString(), found)), numbered);
    QCOMPARE(found, count);
}

void TestSqlConnection::valuesRoundTrip() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    auto c = openConnection(engine, db.address());

    c->query("CREATE TABLE t (n INTEGER PRIMARY KEY, i BIGINT, r DOUBLE PRECISION, s TEXT)", {});
    const std::vector<std::vector<SqlValue>> rows = {
        {int64_t{1}, std::numeric_limits<int64_t>::min(), 0.1, std::string("é 日本 'single' \"double\" ? $1 \\")},
        {int64_t{2}, std::numeric_limits<int64_t>::max(), 1.0 / 3.0, std::string()},
        {int64_t{3}, int64_t{0}, -1.5e300, sqlNull()},
        {int64_t{4}, sqlNull(), 5e-324, std::string("null")},
    };
    for (const auto& row : rows)
        c->query("INSERT INTO t (n, i, r, s) VALUES (?, ?, ?, ?)", row);

    SqlResult r = c->query("SELECT n, i, r, s FROM t ORDER BY n", {});
    QCOMPARE(r.rows(), rows.size());
    QCOMPARE(r.columns(), 4);
    for (size_t i = 0; i < rows.size(); ++i)
        for (int column = 0; column < 4; ++column)
            QVERIFY2(r.at(i, column) == rows[i][static_cast<size_t>(column)],
                     qPrintable(QStringLiteral("row %1, column %2").arg(i).arg(column)));

    // Counts and comparisons come back as integers on both engines (PostgreSQL's bool as 0/1).
    SqlResult typed = c->query("SELECT COUNT(*), 1 = 1, 1 = 0, SUM(r) FROM t WHERE n < ?", {int64_t{3}});
    QCOMPARE(typed.at(0, 0), SqlValue(int64_t{2}));
    QCOMPARE(typed.at(0, 1), SqlValue(int64_t{1}));
    QCOMPARE(typed.at(0, 2), SqlValue(int64_t{0}));
    QVERIFY(std::holds_alternative<double>(typed.at(0, 3)));
}

void TestSqlConnection::errors() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    auto c = openConnection(engine, db.address());
    c->query("CREATE TABLE t (id BIGINT PRIMARY KEY, code TEXT NOT NULL UNIQUE)", {});
    c->query("INSERT INTO t (id, code) VALUES (?, ?)", {int64_t{1}, std::string("a")});

    QVERIFY_THROWS_EXCEPTION(UniqueViolation,
                             c->query("INSERT INTO t (id, code) VALUES (?, ?)", {int64_t{1}, std::string("b")}));
    QVERIFY_THROWS_EXCEPTION(UniqueViolation,
                             c->query("INSERT INTO t (id, code) VALUES (?, ?)", {int64_t{2}, std::string("a")}));

    // Other failures are StoreErrors that are not unique violations.
    const auto plainStoreError = [&](auto&& run) {
        try {
            run();
        } catch (const UniqueViolation&) {
            return false;
        } catch (const StoreError& e) {
            return std::string(e.what()).size() > 10;
        }
        return false;
    };
    QVERIFY(plainStoreError([&] { c->query("INSERT INTO t (id, code) VALUES (?, ?)", {int64_t{3}, sqlNull()}); }));
    QVERIFY(plainStoreError([&] { c->query("SELEKT 1", {}); }));
    QVERIFY(plainStoreError([&] { c->query("SELECT * FROM missing_table", {}); }));
    QVERIFY(plainStoreError([&] { c->query("SELECT id FROM t WHERE id = ?", {}); }));
    QVERIFY(plainStoreError([&] { c->query("SELECT id FROM t WHERE id = ?", {int64_t{1}, int64_t{2}}); }));
    QVERIFY(plainStoreError([&] {
        c->query("INSERT INTO t (id, code) VALUES (?, ?)", {int64_t{4}, std::string("a\0b", 3)});
    }));

    // None of them left the connection unusable, nor stored anything.
    QCOMPARE(c->query("SELECT COUNT(*) FROM t", {}).integer(0, 0), int64_t{1});
}

void TestSqlConnection::transactions() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    auto writer = openConnection(engine, db.address());
    auto reader = openConnection(engine, db.address());
    writer->query("CREATE TABLE t (id BIGINT PRIMARY KEY)", {});
    const auto count = [](SqlConnection& c) { return c.query("SELECT COUNT(*) FROM t", {}).integer(0, 0); };

    writer->beginWrite();
    writer->query("INSERT INTO t (id) VALUES (1)", {});
    writer->rollback();
    QCOMPARE(count(*reader), 0);

    // A read transaction keeps the snapshot of its first read while another connection commits.
    reader->beginRead();
    QCOMPARE(count(*reader), 0);
    writer->beginWrite();
    writer->query("INSERT INTO t (id) VALUES (2)", {});
    writer->commit();
    QCOMPARE(count(*reader), 0);
    reader->commit();
    QCOMPARE(count(*reader), 1);

    // A read transaction refuses writes on both engines.
    reader->beginRead();
    QVERIFY_THROWS_EXCEPTION(StoreError, reader->query("INSERT INTO t (id) VALUES (9)", {}));
    reader->rollback();
    QCOMPARE(count(*writer), 1);

    // A transaction a failure left open does not swallow the next one.
    writer->beginWrite();
    writer->query("INSERT INTO t (id) VALUES (3)", {});
    writer->beginWrite();
    writer->query("INSERT INTO t (id) VALUES (4)", {});
    writer->commit();
    QCOMPARE(count(*reader), 2);
}

void TestSqlConnection::postgresReconnects() {
    TestDatabase db(QStringLiteral("postgres"));
    QFS_REQUIRE_DATABASE(db);
    PostgresConnection victim(db.address());
    PostgresConnection admin(db.address());
    victim.query("CREATE TABLE t (id BIGINT PRIMARY KEY)", {});

    const auto killSession = [&] {
        const int64_t pid = victim.query("SELECT pg_backend_pid()", {}).integer(0, 0);
        admin.query("SELECT pg_terminate_backend(CAST(? AS INTEGER))", {pid});
        // Termination is asynchronous: wait until the session is gone.
        while (admin.query("SELECT COUNT(*) FROM pg_stat_activity WHERE pid = ?", {pid}).integer(0, 0) > 0)
            std::this_thread::yield();
    };

    // Dropped while idle in the pool: the next transaction opens a new session by itself.
    killSession();
    victim.beginWrite();
    victim.query("INSERT INTO t (id) VALUES (1)", {});
    victim.commit();

    // Dropped during a transaction: that work fails, and the connection serves the next one.
    victim.beginWrite();
    victim.query("INSERT INTO t (id) VALUES (2)", {});
    killSession();
    QVERIFY_THROWS_EXCEPTION(StoreError, victim.query("INSERT INTO t (id) VALUES (3)", {}));
    victim.rollback();
    victim.beginRead();
    QCOMPARE(victim.query("SELECT COUNT(*) FROM t", {}).integer(0, 0), 1);
    victim.commit();
}

void TestSqlConnection::migrationsRunOnceAndKeepData() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);

    {
        auto database = db.open();
        QCOMPARE(database->engine(), engine == QLatin1String("sqlite") ? SqlEngine::Sqlite : SqlEngine::Postgres);
        database->write([](Repository& r) {
            User u = someUser("kept@example.org");
            r.insertUser(u);
        });
    }
    QCOMPARE(schemaVersion(engine, db.address()), expectedVersion(engine));

    auto reopened = db.open();
    QCOMPARE(schemaVersion(engine, db.address()), expectedVersion(engine));
    auto user = reopened->read([](Repository& r) { return r.userByEmailKey("kept@example.org"); });
    QVERIFY(user.has_value());
}

void TestSqlConnection::processesStartingTogetherMigrateOnce() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);

    constexpr int kStarters = 4;
    std::vector<std::thread> starters;
    std::vector<std::string> failures(kStarters);
    for (int i = 0; i < kStarters; ++i) {
        starters.emplace_back([&, i] {
            try {
                auto database = db.open(1);
                database->write([i](Repository& r) {
                    User u = someUser("starter" + std::to_string(i) + "@example.org");
                    r.insertUser(u);
                });
            } catch (const std::exception& e) {
                failures[static_cast<size_t>(i)] = e.what();
            }
        });
    }
    for (auto& t : starters)
        t.join();
    for (const std::string& f : failures)
        QVERIFY2(f.empty(), f.c_str());
    QCOMPARE(schemaVersion(engine, db.address()), expectedVersion(engine));
}

// A database written before games kept their JSON and players their start times: after the
// upgrade its games reach the owner's sync with the same rows, and the score's look-back finds them.
void TestSqlConnection::firstSchemaGainsSyncIndexAndStartTimes() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    {
        auto c = openConnection(engine, db.address());
        c->beginWrite();
        const Migration& first = engine == QLatin1String("sqlite") ? sqliteMigrations()[0] : postgresMigrations()[0];
        for (std::string_view statement : first.statements)
            c->query(std::string(statement), {});
        if (engine == QLatin1String("sqlite")) {
            c->query("PRAGMA user_version = 1", {});
        } else {
            c->query("CREATE TABLE schema_migrations (version INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                     "applied_at TIMESTAMPTZ NOT NULL DEFAULT now())",
                     {});
            c->query("INSERT INTO schema_migrations (version, name) VALUES (1, 'first')", {});
        }
        c->query("INSERT INTO users (id, email, email_key, password_hash, created_at) "
                 "VALUES (1, 'old@example.org', 'old@example.org', '', 1)",
                 {});
        c->query("INSERT INTO riot_accounts (id, user_id, puuid, platform, region, is_owner, linked_at) "
                 "VALUES (1, 1, 'me', 'euw1', 'europe', 1, 1)",
                 {});
        c->query("INSERT INTO matches (id, match_id, platform, queue_id, is_ranked, game_creation, game_duration, "
                 "game_version, game_mode, updated_at, change_seq) "
                 "VALUES (7, 'EUW1_7', 'EUW1', 420, 1, 1700000000000, 1800, '14.1.1', 'CLASSIC', 1, 3)",
                 {});
        c->query(
            "INSERT INTO participants (id, match_id, puuid, riot_id_game_name, team_id, win, champion_id, "
            "champion_name, team_position, kills, deaths, assists, total_cs, gold_earned, vision_score, "
            "damage_to_champions, items) VALUES "
            "(70, 7, 'me', 'Old \"Name\"', 100, 1, 103, 'Ahri', 'MIDDLE', 5, 1, 9, 210, 12000, 20, 25000, '[3089]'), "
            "(71, 7, 'them', NULL, 200, 0, 22, 'Ashe', 'BOTTOM', 2, 4, 3, 180, 9000, 15, 14000, '[]')",
            {});
        c->commit();
    }

    auto database = db.open();
    const auto games = database->read([](Repository& r) { return r.changedGamesOfUser(1, 0, 10); });
    QCOMPARE(games.size(), size_t(1));
    QCOMPARE(games[0].match.matchId, std::string("EUW1_7"));
    QVERIFY(games[0].participantsJson.starts_with(
        "{\"id\":70,\"match_id\":7,\"puuid\":\"me\",\"riot_id_game_name\":\"Old \\\"Name\\\"\""));
    QVERIFY(games[0].participantsJson.find(
                "},{\"id\":71,\"match_id\":7,\"puuid\":\"them\",\"riot_id_game_name\":null") != std::string::npos);
    const auto earlier =
        database->read([](Repository& r) { return r.earlierGames("me", std::string("MIDDLE"), 1'800'000'000'000, 5); });
    QCOMPARE(earlier.size(), size_t(1));
    QCOMPARE(earlier[0].me.kills, int64_t(5));
}

void TestSqlConnection::newerSchemaIsRefused() {
    QFETCH(QString, engine);
    TestDatabase db(engine);
    QFS_REQUIRE_DATABASE(db);
    (void)db.open(1);
    {
        auto c = openConnection(engine, db.address());
        if (engine == QLatin1String("sqlite"))
            c->query("PRAGMA user_version = 999", {});
        else
            c->query("INSERT INTO schema_migrations (version, name) VALUES (999, 'from the future')", {});
    }
    QVERIFY_THROWS_EXCEPTION(StoreError, db.open(1));
}

void TestSqlConnection::sqliteFolderIsCreated() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("a/b/server.sqlite3"));
    auto database = Database::open({path.toStdString(), 2});
    QVERIFY(QFileInfo::exists(path));
}

void TestSqlConnection::unreachableDatabaseIsAStoreError_data() {
    QTest::addColumn<QString>("address");
    QTest::newRow("closed port") << "postgresql://postgres@127.0.0.1:1/quillfern";
    QTest::newRow("postgres scheme") << "postgres://postgres@127.0.0.1:1/quillfern";
    QTest::newRow("empty") << "";
    QTest::newRow("folder in place of a file") << QDir::tempPath();
}

void TestSqlConnection::unreachableDatabaseIsAStoreError() {
    QFETCH(QString, address);
    QVERIFY_THROWS_EXCEPTION(StoreError, Database::open({address.toStdString(), 1}));
}

QTEST_GUILESS_MAIN(TestSqlConnection)
#include "tst_sql_connection.moc"
