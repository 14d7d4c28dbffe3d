#include "league_client/client_import.h"

#include "backend/backend_client.h"

#include <QJsonArray>
#include <QSettings>
#include <algorithm>

ClientImport::ClientImport(LcuClient& lcu, BackendClient& backend, QSettings& settings)
    : m_lcu(lcu), m_backend(backend), m_settings(settings) {}

QSet<QString> ClientImport::processedIds() const {
    const QStringList stored = m_settings.value(QLatin1String(processedIdsKey)).toStringList();
    return QSet<QString>(stored.cbegin(), stored.cend());
}

void ClientImport::rememberProcessed(QSet<QString> ids) {
    QStringList list(ids.cbegin(), ids.cend());
    list.sort(); // any order will do; a stable one keeps the settings file quiet
    m_settings.setValue(QLatin1String(processedIdsKey), list);
}

QCoro::Task<QString> ClientImport::run() {
    if (!m_lcu.discover())
        co_return QStringLiteral("client offline");

    QSet<QString> processed = processedIds();
    LcuClient::FullGames fresh;
    try {
        fresh = co_await m_lcu.recentFullGames(newGamesPerImport, processed);
    } catch (const UserFacingError& error) {
        co_return error.description();
    } catch (...) {
        co_return QStringLiteral("client read failed");
    }
    if (fresh.games.isEmpty())
        co_return QStringLiteral("client: up to date");

    qint64 ingested = 0;
    for (qsizetype start = 0; start < fresh.games.size(); start += ingestBatchSize) {
        QJsonArray batch;
        const qsizetype end = std::min(fresh.games.size(), start + ingestBatchSize);
        for (qsizetype i = start; i < end; ++i)
            batch.append(fresh.games.at(i));
        try {
            ingested += (co_await m_backend.ingestLocal(batch)).ingested;
        } catch (...) {
            // A batch the backend did not take is not offered again: its ids are recorded below
            // like the others, so one bad game cannot block every later import.
        }
    }

    for (const QString& id : std::as_const(fresh.processed))
        processed.insert(id);
    rememberProcessed(std::move(processed));
    co_return QStringLiteral("client: +") + QString::number(ingested) + QStringLiteral(" games");
}
