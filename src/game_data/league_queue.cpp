#include "game_data/league_queue.h"

#include <QStringList>

namespace {

QString capitaliseWords(const QString& text) {
    QString result = text.toLower();
    bool startOfWord = true;
    for (QChar& c : result) {
        if (c.isSpace()) {
            startOfWord = true;
        } else if (startOfWord) {
            c = c.toUpper();
            startOfWord = false;
        }
    }
    return result;
}

} // namespace

namespace LeagueQueue {

QString label(qint64 queueId, const std::optional<QString>& gameMode) {
    switch (queueId) {
    case 420:
        return QStringLiteral("Ranked Solo/Duo");
    case 440:
        return QStringLiteral("Ranked Flex");
    case 700:
    case 720:
        return QStringLiteral("Clash");
    case 900:
    case 2400:
        return QStringLiteral("ARAM: Mayhem");
    case 1700:
    case 1710:
        return QStringLiteral("Arena");
    default:
        break;
    }
    const QString mode = gameMode.value_or(QString()).toUpper();
    if (mode == QLatin1String("ARAM"))
        return QStringLiteral("ARAM");
    if (mode == QLatin1String("URF") || mode == QLatin1String("KIWI"))
        return QStringLiteral("ARAM: Mayhem");
    if (mode == QLatin1String("CHERRY"))
        return QStringLiteral("Arena");
    if (mode == QLatin1String("NEXUSBLITZ"))
        return QStringLiteral("Nexus Blitz");
    if (mode == QLatin1String("ULTBOOK"))
        return QStringLiteral("Ultimate Spellbook");
    if (mode == QLatin1String("ONEFORALL"))
        return QStringLiteral("One for All");
    if (mode == QLatin1String("BRAWL"))
        return QStringLiteral("Brawl");
    if (mode == QLatin1String("CLASSIC")) {
        switch (queueId) {
        case 400:
            return QStringLiteral("Normal Draft");
        case 430:
            return QStringLiteral("Normal Blind");
        case 490:
            return QStringLiteral("Quickplay");
        default:
            return QStringLiteral("Summoner's Rift");
        }
    }
    if (mode.isEmpty())
        return QStringLiteral("Queue ") + QString::number(queueId);
    return capitaliseWords(mode);
}

} // namespace LeagueQueue
