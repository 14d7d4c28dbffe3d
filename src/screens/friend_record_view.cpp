#include "screens/friend_record_view.h"

#include "backend/account_records.h"

#include <algorithm>
#include <array>
#include <cmath>

qint64 FriendRecordView::Group::winPercentRounded() const {
    return games > 0 ? std::llround(double(wins) / double(games) * 100.0) : 0;
}

QString FriendRecordView::seasonLabel() const {
    return active ? QStringLiteral("Season %1").arg(*active) : QStringLiteral("All seasons");
}

QString FriendRecordView::ownName(const FriendStatsDto& record) {
    return joinRiotId(record.friendName, record.friendTag);
}

FriendRecordView FriendRecordView::of(const FriendStatsDto& record, const QString& detailName,
                                      std::optional<qint64> pickedSeason, bool allSeasons, bool showAllGames) {
    FriendRecordView view;
    view.title = detailName.isEmpty() ? ownName(record) : detailName;

    for (const Game& game : record.games)
        if (game.season && std::find(view.seasons.begin(), view.seasons.end(), *game.season) == view.seasons.end())
            view.seasons.push_back(*game.season);
    std::sort(view.seasons.begin(), view.seasons.end(), std::greater<>());

    if (!allSeasons)
        view.active = pickedSeason
                          ? pickedSeason
                          : (view.seasons.empty() ? std::nullopt : std::optional<qint64>(view.seasons.front()));

    std::array<Group, GameCategories::all.size()> byCategory{};
    view.shown.reserve(static_cast<std::size_t>(record.games.size()));
    for (const Game& game : record.games) {
        if (view.active && game.season != view.active)
            continue;
        view.shown.push_back(&game);
        view.wins += game.win ? 1 : 0;
        Group& group = byCategory[static_cast<std::size_t>(GameCategories::of(game.queueId, game.gameMode))];
        ++group.games;
        group.wins += game.win ? 1 : 0;
    }
    if (!view.shown.empty())
        view.winPercent = double(view.wins) / double(view.shown.size()) * 100.0;

    for (std::size_t i = 0; i < byCategory.size(); ++i) {
        if (byCategory[i].games == 0)
            continue;
        byCategory[i].category = GameCategories::all[i];
        view.groups.push_back(byCategory[i]);
    }
    // Equal counts keep the categories' own order.
    std::stable_sort(view.groups.begin(), view.groups.end(),
                     [](const Group& a, const Group& b) { return a.games > b.games; });

    const bool expanded = showAllGames || !view.canExpand();
    const std::size_t listed = expanded ? view.shown.size() : static_cast<std::size_t>(pageSize);
    view.rows.assign(view.shown.begin(), view.shown.begin() + static_cast<std::ptrdiff_t>(listed));
    view.hiddenGames = expanded ? 0 : static_cast<int>(view.shown.size()) - pageSize;
    return view;
}
