#include "support/fake_live_game.h"

#include <QFile>
#include <QJsonArray>
#include <QSslCertificate>
#include <QSslKey>

namespace {

QByteArray readAll(const char* path) {
    QFile file(QString::fromUtf8(path));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("fake live game: cannot read %s", path);
    return file.readAll();
}

} // namespace

FakeLiveGame::FakeLiveGame(quint16 port) {
    const QSslCertificate certificate(readAll(QF_FAKE_LIVE_CERT), QSsl::Pem);
    const QSslKey key(readAll(QF_FAKE_LIVE_KEY), QSsl::Ec, QSsl::Pem);
    if (certificate.isNull() || key.isNull())
        qFatal("fake live game: the build-time certificate or key does not load");
    sslSetup(certificate, key);
    start(port);
}

QJsonObject FakeLiveGame::game(const QString& champion, qint64 level, const QMap<QString, qint64>& abilities,
                               double gameTime) {
    QJsonObject ranks;
    for (auto it = abilities.cbegin(); it != abilities.cend(); ++it)
        ranks.insert(it.key(), QJsonObject{{"abilityLevel", it.value()}, {"displayName", it.key()}});
    return {{"activePlayer", QJsonObject{{"abilities", ranks}, {"level", level}, {"riotIdGameName", "Player"}}},
            {"allPlayers", QJsonArray{QJsonObject{{"riotIdGameName", "Other"}, {"championName", "Nasus"}},
                                      QJsonObject{{"riotIdGameName", "Player"}, {"championName", champion}}}},
            {"gameData", QJsonObject{{"gameTime", gameTime}}}};
}

FakeResponse FakeLiveGame::answer(const RecordedRequest& request) {
    if (request.method != "GET" || request.path != QLatin1String(allGameDataPath))
        return FakeResponse::text(404, "no such route");
    return m_answer;
}

bool FakeLiveGame::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) {
    if (!m_stalling)
        return RecordingHttpServer::handleRequest(request, socket);
    // Counted, and left without an answer.
    Q_UNUSED(request)
    Q_UNUSED(socket)
    ++m_stalled;
    return true;
}
