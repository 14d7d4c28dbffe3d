#pragma once

#include "game_data/data_dragon.h"

#include <QCoro/QCoroTask>
#include <QHash>
#include <QObject>
#include <QString>

class BackendClient;
class QNetworkAccessManager;

// The data version that image addresses carry and the champion names by id. Loaded once at a
// start and best effort: with the backend or the CDN away, the built-in version stays and the
// names stay unknown, and nobody is told.
class StaticData : public QObject {
    Q_OBJECT

public:
    static constexpr const char* defaultVersion = "16.11.1";

    StaticData(BackendClient& client, QNetworkAccessManager& network, DataDragon dataDragon, QObject* parent = nullptr);

    [[nodiscard]] const QString& version() const { return m_version; }
    [[nodiscard]] const QHash<qint64, QString>& championsById() const { return m_championsById; }
    [[nodiscard]] const DataDragon& dataDragon() const { return m_dataDragon; }

    // Asks the backend for the version, then the CDN for that version's champion list.
    QCoro::Task<> load();

Q_SIGNALS:
    void versionChanged();
    void championsByIdChanged();

private:
    QCoro::Task<> loadVersion();
    QCoro::Task<> loadChampionList();

    BackendClient& m_client;
    QNetworkAccessManager& m_network;
    DataDragon m_dataDragon;
    QString m_version = QString::fromLatin1(defaultVersion);
    QHash<qint64, QString> m_championsById;
};
