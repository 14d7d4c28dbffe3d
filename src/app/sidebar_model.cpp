#include "app/sidebar_model.h"

#include "archive/archive_store.h"
#include "game_data/rank_math.h"
#include "game_data/stats.h"
#include "session/app_state.h"

#include <algorithm>

SidebarModel::SidebarModel(QObject* parent) : ScreenModel(parent) {
    // A new state replaces the old one's connections (ScreenModel drops them all).
    connect(this, &ScreenModel::appStateChanged, this, [this] {
        if (appState())
            connect(appState(), &AppState::isSyncingChanged, this, &SidebarModel::syncingChanged);
        Q_EMIT syncingChanged();
    });
}

QString SidebarModel::syncLabel() const {
    return appState() && appState()->isSyncing() ? QStringLiteral("Syncing…") : QStringLiteral("Sync now");
}

QString SidebarModel::accountNameOf(const QList<RiotAccountDto>& accounts) {
    const QString riotId = accounts.isEmpty() ? QString() : accounts.first().riotId();
    return riotId.isEmpty() ? QStringLiteral("Summoner") : riotId;
}

QString SidebarModel::toolbarAccountOf(const QList<RiotAccountDto>& accounts) {
    return accounts.isEmpty() ? QStringLiteral("Account") : accounts.first().riotId();
}

QSet<QString> SidebarModel::ownersOf(const QList<RiotAccountDto>& accounts) {
    QSet<QString> owners;
    for (const RiotAccountDto& account : accounts)
        owners.insert(account.puuid);
    return owners;
}

const LocalRankSnapshot* SidebarModel::soloOf(const std::vector<const LocalRankSnapshot*>& snapshots) {
    // Newest first; a snapshot without a capture time sorts last.
    std::vector<const LocalRankSnapshot*> newestFirst = snapshots;
    std::stable_sort(
        newestFirst.begin(), newestFirst.end(), [](const LocalRankSnapshot* a, const LocalRankSnapshot* b) {
            const qint64 ta = a->capturedAt ? a->capturedAt->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
            const qint64 tb = b->capturedAt ? b->capturedAt->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
            return ta > tb;
        });
    for (const LocalRankSnapshot* snapshot : newestFirst)
        if (snapshot->queue == QLatin1String("RANKED_SOLO_5x5"))
            return snapshot;
    return newestFirst.empty() ? nullptr : newestFirst.front();
}

QString SidebarModel::rankLineOf(const LocalRankSnapshot* solo) {
    if (!solo || !solo->tier)
        return QStringLiteral("Unranked");
    return RankMath::label(solo->tier, solo->division) + QStringLiteral(" · ") + QString::number(solo->lp) +
           QStringLiteral(" LP");
}

void SidebarModel::recompute() {
    const QList<RiotAccountDto> accounts = appState() ? appState()->riotAccounts() : QList<RiotAccountDto>();
    m_accountName = accountNameOf(accounts);
    m_toolbarAccount = toolbarAccountOf(accounts);
    m_hasAccounts = !accounts.isEmpty();
    m_avatarIconId = !accounts.isEmpty() && accounts.first().profileIconId ? int(*accounts.first().profileIconId) : -1;

    if (store()) {
        m_archivedCount = int(store()->matches().count());
        m_rankLine = rankLineOf(soloOf(store()->rankSnapshots().all()));
        const QSet<QString> owners = ownersOf(accounts);
        std::vector<const LocalParticipant*> mine;
        for (const LocalParticipant* p : store()->participants().all())
            if (owners.contains(p->puuid))
                mine.push_back(p);
        const auto champions = Stats::champions(mine);
        m_avatarChampion = champions.empty() ? QString() : champions.front().name;
    } else {
        m_archivedCount = 0;
        m_rankLine = rankLineOf(nullptr);
        m_avatarChampion.clear();
    }
    Q_EMIT changed();
}
