#pragma once

#include "backend/social_records.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>
#include <vector>

// The games of a friend record that are listed, one row each.
class FriendGameListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The friends screen hands out its games.")

public:
    enum Role {
        MatchIdRole = Qt::UserRole + 1,
        OwnerChampionRole,
        FriendChampionRole,
        QueueLabelRole,
        DateTextRole,
        WinRole,
    };

    explicit FriendGameListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    // The games must outlive their rows: the list keeps pointers to them.
    void setGames(std::vector<const FriendStatsDto::Game*> games);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<const FriendStatsDto::Game*> m_games;
};
