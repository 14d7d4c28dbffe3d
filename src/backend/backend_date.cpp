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
    auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(pattern),
                                                          icu::Locale("en_US_POSIX"), status);
    if (U_FAILURE(status))
        return nullptr;
    format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString(u"UTC")));
    format->setLenient(false);
    return format;
}

std::optional<QDateTime> parseWhole(const icu::DateFormat* format, const QString& text) {
    if (!format)
        return std::nullopt;
    const icu::UnicodeString input(reinterpret_cast<const UChar*>(text.utf16()),
                                   static_cast<int32_t>(text.size()));
    icu::ParsePosition position(0);
    const UDate millis = format->parse(input, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != input.length())
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(millis), QTimeZone::utc());
}

} // namespace

namespace BackendDate {

std::optional<QDateTime> fromBackend(const std::optional<QString>& text) {
    if (!text)
        return std::nullopt;

    // Built once and kept: a formatter is costly to make and these two are used for every
    // stored game. All store work happens on one thread, so sharing needs no lock.
    thread_local const std::unique_ptr<icu::SimpleDateFormat> withFraction =
        makeFormat(u"yyyy-MM-dd'T'HH:mm:ss.SSSSSSXXXXX");
    thread_local const std::unique_ptr<icu::SimpleDateFormat> wholeSeconds =
        makeFormat(u"yyyy-MM-dd'T'HH:mm:ssXXXXX");

    if (auto date = parseWhole(withFraction.get(), *text))
        return date;
    if (auto date = parseWhole(wholeSeconds.get(), *text))
        return date;
    // Internet date-time as a last try: full date, "T", full time, "Z" or a numeric offset.
    const auto internet = makeFormat(u"yyyy-MM-dd'T'HH:mm:ssXX");
    return parseWhole(internet.get(), *text);
}

} // namespace BackendDate
