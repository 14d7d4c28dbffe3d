#pragma once

#include "backend/social_records.h"
#include "game_data/game_category.h"

#include <QString>
#include <optional>
#include <vector>

// What the record with one player shows for the season chosen: worked out from the record and
// the screen's choices alone, again on every change.
struct FriendRecordView {
    using Game = FriendStatsDto::Game;

    // The games of one category among the shown ones.
    struct Group {
        GameCategory category = GameCategory::Other;
        int games = 0;
        int wins = 0;

        // Wins ÷ games × 100 rounded to the nearest whole number; 0 without games.
        [[nodiscard]] qint64 winPercentRounded() const;
    };

    static constexpr int pageSize = 10;

    QString title;                  // the name given, else the record's own Name#TAG
    std::vector<qint64> seasons;    // distinct seasons of the games, newest first
    std::optional<qint64> active;   // the season shown; none for all of them
    std::vector<const Game*> shown; // the active season's games (every game without one), as received
    int wins = 0;                   // of the shown games
    double winPercent = 0;          // of the shown games; 0 without any
    std::vector<Group> groups;      // the shown games by category, most games first
    std::vector<const Game*> rows;  // the listed games: the first page, or all when expanded
    int hiddenGames = 0;            // shown games beyond the first page; 0 when expanded

    [[nodiscard]] int losses() const { return static_cast<int>(shown.size()) - wins; }
    [[nodiscard]] bool hasSeasonMenu() const { return seasons.size() >= 2; }
    // The list can be folded or unfolded: more games than a page.
    [[nodiscard]] bool canExpand() const { return static_cast<int>(shown.size()) > pageSize; }

    // "Season 15", or "All seasons" when no one season is active.
    [[nodiscard]] QString seasonLabel() const;

    // The record must outlive the view: the view points into its games.
    [[nodiscard]] static FriendRecordView of(const FriendStatsDto& record, const QString& detailName,
                                             std::optional<qint64> pickedSeason, bool allSeasons, bool showAllGames);
    // The present ones of name and tag joined with "#"; empty when neither is there.
    [[nodiscard]] static QString ownName(const FriendStatsDto& record);
};
