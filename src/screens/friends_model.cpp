#include "screens/friends_model.h"

#include "core/user_facing_error.h"
#include "screens/match_texts.h"
#include "screens/social_texts.h"
#include "session/account_link_form.h"
#include "theme/theme.h"

#include <QVariantMap>
#include <cmath>

FriendsModel::FriendsModel(QObject* parent)
    : QObject(parent), m_duos(new DuoListModel(this)), m_games(new FriendGameListModel(this)) {}

void FriendsModel::setAppState(AppState* state) {
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT appStateChanged();
}

void FriendsModel::setRiotId(const QString& riotId) {
    if (m_riotId == riotId)
        return;
    m_riotId = riotId;
    Q_EMIT lookupChanged();
}

FriendsModel::DuoListState FriendsModel::duoListState() const {
    if (m_loadingDuos)
        return DuoListState::Loading;
    if (m_duosError)
        return DuoListState::Failed;
    return m_duos->rowCount() == 0 ? DuoListState::Empty : DuoListState::Listed;
}

void FriendsModel::loadDuos() {
    if (!m_state)
        return;
    m_loadingDuos = true;
    m_duosError.reset();
    Q_EMIT duosChanged();
    m_state->startTask(fetchDuos());
}

QCoro::Task<> FriendsModel::fetchDuos() {
    // The screen may close while the request runs: the request is then aborted, and nothing of
    // this object may be touched once it is gone.
    QPointer<FriendsModel> self(this);
    std::optional<DuosResponse> answer;
    std::optional<QString> error;
    try {
        answer = co_await m_state->client().duos(this);
    } catch (...) {
        error = SocialTexts::duosError(describeError(std::current_exception()));
    }
    if (!self)
        co_return;
    // A failure keeps the last list, hidden behind the error.
    if (answer)
        m_duos->setDuos(std::move(answer->duos), QDateTime::currentDateTimeUtc());
    m_duosError = std::move(error);
    m_loadingDuos = false;
    Q_EMIT duosChanged();
}

void FriendsModel::lookup() {
    const QString riotId = AccountLinkForm::trimmed(m_riotId);
    if (riotId.isEmpty() || !m_state)
        return;
    startLookup();
    m_state->startTask(fetchRecord(riotId, QString(), QString()));
}

void FriendsModel::lookupPuuid(const QString& puuid, const QString& name) {
    if (!m_state)
        return;
    startLookup();
    m_state->startTask(fetchRecord(std::nullopt, puuid, name));
}

void FriendsModel::startLookup() {
    m_busy = true;
    m_error.reset();
    Q_EMIT lookupChanged();
    setDetail(std::nullopt);
}

QCoro::Task<> FriendsModel::fetchRecord(std::optional<QString> riotId, QString puuid, QString name) {
    QPointer<FriendsModel> self(this);
    BackendClient& client = m_state->client();
    try {
        if (riotId) {
            const PlayerProfileDto profile = co_await client.playerProfile(*riotId, platform, this);
            if (!self)
                co_return;
            m_detailName = profile.account.riotId();
            puuid = profile.account.puuid;
        } else {
            m_detailName = name;
        }
        FriendStatsDto record = co_await client.friendStats(puuid, this);
        if (!self)
            co_return;
        // Two look-ups may overlap: the last one to finish is what shows.
        m_busy = false;
        Q_EMIT lookupChanged();
        setDetail(std::move(record));
    } catch (...) {
        if (self)
            failLookup(describeError(std::current_exception()));
    }
}

void FriendsModel::failLookup(const QString& text) {
    m_error = text;
    m_busy = false;
    Q_EMIT lookupChanged();
}

void FriendsModel::back() {
    setDetail(std::nullopt);
}

void FriendsModel::setDetail(std::optional<FriendStatsDto> detail) {
    // Every record starts on its newest season, folded.
    m_pickedSeason.reset();
    m_allSeasons = false;
    m_showAllGames = false;
    // The list points into the record: empty it before the record goes.
    m_games->setGames({});
    m_detail = std::move(detail);
    rebuildRecord();
}

void FriendsModel::pickSeason(int season) {
    m_pickedSeason = season;
    m_allSeasons = false;
    m_showAllGames = false;
    rebuildRecord();
}

void FriendsModel::pickAllSeasons() {
    m_pickedSeason.reset();
    m_allSeasons = true;
    m_showAllGames = false;
    rebuildRecord();
}

void FriendsModel::toggleAllGames() {
    m_showAllGames = !m_showAllGames;
    rebuildRecord();
}

void FriendsModel::rebuildRecord() {
    m_view.reset();
    if (m_detail)
        m_view = FriendRecordView::of(*m_detail, m_detailName, m_pickedSeason, m_allSeasons, m_showAllGames);
    m_games->setGames(m_view ? m_view->rows : std::vector<const FriendStatsDto::Game*>{});
    Q_EMIT recordChanged();
}

QString FriendsModel::noGamesMessage() const {
    return m_detailName + QStringLiteral(" hasn't appeared on your team in your archive.");
}

int FriendsModel::friendIconId() const {
    return m_detail ? DuoListModel::iconOf(m_detail->friendIcon) : -1;
}

QString FriendsModel::friendInitials() const {
    return SocialTexts::initials(friendTitle());
}

QVariantList FriendsModel::friendAvatarColors() const {
    return SocialTexts::avatarColors(m_detail ? m_detail->friendPuuid : QString());
}

QString FriendsModel::togetherText() const {
    return m_detail ? QString::asprintf("%lld games together · all time", static_cast<long long>(m_detail->total.games))
                    : QString();
}

QString FriendsModel::totalWinsText() const {
    return m_detail ? QString::asprintf("%lldW", static_cast<long long>(m_detail->total.wins)) : QString();
}

QString FriendsModel::totalLossesText() const {
    return m_detail ? QString::asprintf("%lldL", static_cast<long long>(m_detail->total.losses)) : QString();
}

QVariantList FriendsModel::seasonChoices() const {
    QVariantList list;
    if (m_view)
        for (qint64 season : m_view->seasons)
            list.append(
                QVariantMap{{"text", QStringLiteral("Season %1").arg(season)}, {"season", static_cast<int>(season)}});
    return list;
}

QString FriendsModel::shownGamesText() const {
    return m_view ? QString::asprintf("%lld games", static_cast<long long>(m_view->shown.size())) : QString();
}

QString FriendsModel::winsText() const {
    return QString::asprintf("%dW", wins());
}

QString FriendsModel::lossesText() const {
    return QString::asprintf("%dL", losses());
}

QString FriendsModel::winPercentText() const {
    return Theme::percentText(m_view ? m_view->winPercent : 0.0);
}

QColor FriendsModel::winPercentColor() const {
    return Theme::ringColorFor(m_view ? m_view->winPercent : 0.0);
}

QVariantList FriendsModel::categoryChips() const {
    QVariantList list;
    if (m_view)
        for (const FriendRecordView::Group& group : m_view->groups)
            list.append(QVariantMap{
                {"label", GameCategories::rawValue(group.category)},
                {"color", MatchTexts::categoryColor(group.category)},
                {"countText", QString::number(group.games)},
                {"percentText", QString::asprintf("· %lld%%", static_cast<long long>(group.winPercentRounded()))},
            });
    return list;
}

QString FriendsModel::expandText() const {
    if (!m_view || !m_view->canExpand())
        return {};
    return m_view->hiddenGames > 0 ? QString::asprintf("Show %d more", m_view->hiddenGames)
                                   : QStringLiteral("Show less");
}
