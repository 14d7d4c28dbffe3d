#include "overlay/live_client_data.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkRequest>
#include <QUrl>
#include <limits>

namespace {

// The game writes levels and ranks as integers, but a reader that sees only doubles must still
// take 3.0 for 3. toInteger() gives its default unless the number is whole and fits in 64 bits,
// so two different defaults agree exactly when it does.
std::optional<qint64> integerOf(const QJsonValue& value) {
    if (!value.isDouble())
        return std::nullopt;
    const qint64 low = value.toInteger(0);
    if (low != value.toInteger(1))
        return std::nullopt;
    return low;
}

std::optional<QString> stringOf(const QJsonValue& value) {
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

// "allPlayers" counts only as a whole list of objects; anything else is no list at all.
QList<QJsonObject> playersOf(const QJsonValue& value) {
    QList<QJsonObject> players;
    if (!value.isArray())
        return players;
    const QJsonArray array = value.toArray();
    players.reserve(array.size());
    for (const QJsonValue& entry : array) {
        if (!entry.isObject())
            return {};
        players.append(entry.toObject());
    }
    return players;
}

// The active player's row: by Riot ID game name or summoner name, each player tried against
// both before the next; the first row when no name matches.
std::optional<QJsonObject> pickPlayer(const QList<QJsonObject>& players, const QString& name) {
    if (players.isEmpty())
        return std::nullopt;
    for (const QJsonObject& player : players) {
        if (stringOf(player.value(QLatin1String("riotIdGameName"))) == name ||
            stringOf(player.value(QLatin1String("summonerName"))) == name)
            return player;
    }
    return players.constFirst();
}

} // namespace

const char* LiveClientData::RequestError::what() const noexcept {
    switch (m_kind) {
    case Kind::BadUrl:
        return "bad URL";
    case Kind::Transport:
        return "the request failed";
    case Kind::BadServerResponse:
        return "bad server response";
    }
    return "the request failed";
}

LiveClientData::LiveClientData(quint16 port) : m_port(port) {}

QCoro::Task<QByteArray> LiveClientData::get(QString path) {
    const QUrl url(QStringLiteral("https://127.0.0.1:%1").arg(m_port) + path, QUrl::StrictMode);
    if (!url.isValid())
        throw RequestError(RequestError::Kind::BadUrl);
    QNetworkRequest request(url);
    // An inactivity limit, so a game that is loading or stalled holds up a pass for 3 s at most.
    request.setTransferTimeout(timeoutMs);
    request.setRawHeader("Accept", "application/json");
    LoopbackSession::Answer answer;
    try {
        answer = co_await m_session.get(std::move(request));
    } catch (const LoopbackTransportError&) {
        throw RequestError(RequestError::Kind::Transport);
    }
    if (!answer.status || *answer.status < 200 || *answer.status > 299)
        throw RequestError(RequestError::Kind::BadServerResponse);
    co_return answer.body;
}

QCoro::Task<std::optional<LiveClientData::Snapshot>> LiveClientData::snapshot() {
    QByteArray body;
    try {
        body = co_await get(QString::fromLatin1(allGameDataPath));
    } catch (const RequestError&) {
        co_return std::nullopt;
    }
    co_return read(body);
}

std::optional<LiveClientData::Snapshot> LiveClientData::read(const QByteArray& body) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonObject root = document.object();
    const QJsonValue activeValue = root.value(QLatin1String("activePlayer"));
    if (!activeValue.isObject())
        return std::nullopt;
    const QJsonObject active = activeValue.toObject();

    Snapshot snapshot;
    const QJsonValue abilities = active.value(QLatin1String("abilities"));
    if (abilities.isObject()) {
        const QJsonObject ranks = abilities.toObject();
        for (const char* key : {"Q", "W", "E", "R"}) {
            const QJsonValue ability = ranks.value(QLatin1String(key));
            snapshot.abilities.insert(QString::fromLatin1(key),
                                      integerOf(ability.toObject().value(QLatin1String("abilityLevel"))).value_or(0));
        }
    }

    const QString name = stringOf(active.value(QLatin1String("riotIdGameName")))
                             .value_or(stringOf(active.value(QLatin1String("summonerName"))).value_or(QString()));
    snapshot.level = integerOf(active.value(QLatin1String("level"))).value_or(0);

    const std::optional<QJsonObject> player = pickPlayer(playersOf(root.value(QLatin1String("allPlayers"))), name);
    if (player)
        snapshot.championName = stringOf(player->value(QLatin1String("championName"))).value_or(QString());

    if (snapshot.level == 0 && player)
        snapshot.level = integerOf(player->value(QLatin1String("level"))).value_or(0);
    if (snapshot.level == 0) {
        // One ability point comes with every champion level. Ranks a game would never send
        // saturate instead of overflowing.
        for (const qint64 rank : std::as_const(snapshot.abilities))
            if (__builtin_add_overflow(snapshot.level, rank, &snapshot.level))
                snapshot.level = rank > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    }

    const QJsonValue gameData = root.value(QLatin1String("gameData"));
    const QJsonValue gameTime = gameData.toObject().value(QLatin1String("gameTime"));
    if (gameData.isObject() && gameTime.isDouble())
        snapshot.gameTimeSeconds = gameTime.toDouble();
    return snapshot;
}
