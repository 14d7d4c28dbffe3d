#pragma once

#include "screens/timeline_view_state.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>
#include <vector>

// The key events of a timeline, one row each, in the order the backend sent them.
class TimelineEventListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The timeline screen hands out its events.")

public:
    enum Role { TimeTextRole = Qt::UserRole + 1, SymbolRole, LabelRole, MineRole };

    explicit TimelineEventListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    void setRows(std::vector<TimelineViewState::EventRow> rows);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<TimelineViewState::EventRow> m_rows;
};
