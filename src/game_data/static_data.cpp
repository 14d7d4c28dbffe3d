#include "game_data/static_data.h"

#include "backend/backend_client.h"

#include <QCoro/QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <memory>

StaticData::StaticData(BackendClient& client, QNetworkAccessManager& network, DataDragon dataDragon, QObject* parent)
    : QObject(parent), m_client(client), m_network(network), m_dataDragon(std::move(dataDragon)) {}

QCoro::Task<> StaticData::load() {
    co_await loadVersion();
    co_await loadChampionList();
}

QCoro::Task<> StaticData::loadVersion() {
    try {
        const StaticVersionResponse answer = co_await m_client.staticVersion();
        if (answer.version != m_version) {
            m_version = answer.version;
            Q_EMIT versionChanged();
        }
    } catch (...) {
    }
}

QCoro::Task<> StaticData::loadChampionList() {
    const QUrl url = m_dataDragon.championList(m_version);
    if (!url.isValid())
        co_return;
    QNetworkRequest request(url);
    request.setTransferTimeout(60000);
    std::unique_ptr<QNetworkReply, void (*)(QNetworkReply*)> reply(m_network.get(request),
                                                                   [](QNetworkReply* r) { r->deleteLater(); });
    co_await reply.get();
    if (reply->error() != QNetworkReply::NoError)
        co_return;
    // A list that cannot be read leaves the names already known.
    if (auto champions = DataDragon::parseChampionList(reply->readAll())) {
        m_championsById = std::move(*champions);
        Q_EMIT championsByIdChanged();
    }
}
