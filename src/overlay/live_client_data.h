#pragma once

#include "league_client/loopback_session.h"

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QMap>
#include <QString>
#include <exception>
#include <optional>

// The game's Live Client Data API, which the game serves on this machine (127.0.0.1:2999,
// self-signed certificate, no authentication) while a game runs. Only one endpoint is read and
// nothing is ever sent to the game.
class LiveClientData {
public:
    // What the overlay needs of the live game.
    struct Snapshot {
        QString championName;            // empty when unknown
        qint64 level = 0;                // champion level
        QMap<QString, qint64> abilities; // "Q", "W", "E", "R" to rank; empty without abilities
        double gameTimeSeconds = 0;      // 0 when unknown

        bool operator==(const Snapshot&) const = default;
    };

    // Why get() has no body. The overlay never shows these: a missing game is an absent snapshot.
    class RequestError : public std::exception {
    public:
        enum class Kind { BadUrl, Transport, BadServerResponse };
        explicit RequestError(Kind kind) : m_kind(kind) {}
        [[nodiscard]] Kind kind() const { return m_kind; }
        const char* what() const noexcept override;

    private:
        Kind m_kind;
    };

    static constexpr quint16 gamePort = 2999;
    static constexpr int timeoutMs = 3000;
    static constexpr const char* allGameDataPath = "/liveclientdata/allgamedata";

    // The game always listens on gamePort; tests aim at a fake game elsewhere.
    explicit LiveClientData(quint16 port = gamePort);

    // The live game now; absent on any failure (no game, time-out, refused certificate, an
    // error status, an unreadable answer).
    QCoro::Task<std::optional<Snapshot>> snapshot();
    // The body of a successful (2xx) answer; throws RequestError otherwise.
    QCoro::Task<QByteArray> get(QString path);
    // Ends the request in flight at once: its snapshot is absent.
    void abort() { m_session.abortAll(); }

    // A snapshot from an allgamedata answer, read member by member with defaults; absent only
    // when the answer is not a JSON object with an "activePlayer" object.
    [[nodiscard]] static std::optional<Snapshot> read(const QByteArray& body);

private:
    quint16 m_port;
    LoopbackSession m_session;
};
