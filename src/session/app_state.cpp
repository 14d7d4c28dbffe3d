#include "session/app_state.h"

#include "core/user_facing_error.h"

#include "archive/archive_store.h"
#include "archive/sync_engine.h"
#include "backend/app_config.h"
#include "backend/backend_error.h"
#include "league_client/client_import.h"
#include "league_client/league_sign_in.h"

#include <QJSEngine>
#include <QSettings>

namespace {

bool isUnauthorized(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const BackendError& backend) {
        return backend.kind() == BackendError::Kind::Unauthorized;
    } catch (...) {
        return false;
    }
}

} // namespace

AppState::AppState(QSettings& settings, QNetworkAccessManager& network, QObject* parent)
    : QObject(parent), m_settings(settings), m_client(network, AppConfig::backendBaseUrl(settings)),
      m_staticData(m_client, network, DataDragon::fromSettings(settings)) {}

AppState::~AppState() {
    if (s_qmlInstance == this)
        s_qmlInstance = nullptr;
}

void AppState::exposeToQml(AppState* instance) {
    s_qmlInstance = instance;
}

AppState* AppState::create(QQmlEngine*, QJSEngine* jsEngine) {
    Q_ASSERT(s_qmlInstance);
    QJSEngine::setObjectOwnership(s_qmlInstance, QJSEngine::CppOwnership);
    Q_UNUSED(jsEngine);
    return s_qmlInstance;
}

void AppState::startTask(QCoro::Task<> task) {
    // The returned task is dropped on purpose: a QCoro task runs to its end on its own.
    [](AppState* self, QCoro::Task<> running) -> QCoro::Task<> {
        ++self->m_runningTasks;
        co_await running;
        if (--self->m_runningTasks == 0)
            Q_EMIT self->tasksFinished();
    }(this, std::move(task));
}

void AppState::bootstrap(ArchiveStore* store) {
    m_store = store;
    Q_EMIT storeChanged();
    startTask(m_staticData.load());

    const QVariant token = m_settings.value(QLatin1String(authTokenKey));
    if (token.isValid() && !token.toString().isEmpty()) {
        m_client.setAuthToken(token.toString());
        setPhase(Phase::SignedIn);
        startTask([](AppState* self) -> QCoro::Task<> {
            co_await self->refreshAccountsFromRiot();
            co_await self->sync();
        }(this));
    } else {
        setPhase(Phase::SignedOut);
    }
}

QCoro::Task<> AppState::registerAccount(QString email, QString password, std::optional<QString> name) {
    BackendClient* client = &m_client;
    AuthCall call = [client, email, password, name] { return client->registerAccount(email, password, name); };
    co_await authenticate(std::move(call));
}

QCoro::Task<> AppState::login(QString email, QString password) {
    BackendClient* client = &m_client;
    AuthCall call = [client, email, password] { return client->login(email, password); };
    co_await authenticate(std::move(call));
}

QCoro::Task<> AppState::loginWithLeague() {
    // The client's identity is read inside the call, so a missing client ends in handle()
    // before anything reaches the backend.
    BackendClient* client = &m_client;
    LcuDiscovery::Sources sources = m_lcuSources;
    AuthCall call = [client, sources] { return LeagueSignIn::signIn(sources, *client); };
    co_await authenticate(std::move(call));
}

QCoro::Task<> AppState::authenticate(AuthCall call) {
    setErrorMessage(std::nullopt);
    std::optional<AuthResponse> response;
    try {
        response = co_await call();
    } catch (...) {
        handle(std::current_exception());
        co_return;
    }
    m_client.setAuthToken(response->token);
    m_settings.setValue(QLatin1String(authTokenKey), response->token);
    m_user = response->user;
    Q_EMIT userChanged();
    setPhase(Phase::SignedIn);

    co_await refreshAccountsFromRiot();
    co_await sync();
}

QCoro::Task<> AppState::refreshAccountsFromRiot() {
    bool fallBack = false;
    try {
        setRiotAccounts((co_await m_client.refreshRiotAccounts()).riotAccounts);
    } catch (...) {
        const std::exception_ptr error = std::current_exception();
        if (isUnauthorized(error)) {
            handle(error);
            co_return;
        }
        // The refresh from Riot is a nicety: the stored list is still worth showing.
        fallBack = true;
    }
    if (fallBack)
        co_await refreshAccounts();
}

