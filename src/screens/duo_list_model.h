#pragma once

#include "backend/social_records.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QList>
#include <QtQml/qqmlregistration.h>

// The frequent duo partners, one row each, in the backend's order.
class DuoListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The friends screen hands out its duos.")

public:
    enum Role {
        PuuidRole = Qt::UserRole + 1,
        NameRole,
        HasRankRole,
        RankTextRole,
        RankColorsRole,
        GamesTextRole,
        WinsTextRole,
        LossesTextRole,
        LastPlayedTextRole,
        WinsRole,
        LossesRole,
        WinRateTextRole,
        WinRateColorRole,
        IconIdRole,
        InitialsRole,
        AvatarColorsRole,
    };

    explicit DuoListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    void setDuos(QList<DuoDto> duos, QDateTime now);
    [[nodiscard]] const QList<DuoDto>& duos() const { return m_duos; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // The name a duo is shown and looked up by: its Riot ID, or "Unknown".
    [[nodiscard]] static QString nameOf(const DuoDto& duo);
    // The profile icon to show, or -1 when the initials stand in (no icon, or one below 1).
    [[nodiscard]] static int iconOf(const std::optional<qint64>& profileIconId);

private:
    QList<DuoDto> m_duos;
    QDateTime m_now;
};
