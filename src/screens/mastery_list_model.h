#pragma once

#include "backend/social_records.h"

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QtQml/qqmlregistration.h>

// A profile's champion mastery, one cell each, in the backend's order. Champions are named
// through the champion list, which may arrive after the profile.
class MasteryListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The search screen hands out its mastery.")

public:
    enum Role { ChampionIdRole = Qt::UserRole + 1, ChampionNameRole, LevelTextRole };

    explicit MasteryListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    void setEntries(QList<MasteryDto> entries);
    // Renames the cells in place when the champion list changes.
    void setChampionNames(QHash<qint64, QString> namesById);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<MasteryDto> m_entries;
    QHash<qint64, QString> m_names;
};
