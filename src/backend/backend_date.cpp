#include "backend/backend_date.h"

#include <QTimeZone>
#include <memory>
#include <unicode/locid.h>
#include <unicode/parsepos.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

namespace {

std::unique_ptr<icu::SimpleDateFormat> makeFormat(const char16_t* pattern) {
    UErrorCode status = U_ZERO_ERROR;
    auto format =
        std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(pattern), icu::Locale("en_US_POSIX"), status);
    if (U_FAILURE(status))
        return nullptr;
    format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString(u"UTC")));
    format->setLenient(false);
    return format;
}

std::optional<QDateTime> parseWhole(const icu::DateFormat* format, const QString& text) {
    if (!format)
        return std::nullopt;
    const icu::UnicodeString input(reinterpret_cast<const UChar*>(text.utf16()), static_cast<int32_t>(text.size()));
    icu::ParsePosition position(0);
    const UDate millis = format->parse(input, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != input.length())
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(millis), Qt::UTC);
}

// The shape the backend writes nearly always, read without ICU: 2025-03-01T18:04:05, then six
// fraction digits or none, then Z or an offset of hours and minutes. Only a date that is
// plainly valid is answered here; anything unusual goes to the formatters below, which decide.
std::optional<QDateTime> parseCommon(const QString& text) {
    const qsizetype length = text.size();
    if (length < 20)
        return std::nullopt;
    const QChar* c = text.constData();
    auto digits = [c](qsizetype from, int count, int& out) {
        out = 0;
        for (int i = 0; i < count; ++i) {
            const char16_t d = c[from + i].unicode();
            if (d < u'0' || d > u'9')
                return false;
            out = out * 10 + (d - u'0');
        }
        return true;
    };
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!digits(0, 4, year) || c[4] != u'-' || !digits(5, 2, month) || c[7] != u'-' || !digits(8, 2, day) ||
        c[10] != u'T' || !digits(11, 2, hour) || c[13] != u':' || !digits(14, 2, minute) || c[16] != u':' ||
        !digits(17, 2, second))
        return std::nullopt;
    qsizetype at = 19;
    int micros = 0;
    if (c[at] == u'.') {
        if (length < at + 7 || !digits(at + 1, 6, micros))
            return std::nullopt;
        at += 7;
    }
    int offsetMinutes = 0;
    if (at + 1 == length && c[at] == u'Z') {
        offsetMinutes = 0;
    } else if (at + 6 == length && (c[at] == u'+' || c[at] == u'-') && c[at + 3] == u':') {
        int offsetHours = 0, offsetRest = 0;
        if (!digits(at + 1, 2, offsetHours) || !digits(at + 4, 2, offsetRest) || offsetHours > 18 || offsetRest > 59)
            return std::nullopt;
        offsetMinutes = (offsetHours * 60 + offsetRest) * (c[at] == u'-' ? -1 : 1);
    } else {
        return std::nullopt;
    }
    const QDate date(year, month, day);
    if (year < 1000 || !date.isValid() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    // Fraction digits beyond the millisecond are dropped, as the formatters do.
    const qint64 millis = (date.toJulianDay() - QDate(1970, 1, 1).toJulianDay()) * 86'400'000 +
                          ((hour * 60 + minute) * 60 + second) * qint64(1000) + micros / 1000 -
                          offsetMinutes * qint64(60'000);
    return QDateTime::fromMSecsSinceEpoch(millis, Qt::UTC);
}

} // namespace

namespace BackendDate {

std::optional<QDateTime> fromBackend(const std::optional<QString>& text) {
    if (!text)
        return std::nullopt;
    if (auto date = parseCommon(*text))
        return date;

    // Built once and kept: a formatter is costly to make and these two are used for every
    // stored game. All store work happens on one thread, so sharing needs no lock.
    thread_local const std::unique_ptr<icu::SimpleDateFormat> withFraction =
        makeFormat(u"yyyy-MM-dd'T'HH:mm:ss.SSSSSSXXXXX");
    thread_local const std::unique_ptr<icu::SimpleDateFormat> wholeSeconds = makeFormat(u"yyyy-MM-dd'T'HH:mm:ssXXXXX");

    if (auto date = parseWhole(withFraction.get(), *text))
        return date;
    if (auto date = parseWhole(wholeSeconds.get(), *text))
        return date;
    // Internet date-time as a last try: full date, "T", full time, "Z" or a numeric offset.
    const auto internet = makeFormat(u"yyyy-MM-dd'T'HH:mm:ssXX");
    return parseWhole(internet.get(), *text);
}

} // namespace BackendDate
