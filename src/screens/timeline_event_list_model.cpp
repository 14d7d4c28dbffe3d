#include "screens/timeline_event_list_model.h"

void TimelineEventListModel::setRows(std::vector<TimelineViewState::EventRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int TimelineEventListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant TimelineEventListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const TimelineViewState::EventRow& row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case TimeTextRole:
        return row.time;
    case SymbolRole:
        return row.symbol;
    case LabelRole:
        return row.label;
    case MineRole:
        return row.mine;
    default:
        return {};
    }
}

QHash<int, QByteArray> TimelineEventListModel::roleNames() const {
    return {{TimeTextRole, "timeText"}, {SymbolRole, "symbol"}, {LabelRole, "label"}, {MineRole, "mine"}};
}
