#include "session/screen_model.h"

void ScreenModel::setAppState(AppState* state) {
    if (m_state == state)
        return;
    if (m_state)
        disconnect(m_state, nullptr, this, nullptr);
    m_state = state;
    if (m_state) {
        connect(m_state, &AppState::riotAccountsChanged, this, &ScreenModel::recompute);
        connect(m_state, &AppState::friendsChanged, this, &ScreenModel::recompute);
        connect(m_state, &AppState::storeChanged, this, &ScreenModel::attachStore);
    }
    attachStore();
    Q_EMIT appStateChanged();
}

void ScreenModel::attachStore() {
    ArchiveStore* store = m_state ? m_state->store() : nullptr;
    if (m_store != store) {
        if (m_store)
            disconnect(m_store, nullptr, this, nullptr);
        m_store = store;
        if (m_store)
            connect(m_store, &ArchiveStore::changed, this, &ScreenModel::recompute);
    }
    recompute();
}

QSet<QString> ScreenModel::owners() const {
    QSet<QString> result;
    if (m_state)
        for (const RiotAccountDto& account : m_state->riotAccounts())
            result.insert(account.puuid);
    return result;
}
