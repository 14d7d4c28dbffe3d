#include "archive/archive_store.h"
#include "session/account_link_form.h"
#include "session/app_state.h"
#include "session/login_form.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include <QNetworkAccessManager>
#include <QTest>

using namespace ArchiveJson;

class TestForms : public QObject {
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

    void submitNeedsEmailAndEightCharacters_data() {
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("8 characters") << "a@b.c"
                                      << "12345678" << true;
        QTest::newRow("7 characters") << "a@b.c"
                                      << "1234567" << false;
        QTest::newRow("4 accented letters, 8 code units")
            << "a@b.c" << QString::fromUtf8("e\u0301").repeated(4) << false;
        QTest::newRow("no e-mail") << ""
                                   << "12345678" << false;
        QTest::newRow("spaces count as typed") << " "
                                               << "        " << true;
    }
    void submitNeedsEmailAndEightCharacters() {
        QFETCH(QString, email);
        QFETCH(QString, password);
        QFETCH(bool, enabled);
        m_state->bootstrap(m_store.get());
        LoginForm form;
        form.setAppState(m_state.get());
        form.setEmail(email);
        form.setPassword(password);
        QCOMPARE(form.canSubmit(), enabled);
        form.submit();
        form.submit(); // a second Return while busy sends nothing
        QCOMPARE(form.busy(), enabled);
        QCOMPARE(form.canUseLeague(), !enabled); // the League button waits for the e-mail sign-in
        waitIdle();
        QCOMPARE(m_backend->requestsTo("/api/auth/login").size(), enabled ? 1 : 0);
        QVERIFY(!form.busy());
        QCOMPARE(m_state->phase(), enabled ? AppState::Phase::SignedIn : AppState::Phase::SignedOut);
    }

    // The League button stays busy for exactly its own attempt and leaves the e-mail sign-in usable.
    void leagueButtonIsBusyForItsAttempt() {
        m_state->setLeagueClientSources(
            {{m_dir.filePath(QStringLiteral("no-lockfile"))}, [] { return std::optional<QByteArray>(QByteArray()); }});
        m_state->bootstrap(m_store.get());
        LoginForm form;
        form.setAppState(m_state.get());
        form.setEmail("a@b.c");
        form.setPassword("password1");
        QList<bool> leagueBusy;
        bool submitBlocked = false;
        connect(&form, &LoginForm::busyChanged, this, [&] {
            leagueBusy << form.leagueBusy();
            submitBlocked |= form.leagueBusy() && !form.canSubmit();
        });
        form.signInWithLeague();
        waitIdle();
        QCOMPARE(leagueBusy, (QList<bool>{true, false}));
        QVERIFY(!submitBlocked);
        QCOMPARE(m_state->errorMessage(),
                 QStringLiteral("League client isn't running. Open the client (not just a game) and try again."));
        QVERIFY(form.canUseLeague());
        QCOMPARE(m_state->phase(), AppState::Phase::SignedOut);
    }

    void toggleClearsErrorKeepsFields() {
        m_backend->on("POST", "/api/auth/login", FakeResponse::text(403, "wrong password"));
        m_state->bootstrap(m_store.get());
        LoginForm form;
        form.setAppState(m_state.get());
        form.setEmail("a@b.c");
        form.setPassword("password1");
        form.submit();
        waitIdle();
        QCOMPARE(m_state->errorMessage(), QStringLiteral("Server error 403. wrong password"));
        QCOMPARE(form.submitLabel(), QStringLiteral("Sign in"));
        QCOMPARE(form.toggleLabel(), QStringLiteral("New here? Create an account"));
        form.toggleMode();
        QVERIFY(!m_state->hasError());
        QVERIFY(form.isRegistering());
        QCOMPARE(form.submitLabel(), QStringLiteral("Create account"));
        QCOMPARE(form.toggleLabel(), QStringLiteral("Have an account? Sign in"));
        QCOMPARE(form.email(), QStringLiteral("a@b.c"));
        QCOMPARE(form.password(), QStringLiteral("password1"));
    }

    void riotIdTrimming_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("sent"); // empty: nothing is sent
        QTest::newRow("spaces and tabs") << " \tAda#EUW \t "
                                         << "Ada#EUW";
        QTest::newRow("inner space kept") << "  Ada Lovelace#EUW"
                                          << "Ada Lovelace#EUW";
        QTest::newRow("line break kept") << "Ada#EUW\n"
                                         << "Ada#EUW\n";
        QTest::newRow("pasted no-break and wide spaces") << QString::fromUtf8("\u00a0Ada#EUW\u3000") << "Ada#EUW";
        QTest::newRow("spaces only") << "   "
                                     << "";
    }
    void riotIdTrimming() {
        QFETCH(QString, typed);
        QFETCH(QString, sent);
        m_backend->on("POST", "/api/riot-accounts", FakeResponse::json({{"riot_account", riotAccount(2, "p2")}}));
        m_state->bootstrap(m_store.get());
        m_state->client().setAuthToken(QStringLiteral("t"));
        AccountLinkForm form;
        form.setAppState(m_state.get());
        form.setRiotId(typed);
        QVERIFY(form.canAdd()); // any text enables the button
        form.add();
        if (!sent.isEmpty())
            QVERIFY(form.riotId().isEmpty()); // cleared before the backend answers
        waitIdle();
        const auto links = m_backend->requestsTo("/api/riot-accounts");
        const auto posts =
            std::count_if(links.begin(), links.end(), [](const RecordedRequest& r) { return r.method == "POST"; });
        if (sent.isEmpty()) {
            QCOMPARE(posts, 0);
            QCOMPARE(form.riotId(), typed);
            return;
        }
        QCOMPARE(posts, 1);
        QCOMPARE(links.first().json(), (QJsonObject{{"riot_id", sent}, {"platform", "euw1"}}));
        // The account list is fetched again and a sync follows.
        QCOMPARE(links.last().method, QByteArray("GET"));
        QCOMPARE(m_backend->requestsTo("/api/sync").size(), 1);
    }

    void failedLinkShowsErrorWithoutSync() {
        m_backend->on("POST", "/api/riot-accounts", FakeResponse::text(404, "Riot ID not found"));
        m_state->bootstrap(m_store.get());
        AccountLinkForm form;
        form.setAppState(m_state.get());
        form.setRiotId("Nobody#000");
        form.add();
        waitIdle();
        QCOMPARE(m_state->errorMessage(), QStringLiteral("Server error 404. Riot ID not found"));
        QVERIFY(m_backend->requestsTo("/api/sync").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestForms)
#include "tst_forms.moc"
