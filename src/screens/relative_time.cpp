#include "screens/relative_time.h"

#include <memory>
#include <string>
#include <unicode/locid.h>
#include <unicode/reldatefmt.h>
#include <unicode/unistr.h>

namespace RelativeTime {

QString phrase(const QDateTime& then, const QDateTime& now, const char* locale) {
    // Calendar units counted the way a wall calendar does, in the local time zone.
    const QDateTime a = then.toLocalTime();
    const QDateTime b = now.toLocalTime();
    const bool past = a <= b;
    const QDateTime& from = past ? a : b;
    const QDateTime& to = past ? b : a;

    int months = (to.date().year() - from.date().year()) * 12 + to.date().month() - from.date().month();
    if (from.addMonths(months) > to)
        --months;
    const qint64 seconds = from.secsTo(to);
    const qint64 days = seconds / 86400;

    URelativeDateTimeUnit unit;
    double amount;
    if (months >= 12) {
        unit = UDAT_REL_UNIT_YEAR;
        amount = months / 12;
    } else if (months >= 1) {
        unit = UDAT_REL_UNIT_MONTH;
        amount = months;
    } else if (days >= 7) {
        unit = UDAT_REL_UNIT_WEEK;
        amount = days / 7;
    } else if (days >= 1) {
        unit = UDAT_REL_UNIT_DAY;
        amount = days;
    } else if (seconds >= 3600) {
        unit = UDAT_REL_UNIT_HOUR;
        amount = seconds / 3600;
    } else if (seconds >= 60) {
        unit = UDAT_REL_UNIT_MINUTE;
        amount = seconds / 60;
    } else {
        unit = UDAT_REL_UNIT_SECOND;
        amount = seconds;
    }

    // A formatter is costly to build and a list formats one phrase per visible row: keep the
    // last one made, keyed by its locale.
    thread_local std::unique_ptr<icu::RelativeDateTimeFormatter> formatter;
    thread_local std::string formatterLocale;
    const std::string wanted = (locale && *locale) ? locale : icu::Locale::getDefault().getName();
    UErrorCode status = U_ZERO_ERROR;
    if (!formatter || formatterLocale != wanted) {
        formatter = std::make_unique<icu::RelativeDateTimeFormatter>(
            icu::Locale(wanted.c_str()), nullptr, UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, status);
        formatterLocale = wanted;
        if (U_FAILURE(status)) {
            formatter.reset();
            return {};
        }
    }
    icu::UnicodeString out;
    formatter->format(past ? -amount : amount, unit, out, status);
    if (U_FAILURE(status))
        return {};
    return QString(reinterpret_cast<const QChar*>(out.getBuffer()), out.length());
}

} // namespace RelativeTime
