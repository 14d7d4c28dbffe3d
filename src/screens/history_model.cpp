#include "screens/history_model.h"

#include "screens/archive_inputs.h"
#include "screens/match_texts.h"
#include "theme/theme.h"

#include <QVariantMap>
#include <array>

HistoryModel::HistoryModel(QObject* parent) : ScreenModel(parent), m_rows(new MatchListModel(this)) {}

std::vector<GameCategory> HistoryModel::presentCategories(const std::vector<Stats::Game>& games) {
    std::array<bool, GameCategories::all.size()> seen{};
    for (const Stats::Game& game : games)
        seen[static_cast<std::size_t>(game.category())] = true;
    std::vector<GameCategory> present;
    for (GameCategory category : GameCategories::all)
        if (seen[static_cast<std::size_t>(category)])
            present.push_back(category);
    return present;
}

void HistoryModel::recompute() {
    m_all.clear();
    if (store() && appState()) {
        const QSet<QString> owners = this->owners();
        if (!owners.isEmpty())
            m_all = Stats::games(ArchiveInputs::matchesNewestFirst(*store()), store()->participants().all(), owners,
                                 appState()->friendGameNames());
    }
    applyFilter();
}

void HistoryModel::setFilter(Filter filter) {
    if (filter == m_filter)
        return;
    m_filter = filter;
    applyFilter();
}

void HistoryModel::applyFilter() {
    std::vector<Stats::Game> shown;
    if (m_filter == Filter::All) {
        shown = m_all;
    } else {
        for (const Stats::Game& game : m_all)
            if (filterOf(game.category()) == m_filter)
                shown.push_back(game);
    }
    m_wins =
        static_cast<int>(std::count_if(shown.begin(), shown.end(), [](const Stats::Game& g) { return g.me->win; }));

    m_chips.clear();
    const auto chip = [this](const QString& label, Filter value, const QColor& tint) {
        m_chips.append(QVariantMap{
            {"label", label}, {"value", static_cast<int>(value)}, {"tint", tint}, {"selected", value == m_filter}});
    };
    chip(QStringLiteral("All"), Filter::All, Theme::gold());
    for (GameCategory category : presentCategories(m_all))
        chip(GameCategories::rawValue(category), filterOf(category), MatchTexts::categoryColor(category));

    m_rows->setNow(QDateTime::currentDateTimeUtc());
    m_rows->setGames(std::move(shown));
    Q_EMIT changed();
}

double HistoryModel::winPercent() const {
    const int games = m_rows->rowCount();
    return games > 0 ? double(m_wins) / double(games) * 100.0 : 0.0;
}

QString HistoryModel::gamesText() const {
    return QString::asprintf("%lld games", static_cast<long long>(m_rows->rowCount()));
}

QString HistoryModel::recordText() const {
    return QString::asprintf("%lldW %lldL", static_cast<long long>(m_wins),
                             static_cast<long long>(m_rows->rowCount() - m_wins));
}
