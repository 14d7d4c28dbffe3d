#pragma once

#include "archive/archive_store.h"
#include "session/app_state.h"
#include "support/archive_json.h"
#include "support/fake_backend.h"
#include "support/task_result.h"
#include "support/test_settings.h"

#include <QNetworkAccessManager>
#include <QTemporaryDir>
#include <memory>

// An application state over a store the test fills by hand, with the linked accounts a fake
// backend reports. For view-model tests.
struct ScreenFixture {
    QNetworkAccessManager network;
    FakeBackend backend;
    TestSettings settings;
    QTemporaryDir dir;
    std::unique_ptr<ArchiveStore> store = std::make_unique<ArchiveStore>(dir.filePath("archive.sqlite"));
    std::unique_ptr<AppState> state;

    explicit ScreenFixture(const QJsonArray& accounts = {ArchiveJson::riotAccount(1, "me")}) {
        settings->setValue("backendBaseURL", backend.baseUrl().toString());
        // Images are asked of the loopback backend, which has none: no test reaches the internet,
        // and the fallbacks show at once.
        settings->setValue("quill.cdnBaseURL", backend.baseUrl().toString() + "/cdn/");
        backend.on("GET", "/api/riot-accounts", FakeResponse::json(ArchiveJson::riotAccounts(accounts)));
        state = std::make_unique<AppState>(*settings, network);
        state->bootstrap(store.get());
        state->client().setAuthToken(QStringLiteral("t"));
        runTask(state->refreshAccounts());
    }
    ~ScreenFixture() {
        while (state->hasRunningTasks())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    void addMatch(const QJsonObject& json) {
        store->matches().insert(std::make_unique<LocalMatch>(MatchDto::decode(JsonReader(json))));
    }
    void addParticipant(const QJsonObject& json) {
        store->participants().insert(std::make_unique<LocalParticipant>(ParticipantDto::decode(JsonReader(json))));
    }
    void addSnapshot(const QJsonObject& json) {
        store->rankSnapshots().insert(std::make_unique<LocalRankSnapshot>(RankSnapshotDto::decode(JsonReader(json))));
    }
    void addScore(const QJsonObject& json) {
        store->performanceScores().insert(
            std::make_unique<LocalPerformanceScore>(PerformanceScoreDto::decode(JsonReader(json))));
    }
    // A game of the user: the match and the user's own row, newest games get later dates.
    void addOwnGame(qint64 id, bool win, qint64 queueId = 420, const QString& champion = QStringLiteral("Ahri"),
                    const QString& gameMode = QStringLiteral("CLASSIC")) {
        QJsonObject match = ArchiveJson::match(
            id, queueId, QStringLiteral("2025-03-%1T18:00:00Z").arg(id % 28 + 1, 2, 10, QLatin1Char('0')));
        match["game_mode"] = gameMode;
        addMatch(match);
        addParticipant(ArchiveJson::participant(id * 100, id, QStringLiteral("me"), champion, win));
    }
    void save() { store->save(); }
};
