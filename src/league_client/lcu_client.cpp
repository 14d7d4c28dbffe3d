#include "league_client/lcu_client.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QNetworkRequest>
#include <QUrl>
#include <algorithm>

namespace {

constexpr int requestTimeoutMs = 60'000;

const QString historyPath = QStringLiteral("/lol-match-history/v1/products/lol/current-summoner/matches");
const QString gamePath = QStringLiteral("/lol-match-history/v1/games/");

std::optional<QJsonObject> jsonObject(const QByteArray& body) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

} // namespace

LcuClient::LcuClient(LcuDiscovery::Sources sources) : m_sources(std::move(sources)) {}

std::optional<LcuClient::Lockfile> LcuClient::discover() const {
    return LcuDiscovery::discover(m_sources);
}

QCoro::Task<QByteArray> LcuClient::get(QString path, Lockfile lock) {
    const QUrl url(QStringLiteral("https://127.0.0.1:") + QString::number(lock.port) + path);
    if (!url.isValid())
        throw LcuError::notRunning();

    QNetworkRequest request(url);
    request.setTransferTimeout(requestTimeoutMs);
    // The user name is fixed by the League client; the password is this launch's.
    request.setRawHeader("Authorization", "Basic " + (QStringLiteral("riot:") + lock.password).toUtf8().toBase64());
    request.setRawHeader("Accept", "application/json");

    const LoopbackSession::Answer answer = co_await m_session.get(std::move(request));
    if (!answer.status)
        throw LcuError::notRunning();
    if (*answer.status < 200 || *answer.status > 299)
        throw LcuError::http(*answer.status);
    co_return answer.body;
}

QCoro::Task<LcuClient::CurrentSummoner> LcuClient::currentSummoner() {
    const std::optional<Lockfile> lock = discover();
    if (!lock)
        throw LcuError::notRunning();
    const QByteArray body = co_await get(QStringLiteral("/lol-summoner/v1/current-summoner"), *lock);
    co_return LcuAnswers::readCurrentSummoner(body);
}

QCoro::Task<std::optional<QString>> LcuClient::currentPlatform() {
    const std::optional<Lockfile> lock = discover();
    if (!lock)
        co_return std::nullopt;
    QByteArray body;
    try {
        body = co_await get(QStringLiteral("/riotclient/region-locale"), *lock);
    } catch (...) {
        co_return std::nullopt;
    }
    co_return LcuAnswers::readPlatform(body);
}

QCoro::Task<QList<QJsonObject>> LcuClient::fetchList(Lockfile lock, int count) {
    QList<QJsonObject> collected;
    if (count < 1)
        co_return collected;
    int begin = 0;
    while (true) {
        const int end = std::min(count, begin + historyPageSize) - 1; // inclusive
        const QString path = historyPath + QStringLiteral("?begIndex=") + QString::number(begin) +
                             QStringLiteral("&endIndex=") + QString::number(end);
        const QByteArray body = co_await get(path, lock);
        const std::optional<QList<QJsonObject>> page = LcuAnswers::readHistoryPage(body);
        if (!page) {
            // A later page that cannot be read still leaves the earlier ones worth importing.
            if (collected.isEmpty())
                throw LcuError::decode();
            co_return collected;
        }
        collected.append(*page);
        begin += historyPageSize;
        if (page->size() < historyPageSize || begin >= count)
            co_return collected;
    }
}

QCoro::Task<LcuClient::FullGames> LcuClient::recentFullGames(int max, QSet<QString> skip) {
    const std::optional<Lockfile> lock = discover();
    if (!lock)
        throw LcuError::notRunning();
    const QList<QJsonObject> entries = co_await fetchList(*lock, historyDepth);

    FullGames result;
    for (const QJsonObject& entry : entries) {
        const std::optional<QString> id = gameId(entry);
        if (!id || skip.contains(*id))
            continue;
        result.processed.append(*id);
        // The list entry is a thinner record of the same game: the backend still takes it.
        std::optional<QJsonObject> full;
        try {
            full = jsonObject(co_await get(gamePath + *id, *lock));
        } catch (...) {
        }
        result.games.append(full ? *full : entry);
        if (result.processed.size() >= max)
            break;
    }
    co_return result;
}
