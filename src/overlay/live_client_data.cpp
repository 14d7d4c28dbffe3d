#include "overlay/live_client_data.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkRequest>
#include <QUrl>
#include <cmath>
#include <cstdint>
#include <limits>
#include <simdjson.h>

namespace {

// The answer is read through one of two views of a JSON value with the same few questions, so
// the reading itself is written once. simdjson reads a game's answer (15 to 60 KB, every 1.5 s)
// about ten times faster than QJsonDocument, which only reads what simdjson refuses although it
// is JSON (integers beyond 64 bits, lone surrogates) or is not JSON at all.
class SimdValue {
public:
    SimdValue() = default;
    explicit SimdValue(simdjson::dom::element element) : m_element(element), m_valid(true) {}

    [[nodiscard]] bool isObject() const { return m_valid && m_element.is_object(); }
    [[nodiscard]] SimdValue member(const char* key) const {
        if (!isObject())
            return {};
        simdjson::dom::element value;
        if (m_element.get_object().value()[key].get(value) != simdjson::SUCCESS)
            return {};
        return SimdValue(value);
    }
    [[nodiscard]] std::optional<QString> string() const {
        std::string_view text;
        if (!m_valid || m_element.get_string().get(text) != simdjson::SUCCESS)
            return std::nullopt;
        return QString::fromUtf8(text.data(), qsizetype(text.size()));
    }
    // The game writes levels and ranks as integers, but a whole double (3.0) counts as well.
    [[nodiscard]] std::optional<qint64> integer() const {
        if (!m_valid)
            return std::nullopt;
        switch (m_element.type()) {
        case simdjson::dom::element_type::INT64:
            return m_element.get_int64().value();
        case simdjson::dom::element_type::UINT64:
            if (m_element.get_uint64().value() > std::uint64_t(std::numeric_limits<qint64>::max()))
                return std::nullopt;
            return qint64(m_element.get_uint64().value());
        case simdjson::dom::element_type::DOUBLE: {
            const double value = m_element.get_double().value();
            if (std::trunc(value) != value || value < -0x1p63 || value >= 0x1p63)
                return std::nullopt;
            return qint64(value);
        }
        default:
            return std::nullopt;
        }
    }
    [[nodiscard]] std::optional<double> number() const {
        double value = 0;
        if (!m_valid || !m_element.is_number() || m_element.get_double().get(value) != simdjson::SUCCESS)
            return std::nullopt;
        return value;
    }
    // Only a list of nothing but objects counts as one.
    [[nodiscard]] QList<SimdValue> objects() const {
        QList<SimdValue> list;
        simdjson::dom::array array;
        if (!m_valid || m_element.get_array().get(array) != simdjson::SUCCESS)
            return list;
        for (simdjson::dom::element entry : array) {
            if (!entry.is_object())
                return {};
            list.append(SimdValue(entry));
        }
        return list;
    }

private:
    simdjson::dom::element m_element;
    bool m_valid = false;
};

class QtValue {
public:
    QtValue() = default;
    explicit QtValue(QJsonValue value) : m_value(std::move(value)) {}

    [[nodiscard]] bool isObject() const { return m_value.isObject(); }
    [[nodiscard]] QtValue member(const char* key) const {
        return QtValue(m_value.toObject().value(QLatin1String(key)));
    }
    [[nodiscard]] std::optional<QString> string() const {
        if (!m_value.isString())
            return std::nullopt;
        return m_value.toString();
    }
    // toInteger() gives its default unless the number is whole and fits in 64 bits, so two
    // different defaults agree exactly when it does.
    [[nodiscard]] std::optional<qint64> integer() const {
        if (!m_value.isDouble())
            return std::nullopt;
        const qint64 low = m_value.toInteger(0);
        if (low != m_value.toInteger(1))
            return std::nullopt;
        return low;
    }
    [[nodiscard]] std::optional<double> number() const {
        if (!m_value.isDouble())
            return std::nullopt;
        return m_value.toDouble();
    }
    [[nodiscard]] QList<QtValue> objects() const {
        QList<QtValue> list;
        if (!m_value.isArray())
            return list;
        for (const QJsonValue& entry : m_value.toArray()) {
            if (!entry.isObject())
                return {};
            list.append(QtValue(entry));
        }
        return list;
    }

private:
    QJsonValue m_value;
};

template <class Value> std::optional<LiveClientData::Snapshot> readSnapshot(const Value& root) {
    if (!root.isObject())
        return std::nullopt;
    const Value active = root.member("activePlayer");
    if (!active.isObject())
        return std::nullopt;

    LiveClientData::Snapshot snapshot;
    const Value abilities = active.member("abilities");
    if (abilities.isObject()) {
        for (const char* key : {"Q", "W", "E", "R"})
            snapshot.abilities.insert(QString::fromLatin1(key),
                                      abilities.member(key).member("abilityLevel").integer().value_or(0));
    }

    const QString name =
        active.member("riotIdGameName").string().value_or(active.member("summonerName").string().value_or(QString()));
    snapshot.level = active.member("level").integer().value_or(0);

    // The active player's row: by Riot ID game name or summoner name, each player tried against
    // both before the next; the first row when no name matches.
    const QList<Value> players = root.member("allPlayers").objects();
    std::optional<Value> player;
    for (const Value& candidate : players) {
        if (candidate.member("riotIdGameName").string() == name || candidate.member("summonerName").string() == name) {
            player = candidate;
            break;
        }
    }
    if (!player && !players.isEmpty())
        player = players.constFirst();
    if (player)
        snapshot.championName = player->member("championName").string().value_or(QString());

    if (snapshot.level == 0 && player)
        snapshot.level = player->member("level").integer().value_or(0);
    if (snapshot.level == 0) {
        // One ability point comes with every champion level. Ranks a game would never send
        // saturate instead of overflowing.
        for (const qint64 rank : std::as_const(snapshot.abilities))
            if (__builtin_add_overflow(snapshot.level, rank, &snapshot.level))
                snapshot.level = rank > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    }

    snapshot.gameTimeSeconds = root.member("gameData").member("gameTime").number().value_or(0);
    return snapshot;
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
    // One parser for the life of the app: it keeps its buffers for the next answer.
    static simdjson::dom::parser parser;
    simdjson::dom::element root;
    if (parser.parse(body.constData(), std::size_t(body.size())).get(root) == simdjson::SUCCESS)
        return readSnapshot(SimdValue(root));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        return std::nullopt;
    return readSnapshot(QtValue(QJsonValue(document.object())));
}
