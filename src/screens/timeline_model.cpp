#include "screens/timeline_model.h"

#include "core/user_facing_error.h"
#include "game_data/league_queue.h"
#include "screens/match_detail_model.h"
#include "screens/match_texts.h"

#include <QPointer>
#include <QVariantMap>

TimelineModel::TimelineModel(QObject* parent) : ScreenModel(parent), m_events(new TimelineEventListModel(this)) {}

void TimelineModel::setMatchServerId(double id) {
    const auto whole = static_cast<qint64>(id);
    if (whole == m_matchServerId)
        return;
    m_matchServerId = whole;
    recompute();
}

void TimelineModel::recompute() {
    // Only the header reads the archive; the summary stays whatever the fetch brought.
    m_game.reset();
    if (store() && m_matchServerId != 0)
        m_game = MatchDetailModel::gameOf(*store(), m_matchServerId, owners());
    Q_EMIT gameChanged();
}

QString TimelineModel::championName() const {
    return m_game ? m_game->me->championName.toString() : QString();
}

QString TimelineModel::subtitle() const {
    if (!m_game)
        return {};
    return LeagueQueue::label(m_game->match->queueId, m_game->match->gameMode.toOptional()) + QStringLiteral(" · ") +
           MatchTexts::minutes(m_game->match->gameDuration);
}

QString TimelineModel::matchId() const {
    return m_game ? m_game->match->matchId.toString() : QString();
}

void TimelineModel::load() {
    if (!appState())
        return;
    m_busy = true;
    m_error.reset();
    Q_EMIT stateChanged();
    if (!m_game) {
        // Without the stored game there is no match id to ask for.
        show(std::nullopt, unavailableText);
        return;
    }
    appState()->startTask(fetch(m_game->match->matchId));
}

QCoro::Task<> TimelineModel::fetch(QString matchId) {
    // The screen may close while the request runs: the request is then aborted, and nothing of
    // this object may be touched once it is gone.
    QPointer<TimelineModel> self(this);
    std::optional<TimelineViewState> state;
    std::optional<QString> error;
    try {
        const TimelineSummaryDto summary = co_await appState()->client().matchTimeline(matchId, this);
        state = TimelineViewState::of(summary);
    } catch (const UserFacingError& failure) {
        const QString text = failure.description();
        error = text.isEmpty() ? unavailableText : text;
    } catch (...) {
        error = unavailableText;
    }
    if (self)
        show(std::move(state), std::move(error));
}

void TimelineModel::show(std::optional<TimelineViewState> state, std::optional<QString> error) {
    m_state = std::move(state);
    m_error = std::move(error);
    m_busy = false;
    m_events->setRows(m_state ? m_state->events : std::vector<TimelineViewState::EventRow>{});
    Q_EMIT stateChanged();
}

QVariantList TimelineModel::figures() const {
    QVariantList list;
    if (m_state)
        for (const TimelineViewState::Figure& figure : m_state->figures)
            list.append(QVariantMap{{"label", figure.label}, {"value", figure.value}, {"color", figure.color}});
    return list;
}

QVariantList TimelineModel::objectives() const {
    QVariantList list;
    if (m_state)
        for (const TimelineViewState::Objective& objective : m_state->objectives)
            list.append(QVariantMap{{"label", objective.label},
                                    {"mine", QString::number(objective.mine)},
                                    {"enemy", QString::number(objective.enemy)}});
    return list;
}

QString TimelineModel::firstBloodText() const {
    return m_state ? m_state->firstBlood.value_or(QString()) : QString();
}

QVariantList TimelineModel::chartLine() const {
    QVariantList list;
    if (m_state)
        for (const QPointF& point : m_state->chart.line)
            list.append(point);
    return list;
}

QVariantList TimelineModel::xTicks() const {
    QVariantList list;
    if (m_state)
        for (const GoldChart::Tick& tick : m_state->chart.xTicks)
            list.append(QVariantMap{{"x", tick.at}, {"text", tick.text}});
    return list;
}

QVariantList TimelineModel::yTicks() const {
    QVariantList list;
    if (m_state)
        for (const GoldChart::Tick& tick : m_state->chart.yTicks)
            list.append(QVariantMap{{"y", tick.at}, {"text", tick.text}});
    return list;
}
