#pragma once

#include "game_data/game_category.h"
#include "screens/match_list_model.h"
#include "session/screen_model.h"

#include <QVariantList>

// The match history: every game of the user, newest first, narrowed by one category.
class HistoryModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(Filter filter READ filter WRITE setFilter NOTIFY changed)
    Q_PROPERTY(QVariantList chips READ chips NOTIFY changed)
    Q_PROPERTY(bool hasGames READ hasGames NOTIFY changed)
    Q_PROPERTY(double winPercent READ winPercent NOTIFY changed)
    Q_PROPERTY(QString gamesText READ gamesText NOTIFY changed)
    Q_PROPERTY(QString recordText READ recordText NOTIFY changed)
    Q_PROPERTY(MatchListModel* rows READ rows CONSTANT)

public:
    // Every game, or one category; a category keeps its GameCategory value.
    enum class Filter {
        All = -1,
        Ranked = static_cast<int>(GameCategory::Ranked),
        Mayhem = static_cast<int>(GameCategory::Mayhem),
        Aram = static_cast<int>(GameCategory::Aram),
        Arena = static_cast<int>(GameCategory::Arena),
        Normal = static_cast<int>(GameCategory::Normal),
        Other = static_cast<int>(GameCategory::Other),
    };
    Q_ENUM(Filter)

    explicit HistoryModel(QObject* parent = nullptr);

    [[nodiscard]] static Filter filterOf(GameCategory category) { return static_cast<Filter>(category); }

    [[nodiscard]] Filter filter() const { return m_filter; }
    void setFilter(Filter filter);
    [[nodiscard]] const QVariantList& chips() const { return m_chips; }
    [[nodiscard]] bool hasGames() const { return m_rows->rowCount() > 0; }
    [[nodiscard]] double winPercent() const;
    [[nodiscard]] QString gamesText() const;
    [[nodiscard]] QString recordText() const;
    [[nodiscard]] MatchListModel* rows() const { return m_rows; }
    [[nodiscard]] int wins() const { return m_wins; }

    // The categories present among the games, in declaration order.
    [[nodiscard]] static std::vector<GameCategory> presentCategories(const std::vector<Stats::Game>& games);

Q_SIGNALS:
    void changed();

protected:
    void recompute() override;

private:
    void applyFilter();

    MatchListModel* m_rows;
    std::vector<Stats::Game> m_all;
    Filter m_filter = Filter::All;
    int m_wins = 0;
    QVariantList m_chips;
};
