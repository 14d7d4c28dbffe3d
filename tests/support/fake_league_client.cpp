#include "support/fake_league_client.h"

#include <QFile>
#include <QJsonArray>
#include <QRandomGenerator>
#include <QSslCertificate>
#include <QSslKey>
#include <QUrlQuery>

namespace {

QByteArray readAll(const char* path) {
    QFile file(QString::fromUtf8(path));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("fake League client: cannot read %s", path);
    return file.readAll();
}

QByteArray basicCredentials(const QString& password) {
    return "Basic " + (QStringLiteral("riot:") + password).toUtf8().toBase64();
}

} // namespace

FakeLeagueClient::FakeLeagueClient()
    : m_password(QStringLiteral("pw-%1").arg(QRandomGenerator::global()->generate64(), 0, 36)) {
    const QSslCertificate certificate(readAll(QF_FAKE_LCU_CERT), QSsl::Pem);
    const QSslKey key(readAll(QF_FAKE_LCU_KEY), QSsl::Ec, QSsl::Pem);
    if (certificate.isNull() || key.isNull())
        qFatal("fake League client: the build-time certificate or key does not load");
    // The certificate has to be in place before listening: the server is made TLS-only then.
    sslSetup(certificate, key);
    start();
}

QByteArray FakeLeagueClient::lockfileText() const {
    return "LeagueClient:4242:" + QByteArray::number(port()) + ':' + m_password.toUtf8() + ":https";
}

void FakeLeagueClient::serve(const QString& path, Handler handler) {
    const QByteArray expected = basicCredentials(m_password);
    m_routes.insert(path, [expected, handler = std::move(handler)](const RecordedRequest& request) {
        if (request.header("Authorization") != expected)
            return FakeResponse::json({{"httpStatus", 401}, {"message", "unauthorized"}}, 401);
        return handler(request);
    });
}

void FakeLeagueClient::serve(const QString& path, const FakeResponse& response) {
    serve(path, [response](const RecordedRequest&) { return response; });
}

void FakeLeagueClient::serveHistory(const QList<QJsonObject>& entries) {
    serve(QString::fromLatin1(historyPath), [entries](const RecordedRequest& request) {
        const QUrlQuery query(QString::fromUtf8(request.rawQuery));
        const qsizetype begin = query.queryItemValue(QStringLiteral("begIndex")).toLongLong();
        const qsizetype end = query.queryItemValue(QStringLiteral("endIndex")).toLongLong();
        QJsonArray page;
        for (qsizetype i = begin; i <= end && i < entries.size(); ++i)
            page.append(entries.at(i));
        return FakeResponse::json(
            {{"accountId", 1}, {"games", QJsonObject{{"gameCount", page.size()}, {"games", page}}}});
    });
    for (const QJsonObject& entry : entries) {
        const QJsonValue id = entry.value(QStringLiteral("gameId"));
        if (!id.isDouble())
            continue;
        QJsonObject full = entry;
        full.insert(QStringLiteral("fullRecord"), true);
        full.insert(QStringLiteral("participants"), QJsonArray{QJsonObject{{"participantId", 1}}});
        serve(QString::fromLatin1(gamePathPrefix) + QString::number(id.toInteger(qint64(id.toDouble()))),
              FakeResponse::json(full));
    }
}

FakeResponse FakeLeagueClient::answer(const RecordedRequest& request) {
    const auto route = m_routes.constFind(request.path);
    if (request.method != "GET" || route == m_routes.constEnd())
        return FakeResponse::json({{"httpStatus", 404}, {"message", "no such route"}}, 404);
    return (*route)(request);
}

QStringList FakeLeagueClient::historyQueries() const {
    QStringList result;
    for (const RecordedRequest& request : requestsTo(QString::fromLatin1(historyPath)))
        result.append(QString::fromUtf8(request.rawQuery));
    return result;
}

QString FakeLeagueClient::writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("cannot write %s", qPrintable(path));
    file.write(bytes);
    return path;
}

QJsonObject historyEntry(const QJsonValue& gameId, int queueId) {
    QJsonObject entry{{"queueId", queueId}, {"gameMode", "CLASSIC"}, {"platformId", "EUW1"}};
    if (!gameId.isUndefined())
        entry.insert(QStringLiteral("gameId"), gameId);
    return entry;
}

QList<QJsonObject> historyEntries(qint64 first, int count) {
    QList<QJsonObject> entries;
    for (int i = 0; i < count; ++i)
        entries.append(historyEntry(first + i));
    return entries;
}
