#pragma once

#include "backend/account_records.h"
#include "backend/backend_client.h"
#include "game_data/static_data.h"
#include "league_client/lcu_discovery.h"
#include "overlay/overlay_manager.h"

#include <QCoro/QCoroTask>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <exception>
#include <functional>
#include <optional>

class ArchiveStore;
class QNetworkAccessManager;
class QSettings;
class QQmlEngine;
class QJSEngine;

// The one observable object behind every screen: the session phase, the signed-in user, the
// linked Riot accounts, the one error text and the sync status. Every session-level action
// runs through it, on the main thread, and every failure ends in handle().
class AppState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isSyncing READ isSyncing NOTIFY isSyncingChanged)
    Q_PROPERTY(QString lcuStatus READ lcuStatus NOTIFY lcuStatusChanged)
    // A handle, made with the state and never replaced; the manager notifies of its own changes.
    Q_PROPERTY(OverlayManager* overlay READ overlayHandle CONSTANT)

public:
    enum class Phase { Loading, SignedOut, SignedIn };
    Q_ENUM(Phase)

    static constexpr const char* authTokenKey = "authToken";

    AppState(QSettings& settings, QNetworkAccessManager& network, QObject* parent = nullptr);
    ~AppState() override;

    // QML sees the one instance the application made; it never makes its own.
    static void exposeToQml(AppState* instance);
    static AppState* create(QQmlEngine* qmlEngine, QJSEngine* jsEngine);

    [[nodiscard]] Phase phase() const { return m_phase; }
    [[nodiscard]] const std::optional<UserDto>& user() const { return m_user; }
    [[nodiscard]] const QList<RiotAccountDto>& riotAccounts() const { return m_riotAccounts; }
    // Empty while there is no error; hasError() tells the two apart.
    [[nodiscard]] const QString& errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool hasError() const { return m_hasError; }
    [[nodiscard]] bool isSyncing() const { return m_isSyncing; }
    [[nodiscard]] std::optional<int> lastSyncedMatches() const { return m_lastSyncedMatches; }
    [[nodiscard]] const QSet<QString>& friendPuuids() const { return m_friendPuuids; }
    [[nodiscard]] const QSet<QString>& friendGameNames() const { return m_friendGameNames; }
    [[nodiscard]] const QHash<QString, QString>& friendNames() const { return m_friendNames; }
    // The last client import's one-line result; empty before the first.
    [[nodiscard]] const QString& lcuStatus() const { return m_lcuStatus; }
    // Where the League client is looked for: its real lockfiles and process list unless a test
    // aims the state elsewhere.
    void setLeagueClientSources(LcuDiscovery::Sources sources) { m_lcuSources = std::move(sources); }
    [[nodiscard]] ArchiveStore* store() const { return m_store; }
    [[nodiscard]] BackendClient& client() { return m_client; }
    [[nodiscard]] QSettings& settings() { return m_settings; }
    [[nodiscard]] StaticData& staticData() { return m_staticData; }
    // The in-game overlay, switched off at every start.
    [[nodiscard]] OverlayManager& overlay() { return m_overlay; }
    [[nodiscard]] OverlayManager* overlayHandle() { return &m_overlay; }

    // Keeps the store, loads static data and restores the stored session; returns at once.
    void bootstrap(ArchiveStore* store);

    QCoro::Task<> registerAccount(QString email, QString password, std::optional<QString> name);
    QCoro::Task<> login(QString email, QString password);
    QCoro::Task<> loginWithLeague();
    QCoro::Task<> refreshAccountsFromRiot();
    QCoro::Task<> refreshAccounts();
    // Import from the League client, pull the archive, refresh the duos. Returns at once, doing
    // nothing, while another sync runs: a second press or a link mid-sync starts no second pull.
    QCoro::Task<> sync();
    QCoro::Task<> importFromClient();
    // Refreshes the frequent duos' digest (friendPuuids, friendNames, friendGameNames) that tags
    // friends in the archive screens. A failure keeps the last digest and shows nothing.
    QCoro::Task<> loadDuos();
    // Links a Riot account typed as Name#TAG, then refreshes the accounts and syncs.
    QCoro::Task<> addRiotAccount(QString riotId);

    // Starts a sync from the user interface without waiting for it.
    Q_INVOKABLE void requestSync();
    // Runs a task to its end without waiting for it, counted by hasRunningTasks().
    void startTask(QCoro::Task<> task);
    void clearErrorMessage() { setErrorMessage(std::nullopt); }

    // True while a task started by the state object itself (not by a caller) is running.
    [[nodiscard]] bool hasRunningTasks() const { return m_runningTasks > 0; }

Q_SIGNALS:
    void phaseChanged();
    void userChanged();
    void riotAccountsChanged();
    void errorMessageChanged();
    void isSyncingChanged();
    void lastSyncedMatchesChanged();
    void friendsChanged();
    void lcuStatusChanged();
    void tasksFinished();
    void storeChanged();

private:
    using AuthCall = std::function<QCoro::Task<AuthResponse>()>;

    QCoro::Task<> authenticate(AuthCall call);
    void handle(std::exception_ptr error);
    void applyDuos(const QList<DuoDto>& duos);

    void setPhase(Phase phase);
    void setErrorMessage(std::optional<QString> message);
    void setSyncing(bool syncing);
    void setRiotAccounts(QList<RiotAccountDto> accounts);
    void setLcuStatus(const QString& status);

    QSettings& m_settings;
    BackendClient m_client;
    StaticData m_staticData;
    OverlayManager m_overlay;
    ArchiveStore* m_store = nullptr;

    Phase m_phase = Phase::Loading;
    std::optional<UserDto> m_user;
    QList<RiotAccountDto> m_riotAccounts;
    QString m_errorMessage;
    bool m_hasError = false;
    bool m_isSyncing = false;
    std::optional<int> m_lastSyncedMatches;
    QSet<QString> m_friendPuuids;
    QSet<QString> m_friendGameNames;
    QHash<QString, QString> m_friendNames;
    QString m_lcuStatus;
    LcuDiscovery::Sources m_lcuSources = LcuDiscovery::Sources::system();

    int m_runningTasks = 0;

    static inline AppState* s_qmlInstance = nullptr;
};
