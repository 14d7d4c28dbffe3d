#include "overlay/skill_strip_model.h"

SkillStripModel::SkillStripModel(QObject* parent)
    : QAbstractListModel(parent), m_cells(SkillStrip::cells(LiveClientData::Snapshot{})) {}

void SkillStripModel::setSnapshot(const LiveClientData::Snapshot& snapshot) {
    const std::array<SkillStrip::Cell, 4> cells = SkillStrip::cells(snapshot);
    for (int row = 0; row < int(cells.size()); ++row) {
        if (cells[row] == m_cells[row])
            continue;
        m_cells[row] = cells[row];
        Q_EMIT dataChanged(index(row), index(row));
    }
}

int SkillStripModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_cells.size());
}

QVariant SkillStripModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const SkillStrip::Cell& cell = m_cells[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case KeyRole:
        return cell.key;
    case PipCountRole:
        return cell.pips;
    case FilledPipsRole:
        return cell.filledPips;
    case AccentRole:
        return cell.isUltimate ? ultimateColor() : basicColor();
    case IsNextRole:
        return cell.isNext;
    case IsUltimateRole:
        return cell.isUltimate;
    default:
        return {};
    }
}

QHash<int, QByteArray> SkillStripModel::roleNames() const {
    return {{KeyRole, "key"},       {PipCountRole, "pipCount"}, {FilledPipsRole, "filledPips"},
            {AccentRole, "accent"}, {IsNextRole, "isNext"},     {IsUltimateRole, "isUltimate"}};
}
