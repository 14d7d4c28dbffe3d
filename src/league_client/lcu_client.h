#pragma once

#include "league_client/lcu_answers.h"
#include "league_client/lcu_discovery.h"
#include "league_client/lcu_error.h"
#include "league_client/loopback_session.h"

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

// The application's client of the League client's local API. Made fresh for each use and
// dropped afterwards; every operation discovers the client again, so a client that was
// started, restarted or closed in between is seen as it is now.
class LcuClient {
public:
    using Lockfile = LcuDiscovery::Lockfile;
    using CurrentSummoner = LcuAnswers::CurrentSummoner;
    using LcuError = ::LcuError;

    // New games from the history: each id in processed, with its game (or its list entry when
    // the full game could not be read) at the same place in games.
    struct FullGames {
        QList<QJsonObject> games;
        QStringList processed;
    };

    static constexpr int historyPageSize = 100;
    static constexpr int historyDepth = 200;

    explicit LcuClient(LcuDiscovery::Sources sources = LcuDiscovery::Sources::system());

    [[nodiscard]] std::optional<Lockfile> discover() const;

    // GET on the client's API with its Basic credentials. Throws LcuError for a non-2xx status
    // or an answer that is not HTTP; transport failures arrive as LoopbackTransportError.
    QCoro::Task<QByteArray> get(QString path, Lockfile lock);

    QCoro::Task<CurrentSummoner> currentSummoner();
    // Never throws: every failure is simply no platform.
    QCoro::Task<std::optional<QString>> currentPlatform();

    // Up to count of the most recent history entries, newest first, a page at a time.
    QCoro::Task<QList<QJsonObject>> fetchList(Lockfile lock, int count);
    [[nodiscard]] static std::optional<QString> gameId(const QJsonObject& game) { return LcuAnswers::gameId(game); }
    // Walks the history for games whose ids are not in skip, fetching each in full, one at a
    // time, until max have been handled.
    QCoro::Task<FullGames> recentFullGames(int max, QSet<QString> skip);

private:
    LcuDiscovery::Sources m_sources;
    LoopbackSession m_session;
};
