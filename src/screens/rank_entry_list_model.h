#pragma once

#include "backend/social_records.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqmlregistration.h>

// A profile's ranked queues, one row each, in the backend's order.
class RankEntryListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The search screen hands out its ranks.")

public:
    enum Role { QueueNameRole = Qt::UserRole + 1, TierRole, RankLabelRole, LpTextRole };

    explicit RankEntryListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    void setEntries(QList<RankEntryDto> entries);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // "75 LP"; empty without league points, so the row ends at the rank.
    [[nodiscard]] static QString lpText(const std::optional<qint64>& leaguePoints);

private:
    QList<RankEntryDto> m_entries;
};
