#include "screens/search_model.h"

#include "core/user_facing_error.h"
#include "session/account_link_form.h"

SearchModel::SearchModel(QObject* parent)
    : QObject(parent), m_ranks(new RankEntryListModel(this)), m_mastery(new MasteryListModel(this)) {}

void SearchModel::setAppState(AppState* state) {
    if (m_state == state)
        return;
    if (m_state)
        disconnect(&m_state->staticData(), nullptr, this, nullptr);
    m_state = state;
    if (m_state)
        connect(&m_state->staticData(), &StaticData::championsByIdChanged, this, &SearchModel::renameChampions);
    renameChampions();
    Q_EMIT appStateChanged();
}

void SearchModel::renameChampions() {
    m_mastery->setChampionNames(m_state ? m_state->staticData().championsById() : QHash<qint64, QString>());
}

void SearchModel::setRiotId(const QString& riotId) {
    if (m_riotId == riotId)
        return;
    m_riotId = riotId;
    Q_EMIT searchChanged();
}

QString SearchModel::nameOf(const PlayerProfileDto::AccountInfo& account) {
    const QString riotId = account.riotId();
    return riotId.isEmpty() ? QStringLiteral("Player") : riotId;
}

QString SearchModel::playerName() const {
    return m_profile ? nameOf(m_profile->account) : QString();
}

void SearchModel::search() {
    const QString riotId = AccountLinkForm::trimmed(m_riotId);
    if (riotId.isEmpty() || !m_state)
        return;
    m_busy = true;
    m_error.reset();
    setProfile(std::nullopt);
    m_state->startTask(fetch(riotId));
}

QCoro::Task<> SearchModel::fetch(QString riotId) {
    // The screen may close while the request runs: the request is then aborted, and nothing of
    // this object may be touched once it is gone.
    QPointer<SearchModel> self(this);
    std::optional<PlayerProfileDto> profile;
    std::optional<QString> error;
    try {
        profile = co_await m_state->client().playerProfile(riotId, platform, this);
    } catch (const UserFacingError& failure) {
        error = failure.description();
    } catch (const std::exception& other) {
        error = QString::fromUtf8(other.what());
    }
    if (!self)
        co_return;
    // Two searches may overlap: the last one to finish is what shows.
    m_busy = false;
    m_error = std::move(error);
    setProfile(std::move(profile));
}

void SearchModel::setProfile(std::optional<PlayerProfileDto> profile) {
    m_profile = std::move(profile);
    m_ranks->setEntries(m_profile ? m_profile->ranks : QList<RankEntryDto>());
    m_mastery->setEntries(m_profile ? m_profile->mastery : QList<MasteryDto>());
    Q_EMIT searchChanged();
}
