#pragma once

#include "screens/match_list_model.h"
#include "app/screen_model.h"

#include <QVariantList>

// The match history: every game of the user, newest first, narrowed by one category.
class HistoryModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(int filter READ filter WRITE setFilter NOTIFY changed)
    Q_PROPERTY(QVariantList chips READ chips NOTIFY changed)
    Q_PROPERTY(bool hasGames READ hasGames NOTIFY changed)
    Q_PROPERTY(double winPercent READ winPercent NOTIFY changed)
    Q_PROPERTY(QString gamesText READ gamesText NOTIFY changed)
    Q_PROPERTY(QString recordText READ recordText NOTIFY changed)
    Q_PROPERTY(MatchListModel* rows READ rows CONSTANT)

public:
    static constexpr int allCategories = -1;

    explicit HistoryModel(QObject* parent = nullptr);

    [[nodiscard]] int filter() const { return m_filter; }
    void setFilter(int filter);
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
    int m_filter = allCategories;
    int m_wins = 0;
    QVariantList m_chips;
};
