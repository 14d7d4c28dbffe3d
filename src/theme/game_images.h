#pragma once

#include "game_data/data_dragon.h"

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QQmlEngine;
class QJSEngine;

// Image addresses for QML: champion portraits, item and profile icons. Each address takes the
// data version as an argument, so that a binding passing `GameImages.version` follows a change of
// version (a binding does not see what an invoked method reads).
class GameImages : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QString version READ version NOTIFY versionChanged)

public:
    // Not default-constructible on purpose: QML would otherwise make its own instance instead
    // of asking create() for the application's.
    explicit GameImages(DataDragon dataDragon, QObject* parent = nullptr)
        : QObject(parent), m_dataDragon(std::move(dataDragon)) {}

    static void exposeToQml(GameImages* instance) { s_instance = instance; }
    static GameImages* create(QQmlEngine*, QJSEngine*);

    void setDataDragon(DataDragon dataDragon) { m_dataDragon = std::move(dataDragon); }
    void setVersion(const QString& version);
    [[nodiscard]] const QString& version() const { return m_version; }

    Q_INVOKABLE QUrl champion(const QString& name, const QString& version) const {
        return m_dataDragon.championIcon(name, version);
    }
    Q_INVOKABLE QUrl item(qint64 id, const QString& version) const { return m_dataDragon.itemIcon(id, version); }
    Q_INVOKABLE QUrl profileIcon(qint64 id, const QString& version) const {
        return m_dataDragon.profileIcon(id, version);
    }

Q_SIGNALS:
    void versionChanged();

private:
    DataDragon m_dataDragon;
    QString m_version = QStringLiteral("16.11.1");
    static inline GameImages* s_instance = nullptr;
};
