#pragma once

#include "league_client/lcu_client.h"

#include <QCoro/QCoroTask>
#include <QString>

class BackendClient;
class QSettings;

// Sends the League client's games that the backend has not been offered yet to its ingestion
// endpoint, and remembers which ones were offered. The outcome is one line for the sidebar.
class ClientImport {
public:
    static constexpr int newGamesPerImport = 80;
    static constexpr int ingestBatchSize = 100;
    static constexpr const char* processedIdsKey = "quill.lcuProcessedGameIds";

    ClientImport(LcuClient& lcu, BackendClient& backend, QSettings& settings);

    // Runs one import to its end and returns its status line; never throws.
    QCoro::Task<QString> run();

private:
    [[nodiscard]] QSet<QString> processedIds() const;
    void rememberProcessed(QSet<QString> ids);

    LcuClient& m_lcu;
    BackendClient& m_backend;
    QSettings& m_settings;
};
