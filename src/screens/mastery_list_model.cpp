#include "screens/mastery_list_model.h"

void MasteryListModel::setEntries(QList<MasteryDto> entries) {
    beginResetModel();
    m_entries = std::move(entries);
    endResetModel();
}

void MasteryListModel::setChampionNames(QHash<qint64, QString> namesById) {
    m_names = std::move(namesById);
    if (!m_entries.isEmpty())
        Q_EMIT dataChanged(index(0), index(static_cast<int>(m_entries.size()) - 1), {ChampionNameRole});
}

int MasteryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant MasteryListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const MasteryDto& entry = m_entries[index.row()];
    switch (role) {
    case ChampionIdRole:
        return static_cast<double>(entry.championId);
    case ChampionNameRole:
        // Empty for a champion the list does not name: the icon then shows its neutral tile.
        return m_names.value(entry.championId);
    case LevelTextRole:
        return QString::asprintf("M%lld", static_cast<long long>(entry.championLevel));
    default:
        return {};
    }
}

QHash<int, QByteArray> MasteryListModel::roleNames() const {
    return {{ChampionIdRole, "championId"}, {ChampionNameRole, "championName"}, {LevelTextRole, "levelText"}};
}
