#include "screens/timeline_view_state.h"

#include "screens/timeline_texts.h"
#include "theme/theme.h"

namespace {

const QString absent = QStringLiteral("–");

} // namespace

TimelineViewState::Figure TimelineViewState::creepScore(const QString& label, const std::optional<qint64>& value) {
    if (!value)
        return {label, absent, Theme::textSecondary()};
    return {label, QString::number(*value), Theme::gold()};
}

TimelineViewState::Figure TimelineViewState::goldDifference(const QString& label, const std::optional<qint64>& value) {
    // Level (0) counts as ahead.
    return goldInColor(label, value, value && *value < 0 ? Theme::loss() : Theme::win());
}

TimelineViewState::Figure TimelineViewState::goldInColor(const QString& label, const std::optional<qint64>& value,
                                                         const QColor& color) {
    if (!value)
        return {label, absent, Theme::textSecondary()};
    return {label, TimelineTexts::goldThousands(*value), color};
}

TimelineViewState TimelineViewState::of(const TimelineSummaryDto& summary) {
    TimelineViewState state;
    const TimelineSummaryDto::Stats& stats = summary.stats;
    state.figures = {
        creepScore(QStringLiteral("CS @10"), stats.ownerCsAt10),
        creepScore(QStringLiteral("CS @14"), stats.ownerCsAt14),
        goldDifference(QStringLiteral("Gold @10"), stats.goldDiffAt10),
        goldDifference(QStringLiteral("Gold @14"), stats.goldDiffAt14),
        goldInColor(QStringLiteral("Peak lead"), stats.maxGoldLead, Theme::win()),
        // The deficit keeps the sign the backend gives it.
        goldInColor(QStringLiteral("Worst gap"), stats.maxGoldDeficit, Theme::loss()),
    };
    state.objectives = {
        {QStringLiteral("Dragons"), stats.objectives.dragons.mine, stats.objectives.dragons.enemy},
        {QStringLiteral("Towers"), stats.objectives.towers.mine, stats.objectives.towers.enemy},
    };
    if (stats.firstBlood) {
        state.firstBlood = TimelineTexts::firstBlood(*stats.firstBlood);
        state.firstBloodMine = stats.firstBlood->mine;
    }
    state.chart = GoldChart::of(summary.frames);
    state.events.reserve(static_cast<std::size_t>(summary.events.size()));
    for (const TimelineSummaryDto::Event& event : summary.events)
        state.events.push_back({TimelineTexts::clock(event.t), TimelineTexts::eventSymbol(event),
                                TimelineTexts::eventLabel(event), event.mine});
    return state;
}
