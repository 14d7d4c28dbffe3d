#pragma once

#include "backend/account_records.h"
#include "backend/backend_client.h"
#include "league_client/lcu_discovery.h"
#include "game_data/ddragon.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QtQml/qqmlregistration.h>
#include <QCoro/QCoroTask>
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
    Q_PROPERTY(QString errorMessage READ errorMessageText NOTIFY errorMessageChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isSyncing READ isSyncing NOTIFY isSyncingChanged)
    Q_PROPERTY(QVariant lastSyncedMatches READ lastSyncedMatchesValue NOTIFY lastSyncedMatchesChanged)
    Q_PROPERTY(QString staticVersion READ staticVersion NOTIFY staticVersionChanged)
    Q_PROPERTY(QString lcuStatus READ lcuStatusText NOTIFY lcuStatusChanged)

public:
    enum class Phase { Loading, SignedOut, SignedIn };
    Q_ENUM(Phase)

    static constexpr const char* authTokenKey = "authToken";
    static constexpr const char* defaultStaticVersion = "16.11.1";

    AppState(QSettings& settings, QNetworkAccessManager& network, QObject* parent = nullptr);
    ~AppState() override;

    // QML sees the one instance the application made; it never makes its own.
    static void exposeToQml(AppState* instance);
    static AppState* create(QQmlEngine* qmlEngine, QJSEngine* jsEngine);

    [[nodiscard]] Phase phase() const { return m_phase; }
    [[nodiscard]] const std::optional<UserDTO>& user() const { return m_user; }
    [[nodiscard]] const QList<RiotAccountDTO>& riotAccounts() const { return m_riotAccounts; }
    [[nodiscard]] const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool isSyncing() const { return m_isSyncing; }
    [[nodiscard]] std::optional<int> lastSyncedMatches() const { return m_lastSyncedMatches; }
    [[nodiscard]] const QString& staticVersion() const { return m_staticVersion; }
    [[nodiscard]] const QHash<qint64, QString>& championsById() const { return m_championsById; }
    [[nodiscard]] const QSet<QString>& friendPuuids() const { return m_friendPuuids; }
    [[nodiscard]] const QSet<QString>& friendGameNames() const { return m_friendGameNames; }
    [[nodiscard]] const QHash<QString, QString>& friendNames() const { return m_friendNames; }
    [[nodiscard]] const std::optional<QString>& lcuStatus() const { return m_lcuStatus; }
    // Where the League client is looked for: its real lockfiles and process list unless a test
    // aims the state elsewhere.
    void setLeagueClientSources(LCUDiscovery::Sources sources) { m_lcuSources = std::move(sources); }
    [[nodiscard]] ArchiveStore* context() const { return m_context; }
    [[nodiscard]] BackendClient& client() { return m_client; }
    [[nodiscard]] QSettings& settings() { return m_settings; }
    [[nodiscard]] const DDragon& ddragon() const { return m_ddragon; }

    // Keeps the store, loads static data and restores the stored session; returns at once.
    void bootstrap(ArchiveStore* context);

    QCoro::Task<> registerAccount(QString email, QString password, std::optional<QString> name);
    QCoro::Task<> login(QString email, QString password);
    QCoro::Task<> loginWithLeague();
    QCoro::Task<> refreshAccountsFromRiot();
    QCoro::Task<> refreshAccounts();
    QCoro::Task<> sync();
    QCoro::Task<> importFromClient();
    QCoro::Task<> loadDuos();
    QCoro::Task<> loadStaticVersion();
    QCoro::Task<> loadChampionMap();
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
    void staticVersionChanged();
    void championsByIdChanged();
    void friendsChanged();
    void lcuStatusChanged();
    void tasksFinished();
    void contextChanged();

private:
    using AuthCall = std::function<QCoro::Task<AuthResponse>()>;

    QCoro::Task<> authenticate(AuthCall call);
    void handle(std::exception_ptr error);
    void applyDuos(const QList<DuoDTO>& duos);

    void setPhase(Phase phase);
    void setErrorMessage(std::optional<QString> message);
    void setSyncing(bool syncing);
    void setRiotAccounts(QList<RiotAccountDTO> accounts);
    void setLcuStatus(std::optional<QString> status);

    [[nodiscard]] QString errorMessageText() const { return m_errorMessage.value_or(QString()); }
    [[nodiscard]] bool hasError() const { return m_errorMessage.has_value(); }
    [[nodiscard]] QVariant lastSyncedMatchesValue() const;
    [[nodiscard]] QString lcuStatusText() const { return m_lcuStatus.value_or(QString()); }

    QSettings& m_settings;
    BackendClient m_client;
    QNetworkAccessManager& m_network;
    DDragon m_ddragon;
    ArchiveStore* m_context = nullptr;

    Phase m_phase = Phase::Loading;
    std::optional<UserDTO> m_user;
    QList<RiotAccountDTO> m_riotAccounts;
    std::optional<QString> m_errorMessage;
    bool m_isSyncing = false;
    std::optional<int> m_lastSyncedMatches;
    QString m_staticVersion = QString::fromLatin1(defaultStaticVersion);
    QHash<qint64, QString> m_championsById;
    QSet<QString> m_friendPuuids;
    QSet<QString> m_friendGameNames;
    QHash<QString, QString> m_friendNames;
    std::optional<QString> m_lcuStatus;
    LCUDiscovery::Sources m_lcuSources = LCUDiscovery::Sources::system();

    int m_runningTasks = 0;

    static inline AppState* s_qmlInstance = nullptr;
};
