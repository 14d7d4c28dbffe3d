#pragma once

#include "game_data/stats.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QtQml/qqmlregistration.h>
#include <vector>

// One row per game of the user, as the match history and the overview list them. Texts are
// formatted when a row is shown, so a long archive costs nothing until it is scrolled.
class MatchListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The history and the overview hand out their rows.")

public:
    enum Role {
        ChampionNameRole = Qt::UserRole + 1,
        WinRole,
        ResultTextRole,
        QueueLabelRole,
        CategoryChipRole,
        CategoryColorRole,
        TimeTextRole,
        KillsRole,
        DeathsRole,
        AssistsRole,
        KdaTextRole,
        KdaColorRole,
        CsTextRole,
        DamageTextRole,
        ItemsRole,
        FriendNamesRole,
        FriendTextRole,
        MatchServerIdRole,
    };

    explicit MatchListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    void setGames(std::vector<Stats::Game> games);
    void setNow(QDateTime now) { m_now = std::move(now); }
    [[nodiscard]] const std::vector<Stats::Game>& games() const { return m_games; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // At most three friends' names, in roster order.
    [[nodiscard]] static QStringList friendNames(const Stats::Game& game);

private:
    std::vector<Stats::Game> m_games;
    QDateTime m_now;
};
