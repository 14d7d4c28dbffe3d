#include "league_client/lcu_discovery.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringDecoder>
#include <limits>

namespace LcuDiscovery {

namespace {

// A listing that takes longer than this is treated as no listing: discovery blocks the main
// thread while it waits.
constexpr int processListTimeoutMs = 10'000;

std::optional<QString> strictUtf8(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

std::optional<QByteArray> readFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

} // namespace

Sources Sources::system() {
    return Sources{LcuDiscovery::lockfilePaths(), &listProcesses};
}

const QStringList& lockfilePaths() {
    static const QStringList paths = [] {
        const QString applications = QStringLiteral("/Applications/League of Legends.app/Contents/LoL/lockfile");
        // The first path already begins with "/", so the home folder is joined without a separator.
        QStringList list{applications, QDir::homePath() + applications};
#ifdef Q_OS_WIN
        list.append(QStringLiteral("C:/Riot Games/League of Legends/lockfile"));
#endif
        return list;
    }();
    return paths;
}

std::optional<QByteArray> listProcesses() {
    QProcess ps;
    ps.setStandardErrorFile(QProcess::nullDevice());
    ps.start(QStringLiteral("/bin/ps"), {QStringLiteral("-A"), QStringLiteral("-o"), QStringLiteral("args")},
             QIODevice::ReadOnly);
    if (!ps.waitForStarted())
        return std::nullopt;
    if (!ps.waitForFinished(processListTimeoutMs)) {
        ps.kill();
        ps.waitForFinished();
        return std::nullopt;
    }
    return ps.readAllStandardOutput();
}

std::optional<qint64> parsePort(QStringView text) {
    qsizetype at = 0;
    bool negative = false;
    if (!text.isEmpty() && (text.front() == u'+' || text.front() == u'-')) {
        negative = text.front() == u'-';
        at = 1;
    }
    if (at == text.size())
        return std::nullopt;
    // Accumulated as a negative number so that the most negative value still fits.
    qint64 value = 0;
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    for (; at < text.size(); ++at) {
        const char16_t c = text[at].unicode();
        if (c < u'0' || c > u'9')
            return std::nullopt;
        const int digit = c - u'0';
        if (value < (lowest + digit) / 10)
            return std::nullopt;
        value = value * 10 - digit;
    }
    if (!negative) {
        if (value == lowest)
            return std::nullopt;
        value = -value;
    }
    return value;
}

std::optional<Lockfile> parseLockfile(const QByteArray& contents) {
    const std::optional<QString> text = strictUtf8(contents);
    if (!text)
        return std::nullopt;
    const QStringList pieces = text->split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (pieces.size() < 5)
        return std::nullopt;
    const std::optional<qint64> port = parsePort(pieces.at(2));
    if (!port)
        return std::nullopt;
    // The fifth field names the protocol; the client only ever speaks HTTPS, so it is not read.
    return Lockfile{*port, pieces.at(3)};
}

std::optional<QString> argumentValue(QStringView line, QStringView key) {
    const qsizetype found = line.indexOf(key);
    if (found < 0)
        return std::nullopt;
    QStringView rest = line.mid(found + key.size());
    for (qsizetype i = 0; i < rest.size(); ++i) {
        if (rest[i].isSpace()) {
            rest = rest.left(i);
            break;
        }
    }
    QString value = rest.toString();
    value.remove(QLatin1Char('"'));
    if (value.isEmpty())
        return std::nullopt;
    return value;
}

std::optional<Lockfile> parseProcessList(const QByteArray& output) {
    const std::optional<QString> text = strictUtf8(output);
    if (!text)
        return std::nullopt;
    const QStringList lines = text->split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (!line.contains(QLatin1String("LeagueClientUx")))
            continue;
        const std::optional<QString> portText = argumentValue(line, u"--app-port=");
        if (!portText)
            continue;
        const std::optional<QString> password = argumentValue(line, u"--remoting-auth-token=");
        if (!password)
            continue;
        const std::optional<qint64> port = parsePort(*portText);
        if (!port)
            continue;
        return Lockfile{*port, *password};
    }
    return std::nullopt;
}

std::optional<Lockfile> discover(const Sources& sources) {
    for (const QString& path : sources.lockfilePaths) {
        const std::optional<QByteArray> contents = readFile(path);
        if (!contents)
            continue;
        if (std::optional<Lockfile> lock = parseLockfile(*contents))
            return lock;
    }
    if (!sources.processLister)
        return std::nullopt;
    const std::optional<QByteArray> output = sources.processLister();
    if (!output)
        return std::nullopt;
    return parseProcessList(*output);
}

} // namespace LcuDiscovery