QCoro::Task<> AppState::refreshAccounts() {
    try {
        setRiotAccounts((co_await m_client.riotAccounts()).riotAccounts);
    } catch (...) {
        handle(std::current_exception());
    }
}

QCoro::Task<> AppState::sync() {
    if (!m_store || m_isSyncing)
        co_return;
    setSyncing(true);
    co_await importFromClient();

    bool pulled = false;
    try {
        SyncEngine engine(*m_store, m_client, m_settings);
        const int count = co_await engine.pull();
        m_lastSyncedMatches = count;
        Q_EMIT lastSyncedMatchesChanged();
        pulled = true;
    } catch (...) {
        handle(std::current_exception());
    }
    if (pulled)
        co_await loadDuos();
    setSyncing(false);
}

void AppState::requestSync() {
    startTask(sync());
}

QCoro::Task<> AppState::importFromClient() {
    // Every outcome, a missing client included, is only a status line: the pull goes on.
    LcuClient lcu(m_lcuSources);
    ClientImport clientImport(lcu, m_client, m_settings);
    const QString status = co_await clientImport.run();
    setLcuStatus(status);
}

QCoro::Task<> AppState::loadDuos() {
    // The digest only tags friends in the archive screens: a failure keeps the last one and is
    // not worth a message (the friends screen shows its own).
    try {
        applyDuos((co_await m_client.duos()).duos);
    } catch (...) {
    }
}

void AppState::applyDuos(const QList<DuoDto>& duos) {
    QSet<QString> puuids;
    QHash<QString, QString> names;
    QSet<QString> gameNames;
    for (const DuoDto& duo : duos) {
        puuids.insert(duo.puuid);
        if (duo.riotId) {
            if (!names.contains(duo.puuid))
                names.insert(duo.puuid, *duo.riotId);
            for (const QString& piece : duo.riotId->split(QLatin1Char('#'))) {
                if (!piece.isEmpty()) {
                    gameNames.insert(piece.toLower());
                    break;
                }
            }
        }
    }
    m_friendPuuids = std::move(puuids);
    m_friendNames = std::move(names);
    m_friendGameNames = std::move(gameNames);
    Q_EMIT friendsChanged();
}

QCoro::Task<> AppState::addRiotAccount(QString riotId) {
    setErrorMessage(std::nullopt);
    bool linked = false;
    try {
        const QString platform = QStringLiteral("euw1");
        (void)co_await m_client.addRiotAccount(riotId, platform);
        linked = true;
    } catch (...) {
        handle(std::current_exception());
    }
    if (!linked)
        co_return;
    co_await refreshAccounts();
    co_await sync();
}

void AppState::handle(std::exception_ptr error) {
    if (isUnauthorized(error)) {
        m_client.setAuthToken(std::nullopt);
        m_settings.remove(QLatin1String(authTokenKey));
        setPhase(Phase::SignedOut);
    }
    setErrorMessage(describeError(error));
}

void AppState::setPhase(Phase phase) {
    if (m_phase == phase)
        return;
    m_phase = phase;
    Q_EMIT phaseChanged();
}

void AppState::setErrorMessage(std::optional<QString> message) {
    if (m_hasError == message.has_value() && m_errorMessage == message.value_or(QString()))
        return;
    m_hasError = message.has_value();
    m_errorMessage = message.value_or(QString());
    Q_EMIT errorMessageChanged();
}

void AppState::setSyncing(bool syncing) {
    if (m_isSyncing == syncing)
        return;
    m_isSyncing = syncing;
    Q_EMIT isSyncingChanged();
}

void AppState::setRiotAccounts(QList<RiotAccountDto> accounts) {
    m_riotAccounts = std::move(accounts);
    Q_EMIT riotAccountsChanged();
}

void AppState::setLcuStatus(const QString& status) {
    if (m_lcuStatus == status)
        return;
    m_lcuStatus = status;
    Q_EMIT lcuStatusChanged();
}
