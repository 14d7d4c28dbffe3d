#pragma once

#include "overlay/live_client_data.h"
#include "overlay/skill_strip.h"

#include <QAbstractListModel>
#include <QColor>
#include <QtQml/qqmlregistration.h>

// The strip's four cells for QML, with their colours. A new snapshot changes only the cells
// that differ, so an unchanged game redraws nothing.
class SkillStripModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The overlay controller makes the strip's model.")

public:
    enum Role { KeyRole = Qt::UserRole + 1, PipCountRole, FilledPipsRole, AccentRole, IsNextRole, IsUltimateRole };

    static QColor basicColor() { return QColor(10, 200, 185); }
    static QColor ultimateColor() { return QColor(200, 170, 110); }

    explicit SkillStripModel(QObject* parent = nullptr);

    void setSnapshot(const LiveClientData::Snapshot& snapshot);

    [[nodiscard]] int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    std::array<SkillStrip::Cell, 4> m_cells;
};
