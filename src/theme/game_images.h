#pragma once

#include "game_data/ddragon.h"

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
    explicit GameImages(DDragon ddragon, QObject* parent = nullptr) : QObject(parent), m_ddragon(std::move(ddragon)) {}

    static void exposeToQml(GameImages* instance) { s_instance = instance; }
    static GameImages* create(QQmlEngine*, QJSEngine*);

    void setDDragon(DDragon ddragon) { m_ddragon = std::move(ddragon); }
    void setVersion(const QString& version);
    [[nodiscard]] const QString& version() const { return m_version; }

    Q_INVOKABLE QUrl champion(const QString& name, const QString& version) const {
        return m_ddragon.championIcon(name, version);
    }
    Q_INVOKABLE QUrl item(qint64 id, const QString& version) const { return m_ddragon.itemIcon(id, version); }
    Q_INVOKABLE QUrl profileIcon(qint64 id, const QString& version) const {
        return m_ddragon.profileIcon(id, version);
    }

Q_SIGNALS:
    void versionChanged();

private:
    DDragon m_ddragon;
    QString m_version = QStringLiteral("16.11.1");
    static inline GameImages* s_instance = nullptr;
};
