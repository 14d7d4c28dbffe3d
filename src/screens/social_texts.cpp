#include "screens/social_texts.h"

#include "backend/backend_date.h"
#include "screens/relative_time.h"
#include "screens/text_case.h"
#include "theme/theme.h"

#include <QTextBoundaryFinder>
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace SocialTexts {

namespace {

// Characters as a reader counts them: a letter with its accents, an emoji, is one.
qsizetype readerLength(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

} // namespace

QString initials(const QString& name) {
    for (const QString& piece : name.split(QLatin1Char('#')))
        if (!piece.isEmpty())
            return Theme::initials(piece);
    return Theme::initials(name);
}

QVariantList avatarColors(const QString& textId) {
    const Theme::Pair pair = Theme::champPair(Theme::stableHash(textId));
    return {pair[0], pair[1]};
}

QString duosError(const QString& description) {
    if (description.contains(QLatin1String("<html")) || description.contains(QLatin1String("<body")) ||
        readerLength(description) > longestDuoError)
        return backendDownText;
    return description;
}

QString winRateText(double winrate) {
    return QString::asprintf("%lld%% WR", static_cast<long long>(std::llround(winrate * 100.0)));
}

QColor winRateColor(double winrate) {
    return winrate >= 0.5 ? Theme::win() : Theme::loss();
}

QString lastPlayed(const std::optional<QString>& timestamp, const QDateTime& now, const char* locale) {
    const std::optional<QDateTime> then = BackendDate::fromBackend(timestamp);
    if (!then)
        return {};
    return QStringLiteral("last ") + RelativeTime::phrase(*then, now, locale);
}

QString playedOn(const std::optional<QString>& timestamp, const char* locale) {
    const std::optional<QDateTime> then = BackendDate::fromBackend(timestamp);
    if (!then)
        return {};
    // A formatter is costly to build and a list formats one date per visible row: keep the last
    // one made, keyed by its locale.
    thread_local std::unique_ptr<icu::DateFormat> formatter;
    thread_local std::string formatterLocale;
    const std::string wanted = (locale && *locale) ? locale : icu::Locale::getDefault().getName();
    UErrorCode status = U_ZERO_ERROR;
    if (!formatter || formatterLocale != wanted) {
        formatter.reset(icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString(u"yMMMd"),
                                                                   icu::Locale(wanted.c_str()), status));
        formatterLocale = wanted;
        if (U_FAILURE(status) || !formatter) {
            formatter.reset();
            return {};
        }
    }
    icu::UnicodeString out;
    formatter->format(static_cast<UDate>(then->toMSecsSinceEpoch()), out);
    return QString(reinterpret_cast<const QChar*>(out.getBuffer()), out.length());
}

QString queueName(const QString& queueType) {
    if (queueType == QLatin1String("RANKED_SOLO_5x5"))
        return QStringLiteral("Solo/Duo");
    if (queueType == QLatin1String("RANKED_FLEX_SR"))
        return QStringLiteral("Flex");
    return TextCase::capitalised(queueType);
}

QString tierOf(const QString& rank) {
    const qsizetype end = std::find_if(rank.begin(), rank.end(), [](QChar c) { return c.isSpace(); }) - rank.begin();
    return rank.left(end);
}

} // namespace SocialTexts
